// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/VideoInfo.h"
#include "media/MovieFile.h"
#include "tests/engine/video/FlashClip.h"
#include "tests/support/Conversions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin {
namespace {

using media::Fraction;
using test::FlashClip;
using test::Passage;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double inStep = 0.020; // seconds

struct Case {
    Fraction rate;
    double seconds; ///< long enough for a drift to show
    double speed;   ///< of the default time line, percent faster than the source
    int exactScale; ///< time scale that keeps the film's own timing
};

void PrintTo(const Case &value, std::ostream *stream) {
    *stream << value.rate.numerator << "/" << value.rate.denominator;
}

std::string nameOf(const testing::TestParamInfo<Case> &info) {
    return std::to_string(info.param.rate.numerator) + "_" + std::to_string(info.param.rate.denominator);
}

class InStep : public testing::TestWithParam<Case> {
protected:
    /// Both directions; the spatial film of the first is the source of the second.
    void convertBothWays(const std::filesystem::path &source, bool keepTiming) {
        ConversionSettings settings;
        settings.keepTiming = keepTiming;
        spatial = test::toSpatial(settings, source, folder / "spatial.mov");
        // What keeps the source's times has them for the way back, too.
        sideBySide = test::toSBS(settings, folder / (keepTiming ? "spatial.mov" : "kept.mov"), folder / "sbs.mp4");
    }

    void expectInStep(std::size_t least) {
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "spatial.mov"), least), inStep);
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "sbs.mp4"), least), inStep);
    }

    TemporaryFolder folder;
    test::Conversion spatial;
    test::Conversion sideBySide;
};

int timeScaleOf(const std::filesystem::path &movie) {
    const std::string base = test::ffprobe(movie, "stream=time_base", {"-select_streams", "v"});
    return std::stoi(base.substr(base.find("1/") + 2));
}

