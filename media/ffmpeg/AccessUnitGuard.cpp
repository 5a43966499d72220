// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/AccessUnitGuard.h"

#include "media/bmff/BigEndian.h"

#include "media/hevc/NalUnits.h"
#include "media/hevc/SequenceParameterSet.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace lumetwin::media::ffmpeg {

namespace {

using Bytes = hevc::NalBytes;
namespace NalType = hevc::NalType;

// Positions in the configuration record: of the arrays of NAL units, and of the byte with the size of lengths.
constexpr std::size_t beforeArrays = 22;
constexpr std::size_t lengthSizeByte = 21;
constexpr std::size_t smallestUnit = hevc::nalHeaderBytes + 1;

bool isReservedSlice(int type) {
    return (type >= 10 && type <= 15) || (type >= 22 && type <= NalType::lastPicture);
}

/// Whether the value is the first one, or equal to the first one.
bool isTheOnly(int value, std::optional<int> &first) {
    if (!first)
        first = value;
    return *first == value;
}

std::size_t number(Bytes bytes, std::size_t at, int size) {
    return static_cast<std::size_t>(bmff::bigEndian(bytes.subspan(at, static_cast<std::size_t>(size))));
}

} // namespace

AccessUnitGuard::AccessUnitGuard(Bytes configuration) {
    configure(configuration);
}

void AccessUnitGuard::configure(Bytes configuration) {
    // A record begins with its version; NAL units with start codes begin with zeros.
    if (configuration.size() > beforeArrays && configuration[0] == 1) {
        readRecord(configuration);
        return;
    }
    for (const Unit &unit : splitByStartCodes(configuration))
        consistent_ = isConsistent(configuration.subspan(unit.header, unit.end - unit.header)) && consistent_;
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
            if (size >= smallestUnit)
                consistent_ = isConsistent(unit) && consistent_;
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
        if (!isAccepted(sample.subspan(unit.header, unit.end - unit.header)))
            continue;
        const std::size_t length = unit.end - unit.begin;
        if (size != unit.begin)
            std::memmove(sample.data() + size, sample.data() + unit.begin, length);
        size += length;
    }
    return size;
}

bool AccessUnitGuard::isAccepted(Bytes unit) {
    const int type = hevc::nalType(unit);
    const int layer = hevc::nalLayer(unit);
    if (type <= NalType::lastPicture) {
        const bool taken = isAcceptedSlice(unit, type, layer);
        damaged_ = damaged_ || (!taken && layer <= 1);
        return taken;
    }
    if (type >= NalType::video && type <= NalType::picture) {
        const bool taken = isAcceptedParameterSet(unit, layer);
        damaged_ = damaged_ || (!taken && layer <= 1);
        return taken;
    }
    if (type == NalType::endOfSequence || type == NalType::endOfBitstream)
        return true;
    // SEI messages after the pictures are checksums, which are not needed.
    return (type == NalType::prefixInformation || type == NalType::delimiter) && stage_ != Stage::second;
}

bool AccessUnitGuard::isAcceptedSlice(Bytes unit, int type, int layer) {
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

bool AccessUnitGuard::isAcceptedParameterSet(Bytes unit, int layer) {
    if (layer > 1 || stage_ == Stage::second || (stage_ == Stage::base && layer == 0))
        return false;
    return isConsistent(unit);
}

bool AccessUnitGuard::isConsistent(Bytes unit) {
    if (hevc::nalType(unit) == NalType::video)
        return isTheOnly(unit[2] >> 4, videoParameterSet_); // vps_video_parameter_set_id
    if (hevc::nalType(unit) != NalType::sequence)
        return true;
    const auto set = hevc::readSequenceParameterSet(unit);
    return set && isTheOnly(set->smallestCodingBlock, smallestCodingBlock_);
}

} // namespace lumetwin::media::ffmpeg
