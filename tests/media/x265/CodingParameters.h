// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/x265/Encoder.h"

#include <new>

namespace lumetwin::media::x265 {

/// The parameters of a short film at constant quality, as our encoder sets them where it matters to how views are
/// coded: closed groups of one second at 25 frames per second, no repeated headers. views: 1 or 2.
inline Parameters codingParameters(const x265_api &library, int width, int height, int views, double quality) {
    Parameters parameters(library.param_alloc());
    if (!parameters || library.param_default_preset(parameters.get(), "veryfast", nullptr) < 0)
        throw std::bad_alloc();
    parameters->sourceWidth = width;
    parameters->sourceHeight = height;
    parameters->internalCsp = X265_CSP_I420;
    parameters->fpsNum = 25;
    parameters->fpsDenom = 1;
    parameters->keyframeMax = 25;
    parameters->keyframeMin = 1;
    parameters->bOpenGOP = 0;
    parameters->bRepeatHeaders = 0;
    parameters->bEmitInfoSEI = 0;
    parameters->frameNumThreads = 2;
    parameters->logLevel = X265_LOG_NONE;
    parameters->rc.rateControlMode = X265_RC_CRF;
    parameters->rc.rfConstant = quality;
    if (views == 2) {
        parameters->numViews = parameters->numLayers = 2;
        parameters->format = 0;
        ++parameters->maxNumReferences;
        ++parameters->maxNumMergeCand;
    }
    return parameters;
}

} // namespace lumetwin::media::x265
