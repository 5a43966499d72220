// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/OutputFile.h"

namespace lumetwin {

/// Throws ProcessorError where the file system has less room than the estimated size of an output and a margin.
void requireSpace(const media::OutputFile &output, double estimatedBytes);

} // namespace lumetwin
