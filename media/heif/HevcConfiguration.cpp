// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HevcConfiguration.h"

#include "media/hevc/SequenceParameterSet.h"

#include <algorithm>
#include <stdexcept>

namespace lumetwin::media::heif {

namespace {

using bmff::FieldWriter;

int typeOf(const Bytes &unit) {
    return unit.size() > hevc::nalHeaderBytes ? hevc::nalType(unit) : -1;
}

void appendArray(FieldWriter &fields, const std::vector<Bytes> &units, int type) {
    constexpr int complete = 0x80; // the picture data contains none of them
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
        if (typeOf(unit) < hevc::NalType::video || typeOf(unit) > hevc::NalType::picture || unit.size() > 0xffff)
            throw std::invalid_argument("a NAL unit is no parameter set");
    for (int type = hevc::NalType::video; type <= hevc::NalType::picture; ++type)
        if (std::ranges::none_of(parameterSets, [&](const Bytes &unit) { return typeOf(unit) == type; }))
            throw std::invalid_argument("a parameter set is missing");
    const auto set = hevc::readSequenceParameterSet(*std::ranges::find(parameterSets, hevc::NalType::sequence, typeOf));
    if (!set)
        throw std::invalid_argument("a sequence parameter set is damaged");
    FieldWriter fields;
    fields.u8(1).append(set->profileTierLevel);
    fields.u16(0xf000).u8(0xfc); // segmentation and parallelism unknown
    fields.u8(static_cast<std::uint64_t>(0xfc | set->chromaFormat));
    fields.u8(static_cast<std::uint64_t>(0xf8 | (set->lumaDepth - 8)));
    fields.u8(static_cast<std::uint64_t>(0xf8 | (set->chromaDepth - 8)));
    fields.u16(0); // frame rate unknown
    constexpr int fourByteLengths = 3;
    fields.u8(static_cast<std::uint64_t>(set->temporalLayers << 3 | (set->temporallyNested ? 4 : 0) | fourByteLengths));
    fields.u8(3);
    for (int type = hevc::NalType::video; type <= hevc::NalType::picture; ++type)
        appendArray(fields, parameterSets, type);
    return fields.bytes();
}

} // namespace lumetwin::media::heif
