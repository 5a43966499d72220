// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/BatchOptions.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The words of a command line, each with a zero behind it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string words(data, data + size);
    words += '\0';
    std::vector<const char *> arguments;
    for (std::size_t begin = 0; begin < words.size(); begin = words.find('\0', begin) + 1)
        arguments.push_back(words.data() + begin);
    try {
        lumetwin::batch::parseOptions(arguments);
    } catch (const lumetwin::batch::UsageError &) {
    }
    return 0;
}
