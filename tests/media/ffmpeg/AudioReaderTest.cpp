// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/AudioReader.h"
#include "media/MediaError.h"
#include "media/MovieFile.h"
#include "tests/support/BoxEdits.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lumetwin::media {
namespace {

using test::ffmpeg;
using test::TemporaryFolder;

std::vector<std::int16_t> readAll(const std::filesystem::path &file, int rate, int channels, double from = 0) {
    const AudioTrack track = MovieFile(InputFile(file)).audioTrack().value();
    AudioReader reader(InputFile(file), track, rate, channels, from);
    std::vector<std::int16_t> samples;
    while (const auto block = reader.next())
        samples.insert(samples.end(), block->samples.get(), block->samples.get() + block->count * channels);
    return samples;
}

/// The first sample louder than a quarter of full scale.
int onset(const std::vector<std::int16_t> &samples) {
    for (std::size_t index = 0; index < samples.size(); ++index)
        if (std::abs(samples[index]) > 8000)
            return static_cast<int>(index);
    return -1;
}

constexpr const char *clickAtHalfASecond = "aevalsrc='if(between(t,0.5,0.6),0.9*sin(2*PI*1000*t),0)':s=48000:d=1";

TEST(AudioReader, keepsTheTimeOfASoundWhateverTheCodecsPriming) {
    const TemporaryFolder folder;
    for (const auto &[name, codec] : std::vector<std::pair<std::string, std::string>>{{"aac.mp4", "aac"},
                                                                                      {"pcm.mov", "pcm_s16le"},
                                                                                      {"alac.mov", "alac"},
                                                                                      {"flac.mkv", "flac"},
                                                                                      {"ac3.mp4", "ac3"}}) {
        ffmpeg({"-f", "lavfi", "-i", clickAtHalfASecond, "-c:a", codec, (folder / name).string()});
        const auto samples = readAll(folder / name, 48000, 1);
        EXPECT_NEAR(onset(samples), 24000, 300) << name; // AC-3 states no priming
        EXPECT_NEAR(static_cast<double>(samples.size()), 48000, 1600) << name;
    }
}

TEST(AudioReader, fillsALateStartWithSilenceAndCutsWhatComesBefore) {
    const TemporaryFolder folder;
    ffmpeg({"-itsoffset", "0.25", "-f", "lavfi", "-i", clickAtHalfASecond, "-c:a", "pcm_s16le",
            (folder / "late.mkv").string()});
    EXPECT_NEAR(onset(readAll(folder / "late.mkv", 48000, 1)), 36000, 64);
    EXPECT_NEAR(onset(readAll(folder / "late.mkv", 48000, 1, 0.5)), 12000, 64);
}

TEST(AudioReader, goesOnWithoutTimesThatNoClockCounts) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder / "aeons.mov";
    ffmpeg(
        {"-itsoffset", "3000000", "-f", "lavfi", "-i", "aevalsrc=0.9:s=48000:d=1", "-c:a", "pcm_s16le", file.string()});
    // Boxes of version 1: the sound begins after 2^62 units of one second.
    const test::Bytes second{0, 0, 0, 1};
    test::overwrite(file, test::placeOfBox(test::readFile(file), "mvhd") + 28, second);
    test::overwrite(file, test::placeOfBox(test::readFile(file), "mdhd") + 20, second);
    test::overwrite(file, test::placeOfBox(test::readFile(file), "elst") + 16, {0x40, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(onset(readAll(file, 48000, 1)), 0);
}

TEST(AudioReader, mixesSixChannelsDownToTwo) {
    const TemporaryFolder folder;
    // The centre alone sounds: it has to come out of both sides.
    ffmpeg({"-f", "lavfi", "-i", "aevalsrc=0|0|0.8*sin(2*PI*440*t)|0|0|0:c=5.1:s=48000:d=0.5", "-c:a", "pcm_s16le",
            (folder / "six.mov").string()});
    const auto samples = readAll(folder / "six.mov", 48000, 2);
    double left = 0;
    double right = 0;
    for (std::size_t index = 0; index + 1 < samples.size(); index += 2) {
        left += std::abs(samples[index]);
        right += std::abs(samples[index + 1]);
    }
    const std::size_t frames = samples.size() / 2;
    EXPECT_GT(left / static_cast<double>(frames), 1500);
    EXPECT_NEAR(left, right, left * 0.01);
}

TEST(AudioReader, refusesAnEncryptedTrack) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", clickAtHalfASecond, "-c:a", "aac", "-encryption_scheme", "cenc-aes-ctr",
            "-encryption_key", "00112233445566778899aabbccddeeff", "-encryption_kid",
            "112233445566778899aabbccddeeff00", (folder / "secret.mp4").string()});
    try {
        readAll(folder / "secret.mp4", 48000, 1);
        FAIL();
    } catch (const MediaError &error) {
        EXPECT_STREQ(error.what(), "Cannot decode the sound of secret.mp4: it is encrypted");
    }
}

TEST(AudioReader, resamples) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "sine=f=440:r=37800:d=1", "-c:a", "pcm_s16le", (folder / "odd.avi").string()});
    EXPECT_NEAR(static_cast<double>(readAll(folder / "odd.avi", aacSampleRate(37800), 1).size()), 44100, 64);
}

TEST(AudioReader, resamplingDoesNotMoveASound) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "aevalsrc='if(between(t,0.5,0.6),0.9*sin(2*PI*1000*t),0)':s=192000:d=1", "-c:a",
            "pcm_s16le", (folder / "high.mov").string()});
    const auto samples = readAll(folder / "high.mov", 96000, 1);
    EXPECT_NEAR(onset(samples), 48004, 6); // the tone needs four samples to become loud
    EXPECT_NEAR(static_cast<double>(samples.size()), 96000, 6);
}

TEST(AudioReader, choosesARateThatAacCarries) {
    EXPECT_EQ(aacSampleRate(44100), 44100);
    EXPECT_EQ(aacSampleRate(16000), 16000);
    EXPECT_EQ(aacSampleRate(37800), 44100);
    EXPECT_EQ(aacSampleRate(6000), 8000);
    EXPECT_EQ(aacSampleRate(192000), 96000);
}

} // namespace
} // namespace lumetwin::media
