// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"

#include <memory>
#include <string>

namespace lumetwin::worker {

class Workers;

/// Operations that run in confined processes and have the results and errors of MediaOperations::inProcess(). The
/// processes end when the last copy of the operations is destroyed.
MediaOperations confinedOperations(std::shared_ptr<Workers> workers);

/// As above, with the worker program that belongs to the running program. If it is missing, each operation throws a
/// ProcessorError.
MediaOperations confinedOperations();

/// How workers are confined on this system, in English. Throws ProcessorError when no worker can be started.
std::string confinementDescription();

} // namespace lumetwin::worker
