// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StillEncoder.h"

#include "media/Abandonable.h"
#include "media/MediaError.h"
#include "media/Padding.h"
#include "media/hevc/NalUnits.h"
#include "media/x265/ConformanceWindow.h"
#include "media/x265/Encoder.h"

#include <algorithm>
#include <new>
#include <string>

namespace lumetwin::media::x265 {

namespace {

// For intra pictures the slower presets need three times as long to save 8 % of the bits. Sign hiding costs no time.
constexpr const char *preset = "ultrafast";
// The encoder needs at least one whole coding unit.
constexpr int smallestSide = 64;
constexpr int largeSide = 256;

[[noreturn]] void fail(const std::filesystem::path &file, int code, MediaReason reason) {
    throw MediaError(file, MediaOperation::encode, code, reason);
}

Parameters parametersFor(const std::filesystem::path &file, const Picture &picture, int quantiser, int threads) {
    Parameters parameters(x265_param_alloc());
    if (!parameters || x265_param_default_preset(parameters.get(), preset, nullptr) < 0)
        throw std::bad_alloc();
    parameters->sourceWidth = picture.width;
    parameters->sourceHeight = picture.height;
    parameters->sourceBitDepth = 8;
    parameters->internalBitDepth = 8;
    parameters->internalCsp = X265_CSP_I420;
    parameters->fpsNum = 1;
    parameters->fpsDenom = 1;
    parameters->maxCUSize = static_cast<std::uint32_t>(std::min(picture.width, picture.height) < largeSide ? 32 : 64);
    parameters->totalFrames = 1;
    parameters->keyframeMax = 1;
    parameters->bframes = 0;
    parameters->lookaheadDepth = 0;
    parameters->maxNumReferences = 1;
    parameters->scenecutThreshold = 0;
    parameters->frameNumThreads = 1;
    parameters->bRepeatHeaders = 0;
    parameters->bEmitInfoSEI = 0;
    parameters->bEnableAccessUnitDelimiters = 0;
    parameters->bEnableSignHiding = 1;
    parameters->psyRd = 0;
    parameters->rc.rateControlMode = X265_RC_CQP;
    parameters->rc.qp = quantiser;
    parameters->rc.ipFactor = 1; // the intra picture uses exactly the quantiser
    parameters->rc.aqMode = X265_AQ_NONE;
    parameters->rc.cuTree = 0;
    parameters->logLevel = X265_LOG_NONE;
    ColourTags colour = picture.colour;
    if (colour.chromaLocation == ChromaLocation::unspecified)
        colour.chromaLocation = ChromaLocation::centre; // as in JPEG
    setColour(*parameters, colour);
    if (x265_param_parse(parameters.get(), "pools", std::to_string(threads).c_str()) != 0)
        fail(file, 0, MediaReason::encoderFailed);
    if (x265_param_apply_profile(parameters.get(), "mainstillpicture") < 0)
        fail(file, 0, MediaReason::pictureRefused);
    return parameters;
}

std::vector<std::uint8_t> bytesOf(const x265_nal &nal) {
    const hevc::NalBytes unit = hevc::withoutStartCode({nal.payload, nal.sizeBytes});
    return {unit.begin(), unit.end()};
}

/// The parameter sets, whose conformance window shows the given even size.
void collectParameterSets(const std::filesystem::path &file, x265_encoder *encoder, bool cropped, CodedStill &still) {
    x265_nal *nals = nullptr;
    std::uint32_t count = 0;
    if (x265_encoder_headers(encoder, &nals, &count) < 0)
        fail(file, 0, MediaReason::encoderFailed);
    for (std::uint32_t index = 0; index < count; ++index) {
        std::vector<std::uint8_t> unit = bytesOf(nals[index]);
        if (hevc::nalType(unit) > hevc::NalType::picture)
            continue;
        if (cropped && hevc::nalType(unit) == hevc::NalType::sequence) {
            auto window = withConformanceWindow(unit, still.width, still.height);
            if (!window)
                fail(file, 0, MediaReason::encoderFailed);
            unit = std::move(*window);
        }
        still.parameterSets.push_back(std::move(unit));
    }
}

void collectSlices(const x265_nal *nals, std::uint32_t count, CodedStill &still) {
    for (std::uint32_t index = 0; index < count; ++index)
        if (std::vector<std::uint8_t> unit = bytesOf(nals[index]); hevc::nalType(unit) <= hevc::NalType::lastPicture)
            still.slices.push_back(std::move(unit));
}

void encode(const std::filesystem::path &file, x265_encoder *encoder, x265_param *parameters, Picture picture,
            CodedStill &still) {
    x265_picture input;
    x265_picture_init(parameters, &input);
    for (int plane = 0; plane < 3; ++plane) {
        input.planes[plane] = picture.planes[plane].data;
        input.stride[plane] = static_cast<int>(picture.planes[plane].stride);
    }
    input.bitDepth = 8;
    input.colorSpace = X265_CSP_I420;
    input.pts = 0;
    x265_nal *nals = nullptr;
    std::uint32_t count = 0;
    int result = x265_encoder_encode(encoder, &nals, &count, &input, nullptr);
    if (result > 0)
        collectSlices(nals, count, still);
    picture = {};
    while (result >= 0 && still.slices.empty()) {
        result = x265_encoder_encode(encoder, &nals, &count, nullptr, nullptr);
        if (result <= 0)
            fail(file, result, MediaReason::encoderFailed);
        collectSlices(nals, count, still);
    }
    if (result < 0)
        fail(file, result, MediaReason::encoderFailed);
}

CodedStill coded(const std::filesystem::path &file, Picture picture, int quantiser, int threads) {
    CodedStill still;
    still.width = codedSize(picture.width, 2);
    still.height = codedSize(picture.height, 2);
    const int codedWidth = codedSize(picture.width, smallestSide);
    const int codedHeight = codedSize(picture.height, smallestSide);
    PicturePool pool(codedWidth, codedHeight, yuv420, picture.colour);
    picture = padded(picture, codedWidth, codedHeight, pool);
    const Parameters parameters =
        parametersFor(file, picture, std::clamp(quantiser, 0, coarsestQuantiser), std::max(1, threads));
    const Encoder encoder = openEncoder(*parameters);
    if (!encoder)
        fail(file, 0, MediaReason::pictureRefused);
    collectParameterSets(file, encoder.get(), still.width != codedWidth || still.height != codedHeight, still);
    encode(file, encoder.get(), parameters.get(), std::move(picture), still);
    return still;
}

} // namespace

CodedStill encodeStill(const std::filesystem::path &file, Picture picture, int quantiser, int threads,
                       const Cancellation &cancellation) {
    return abandonable(cancellation,
                       [file, picture = std::move(picture), quantiser, threads](const Cancellation &) mutable {
                           return coded(file, std::move(picture), quantiser, threads);
                       });
}

} // namespace lumetwin::media::x265
