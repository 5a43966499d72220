// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Commands.h"

int main(int count, char **arguments) {
    return lumetwin::batch::runBatchTool(count, arguments);
}
