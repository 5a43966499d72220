// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Placement.h"
#include "media/zimg/PlaneResampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace lumetwin::media {

namespace {

using zimg::PlaneView;

// Positions closer than this to a whole number are whole: rounding of the arithmetic, far below one grey level.
constexpr double wholeTolerance = 1e-6;

bool whole(double value) { return std::abs(value - std::round(value)) < wholeTolerance; }

PlaneView view(const Picture &picture, int plane) {
    return {picture.planes[plane].data, picture.planes[plane].stride, picture.planeWidth(plane),
            picture.planeHeight(plane), picture.format.depth};
}

Rect scaled(const Rect &rect, double x, double y) { return {rect.x / x, rect.y / y, rect.width / x, rect.height / y}; }

Rect intersection(const Rect &first, const Rect &second) {
    const double left = std::max(first.x, second.x);
    const double top = std::max(first.y, second.y);
    return {left, top, std::min(first.x + first.width, second.x + second.width) - left,
            std::min(first.y + first.height, second.y + second.height) - top};
}

/// Whole samples of a plane.
struct Block {
    int x;
    int y;
    int width;
    int height;
};

/// The samples that a rectangle touches, within a plane.
Block outerBlock(const Rect &rect, int width, int height) {
    const int left = std::max(0, static_cast<int>(std::floor(rect.x + wholeTolerance)));
    const int top = std::max(0, static_cast<int>(std::floor(rect.y + wholeTolerance)));
    const int right = std::min<int>(width, static_cast<int>(std::ceil(rect.x + rect.width - wholeTolerance)));
    const int bottom = std::min<int>(height, static_cast<int>(std::ceil(rect.y + rect.height - wholeTolerance)));
    return {left, top, right - left, bottom - top};
}

/// By how much of a sample its true place lies before its cell's centre, in samples (ITU-T H.273, 8.7): left and
/// top-left chroma sits on the first luma sample of its group, centred chroma amid them.
double siting(bool onFirstSample, int shift) { return onFirstSample ? 0.5 / (1 << shift) - 0.5 : 0; }

struct Siting {
    double x;
    double y;
};

Siting sitingOf(const Picture &picture, int plane) {
    const ChromaLocation location = picture.colour.chromaLocation;
    const bool left = location != ChromaLocation::centre; // what video means when it says nothing
    const bool top = location == ChromaLocation::topLeft;
    return {siting(left, picture.format.shiftX(plane)), siting(top, picture.format.shiftY(plane))};
}

/// How much of each sample in [first, first + count) lies in [begin, begin + length). What reaches beyond the canvas
/// (the last chroma sample of an odd size) does not count.
std::vector<float> coverage(int first, int count, double begin, double length, double canvasEnd) {
    std::vector<float> covered(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        const double cellBegin = first + index;
        const double cellEnd = std::min(cellBegin + 1, canvasEnd);
        const double part = (std::min(cellEnd, begin + length) - std::max(cellBegin, begin)) / (cellEnd - cellBegin);
        covered[static_cast<std::size_t>(index)] = static_cast<float>(std::clamp(part, 0.0, 1.0));
        if (covered[static_cast<std::size_t>(index)] > 1 - wholeTolerance)
            covered[static_cast<std::size_t>(index)] = 1;
    }
    return covered;
}

template <typename Sample>
void mixRow(Sample *target, const Sample *source, const std::vector<float> &columns, float row) {
    for (std::size_t index = 0; index < columns.size(); ++index) {
        const float part = columns[index] * row;
        const float mixed = static_cast<float>(target[index]) * (1 - part) + static_cast<float>(source[index]) * part;
        target[index] = static_cast<Sample>(std::lround(mixed));
    }
}

template <typename Sample>
void mixEnds(Sample *target, const Sample *source, const std::vector<float> &columns) {
    // Only the first and last column can be covered in part.
    const Sample first = target[0];
    const Sample last = target[columns.size() - 1];
    std::memcpy(target, source, columns.size() * sizeof(Sample));
    const auto mix = [](Sample below, Sample above, float part) {
        return static_cast<Sample>(std::lround(static_cast<float>(below) * (1 - part) + static_cast<float>(above) * part));
    };
    const std::size_t end = columns.size() - 1;
    if (columns[0] < 1)
        target[0] = mix(first, source[0], columns[0]);
    if (end > 0 && columns[end] < 1)
        target[end] = mix(last, source[end], columns[end]);
}

/// One plane of a placement, in samples of that plane.
struct PlanePlacement {
    Rect target;
    Rect visible;
    Block block;
    double canvasWidth; ///< with a fraction where an odd size ends amid a chroma sample
    double canvasHeight;

