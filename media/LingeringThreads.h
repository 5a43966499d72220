// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <thread>

namespace lumetwin::media {

/// Threads of encoders that were told to stop in the midst of something that they cannot leave (looking ahead over
/// large pictures lasts for seconds). Nobody waits for them but the end of the process; what they use belongs to them.
namespace lingering {

/// Takes a thread that ends by itself, soon.
void leave(std::thread thread);

/// Whether such threads still run. A program that is to end at once then ends without waiting (std::_Exit).
bool any();

} // namespace lingering

} // namespace lumetwin::media
