// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BoxEdits.h"

#include <algorithm>
#include <stdexcept>

namespace lumetwin::test {

namespace {

/// Makes the boxes that hold the sample descriptions larger.
void enlargeDescriptions(Bytes &content, std::uint32_t size) {
    for (const char *parent : {"moov", "trak", "mdia", "minf", "stbl", "stsd"}) {
        const std::size_t place = placeOfBox(content, parent);
        putNumber(content, place, numberAt(content, place) + size);
    }
}

} // namespace

std::uint32_t numberAt(const Bytes &bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < 4; ++index)
        number = number << 8 | bytes.at(place + index);
    return number;
}

void putNumber(Bytes &bytes, std::size_t place, std::uint32_t number) {
    for (std::size_t index = 0; index < 4; ++index)
        bytes.at(place + index) = static_cast<std::uint8_t>(number >> (24 - 8 * index));
}

void overwrite(const std::filesystem::path &file, std::size_t place, const Bytes &bytes) {
    Bytes content = readFile(file);
    if (place + bytes.size() > content.size())
        throw std::out_of_range("overwrite");
    std::copy(bytes.begin(), bytes.end(), content.begin() + static_cast<std::ptrdiff_t>(place));
    writeFile(file, content);
}

std::size_t placeOfBox(const Bytes &bytes, const std::string &type) {
    const auto found = std::search(bytes.begin(), bytes.end(), type.begin(), type.end());
    if (found - bytes.begin() < 4 || found == bytes.end())
        throw std::runtime_error("there is no box " + type);
    return static_cast<std::size_t>(found - bytes.begin()) - 4;
}

void addSampleEntry(const std::filesystem::path &file, const std::string &type) {
    Bytes content = readFile(file);
    const std::size_t descriptions = placeOfBox(content, "stsd");
    const std::size_t first = descriptions + 16; // behind size, type, version and flags, and the number of entries
    const std::uint32_t size = numberAt(content, first);
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(first);
    Bytes entry(begin, begin + static_cast<std::ptrdiff_t>(size));
    std::copy(type.begin(), type.end(), entry.begin() + 4);
    putNumber(content, descriptions + 12, numberAt(content, descriptions + 12) + 1);
    enlargeDescriptions(content, size);
    content.insert(begin + static_cast<std::ptrdiff_t>(size), entry.begin(), entry.end());
    writeFile(file, content);
}

void addToSampleEntry(const std::filesystem::path &file, const Bytes &boxes) {
    Bytes content = readFile(file);
    const auto size = static_cast<std::uint32_t>(boxes.size());
    const std::size_t entry = placeOfBox(content, "stsd") + 16;
    const std::uint32_t entrySize = numberAt(content, entry);
    enlargeDescriptions(content, size);
    putNumber(content, entry, entrySize + size);
    content.insert(content.begin() + static_cast<std::ptrdiff_t>(entry + entrySize), boxes.begin(), boxes.end());
    writeFile(file, content);
}

void renameBox(const std::filesystem::path &file, const std::string &type, const std::string &other) {
    overwrite(file, placeOfBox(readFile(file), type) + 4, {other.begin(), other.end()});
}

} // namespace lumetwin::test
