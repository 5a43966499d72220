// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/video/FlashClip.h"

#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <sstream>

namespace lumetwin::test {

namespace {

constexpr int soundRate = 48000;
constexpr double clickLength = 0.02; // seconds
constexpr double quietBefore = 0.2;  // seconds

/// Which frames flash: one about every second, not the first.
bool flashes(std::size_t frame, int period) {
    return frame % static_cast<std::size_t>(period) == static_cast<std::size_t>(period) / 2;
}

int period(const FlashClip &clip) {
    return std::max(2, static_cast<int>(std::lround(1 / clip.passages.front().frameDuration.value())));
}

std::string text(double number) {
    std::ostringstream stream;
    stream.precision(15);
    stream << number;
    return stream.str();
}

/// When frame N begins, as an expression of ffmpeg's, in seconds.
std::string timeExpression(const FlashClip &clip) {
    std::string expression;
    std::string closing;
    double begin = 0;
    int first = 0;
    for (const Passage &passage : clip.passages) {
        begin += passage.gap;
        const std::string time =
            text(begin) + "+(N-" + std::to_string(first) + ")*" + text(passage.frameDuration.value());
        first += passage.frames;
        begin += passage.frames * passage.frameDuration.value();
        expression +=
            &passage == &clip.passages.back() ? time : "if(lt(N\\," + std::to_string(first) + ")\\," + time + "\\,";
        closing += &passage == &clip.passages.back() ? "" : ")";
    }
    return expression + closing;
}

Bytes clickSamples(const FlashClip &clip) {
    const std::vector<double> times = clip.frameTimes();
    const double length = clip.duration() + clip.soundTail - clip.soundStart;
    std::vector<std::int16_t> samples(static_cast<std::size_t>(length * soundRate));
    for (std::size_t frame = 0; frame < times.size(); ++frame) {
        if (!flashes(frame, period(clip)))
            continue;
        const auto begin = static_cast<std::int64_t>(std::llround((times[frame] - clip.soundStart) * soundRate));
        for (int index = 0; index < clickLength * soundRate; ++index)
            if (begin + index >= 0 && begin + index < static_cast<std::int64_t>(samples.size()))
                samples[static_cast<std::size_t>(begin + index)] =
                    static_cast<std::int16_t>(28000 * std::sin(2 * std::numbers::pi * 1000 * index / soundRate));
    }
    Bytes bytes(samples.size() * 2);
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

std::vector<double> frameTimesOf(const std::filesystem::path &movie) {
    std::istringstream lines(output({stackProgram("ffprobe"), "-v", "error", "-select_streams", "v:0", "-show_entries",
                                     "frame=best_effort_timestamp_time", "-of", "csv=p=0", movie.string()}));
    std::vector<double> times;
    for (std::string line; std::getline(lines, line);)
        if (!line.empty())
            times.push_back(std::stod(line));
    return times;
}

std::vector<double> clicksOf(const std::filesystem::path &movie) {
    // The times of the file, as the frames have them: sound may begin before 0, where its encoder has a delay.
    const std::string pcm = output({stackProgram("ffmpeg"), "-v", "error", "-copyts", "-i", movie.string(), "-map",
                                    "0:a:0", "-af", "aresample=async=1:min_hard_comp=0.01:first_pts=0", "-ac", "1",
                                    "-ar", std::to_string(soundRate), "-f", "s16le", "-c:a", "pcm_s16le", "-"});
    std::vector<double> clicks;
    double lastLoud = -1;
    for (std::size_t at = 0; at + 1 < pcm.size(); at += 2) {
        std::int16_t sample = 0;
        std::memcpy(&sample, pcm.data() + at, 2);
        if (std::abs(sample) < 8000)
            continue;
        const double time = static_cast<double>(at / 2) / soundRate;
        if (time - lastLoud > quietBefore)
            clicks.push_back(time);
        lastLoud = time;
    }
    return clicks;
}

} // namespace

FlashClip FlashClip::constant(media::Fraction rate, double seconds) {
    FlashClip clip;
    clip.passages.push_back(
        {static_cast<int>(std::lround(seconds * rate.value())), {rate.denominator, rate.numerator}});
    clip.timeScale = static_cast<int>(rate.numerator < 1000 ? rate.numerator * 1000 : rate.numerator);
    return clip;
}

std::vector<double> FlashClip::frameTimes() const {
    std::vector<double> times;
    double begin = 0;
    for (const Passage &passage : passages) {
        begin += passage.gap;
        for (int frame = 0; frame < passage.frames; ++frame)
            times.push_back(begin + frame * passage.frameDuration.value());
        begin += passage.frames * passage.frameDuration.value();
    }
    return times;
}

double FlashClip::duration() const {
    return frameTimes().back() + passages.back().frameDuration.value();
}

std::filesystem::path draw(const std::filesystem::path &file, const FlashClip &clip) {
    const std::filesystem::path sound = std::filesystem::path(file).replace_extension("pcm");
    writeFile(sound, clickSamples(clip));
    const std::string flash = "mod(n\\," + std::to_string(period(clip)) + ")-" + std::to_string(period(clip) / 2);
    const std::string filter = "drawbox=color=white:t=fill:enable='not(" + flash + ")',settb=1/" +
                               std::to_string(clip.timeScale) + ",setpts='round((" + timeExpression(clip) + ")/TB)'";
    std::vector<std::string> command{"-f",
                                     "lavfi",
                                     "-i",
                                     "color=black:s=128x64:r=100",
                                     "-f",
                                     "s16le",
                                     "-ar",
                                     std::to_string(soundRate),
                                     "-ac",
                                     "1",
                                     "-itsoffset",
                                     text(clip.soundStart),
                                     "-i",
                                     sound.string(),
                                     "-frames:v",
                                     std::to_string(clip.frameTimes().size()),
                                     "-vf",
                                     filter,
                                     "-fps_mode",
                                     "passthrough",
                                     "-enc_time_base",
                                     "1/" + std::to_string(clip.timeScale),
                                     "-pix_fmt",
                                     "yuv420p",
                                     "-video_track_timescale",
                                     std::to_string(clip.timeScale)};
    command.insert(command.end(), clip.options.begin(), clip.options.end());
    command.push_back(file.string());
    ffmpeg(command);
    return file;
}

Events eventsOf(const std::filesystem::path &movie) {
    Events events;
    const LumaFrames frames = decodeLuma(movie);
    const std::vector<double> times = frameTimesOf(movie);
    EXPECT_EQ(frames.frames.size(), times.size());
    bool bright = false;
    for (std::size_t frame = 0; frame < std::min(times.size(), frames.frames.size()); ++frame) {
        const bool now = frames.mean(frame, 0, 0, frames.width, frames.height) > 120;
        if (now && !bright)
            events.flashes.push_back(times[frame]);
        bright = now;
    }
    events.clicks = clicksOf(movie);
    return events;
}

double farthestApart(const Events &events, std::size_t least) {
    EXPECT_GE(events.flashes.size(), least);
    EXPECT_EQ(events.flashes.size(), events.clicks.size());
    double farthest = 0;
    for (std::size_t index = 0; index < std::min(events.flashes.size(), events.clicks.size()); ++index)
        farthest = std::max(farthest, std::abs(events.flashes[index] - events.clicks[index]));
    return farthest;
}

} // namespace lumetwin::test
