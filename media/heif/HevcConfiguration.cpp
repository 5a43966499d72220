// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifWriter.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace lumetwin::media::heif {

namespace {

constexpr int videoParameterSet = 32;
constexpr int sequenceParameterSet = 33;
constexpr int pictureParameterSet = 34;

int typeOf(const Bytes &unit) {
    return unit.size() > 2 ? unit[0] >> 1 & 63 : -1;
}

/// Reads a NAL unit's payload (ITU-T H.265, 7.3.1.1): the emulation prevention bytes are taken out.
class Bits {
public:
    explicit Bits(const Bytes &unit) {
        int zeros = 0;
        for (const std::uint8_t byte : unit) {
            if (zeros >= 2 && byte == 3) {
                zeros = 0;
                continue;
            }
            zeros = byte == 0 ? zeros + 1 : 0;
            bytes_.push_back(byte);
        }
    }

    std::uint64_t read(int count) {
        std::uint64_t value = 0;
        for (; count > 0; --count, ++position_) {
            if (position_ / 8 >= bytes_.size())
                throw std::invalid_argument("a parameter set ends early");
            value = value << 1 | (bytes_[position_ / 8] >> (7 - position_ % 8) & 1);
        }
        return value;
    }

    /// ue(v), 9.2
    std::uint64_t exponentialGolomb() {
        int zeros = 0;
        while (read(1) == 0)
            if (++zeros > 32)
                throw std::invalid_argument("a parameter set is damaged");
        return (std::uint64_t{1} << zeros) - 1 + read(zeros);
    }

private:
    Bytes bytes_;
    std::size_t position_ = 0;
};

/// What the configuration repeats of a sequence parameter set (ITU-T H.265, 7.3.2.2.1).
struct SequenceFacts {
    Bytes profileTierLevel; ///< the 12 bytes of the general one
    int temporalLayers = 1;
    bool temporallyNested = false;
    int chromaFormat = 0;
    int lumaDepthMinus8 = 0;
    int chromaDepthMinus8 = 0;
};

void skipSubLayers(Bits &bits, int count) {
    int profiles = 0;
    int levels = 0;
    for (int layer = 0; layer < count; ++layer) {
        profiles += static_cast<int>(bits.read(1));
        levels += static_cast<int>(bits.read(1));
    }
    if (count > 0)
        bits.read(2 * (8 - count));
    for (; profiles > 0; --profiles)
        for (int part = 0; part < 11; ++part)
            bits.read(8);
    for (; levels > 0; --levels)
        bits.read(8);
}

SequenceFacts factsOf(const Bytes &sequence) {
    Bits bits(sequence);
    SequenceFacts facts;
    bits.read(16 + 4); // NAL unit header, video parameter set's id
    const int subLayers = static_cast<int>(bits.read(3));
    facts.temporalLayers = subLayers + 1;
    facts.temporallyNested = bits.read(1) != 0;
    for (int index = 0; index < 12; ++index)
        facts.profileTierLevel.push_back(static_cast<std::uint8_t>(bits.read(8)));
    skipSubLayers(bits, subLayers);
    bits.exponentialGolomb(); // id
    facts.chromaFormat = static_cast<int>(bits.exponentialGolomb());
    if (facts.chromaFormat == 3)
        bits.read(1);
    bits.exponentialGolomb(); // width
    bits.exponentialGolomb(); // height
    if (bits.read(1) != 0)    // conformance window
        for (int side = 0; side < 4; ++side)
            bits.exponentialGolomb();
    facts.lumaDepthMinus8 = static_cast<int>(bits.exponentialGolomb());
    facts.chromaDepthMinus8 = static_cast<int>(bits.exponentialGolomb());
    if (facts.chromaFormat > 3 || facts.lumaDepthMinus8 > 8 || facts.chromaDepthMinus8 > 8)
        throw std::invalid_argument("a sequence parameter set is damaged");
    return facts;
}

void appendArray(FieldWriter &fields, const std::vector<Bytes> &units, int type) {
    constexpr int complete = 0x80; // none of them is with the picture
    fields.u8(static_cast<std::uint64_t>(complete | type));
    fields.u16(static_cast<std::uint64_t>(
        std::ranges::count_if(units, [&](const Bytes &unit) { return typeOf(unit) == type; })));
    for (const Bytes &unit : units)
        if (typeOf(unit) == type)
            fields.u16(unit.size()).append(unit);
}

} // namespace

Bytes hevcConfiguration(const std::vector<Bytes> &parameterSets) {
    for (const Bytes &unit : parameterSets)
        if (typeOf(unit) < videoParameterSet || typeOf(unit) > pictureParameterSet || unit.size() > 0xffff)
            throw std::invalid_argument("a NAL unit is no parameter set");
    for (int type = videoParameterSet; type <= pictureParameterSet; ++type)
        if (std::ranges::none_of(parameterSets, [&](const Bytes &unit) { return typeOf(unit) == type; }))
            throw std::invalid_argument("a parameter set is missing");
    const SequenceFacts facts = factsOf(*std::ranges::find(parameterSets, sequenceParameterSet, typeOf));
    FieldWriter fields;
    fields.u8(1).append(facts.profileTierLevel);
    fields.u16(0xf000).u8(0xfc); // segmentation and parallelism unknown
    fields.u8(static_cast<std::uint64_t>(0xfc | facts.chromaFormat));
    fields.u8(static_cast<std::uint64_t>(0xf8 | facts.lumaDepthMinus8));
    fields.u8(static_cast<std::uint64_t>(0xf8 | facts.chromaDepthMinus8));
    fields.u16(0); // frame rate unknown
    constexpr int fourByteLengths = 3;
    fields.u8(
        static_cast<std::uint64_t>(facts.temporalLayers << 3 | (facts.temporallyNested ? 4 : 0) | fourByteLengths));
    fields.u8(3);
    for (int type = videoParameterSet; type <= pictureParameterSet; ++type)
        appendArray(fields, parameterSets, type);
    return fields.bytes();
}

} // namespace lumetwin::media::heif
