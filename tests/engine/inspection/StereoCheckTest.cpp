// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/StereoCheck.h"

#include "media/FrameSampler.h"
#include "media/ImagePreview.h"
#include "media/MediaError.h"
#include "tests/support/Drawing.h"
#include "tests/support/StereoScenes.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace lumetwin::test {
namespace {

constexpr StereoLayout sideBySide{.arrangement = EyeArrangement::sideBySide};
constexpr StereoLayout overUnder{.arrangement = EyeArrangement::overUnder};

class StereoCheck : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// Writes a film of even frames, each a little brighter than the one before.
    void writeSteps(const std::string &name, int frames, const std::vector<std::string> &options) const {
        std::vector<Picture> pictures;
        for (int frame = 0; frame < frames; ++frame)
            pictures.push_back(flat(64, 64, grey8, 20 + frame * 4));
        writeFilm(pictures, file(name), options);
    }

    /// The brightness of the frames that are sampled, in steps.
    std::vector<int> sampledSteps(const std::string &name, std::span<const double> positions) const {
        std::vector<int> steps;
        media::sampleFrames(media::InputFile(file(name)), positions, [&](const media::SampledFrame &frame) {
            // The film has limited range.
            steps.push_back(
                static_cast<int>(std::lround((((sample(frame.picture, 0, 32, 32) - 16) * 255 / 219.0) - 20) / 4)));
            return true;
        });
        return steps;
    }

    TemporaryFolder folder_;
};

TEST_F(StereoCheck, examinesPhotosOfEachFormat) {
    const media::EyePair<Picture> eyes = drawnEyes({.width = 800, .height = 600, .far = 1.4});
    for (const char *name : {"a.jpg", "a.png", "a.tiff"}) {
        writePicture(besideEachOther(eyes), file(name));
        const StereoFindings found = examine(media::InputFile(file(name)), sideBySide);
        EXPECT_EQ(found.seen, EyeArrangement::sideBySide) << name;
        ASSERT_TRUE(found.disparity) << name;
        EXPECT_NEAR(found.disparity->farthest, 1.4, 0.06) << name;
    }
    writePicture(aboveEachOther(eyes), file("b.jpg"));
    EXPECT_EQ(examine(media::InputFile(file("b.jpg")), sideBySide).seen, EyeArrangement::overUnder);
    EXPECT_EQ(examine(media::InputFile(file("b.jpg")), overUnder).seen, EyeArrangement::overUnder);
}

TEST_F(StereoCheck, examinesFilms) {
    std::vector<Picture> frames;
    for (unsigned seed = 1; seed <= 10; ++seed)
        frames.push_back(besideEachOther(drawnEyes({.width = 480, .height = 270, .far = 1.2, .seed = seed})));
    for (const char *name : {"a.mp4", "a.mkv", "a.mov"}) {
        writeFilm(frames, file(name));
        const StereoFindings found = examine(media::InputFile(file(name)), sideBySide);
        EXPECT_EQ(found.seen, EyeArrangement::sideBySide) << name;
        ASSERT_TRUE(found.disparity) << name;
        EXPECT_NEAR(found.disparity->farthest, 1.2, 0.1) << name;
        EXPECT_FALSE(found.probablySwapped) << name;
    }
}

TEST_F(StereoCheck, layoutsThatNoDecoderReadsAreNotExamined) {
    writePicture(besideEachOther(drawnEyes({})), file("a.png"));
    const StereoLayout layout{.arrangement = EyeArrangement::interleaved};
    EXPECT_EQ(examine(media::InputFile(file("a.png")), layout), StereoFindings());
}

TEST_F(StereoCheck, examinesTwoPhotos) {
    const media::EyePair<Picture> eyes = drawnEyes({.width = 1200, .height = 700, .far = 1.4, .near = -0.3});
    writePicture(eyes.left, file("a_L.jpg"));
    writePicture(eyes.right, file("a_R.jpg"));
    const ConversionInput input(media::InputFile(file("a_L.jpg")), media::InputFile(file("a_R.jpg")));
    StereoLayout layout{.arrangement = EyeArrangement::twoFiles};
    const StereoFindings found = examine(input, layout);
    EXPECT_EQ(found.seen, EyeArrangement::twoFiles);
    EXPECT_NEAR(found.disparity.value().farthest, 1.4, 0.06);
    layout.rightEyeFirst = true;
    EXPECT_NEAR(examine(input, layout).disparity.value().nearest, -1.4, 0.06);
}