    PlanePlacement(const Placement &placement, const Picture &canvas, int plane) {
        const double x = 1 << canvas.format.shiftX(plane);
        const double y = 1 << canvas.format.shiftY(plane);
        target = scaled(placement.target, x, y);
        visible = intersection(target, scaled(placement.clip, x, y));
        block = outerBlock(visible, canvas.planeWidth(plane), canvas.planeHeight(plane));
        canvasWidth = canvas.width / x;
        canvasHeight = canvas.height / y;
    }

    bool empty() const { return block.width < 1 || block.height < 1; }
};

/// Puts a block of samples onto the canvas; samples at its border that are covered in part are mixed with the canvas.
void putBlock(const PlaneView &source, const PlaneView &canvas, const PlanePlacement &place) {
    const Block &block = place.block;
    const Rect &visible = place.visible;
    const std::vector<float> columns = coverage(block.x, block.width, visible.x, visible.width, place.canvasWidth);
    const std::vector<float> rows = coverage(block.y, block.height, visible.y, visible.height, place.canvasHeight);
    for (int row = 0; row < block.height; ++row) {
        const std::uint8_t *from = source.data + row * source.stride;
        std::uint8_t *to = canvas.data + (block.y + row) * canvas.stride +
                           static_cast<std::ptrdiff_t>(block.x) * canvas.bytes();
        const float part = rows[static_cast<std::size_t>(row)];
        if (canvas.depth > 8) {
            auto *target = reinterpret_cast<std::uint16_t *>(to);
            const auto *samples = reinterpret_cast<const std::uint16_t *>(from);
            part < 1 ? mixRow(target, samples, columns, part) : mixEnds(target, samples, columns);
        } else {
            part < 1 ? mixRow(to, from, columns, part) : mixEnds(to, from, columns);
        }
    }
}

void fillRow(std::uint8_t *row, int width, int depth, int value) {
    if (depth > 8)
        std::fill_n(reinterpret_cast<std::uint16_t *>(row), width, static_cast<std::uint16_t>(value));
    else
        std::memset(row, value, static_cast<std::size_t>(width));
}

/// The sample value of black.
int black(const Picture &picture, int plane) {
    const int depth = picture.format.depth;
    if (picture.format.model == ColourModel::yuv && plane > 0)
        return 1 << (depth - 1);
    const bool limited = picture.format.model == ColourModel::yuv && picture.colour.range != ColourRange::full;
    return limited ? 16 << (depth - 8) : 0;
}

} // namespace

struct Compositor::Filters {
    zimg::PlaneResampler resampler;
    std::vector<std::uint8_t> neutral;

    void placePlane(const Picture &picture, const Placement &placement, Picture &canvas, int plane);
    void placeNeutral(const Placement &placement, Picture &canvas, int plane);
};

