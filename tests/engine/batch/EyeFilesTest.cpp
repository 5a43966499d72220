// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/EyeFiles.h"

#include "engine/batch/OutputNaming.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using testing::ElementsAre;

/// Each entry as "left+right=name", or the file alone.
std::vector<std::string> pairsOf(const std::vector<std::string> &names, const ConversionSettings &settings) {
    std::vector<ListedFile> files;
    for (const std::string &name : names)
        files.push_back({.file = "/in/" + name, .folder = {}});
    std::vector<std::string> found;
    for (const ListedFile &listed : pairEyes(std::move(files), settings))
        found.push_back(listed.rightEye.empty()
                            ? listed.file.filename().string()
                            : listed.file.filename().string() + "+" + listed.rightEye.filename().string() + "=" +
                                  outputName(listed.named, settings));
    return found;
}

class EyeFiles : public testing::Test {
protected:
    EyeFiles() { settings.direction = ConversionDirection::sbsToSpatial; }
    ConversionSettings settings;
};

TEST_F(EyeFiles, ofTheUsualNamesAreJoined) {
    EXPECT_THAT(pairsOf({"holiday_L.jpg", "holiday_R.jpg"}, settings),
                ElementsAre("holiday_L.jpg+holiday_R.jpg=holiday_spatial.heic"));
    EXPECT_THAT(pairsOf({"a-left.mp4", "a-right.mp4"}, settings), ElementsAre("a-left.mp4+a-right.mp4=a_spatial.mov"));
    EXPECT_THAT(pairsOf({"b.Left.png", "b.right.PNG"}, settings), ElementsAre("b.Left.png+b.right.PNG=b_spatial.heic"));
    EXPECT_THAT(pairsOf({"my trip l.mov", "x.jpg", "my trip r.mov"}, settings),
                ElementsAre("my trip l.mov+my trip r.mov=my trip_spatial.mov", "x.jpg"));
}

TEST_F(EyeFiles, standInThePlaceOfTheLeftOne) {
    EXPECT_THAT(pairsOf({"right_R.jpg", "s.jpg", "right_L.jpg"}, settings),
                ElementsAre("s.jpg", "right_L.jpg+right_R.jpg=right_spatial.heic"));
}

TEST_F(EyeFiles, stayAloneWithoutAPartner) {
    EXPECT_THAT(pairsOf({"a_L.jpg", "b_R.jpg"}, settings), ElementsAre("a_L.jpg", "b_R.jpg"));
    EXPECT_THAT(pairsOf({"a_L.jpg", "a_R.mp4"}, settings), ElementsAre("a_L.jpg", "a_R.mp4"));
    EXPECT_THAT(pairsOf({"a_L.jpg", "a-left.jpg", "a_R.jpg"}, settings),
                ElementsAre("a_L.jpg", "a-left.jpg", "a_R.jpg"));
    EXPECT_THAT(pairsOf({"left.jpg", "right.jpg", "_L.jpg", "_R.jpg"}, settings),
                ElementsAre("left.jpg", "right.jpg", "_L.jpg", "_R.jpg"));
    EXPECT_THAT(pairsOf({"hotel.jpg", "hoter.jpg"}, settings), ElementsAre("hotel.jpg", "hoter.jpg"));
}

TEST_F(EyeFiles, areLeftOutTogether) {
    settings.leftOut = {"/in/a_L.jpg", "/in/c.jpg"};
    std::vector<std::string> names;
    for (const ListedFile &listed : inputsOfRun({{.file = "/in/a_L.jpg", .folder = {}},
                                                 {.file = "/in/a_R.jpg", .folder = {}},
                                                 {.file = "/in/b.jpg", .folder = {}},
                                                 {.file = "/in/c.jpg", .folder = {}}},
                                                settings))
        names.push_back(listed.file.filename().string());
    EXPECT_THAT(names, ElementsAre("b.jpg"));
}

TEST_F(EyeFiles, areJoinedOnlyTowardsSpatialMedia) {
    settings.direction = ConversionDirection::spatialToSBS;
    EXPECT_THAT(pairsOf({"a_L.heic", "a_R.heic"}, settings), ElementsAre("a_L.heic", "a_R.heic"));
}

TEST_F(EyeFiles, areNotJoinedWhereTheUserNamesAnotherLayout) {
    settings.inputLayout = InputLayout::sideBySide;
    EXPECT_THAT(pairsOf({"a_L.jpg", "a_R.jpg"}, settings), ElementsAre("a_L.jpg", "a_R.jpg"));
    settings.inputLayout = InputLayout::twoFiles;
    EXPECT_THAT(pairsOf({"a_L.jpg", "a_R.jpg"}, settings), ElementsAre("a_L.jpg+a_R.jpg=a_spatial.heic"));
}

} // namespace
} // namespace lumetwin
