// SPDX-License-Identifier: GPL-3.0-or-later
// A worker with the operations of Behaviours.h.
#include "tests/worker/Behaviours.h"
#include "worker/WorkerMain.h"

int main(int count, char **arguments) {
    return lumetwin::worker::runWorker(count, arguments, lumetwin::test::misbehaviour(), {.landlock = WITH_LANDLOCK});
}
