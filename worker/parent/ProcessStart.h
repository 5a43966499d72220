// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <filesystem>

namespace lumetwin::worker {

// Worker processes are started on one thread that lives as long as this program, because the kernel ends a worker when
// the *thread* that started it ends (PR_SET_PDEATHSIG).

/// Starts a program. The descriptor becomes its descriptor 3, its standard streams are /dev/null, and its environment
/// has only the variables that it needs itself. Its argument is the id of this process. Throws std::system_error.
pid_t startProcess(const std::filesystem::path &program, int descriptor);

/// Kills a process and returns at once; its exit status is collected later.
void endProcess(pid_t process);

} // namespace lumetwin::worker