TEST_P(InStep, AtBothTimings) {
    const Case &given = GetParam();
    const auto source = test::draw(folder / "in.mov", FlashClip::constant(given.rate, given.seconds));
    const auto least = static_cast<std::size_t>(given.seconds) - 1;
    ASSERT_LE(test::farthestApart(test::eventsOf(source), least), 0.001) << "the clip itself";
    EXPECT_NEAR(loadVideoInfo(media::MovieFile(media::InputFile(source))).fps, given.rate.value(), 1e-4);

    convertBothWays(source, true);
    expectInStep(least);
    EXPECT_THAT(spatial.warnings, IsEmpty());
    EXPECT_THAT(sideBySide.warnings, IsEmpty());
    EXPECT_EQ(timeScaleOf(folder / "spatial.mov"), given.exactScale);
    EXPECT_EQ(timeScaleOf(folder / "sbs.mp4"), given.exactScale);
    EXPECT_NEAR(loadVideoInfo(media::MovieFile(media::InputFile(folder / "sbs.mp4"))).fps, given.rate.value(), 1e-4);
    std::filesystem::rename(folder / "spatial.mov", folder / "kept.mov");

    convertBothWays(source, false);
    expectInStep(least);
    EXPECT_EQ(timeScaleOf(folder / "spatial.mov"), 600);
    EXPECT_EQ(timeScaleOf(folder / "sbs.mp4"), 600);
    for (const test::Conversion &conversion : {spatial, sideBySide}) {
        if (given.speed < 0.5) {
            EXPECT_THAT(conversion.warnings, IsEmpty());
            continue;
        }
        char words[64];
        std::snprintf(words, sizeof words, "The film plays %.1f %% faster than its source.", given.speed);
        EXPECT_THAT(conversion.warnings, ElementsAre(HasSubstr(words)));
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, InStep,
                         testing::Values(Case{{24000, 1001}, 60, 0.1, 24000}, Case{{24, 1}, 10, 0, 600},
                                         Case{{25, 1}, 10, 0, 600}, Case{{30000, 1001}, 60, 0.1, 30000},
                                         Case{{30, 1}, 10, 0, 600}, Case{{48, 1}, 15, 4.2, 4800},
                                         Case{{50, 1}, 10, 0, 600}, Case{{60000, 1001}, 30, 0.1, 60000},
                                         Case{{60, 1}, 10, 0, 600}, Case{{90, 1}, 15, 11.1, 900},
                                         Case{{100, 1}, 10, 0, 600}, Case{{120000, 1001}, 30, 0.1, 120000},
                                         Case{{120, 1}, 10, 0, 600}, Case{{240, 1}, 10, 25, 2400}),
                         nameOf);

/// A clip whose times are not those of a constant rate; in step with the film's own timing, told of without.
void expectKeptAndToldOf(TemporaryFolder &folder, const std::filesystem::path &source, std::size_t least) {
    ConversionSettings settings;
    settings.keepTiming = true;
    EXPECT_THAT(test::toSpatial(settings, source, folder / "kept.mov").warnings, IsEmpty());
    EXPECT_THAT(test::toSBS(settings, folder / "kept.mov", folder / "kept.mp4").warnings, IsEmpty());
    EXPECT_LE(test::farthestApart(test::eventsOf(folder / "kept.mov"), least), inStep);
    EXPECT_LE(test::farthestApart(test::eventsOf(folder / "kept.mp4"), least), inStep);
    settings.keepTiming = false;
    for (const auto &warnings : {test::toSpatial(settings, source, folder / "fixed.mov").warnings,
                                 test::toSBS(settings, folder / "kept.mov", folder / "fixed.mp4").warnings})
        EXPECT_THAT(warnings, testing::Contains(HasSubstr("Picture and sound are up to ")));
}

TEST(Timing, MatroskaIsInStepToo) {
    TemporaryFolder folder;
    const auto source = test::draw(folder / "in.mov", FlashClip::constant({30000, 1001}, 12));
    ConversionSettings settings;
    settings.keepTiming = true;
    test::toSpatial(settings, source, folder / "spatial.mov");
    settings.sbsOutputFormat = SBSOutputFormat::mkvH264;
    for (const bool keepTiming : {false, true}) {
        settings.keepTiming = keepTiming;
        EXPECT_THAT(test::toSBS(settings, folder / "spatial.mov", folder / "sbs.mkv").warnings, IsEmpty());
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "sbs.mkv"), 11), inStep);
        const double fps = loadVideoInfo(media::MovieFile(media::InputFile(folder / "sbs.mkv"))).fps;
        EXPECT_NEAR(fps, keepTiming ? 30000 / 1001.0 : 30, 1e-3);
        EXPECT_THAT(test::toSpatial(settings, folder / "sbs.mkv", folder / "back.mov").warnings, IsEmpty());
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "back.mov"), 11), inStep);
    }
}

TEST(Timing, VariableRateKeepsItsTimes) {
    TemporaryFolder folder;
    FlashClip clip;
    clip.passages = {{150, {1, 30}}, {60, {1, 15}}, {300, {1, 60}}, {100, {1, 24}}};
    const auto source = test::draw(folder / "in.mp4", clip);
    expectKeptAndToldOf(folder, source, 13);
    EXPECT_EQ(timeScaleOf(folder / "kept.mov"), 90000);
}

TEST(Timing, TransportStreamsAndWindowsMediaAreInStep) {
    TemporaryFolder folder;
    FlashClip clip = FlashClip::constant({25, 1}, 10);
    const std::vector<std::string> x264{"-c:v", "libx264", "-preset", "ultrafast", "-bf", "2"};
    const std::vector<std::string> wmv{"-c:v", "wmv2", "-q:v", "3"};
    for (const auto &[name, picture, sound] : {std::tuple("aac.ts", x264, "aac"),
                                               {"ac3.m2ts", x264, "ac3"},
                                               {"mp2.mts", x264, "mp2"},
                                               {"wma.wmv", wmv, "wmav2"}}) {
        clip.options = picture;
        clip.options.insert(clip.options.end(), {"-c:a", sound});
        if (std::string_view(name).ends_with("mts"))
            clip.options.insert(clip.options.end(), {"-f", "mpegts"});
        const auto source = test::draw(folder / name, clip);
        EXPECT_THAT(test::toSpatial({}, source, folder / "out.mov").warnings, IsEmpty()) << name;
        EXPECT_THAT(test::toSBS({}, folder / "out.mov", folder / "out.mp4").warnings, IsEmpty()) << name;
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "out.mov"), 9), inStep) << name;
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "out.mp4"), 9), inStep) << name;
    }
}

