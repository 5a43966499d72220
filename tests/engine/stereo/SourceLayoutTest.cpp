// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/stereo/SourceLayout.h"

#include "engine/stereo/EyeExtraction.h"
#include "engine/texts/ProcessorError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using Arrangement = EyeArrangement;
using media::PixelAspect;
using media::Rect;
using testing::ElementsAre;
using testing::IsEmpty;

MediaFacts saying(const StereoLayout &layout) {
    MediaFacts facts;
    facts.layout = layout;
    return facts;
}

std::vector<WarningKind> kindsOf(const std::vector<Warning> &warnings) {
    std::vector<WarningKind> kinds;
    for (const Warning &warning : warnings)
        kinds.push_back(warning.kind);
    return kinds;
}

constexpr StereoLayout overUnder{Arrangement::overUnder, false, false, LayoutSource::container};
constexpr StereoLayout rightFirst{Arrangement::sideBySide, false, true, LayoutSource::stream};

TEST(SourceLayout, isSideBySideWhereNobodySaysAnything) {
    EXPECT_EQ(sourceLayout(InputLayout::automatic, {}), StereoLayout());
    EXPECT_THAT(layoutWarnings({}, {}), IsEmpty());
}

TEST(SourceLayout, followsTheTagsOfTheFile) {
    EXPECT_EQ(sourceLayout(InputLayout::automatic, saying(overUnder)), overUnder);
    EXPECT_EQ(sourceLayout(InputLayout::automatic, saying(rightFirst)), rightFirst);
    EXPECT_THAT(kindsOf(layoutWarnings(overUnder, saying(overUnder))), ElementsAre(WarningKind::layoutUsed));
    EXPECT_THAT(kindsOf(layoutWarnings(rightFirst, saying(rightFirst))), ElementsAre(WarningKind::eyesPutRight));
}

TEST(SourceLayout, onlyWarnsOfAName) {
    const MediaFacts facts = saying({Arrangement::sideBySide, true, false, LayoutSource::fileName});
    EXPECT_EQ(sourceLayout(InputLayout::automatic, facts), StereoLayout());
    EXPECT_THAT(kindsOf(layoutWarnings({}, facts)), ElementsAre(WarningKind::nameSuggestsLayout));
}

TEST(SourceLayout, saysNothingOfANameThatIsRight) {
    const MediaFacts facts = saying({Arrangement::sideBySide, false, false, LayoutSource::fileName});
    EXPECT_THAT(layoutWarnings({}, facts), IsEmpty());
}

TEST(SourceLayout, theUserDecides) {
    const StereoLayout used = sourceLayout(InputLayout::halfSideBySide, saying(overUnder));
    EXPECT_EQ(used, (StereoLayout{Arrangement::sideBySide, true, false, LayoutSource::user}));
    EXPECT_THAT(kindsOf(layoutWarnings(used, saying(overUnder))), ElementsAre(WarningKind::layoutUsed));
}

TEST(SourceLayout, theFileStillOrdersTheEyesOfTheUsersArrangement) {
    EXPECT_TRUE(sourceLayout(InputLayout::halfSideBySide, saying(rightFirst)).rightEyeFirst);
    EXPECT_FALSE(sourceLayout(InputLayout::overUnder, saying(rightFirst)).rightEyeFirst);
}

TEST(SourceLayout, tellsOfTagsThatDisagree) {
    MediaFacts facts = saying(overUnder);
    facts.otherLayout = rightFirst;
    const std::vector<Warning> warnings = layoutWarnings(overUnder, facts);
    ASSERT_THAT(kindsOf(warnings), ElementsAre(WarningKind::layoutsDisagree, WarningKind::layoutUsed));
    EXPECT_EQ(std::get<std::string>(warnings[0].values.at(2)), "side by side, right eye first");
}

TEST(SourceLayout, tellsOfAPanorama) {
    MediaFacts facts;
    facts.projection = "equi";
    EXPECT_THAT(kindsOf(layoutWarnings({}, facts)), ElementsAre(WarningKind::notRectilinear));
    facts.projection = "rect";
    EXPECT_THAT(layoutWarnings({}, facts), IsEmpty());
}

TEST(SourceLayout, refusesWhatNoDecoderReads) {
    for (const Arrangement arrangement :
         {Arrangement::secondUnread, Arrangement::alternating, Arrangement::interleaved})
        EXPECT_THROW(requireReadable({arrangement, false, false, LayoutSource::container}), ProcessorError);
    EXPECT_NO_THROW(requireReadable(overUnder));
}

TEST(EyeCells, areTheHalvesOfTheFrame) {
    const EyeCells beside = eyeCells({}, 3841, 1080);
    EXPECT_EQ(beside.left, (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(beside.right, (Rect{1920, 0, 1920, 1080}));
    const EyeCells above = eyeCells(overUnder, 1920, 2161);
    EXPECT_EQ(above.left, (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(above.right, (Rect{0, 1080, 1920, 1080}));
    EXPECT_EQ(above.shownHeight, 1080);
}

TEST(EyeCells, exchangeWhereTheRightEyeIsFirst) {
    const EyeCells cells = eyeCells(rightFirst, 3840, 1080);
    EXPECT_EQ(cells.left.x, 1920);
    EXPECT_EQ(cells.right.x, 0);
}

TEST(EyeCells, areShownInTheirTrueShape) {
    const EyeCells wide = eyeCells({Arrangement::sideBySide, true}, 1920, 1080);
    EXPECT_EQ(wide.left.width, 960);
    EXPECT_EQ(wide.shownWidth, 1920);
    EXPECT_EQ(wide.shownHeight, 1080);
    const EyeCells high = eyeCells({Arrangement::overUnder, true}, 1920, 1080);
    EXPECT_EQ(high.left.height, 540);
    EXPECT_EQ(high.shownHeight, 1080);
    const EyeExtraction cut = eyeExtraction({}, eyeSize({}, wide), wide);
    EXPECT_FALSE(cut.unscaled);
    EXPECT_EQ(cut.right.source, (Rect{960, 0, 960, 1080}));
    EXPECT_EQ(cut.right.target, (Rect{0, 0, 1920, 1080}));
}

TEST(EyeCells, areTheWholePictureWhereEachEyeHasOne) {
    const EyeCells cells = eyeCells({Arrangement::twoFiles}, 641, 481);
    EXPECT_EQ(cells.left, cells.right);
    EXPECT_EQ(cells.left, (Rect{0, 0, 641, 481}));
    EXPECT_TRUE(eyeExtraction({}, eyeSize({}, cells), cells).unscaled);
}

TEST(EyePixelAspect, losesOnlyTheSqueezeOfAHalfLayout) {
    const StereoLayout half{Arrangement::sideBySide, true};
    EXPECT_EQ(eyePixelAspect(half, {2, 1}), (PixelAspect{1, 1}));
    EXPECT_EQ(eyePixelAspect(half, {8, 3}), (PixelAspect{4, 3}));
    EXPECT_EQ(eyePixelAspect(half, {1, 1}), (PixelAspect{1, 1})) << "the user said half, the file did not";
    EXPECT_EQ(eyePixelAspect({Arrangement::overUnder, true}, {1, 2}), (PixelAspect{1, 1}));
    EXPECT_EQ(eyePixelAspect({}, {4, 3}), (PixelAspect{4, 3}));
}

} // namespace
} // namespace lumetwin
