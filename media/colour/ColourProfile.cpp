// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/colour/ColourProfile.h"

#include "media/MediaError.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace lumetwin::media::images {

namespace {

constexpr int stripRows = 64; ///< number of rows converted at once

struct CloseProfile {
    void operator()(void *profile) const { cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void *transform) const { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<void, CloseProfile>;
using Transform = std::unique_ptr<void, DeleteTransform>;

struct FreeCurve {
    void operator()(cmsToneCurve *curve) const { cmsFreeToneCurve(curve); }
};
using Curve = std::unique_ptr<cmsToneCurve, FreeCurve>;

Profile open(std::span<const std::uint8_t> bytes) {
    return Profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
}

std::vector<std::uint8_t> bytesOf(const Profile &profile) {
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return {};
    std::vector<std::uint8_t> bytes(size);
    if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size))
        return {};
    return bytes;
}

struct Primaries {
    int code; ///< ITU-T H.273, table 2
    double white[2];
    double colours[3][2];
};

constexpr double d65[2] = {0.3127, 0.3290};

constexpr std::array<Primaries, 5> knownPrimaries{{
    {1, {d65[0], d65[1]}, {{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}}},
    {5, {d65[0], d65[1]}, {{0.640, 0.330}, {0.290, 0.600}, {0.150, 0.060}}},
    {6, {d65[0], d65[1]}, {{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}}},
    {9, {d65[0], d65[1]}, {{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}}},
    {12, {d65[0], d65[1]}, {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}}},
}};

Profile rgbProfile(const double (&white)[2], const double (&primaries)[3][2], const Curve &curve) {
    const cmsCIExyY whitePoint{white[0], white[1], 1};
    const cmsCIExyYTRIPLE colours{{primaries[0][0], primaries[0][1], 1},
                                  {primaries[1][0], primaries[1][1], 1},
                                  {primaries[2][0], primaries[2][1], 1}};
    cmsToneCurve *curves[3] = {curve.get(), curve.get(), curve.get()};
    Profile profile(cmsCreateRGBProfile(&whitePoint, &colours, curves));
    if (profile)
        cmsSetProfileVersion(profile.get(), 4.3);
    return profile;
}

Curve sRGBCurve() {
    const double parameters[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return Curve(cmsBuildParametricToneCurve(nullptr, 4, parameters));
}

/// The curve of a transfer characteristic (ITU-T H.273, table 3); null for those that still images do not use.
Curve curveOf(int transfer) {
    switch (transfer) {
    case 4:
        return Curve(cmsBuildGamma(nullptr, 2.2));
    case 5:
        return Curve(cmsBuildGamma(nullptr, 2.8));
    case 8:
        return Curve(cmsBuildGamma(nullptr, 1.0));
    case 1:
    case 2:
    case 6:
    case 13:
    case 14:
    case 15:
        return sRGBCurve(); // video curves are treated as sRGB
    default:
        return nullptr;
    }
}

cmsUInt32Number formatOf(cmsUInt32Number space, int channels, int bytes, bool planar) {
    return COLORSPACE_SH(space) | CHANNELS_SH(channels) | BYTES_SH(bytes) | PLANAR_SH(planar ? 1 : 0);
}

std::ptrdiff_t planeDistance(const Picture &picture) {
    return picture.format.planeCount() == 1 ? 0 : picture.planes[1].data - picture.planes[0].data;
}

} // namespace

std::vector<std::uint8_t> sRGBProfile() {
    return bytesOf(Profile(cmsCreate_sRGBProfile()));
}

std::vector<std::uint8_t> profileOf(const double (&white)[2], const double (&primaries)[3][2], double gamma) {
    return bytesOf(rgbProfile(white, primaries, Curve(cmsBuildGamma(nullptr, gamma))));
}

std::vector<std::uint8_t> profileOf(const ColourTags &colour) {
    const bool plainCurve = colour.transfer == 2 || colour.transfer == 1 || colour.transfer == 6 ||
                            (colour.transfer >= 13 && colour.transfer <= 15);
    if (plainCurve && (colour.primaries == 1 || colour.primaries == 2))
        return {};
    const Curve curve = curveOf(colour.transfer);
    for (const Primaries &known : knownPrimaries)
        if (curve && known.code == (colour.primaries == 2 ? 1 : colour.primaries))
            return bytesOf(rgbProfile(known.white, known.colours, curve));
    return {};
}

bool matchesChannels(std::span<const std::uint8_t> bytes, int channels) {
    if (bytes.empty())
        return false;
    const Profile profile = open(bytes);
    return profile && cmsChannelsOf(cmsGetColorSpace(profile.get())) == static_cast<cmsUInt32Number>(channels);
}

