// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumetwin::media {

/// The picture's colours in sRGB: the same samples where its profile (or, without one, its tags) says sRGB already,
/// else converted through it with perceptual intent to RGB. RGB samples are converted where they are: the picture must
/// have no other user. Throws MediaError, which names the file, when the profile is unusable.
Picture inSRGB(Picture picture, const std::vector<std::uint8_t> &iccProfile, const std::filesystem::path &file,
               const Cancellation &cancellation = {});

} // namespace lumetwin::media
