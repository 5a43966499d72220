// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/CodingLevel.h"

#include <algorithm>
#include <array>
#include <limits>

namespace lumetwin::media::x265 {

namespace {

struct Limits {
    int number;
    double lumaSamples;
    double lumaSamplesPerSecond;
    std::int64_t bitRate; // bits per second, Main tier
};

constexpr std::array<Limits, 13> limits{{
    {10, 36864, 552960, 128'000},
    {20, 122880, 3686400, 1'500'000},
    {21, 245760, 7372800, 3'000'000},
    {30, 552960, 16588800, 6'000'000},
    {31, 983040, 33177600, 10'000'000},
    {40, 2228224, 66846720, 12'000'000},
    {41, 2228224, 133693440, 20'000'000},
    {50, 8912896, 267386880, 25'000'000},
    {51, 8912896, 534773760, 40'000'000},
    {52, 8912896, 1069547520, 60'000'000},
    {60, 35651584, 1069547520, 60'000'000},
    {61, 35651584, 2139095040, 120'000'000},
    {62, 35651584, 4278190080, 240'000'000},
}};

} // namespace

CodingLevel codingLevel(int width, int height, double frameRate, std::int64_t bitRate) {
    const double samples = static_cast<double>(width) * height;
    const double longerSide = std::max(width, height);
    for (const Limits &level : limits)
        if (samples <= level.lumaSamples && samples * frameRate <= level.lumaSamplesPerSecond &&
            longerSide * longerSide <= 8 * level.lumaSamples && bitRate <= level.bitRate)
            return {level.number, level.bitRate};
    return {85, std::numeric_limits<std::int32_t>::max()};
}

} // namespace lumetwin::media::x265
