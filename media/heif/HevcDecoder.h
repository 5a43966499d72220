// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <libheif/heif_plugin.h>

namespace lumetwin::media::images {

/// Decodes the HEVC pictures of HEIF files through FFmpeg. The library's own decoder of that kind knows only one slice
/// of an IDR picture that the decoder shows at once, in few sample formats; files of cameras hold more.
const heif_decoder_plugin *hevcDecoder();

} // namespace lumetwin::media::images
