// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace lumetwin::test {

/// A QuickTime movie's bytes and boxes, read strictly: anything out of place throws std::runtime_error.
class BoxFile {
public:
    using Bytes = std::vector<std::uint8_t>;

    explicit BoxFile(const std::filesystem::path &file);

    /// The payload of the box at a path such as "moov/trak/mdia/hdlr" (the first of each name), from the start of its
    /// version field for full boxes. Empty where there is none.
    Bytes payload(const std::string &path) const;
    bool has(const std::string &path) const { return places_.count(path) != 0; }
    /// Names of a box's children in their order; "" lists the file's boxes.
    std::vector<std::string> children(const std::string &path) const;
    const Bytes &bytes() const { return bytes_; }

private:
    struct Place {
        std::size_t begin;
        std::size_t end;
    };
    void walk(const std::string &path, std::size_t begin, std::size_t end);

    Bytes bytes_;
    std::map<std::string, Place> places_;
    std::map<std::string, std::vector<std::string>> children_;
};

std::uint32_t number32(const BoxFile::Bytes &bytes, std::size_t at);

struct NalUnit {
    int type = 0;
    int layer = 0;
    std::size_t place = 0; ///< of its first byte, in what it was read from
    BoxFile::Bytes bytes;
    bool isPicture() const { return type < 32; }
    bool isRandomAccess() const { return type >= 16 && type <= 21; }
};

struct MovieSample {
    std::int64_t decodingTime = 0; ///< media time
    std::int64_t time = 0;         ///< presented, after the edit list
    bool sync = false;
    std::vector<NalUnit> units;
};

/// The NAL units of a parameter set record (hvcC or lhvC), and whether every array is marked complete.
struct Configuration {
    std::vector<NalUnit> units;
    bool complete = true;
};
Configuration configuration(const BoxFile::Bytes &record, std::size_t fieldsBeforeArrays);

/// The video track's samples. It has to be the first track.
std::vector<MovieSample> videoSamples(const BoxFile &movie);

/// The SEI payload type of a NAL unit of type 39 or 40.
int informationType(const NalUnit &unit);

/// Fails the test for everything that an access unit of a two-view track must not be: a sample without both layers'
/// pictures, layers out of order, parameter sets or made-up messages inside samples, a sync table that differs from the
/// random access pictures, decoding after presentation.
void checkAccessUnits(const std::vector<MovieSample> &samples);

} // namespace lumetwin::test
