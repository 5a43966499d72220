// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <thread>

namespace lumetwin::media {

/// Threads of cancelled encoders that cannot stop at once (looking ahead over large pictures takes seconds). Nothing
/// waits for them except the end of the process. They own everything that they use.
namespace lingering {

/// Takes ownership of a thread that will soon end by itself.
void leave(std::thread thread);

/// Whether such threads still run. Then a program that must end at once uses std::_Exit instead of waiting.
bool any();

} // namespace lingering

} // namespace lumetwin::media
