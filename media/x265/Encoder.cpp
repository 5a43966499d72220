// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/Encoder.h"

#include <mutex>

namespace lumetwin::media::x265 {

Encoder openEncoder(x265_param &parameters) {
    // The first encoder of a process fills the library's tables of functions, and no lock keeps a second one from
    // using them half filled.
    static std::once_flag tables;
    Encoder encoder;
    std::call_once(tables, [&] { encoder.reset(x265_encoder_open(&parameters)); });
    if (!encoder)
        encoder.reset(x265_encoder_open(&parameters));
    return encoder;
}

} // namespace lumetwin::media::x265