TEST_F(StereoCheck, examinesTwoStreamsAndTwoFilms) {
    std::vector<Picture> left;
    std::vector<Picture> right;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        const media::EyePair<Picture> eyes = drawnEyes({.width = 480, .height = 270, .far = 1.2, .seed = seed});
        left.push_back(eyes.left);
        right.push_back(eyes.right);
    }
    writeFilm(left, file("a_L.mp4"));
    writeFilm(right, file("a_R.mp4"));
    const ConversionInput pair(media::InputFile(file("a_L.mp4")), media::InputFile(file("a_R.mp4")));
    const StereoFindings ofFiles = examine(pair, {.arrangement = EyeArrangement::twoFiles});
    EXPECT_EQ(ofFiles.seen, EyeArrangement::twoFiles);
    EXPECT_NEAR(ofFiles.disparity.value().farthest, 1.2, 0.1);

    systemFfmpeg({"-i", file("a_L.mp4").string(), "-i", file("a_R.mp4").string(), "-map", "0:v", "-map", "1:v", "-c",
                  "copy", file("two.mkv").string()});
    const StereoFindings ofStreams =
        examine(media::InputFile(file("two.mkv")), {.arrangement = EyeArrangement::twoStreams});
    EXPECT_EQ(ofStreams.seen, EyeArrangement::twoStreams);
    EXPECT_NEAR(ofStreams.disparity.value().farthest, 1.2, 0.1);
    EXPECT_THROW(examine(media::InputFile(file("a_L.mp4")), {.arrangement = EyeArrangement::twoStreams}),
                 media::MediaError);
}

TEST_F(StereoCheck, examinesAMultiPictureFile) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    std::filesystem::copy_file(*samples / "other-layouts/Panasonic-DMC-GX8.mpo", file("a.jpg"));
    const StereoFindings found = examine(media::InputFile(file("a.jpg")), {.arrangement = EyeArrangement::twoPictures});
    EXPECT_EQ(found.seen, EyeArrangement::twoPictures);
    EXPECT_TRUE(found.disparity);
    EXPECT_FALSE(found.probablySwapped);
}

TEST_F(StereoCheck, filesThatAreNoMediaAreErrors) {
    writeFile(file("a.jpg"), std::string("no picture"));
    writeFile(file("a.mp4"), std::string("no film"));
    EXPECT_THROW(examine(media::InputFile(file("a.jpg")), sideBySide), media::MediaError);
    EXPECT_THROW(examine(media::InputFile(file("a.mp4")), sideBySide), media::MediaError);
}

