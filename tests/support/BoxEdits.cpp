// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/BoxEdits.h"

#include <algorithm>
#include <stdexcept>

namespace lumetwin::test {

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

void renameBox(const std::filesystem::path &file, const std::string &type, const std::string &other) {
    overwrite(file, placeOfBox(readFile(file), type) + 4, {other.begin(), other.end()});
}

} // namespace lumetwin::test
