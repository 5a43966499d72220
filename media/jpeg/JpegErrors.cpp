// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/jpeg/JpegErrors.h"

#include <jerror.h>

namespace lumetwin::media::images {

namespace {

JpegErrors &errorsOf(j_common_ptr codec) {
    return *static_cast<JpegErrors *>(codec->client_data);
}

[[noreturn]] void giveUp(j_common_ptr codec) {
    JpegErrors &errors = errorsOf(codec);
    if (!errors.damaged) {
        codec->err->format_message(codec, errors.message);
        errors.code = codec->err->msg_code;
    }
    std::longjmp(errors.jump, 1);
}

bool isDamageWarning(int code) {
    switch (code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_MUST_RESYNC:
    case JWRN_ARITH_BAD_CODE:
        return true;
    default:
        return false;
    }
}

void noteWarning(j_common_ptr codec, int level) {
    if (level >= 0)
        return;
    ++codec->err->num_warnings;
    if (!isDamageWarning(codec->err->msg_code))
        return;
    JpegErrors &errors = errorsOf(codec);
    if (errors.damaged)
        return; // the first damage is the cause of the others
    codec->err->format_message(codec, errors.message);
    errors.code = codec->err->msg_code;
    errors.damaged = true;
}

void saySomething(j_common_ptr) {}

} // namespace

JpegErrors::JpegErrors() {
    jpeg_std_error(&manager);
    manager.error_exit = giveUp;
    manager.emit_message = noteWarning;
    manager.output_message = saySomething;
}

MediaReason JpegErrors::reason() const {
    switch (code) {
    case JWRN_JPEG_EOF:
    case JERR_INPUT_EOF:
    case JERR_INPUT_EMPTY:
        return MediaReason::endsEarly;
    case JERR_SOF_UNSUPPORTED:
    case JERR_ARITH_NOTIMPL:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_CCIR601_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_BAD_PRECISION:
        return MediaReason::unsupported;
    case JERR_EMPTY_IMAGE:
        return MediaReason::emptyImage;
    case JERR_IMAGE_TOO_BIG:
        return MediaReason::imageTooLarge;
    case JERR_OUT_OF_MEMORY:
        return MediaReason::noMemory;
    default:
        return MediaReason::damaged;
    }
}

} // namespace lumetwin::media::images