TEST_F(StereoCheck, aCutOffPhotoIsExaminedOrAnError) {
    writePicture(besideEachOther(drawnEyes({})), file("a.jpg"));
    const Bytes bytes = readFile(file("a.jpg"));
    for (const std::size_t size : {bytes.size() / 10, bytes.size() / 2, bytes.size() - 20}) {
        writeFile(file("b.jpg"), Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        try {
            examine(media::InputFile(file("b.jpg")), sideBySide);
        } catch (const media::MediaError &) {
        }
    }
}

TEST_F(StereoCheck, samplesFramesBySeeking) {
    const std::array positions{0.0, 0.25, 0.5, 0.75, 1.0};
    for (const char *name : {"a.mp4", "a.mkv", "a.avi"}) {
        writeSteps(name, 40,
                   {"-c:v", "libx264", "-qp", "6", "-g", "10", "-keyint_min", "10", "-sc_threshold", "0", "-bf", "0"});
        EXPECT_EQ(sampledSteps(name, positions), (std::vector{0, 10, 20, 30})) << name;
    }
}

TEST_F(StereoCheck, samplesTransportStreamsAndWindowsMedia) {
    const std::array positions{0.0, 0.3, 0.6};
    for (const auto &[name, codec] : {std::pair("a.ts", "libx264"), {"a.m2ts", "libx264"}, {"a.wmv", "wmv2"}}) {
        writeSteps(name, 40, {"-c:v", codec, "-qmin", "2", "-qmax", "6", "-g", "10", "-bf", "0"});
        const std::vector<int> steps = sampledSteps(name, positions);
        EXPECT_GE(steps.size(), std::string_view(name) == "a.wmv" ? 1U : 2U) << name;
        for (const int step : steps)
            EXPECT_EQ(step % 10, 0) << name;
        EXPECT_TRUE(std::ranges::is_sorted(steps, std::less_equal{})) << name;
    }
}

TEST_F(StereoCheck, samplesTheOnlyRandomAccessPicture) {
    for (const char *name : {"a.mp4", "a.ts", "a.m2ts"}) {
        writeSteps(name, 40, {"-c:v", "libx264", "-qp", "6", "-g", "99", "-sc_threshold", "0"});
        EXPECT_EQ(sampledSteps(name, std::array{0.1, 0.5, 0.9}), std::vector{0}) << name;
    }
}

TEST_F(StereoCheck, samplesARawStream) {
    writeSteps(
        "a.hevc", 40,
        {"-c:v", "libx265", "-x265-params", "keyint=10:min-keyint=10:scenecut=0:log-level=none:qp=6", "-f", "hevc"});
    const std::vector<int> steps = sampledSteps("a.hevc", std::array{0.0, 0.5, 0.9});
    ASSERT_GE(steps.size(), 2U);
    EXPECT_EQ(steps.front(), 0);
    for (const int step : steps)
        EXPECT_EQ(step % 10, 0);
}

TEST_F(StereoCheck, stopsSamplingWhenAsked) {
    writeSteps("a.mp4", 40, {"-c:v", "libx264", "-g", "10", "-keyint_min", "10"});
    int taken = 0;
    media::sampleFrames(media::InputFile(file("a.mp4")), std::array{0.0, 0.4, 0.8}, [&](const media::SampledFrame &) {
        ++taken;
        return false;
    });
    EXPECT_EQ(taken, 1);
}

TEST_F(StereoCheck, previewsAreReducedButNotTooMuch) {
    writePicture(drawnTexture(1600, 800), file("a.jpg"));
    const auto sizeFor = [&](int width, int height) {
        const Picture preview = media::readPreview(media::InputFile(file("a.jpg")), width, height);
        return std::pair(preview.width, preview.height);
    };
    EXPECT_EQ(sizeFor(1600, 100), std::pair(1600, 800));
    EXPECT_EQ(sizeFor(801, 100), std::pair(1600, 800));
    EXPECT_EQ(sizeFor(800, 100), std::pair(800, 400));
    EXPECT_EQ(sizeFor(100, 300), std::pair(800, 400));
    EXPECT_EQ(sizeFor(10, 10), std::pair(200, 100));
    EXPECT_EQ(sizeFor(9000, 9000), std::pair(1600, 800));
}

TEST_F(StereoCheck, previewsOfProgressivePhotosAreNearlyExact) {
    writePicture(drawnTexture(1600, 800), file("a.png"));
    for (const int reduction : {1, 2, 4, 8}) {
        const auto previewOf = [&](const std::string &name, const std::string &interlace) {
            output({"convert", file("a.png").string(), "-interlace", interlace, "-quality", "92", file(name).string()});
            return media::readPreview(media::InputFile(file(name)), 1600 / reduction, 800 / reduction);
        };
        const Picture exact = previewOf("b.jpg", "none");
        const Picture early = previewOf("c.jpg", "JPEG");
        ASSERT_EQ(early.width, 1600 / reduction);
        ASSERT_EQ(early.height, exact.height);
        double sum = 0;
        for (int y = 0; y < exact.height; ++y)
            for (int x = 0; x < exact.width; ++x)
                sum += std::abs(sample(exact, 0, x, y) - sample(early, 0, x, y));
        EXPECT_LT(sum / exact.width / exact.height, 3) << reduction;
    }
}

TEST_F(StereoCheck, aProgressivePhotoThatIsCutOffIsStillSeen) {
    writePicture(besideEachOther(drawnEyes({})), file("a.png"));
    output({"convert", file("a.png").string(), "-interlace", "JPEG", file("a.jpg").string()});
    const Bytes bytes = readFile(file("a.jpg"));
    writeFile(file("b.jpg"), Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() * 9 / 10)));
    EXPECT_EQ(examine(media::InputFile(file("b.jpg")), sideBySide).seen, EyeArrangement::sideBySide);
}

TEST_F(StereoCheck, previewsOfInksAreRead) {
    writePicture(flat(64, 64, grey8, 120), file("grey.png"));
    output({"convert", file("grey.png").string(), "-colorspace", "CMYK", file("inks.jpg").string()});
    const Picture preview = media::readPreview(media::InputFile(file("inks.jpg")), 16, 16);
    EXPECT_EQ(preview.format.model, media::ColourModel::rgb);
    EXPECT_EQ(preview.width, 64);
}

} // namespace
} // namespace lumetwin::test
