// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/ProgramEnd.h"

#include "media/LingeringThreads.h"

#include <cstdio>
#include <cstdlib>

namespace lumetwin {

int endProgram(int status) {
    if (!media::lingering::any())
        return status;
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace lumetwin
