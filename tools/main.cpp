// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/ProgramEnd.h"
#include "tools/Commands.h"

int main(int count, char **arguments) {
    return lumetwin::endProgram(lumetwin::batch::runBatchTool(count, arguments));
}
