// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/AccessUnitGuard.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace lumetwin::media::ffmpeg {

namespace {

using Bytes = std::span<const std::uint8_t>;

// Types of NAL units (ITU-T H.265, table 7-1).
constexpr int lastSlice = 31;
constexpr int videoParameterSet = 32;
constexpr int pictureParameterSet = 34;
constexpr int delimiter = 35;
constexpr int endOfSequence = 36;
constexpr int endOfBitstream = 37;
constexpr int prefixMessage = 39;

// Of the configuration record: bytes before the arrays of NAL units, and the byte that tells the size of lengths.
constexpr std::size_t beforeArrays = 22;
constexpr std::size_t lengthSizeByte = 21;
// A header of two bytes and something behind it.
constexpr std::size_t smallestUnit = 3;

int typeOf(Bytes unit) {
    return unit[0] >> 1 & 0x3F;
}

int layerOf(Bytes unit) {
    return (unit[0] & 1) << 5 | unit[1] >> 3;
}

bool isReservedSlice(int type) {
    return (type >= 10 && type <= 15) || (type >= 22 && type <= lastSlice);
}

std::size_t number(Bytes bytes, std::size_t at, int size) {
    std::size_t value = 0;
    for (int index = 0; index < size; ++index)
        value = value << 8 | bytes[at + static_cast<std::size_t>(index)];
    return value;
}

} // namespace

AccessUnitGuard::AccessUnitGuard(Bytes configuration) {
    // A record begins with its version, NAL units behind start codes begin with zeros.
    if (configuration.size() > beforeArrays && configuration[0] == 1) {
        readRecord(configuration);
        return;
    }
    for (const Unit &unit : splitByStartCodes(configuration))
        if (typeOf(configuration.subspan(unit.header)) == videoParameterSet)
            consistent_ = knows(configuration.subspan(unit.header, unit.end - unit.header)) && consistent_;
}

void AccessUnitGuard::readRecord(Bytes record) {
    lengthSize_ = (record[lengthSizeByte] & 3) + 1;
    std::size_t at = beforeArrays + 1;
    for (int arrays = record[beforeArrays]; arrays > 0 && at + 3 <= record.size(); --arrays) {
        std::size_t units = number(record, at + 1, 2);
        for (at += 3; units > 0 && at + 2 <= record.size(); --units) {
            const std::size_t size = number(record, at, 2);
            at += 2;
            if (size > record.size() - at)
                return;
            const Bytes unit = record.subspan(at, size);
            if (size >= smallestUnit && typeOf(unit) == videoParameterSet)
                consistent_ = knows(unit) && consistent_;
            at += size;
        }
    }
}

std::vector<AccessUnitGuard::Unit> AccessUnitGuard::splitByLengths(Bytes sample) {
    std::vector<Unit> units;
    const auto lengthSize = static_cast<std::size_t>(lengthSize_);
    std::size_t at = 0;
    while (sample.size() - at >= lengthSize) {
        const std::size_t size = number(sample, at, lengthSize_);
        const std::size_t header = at + lengthSize;
        if (size > sample.size() - header)
            break;
        if (size >= smallestUnit)
            units.push_back({at, header, header + size});
        at = header + size;
    }
    damaged_ = damaged_ || at != sample.size();
    return units;
}

std::vector<AccessUnitGuard::Unit> AccessUnitGuard::splitByStartCodes(Bytes sample) {
    constexpr std::array<std::uint8_t, 3> startCode{0, 0, 1};
    std::vector<Unit> units;
    auto found = std::search(sample.begin(), sample.end(), startCode.begin(), startCode.end());
    while (found != sample.end()) {
        const auto header = found + startCode.size();
        const auto next = std::search(header, sample.end(), startCode.begin(), startCode.end());
        if (next - header >= static_cast<std::ptrdiff_t>(smallestUnit))
            units.push_back({static_cast<std::size_t>(found - sample.begin()),
                             static_cast<std::size_t>(header - sample.begin()),
                             static_cast<std::size_t>(next - sample.begin())});
        found = next;
    }
    return units;
}

std::vector<AccessUnitGuard::Unit> AccessUnitGuard::split(Bytes sample) {
    return lengthSize_ > 0 ? splitByLengths(sample) : splitByStartCodes(sample);
}

std::size_t AccessUnitGuard::keep(std::span<std::uint8_t> sample) {
    stage_ = Stage::before;
    std::size_t size = 0;
    for (const Unit &unit : split(sample)) {
        if (!takes(sample.subspan(unit.header, unit.end - unit.header)))
            continue;
        const std::size_t length = unit.end - unit.begin;
        if (size != unit.begin)
            std::memmove(sample.data() + size, sample.data() + unit.begin, length);
        size += length;
    }
    return size;
}

bool AccessUnitGuard::takes(Bytes unit) {
    const int type = typeOf(unit);
    const int layer = layerOf(unit);
    if (type <= lastSlice) {
        const bool taken = takesSlice(unit, type, layer);
        damaged_ = damaged_ || (!taken && layer <= 1);
        return taken;
    }
    if (type >= videoParameterSet && type <= pictureParameterSet) {
        const bool taken = takesParameterSet(unit, type, layer);
        damaged_ = damaged_ || (!taken && layer <= 1);
        return taken;
    }
    if (type == endOfSequence || type == endOfBitstream)
        return true;
    // Messages behind the pictures are checksums; nobody needs them.
    return (type == prefixMessage || type == delimiter) && stage_ != Stage::second;
}

bool AccessUnitGuard::takesSlice(Bytes unit, int type, int layer) {
    const bool first = (unit[2] & 0x80) != 0; // first_slice_segment_in_pic_flag
    if (isReservedSlice(type) || layer > 1)
        return false;
    if (layer == 0) {
        if (first != (stage_ == Stage::before) || stage_ == Stage::second || (!first && type != baseType_))
            return false;
        stage_ = Stage::base;
        baseType_ = type;
        return true;
    }
    if (stage_ != (first ? Stage::base : Stage::second))
        return false;
    stage_ = Stage::second;
    return true;
}

bool AccessUnitGuard::takesParameterSet(Bytes unit, int type, int layer) {
    if (layer > 1 || stage_ == Stage::second || (stage_ == Stage::base && layer == 0))
        return false;
    return type != videoParameterSet || knows(unit);
}

bool AccessUnitGuard::knows(Bytes unit) {
    const int id = unit[2] >> 4; // vps_video_parameter_set_id
    if (!videoParameterSet_)
        videoParameterSet_ = id;
    return *videoParameterSet_ == id;
}

} // namespace lumetwin::media::ffmpeg
