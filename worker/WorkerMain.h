// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "worker/confinement/Confinement.h"

namespace lumetwin::worker {

/// The descriptor of the worker's end of the channel.
inline constexpr int channelDescriptor = 3;

/// The main function of lumetwin-worker. The first process loads the program, never gets a file, and forks a worker for
/// each ForkRequest from channelDescriptor; arguments[1] is the id of its parent. A worker is also a child of that
/// parent. It answers the requests from its own channel with these operations, and ends after a conversion and when the
/// other end of its channel is closed. Both confine themselves first.
int runWorker(int count, char **arguments, const MediaOperations &operations, const ConfinementOptions &options = {});

} // namespace lumetwin::worker
