// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/SpeedChanger.h"

#include <memory>

namespace lumetwin::media {

/// Keeps the pitch.
std::unique_ptr<SpeedChanger> makePitchKeepingChanger(int sampleRate, int channels, double ratio);

} // namespace lumetwin::media
