// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/confinement/Confinement.h"

#include "worker/confinement/Capabilities.h"
#include "worker/confinement/Landlock.h"
#include "worker/confinement/Limits.h"
#include "worker/confinement/SystemCalls.h"

#include <cerrno>
#include <sys/prctl.h>
#include <system_error>

namespace lumetwin::worker {

ConfinementReport confineBeforeForking() {
    ConfinementReport report;
    report.memoryLimited = limitResources();
    dropCapabilities();
    // Landlock and seccomp need this flag in a process without root's privileges.
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        throw std::system_error(errno, std::generic_category(), "no_new_privs");
    blockSystemCalls(); // last, because the steps above use blocked calls
    return report;
}

void confineWorker(ConfinementReport &report, const ConfinementOptions &options) {
    if (options.landlock)
        report.landlock = blockFileSystem(); // for each worker, because it also separates processes from each other
    blockSystemCallsOfForking();
    report.systemCalls = true;
}

std::string describe(const ConfinementReport &report) {
    std::string text = report.systemCalls ? "system calls" : "nothing";
    text += report.landlock > 0 ? ", Landlock (version " + std::to_string(report.landlock) + ")" : ", no Landlock";
    return text + (report.memoryLimited ? ", memory limit" : ", no memory limit");
}

} // namespace lumetwin::worker
