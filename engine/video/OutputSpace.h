// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/OutputFile.h"

namespace lumetwin {

/// Throws ProcessorError when the file system has less free space than the estimated size of the output plus a margin.
void requireSpace(const media::OutputFile &output, double estimatedBytes);

} // namespace lumetwin
