// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/spatial/SideBySide.h"

#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

namespace lumetwin::test {

namespace {

/// A filter expression for the luma of a drawn frame.
std::string luma(const Clip &clip) {
    const std::string half = std::to_string(clip.width / 2);
    const std::string mark = "lt(mod(X\\," + half + ")\\," + std::to_string(clip.width / 8) + ")*lt(Y\\," +
                             std::to_string(clip.height / 4) + ")";
    return "if(gte(X\\," + std::to_string(clip.width / 2 * 2) + ")\\,235\\,if(" + mark + "\\," +
           std::to_string(markLuma) + "\\,if(lt(X\\," + half + ")\\," + std::to_string(leftLuma) + "\\," +
           std::to_string(rightLuma) + ")))";
}

} // namespace

std::filesystem::path draw(const std::filesystem::path &file, const Clip &clip) {
    // One frame is drawn and repeated.
    std::string graph = "color=c=gray:s=" + std::to_string(clip.width) + "x" + std::to_string(clip.height) +
                        ":r=" + clip.rate + ",format=yuv444p,geq=lum='" + luma(clip) +
                        "':cb=128:cr=128,format=" + clip.format;
    if (!clip.filter.empty())
        graph += "," + clip.filter;
    std::vector<std::string> command{"-f", "lavfi", "-i", graph};
    if (!clip.sound.empty())
        command.insert(command.end(), {"-f", "lavfi", "-i", clip.sound});
    command.insert(command.end(), {"-frames:v", std::to_string(clip.frames)});
    command.insert(command.end(), clip.video.begin(), clip.video.end());
    if (!clip.sound.empty())
        command.insert(command.end(), clip.audio.begin(), clip.audio.end());
    command.push_back(file.string());
    ffmpeg(command);
    return file;
}

Conversion convert(const ConversionSettings &settings, const std::filesystem::path &input,
                   const std::filesystem::path &output, SystemVersion system) {
    Conversion run;
    ConversionControl control;
    control.onFrameProgress = [&](std::int64_t frame, std::int64_t total) { run.progress.emplace_back(frame, total); };
    control.onWarning = [&](const std::string &line) { run.warnings.push_back(line); };
    convertSBSVideoToSpatial(settings, input, output, control, system);
    return run;
}

void expectViews(const std::filesystem::path &movie, int width, int height, int left, int right) {
    for (const auto &[view, expected] : {std::pair{"left", left}, std::pair{"right", right}}) {
        SCOPED_TRACE(movie.filename().string() + ", " + view);
        const LumaFrames decoded = decodeLuma(movie, std::string("0:v:0:vpos:") + view);
        ASSERT_EQ(decoded.width, width);
        ASSERT_EQ(decoded.height, height);
        ASSERT_FALSE(decoded.frames.empty());
        for (std::size_t frame = 0; frame < decoded.frames.size(); ++frame) {
            EXPECT_NEAR(decoded.mean(frame, width / 2, height / 2, width - width / 2, height - height / 2), expected,
                        3);
            EXPECT_NEAR(decoded.mean(frame, 0, 0, std::max(1, width / 8), std::max(1, height / 8)), markLuma, 5);
        }
    }
}

} // namespace lumetwin::test