TEST(Timing, VariableRateInMatroskaKeepsItsTimes) {
    TemporaryFolder folder;
    FlashClip clip;
    clip.passages = {{150, {1, 30}}, {60, {1, 15}}, {300, {1, 60}}, {100, {1, 24}}};
    expectKeptAndToldOf(folder, test::draw(folder / "in.mkv", clip), 13);
    EXPECT_EQ(timeScaleOf(folder / "kept.mov"), 1000);
}

TEST(Timing, GapIsKept) {
    TemporaryFolder folder;
    FlashClip clip;
    clip.passages = {{120, {1, 30}}, {150, {1, 30}, 2.5}};
    expectKeptAndToldOf(folder, test::draw(folder / "in.mp4", clip), 7);
}

TEST(Timing, EditListIsFollowed) {
    TemporaryFolder folder;
    FlashClip clip = FlashClip::constant({30000, 1001}, 20);
    clip.options = {"-c:v", "libx264", "-bf", "2", "-g", "60", "-c:a", "aac"};
    test::draw(folder / "whole.mp4", clip);
    test::ffmpeg({"-ss", "3.3", "-i", (folder / "whole.mp4").string(), "-c", "copy", (folder / "cut.mp4").string()});
    const media::MovieFile movie(media::InputFile(folder / "cut.mp4"));
    EXPECT_NEAR(loadVideoInfo(movie).fps, 30000 / 1001.0, 1e-4) << "frames that are trimmed away do not count";
    for (const bool keepTiming : {false, true}) {
        ConversionSettings settings;
        settings.keepTiming = keepTiming;
        test::toSpatial(settings, folder / "cut.mp4", folder / "out.mov");
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "out.mov"), 15), inStep);
        settings.sbsOutputFormat = SBSOutputFormat::movHEVC;
        test::toSBS(settings, folder / "out.mov", folder / "back.mov");
        EXPECT_LE(test::farthestApart(test::eventsOf(folder / "back.mov"), 15), inStep);
    }
}

TEST(Timing, LastFrameThatIsALittleShortChangesNothing) {
    TemporaryFolder folder;
    FlashClip clip;
    clip.timeScale = 600;
    clip.passages = {{599, {20, 600}}, {1, {19, 600}}};
    const auto source = test::draw(folder / "in.mov", clip);
    const test::Conversion run = test::toSpatial({}, source, folder / "out.mov");
    EXPECT_THAT(run.warnings, IsEmpty());
    EXPECT_EQ(loadVideoInfo(media::MovieFile(media::InputFile(source))).fps, 30);
    EXPECT_LE(test::farthestApart(test::eventsOf(folder / "out.mov"), 19), inStep);
}

TEST(Timing, SoundThatBeginsLaterOrEndsEarlierStaysInStep) {
    for (const auto &[start, tail] : {std::pair{1.3, 0.0}, {0.0, -4.2}, {0.0, 3.0}}) {
        TemporaryFolder folder;
        FlashClip clip = FlashClip::constant({48, 1}, 12);
        clip.soundStart = start;
        clip.soundTail = tail;
        const auto source = test::draw(folder / "in.mov", clip);
        for (const bool keepTiming : {false, true}) {
            ConversionSettings settings;
            settings.keepTiming = keepTiming;
            test::toSpatial(settings, source, folder / "out.mov");
            test::Events events = test::eventsOf(folder / "out.mov");
            // Flashes before the sound begins, or after it ends, have no click.
            if (start > 0)
                events.flashes.erase(events.flashes.begin());
            events.flashes.resize(std::min(events.flashes.size(), events.clicks.size()));
            EXPECT_LE(test::farthestApart(events, 7), inStep) << start << " " << tail << " " << keepTiming;
        }
    }
}

