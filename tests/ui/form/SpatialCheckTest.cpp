// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/SpatialCheck.h"
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"

#include <QPushButton>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace lumetwin::test {
namespace {

const auto settings = std::make_shared<const ConversionSettings>();

TEST(SpatialCheck, ShowsTheValuesOfASpatialVideo) {
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

TEST(SpatialCheck, WithoutValuesTheMediaTypeIsShown) {
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

TEST(SpatialCheck, RecognisesASideBySidePicture) {
    SpatialFinding finding;
    finding.picture = PictureSize{3840, 1080};
    const Alert alert = spatialCheckAlert("/x/pair.jpg", finding);
    EXPECT_EQ(alert.message, formatted("alert.check.side.by.side.format", std::string("pair.jpg")));
    EXPECT_NE(alert.informative.find("3840 × 1080"), std::string::npos);
    EXPECT_EQ(alert.style, AlertStyle::informational);
    finding.picture = PictureSize{1920, 800};
    EXPECT_EQ(spatialCheckAlert("/x/film.mp4", finding).message,
              formatted("alert.spatial.check.no.title", std::string("film.mp4")))
        << "a wide film is none";
}

TEST(SpatialCheck, AFileThatCannotBeReadIsNotCalledNotSpatial) {
    const ScratchFolder scratch;
    for (const char *name : {"clip.MOV", "pair.HEIC"}) {
        const std::filesystem::path file = scratch.file(name);
        const SpatialFinding finding = inspectFile(file, MediaOperations::inProcess());
        EXPECT_FALSE(finding.failure.empty()) << name;
        const Alert alert = spatialCheckAlert(file, finding);
        EXPECT_EQ(alert.message, formatted("alert.check.unreadable.format", std::string(name)));
        EXPECT_EQ(alert.informative, finding.failure);
        EXPECT_EQ(alert.style, AlertStyle::warning);
    }
}

TEST(SpatialCheck, AnUnreadableFileIsNotSpatial) {
    const ScratchFolder scratch;
    for (const char *name : {"clip.MOV", "pair.HEIC", "notes.txt", "noextension"})
        EXPECT_FALSE(inspectFile(scratch.file(name), MediaOperations::inProcess()).isSpatial) << name;
    EXPECT_FALSE(inspectFile("/x/missing.mov", MediaOperations::inProcess()).isSpatial);
    EXPECT_FALSE(inspectFile("/x/missing.heic", MediaOperations::inProcess()).isSpatial);
}

TEST(SpatialCheck, RunsFromTheFormAndChangesNothing) {
    FakeServices fakes;
    FormServices services = fakes.services();
    services.inspect = [](const std::filesystem::path &file) {
        return SpatialFinding{file.filename() == "clip.mov", {{}, 19.24, {}}};
    };
    MainViewController form(services);
    fakes.panels->choice = {"/x/clip.mov"};
    control<QPushButton>(form, "checkSpatialBtn").click();
    ASSERT_TRUE(waitUntil([&] { return !fakes.alerts->shown.empty(); }));
    EXPECT_EQ(fakes.alerts->shown.front().style, AlertStyle::informational);
    EXPECT_FALSE(form.settings->inputFiles);
    fakes.panels->choice = {};
    control<QPushButton>(form, "checkSpatialBtn").click();
    processPendingEvents();
    EXPECT_EQ(fakes.alerts->shown.size(), 1U) << "cancelling ends the command";
}

/// A form whose spatial check takes as long as the test needs.
class SlowCheck : public testing::Test {
protected:
    SlowCheck() {
        FormServices services = fakes.services();
        services.inspect = [this](const std::filesystem::path &) {
            while (hold)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return SpatialFinding{};
        };
        services.runBatch = [](VideoProcessor &) {};
        form = std::make_unique<MainViewController>(services);
        form->show();
        fakes.panels->choice = {"/x/clip.mov"};
        button().click();
    }
    ~SlowCheck() override {
        hold = false;
        form.reset();
        BackgroundThreads::shared().waitForAll(testTimeout);
        processPendingEvents();
    }
    QPushButton &button() { return control<QPushButton>(*form, "checkSpatialBtn"); }

    FakeServices fakes;
    std::atomic<bool> hold{true};
    std::unique_ptr<MainViewController> form;
};

TEST_F(SlowCheck, TheButtonIsBusyMeanwhile) {
    EXPECT_FALSE(button().isEnabled());
    EXPECT_EQ(button().text().toStdString(), text("button.checking"));
    hold = false;
    ASSERT_TRUE(waitUntil([this] { return !fakes.alerts->shown.empty(); }));
    EXPECT_TRUE(button().isEnabled());
    EXPECT_EQ(button().accessibleName().toStdString(), text("button.check.spatial"));
}

TEST_F(SlowCheck, ItsResultIsNotShownDuringABatch) {
    form->presentProgressSheet();
    processPendingEvents();
    hold = false;
    EXPECT_TRUE(BackgroundThreads::shared().waitForAll(testTimeout));
    processPendingEvents();
    EXPECT_TRUE(fakes.alerts->shown.empty());
    form->progressSheet()->stop();
    ASSERT_TRUE(waitUntil([this] { return !fakes.alerts->shown.empty(); })) << "it comes when the form is back";
    EXPECT_EQ(fakes.alerts->shown.front().message, formatted("alert.spatial.check.no.title", std::string("clip.mov")));
}

} // namespace
} // namespace lumetwin::test
