// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Owner types for x265's objects, and functions shared by both encoders.

#include "media/ColourTags.h"

#include <x265.h>

#include <memory>

namespace lumetwin::media::x265 {

struct ParameterDeleter {
    void operator()(x265_param *parameters) const { x265_param_free(parameters); }
};
using Parameters = std::unique_ptr<x265_param, ParameterDeleter>;

/// The functions of the library for a depth of 8 or 10 bits; null when it was built without it.
const x265_api *libraryFor(int depth);

struct EncoderDeleter {
    const x265_api *library = nullptr;
    void operator()(x265_encoder *encoder) const { library->encoder_close(encoder); }
};
using Encoder = std::unique_ptr<x265_encoder, EncoderDeleter>;

/// Opens an encoder of the parameters' depth; may be called on any thread. Null when the library refuses the
/// parameters.
Encoder openEncoder(x265_param &parameters);

/// Sets the colour description of the stream (ITU-T H.265, E.2.1). An unspecified chroma location is not written.
void setColour(x265_param &parameters, const ColourTags &colour);

} // namespace lumetwin::media::x265
