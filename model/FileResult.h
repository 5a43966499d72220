// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/Warning.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace lumetwin {

/// What became of a file of a run.
enum class FileState {
    converted,
    convertedWithWarnings, ///< notes alone do not count
    skipped,               ///< it does not suit the direction, or its output is there and stays
    upToDate,              ///< an earlier run has finished it
    failed,
    cancelled,  ///< the run was stopped while it was converted
    notReached, ///< the run was stopped before
};

/// The stable name of a state, for programs.
constexpr std::string_view rawValue(FileState state) {
    switch (state) {
    case FileState::converted:
        return "converted";
    case FileState::convertedWithWarnings:
        return "convertedWithWarnings";
    case FileState::skipped:
        return "skipped";
    case FileState::upToDate:
        return "upToDate";
    case FileState::failed:
        return "failed";
    case FileState::cancelled:
        return "cancelled";
    case FileState::notReached:
        return "notReached";
    }
    return {};
}

/// One file of a run and what became of it.
struct FileResult {
    std::filesystem::path input;
    std::filesystem::path output; ///< the written file, or the one that is up to date; else empty
    FileState state = FileState::notReached;
    std::string reason; ///< why it was skipped or failed, in the user's language
    std::vector<Warning> warnings;
    std::int64_t framesWritten = 0;  ///< of a film
    std::int64_t framesExpected = 0; ///< of a film, 0 when unknown
    double seconds = 0;              ///< that its conversion took
    std::uintmax_t bytes = 0;        ///< of the written file

    bool wasConverted() const { return state == FileState::converted || state == FileState::convertedWithWarnings; }
};

} // namespace lumetwin
