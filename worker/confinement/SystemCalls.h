// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::worker {

/// Blocks a list of system calls for this process and its threads. A blocked call returns an error and does not end the
/// process, except calls of another architecture. Everything else stays allowed: an allow-list would break with the
/// next version of the C library. Needs no_new_privs. Throws std::system_error.
///
/// Still possible: asking for the size and times of a file whose name is known (stat). Forking and what forked
/// processes need for blockSystemCallsOfForking() stay allowed.
void blockSystemCalls();

/// After blockSystemCalls(): blocks new processes, signals to other processes, and new filters. Takes a fraction of the
/// time. Needs no_new_privs. Throws std::system_error.
void blockSystemCallsOfForking();

} // namespace lumetwin::worker
