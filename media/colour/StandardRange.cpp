// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/StandardRange.h"

#include "media/ColourConversion.h"
#include "media/colour/ToneCurve.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace lumetwin::media {

namespace {

using colour::Triple;
using Matrix = std::array<Triple, 3>;

constexpr int workingDepth = 10; // for pictures that have to be converted first

// Code points of ITU-T H.273.
constexpr int bt709 = 1;
constexpr int bt2020 = 9;
constexpr int displayP3 = 12;
constexpr int pq = 16;
constexpr int hlg = 18;
constexpr int srgb = 13;
constexpr int bt601 = 6;

/// The weights of red, green and blue in the luminance of the primaries.
Triple luminanceWeights(int primaries) {
    if (primaries == bt709)
        return {0.2126, 0.7152, 0.0722};
    return primaries == displayP3 ? Triple{0.2290, 0.6917, 0.0793} : Triple{0.2627, 0.6780, 0.0593};
}

/// Those in the luma of a matrix. What is not said is BT.2020.
Triple lumaWeights(int matrix) {
    if (matrix == bt601 || matrix == 5)
        return {0.299, 0.587, 0.114};
    return matrix == bt709 ? Triple{0.2126, 0.7152, 0.0722} : Triple{0.2627, 0.6780, 0.0593};
}

/// Linear light of the primaries as light of BT.709 (ITU-R BT.2087, 3.2 for BT.2020).
Matrix toBt709(int primaries) {
    if (primaries == bt709)
        return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    if (primaries == displayP3)
        return {{{1.2249, -0.2249, 0}, {-0.0420, 1.0420, 0}, {-0.0197, -0.0786, 1.0983}}};
    return {{{1.6605, -0.5876, -0.0729}, {-0.1246, 1.1329, -0.0083}, {-0.0182, -0.1006, 1.1188}}};
}

double product(const Triple &one, const Triple &other) {
    return one[0] * other[0] + one[1] * other[1] + one[2] * other[2];
}

/// The signal for a screen of ITU-R BT.1886, also of light below 0, which the screen does not have.
double bt1886(double light) {
    return std::copysign(std::pow(std::abs(light), 1 / 2.4), light);
}

double srgbOf(double signal) {
    const double light = std::pow(signal, 2.4);
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

/// Y between 0 and 1, Cb and Cr between -0.5 and 0.5.
Triple rgbOf(const Triple &yuv, const Triple &weights) {
    const double red = yuv[0] + 2 * (1 - weights[0]) * yuv[2];
    const double blue = yuv[0] + 2 * (1 - weights[2]) * yuv[1];
    const double green = (yuv[0] - weights[0] * red - weights[2] * blue) / weights[1];
    return {std::clamp(red, 0.0, 1.0), std::clamp(green, 0.0, 1.0), std::clamp(blue, 0.0, 1.0)};
}

Triple yuvOf(const Triple &rgb, const Triple &weights) {
    const double luma = product(rgb, weights);
    return {luma, (rgb[2] - luma) / (2 * (1 - weights[2])), (rgb[0] - luma) / (2 * (1 - weights[0]))};
}

/// One colour from high to standard range, both as YCbCr.
class Conversion {
public:
    Conversion(const ColourTags &source, double peak, const ColourTags &target)
        : source_(source), target_(target), peak_(peak), weights_(luminanceWeights(source.primaries)),
          sourceLuma_(lumaWeights(source.matrix)), targetLuma_(lumaWeights(target.matrix)),
          toBt709_(toBt709(source.primaries)) {}

    Triple operator()(const Triple &yuv) const {
        Triple light = rgbOf(yuv, sourceLuma_);
        if (source_.transfer == hlg)
            light = colour::lightOfHlg(light, weights_);
        else
            for (double &value : light)
                value = colour::luminanceOfPq(value);
        // The curve for the luminance would turn bright lights of one colour pale.
        const double brightest = *std::ranges::max_element(light);
        const double gain = brightest > 0 ? colour::standardLuminance(brightest, peak_) / brightest : 0;
        const double shown = product(light, weights_) * gain;
        Triple rgb{};
        for (std::size_t index = 0; index < rgb.size(); ++index)
            rgb.at(index) = bt1886(product(toBt709_.at(index), light) * gain);
        rgb = colour::withinGamut(rgb, bt1886(shown));
        for (double &value : rgb)
            value = target_.transfer == srgb ? srgbOf(value) : value;
        return yuvOf(rgb, targetLuma_);
    }

private:
    ColourTags source_;
    ColourTags target_;
    double peak_;
    Triple weights_;
    Triple sourceLuma_;
    Triple targetLuma_;
    Matrix toBt709_;
};

double peakOf(const ColourTags &source, const LightLevels &levels) {
    constexpr double luminanceUnits = 10'000;
    constexpr double brightest = 10'000; // of PQ
    double peak = colour::usualPeak;
    if (source.transfer == hlg)
        return peak;
    if (levels.mastering && levels.mastering->highest > 0)
        peak = levels.mastering->highest / luminanceUnits;
    if (levels.content && levels.content->highest > 0)
        peak = std::min<double>(peak, levels.content->highest);
    return std::clamp(peak, colour::standardWhite, brightest);
}

// Thresholds of ordered dither: each number from 0 to 15 once, neighbours far apart.
constexpr int ditherSide = 4;
constexpr std::array<std::array<int, ditherSide>, ditherSide> dither{
    {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}}};

/// Four numbers that are computed with at once.
using Four = float __attribute__((vector_size(16)));

std::uint8_t dithered(float value, int x, int y) {
    const float threshold = (static_cast<float>(dither[y % ditherSide][x % ditherSide]) + 0.5F) / 16;
    return static_cast<std::uint8_t>(std::clamp(value + threshold, 0.0F, 255.0F));
}

} // namespace

