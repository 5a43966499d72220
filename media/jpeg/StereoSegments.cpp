// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/StereoSegments.h"

#include "media/bmff/BigEndian.h"
#include "media/metadata/TagDirectory.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace lumetwin::media::images {

namespace {

using namespace std::string_view_literals;
using Arrangement = StereoPacking::Arrangement;
using Bytes = std::span<const std::uint8_t>;

constexpr std::string_view jpsMark = "_JPSJPS_";
constexpr std::string_view stimMark = "Stim\0\0"sv;

constexpr std::size_t descriptorSize = 4;
constexpr std::uint8_t halfHeight = 1;
constexpr std::uint8_t halfWidth = 2;
constexpr std::uint8_t leftEyeFirst = 4;
constexpr std::uint8_t interleaved = 1;
constexpr std::uint8_t sideBySide = 2;
constexpr std::uint8_t overUnder = 3;
constexpr std::uint8_t stereo = 1;

// Fields of Stim.
constexpr std::uint16_t arrangementField = 2;     // 0 parallel, 1 crossed
constexpr std::uint16_t cameraIntervalField = 18; // millimetres

bool beginsWith(Bytes content, std::string_view mark) {
    return content.size() >= mark.size() && std::equal(mark.begin(), mark.end(), content.begin());
}

} // namespace

std::optional<StereoPacking> jpsPacking(Bytes content) {
    if (!beginsWith(content, jpsMark) || content.size() < jpsMark.size() + 2 + descriptorSize)
        return std::nullopt;
    const Bytes block = content.subspan(jpsMark.size());
    const Bytes descriptor = block.subspan(2, descriptorSize);
    if (bmff::bigEndian(block.first(2)) < descriptorSize || descriptor[3] != stereo)
        return std::nullopt;
    const std::uint8_t flags = descriptor[1];
    const bool rightEyeFirst = (flags & leftEyeFirst) == 0;
    switch (descriptor[2]) {
    case interleaved:
        return StereoPacking{Arrangement::interleaved, rightEyeFirst, false};
    case sideBySide:
        return StereoPacking{Arrangement::sideBySide, rightEyeFirst, (flags & halfWidth) != 0};
    case overUnder:
        return StereoPacking{Arrangement::overUnder, rightEyeFirst, (flags & halfHeight) != 0};
    default:
        return std::nullopt;
    }
}

std::vector<std::uint8_t> jpsContent(const StereoPacking &packing) {
    const bool above = packing.arrangement == Arrangement::overUnder;
    if (!above && packing.arrangement != Arrangement::sideBySide)
        throw std::invalid_argument("a JPS block for eyes that share rows and columns");
    const int half = packing.isHalf ? (above ? halfHeight : halfWidth) : 0;
    const int flags = half | (packing.rightEyeFirst ? 0 : leftEyeFirst);
    const std::array<std::uint8_t, 8> block{
        0, descriptorSize, 0, static_cast<std::uint8_t>(flags), above ? overUnder : sideBySide, stereo, 0, 0};
    std::vector<std::uint8_t> content(jpsMark.size() + block.size());
    std::ranges::copy(block, std::ranges::copy(jpsMark, content.begin()).out);
    return content;
}

StimFacts stimFacts(Bytes content) {
    StimFacts facts;
    if (!beginsWith(content, stimMark))
        return facts;
    const auto directory = TagDirectory::first(content.subspan(stimMark.size()));
    if (!directory)
        return facts;
    const auto arrangement = directory->whole(arrangementField);
    if (arrangement && *arrangement <= 1)
        facts.packing = StereoPacking{Arrangement::sideBySide, *arrangement == 1, false};
    const auto interval = directory->number(cameraIntervalField);
    if (interval && *interval > 0)
        facts.baseline = *interval / 1000;
    return facts;
}

} // namespace lumetwin::media::images
