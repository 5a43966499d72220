// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/ProgramEnd.h"
#include "tools/Commands.h"
#include "worker/ConfinedOperations.h"

int main(int count, char **arguments) {
    const auto operations = [] { return lumetwin::worker::confinedOperations(); };
    return lumetwin::endProgram(lumetwin::batch::runBatchTool(count, arguments, operations));
}
