// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One owner type for each x265 object that we hold, and what its two encoders share.

#include "media/ColourTags.h"

#include <x265.h>

#include <memory>

namespace lumetwin::media::x265 {

struct ParameterDeleter {
    void operator()(x265_param *parameters) const { x265_param_free(parameters); }
};
using Parameters = std::unique_ptr<x265_param, ParameterDeleter>;

struct EncoderDeleter {
    void operator()(x265_encoder *encoder) const { x265_encoder_close(encoder); }
};
using Encoder = std::unique_ptr<x265_encoder, EncoderDeleter>;

/// Opens an encoder, from any thread; none where the library does not take the parameters.
Encoder openEncoder(x265_param &parameters);

/// States what sample values mean in the stream (ITU-T H.265, E.2.1); unspecified places of chroma are not stated.
void setColour(x265_param &parameters, const ColourTags &colour);

} // namespace lumetwin::media::x265
