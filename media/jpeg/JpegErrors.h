// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MediaError.h"

#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>
#include <string>

namespace lumetwin::media::images {

/// Receives the reports of the JPEG library. It must outlive the codec object that uses it.
struct JpegErrors {
    jpeg_error_mgr manager{};
    std::jmp_buf jump{};
    char message[JMSG_LENGTH_MAX] = {};
    int code = 0;
    bool damaged = false; ///< a warning said that compressed data is missing or wrong

    JpegErrors();
    /// The reason of the error, or of the first damage.
    MediaReason reason() const;
};

/// Runs a step that calls the JPEG library. Returns false when the library failed; the reason is in `errors`. The step
/// must not own anything, because the library leaves it with longjmp.
template <typename Step> bool succeeds(JpegErrors &errors, const Step &step) {
    if (setjmp(errors.jump) != 0)
        return false;
    step();
    return true;
}

} // namespace lumetwin::media::images
