// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoFindings.h"
#include "model/Warning.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetwin {

/// The state of a file of a run.
enum class FileState {
    converted,
    convertedWithWarnings, ///< at least one warning that is not a note
    wouldBeConverted,      ///< in a dry run
    skipped,               ///< it does not match the direction, or its output exists and is kept
    upToDate,              ///< an earlier run has finished it
    failed,
    cancelled,  ///< the run was stopped during its conversion
    notReached, ///< the run was stopped before its conversion
};

/// The stable name of a state, for programs.
constexpr std::string_view rawValue(FileState state) {
    switch (state) {
    case FileState::converted:
        return "converted";
    case FileState::convertedWithWarnings:
        return "convertedWithWarnings";
    case FileState::wouldBeConverted:
        return "wouldBeConverted";
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

/// The result of one file of a run.
struct FileResult {
    std::filesystem::path input;
    std::filesystem::path rightEye; ///< the input of the right eye, where each eye has a file of its own
    std::filesystem::path output;   ///< the written file, or the file that is up to date; otherwise empty
    FileState state = FileState::notReached;
    std::string reason; ///< why it was skipped or failed, in the user's language
    std::vector<Warning> warnings;
    std::optional<DisparityFigures> disparity; ///< what its picture was found to have before the conversion
    std::int64_t framesWritten = 0;            ///< only for videos
    std::int64_t framesExpected = 0;           ///< only for videos; 0 when unknown
    double seconds = 0;                        ///< duration of the conversion
    std::uintmax_t bytes = 0;                  ///< of the written file

    bool wasConverted() const { return state == FileState::converted || state == FileState::convertedWithWarnings; }
};

} // namespace lumetwin
