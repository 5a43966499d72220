// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Words.h"

#include <filesystem>
#include <string>

namespace lumetwin::worker {

/// Why a worker did not answer a request correctly.
struct WorkerFailure {
    enum class Kind {
        signal,        ///< number: the signal that stopped it
        exited,        ///< number: its exit status
        invalidAnswer, ///< it sent an invalid answer
        timeout,       ///< number: the seconds without any message
        noStart,       ///< number: the system's (errno)
    };

    Kind kind = Kind::signal;
    int number = 0;

    /// Whether the worker crashed, so that a second, more careful attempt makes sense.
    bool isCrash() const;
};

/// A description such as "stopped by signal 11 (Segmentation fault)".
Words words(const WorkerFailure &failure);

/// As above, with the name of the file.
Words words(const WorkerFailure &failure, const std::filesystem::path &file);

} // namespace lumetwin::worker