bool isSRGB(std::span<const std::uint8_t> bytes) {
    const Profile profile = open(bytes);
    const Profile standard(cmsCreate_sRGBProfile());
    if (!profile || !standard || cmsGetColorSpace(profile.get()) != cmsSigRgbData)
        return false;
    const Transform transform(
        cmsCreateTransform(profile.get(), TYPE_RGB_8, standard.get(), TYPE_RGB_8, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
    if (!transform)
        return false;
    for (int sample = 0; sample < 729; ++sample) { // nine levels per channel
        const std::uint8_t in[3] = {static_cast<std::uint8_t>(sample / 81 * 255 / 8),
                                    static_cast<std::uint8_t>(sample / 9 % 9 * 255 / 8),
                                    static_cast<std::uint8_t>(sample % 9 * 255 / 8)};
        std::uint8_t out[3] = {};
        cmsDoTransform(transform.get(), in, out, 1);
        for (int channel = 0; channel < 3; ++channel)
            if (std::abs(in[channel] - out[channel]) > 1)
                return false;
    }
    return true;
}

Picture throughProfile(Picture picture, std::span<const std::uint8_t> bytes, const std::filesystem::path &file,
                       const Cancellation &cancellation) {
    const int channels = picture.format.planeCount();
    const int sampleBytes = picture.format.bytesPerSample();
    const Profile profile = open(bytes);
    const Profile standard(cmsCreate_sRGBProfile());
    const cmsUInt32Number space = channels == 1 ? PT_GRAY : PT_RGB;
    const Transform transform(!profile || !standard
                                  ? nullptr
                                  : cmsCreateTransform(profile.get(), formatOf(space, channels, sampleBytes, true),
                                                       standard.get(), formatOf(PT_RGB, 3, sampleBytes, true),
                                                       INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
    if (!transform)
        throw MediaError(file, MediaOperation::read, 0, MediaReason::unusableProfile);
    ColourTags colour = picture.colour;
    colour.primaries = 1;
    colour.transfer = 13;
    Picture out = channels == 3 ? picture
                                : makePicture(picture.width, picture.height,
                                              {ColourModel::rgb, picture.format.depth, 0, 0}, colour);
    out.colour = colour;
    for (int y = 0; y < picture.height; y += stripRows) {
        cancellation.check();
        cmsDoTransformLineStride(
            transform.get(), picture.planes[0].data + y * picture.planes[0].stride,
            out.planes[0].data + y * out.planes[0].stride, static_cast<cmsUInt32Number>(picture.width),
            static_cast<cmsUInt32Number>(std::min(stripRows, picture.height - y)),
            static_cast<cmsUInt32Number>(picture.planes[0].stride), static_cast<cmsUInt32Number>(out.planes[0].stride),
            static_cast<cmsUInt32Number>(planeDistance(picture)), static_cast<cmsUInt32Number>(planeDistance(out)));
    }
    return out;
}

struct CmykRows::State {
    Transform transform;
    int bytes = 1;
    bool inverted = false;
};

CmykRows::CmykRows(std::span<const std::uint8_t> bytes, int bytesPerSample, bool inverted)
    : state_(std::make_unique<State>()) {
    state_->bytes = bytesPerSample;
    state_->inverted = inverted;
    const Profile profile = bytes.empty() ? nullptr : open(bytes);
    if (!profile || cmsGetColorSpace(profile.get()) != cmsSigCmykData)
        return;
    const Profile standard(cmsCreate_sRGBProfile());
    const cmsUInt32Number input = formatOf(PT_CMYK, 4, bytesPerSample, false) | FLAVOR_SH(inverted ? 1 : 0);
    state_->transform.reset(cmsCreateTransform(profile.get(), input, standard.get(),
                                               formatOf(PT_RGB, 3, bytesPerSample, false), INTENT_PERCEPTUAL, 0));
}

CmykRows::~CmykRows() = default;

namespace {

template <typename Sample> void idealInks(const Sample *cmyk, Sample *rgb, int count, bool inverted) {
    constexpr std::uint32_t full = static_cast<Sample>(~Sample{0});
    for (int i = 0; i < count; ++i) {
        std::array<std::uint32_t, 4> light{};
        for (int ink = 0; ink < 4; ++ink)
            light[ink] = inverted ? cmyk[4 * i + ink] : full - cmyk[4 * i + ink];
        for (int channel = 0; channel < 3; ++channel)
            rgb[3 * i + channel] = static_cast<Sample>((light[channel] * light[3] + full / 2) / full);
    }
}

} // namespace

void CmykRows::convert(const void *cmyk, void *rgb, int count) const {
    if (state_->transform)
        cmsDoTransform(state_->transform.get(), cmyk, rgb, static_cast<cmsUInt32Number>(count));
    else if (state_->bytes == 1)
        idealInks(static_cast<const std::uint8_t *>(cmyk), static_cast<std::uint8_t *>(rgb), count, state_->inverted);
    else
        idealInks(static_cast<const std::uint16_t *>(cmyk), static_cast<std::uint16_t *>(rgb), count, state_->inverted);
}

} // namespace lumetwin::media::images
