// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/video/StereoEncoderSettings.h"

#include "engine/video/BitRateRule.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace lumetwin {

namespace {

constexpr std::uint32_t bgra = 0x42475241; // "BGRA"

// The first system versions that have the projection and the field of view as encoder properties.
constexpr SystemVersion projectionKind{15, 0, 0};
constexpr SystemVersion fieldOfViewKey{14, 4, 0};

/// Ends the program: no setting of the form leads to such a number, so it is our bug.
[[noreturn]] void fatal(const char *reason) {
    std::fprintf(stderr, "Fatal error: %s\n", reason);
    std::abort();
}

/// Returns value if its truncation lies between below and above (exclusive), otherwise ends the program.
double inRange(double value, double below, double above, const char *reason) {
    if (!std::isfinite(value) || value <= below || value >= above)
        fatal(reason);
    return value;
}

template <std::size_t Count> std::vector<std::int64_t> listOf(const std::array<std::int64_t, Count> &identifiers) {
    return {identifiers.begin(), identifiers.end()};
}

EncoderProperties compressionProperties(const media::StereoVideoEncoding &encoding, SystemVersion system) {
    EncoderProperties table{
        {"kVTCompressionPropertyKey_MVHEVCVideoLayerIDs", listOf(MVHEVCVideoLayerIDs)},
        {"kVTCompressionPropertyKey_MVHEVCViewIDs", listOf(MVHEVCViewIDs)},
        {"kVTCompressionPropertyKey_MVHEVCLeftAndRightViewIDs", listOf(MVHEVCLeftAndRightViewIDs)},
        {"kVTCompressionPropertyKey_HasLeftStereoEyeView", encoding.hasLeftEye},
        {"kVTCompressionPropertyKey_HasRightStereoEyeView", encoding.hasRightEye},
        {"kVTCompressionPropertyKey_AverageBitRate", encoding.averageBitRate},
        {"kVTCompressionPropertyKey_ProfileLevel", std::string("kVTProfileLevel_HEVC_Main_AutoLevel")},
    };
    if (encoding.rectilinear)
        table.push_back({"kVTCompressionPropertyKey_ProjectionKind",
                         std::string("kCMFormatDescriptionProjectionKind_Rectilinear")});
    table.push_back({"kVTCompressionPropertyKey_StereoCameraBaseline", encoding.baseline});
    table.push_back({system >= fieldOfViewKey ? "kVTCompressionPropertyKey_HorizontalFieldOfView"
                                              : "kCMFormatDescriptionExtension_HorizontalFieldOfView",
                     encoding.horizontalFieldOfView});
    table.push_back({"kVTCompressionPropertyKey_HorizontalDisparityAdjustment", encoding.disparityAdjustment});
    return table;
}

/// A size as an int. Sizes above the limits of media/ stay above them, so that media/ refuses them.
int side(std::int64_t size) {
    return static_cast<int>(std::clamp<std::int64_t>(size, 0, std::numeric_limits<int>::max()));
}

} // namespace

EyeSize eyeSize(const ConversionSettings &settings, std::int64_t sourceWidth, std::int64_t sourceHeight) {
    if (settings.enableResize)
        return {settings.resizeWidth, settings.resizeHeight};
    return {sourceWidth / 2, sourceHeight};
}

std::int64_t spatialBitRate(const EyeSize &eye, double fps, double quality) {
    std::int64_t pixels = 0;
    if (__builtin_mul_overflow(eye.width, eye.height, &pixels))
        fatal("the size of an eye overflows");
    constexpr double beyond = 9223372036854775808.0; // 2^63
    const double rate = static_cast<double>(pixels) * fps * bitsPerPixel * quality;
    const double held = inRange(rate, std::nextafter(-beyond, -std::numeric_limits<double>::infinity()), beyond,
                                "the bit rate is out of range");
    return std::max(static_cast<std::int64_t>(held), smallestBitRate);
}

std::uint32_t baselineInMicrometres(double millimetres) {
    return static_cast<std::uint32_t>(
        inRange(millimetres * 1000, -1, 4294967296.0, "the stereo baseline is out of range"));
}

std::uint32_t fieldOfViewInThousandths(double degrees) {
    return static_cast<std::uint32_t>(inRange(degrees * 1000, -1, 4294967296.0, "the field of view is out of range"));
}

std::int32_t disparityInTenThousandths(double percent) {
    return static_cast<std::int32_t>(
        inRange(percent * 100, -2147483649.0, 2147483648.0, "the disparity adjustment is out of range"));
}

EncoderProperties outputSettings(const ConversionSettings &settings, const EyeSize &eye, double fps,
                                 SystemVersion system) {
    return {
        {"AVVideoCodecKey", std::string("AVVideoCodecTypeHEVC")},
        {"AVVideoWidthKey", eye.width},
        {"AVVideoHeightKey", eye.height},
        {"AVVideoCompressionPropertiesKey",
         compressionProperties(stereoVideoEncoding(settings, eye, fps, system), system)},
    };
}

EncoderProperties pixelBufferAttributes(const EyeSize &eye) {
    return {
        {"kCVPixelBufferPixelFormatTypeKey", bgra},
        {"kCVPixelBufferWidthKey", eye.width},
        {"kCVPixelBufferHeightKey", eye.height},
        {"kCVPixelBufferIOSurfacePropertiesKey", EncoderProperties{}},
    };
}

media::StereoVideoEncoding stereoVideoEncoding(const ConversionSettings &settings, const EyeSize &eye, double fps,
                                               SystemVersion system, const std::optional<StereoMetadata> &values) {
    const StereoMetadata stereo = values.value_or(StereoMetadata(settings));
    media::StereoVideoEncoding encoding;
    encoding.width = side(eye.width);
    encoding.height = side(eye.height);
    encoding.averageBitRate = spatialBitRate(eye, fps, settings.compressionQuality);
    encoding.frameRate = fps;
    encoding.baseline = baselineInMicrometres(stereo.stereoBaseline);
    encoding.horizontalFieldOfView = fieldOfViewInThousandths(stereo.horizontalFOV);
    encoding.disparityAdjustment = disparityInTenThousandths(stereo.disparityAdjustment);
    encoding.rectilinear = system >= projectionKind;
    return encoding;
}

} // namespace lumetwin
