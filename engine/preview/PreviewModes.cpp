// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewModes.h"

#include "engine/preview/PreviewPixels.h"
#include "engine/stereo/StereoLook.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace lumetwin {

namespace {

constexpr std::size_t pixelBytes = 4;
constexpr std::uint8_t opaque = 255;

using Pixels = std::vector<std::uint8_t>;

PreviewPicture pictureOf(int width, int height, Pixels pixels) {
    return {width, height, std::make_shared<const Pixels>(std::move(pixels))};
}

/// A picture of the part that both eyes have, whose pixels are combined(left pixel, right pixel, new pixel).
template <typename Combine>
PreviewPicture combinedOf(const PreviewPicture &left, const PreviewPicture &right, const Combine &combine) {
    const int width = std::min(left.width, right.width);
    const int height = std::min(left.height, right.height);
    Pixels pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * pixelBytes);
    std::uint8_t *out = pixels.data();
    for (int y = 0; y < height; ++y) {
        const std::uint8_t *one = left.row(y);
        const std::uint8_t *other = right.row(y);
        for (int x = 0; x < width; ++x, one += pixelBytes, other += pixelBytes, out += pixelBytes) {
            combine(one, other, out);
            out[3] = opaque;
        }
    }
    return pictureOf(width, height, std::move(pixels));
}

/// The curve of sRGB (IEC 61966-2-1), in both directions.
class Light {
public:
    Light() {
        for (std::size_t sample = 0; sample < linear_.size(); ++sample) {
            const double value = static_cast<double>(sample) / 255;
            linear_[sample] =
                static_cast<float>(value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
        }
        for (std::size_t step = 0; step < coded_.size(); ++step) {
            const double light = static_cast<double>(step) / steps;
            const double value = light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            coded_[step] = static_cast<std::uint8_t>(std::lround(value * 255));
        }
    }

    float linear(std::uint8_t sample) const { return linear_[sample]; }
    std::uint8_t coded(float light) const {
        return coded_[static_cast<std::size_t>(std::clamp(light, 0.0F, 1.0F) * steps + 0.5F)];
    }

private:
    static constexpr int steps = 1 << 14; ///< fine enough for the steepest part, near black

    std::array<float, 256> linear_{};
    std::array<std::uint8_t, steps + 1> coded_{};
};

/// A row of weights for one channel of the anaglyph: red, green and blue of the left eye, then of the right eye.
using Weights = std::array<float, 6>;
constexpr std::array<Weights, 3> dubois{{{0.437F, 0.449F, 0.164F, -0.011F, -0.032F, -0.007F},
                                         {-0.062F, -0.062F, -0.024F, 0.377F, 0.761F, 0.009F},
                                         {-0.048F, -0.050F, -0.017F, -0.026F, -0.093F, 1.234F}}};

} // namespace

PreviewPicture besideEachOther(const PreviewPicture &left, const PreviewPicture &right) {
    if (left.isEmpty() || right.isEmpty())
        return left;
    const int height = std::min(left.height, right.height);
    const std::size_t leftBytes = static_cast<std::size_t>(left.width) * pixelBytes;
    const std::size_t rightBytes = static_cast<std::size_t>(right.width) * pixelBytes;
    Pixels pixels((leftBytes + rightBytes) * static_cast<std::size_t>(height));
    std::uint8_t *out = pixels.data();
    for (int y = 0; y < height; ++y) {
        std::memcpy(out, left.row(y), leftBytes);
        std::memcpy(out + leftBytes, right.row(y), rightBytes);
        out += leftBytes + rightBytes;
    }
    return pictureOf(left.width + right.width, height, std::move(pixels));
}

PreviewPicture anaglyph(const PreviewPicture &left, const PreviewPicture &right) {
    static const Light light;
    if (left.isEmpty() || right.isEmpty())
        return left;
    return combinedOf(left, right, [](const std::uint8_t *one, const std::uint8_t *other, std::uint8_t *out) {
        const std::array<float, 6> seen{light.linear(one[2]),   light.linear(one[1]),   light.linear(one[0]),
                                        light.linear(other[2]), light.linear(other[1]), light.linear(other[0])};
        for (std::size_t channel = 0; channel < 3; ++channel) {
            float sum = 0;
            for (std::size_t index = 0; index < seen.size(); ++index)
                sum += dubois[channel][index] * seen[index];
            out[2 - channel] = light.coded(sum);
        }
    });
}

PreviewPicture difference(const PreviewPicture &left, const PreviewPicture &right) {
    if (left.isEmpty())
        return left;
    return combinedOf(left, right.isEmpty() ? left : right,
                      [](const std::uint8_t *one, const std::uint8_t *other, std::uint8_t *out) {
                          for (std::size_t channel = 0; channel < 3; ++channel)
                              out[channel] = static_cast<std::uint8_t>(std::abs(one[channel] - other[channel]));
                      });
}

StereoFindings findingsOf(const PreviewPicture &left, const PreviewPicture &right) {
    if (left.isEmpty() || right.isEmpty() || left.width != right.width || left.height != right.height)
        return {};
    const media::EyePair<LumaPlane> planes{eyePlane(planesOf(left)), eyePlane(planesOf(right))};
    return findings(std::array{lookAtEyes(planes, EyeArrangement::sideBySide)});
}

} // namespace lumetwin
