// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/TestMedia.h"

#include <string>

namespace lumetwin::test {

/// A number of four bytes, big endian, as boxes have them.
std::uint32_t numberAt(const Bytes &bytes, std::size_t place);
void putNumber(Bytes &bytes, std::size_t place, std::uint32_t number);

/// Puts bytes over those at a place of a file.
void overwrite(const std::filesystem::path &file, std::size_t place, const Bytes &bytes);

/// Where a box of the type begins in a file's bytes (at its size field): the first four characters that match.
std::size_t placeOfBox(const Bytes &bytes, const std::string &type);

/// Puts a sample entry like the first, but of another type, behind it, in a movie whose header follows its data.
void addSampleEntry(const std::filesystem::path &file, const std::string &type);

/// Puts boxes at the end of the first sample entry of a movie whose header follows its data.
void addToSampleEntry(const std::filesystem::path &file, const Bytes &boxes);

/// Gives the first box of a type another type of four characters.
void renameBox(const std::filesystem::path &file, const std::string &type, const std::string &other);

} // namespace lumetwin::test
