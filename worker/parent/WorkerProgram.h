// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace lumetwin::worker {

/// The path of lumetwin-worker, found relative to the running program, in a build tree or in an installed tree (which
/// may have been moved). Empty if it is missing.
std::filesystem::path workerProgram();

/// As above, for a program in that folder.
std::filesystem::path workerProgramFor(const std::filesystem::path &folder);

} // namespace lumetwin::worker
