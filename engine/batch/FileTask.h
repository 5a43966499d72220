// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/MediaOperations.h"
#include "engine/batch/FileConversion.h"
#include "engine/batch/PictureCheck.h"

#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

/// The conversion of one file of a run. It is prepared and concluded on the thread of the batch, in the order of the
/// run; in between one thread performs it, perhaps while earlier files are still worked on. Until it is concluded, the
/// output has its partial name and nothing of it is reported.
struct FileTask {
    FileTask(ConversionKind theKind, ConversionInput theInput, std::filesystem::path theOutput)
        : kind(theKind), input(std::move(theInput)), output(std::move(theOutput)) {}

    ConversionKind kind;
    ConversionInput input;
    std::filesystem::path output;

    // What performing it has brought.
    PictureCheck check;
    std::optional<FileConversion> conversion; ///< owns the partial output
    Outcome outcome;
    std::exception_ptr failure;
    std::vector<std::string> log; ///< lines that wait for the file's turn
    double seconds = 0;           ///< how long it took

    /// Removes what was written.
    void discard() {
        if (conversion)
            conversion->discard();
    }
};

} // namespace lumetwin
