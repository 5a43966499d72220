// SPDX-License-Identifier: GPL-3.0-or-later
// Starts a worker, prints its process id, and ends without stopping it.
#include "worker/parent/WorkerProcess.h"

#include <cstdio>
#include <cstdlib>

int main() {
    lumetwin::worker::WorkerProcess original(TEST_WORKER);
    lumetwin::worker::WorkerProcess process(original);
    if (!process.next(std::chrono::minutes(1))) // it is ready
        return EXIT_FAILURE;
    std::printf("%d\n", process.number());
    std::fflush(stdout);
    std::_Exit(EXIT_SUCCESS);
}
