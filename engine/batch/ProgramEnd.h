// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin {

/// For the end of main(): the status to return. Where an encoder of a stopped conversion has not come to its end yet,
/// it does not return: the program ends at once, its standard output written, instead of waiting for that.
int endProgram(int status);

} // namespace lumetwin