void Compositor::Filters::placePlane(const Picture &picture, const Placement &placement, Picture &canvas, int plane) {
    const PlanePlacement place(placement, canvas, plane);
    if (place.empty())
        return;
    const Rect source =
        scaled(placement.source, 1 << picture.format.shiftX(plane), 1 << picture.format.shiftY(plane));
    // Source samples outside the shown part belong to something else: they are cut off before any filter sees them.
    const PlaneView whole_ = view(picture, plane);
    const Block window = outerBlock(source, whole_.width, whole_.height);
    if (window.width < 1 || window.height < 1)
        return;
    const PlaneView samples{whole_.data + window.y * whole_.stride + static_cast<std::ptrdiff_t>(window.x) * whole_.bytes(),
                            whole_.stride, window.width, window.height, whole_.depth};
    const double scaleX = source.width / place.target.width;
    const double scaleY = source.height / place.target.height;
    const Siting from = sitingOf(picture, plane);
    const Siting to = sitingOf(canvas, plane);
    const Rect region{source.x + (place.block.x + to.x - place.target.x) * scaleX - from.x - window.x,
                      source.y + (place.block.y + to.y - place.target.y) * scaleY - from.y - window.y,
                      place.block.width * scaleX, place.block.height * scaleY};
    const PlaneView target = view(canvas, plane);
    const bool untouched = std::abs(scaleX - 1) < 1e-9 && std::abs(scaleY - 1) < 1e-9 && whole(region.x) &&
                           whole(region.y) && samples.depth == target.depth && region.x > -0.5 && region.y > -0.5 &&
                           region.x + region.width < samples.width + 0.5 && region.y + region.height < samples.height + 0.5;
    if (untouched) {
        const PlaneView moved{samples.data + std::lround(region.y) * samples.stride +
                                  std::lround(region.x) * samples.bytes(),
                              samples.stride, place.block.width, place.block.height, samples.depth};
        putBlock(moved, target, place);
        return;
    }
    const bool fullRange = picture.format.model != ColourModel::yuv ||
                           (plane == 0 && picture.colour.range == ColourRange::full);
    putBlock(resampler.resample(samples, region, place.block.width, place.block.height, target.depth, fullRange), target,
             place);
}

void Compositor::Filters::placeNeutral(const Placement &placement, Picture &canvas, int plane) {
    const PlanePlacement place(placement, canvas, plane);
    if (place.empty())
        return;
    const PlaneView target = view(canvas, plane);
    neutral.resize(static_cast<std::size_t>(place.block.width) * target.bytes());
    fillRow(neutral.data(), place.block.width, target.depth, 1 << (target.depth - 1));
    putBlock({neutral.data(), 0, place.block.width, place.block.height, target.depth}, target, place);
}

Compositor::Compositor() : filters_(std::make_unique<Filters>()) {}
Compositor::~Compositor() = default;
Compositor::Compositor(Compositor &&) noexcept = default;
Compositor &Compositor::operator=(Compositor &&) noexcept = default;

void Compositor::fillBlack(Picture &canvas) {
    for (int plane = 0; plane < canvas.format.planeCount(); ++plane)
        for (int row = 0; row < canvas.planeHeight(plane); ++row)
            fillRow(canvas.planes[plane].data + row * canvas.planes[plane].stride, canvas.planeWidth(plane),
                    canvas.format.depth, black(canvas, plane));
}

void Compositor::place(const Picture &picture, const Placement &placement, Picture &canvas) {
    const bool greySource = picture.format.model == ColourModel::grey;
    if (!greySource && picture.format.model != canvas.format.model)
        throw std::logic_error("pictures are placed on canvases of their own colour model");
    for (int plane = 0; plane < canvas.format.planeCount(); ++plane) {
        if (!greySource || plane == 0) {
            filters_->placePlane(picture, placement, canvas, plane);
        } else if (canvas.format.model == ColourModel::yuv) {
            filters_->placeNeutral(placement, canvas, plane);
        } else {
            Picture same = picture; // grey in each of red, green and blue
            same.format.model = ColourModel::rgb;
            same.planes = {picture.planes[0], picture.planes[0], picture.planes[0]};
            filters_->placePlane(same, placement, canvas, plane);
        }
    }
}

} // namespace lumetwin::media
