// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "model/FileResult.h"

#include <chrono>
#include <string>
#include <vector>

namespace lumetwin::batch {

/// What a run was asked for and what came of it.
struct RunFacts {
    const ConversionSettings &settings;
    const std::vector<FileResult> &results;
    std::chrono::system_clock::time_point started{};
    std::chrono::system_clock::time_point finished{};
    bool stopped = false; ///< by the user
    std::string message;  ///< the run's own last words
    int exitStatus = 0;
};

/// The report of a run as a JSON document. The manual page describes it; its names are stable.
std::string runDocument(const RunFacts &facts);

} // namespace lumetwin::batch
