// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/SequenceParameterSet.h"

#include "media/hevc/BitReader.h"

namespace lumetwin::media::hevc {

namespace {

// Limits of the standard (7.4.3.2.1).
constexpr int mostSubLayers = 6;
constexpr std::uint32_t largestChromaFormat = 3;
constexpr std::uint32_t largestDepthAbove8 = 8;
constexpr std::uint32_t largestPictureNumberBitsAbove4 = 12;
constexpr std::uint32_t largestCodingBlockAbove3 = 3;
// This number of sub-layers means the shorter form (F.7.4.3.2.1).
constexpr int shorterForm = 7;

void skipSubLayers(BitReader &reader, int count) {
    constexpr int profileBits = 88;
    constexpr int levelBits = 8;
    int bits = 0;
    for (int layer = 0; layer < count; ++layer) {
        bits += reader.bits(1) ? profileBits : 0;
        bits += reader.bits(1) ? levelBits : 0;
    }
    if (count > 0)
        reader.skip(2 * (8 - count));
    reader.skip(bits);
}

void readProfile(BitReader &reader, int subLayers, SequenceParameterSet &set) {
    set.temporalLayers = subLayers + 1;
    set.temporallyNested = reader.bits(1) != 0;
    for (std::uint8_t &byte : set.profileTierLevel)
        byte = static_cast<std::uint8_t>(reader.bits(8));
    skipSubLayers(reader, subLayers);
}

/// Returns false for an invalid value.
bool readFormat(BitReader &reader, SequenceParameterSet &set) {
    const std::uint32_t chromaFormat = reader.number();
    if (chromaFormat == largestChromaFormat)
        reader.skip(1); // separate colour planes
    reader.number();    // width
    reader.number();    // height
    if (reader.bits(1)) // conformance window
        for (int side = 0; side < 4; ++side)
            reader.number();
    const std::uint32_t luma = reader.number();
    const std::uint32_t chroma = reader.number();
    if (chromaFormat > largestChromaFormat || luma > largestDepthAbove8 || chroma > largestDepthAbove8)
        return false;
    set.chromaFormat = static_cast<int>(chromaFormat);
    set.lumaDepth = static_cast<int>(luma) + 8;
    set.chromaDepth = static_cast<int>(chroma) + 8;
    return true;
}

void skipOrdering(BitReader &reader, int subLayers) {
    for (int layer = reader.bits(1) ? 0 : subLayers; layer <= subLayers; ++layer)
        for (int field = 0; field < 3; ++field)
            reader.number();
}

} // namespace

std::optional<SequenceParameterSet> readSequenceParameterSet(NalBytes unit) {
    if (unit.size() <= nalHeaderBytes || nalType(unit) != NalType::sequence)
        return std::nullopt;
    BitReader reader(unit);
    reader.skip(static_cast<int>(nalHeaderBytes) * 8 + 4); // header, video parameter set's id
    SequenceParameterSet set;
    const int subLayers = static_cast<int>(reader.bits(3));
    const bool whole = nalLayer(unit) == 0 || subLayers < shorterForm;
    if (whole && subLayers > mostSubLayers)
        return std::nullopt;
    if (whole)
        readProfile(reader, subLayers, set);
    reader.number(); // id
    if (whole && !readFormat(reader, set))
        return std::nullopt;
    if (!whole && reader.bits(1)) // another format of the video parameter set
        reader.skip(8);
    const bool plausible = reader.number() <= largestPictureNumberBitsAbove4;
    if (whole)
        skipOrdering(reader, subLayers);
    const std::uint32_t block = reader.number();
    if (!plausible || block > largestCodingBlockAbove3 || !reader.good())
        return std::nullopt;
    set.smallestCodingBlock = static_cast<int>(block) + 3;
    return set;
}

} // namespace lumetwin::media::hevc
