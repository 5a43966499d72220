// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MovieWriter.h"
#include "media/MediaError.h"
#include "media/PartialFile.h"
#include "tests/support/MovieFileWriter.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>

namespace lumetwin::media {
namespace {

using test::TemporaryFolder;

Picture flatPicture(int width, int height, int luma) {
    Picture picture = makePicture(width, height, yuv420);
    for (int plane = 0; plane < 3; ++plane)
        for (int row = 0; row < picture.planeHeight(plane); ++row)
            std::memset(picture.planes[plane].data + row * picture.planes[plane].stride, plane == 0 ? luma : 128,
                        static_cast<std::size_t>(picture.planeWidth(plane)));
    return picture;
}

VideoEncoding encodingOf(VideoCodec codec, int width, int height) {
    VideoEncoding encoding;
    encoding.codec = codec;
    encoding.width = width;
    encoding.height = height;
    encoding.averageBitRate = 1'000'000;
    encoding.colour = {1, 1, 1, ColourRange::limited, ChromaLocation::left};
    return encoding;
}

void writeMovie(const std::filesystem::path &file, Container container, const VideoEncoding &encoding, int frames,
                const MovieTags &tags = {}) {
    test::MovieFileWriter writer(file, container, tags);
    writer.addVideo(encoding);
    writer.start(600);
    for (int frame = 0; frame < frames; ++frame)
        writer.append(flatPicture(encoding.width, encoding.height, 40 + 10 * (frame % 16)), frame * 20, 20);
    writer.finishVideo();
    writer.finish();
}

TEST(MovieWriter, writesEveryFrameAtItsTime) {
    const TemporaryFolder folder;
    for (const VideoCodec codec : {VideoCodec::h264, VideoCodec::hevc})
        for (const Container container : {Container::mpeg4, Container::quickTime, Container::matroska})
            for (const int frames : {1, 2, 40}) {
                const auto file = folder / "out.mov";
                const bool isMatroska = container == Container::matroska; // counts in milliseconds
                writeMovie(file, container, encodingOf(codec, 160, 90), frames);
                const auto decoded = test::decodeLuma(file);
                ASSERT_EQ(decoded.frames.size(), static_cast<std::size_t>(frames));
                for (int frame = 0; frame < frames; ++frame)
                    EXPECT_NEAR(decoded.mean(static_cast<std::size_t>(frame), 0, 0, 160, 90), 40 + 10 * (frame % 16),
                                2);
                const std::string times = test::ffprobe(file, "frame=pts");
                EXPECT_EQ(times.substr(0, 6), "pts=0\n");
                if (frames > 1) {
                    EXPECT_NE(times.find(isMatroska ? "pts=33\n" : "pts=20\n"), std::string::npos) << times;
                }
                EXPECT_NE(test::ffprobe(file, "stream=time_base").find(isMatroska ? "=1/1000" : "=1/600"),
                          std::string::npos);
                EXPECT_FALSE(std::filesystem::exists(PartialFile::nameFor(file)));
            }
}

TEST(MovieWriter, showsExactlyTheFrameOfAnOddSize) {
    const TemporaryFolder folder;
    for (const VideoCodec codec : {VideoCodec::h264, VideoCodec::hevc})
        for (const auto &[width, height] : std::vector<std::pair<int, int>>{{161, 91}, {160, 91}, {161, 90}, {17, 5}}) {
            const auto file = folder / "odd.mp4";
            for (const Container container : {Container::mpeg4, Container::matroska}) {
                writeMovie(file, container, encodingOf(codec, width, height), 3);
                const auto decoded = test::decodeLuma(file);
                EXPECT_EQ(decoded.width, width);
                EXPECT_EQ(decoded.height, height);
                EXPECT_NEAR(decoded.mean(0, 0, 0, width, height), 40, 2);
            }
        }
}

TEST(MovieWriter, carriesColourTags) {
    const TemporaryFolder folder;
    VideoEncoding encoding = encodingOf(VideoCodec::hevc, 64, 64);
    encoding.colour = {9, 18, 9, ColourRange::limited, ChromaLocation::left};
    writeMovie(folder / "hlg.mov", Container::quickTime, encoding, 2);
    const std::string facts =
        test::ffprobe(folder / "hlg.mov", "stream=color_range,color_space,color_transfer,color_primaries");
    EXPECT_NE(facts.find("color_range=tv"), std::string::npos) << facts;
    EXPECT_NE(facts.find("color_space=bt2020nc"), std::string::npos) << facts;
    EXPECT_NE(facts.find("color_transfer=arib-std-b67"), std::string::npos) << facts;
    EXPECT_NE(facts.find("color_primaries=bt2020"), std::string::npos) << facts;
}

TEST(MovieWriter, keepsWhatPeopleKeepFilmsForInBothContainers) {
    const TemporaryFolder folder;
    const MovieTags tags{{"creation_time", "2024-05-17T10:11:12.000000Z"},
                         {"com.apple.quicktime.make", "Camera Works"},
                         {"com.apple.quicktime.model", "Twin 3"},
                         {"com.apple.quicktime.location.ISO6709", "+35.6586+139.7454+040.000/"},
                         {"title", "Première neige"}};
    for (const Container container : {Container::mpeg4, Container::quickTime}) {
        writeMovie(folder / "kept.mov", container, encodingOf(VideoCodec::h264, 64, 64), 2, tags);
        const std::string found = test::ffprobe(folder / "kept.mov", "format_tags");
        EXPECT_NE(found.find("creation_time=2024-05-17T10:11:12"), std::string::npos) << found;
        EXPECT_NE(found.find("com.apple.quicktime.make=Camera Works"), std::string::npos) << found;
        EXPECT_NE(found.find("com.apple.quicktime.model=Twin 3"), std::string::npos) << found;
        EXPECT_NE(found.find("com.apple.quicktime.location.ISO6709=+35.6586+139.7454+040.000/"), std::string::npos)
            << found;
        EXPECT_NE(found.find("title=Première neige"), std::string::npos) << found;
        const std::string seen = test::runProgram({"exiftool", "-s", (folder / "kept.mov").string()}).output;
        EXPECT_NE(seen.find("Camera Works"), std::string::npos) << seen;
        EXPECT_NE(seen.find("GPSCoordinates"), std::string::npos) << seen;
    }
}

TEST(MovieWriter, keepsWhatPeopleKeepFilmsForInMatroskaToo) {
    const TemporaryFolder folder;
    const MovieTags tags{{"creation_time", "2024-05-17T10:11:12.000000Z"},
                         {"com.apple.quicktime.make", "Camera Works"},
                         {"com.apple.quicktime.location.ISO6709", "+35.6586+139.7454+040.000/"},
                         {"title", "Première neige"}};
    writeMovie(folder / "kept.mkv", Container::matroska, encodingOf(VideoCodec::h264, 64, 64), 2, tags);
    const std::string seen = test::output({"mediainfo", "--Full", (folder / "kept.mkv").string()});
    for (const char *part : {"2024-05-17 10:11:12", "Camera Works", "+35.6586+139.7454+040.000/", "Première neige"})
        EXPECT_NE(seen.find(part), std::string::npos) << part << " is not in\n" << seen;
    const MovieTags found = MovieFile(InputFile(folder / "kept.mkv")).tags();
    writeMovie(folder / "again.mov", Container::quickTime, encodingOf(VideoCodec::h264, 64, 64), 2, found);
    const std::string again = test::ffprobe(folder / "again.mov", "format_tags");
    for (const char *part : {"creation_time=2024-05-17T10:11:12", "com.apple.quicktime.make=Camera Works",
                             "com.apple.quicktime.location.ISO6709=+35.6586", "title=Première neige"})
        EXPECT_NE(again.find(part), std::string::npos) << part << " is not in\n" << again;
}

TEST(MovieWriter, writesTheSameBytesInEveryRun) {
    const TemporaryFolder folder;
    for (const Container container : {Container::mpeg4, Container::quickTime, Container::matroska}) {
        writeMovie(folder / "one", container, encodingOf(VideoCodec::h264, 64, 64), 5);
        writeMovie(folder / "two", container, encodingOf(VideoCodec::h264, 64, 64), 5);
        EXPECT_EQ(test::readFile(folder / "one"), test::readFile(folder / "two"));
    }
}

TEST(MovieWriter, leavesAReadablePartialFileWhenItIsNeverFinished) {
    const TemporaryFolder folder;
    for (const Container container : {Container::quickTime, Container::matroska}) {
        {
            test::MovieFileWriter writer(folder / "cut.mov", container, {});
            writer.addVideo(encodingOf(VideoCodec::h264, 160, 90));
            writer.start(600);
            for (int frame = 0; frame < 600; ++frame)
                writer.append(flatPicture(160, 90, 40 + frame % 100), frame * 20, 20);
            EXPECT_FALSE(std::filesystem::exists(folder / "cut.mov"));
        }
        EXPECT_FALSE(std::filesystem::exists(folder / "cut.mov"));
        EXPECT_GT(test::decodeLuma(PartialFile::nameFor(folder / "cut.mov")).frames.size(), 60u);
    }
}

TEST(MovieWriter, removesThePartialFileWhenCancelled) {
    const TemporaryFolder folder;
    test::writeFile(folder / "out.mp4", std::string("an older output"));
    test::MovieFileWriter writer(folder / "out.mp4", Container::mpeg4, {});
    writer.addVideo(encodingOf(VideoCodec::h264, 160, 90));
    writer.start(600);
    writer.append(flatPicture(160, 90, 40), 0, 20);
    writer.cancel();
    EXPECT_FALSE(std::filesystem::exists(PartialFile::nameFor(folder / "out.mp4")));
    EXPECT_EQ(test::readFile(folder / "out.mp4").size(), std::strlen("an older output"));
}

TEST(MovieWriter, namesTheOutputAndTheCauseWhenItCannotBegin) {
    const TemporaryFolder folder;
    try {
        test::MovieFileWriter writer(folder.path() / "absent" / "out.mp4", Container::mpeg4, {});
        FAIL() << "opened";
    } catch (const MediaError &error) {
        EXPECT_STREQ(error.what(), "Cannot create out.mp4: No such file or directory");
    }
}

void expectFullDiskReported(Container container) {
    const TemporaryFolder folder;
    // /dev/full takes nothing: what a full disk does at the first write.
    std::filesystem::create_symlink("/dev/full", PartialFile::nameFor(folder / "out.mp4"));
    test::MovieFileWriter writer(folder / "out.mp4", container, {});
    writer.addVideo(encodingOf(VideoCodec::h264, 160, 90));
    try {
        writer.start(600);
        for (int frame = 0; frame < 400; ++frame)
            writer.append(flatPicture(160, 90, 40), frame * 20, 20);
        writer.finishVideo();
        writer.finish();
        FAIL() << "finished";
    } catch (const MediaError &error) {
        EXPECT_STREQ(error.what(), "Cannot write out.mp4: No space left on device");
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "out.mp4"));
}

TEST(MovieWriter, reportsAFullDisk) {
    for (const Container container : {Container::mpeg4, Container::matroska})
        expectFullDiskReported(container);
}

TEST(MovieWriter, refusesSizesThatNoPlayerShows) {
    const TemporaryFolder folder;
    test::MovieFileWriter writer(folder / "out.mp4", Container::mpeg4, {});
    EXPECT_THROW(writer.addVideo(encodingOf(VideoCodec::h264, 0, 90)), MediaError);
    EXPECT_THROW(writer.addVideo(encodingOf(VideoCodec::h264, 100000, 90)), MediaError);
}

TEST(MovieWriter, keepsSoundAndPictureInStep) {
    const TemporaryFolder folder;
    const auto file = folder / "step.mp4";
    test::MovieFileWriter writer(file, Container::mpeg4, {});
    writer.addAudio({48000, 1, 192000});
    writer.addVideo(encodingOf(VideoCodec::h264, 160, 90));
    writer.start(600);
    std::thread sound([&] {
        // A tone from 1.0 s on, in uneven blocks.
        for (int at = 0; at < 3 * 48000; at += 1000) {
            const auto samples = std::make_shared<std::int16_t[]>(1000);
            for (int index = 0; index < 1000; ++index)
                samples[index] =
                    at + index >= 48000 ? static_cast<std::int16_t>(20000 * std::sin((at + index) * 0.13)) : 0;
            writer.append(AudioBlock{samples, 1000});
        }
        writer.finishAudio();
    });
    for (int frame = 0; frame < 90; ++frame)
        writer.append(flatPicture(160, 90, frame >= 30 ? 200 : 40), frame * 20, 20);
    writer.finishVideo();
    sound.join();
    writer.finish();

    const auto picture = test::decodeLuma(file);
    ASSERT_EQ(picture.frames.size(), 90u);
    EXPECT_LT(picture.mean(29, 0, 0, 160, 90), 60);
    EXPECT_GT(picture.mean(30, 0, 0, 160, 90), 180);
    const std::string pcm = test::runProgram({test::stackProgram("ffmpeg"), "-v", "error", "-i", file.string(), "-map",
                                              "0:a", "-f", "s16le", "-c:a", "pcm_s16le", "-"})
                                .output;
    const auto *samples = reinterpret_cast<const std::int16_t *>(pcm.data());
    int first = 0;
    while (first < static_cast<int>(pcm.size() / 2) && std::abs(samples[first]) < 8000)
        ++first;
    EXPECT_NEAR(first, 48000, 200); // 4 ms
}

TEST(MovieWriter, doesNotWaitForATrackThatEnded) {
    const TemporaryFolder folder;
    test::MovieFileWriter writer(folder / "short.mp4", Container::mpeg4, {});
    writer.addAudio({48000, 2, 192000});
    writer.addVideo(encodingOf(VideoCodec::h264, 64, 64));
    writer.start(600);
    writer.finishAudio();
    for (int frame = 0; frame < 300; ++frame)
        writer.append(flatPicture(64, 64, 40), frame * 20, 20);
    writer.finishVideo();
    writer.finish();
    EXPECT_EQ(test::decodeLuma(folder / "short.mp4").frames.size(), 300u);
}

} // namespace
} // namespace lumetwin::media
