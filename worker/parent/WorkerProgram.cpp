// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/WorkerProgram.h"

#include <system_error>
#include <unistd.h>

namespace lumetwin::worker {

std::filesystem::path workerProgramFor(const std::filesystem::path &folder) {
    // First the relative path of an installed tree, then that of a build tree.
    for (const char *place : {LUMETWIN_WORKER_FROM_BIN, "../worker"}) {
        const std::filesystem::path program = (folder / place / "lumetwin-worker").lexically_normal();
        if (access(program.c_str(), X_OK) == 0)
            return program;
    }
    return {};
}

std::filesystem::path workerProgram() {
    std::error_code ignored;
    const std::filesystem::path running = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return workerProgramFor(running.parent_path());
}

} // namespace lumetwin::worker
