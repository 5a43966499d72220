// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/SpatialMovie.h"

#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>
#include <string_view>

namespace lumetwin::test {

namespace {

constexpr std::array<std::string_view, 14> containers{"moov", "trak", "mdia", "minf", "stbl", "edts", "dinf",
                                                      "vexu", "eyes", "cams", "cmfy", "proj", "tapt", "mvex"};
constexpr std::size_t visualEntryFields = 78;

void require(bool condition, const std::string &what) {
    if (!condition)
        throw std::runtime_error("malformed movie: " + what);
}

std::uint64_t number(const BoxFile::Bytes &bytes, std::size_t at, int size) {
    require(at + static_cast<std::size_t>(size) <= bytes.size(), "a field beyond its box");
    std::uint64_t value = 0;
    for (int index = 0; index < size; ++index)
        value = value << 8 | bytes[at + static_cast<std::size_t>(index)];
    return value;
}

} // namespace

std::uint32_t number32(const BoxFile::Bytes &bytes, std::size_t at) {
    return static_cast<std::uint32_t>(number(bytes, at, 4));
}

BoxFile::BoxFile(const std::filesystem::path &file) : bytes_(readFile(file)) {
    walk("", 0, bytes_.size());
}

void BoxFile::walk(const std::string &path, std::size_t begin, std::size_t end) {
    while (begin + 8 <= end) {
        std::uint64_t size = number32(bytes_, begin);
        const std::string type(bytes_.begin() + static_cast<std::ptrdiff_t>(begin + 4),
                               bytes_.begin() + static_cast<std::ptrdiff_t>(begin + 8));
        std::size_t header = 8;
        if (size == 1) {
            size = number(bytes_, begin + 8, 8);
            header = 16;
        }
        require(size >= header && size <= end - begin, "box " + path + "/" + type);
        const std::string name = path.empty() ? type : path + "/" + type;
        children_[path].push_back(type);
        places_.emplace(name, Place{begin + header, begin + size});
        if (std::find(containers.begin(), containers.end(), type) != containers.end())
            walk(name, begin + header, begin + size);
        else if (type == "stsd")
            walk(name, begin + header + 8, begin + size);
        else if (type == "hvc1")
            walk(name, begin + header + visualEntryFields, begin + size);
        begin += size;
    }
    // QuickTime ends some lists with four zero bytes.
    require(begin == end || (end - begin == 4 && number32(bytes_, begin) == 0), "bytes after the last box of " + path);
}

BoxFile::Bytes BoxFile::payload(const std::string &path) const {
    const auto found = places_.find(path);
    if (found == places_.end())
        return {};
    return {bytes_.begin() + static_cast<std::ptrdiff_t>(found->second.begin),
            bytes_.begin() + static_cast<std::ptrdiff_t>(found->second.end)};
}

std::vector<std::string> BoxFile::children(const std::string &path) const {
    const auto found = children_.find(path);
    return found == children_.end() ? std::vector<std::string>() : found->second;
}

namespace {

NalUnit nalUnit(const BoxFile::Bytes &bytes, std::size_t at, std::size_t size) {
    require(size >= 2 && at + size <= bytes.size(), "a NAL unit beyond its sample");
    NalUnit unit;
    unit.type = bytes[at] >> 1 & 0x3F;
    unit.layer = (bytes[at] & 1) << 5 | bytes[at + 1] >> 3;
    unit.place = at;
    unit.bytes.assign(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                      bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
    return unit;
}

/// One entry a sample of a run-length table: count, then `width` bytes a value.
std::vector<std::int64_t> runs(const BoxFile::Bytes &table) {
    std::vector<std::int64_t> values;
    for (std::uint32_t entry = 0; entry < number32(table, 4); ++entry)
        values.insert(values.end(), number32(table, 8 + entry * 8),
                      static_cast<std::int32_t>(number32(table, 12 + entry * 8)));
    return values;
}

/// Sizes of the samples, and the offset of each.
struct Extent {
    std::size_t offset;
    std::size_t size;
};

std::vector<Extent> extents(const BoxFile &movie, const std::string &table) {
    const BoxFile::Bytes sizes = movie.payload(table + "/stsz");
    const BoxFile::Bytes chunks = movie.payload(table + "/stsc");
    const bool large = movie.has(table + "/co64");
    const BoxFile::Bytes offsets = movie.payload(table + (large ? "/co64" : "/stco"));
    std::vector<Extent> samples;
    std::uint32_t run = 0;
    for (std::uint32_t chunk = 0; chunk < number32(offsets, 4); ++chunk) {
        if (run + 1 < number32(chunks, 4) && number32(chunks, 8 + (run + 1) * 12) == chunk + 1)
            ++run;
        std::size_t at = number(offsets, 8 + chunk * (large ? 8 : 4), large ? 8 : 4);
        for (std::uint32_t index = 0; index < number32(chunks, 12 + run * 12); ++index) {
            const std::uint32_t fixed = number32(sizes, 4);
            const std::size_t size = fixed ? fixed : number32(sizes, 12 + samples.size() * 4);
            samples.push_back({at, size});
            at += size;
        }
    }
    require(samples.size() == number32(sizes, 8), "sample count");
    return samples;
}

std::int64_t startOfEdit(const BoxFile &movie) {
    const BoxFile::Bytes edits = movie.payload("moov/trak/edts/elst");
    if (edits.empty())
        return 0;
    require(edits[0] == 0 && number32(edits, 4) == 1, "one edit");
    return static_cast<std::int32_t>(number32(edits, 12));
}

std::vector<NalUnit> unitsOf(const BoxFile::Bytes &bytes, const Extent &extent) {
    std::vector<NalUnit> units;
    require(extent.offset + extent.size <= bytes.size(), "a sample beyond the file");
    for (std::size_t at = extent.offset; at < extent.offset + extent.size;) {
        const std::size_t size = number32(bytes, at);
        require(at + 4 + size <= extent.offset + extent.size, "a NAL unit beyond its sample");
        units.push_back(nalUnit(bytes, at + 4, size));
        at += 4 + size;
    }
    return units;
}

} // namespace

Configuration configuration(const BoxFile::Bytes &record, std::size_t fieldsBeforeArrays) {
    Configuration result;
    std::size_t at = fieldsBeforeArrays;
    for (int arrays = static_cast<int>(number(record, at++, 1)); arrays > 0; --arrays) {
        result.complete = result.complete && record.at(at) & 0x80;
        int units = static_cast<int>(number(record, at + 1, 2));
        for (at += 3; units > 0; --units) {
            const std::size_t size = number(record, at, 2);
            result.units.push_back(nalUnit(record, at + 2, size));
            at += 2 + size;
        }
    }
    require(at == record.size(), "a configuration record");
    return result;
}

std::vector<MovieSample> videoSamples(const BoxFile &movie) {
    const std::string table = "moov/trak/mdia/minf/stbl";
    require(movie.has("moov/trak/mdia/minf/vmhd"), "the first track is no video");
    const std::vector<Extent> places = extents(movie, table);
    const std::vector<std::int64_t> durations = runs(movie.payload(table + "/stts"));
    std::vector<std::int64_t> offsets(places.size(), 0);
    if (movie.has(table + "/ctts"))
        offsets = runs(movie.payload(table + "/ctts"));
    require(durations.size() == places.size() && offsets.size() == places.size(), "time tables");
    std::set<std::size_t> sync;
    const BoxFile::Bytes syncTable = movie.payload(table + "/stss");
    for (std::uint32_t entry = 0; !syncTable.empty() && entry < number32(syncTable, 4); ++entry)
        sync.insert(number32(syncTable, 8 + entry * 4) - 1);
    std::vector<MovieSample> samples;
    std::int64_t time = 0;
    for (std::size_t index = 0; index < places.size(); ++index) {
        samples.push_back({time, time + offsets[index] - startOfEdit(movie),
                           syncTable.empty() || sync.count(index) != 0, unitsOf(movie.bytes(), places[index])});
        time += durations[index];
    }
    return samples;
}

int informationType(const NalUnit &unit) {
    int type = 0;
    std::size_t at = 2;
    while (unit.bytes.at(at) == 0xFF) {
        type += 255;
        ++at;
    }
    return type + unit.bytes.at(at);
}

namespace {

void checkUnits(const MovieSample &sample) {
    int layer = 0;
    std::array<int, 2> pictures{};
    for (const NalUnit &unit : sample.units) {
        ASSERT_LE(unit.layer, 1);
        EXPECT_GE(unit.layer, layer) << "layer 0 comes first";
        layer = std::max(layer, unit.layer);
        EXPECT_FALSE(unit.type >= 32 && unit.type <= 35) << "no parameter sets or delimiters in samples";
        if (unit.type == 39 || unit.type == 40) {
            EXPECT_FALSE(informationType(unit) >= 176 && informationType(unit) <= 180) << informationType(unit);
        }
        if (unit.isPicture()) {
            ++pictures.at(static_cast<std::size_t>(unit.layer));
            if (unit.layer == 0) {
                EXPECT_EQ(unit.isRandomAccess(), sample.sync);
            }
        }
    }
    EXPECT_GE(pictures[0], 1) << "a picture of layer 0";
    EXPECT_GE(pictures[1], 1) << "a picture of layer 1";
}

} // namespace

void checkAccessUnits(const std::vector<MovieSample> &samples) {
    ASSERT_FALSE(samples.empty());
    EXPECT_TRUE(samples[0].sync);
    for (std::size_t index = 0; index < samples.size(); ++index) {
        SCOPED_TRACE("sample " + std::to_string(index));
        checkUnits(samples[index]);
        if (index > 0) {
            EXPECT_GT(samples[index].decodingTime, samples[index - 1].decodingTime);
        }
    }
}

} // namespace lumetwin::test