TEST(Timing, PictureThatBeginsAfterTheSoundStaysInStep) {
    TemporaryFolder folder;
    FlashClip clip = FlashClip::constant({30000, 1001}, 10);
    test::draw(folder / "in.mov", clip);
    test::ffmpeg({"-itsoffset", "0.7", "-i", (folder / "in.mov").string(), "-f", "lavfi", "-i",
                  "anullsrc=r=48000:cl=mono:d=1", "-filter_complex",
                  "[1:a]atrim=0:0.7[s];[s][0:a]concat=n=2:v=0:a=1[a]", "-map", "0:v", "-map", "[a]", "-c:v", "copy",
                  "-c:a", "pcm_s16le", (folder / "late.mov").string()});
    for (const bool keepTiming : {false, true}) {
        ConversionSettings settings;
        settings.keepTiming = keepTiming;
        test::toSpatial(settings, folder / "late.mov", folder / "out.mov");
        const test::Events events = test::eventsOf(folder / "out.mov");
        EXPECT_LE(test::farthestApart(events, 9), inStep) << keepTiming;
        EXPECT_NEAR(events.flashes.at(0), 15 * 1001 / 30000.0 + (keepTiming ? 0.7 : 0), inStep)
            << "the sound before the first picture is kept with the film's own timing";
    }
}

TEST(Timing, RawStreamHasItsOwnRateOrNone) {
    TemporaryFolder folder;
    const auto drawn = [&](const char *name, const char *parameters) {
        test::ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=256x128:r=60:d=3", "-c:v", "libx265", "-preset", "ultrafast",
                      "-x265-params", parameters, "-f", "hevc", (folder / name).string()});
        return folder / name;
    };
    const auto timed = drawn("timed.hevc", "log-level=none");
    EXPECT_EQ(loadVideoInfo(media::MovieFile(media::InputFile(timed))).fps, 60);
    EXPECT_NEAR(loadVideoInfo(media::MovieFile(media::InputFile(timed))).duration, 3, 0.02);
    test::toSpatial({}, timed, folder / "out.mov");
    EXPECT_EQ(loadVideoInfo(media::MovieFile(media::InputFile(folder / "out.mov"))).fps, 60);

    const auto untimed = drawn("untimed.hevc", "log-level=none:vui-timing-info=0");
    EXPECT_EQ(loadVideoInfo(media::MovieFile(media::InputFile(untimed))).fps, 0);
    const test::Conversion run = test::toSpatial({}, untimed, folder / "slow.mov");
    EXPECT_EQ(run.progress.front().second, 0) << "the total is unknown";
    EXPECT_EQ(loadVideoInfo(media::MovieFile(media::InputFile(folder / "slow.mov"))).fps, 30);
}

TEST(Timing, HeaderThatContradictsTheFramesIsNotBelieved) {
    TemporaryFolder folder;
    test::draw(folder / "in.mkv", FlashClip::constant({30, 1}, 5));
    // The default duration of a frame becomes a millisecond.
    test::Bytes bytes = test::readFile(folder / "in.mkv");
    const test::Bytes element{0x23, 0xE3, 0x83};
    const auto at = std::search(bytes.begin(), bytes.end(), element.begin(), element.end());
    if (at != bytes.end()) {
        const int size = *(at + 3) & 0x7F;
        for (int index = 0; index < size; ++index)
            *(at + 4 + index) = static_cast<std::uint8_t>(1000000 >> (8 * (size - 1 - index)));
        test::writeFile(folder / "in.mkv", bytes);
    }
    EXPECT_NEAR(loadVideoInfo(media::MovieFile(media::InputFile(folder / "in.mkv"))).fps, 30, 0.01);
    test::toSpatial({}, folder / "in.mkv", folder / "out.mov");
    EXPECT_LE(test::farthestApart(test::eventsOf(folder / "out.mov"), 5), inStep);
}

TEST(Timing, SamplesHaveTheRatesOfTheirFrames) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "LUMETWIN_SAMPLES names no folder of samples";
    const auto rate = [&](const char *name) {
        return loadVideoInfo(media::MovieFile(media::InputFile(*samples / "ordinary" / name))).fps;
    };
    EXPECT_NEAR(rate("sample.mkv"), 30, 0.05);
    EXPECT_NEAR(rate("sample_edit_list.mp4"), 30, 0.05);
    EXPECT_NEAR(rate("portrait_4k60.mp4"), 60, 6);
}

} // namespace
} // namespace lumetwin
