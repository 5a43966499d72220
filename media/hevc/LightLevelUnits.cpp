// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/LightLevelUnits.h"

#include "media/hevc/BitWriter.h"
#include "media/hevc/NalUnits.h"

namespace lumetwin::media::hevc {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes information(std::uint8_t payloadType, const Bytes &content) {
    constexpr std::uint8_t trailing = 0x80;
    Bytes unit{NalType::prefixInformation << 1, 1, payloadType, static_cast<std::uint8_t>(content.size())};
    unit.insert(unit.end(), content.begin(), content.end());
    unit.push_back(trailing);
    return withEmulationPrevention(unit);
}

Bytes masteringUnit(const MasteringDisplay &display) {
    constexpr std::uint8_t payloadType = 137;
    BitWriter writer;
    for (const MasteringDisplay::Point &point : {display.green, display.blue, display.red, display.white}) {
        writer.bits(16, point.x);
        writer.bits(16, point.y);
    }
    writer.bits(32, display.highest);
    writer.bits(32, display.lowest);
    return information(payloadType, writer.take());
}

Bytes contentUnit(const ContentLight &light) {
    constexpr std::uint8_t payloadType = 144;
    BitWriter writer;
    writer.bits(16, light.highest);
    writer.bits(16, light.average);
    return information(payloadType, writer.take());
}

} // namespace

std::vector<Bytes> lightLevelUnits(const LightLevels &levels) {
    std::vector<Bytes> units;
    if (levels.mastering)
        units.push_back(masteringUnit(*levels.mastering));
    if (levels.content)
        units.push_back(contentUnit(*levels.content));
    return units;
}

} // namespace lumetwin::media::hevc
