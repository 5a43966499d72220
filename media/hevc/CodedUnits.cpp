// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/CodedUnits.h"

#include <algorithm>
#include <array>

namespace lumetwin::media::hevc {

namespace {

constexpr std::size_t mostUnits = 1024;

/// Reads parts of a record. After the first one that is too short, all others are empty.
class Record {
public:
    explicit Record(NalBytes bytes) : left_(bytes) {}

    NalBytes bytes(std::size_t size) {
        if (size > left_.size()) {
            left_ = {};
            return {};
        }
        const NalBytes part = left_.first(size);
        left_ = left_.subspan(size);
        return part;
    }

    std::size_t number(std::size_t size) {
        std::size_t value = 0;
        for (const std::uint8_t byte : bytes(size))
            value = value << 8 | byte;
        return value;
    }

    void units(std::size_t count, std::vector<NalBytes> &units) {
        for (; count > 0 && !left_.empty() && units.size() < mostUnits; --count)
            if (const NalBytes unit = bytes(number(2)); !unit.empty())
                units.push_back(unit);
    }

    NalBytes left() const { return left_; }

private:
    NalBytes left_;
};

/// After version, profile, compatibility and level: the size of lengths, sequence and picture parameter sets.
Configuration avcRecord(NalBytes bytes) {
    Record record(bytes);
    record.bytes(4);
    Configuration configuration;
    configuration.lengthSize = static_cast<int>(record.number(1) & 3) + 1;
    record.units(record.number(1) & 31, configuration.units);
    record.units(record.number(1), configuration.units);
    configuration.rest = record.left();
    return configuration;
}

Configuration hevcRecord(NalBytes bytes) {
    constexpr std::size_t beforeLengthSize = 21;
    Record record(bytes);
    record.bytes(beforeLengthSize);
    Configuration configuration;
    configuration.lengthSize = static_cast<int>(record.number(1) & 3) + 1;
    for (std::size_t arrays = record.number(1); arrays > 0; --arrays) {
        record.bytes(1); // the type, which the units say themselves
        record.units(record.number(2), configuration.units);
    }
    configuration.rest = record.left();
    return configuration;
}

std::vector<NalBytes> byLengths(NalBytes sample, std::size_t lengthSize) {
    std::vector<NalBytes> units;
    Record record(sample);
    while (!record.left().empty() && units.size() < mostUnits)
        if (const NalBytes unit = record.bytes(record.number(lengthSize)); !unit.empty())
            units.push_back(unit);
    return units;
}

std::vector<NalBytes> byStartCodes(NalBytes sample) {
    constexpr std::array<std::uint8_t, 3> startCode{0, 0, 1};
    std::vector<NalBytes> units;
    auto found = std::search(sample.begin(), sample.end(), startCode.begin(), startCode.end());
    while (found != sample.end() && units.size() < mostUnits) {
        const auto begin = found + startCode.size();
        found = std::search(begin, sample.end(), startCode.begin(), startCode.end());
        if (found != begin)
            units.emplace_back(begin, found);
    }
    return units;
}

} // namespace

Configuration readConfiguration(Coding coding, NalBytes bytes) {
    // A record begins with its version; units with start codes begin with zeros.
    if (bytes.empty() || bytes[0] != 1)
        return {0, byStartCodes(bytes), {}};
    return coding == Coding::avc ? avcRecord(bytes) : hevcRecord(bytes);
}

std::vector<NalBytes> unitsOf(NalBytes sample, int lengthSize) {
    return lengthSize > 0 ? byLengths(sample, static_cast<std::size_t>(lengthSize)) : byStartCodes(sample);
}

} // namespace lumetwin::media::hevc
