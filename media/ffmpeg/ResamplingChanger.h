// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/SpeedChanger.h"

#include <memory>

namespace lumetwin::media {

/// Plain resampling: the pitch moves with the speed.
std::unique_ptr<SpeedChanger> makeResamplingChanger(int channels, double ratio);

} // namespace lumetwin::media
