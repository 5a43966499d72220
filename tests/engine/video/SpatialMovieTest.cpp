// SPDX-License-Identifier: GPL-3.0-or-later
// What a spatial movie has to say of itself: its boxes, compared with platform-written ones, and what other programs
// read.
#include "tests/support/SpatialMovie.h"

#include "engine/inspection/Inspection.h"
#include "engine/video/SpatialVideoToSBS.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using test::BoxFile;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char *entry = "moov/trak/mdia/minf/stbl/stsd/hvc1";

std::string in(const std::string &path) {
    return std::string(entry) + "/" + path;
}

ConversionSettings &withValues(ConversionSettings &settings, double fieldOfView, double disparity, double baseline) {
    settings.horizontalFOV = fieldOfView;
    settings.disparityAdjustment = disparity;
    settings.stereoBaseline = baseline;
    return settings;
}

/// A clip that says what its colours are.
test::Clip tagged() {
    test::Clip clip;
    clip.filter = "setparams=range=limited:color_primaries=bt709:color_trc=bt709:colorspace=bt709";
    return clip;
}

std::vector<std::pair<int, int>> kinds(const std::vector<test::NalUnit> &units) {
    std::vector<std::pair<int, int>> result;
    for (const test::NalUnit &unit : units)
        result.emplace_back(unit.type, unit.layer);
    return result;
}

TEST(SpatialMovie, hasTheSampleEntryOfPlatformWrittenMovies) {
    const TemporaryFolder folder;
    test::toSpatial({}, test::draw(folder / "in.mp4", tagged()), folder / "out.mov");
    const BoxFile movie(folder / "out.mov");
    EXPECT_THAT(movie.children(""), ElementsAre("ftyp", "wide", "mdat", "moov"));
    EXPECT_EQ(movie.payload("ftyp").at(0), 'q');
    EXPECT_THAT(movie.children("moov/trak/mdia/minf/stbl/stsd"), ElementsAre("hvc1"));
    EXPECT_THAT(movie.children(entry), ElementsAre("hvcC", "lhvC", "colr", "fiel", "vexu", "hfov"));
    EXPECT_THAT(movie.children(in("vexu")), ElementsAre("eyes", "proj"));
    EXPECT_THAT(movie.children(in("vexu/eyes")), ElementsAre("stri", "hero", "cams", "cmfy"));
    EXPECT_FALSE(movie.has("moov/mvex"));
    const auto fields = movie.payload(entry);
    EXPECT_EQ(test::number32(fields, 24), 192U << 16 | 96);
    EXPECT_EQ(std::string(fields.begin() + 43, fields.begin() + 47), "HEVC");
    EXPECT_THAT(movie.children("moov/trak/tapt"), ElementsAre("clef", "prof", "enof"));
}

TEST(SpatialMovie, holdsTheStereoValuesInTheirUnits) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    test::toSpatial(withValues(settings, 90.0004, -1.234, 63.5), test::draw(folder / "in.mp4"), folder / "out.mov");
    const BoxFile movie(folder / "out.mov");
    EXPECT_THAT(movie.payload(in("vexu/eyes/stri")), ElementsAre(0, 0, 0, 0, 3));
    EXPECT_THAT(movie.payload(in("vexu/eyes/hero")), ElementsAre(0, 0, 0, 0, 1));
    EXPECT_EQ(test::number32(movie.payload(in("vexu/eyes/cams/blin")), 4), 63500U);
    EXPECT_EQ(static_cast<std::int32_t>(test::number32(movie.payload(in("vexu/eyes/cmfy/dadj")), 4)), -123);
    EXPECT_THAT(movie.payload(in("vexu/proj/prji")), ElementsAre(0, 0, 0, 0, 'r', 'e', 'c', 't'));
    EXPECT_EQ(test::number32(movie.payload(in("hfov")), 0), 90000U);
    EXPECT_TRUE(isSpatialVideo(folder / "out.mov"));
    const StereoValues values = stereoValues(folder / "out.mov");
    EXPECT_EQ(values.horizontalFOV, 90);
    EXPECT_EQ(values.stereoBaseline, 63.5);
    EXPECT_EQ(values.disparity, -1.23);
}

