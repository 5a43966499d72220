// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/StereoMovieFacts.h"
#include "media/bmff/StereoMovieFactsReader.h"
#include "tests/media/bmff/BoxBuilder.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

namespace lumetwin::media {
namespace {

using test::box;
using test::Bytes;
using test::fullBox;
using test::joined;
using test::letters;
using test::u32;

Bytes stereoBoxes(std::uint32_t baseline) {
    const Bytes eyes =
        box("eyes", joined({fullBox("stri", {3}), fullBox("hero", {1}), box("cams", fullBox("blin", u32(baseline))),
                            box("cmfy", fullBox("dadj", u32(static_cast<std::uint32_t>(-150))))}));
    return joined(
        {box("vexu", joined({eyes, box("proj", fullBox("prji", letters("rect")))})), box("hfov", u32(63400))});
}

Bytes entry(const Bytes &children, std::string_view type = "hvc1") {
    return box(type, joined({Bytes(78, 0), children}));
}

Bytes track(std::string_view handler, const Bytes &entries, std::uint32_t count = 1) {
    const Bytes descriptions = fullBox("stsd", joined({u32(count), entries}));
    return box("trak", box("mdia", joined({fullBox("hdlr", joined({letters("mhlr"), letters(handler), Bytes(12, 0)})),
                                           box("minf", box("stbl", descriptions))})));
}

Bytes movie(const Bytes &tracks) {
    return joined({box("ftyp", letters("qt  ")), box("mdat", Bytes(50, 1)),
                   box("moov", joined({fullBox("mvhd", Bytes(96, 0)), tracks}))});
}

StereoMovieFacts factsOf(const Bytes &bytes) {
    return bmff::readStereoMovieFacts(*bmff::fromMemory(bytes));
}

TEST(MovieFacts, readsWhatAStereoTrackAnnounces) {
    for (const std::string_view type : {"hvc1", "hev1", "encv", "avc1"}) {
        const StereoMovieFacts facts =
            factsOf(movie(track("vide", entry(joined({box("lhvC", {1}), stereoBoxes(19240)}), type))));
        EXPECT_TRUE(facts.hasVideoTrack);
        EXPECT_EQ(facts.baseline, 19240u);
        EXPECT_EQ(facts.horizontalFieldOfView, 63400u);
        EXPECT_EQ(facts.disparityAdjustment, -150);
        EXPECT_EQ(facts.eyes, 3);
        EXPECT_EQ(facts.heroEye, 1);
        EXPECT_EQ(facts.projection, "rect");
        EXPECT_TRUE(facts.multilayer);
        EXPECT_TRUE(facts.anyBaseline);
    }
}

TEST(MovieFacts, readsHowAFrameHoldsTwoEyes) {
    const Bytes pack = box("pack", fullBox("pkin", letters("over")));
    for (const Bytes &usage : {box("vexu", pack), box("vexu", box("eyes", joined({fullBox("stri", {11}), pack})))})
        EXPECT_EQ(factsOf(movie(track("vide", entry(usage)))).packing, "over");
    const StereoMovieFacts facts =
        factsOf(movie(track("vide", entry(joined({fullBox("st3d", {2}), box("mvcC", Bytes(8, 1))})))));
    EXPECT_EQ(facts.frameMode, 2);
    EXPECT_TRUE(facts.multiviewAvc);
}

TEST(MovieFacts, damagedBoxesOfTheFrameDoNotHideTheOthers) {
    for (const Bytes &damaged : {fullBox("st3d", {}), fullBox("st3d", Bytes(100, 2))}) {
        const StereoMovieFacts facts = factsOf(movie(track("vide", entry(joined({damaged, stereoBoxes(7)})))));
        EXPECT_FALSE(facts.frameMode);
        EXPECT_EQ(facts.baseline, 7u);
    }
    EXPECT_EQ(factsOf(movie(track("vide", entry(box("vexu", box("pack", {})))))).packing, "");
}

TEST(MovieFacts, knowsAProtectedSampleEntryWhereverItStands) {
    EXPECT_FALSE(factsOf(movie(track("vide", joined({entry({}), entry({})}), 2))).encrypted);
    EXPECT_TRUE(factsOf(movie(track("vide", entry({}, "encv")))).encrypted);
    EXPECT_TRUE(factsOf(movie(track("vide", joined({entry({}, "encv"), entry({})}), 2))).encrypted);
    EXPECT_TRUE(factsOf(movie(track("vide", joined({entry({}), entry({}, "encv")}), 2))).encrypted);
}

TEST(MovieFacts, toleratesATerminatorInTheSampleEntry) {
    EXPECT_EQ(factsOf(movie(track("vide", entry(joined({stereoBoxes(7), u32(0)}))))).baseline, 7u);
}

TEST(MovieFacts, looksAtTheFirstVideoTrackOnly) {
    const Bytes sound = track("soun", box("mp4a", Bytes(28, 0)));
    EXPECT_TRUE(factsOf(movie(joined({sound, track("vide", entry(stereoBoxes(1)))}))).anyBaseline);
    EXPECT_FALSE(factsOf(movie(joined({track("vide", entry({})), track("vide", entry(stereoBoxes(1)))}))).anyBaseline);
    EXPECT_FALSE(factsOf(movie(sound)).hasVideoTrack);
}

TEST(MovieFacts, looksAtEverySampleEntryOfTheTrack) {
    const StereoMovieFacts facts = factsOf(movie(track("vide", joined({entry({}), entry(stereoBoxes(5))}), 2)));
    EXPECT_TRUE(facts.anyBaseline);
    EXPECT_FALSE(facts.baseline.has_value()); // the values are those of the first
}

TEST(MovieFacts, knowsAFieldOfViewWithoutABaseline) {
    const StereoMovieFacts facts = factsOf(movie(track("vide", entry(box("hfov", u32(90000))))));
    EXPECT_EQ(facts.horizontalFieldOfView, 90000u);
    EXPECT_FALSE(facts.anyBaseline);
}

TEST(MovieFacts, findsTheHeaderBeforeTheDataAndInLongBoxes) {
    const Bytes header = test::longBox("moov", track("vide", entry(stereoBoxes(3))));
    EXPECT_TRUE(
        factsOf(joined({box("ftyp", letters("isom")), header, test::longBox("mdat", Bytes(5, 0))})).anyBaseline);
    EXPECT_TRUE(factsOf(joined({header, u32(0), letters("mdat"), Bytes(99, 7)})).anyBaseline);
}

TEST(MovieFacts, sayNothingOfFilesCutShortAnywhere) {
    const test::TemporaryFolder folder;
    const Bytes whole = movie(track("vide", entry(stereoBoxes(19240))));
    for (std::size_t size = 0; size < whole.size(); size += 3) {
        test::writeFile(folder / "cut.mov", Bytes(whole.begin(), whole.begin() + static_cast<long>(size)));
        EXPECT_FALSE(readStereoMovieFacts(folder / "cut.mov").anyBaseline) << size;
    }
    test::writeFile(folder / "cut.mov", whole);
    EXPECT_TRUE(readStereoMovieFacts(folder / "cut.mov").anyBaseline);
}

TEST(MovieFacts, surviveEveryFlippedByte) {
    const Bytes whole = movie(track("vide", entry(stereoBoxes(19240))));
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int value : {0x00, 0x01, 0x7f, 0xff}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<std::uint8_t>(value);
            try {
                factsOf(damaged);
            } catch (const bmff::FormatError &) {
                // refused
            }
        }
}

TEST(MovieFacts, neverThrowForFilesThatAreNoMovies) {
    const test::TemporaryFolder folder;
    EXPECT_FALSE(readStereoMovieFacts(folder / "absent.mov").hasVideoTrack);
    EXPECT_FALSE(readStereoMovieFacts(folder.path()).hasVideoTrack);
    test::writeFile(folder / "text.mov", std::string("a text that is no movie at all"));
    EXPECT_FALSE(readStereoMovieFacts(folder / "text.mov").hasVideoTrack);
    test::writeFile(folder / "empty.mov", std::string());
    EXPECT_FALSE(readStereoMovieFacts(folder / "empty.mov").hasVideoTrack);
}

TEST(MovieFacts, readThePlatformsSample) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const StereoMovieFacts facts = readStereoMovieFacts(*samples / "spatial-video" / "water_180_mvhevc_5frames.mov");
    EXPECT_EQ(facts.baseline, 19240u);
    EXPECT_EQ(facts.disparityAdjustment, 200);
    EXPECT_EQ(facts.horizontalFieldOfView, 64000u);
    EXPECT_EQ(facts.eyes, 3);
    EXPECT_EQ(facts.projection, "rect");
    EXPECT_TRUE(facts.multilayer);
    for (const auto &file : std::filesystem::directory_iterator(*samples / "ordinary"))
        EXPECT_FALSE(readStereoMovieFacts(file.path()).anyBaseline) << file.path();
    for (const auto &file : std::filesystem::directory_iterator(*samples / "broken"))
        EXPECT_FALSE(readStereoMovieFacts(file.path()).anyBaseline) << file.path();
}

TEST(MovieFacts, findStereoInFragmentedMoviesAndMp4) {
    const test::TemporaryFolder folder;
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const std::string input = (*samples / "spatial-video" / "water_180_mvhevc_5frames.mov").string();
    test::ffmpeg({"-i", input, "-c", "copy", "-movflags", "+frag_keyframe+empty_moov", "-strict", "unofficial",
                  (folder / "f.mp4").string()});
    EXPECT_EQ(readStereoMovieFacts(folder / "f.mp4").baseline, 19240u);
    test::ffmpeg({"-i", input, "-c", "copy", "-movflags", "+faststart", (folder / "s.mov").string()});
    EXPECT_EQ(readStereoMovieFacts(folder / "s.mov").baseline, 19240u);
}

} // namespace
} // namespace lumetwin::media
