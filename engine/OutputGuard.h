// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace lumetwin {

/// Keeps a run from losing one of its own inputs: it knows them by their place and by their identity in the file
/// system (so that links and other spellings of a name are found too).
class OutputGuard {
public:
    explicit OutputGuard(const std::vector<std::filesystem::path> &inputs);

    /// Throws ProcessorError when the input is a folder, when the output's folder is missing, or when writing the
    /// output would replace an input of the run. To be called before anything is written.
    void check(const std::filesystem::path &input, const std::filesystem::path &output) const;

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>; ///< device and file number

    std::map<std::filesystem::path, std::string> namesByPlace_;
    std::map<Identity, std::string> namesByIdentity_;
};

} // namespace lumetwin
