// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/ConformanceWindow.h"

#include "media/hevc/BitReader.h"
#include "media/hevc/BitWriter.h"

#include <algorithm>

namespace lumetwin::media::x265 {

namespace {

constexpr int headerBits = 16;
constexpr int profileBits = 88; // general profile, tier and constraints, without the level
constexpr int levelBits = 8;

/// The position of the conformance window's flag, and the coded size.
struct WindowPlace {
    std::size_t position;
    std::uint32_t width;
    std::uint32_t height;
};

std::optional<WindowPlace> windowOfSequence(hevc::BitReader &reader) {
    reader.skip(headerBits + 4);
    if (!reader.expect(3, 0))
        return std::nullopt;
    reader.skip(1 + profileBits + levelBits);
    reader.number();
    if (!reader.expectNumber(1))
        return std::nullopt;
    const std::uint32_t width = reader.number();
    const std::uint32_t height = reader.number();
    return WindowPlace{reader.position(), width, height};
}

/// The base part of a video parameter set of two layers in one layer set, up to its extension.
bool skipToExtension(hevc::BitReader &reader) {
    reader.skip(headerBits + 4 + 1 + 1);
    const bool twoLayers = reader.expect(6, 1) && reader.expect(3, 0);
    reader.skip(1 + 16 + profileBits + levelBits + 1);
    for (int field = 0; field < 3; ++field)
        reader.number();
    const bool oneSet = reader.expect(6, 1) && reader.expectNumber(1) && reader.expect(2, 3);
    const bool extended = reader.expect(1, 0) && reader.expect(1, 1);
    reader.align();
    return twoLayers && oneSet && extended;
}

/// The extension's scalability part: one type, multiview.
bool skipScalability(hevc::BitReader &reader) {
    reader.skip(levelBits);
    if (!reader.expect(1, 0) || !reader.expect(16, 0x4000))
        return false;
    const int dimensionBits = static_cast<int>(reader.bits(3)) + 1;
    if (reader.bits(1))
        reader.skip(6);
    reader.skip(dimensionBits);
    const int viewBits = static_cast<int>(reader.bits(4));
    reader.skip(2 * viewBits);
    return reader.expect(1, 1); // layer 1 depends on layer 0
}

std::optional<WindowPlace> windowOfVideo(hevc::BitReader &reader) {
    if (!skipToExtension(reader) || !skipScalability(reader) || !reader.expect(2, 0))
        return std::nullopt;
    reader.skip(1);
    if (!reader.expectNumber(2) || !reader.expect(1, 1))
        return std::nullopt;
    reader.skip(profileBits + levelBits);
    if (!reader.expectNumber(0) || !reader.expect(2, 0))
        return std::nullopt;
    reader.skip(2 * 2);
    if (!reader.expectNumber(0))
        return std::nullopt;
    const std::uint32_t width = reader.bits(16);
    const std::uint32_t height = reader.bits(16);
    if (!reader.expect(1, 1) || !reader.expect(2, 1))
        return std::nullopt;
    reader.skip(4 + 4);
    return WindowPlace{reader.position(), width, height};
}

} // namespace

std::optional<std::vector<std::uint8_t>> withConformanceWindow(hevc::NalBytes unit, int width, int height) {
    if (unit.size() <= hevc::nalHeaderBytes)
        return std::nullopt;
    hevc::BitReader reader(unit);
    const auto place = hevc::nalType(unit) == hevc::NalType::video ? windowOfVideo(reader) : windowOfSequence(reader);
    const auto shownWidth = static_cast<std::uint32_t>(width);
    const auto shownHeight = static_cast<std::uint32_t>(height);
    if (!place || !reader.good() || place->width < shownWidth || place->height < shownHeight)
        return std::nullopt;
    if (reader.bits(1))
        for (int side = 0; side < 4; ++side)
            reader.number();
    hevc::BitWriter writer;
    hevc::BitReader start(unit);
    while (start.position() < place->position)
        writer.bit(start.bits(1));
    writer.bit(1);
    for (const std::uint32_t offset : {0u, (place->width - shownWidth) / 2, 0u, (place->height - shownHeight) / 2})
        writer.number(offset);
    // Copy the rest up to the stop bit, which is the last bit that is set.
    std::size_t pending = 0; // zeros that may be after the stop bit
    while (reader.position() < reader.size()) {
        if (!reader.bits(1)) {
            ++pending;
            continue;
        }
        for (; pending > 0; --pending)
            writer.bit(0);
        writer.bit(1);
    }
    if (!reader.good())
        return std::nullopt;
    return hevc::withEmulationPrevention(writer.take());
}

} // namespace lumetwin::media::x265
