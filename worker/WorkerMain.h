// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "worker/confinement/Confinement.h"

namespace lumetwin::worker {

/// The descriptor of the worker's end of the channel.
inline constexpr int channelDescriptor = 3;

/// The main function of a worker process: closes inherited descriptors, confines the process, and then answers the
/// requests from channelDescriptor with these operations. The process ends after a conversion and when the other end of
/// the channel is closed. arguments[1] is the id of the parent process.
int runWorker(int count, char **arguments, const MediaOperations &operations, const ConfinementOptions &options = {});

} // namespace lumetwin::worker
