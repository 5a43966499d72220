// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/FramePacking.h"

#include "media/hevc/BitReader.h"

#include <algorithm>

namespace lumetwin::media::hevc {

namespace {

using Arrangement = StereoPacking::Arrangement;

constexpr std::size_t framePackingPayload = 45;
// A unit of messages is small; a larger one is not searched.
constexpr std::size_t largestUnit = 65'536;

// Types of H.264's NAL units (table 7-1).
constexpr int avcInformation = 6;
constexpr int avcSubsetSequence = 15;
constexpr int avcSliceExtension = 20;
// Profiles of streams of several views (A.2 and H.10.1): Multiview High, Stereo High, MFC High.
constexpr int multiviewHigh = 118;
constexpr int stereoHigh = 128;
constexpr int mfcHigh = 134;

int avcType(NalBytes unit) {
    return unit[0] & 31;
}

bool hasMessages(NalBytes unit, Coding coding) {
    if (coding == Coding::avc)
        return !unit.empty() && avcType(unit) == avcInformation;
    return unit.size() > nalHeaderBytes && nalType(unit) == NalType::prefixInformation;
}

/// A payload's type or size (H.264, 7.3.2.3.1): bytes of 255, and a last one.
std::size_t headNumber(BitReader &reader) {
    std::size_t value = 0;
    std::uint32_t byte = 255;
    while (byte == 255 && reader.good())
        value += byte = reader.bits(8);
    return value;
}

std::optional<Arrangement> arrangementOf(std::uint32_t type, Coding coding) {
    switch (type) {
    case 3:
        return Arrangement::sideBySide;
    case 4:
        return Arrangement::overUnder;
    case 5:
        return Arrangement::alternating;
    case 0: // chequered
    case 1: // in columns
    case 2: // in rows
    case 7: // in tiles
        return coding == Coding::avc ? std::optional(Arrangement::interleaved) : std::nullopt;
    default:
        return std::nullopt;
    }
}

std::optional<FramePacking> readPayload(BitReader &reader, Coding coding) {
    reader.number();    // identifier
    if (reader.bits(1)) // an earlier message ends
        return std::nullopt;
    const std::uint32_t type = reader.bits(7);
    const bool quincunx = reader.bits(1);
    const std::uint32_t interpretation = reader.bits(6);
    const bool mirrored = reader.bits(1);
    reader.skip(2); // which one is mirrored, fields
    const bool beginsWithFirst = reader.bits(1);
    reader.skip(2); // prediction
    if (!quincunx && type != 5)
        reader.skip(16); // places in the grid
    reader.skip(8);
    if (coding == Coding::avc)
        reader.number(); // repetition
    else
        reader.skip(1); // persistence
    FramePacking found;
    const bool last = reader.bits(1);
    const auto arrangement = arrangementOf(type, coding);
    constexpr std::uint32_t rightFirst = 2;
    if (!reader.good() || !arrangement || interpretation > rightFirst)
        return std::nullopt;
    // Nothing here turns a mirrored eye back.
    found.packing.arrangement = mirrored ? Arrangement::interleaved : *arrangement;
    found.packing.rightEyeFirst = interpretation == rightFirst;
    if (*arrangement == Arrangement::alternating && !beginsWithFirst)
        found.packing.rightEyeFirst = !found.packing.rightEyeFirst;
    const bool halves = *arrangement == Arrangement::sideBySide || *arrangement == Arrangement::overUnder;
    found.aspectIsOfWholeEyes = coding == Coding::hevc && last && halves && !mirrored;
    found.packing.isHalf = found.aspectIsOfWholeEyes;
    return found;
}

} // namespace

std::optional<FramePacking> readFramePacking(NalBytes unit, Coding coding) {
    if (!hasMessages(unit, coding) || unit.size() > largestUnit)
        return std::nullopt;
    BitReader reader(unit);
    reader.skip(coding == Coding::avc ? 8 : 16);
    constexpr std::size_t trailing = 8;
    while (reader.good() && reader.size() - reader.position() > 2 * trailing) {
        const std::size_t type = headNumber(reader);
        const std::size_t size = headNumber(reader) * 8;
        if (!reader.good() || size > reader.size() - reader.position())
            return std::nullopt;
        const std::size_t end = reader.position() + size;
        if (type == framePackingPayload) {
            const auto found = readPayload(reader, coding);
            return reader.position() <= end ? found : std::nullopt;
        }
        reader.skip(static_cast<int>(size));
    }
    return std::nullopt;
}

bool isOfSecondView(NalBytes unit) {
    if (unit.size() < 2)
        return false;
    if (avcType(unit) == avcSubsetSequence)
        return unit[1] == multiviewHigh || unit[1] == stereoHigh || unit[1] == mfcHigh;
    return avcType(unit) == avcSliceExtension && (unit[1] & 0x80) == 0; // no scalable extension
}

std::optional<FramePacking> packingOfStream(Coding coding, NalBytes configuration, NalBytes firstSample) {
    Configuration known = readConfiguration(coding, configuration);
    std::vector<NalBytes> units = unitsOf(firstSample, known.lengthSize);
    units.insert(units.end(), known.units.begin(), known.units.end());
    if (coding == Coding::avc && std::ranges::any_of(units, isOfSecondView))
        return FramePacking{{Arrangement::secondUnread, false, false}, false};
    for (const NalBytes unit : units)
        if (const auto found = readFramePacking(unit, coding))
            return found;
    return std::nullopt;
}

} // namespace lumetwin::media::hevc
