// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"
#include "engine/inspection/VideoInfo.h"

#include "engine/texts/ProcessorError.h"
#include "engine/texts/Texts.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/Clips.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using test::TemporaryFolder;

std::filesystem::path spatialMovie(const TemporaryFolder &folder) {
    return test::remuxed(test::drawStereo(folder / "drawn.mov"), folder / "in.mov");
}

TEST(IsSpatialVideo, restsOnTheBaselineNotOnTheLayers) {
    const TemporaryFolder folder;
    const auto movie = spatialMovie(folder);
    EXPECT_TRUE(isSpatialVideo(movie));
    test::renameBox(movie, "blin", "free");
    EXPECT_NO_THROW(test::placeOfBox(test::readFile(movie), "lhvC")) << "there are two layers";
    EXPECT_FALSE(isSpatialVideo(movie));
}

TEST(IsSpatialVideo, doesNotReadTheBaselinesValue) {
    const TemporaryFolder folder;
    const auto movie = spatialMovie(folder);
    test::overwrite(movie, test::placeOfBox(test::readFile(movie), "blin") + 12, {0, 0, 0, 0});
    EXPECT_TRUE(isSpatialVideo(movie));
}

TEST(IsSpatialVideo, isFalseOnSystemsBeforeVersion14) {
    const TemporaryFolder folder;
    const auto movie = spatialMovie(folder);
    EXPECT_FALSE(isSpatialVideo(movie, {13, 9, 9}));
    EXPECT_TRUE(isSpatialVideo(movie, {14, 0, 0}));
    EXPECT_FALSE(stereoValues(movie, {13, 9, 9}).stereoBaseline.has_value());
}

TEST(IsSpatialVideo, isFalseForEverythingElse) {
    const TemporaryFolder folder;
    test::draw(folder / "flat.mp4");
    test::ffmpeg({"-f", "lavfi", "-i", "sine=d=0.2", "-c:a", "aac", (folder / "sound.mp4").string()});
    test::writeFile(folder / "text.mov", std::string("no movie"));
    for (const char *name : {"flat.mp4", "sound.mp4", "text.mov", "absent.mov"}) {
        EXPECT_FALSE(isSpatialVideo(folder / name)) << name;
        EXPECT_FALSE(stereoValues(folder / name).horizontalFOV.has_value()) << name;
    }
}

TEST(VideoInfo, needsAVideoTrack) {
    const TemporaryFolder folder;
    test::ffmpeg({"-f", "lavfi", "-i", "sine=d=0.2", "-c:a", "aac", (folder / "sound.mp4").string()});
    const media::MovieFile movie(media::InputFile(folder / "sound.mp4"));
    try {
        loadVideoInfo(movie);
        FAIL();
    } catch (const ProcessorError &error) {
        EXPECT_EQ(error.what(), text("error.no.video.track"));
        EXPECT_EQ(errorText(error), "Error Domain=VideoProcessor Code=-1 \"" + text("error.no.video.track") + "\"");
    }
}

TEST(VideoInfo, holdsTheFactsOfTheFirstVideoTrack) {
    const TemporaryFolder folder;
    test::Clip clip;
    clip.frames = 45;
    clip.rate = "30000/1001";
    test::draw(folder / "first.mp4", clip);
    clip.width = 128;
    test::draw(folder / "second.mp4", clip);
    test::ffmpeg({"-f", "lavfi", "-i", "sine=d=1", "-i", (folder / "first.mp4").string(), "-i",
                  (folder / "second.mp4").string(), "-map", "0:a", "-map", "1:v", "-map", "2:v", "-c:v", "copy",
                  (folder / "in.mov").string()});
    const media::MovieFile movie(media::InputFile(folder / "in.mov"));
    const VideoInfo info = loadVideoInfo(movie);
    EXPECT_EQ(info.width, 384);
    EXPECT_EQ(info.height, 96);
    EXPECT_NEAR(info.fps, 29.97, 0.001);
    EXPECT_NEAR(info.duration, 45 * 1001 / 30000.0, 0.01);
    EXPECT_EQ(info.track.index, 1);
}

TEST(VideoInfo, truncatesTheNaturalSize) {
    media::VideoTrack track;
    track.naturalWidth = 1920.7;
    track.naturalHeight = 1080.2;
    track.pace.rate = {2997, 100};
    const VideoInfo info = videoInfo(track, 12.5);
    EXPECT_EQ(info.width, 1920);
    EXPECT_EQ(info.height, 1080);
    EXPECT_EQ(info.fps, 29.97F);
    EXPECT_EQ(info.duration, 12.5);
}

TEST(VideoInfo, takesARotatedMovieAsItIsStored) {
    const TemporaryFolder folder;
    test::draw(folder / "flat.mp4");
    test::ffmpeg({"-display_rotation", "90", "-i", (folder / "flat.mp4").string(), "-c", "copy",
                  (folder / "turned.mp4").string()});
    const VideoInfo info = loadVideoInfo(media::MovieFile(media::InputFile(folder / "turned.mp4")));
    EXPECT_EQ(info.width, 384);
    EXPECT_EQ(info.height, 96);
}

} // namespace
} // namespace lumetwin
