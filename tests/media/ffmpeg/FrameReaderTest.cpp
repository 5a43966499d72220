// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/FrameReader.h"
#include "media/MediaError.h"
#include "media/MovieFile.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace lumetwin::media {
namespace {

using test::ffmpeg;
using test::TemporaryFolder;

int countFrames(const std::filesystem::path &file, bool &damaged) {
    MovieFile movie{InputFile(file)};
    FrameReader reader(movie, movie.videoTrack().value(), Views::all);
    int count = 0;
    while (reader.next())
        ++count;
    damaged = reader.damaged();
    return count;
}

TEST(FrameReader, readsEveryFrameOfEachContainerAndCodec) {
    const TemporaryFolder folder;
    const std::vector<std::pair<std::string, std::vector<std::string>>> kinds{
        {"h264.mp4", {"-c:v", "libx264"}},
        {"hevc.mov", {"-c:v", "libx265", "-x265-params", "log-level=none"}},
        {"raw.hevc", {"-c:v", "libx265", "-x265-params", "log-level=none"}},
        {"mpeg4.avi", {"-c:v", "mpeg4"}},
        {"mjpeg.mov", {"-c:v", "mjpeg", "-pix_fmt", "yuvj422p"}},
        {"prores.mov", {"-c:v", "prores_ks"}},
        {"ffv1.mkv", {"-c:v", "ffv1", "-pix_fmt", "yuv444p10"}},
        {"raw.avi", {"-c:v", "rawvideo", "-pix_fmt", "bgr24"}},
    };
    for (const auto &[name, codec] : kinds) {
        std::vector<std::string> arguments{"-f", "lavfi", "-i", "testsrc2=s=128x64:r=10:d=1.1"};
        arguments.insert(arguments.end(), codec.begin(), codec.end());
        arguments.push_back((folder / name).string());
        ffmpeg(arguments);
        bool damaged = true;
        EXPECT_EQ(countFrames(folder / name, damaged), 11) << name;
        EXPECT_FALSE(damaged) << name;
    }
}

TEST(FrameReader, tellsTheEyesOfThePlatformsSampleApart) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    MovieFile movie(InputFile(*samples / "spatial-video" / "water_180_mvhevc_5frames.mov"));
    FrameReader reader(movie, movie.videoTrack().value(), Views::all);
    int count = 0;
    while (const auto frame = reader.next()) {
        ASSERT_EQ(frame->count, 2);
        // The base layer of this movie is the right eye.
        EXPECT_EQ(frame->pictures[0].view, StereoView::right);
        EXPECT_EQ(frame->pictures[1].view, StereoView::left);
        EXPECT_EQ(frame->pictures[0].picture.width, 1934);
        EXPECT_EQ(frame->pictures[0].picture.height, 2160);
        ++count;
    }
    EXPECT_EQ(count, 5);
    EXPECT_FALSE(reader.damaged());
}

TEST(FrameReader, readsAsFarAsATruncatedMovieGoes) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=320x240:r=25:d=2", "-c:v", "libx264", "-g", "10", "-movflags",
            "+faststart", (folder / "whole.mp4").string()});
    auto bytes = test::readFile(folder / "whole.mp4");
    bytes.resize(bytes.size() * 6 / 10);
    test::writeFile(folder / "cut.mp4", bytes);
    bool damaged = false;
    const int count = countFrames(folder / "cut.mp4", damaged);
    EXPECT_GT(count, 10);
    EXPECT_LT(count, 50);
    EXPECT_TRUE(damaged);
}

TEST(FrameReader, goesOnAfterDamageInTheMiddle) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=320x240:r=25:d=2", "-c:v", "libx264", "-g", "10", "-movflags",
            "+faststart", (folder / "clip.mp4").string()});
    auto bytes = test::readFile(folder / "clip.mp4");
    std::fill(bytes.begin() + static_cast<long>(bytes.size() / 2),
              bytes.begin() + static_cast<long>(bytes.size() / 2) + 3000, std::uint8_t{0x5a});
    test::writeFile(folder / "clip.mp4", bytes);
    bool damaged = false;
    EXPECT_GT(countFrames(folder / "clip.mp4", damaged), 40);
    EXPECT_TRUE(damaged);
}

TEST(FrameReader, letsGoOfAMovieBeforeItsEnd) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=128x64:r=25:d=4", "-c:v", "libx264", (folder / "clip.mp4").string()});
    MovieFile movie(InputFile(folder / "clip.mp4"));
    FrameReader reader(movie, movie.videoTrack().value(), Views::base);
    EXPECT_TRUE(reader.next());
}

std::string openingError(const std::filesystem::path &file) {
    try {
        MovieFile movie{InputFile(file)};
        FrameReader reader(movie, movie.videoTrack().value(), Views::all);
    } catch (const MediaError &error) {
        EXPECT_EQ(error.file(), file);
        return error.what();
    }
    return {};
}

TEST(MovieFile, namesTheFileAndTheCauseOfWhatItCannotOpen) {
    const TemporaryFolder folder;
    test::writeFile(folder / "empty.mov", std::string());
    test::writeFile(folder / "text.mov", std::string("This is a letter, not a movie.\n"));
    std::filesystem::create_directory(folder / "folder.mov");
    EXPECT_EQ(openingError(folder / "empty.mov"), "Cannot open empty.mov: The file is empty");
    EXPECT_EQ(openingError(folder / "text.mov"),
              "Cannot open text.mov: it is damaged (Invalid data found when processing input)");
    EXPECT_EQ(openingError(folder / "folder.mov"), "Cannot open folder.mov: Is a directory");
    EXPECT_EQ(openingError(folder / "absent.mov"), "Cannot open absent.mov: No such file or directory");
}

TEST(MovieFile, opensNamesThatLookLikeAddresses) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=25:d=0.2", "-c:v", "libx264",
            "file:" + (folder / "a:b 100%.mp4").string()});
    EXPECT_TRUE(MovieFile(InputFile(folder / "a:b 100%.mp4")).videoTrack().has_value());
}

TEST(FrameReader, refusesAnEncryptedMovie) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=25:d=1", "-c:v", "libx264", "-encryption_scheme", "cenc-aes-ctr",
            "-encryption_key", "00112233445566778899aabbccddeeff", "-encryption_kid",
            "112233445566778899aabbccddeeff00", (folder / "secret.mp4").string()});
    EXPECT_EQ(openingError(folder / "secret.mp4"), "Cannot decode secret.mp4: the movie is encrypted");
}

TEST(FrameReader, refusesAMovieThatIsEncryptedFurtherOn) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=64x64:r=25:d=1", "-c:v", "libx264", (folder / "secret.mp4").string()});
    test::addSampleEntry(folder / "secret.mp4", "avc1");
    EXPECT_EQ(openingError(folder / "secret.mp4"), "");
    test::addSampleEntry(folder / "secret.mp4", "encv");
    EXPECT_EQ(openingError(folder / "secret.mp4"), "Cannot decode secret.mp4: the movie is encrypted");
}

TEST(MovieFile, reportsTheStoredSizeOfARotatedMovie) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=128x64:r=25:d=0.2", "-c:v", "libx264", (folder / "flat.mp4").string()});
    ffmpeg({"-display_rotation", "90", "-i", (folder / "flat.mp4").string(), "-c", "copy",
            (folder / "turned.mp4").string()});
    const VideoTrack track = MovieFile(InputFile(folder / "turned.mp4")).videoTrack().value();
    EXPECT_EQ(track.naturalWidth, 128);
    EXPECT_EQ(track.naturalHeight, 64);
}

} // namespace
} // namespace lumetwin::media
