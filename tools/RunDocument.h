// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "model/FileResult.h"

#include <chrono>
#include <string>
#include <vector>

namespace lumetwin::batch {

/// The settings and results of a run.
struct RunFacts {
    const ConversionSettings &settings;
    const std::vector<FileResult> &results;
    std::chrono::system_clock::time_point started{};
    std::chrono::system_clock::time_point finished{};
    bool stopped = false; ///< by the user
    std::string message;  ///< the final message of the run
    int exitStatus = 0;
};

/// The report of a run as a JSON document. The manual page describes its format. Its names must not change.
std::string runDocument(const RunFacts &facts);

} // namespace lumetwin::batch
