// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin {

/// Call at the end of main(); returns the exit status. If an encoder of a stopped conversion is still running, it does
/// not return: it flushes standard output and ends the program at once instead of waiting.
int endProgram(int status);

} // namespace lumetwin
