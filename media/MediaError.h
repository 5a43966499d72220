// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace lumetwin::media {

/// The one error type of media/: which file, which operation, and the library's own code and words.
class MediaError : public std::runtime_error {
public:
    MediaError(std::filesystem::path file, std::string operation, int code, std::string reason)
        : std::runtime_error(operation + " " + file.filename().string() + ": " + reason), file_(std::move(file)),
          operation_(std::move(operation)), reason_(std::move(reason)), code_(code) {}

    const std::filesystem::path &file() const { return file_; }
    /// What was attempted, as the beginning of a sentence that ends in the file's name: "Cannot open".
    const std::string &operation() const { return operation_; }
    const std::string &reason() const { return reason_; }
    /// The library's code (or errno, negated, for the system's); 0 where there is none.
    int code() const { return code_; }

private:
    std::filesystem::path file_;
    std::string operation_;
    std::string reason_;
    int code_;
};

} // namespace lumetwin::media