TEST(SpatialMovie, hasABoxAlsoForAValueOfZero) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    test::toSpatial(withValues(settings, 0, 0, 0), test::draw(folder / "in.mp4"), folder / "out.mov");
    const BoxFile movie(folder / "out.mov");
    EXPECT_THAT(movie.payload(in("vexu/eyes/cams/blin")), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(movie.payload(in("vexu/eyes/cmfy/dadj")), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(movie.payload(in("hfov")), ElementsAre(0, 0, 0, 0));
    EXPECT_TRUE(isSpatialVideo(folder / "out.mov"));
}

TEST(SpatialMovie, leavesTheProjectionOutForSystemsThatDoNotKnowIt) {
    const TemporaryFolder folder;
    test::toSpatial({}, test::draw(folder / "in.mp4"), folder / "out.mov", {14, 4, 0});
    EXPECT_THAT(BoxFile(folder / "out.mov").children(in("vexu")), ElementsAre("eyes"));
}

TEST(SpatialMovie, keepsParameterSetsOfEachLayerInTheirRecord) {
    const TemporaryFolder folder;
    test::toSpatial({}, test::draw(folder / "in.mp4"), folder / "out.mov");
    const BoxFile movie(folder / "out.mov");
    const auto base = test::configuration(movie.payload(in("hvcC")), 22);
    EXPECT_EQ(kinds(base.units), (std::vector<std::pair<int, int>>{{32, 0}, {33, 0}, {34, 0}, {39, 0}}));
    EXPECT_TRUE(base.complete);
    EXPECT_EQ(test::informationType(base.units.back()), 176);
    EXPECT_EQ(movie.payload(in("hvcC")).at(1) & 0x1F, 1) << "the base layer is Main";
    const auto second = test::configuration(movie.payload(in("lhvC")), 5);
    EXPECT_EQ(kinds(second.units), (std::vector<std::pair<int, int>>{{33, 1}, {34, 1}}));
    EXPECT_TRUE(second.complete);
    EXPECT_EQ(movie.payload(in("hvcC")).at(21) & 3, movie.payload(in("lhvC")).at(4) & 3) << "length of sizes";
}

TEST(SpatialMovie, countsInSixHundredthsFromZero) {
    const TemporaryFolder folder;
    test::Clip clip;
    clip.frames = 70;
    clip.rate = "25";
    test::toSpatial({}, test::draw(folder / "in.mp4", clip), folder / "out.mov");
    const BoxFile movie(folder / "out.mov");
    EXPECT_EQ(test::number32(movie.payload("moov/trak/mdia/mdhd"), 12), 600U);
    EXPECT_EQ(test::number32(movie.payload("moov/mvhd"), 16), 70U * 24);
    EXPECT_EQ(test::number32(movie.payload("moov/trak/edts/elst"), 8), 70U * 24);
    const auto samples = test::videoSamples(movie);
    ASSERT_EQ(samples.size(), 70U);
    test::checkAccessUnits(samples);
    std::set<std::int64_t> times;
    int keys = 0;
    for (const test::MovieSample &sample : samples) {
        times.insert(sample.time);
        keys += sample.sync;
    }
    EXPECT_EQ(times.size(), 70U);
    EXPECT_EQ(*times.begin(), 0);
    EXPECT_EQ(*times.rbegin(), 69 * 24);
    EXPECT_EQ(keys, 2) << "a key frame every two seconds";
}

TEST(SpatialMovie, isReadByAnOutsideProgram) {
    const TemporaryFolder folder;
    ConversionSettings settings;
    test::toSpatial(withValues(settings, 63.4, 2, 19.24), test::draw(folder / "in.mp4"), folder / "out.mov");
    const std::string facts =
        test::ffprobe(folder / "out.mov",
                      "stream=codec_tag_string,profile,width,height,view_ids_available,view_pos_available,field_order,"
                      "time_base:stream_disposition=multilayer:stream_side_data");
    for (const char *fact :
         {"codec_tag_string=hvc1", "profile=Main\n", "width=192", "height=96", "view_ids_available=0,1",
          "view_pos_available=1,2", "time_base=1/600", "DISPOSITION:multilayer=1", "side_data_type=Stereo 3D",
          "view=packed", "inverted=0", "primary_eye=left", "baseline=19240",
          "horizontal_disparity_adjustment=200/10000", "horizontal_field_of_view=63400/1000",
          "side_data_type=Spherical Mapping", "projection=rectilinear"})
        EXPECT_THAT(facts, HasSubstr(fact));
    EXPECT_THAT(facts, Not(HasSubstr("Frame Cropping")));
}

TEST(SpatialMovie, isReadByMediainfo) {
    const TemporaryFolder folder;
    test::toSpatial({}, test::draw(folder / "in.mp4"), folder / "out.mov");
    const auto report = test::runProgram({"mediainfo", (folder / "out.mov").string()});
    if (report.status == 127)
        GTEST_SKIP() << "mediainfo is not installed";
    for (const char *fact : {"QuickTime", "HEVC", "hvc1", "192 pixels", "96 pixels"})
        EXPECT_THAT(report.output, HasSubstr(fact));
}

TEST(SpatialMovie, hasTheStructureOfThePlatformsSample) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const TemporaryFolder folder;
    test::toSpatial({}, test::draw(folder / "in.mp4", tagged()), folder / "out.mov");
    const BoxFile ours(folder / "out.mov");
    const BoxFile theirs(*samples / "spatial-video" / "water_180_mvhevc_5frames.mov");
    for (const std::string path : {"", "moov/trak/mdia", "moov/trak/tapt", "moov/trak/mdia/minf"})
        EXPECT_EQ(ours.children(path), theirs.children(path)) << path;
    for (const std::string path : {"", "vexu", "vexu/proj", "vexu/eyes/cams", "vexu/eyes/cmfy"})
        EXPECT_EQ(ours.children(path.empty() ? entry : in(path)), theirs.children(path.empty() ? entry : in(path)))
            << path;
    for (const std::string path : {"vexu/eyes/stri", "vexu/proj/prji", "colr", "fiel"})
        EXPECT_EQ(ours.payload(in(path)), theirs.payload(in(path))) << path;
    for (const std::string path : {"vexu/eyes/cams/blin", "vexu/eyes/cmfy/dadj", "hfov"})
        EXPECT_EQ(ours.payload(in(path)).size(), theirs.payload(in(path)).size()) << path;
    EXPECT_EQ(kinds(test::configuration(ours.payload(in("hvcC")), 22).units),
              kinds(test::configuration(theirs.payload(in("hvcC")), 22).units));
    EXPECT_EQ(kinds(test::configuration(ours.payload(in("lhvC")), 5).units),
              kinds(test::configuration(theirs.payload(in("lhvC")), 5).units));
    test::checkAccessUnits(test::videoSamples(theirs));
}

TEST(SpatialMovie, givesBothEyesBackOnTheirSides) {
    const TemporaryFolder folder;
    test::toSpatial({}, test::draw(folder / "in.mp4"), folder / "spatial.mov");
    convertSpatialVideoToSBS({}, folder / "spatial.mov", folder / "back.mp4", {});
    const auto frames = test::decodeLuma(folder / "back.mp4");
    EXPECT_EQ(frames.width, 384);
    EXPECT_EQ(frames.height, 96);
    EXPECT_EQ(frames.frames.size(), 3U);
    EXPECT_GT(test::psnr(frames.frames[0], test::decodeLuma(folder / "in.mp4").frames[0]), 40);
}

} // namespace
} // namespace lumetwin
