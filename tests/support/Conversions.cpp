// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Conversions.h"

#include "engine/texts/Texts.h"
#include "engine/texts/WarningTexts.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin::test {

namespace {

Conversion run(ConversionKind kind, const ConversionSettings &settings, const std::filesystem::path &input,
               const std::filesystem::path &output, SystemVersion system) {
    Conversion run;
    ConversionControl control;
    control.onFrameProgress = [&](std::int64_t frame, std::int64_t total) { run.progress.emplace_back(frame, total); };
    run.outcome = convertFile(kind, settings, input, output, control, system);
    setTextLocale("en");
    for (const Warning &warning : run.outcome.warnings)
        (isNote(warning.kind) ? run.notes : run.warnings).push_back(warningText(warning));
    return run;
}

/// The lower right quarter of an eye is plain, its upper left one holds the mark.
void expectEye(const LumaFrames &frames, std::size_t frame, int x, int width, int luma) {
    const int height = frames.height;
    EXPECT_NEAR(frames.mean(frame, x + width / 2, height / 2, width - width / 2, height - height / 2), luma, 3);
    EXPECT_NEAR(frames.mean(frame, x, 0, std::max(1, width / 8), std::max(1, height / 8)), markLuma, 5);
}

} // namespace

Conversion toSpatial(const ConversionSettings &settings, const std::filesystem::path &input,
                     const std::filesystem::path &output, SystemVersion system) {
    return run(ConversionKind::sbsVideoToSpatial, settings, input, output, system);
}

Conversion toSBS(const ConversionSettings &settings, const std::filesystem::path &input,
                 const std::filesystem::path &output, SystemVersion system) {
    return run(ConversionKind::spatialVideoToSBS, settings, input, output, system);
}

void expectViews(const std::filesystem::path &movie, int width, int height, int left, int right) {
    for (const auto &[view, luma] : {std::pair{"left", left}, std::pair{"right", right}}) {
        SCOPED_TRACE(movie.filename().string() + ", " + view);
        const LumaFrames decoded = decodeLuma(movie, std::string("0:v:0:vpos:") + view);
        ASSERT_EQ(decoded.width, width);
        ASSERT_EQ(decoded.height, height);
        ASSERT_FALSE(decoded.frames.empty());
        for (std::size_t frame = 0; frame < decoded.frames.size(); ++frame)
            expectEye(decoded, frame, 0, width, luma);
    }
}

void expectHalves(const std::filesystem::path &movie, int width, int height, int left, int right) {
    SCOPED_TRACE(movie.filename().string());
    const LumaFrames decoded = decodeLuma(movie);
    ASSERT_EQ(decoded.width, width);
    ASSERT_EQ(decoded.height, height);
    ASSERT_FALSE(decoded.frames.empty());
    for (std::size_t frame = 0; frame < decoded.frames.size(); ++frame) {
        expectEye(decoded, frame, 0, width / 2, left);
        expectEye(decoded, frame, width / 2, width / 2, right);
    }
}

std::array<std::vector<std::uint8_t>, 2> halves(const LumaFrames &frames, std::size_t frame) {
    std::array<std::vector<std::uint8_t>, 2> result;
    const int half = frames.width / 2;
    for (int row = 0; row < frames.height; ++row) {
        const auto begin = frames.frames.at(frame).begin() + static_cast<std::ptrdiff_t>(row) * frames.width;
        result[0].insert(result[0].end(), begin, begin + half);
        result[1].insert(result[1].end(), begin + half, begin + 2 * half);
    }
    return result;
}

} // namespace lumetwin::test