bool isHighDynamicRange(const ColourTags &colour) {
    return colour.transfer == pq || colour.transfer == hlg;
}

/// The converted colours at the points of a grid over the samples' values.
struct StandardRange::Table {
    static constexpr int lumaSteps = 64;
    static constexpr int chromaSteps = 64;
    static constexpr std::size_t lumaPoints = lumaSteps + 1;
    static constexpr std::size_t chromaPoints = chromaSteps + 1;

    std::vector<Four> colours; ///< of 8 bits: Y, Cb, Cr, nothing; luma changes fastest, then Cr
    ColourTags target;

    Table(const ColourTags &source, const LightLevels &levels, const ColourTags &wanted) : target(wanted) {
        const Conversion convert(source, peakOf(source, levels), target);
        colours.reserve(lumaPoints * chromaPoints * chromaPoints);
        for (int cb = 0; cb <= chromaSteps; ++cb)
            for (int cr = 0; cr <= chromaSteps; ++cr)
                for (int luma = 0; luma <= lumaSteps; ++luma)
                    colours.push_back(coded(convert(meaning(source, luma, cb, cr))));
    }

    static Triple meaning(const ColourTags &source, int luma, int cb, int cr) {
        const double y = static_cast<double>(luma) / lumaSteps;
        const double blue = static_cast<double>(cb) / chromaSteps - 0.5;
        const double red = static_cast<double>(cr) / chromaSteps - 0.5;
        if (source.range == ColourRange::full)
            return {y, blue, red};
        return {(y * 256 - 16) / 219, blue * 256 / 224, red * 256 / 224};
    }

    Four coded(const Triple &yuv) const {
        const bool isFull = target.range == ColourRange::full;
        const double luma = isFull ? yuv[0] * 255 : 16 + yuv[0] * 219;
        const double chroma = isFull ? 255 : 224;
        return Four{static_cast<float>(luma), static_cast<float>(128 + yuv[1] * chroma),
                    static_cast<float>(128 + yuv[2] * chroma), 0};
    }

    /// The colours of one Cb and Cr, for each luma.
    class Curve {
    public:
        Curve(const Table &table, float cb, float cr) {
            const int blue = std::min(static_cast<int>(cb), chromaSteps - 1);
            const int red = std::min(static_cast<int>(cr), chromaSteps - 1);
            const float blueShare = cb - static_cast<float>(blue);
            const float redShare = cr - static_cast<float>(red);
            shares_ = {(1 - blueShare) * (1 - redShare), (1 - blueShare) * redShare, blueShare * (1 - redShare),
                       blueShare * redShare};
            const Four *first =
                table.colours.data() +
                (static_cast<std::size_t>(blue) * chromaPoints + static_cast<std::size_t>(red)) * lumaPoints;
            corners_ = {first, first + lumaPoints, first + chromaPoints * lumaPoints,
                        first + (chromaPoints + 1) * lumaPoints};
        }

