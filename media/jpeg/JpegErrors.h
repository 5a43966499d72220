// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MediaError.h"

#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>
#include <string>

namespace lumetwin::media::images {

/// Catches what the JPEG library reports. It must outlive the codec object that it is given to.
struct JpegErrors {
    jpeg_error_mgr manager{};
    std::jmp_buf jump{};
    char message[JMSG_LENGTH_MAX] = {};
    int code = 0;
    bool damaged = false; ///< a warning said that compressed data is missing or wrong

    JpegErrors();
    /// What the latest report means.
    MediaReason reason() const;
};

/// Runs a step that calls the JPEG library; false when the library gave up, with the reason in `errors`. The step
/// must not own anything: the library leaves it by a jump.
template <typename Step> bool succeeds(JpegErrors &errors, const Step &step) {
    if (setjmp(errors.jump) != 0)
        return false;
    step();
    return true;
}

} // namespace lumetwin::media::images
