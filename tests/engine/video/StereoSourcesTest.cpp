// SPDX-License-Identifier: GPL-3.0-or-later
// Spatial movies of every make: containers, boxes that are there or not, either eye in the base layer.
#include "engine/video/SpatialVideoToSBS.h"

#include "engine/inspection/Inspection.h"
#include "media/MediaError.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace lumetwin {
namespace {

using test::Bytes;
using test::expectHalves;
using test::leftLuma;
using test::rightLuma;
using test::toSBS;

class StereoSources : public testing::Test {
protected:
    StereoSources() { test::remuxed(test::drawStereo(folder / "drawn.mov", {192, 96, 6}), source); }

    std::filesystem::path copied(const std::string &name, const std::vector<std::string> &options = {}) {
        return test::remuxed(source, folder / name, options);
    }

    /// Where the message about the eyes (3D reference displays information) lies in the file: its NAL unit.
    std::size_t placeOfMessage() const {
        const Bytes bytes = test::readFile(source);
        const Bytes begin{0x4E, 0x01, 0xB0};
        const auto found = std::search(bytes.begin(), bytes.end(), begin.begin(), begin.end());
        if (found == bytes.end())
            throw std::runtime_error("there is no message about the eyes");
        return static_cast<std::size_t>(found - bytes.begin());
    }

    void expectConverted(const std::filesystem::path &movie, int left = leftLuma, int right = rightLuma) {
        const test::Conversion run = toSBS({}, movie, folder / "out.mp4");
        expectHalves(folder / "out.mp4", 384, 96, left, right);
        EXPECT_EQ(test::decodeLuma(folder / "out.mp4").frames.size(), 6U);
        EXPECT_TRUE(run.warnings.empty());
    }

    test::TemporaryFolder folder;
    const std::filesystem::path source = folder / "source.mov";
};

TEST_F(StereoSources, ourOwn) {
    EXPECT_TRUE(isSpatialVideo(folder / "drawn.mov"));
    expectConverted(folder / "drawn.mov");
}

TEST_F(StereoSources, mp4) {
    const auto movie = copied("in.mp4");
    EXPECT_TRUE(isSpatialVideo(movie));
    expectConverted(movie);
}

TEST_F(StereoSources, fragmentedMp4) {
    const auto movie = copied("in.mp4", {"-movflags", "+frag_keyframe+empty_moov+default_base_moof"});
    EXPECT_TRUE(isSpatialVideo(movie));
    expectConverted(movie);
}

TEST_F(StereoSources, fragmentOfEveryFrame) {
    const auto movie = copied("in.mp4", {"-movflags", "+frag_every_frame+empty_moov"});
    EXPECT_TRUE(isSpatialVideo(movie));
    expectConverted(movie);
}

TEST_F(StereoSources, headersBeforeTheData) {
    const auto movie = copied("in.mov", {"-movflags", "+faststart"});
    EXPECT_TRUE(isSpatialVideo(movie));
    expectConverted(movie);
}

TEST_F(StereoSources, parameterSetsInTheSamples) {
    const auto movie = copied("in.mp4", {"-tag:v", "hev1"});
    EXPECT_TRUE(isSpatialVideo(movie));
    expectConverted(movie);
}

TEST_F(StereoSources, withoutAHeroEye) {
    test::renameBox(source, "hero", "free");
    EXPECT_TRUE(isSpatialVideo(source));
    expectConverted(source);
}

TEST_F(StereoSources, heroEyeOnTheRight) {
    test::overwrite(source, test::placeOfBox(test::readFile(source), "hero") + 12, {2});
    expectConverted(source);
}

TEST_F(StereoSources, rightEyeInTheBaseLayer) {
    // Left view 0 and right view 1 are the bits 1 010; exchanged they are 010 1.
    const std::size_t place = placeOfMessage();
    const Bytes bytes = test::readFile(source);
    ASSERT_EQ(bytes.at(place + 5), 0x0D);
    test::overwrite(source, place + 5, {0x0A, static_cast<std::uint8_t>(bytes.at(place + 6) | 0x80)});
    EXPECT_NE(test::ffprobe(source, "stream=view_pos_available").find("view_pos_available=2,1"), std::string::npos);
    expectConverted(source, rightLuma, leftLuma);
}

TEST_F(StereoSources, withoutAMessageAboutTheEyesTheBaseLayerIsTheLeftOne) {
    // A payload type that nobody knows.
    test::overwrite(source, placeOfMessage() + 2, {0xC8});
    EXPECT_EQ(test::ffprobe(source, "stream=view_pos_available").find("view_pos_available=1,2"), std::string::npos);
    EXPECT_TRUE(isSpatialVideo(source));
    expectConverted(source);
}

TEST_F(StereoSources, eyesAreKnownByTheStreamAlone) {
    // Not announced as spatial, so that a batch skips it; but whoever converts it gets both eyes.
    test::renameBox(source, "vexu", "free");
    test::renameBox(source, "hfov", "free");
    EXPECT_FALSE(isSpatialVideo(source));
    expectConverted(source);
}

TEST_F(StereoSources, oneLayerThatClaimsToBeTwo) {
    // An ordinary stream in a movie that announces a baseline: the same picture for both eyes.
    test::Clip clip;
    clip.width = 192;
    clip.frames = 6;
    clip.video = {"-c:v", "libx265", "-x265-params", "log-level=none", "-tag:v", "hvc1"};
    test::draw(folder / "flat.mov", clip);
    toSBS({}, folder / "flat.mov", folder / "out.mp4");
    const auto frames = test::decodeLuma(folder / "out.mp4");
    ASSERT_EQ(frames.frames.size(), 6U);
    const auto [left, right] = test::halves(frames, 5);
    EXPECT_GT(test::psnr(left, right), 40);
}

TEST_F(StereoSources, encryptedMovieIsAnErrorThatSaysSo) {
    const auto movie = copied("secret.mp4", {"-encryption_scheme", "cenc-aes-ctr", "-encryption_key",
                                             "00112233445566778899aabbccddeeff", "-encryption_kid",
                                             "112233445566778899aabbccddeeff00"});
    try {
        toSBS({}, movie, folder / "out.mp4");
        FAIL() << "converted";
    } catch (const media::MediaError &error) {
        EXPECT_STREQ(error.what(), "Cannot decode secret.mp4: the movie is encrypted");
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4.partial"));
}

} // namespace
} // namespace lumetwin
