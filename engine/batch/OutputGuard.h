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

/// Prevents a run from overwriting one of its inputs. Inputs are recognised by path and by device and file number, so
/// links and other spellings of a name are found too.
class OutputGuard {
public:
    /// `isConverted` returns whether the run converts the input at that position. A skipped input may be replaced.
    explicit OutputGuard(
        const std::vector<std::filesystem::path> &inputs,
        std::function<bool(std::size_t)> isConverted = [](std::size_t) { return true; });

    /// Throws ProcessorError when the input is not a regular file, or when the output would replace this input or
    /// another one that the run converts. Call it before anything is written.
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
