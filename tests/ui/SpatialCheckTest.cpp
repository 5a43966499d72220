// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/SpatialCheck.h"
#include "engine/Texts.h"
#include "support/Scripted.h"
#include "ui/BackgroundThreads.h"
#include "ui/MainViewController.h"

#include <QPushButton>

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

const auto settings = std::make_shared<const ConversionSettings>();

TEST(SpatialCheck, TellsTheValuesOfASpatialVideo) {
    const Alert alert = spatialCheckAlert("/x/clip.mov", {true, {63.4, 19.24, 2.0}});
    EXPECT_EQ(alert.message, formatted("alert.spatial.check.yes.title", std::string("clip.mov")));
    EXPECT_EQ(alert.informative, formatted("alert.spatial.fov.format", 63.4) + "\n" +
                                     formatted("alert.spatial.baseline.format", 19.24) + "\n" +
                                     formatted("alert.spatial.disparity.format", 2.0));
    EXPECT_NE(alert.informative.find("63.4"), std::string::npos);
    EXPECT_NE(alert.informative.find("19.24"), std::string::npos);
    EXPECT_EQ(alert.buttons, std::vector{text("button.close")});
    EXPECT_EQ(alert.style, AlertStyle::informational);
}

TEST(SpatialCheck, ABaselineAloneIsALineWithALineFeed) {
    const Alert alert = spatialCheckAlert("/x/clip.mov", {true, {{}, 19.24, {}}});
    EXPECT_EQ(alert.informative, formatted("alert.spatial.baseline.format", 19.24) + "\n");
}

TEST(SpatialCheck, WithoutValuesTheMediaTypeIsTold) {
    EXPECT_EQ(spatialCheckAlert("/x/pair.HEIC", {true, {}}).informative, text("media.type.photo"));
    EXPECT_EQ(spatialCheckAlert("/x/clip.mov", {true, {}}).informative, text("media.type.video"));
}

TEST(SpatialCheck, NotSpatialIsAWarning) {
    const Alert alert = spatialCheckAlert("/x/100%s.mov", {false, {63.4, {}, {}}});
    EXPECT_EQ(alert.message, formatted("alert.spatial.check.no.title", std::string("100%s.mov")));
    EXPECT_EQ(alert.informative, text("alert.spatial.check.no.message"));
    EXPECT_EQ(alert.buttons, std::vector{text("button.close")});
    EXPECT_EQ(alert.style, AlertStyle::warning);
}

TEST(SpatialCheck, WhatCannotBeReadIsNotSpatial) {
    const ScratchFolder scratch;
    for (const char *name : {"clip.MOV", "pair.HEIC", "notes.txt", "noextension"})
        EXPECT_FALSE(inspectFile(scratch.file(name), settings).isSpatial) << name;
    EXPECT_FALSE(inspectFile("/x/missing.mov", settings).isSpatial);
    EXPECT_FALSE(inspectFile("/x/missing.heic", settings).isSpatial);
}

TEST(SpatialCheck, RunsFromTheFormAndChangesNothing) {
    Stage stage;
    FormServices services = stage.services();
    services.inspect = [](const std::filesystem::path &file) {
        return SpatialFinding{file.filename() == "clip.mov", {{}, 19.24, {}}};
    };
    MainViewController form(services);
    stage.panels->choice = {"/x/clip.mov"};
    control<QPushButton>(form, "checkSpatialBtn").click();
    ASSERT_TRUE(until([&] { return !stage.alerts->shown.empty(); }));
    EXPECT_EQ(stage.alerts->shown.front().style, AlertStyle::informational);
    EXPECT_FALSE(form.settings->inputFiles);
    stage.panels->choice = {};
    control<QPushButton>(form, "checkSpatialBtn").click();
    settle();
    EXPECT_EQ(stage.alerts->shown.size(), 1U) << "cancelling ends the command";
}

} // namespace
} // namespace lumetwin::test