        Four at(float luma) {
            const int step = std::min(static_cast<int>(luma), lumaSteps - 1);
            if (step != step_)
                moveTo(step);
            return below_ + (above_ - below_) * (luma - static_cast<float>(step));
        }

    private:
        void moveTo(int step) {
            step_ = step;
            below_ = above_ = Four{};
            for (std::size_t corner = 0; corner < corners_.size(); ++corner) {
                below_ += corners_[corner][step] * shares_[corner];
                above_ += corners_[corner][step + 1] * shares_[corner];
            }
        }

        std::array<float, 4> shares_{};
        std::array<const Four *, 4> corners_{};
        int step_ = -1; ///< neighbouring samples are mostly between the same points
        Four below_{};
        Four above_{};
    };
};

StandardRange::StandardRange(const ColourTags &source, const LightLevels &levels, const ColourTags &target)
    : table_(std::make_shared<Table>(source, levels, target)) {}

ColourTags StandardRange::video(const ColourTags &source) {
    return {bt709, bt709, bt709, ColourRange::limited, source.chromaLocation};
}

ColourTags StandardRange::photo(const ColourTags &source) {
    return {bt709, srgb, bt601, ColourRange::full, source.chromaLocation};
}

Picture StandardRange::ofPhoto(Picture picture, const Cancellation &cancellation) {
    if (picture.format.model == ColourModel::grey || !isHighDynamicRange(picture.colour))
        return picture;
    if (picture.format.model == ColourModel::rgb) {
        ColourTags colour = picture.colour;
        colour.matrix = bt2020;
        colour.range = ColourRange::full;
        picture = convertColour(picture, {ColourModel::yuv, workingDepth, 0, 0}, colour, cancellation);
    }
    PictureFormat format = picture.format;
    if (format.depth <= 8) {
        format.depth = workingDepth;
        picture = convertColour(picture, format, picture.colour, cancellation);
    }
    const ColourTags target = photo(picture.colour);
    format.depth = 8;
    Picture result = makePicture(picture.width, picture.height, format, target);
    StandardRange(picture.colour, {}, target).convert(picture, result);
    return result;
}

void StandardRange::convert(const Picture &picture, Picture &result) const {
    const PictureFormat &format = picture.format;
    if (format.model != ColourModel::yuv || format.depth <= 8 ||
        result.format != PictureFormat{ColourModel::yuv, 8, format.chromaShiftX, format.chromaShiftY})
        throw std::logic_error("only deep YCbCr becomes standard range");
    // The value of a full-range sample is a share of the largest code, of a limited one of the number of codes.
    const bool isFull = picture.colour.range == ColourRange::full;
    const int codes = (1 << format.depth) - (isFull ? 1 : 0);
    const float lumaScale = static_cast<float>(Table::lumaSteps) / static_cast<float>(codes);
    const float chromaScale = static_cast<float>(Table::chromaSteps) / static_cast<float>(codes);
    const auto sample = [&](int plane, int x, int y) {
        const Picture::Plane &from = picture.planes[static_cast<std::size_t>(plane)];
        return static_cast<float>(reinterpret_cast<const std::uint16_t *>(from.data + y * from.stride)[x]);
    };
    const auto target = [&](int plane, int x, int y) -> std::uint8_t & {
        const Picture::Plane &to = result.planes[static_cast<std::size_t>(plane)];
        return to.data[y * to.stride + x];
    };
    const int across = 1 << format.chromaShiftX;
    const int down = 1 << format.chromaShiftY;
    for (int row = 0; row < picture.planeHeight(1); ++row)
        for (int column = 0; column < picture.planeWidth(1); ++column) {
            Table::Curve curve(*table_, std::min(sample(1, column, row) * chromaScale, float{Table::chromaSteps}),
                               std::min(sample(2, column, row) * chromaScale, float{Table::chromaSteps}));
            Four sum{};
            int count = 0;
            for (int y = row * down; y < std::min((row + 1) * down, picture.height); ++y)
                for (int x = column * across; x < std::min((column + 1) * across, picture.width); ++x, ++count) {
                    const Four colour = curve.at(std::min(sample(0, x, y) * lumaScale, float{Table::lumaSteps}));
                    target(0, x, y) = dithered(colour[0], x, y);
                    sum += colour;
                }
            target(1, column, row) = dithered(sum[1] / static_cast<float>(count), column, row);
            target(2, column, row) = dithered(sum[2] / static_cast<float>(count), column + 2, row + 1);
        }
}

} // namespace lumetwin::media
