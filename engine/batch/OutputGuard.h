// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace lumetwin {

/// Keeps a run from losing one of its own inputs: it knows them by their place and by their identity in the file
/// system (so that links and other spellings of a name are found too).
class OutputGuard {
public:
    /// `isConverted` tells of an input, by its position, whether the run converts it: one that it skips may be
    /// replaced.
    explicit OutputGuard(
        const std::vector<std::filesystem::path> &inputs,
        std::function<bool(std::size_t)> isConverted = [](std::size_t) { return true; });

    /// Throws ProcessorError when the input is no regular file, or when writing the output would replace the input
    /// itself or another one that the run converts. To be called before anything is written.
    void check(const std::filesystem::path &input, const std::filesystem::path &output) const;

private:
    using Identity = std::pair<std::uint64_t, std::uint64_t>; ///< device and file number

    void refuse(const std::filesystem::path &input, std::size_t found) const;

    std::vector<std::filesystem::path> inputs_;
    std::function<bool(std::size_t)> isConverted_;
    std::multimap<std::filesystem::path, std::size_t> indexesByPlace_;
    std::multimap<Identity, std::size_t> indexesByIdentity_;
};

} // namespace lumetwin
