// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/WorkerMain.h"

int main(int count, char **arguments) {
    return lumetwin::worker::runWorker(count, arguments, lumetwin::MediaOperations::inProcess());
}
