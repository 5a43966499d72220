// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/png/PngErrors.h"

#include <cstdio>

namespace lumetwin::media::images {

void keepPngError(png_structp codec, png_const_charp message) {
    auto &errors = *static_cast<PngErrors *>(png_get_error_ptr(codec));
    std::snprintf(errors.message, sizeof(errors.message), "%s", message);
    png_longjmp(codec, 1);
}

void ignorePngWarning(png_structp, png_const_charp) {}

} // namespace lumetwin::media::images
