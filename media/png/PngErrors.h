// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <png.h>

#include <csetjmp>
#include <string>

namespace lumetwin::media::images {

/// Keeps what the PNG library reports as an error and passes over its warnings.
struct PngErrors {
    char message[256] = {};
};

[[noreturn]] void keepPngError(png_structp codec, png_const_charp message);
void passOverPngWarning(png_structp codec, png_const_charp message);

/// Runs a step that calls the PNG library; false when the library gave up. The step must not own anything: the
/// library leaves it by a jump.
template <typename Step> bool succeeds(png_structp codec, const Step &step) {
    if (setjmp(png_jmpbuf(codec)) != 0)
        return false;
    step();
    return true;
}

} // namespace lumetwin::media::images
