// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <png.h>

#include <csetjmp>
#include <string>

namespace lumetwin::media::images {

/// Keeps the error messages of the PNG library and ignores its warnings.
struct PngErrors {
    char message[256] = {};
};

[[noreturn]] void keepPngError(png_structp codec, png_const_charp message);
void ignorePngWarning(png_structp codec, png_const_charp message);

/// Runs a step that calls the PNG library. Returns false when the library failed. The step must not own anything,
/// because the library leaves it with longjmp.
template <typename Step> bool succeeds(png_structp codec, const Step &step) {
    if (setjmp(png_jmpbuf(codec)) != 0)
        return false;
    step();
    return true;
}

} // namespace lumetwin::media::images
