// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/AudioCopy.h"

#include "tests/support/BoxEdits.h"
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace lumetwin {
namespace {

using test::Clip;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Options = std::vector<std::string>;

media::AudioTrack track(double sampleRate, int channels) {
    return {0, sampleRate, channels};
}

TEST(AudioEncoding, isMonoOrStereoAt192KilobitsNeverMore) {
    for (const auto &[source, written] : {std::pair{1, 1}, {2, 2}, {3, 2}, {6, 2}, {8, 2}}) {
        const media::AudioEncoding encoding = audioEncoding(track(48000, source));
        EXPECT_EQ(encoding.channels, written) << source;
        EXPECT_EQ(encoding.sampleRate, 48000);
        EXPECT_EQ(encoding.bitRate, 192000);
    }
}

TEST(AudioEncoding, isStereoAt44100WhereTheTrackDoesNotTell) {
    const media::AudioEncoding encoding = audioEncoding(track(0, 0));
    EXPECT_EQ(encoding.channels, 2);
    EXPECT_EQ(encoding.sampleRate, 44100);
    EXPECT_EQ(audioEncoding(track(-1, 1)).sampleRate, 44100);
}

/// The time of the first sample of an output's sound that is louder than a quarter of full scale, in seconds.
double onset(const std::filesystem::path &movie) {
    const std::string pcm = test::output({test::stackProgram("ffmpeg"), "-v", "error", "-i", movie.string(), "-map",
                                          "0:a", "-ac", "1", "-ar", "48000", "-f", "s16le", "-c:a", "pcm_s16le", "-"});
    for (std::size_t at = 0; at + 1 < pcm.size(); at += 2) {
        std::int16_t sample = 0;
        std::memcpy(&sample, pcm.data() + at, 2);
        const std::size_t index = at / 2;
        if (std::abs(sample) > 8000)
            return static_cast<double>(index) / 48000;
    }
    return -1;
}

/// A clip of a second whose sound begins at its half.
Clip clickAtHalfASecond(const Options &audio, const std::string &layout, int rate) {
    Clip clip;
    clip.frames = 30;
    clip.audio = audio;
    clip.everyEncoder = true;
    // Every channel sounds, as loud as the mixing down of six leaves it.
    const std::string click = "if(between(t\\,0.5\\,0.7)\\,0.9*sin(2*PI*700*t)\\,0)";
    const int channels = layout == "mono" ? 1 : layout == "stereo" ? 2 : 6;
    clip.sound = "aevalsrc=" + click;
    for (int channel = 1; channel < channels; ++channel)
        clip.sound += "|" + click;
    clip.sound += ":c=" + layout + ":s=" + std::to_string(rate) + ":d=1";
    return clip;
}

struct Sound {
    std::string name;
    Options codec;
    std::string layout;
    int rate;
    double tolerance = 0.012; ///< seconds; several codecs smear a sudden sound by some milliseconds
};

void PrintTo(const Sound &sound, std::ostream *stream) {
    *stream << sound.name;
}

class Sounds : public testing::TestWithParam<Sound> {
protected:
    void expectSound(const std::filesystem::path &movie) {
        const Sound &sound = GetParam();
        EXPECT_THAT(test::ffprobe(movie, "stream=codec_name,sample_rate,channels", {"-select_streams", "a"}),
                    HasSubstr("codec_name=aac\nsample_rate=" + std::to_string(sound.rate) +
                              "\nchannels=" + (sound.layout == "mono" ? "1" : "2")));
        EXPECT_NEAR(onset(movie), 0.5, sound.tolerance);
        EXPECT_NEAR(std::stod(test::output({test::stackProgram("ffprobe"), "-v", "error", "-select_streams", "a",
                                            "-show_entries", "stream=duration", "-of", "csv=p=0", movie.string()})),
                    1.0, 0.05);
    }

    TemporaryFolder folder;
};

TEST_P(Sounds, areCarriedInStep) {
    const Sound &sound = GetParam();
    const auto source = test::draw(folder / sound.name, clickAtHalfASecond(sound.codec, sound.layout, sound.rate));
    EXPECT_THAT(test::toSpatial({}, source, folder / "out.mov").warnings, IsEmpty());
    expectSound(folder / "out.mov");
    EXPECT_THAT(test::toSBS({}, source, folder / "out.mp4").warnings, IsEmpty());
    expectSound(folder / "out.mp4");
}

const Sound sounds[] = {
    {"aac.mp4", {"-c:a", "aac"}, "stereo", 44100},
    {"aac_mono.mov", {"-c:a", "aac"}, "mono", 16000},
    {"aac_six.mp4", {"-c:a", "aac", "-b:a", "384k"}, "5.1", 48000},
    {"pcm16.mov", {"-c:a", "pcm_s16le"}, "stereo", 48000},
    {"pcm16be.mov", {"-c:a", "pcm_s16be"}, "mono", 22050},
    {"pcm24.mov", {"-c:a", "pcm_s24le"}, "stereo", 96000},
    {"pcm_float_six.mov", {"-c:a", "pcm_f32le"}, "5.1", 48000},
    {"pcm8.avi", {"-c:a", "pcm_u8"}, "mono", 8000},
    {"opus.mkv", {"-c:a", "libopus"}, "stereo", 48000},
    {"opus_six.mkv", {"-c:a", "libopus", "-b:a", "384k"}, "5.1", 48000},
    {"vorbis.mkv", {"-c:a", "libvorbis"}, "stereo", 44100},
    {"mp3.avi", {"-c:a", "libmp3lame"}, "stereo", 44100, 0.06}, // AVI states no priming
    {"mp2.avi", {"-c:a", "mp2"}, "stereo", 48000, 0.06},
    {"ac3.mkv", {"-c:a", "ac3"}, "stereo", 48000},
    {"ac3_six.mp4", {"-c:a", "ac3", "-b:a", "448k"}, "5.1", 48000},
    {"eac3_six.mp4", {"-c:a", "eac3", "-b:a", "448k"}, "5.1", 48000},
    {"flac.mkv", {"-c:a", "flac"}, "stereo", 88200},
    {"alac.mov", {"-c:a", "alac"}, "stereo", 48000},
};

INSTANTIATE_TEST_SUITE_P(Kinds, Sounds, testing::ValuesIn(sounds), [](const testing::TestParamInfo<Sound> &entry) {
    std::string name = entry.param.name;
    name.replace(name.find('.'), 1, "_");
    return name;
});

TEST(AudioCopy, codesSixChannelsAs192Kilobits) {
    const TemporaryFolder folder;
    // Noise, which takes every bit that there is.
    test::systemFfmpeg({"-f", "lavfi", "-i", "color=gray:s=128x64:r=10:d=4", "-f", "lavfi", "-i",
                        "anoisesrc=d=4:r=48000:a=0.5", "-af", "pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0", "-c:v",
                        "libx264", "-c:a", "pcm_s16le", (folder / "in.mov").string()});
    test::toSBS({}, folder / "in.mov", folder / "out.mp4");
    const std::string facts = test::ffprobe(folder / "out.mp4", "stream=channels,bit_rate", {"-select_streams", "a"});
    EXPECT_THAT(facts, HasSubstr("channels=2"));
    const std::size_t at = facts.find("bit_rate=");
    ASSERT_NE(at, std::string::npos);
    EXPECT_NEAR(std::stod(facts.substr(at + 9)), 192000, 192000 * 0.05);
}

TEST(AudioCopy, takesTheFirstOfSeveralTracks) {
    const TemporaryFolder folder;
    test::ffmpeg({"-f",
                  "lavfi",
                  "-i",
                  "color=gray:s=128x64:r=10:d=1",
                  "-f",
                  "lavfi",
                  "-i",
                  "sine=d=1:r=48000",
                  "-f",
                  "lavfi",
                  "-i",
                  "aevalsrc=0|0:d=1:s=32000",
                  "-map",
                  "0",
                  "-map",
                  "1",
                  "-map",
                  "2",
                  "-c:v",
                  "libx264",
                  "-c:a",
                  "aac",
                  (folder / "in.mp4").string()});
    test::toSBS({}, folder / "in.mp4", folder / "out.mp4");
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=sample_rate,channels", {"-select_streams", "a"}),
              "sample_rate=48000\nchannels=1\n");
}

TEST(AudioCopy, writesNoTrackWhereTheSourceHasNone) {
    const TemporaryFolder folder;
    const auto silent = test::draw(folder / "in.mp4");
    EXPECT_THAT(test::toSBS({}, silent, folder / "out.mp4").warnings, IsEmpty());
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=codec_type"), "codec_type=video\n");
    EXPECT_THAT(test::toSpatial({}, silent, folder / "out.mov").warnings, IsEmpty());
    EXPECT_EQ(test::ffprobe(folder / "out.mov", "stream=codec_type"), "codec_type=video\n");
}

TEST(AudioCopy, writesNoTrackWhereNoneIsWanted) {
    const TemporaryFolder folder;
    Clip clip;
    clip.sound = "sine=d=0.1";
    const auto loud = test::draw(folder / "in.mp4", clip);
    ConversionSettings settings;
    settings.copyAudio = false;
    test::toSBS(settings, loud, folder / "out.mp4");
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=codec_type"), "codec_type=video\n");
    test::toSpatial(settings, loud, folder / "out.mov");
    EXPECT_EQ(test::ffprobe(folder / "out.mov", "stream=codec_type"), "codec_type=video\n");
}

/// A movie whose sound is of a kind that nobody knows.
std::filesystem::path withStrangeSound(const TemporaryFolder &folder) {
    Clip clip;
    clip.frames = 10;
    clip.sound = "sine=d=0.3";
    clip.audio = {"-c:a", "pcm_s16le"};
    auto movie = test::draw(folder / "in.mov", clip);
    test::renameBox(movie, "sowt", "zzzz");
    return movie;
}

TEST(AudioCopy, soundThatCannotBeDecodedIsLeftOutWithAWarning) {
    const TemporaryFolder folder;
    const auto movie = withStrangeSound(folder);
    const auto leftOut = ElementsAre(HasSubstr("The video is written without sound"));
    EXPECT_THAT(test::toSBS({}, movie, folder / "out.mp4").warnings, leftOut);
    EXPECT_EQ(test::ffprobe(folder / "out.mp4", "stream=codec_type"), "codec_type=video\n");
    EXPECT_THAT(test::toSpatial({}, movie, folder / "out.mov").warnings, leftOut);
    test::expectViews(folder / "out.mov", 192, 96);
}

TEST(AudioCopy, soundThatNobodyWantsIsNotEvenLookedAt) {
    const TemporaryFolder folder;
    const auto movie = withStrangeSound(folder);
    ConversionSettings settings;
    settings.copyAudio = false;
    EXPECT_THAT(test::toSBS(settings, movie, folder / "out.mp4").warnings, IsEmpty());
    EXPECT_THAT(test::toSpatial(settings, movie, folder / "out.mov").warnings, IsEmpty());
}

} // namespace
} // namespace lumetwin
