// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/LayoutInspection.h"

#include "tests/support/Paths.h"
#include "tests/support/Photos.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using Arrangement = EyeArrangement;

std::optional<StereoLayout> hint(Arrangement arrangement, bool isHalf) {
    return StereoLayout{arrangement, isHalf, false, LayoutSource::fileName};
}

TEST(LayoutOfName, knowsTheUsualWords) {
    for (const char *name : {"film.hsbs.mkv", "Film-Half-SBS.mkv", "film 3D h-sbs.mp4", "a_halfsbs.avi"})
        EXPECT_EQ(layoutOfName(name), hint(Arrangement::sideBySide, true)) << name;
    for (const char *name : {"film.HOU.mkv", "film.half-ou.mkv", "film_htab.mp4", "film 3d half tab.mp4"})
        EXPECT_EQ(layoutOfName(name), hint(Arrangement::overUnder, true)) << name;
    for (const char *name : {"film.fsbs.mkv", "film.3d.sbs.mkv", "film full-sbs.mp4", "side-by-side.jpg"})
        EXPECT_EQ(layoutOfName(name), hint(Arrangement::sideBySide, false)) << name;
    for (const char *name : {"film.3D.OU.mkv", "film_full_tab.mp4", "walrus-360.top-bottom.jpg", "over under.jpg"})
        EXPECT_EQ(layoutOfName(name), hint(Arrangement::overUnder, false)) << name;
}

TEST(LayoutOfName, isNotMisled) {
    for (const char *name : {"film.mkv", "trip_sbs.mp4", "ou.mp4", "tab.jpg", "half.jpg", "house.mp4", "", ".sbs"})
        EXPECT_EQ(layoutOfName(name), std::nullopt) << name;
}

class LookClosely : public testing::Test {
protected:
    std::optional<StereoLayout> layoutOf(const std::string &name, const std::string &kind) {
        test::writeWithMagick(test::drawn(128, 48), folder / ("drawn." + kind));
        std::filesystem::copy_file(folder / ("drawn." + kind), folder / name);
        return lookClosely(media::InputFile(folder / name)).layout;
    }

    test::TemporaryFolder folder;
};

TEST_F(LookClosely, knowsTheConventionOfFormatsForCrossedEyes) {
    const std::optional<StereoLayout> crossed =
        StereoLayout{Arrangement::sideBySide, false, true, LayoutSource::container};
    EXPECT_EQ(layoutOf("a.jps", "jpg"), crossed);
    EXPECT_EQ(layoutOf("a.PNS", "png"), crossed);
}

TEST_F(LookClosely, findsNothingInAnOrdinaryPicture) {
    EXPECT_EQ(layoutOf("a.jpg", "jpg"), std::nullopt);
    EXPECT_EQ(layoutOf("a.png", "png"), std::nullopt);
}

TEST_F(LookClosely, takesTheNameLast) {
    EXPECT_EQ(layoutOf("a.hsbs.jpg", "jpg"), hint(Arrangement::sideBySide, true));
    const MediaFacts facts = [this] {
        layoutOf("b.half-ou.jps", "jpg");
        return lookClosely(media::InputFile(folder / "b.half-ou.jps"));
    }();
    EXPECT_EQ(facts.layout->source, LayoutSource::container);
    EXPECT_EQ(facts.otherLayout, hint(Arrangement::overUnder, true));
}

TEST_F(LookClosely, knowsTwoFiles) {
    layoutOf("a_L.jpg", "jpg");
    layoutOf("a_R.png", "png");
    const ConversionInput pair(media::InputFile(folder / "a_L.jpg"), media::InputFile(folder / "a_R.png"));
    EXPECT_EQ(lookClosely(pair).layout->arrangement, Arrangement::twoFiles);
}

} // namespace
} // namespace lumetwin
