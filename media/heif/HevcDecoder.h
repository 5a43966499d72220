// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <libheif/heif_plugin.h>

namespace lumetwin::media::images {

/// Decodes the HEVC pictures of HEIF files with FFmpeg. libheif's own FFmpeg decoder supports only pictures with one
/// IDR slice that are returned at once, in few sample formats. Camera files need more.
const heif_decoder_plugin *hevcDecoder();

/// The same without the loop filter. Used by libheif when the options of a decoding have this name.
const heif_decoder_plugin *roughHevcDecoder();
inline constexpr const char *roughHevcDecoderName = "lumetwin-hevc-rough";

} // namespace lumetwin::media::images
