// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/StereoScenes.h"

#include "tests/support/Drawing.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

namespace lumetwin::test {

namespace {

double hashed(unsigned seed, int x, int y) {
    auto value =
        static_cast<std::uint32_t>(x) * 0x8da6b343U + static_cast<std::uint32_t>(y) * 0xd8163841U + seed * 0xcb1ab31fU;
    value ^= value >> 13;
    value *= 0x5bd1e995U;
    value ^= value >> 15;
    value *= 0x27d4eb2dU;
    value ^= value >> 14;
    return static_cast<double>(value) / 4294967295.0 - 0.5;
}

/// Random values on a grid, smooth in between; -0.5 to 0.5.
double smoothNoise(unsigned seed, double x, double y) {
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const auto eased = [](double part) { return part * part * (3 - 2 * part); };
    const double across = eased(x - column);
    const double down = eased(y - row);
    const auto at = [&](int dx, int dy) { return hashed(seed, column + dx, row + dy); };
    const double upper = at(0, 0) + across * (at(1, 0) - at(0, 0));
    const double lower = at(0, 1) + across * (at(1, 1) - at(0, 1));
    return upper + down * (lower - upper);
}

double texture(unsigned seed, double x, double y) {
    double value = 128 + 120 * hashed(seed, 7, 7);
    for (const double scale : {5.0, 13.0, 41.0})
        value += 45 * smoothNoise(seed + static_cast<unsigned>(scale), x / scale, y / scale);
    return value;
}

struct Thing {
    double left = 0;
    double width = 0;
    double bottom = 0;
    double height = 0;
    double disparity = 0; ///< pixels
    unsigned seed = 0;
};

/// The scene as one eye sees it. `side` is -0.5 for the left eye and 0.5 for the right one.
class Painter {
public:
    explicit Painter(const StereoScene &scene) : scene_(scene) {
        std::mt19937 random(scene.seed);
        const auto between = [&](double low, double high) {
            return low + (high - low) * static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
        };
        for (int index = 0; index < scene.things; ++index) {
            Thing thing;
            thing.width = between(0.06, 0.16) * scene.width;
            thing.left = between(0, 1) * scene.width - thing.width / 2;
            thing.bottom = between(0.6, 0.95) * scene.height;
            thing.height = between(0.2, 0.45) * scene.height;
            thing.disparity = floorDisparity(thing.bottom);
            thing.seed = static_cast<unsigned>(random());
            things_.push_back(thing);
        }
        std::ranges::sort(things_, {}, &Thing::bottom); // far ones first
    }

    double sample(double x, double y, double side) const {
        if (scene_.isHanging)
            y = scene_.height - 1 - y;
        for (auto thing = things_.rbegin(); thing != things_.rend(); ++thing) {
            const double place = x - side * thing->disparity;
            if (place >= thing->left && place < thing->left + thing->width && y <= thing->bottom &&
                y > thing->bottom - thing->height)
                return texture(thing->seed, place, y);
        }
        const bool isFloor = y > horizon();
        const double disparity = isFloor ? floorDisparity(y) : scene_.far * scene_.width / 100;
        return texture(scene_.seed * 31 + (isFloor ? 1 : 0), x - side * disparity, y);
    }

private:
    double horizon() const { return 0.5 * scene_.height; }
    double floorDisparity(double y) const {
        const double share = (y - horizon()) / (scene_.height - horizon());
        return (scene_.far + (scene_.near - scene_.far) * share) * scene_.width / 100;
    }

    StereoScene scene_;
    std::vector<Thing> things_;
};

Picture painted(const StereoScene &scene, const Painter &painter, double side) {
    std::mt19937 random(scene.seed + (side > 0 ? 1000 : 0));
    std::normal_distribution<double> noise(0, std::max(1e-9, scene.noise));
    const double angle = side > 0 ? scene.turn * std::numbers::pi / 180 : 0;
    const double lower = side > 0 ? scene.lower * scene.width / 100 : 0;
    return drawn(scene.width, scene.height, grey8, [&](int, int column, int row) {
        const double x = column - scene.width / 2.0;
        const double y = row - lower - scene.height / 2.0;
        const double seenX = x * std::cos(angle) + y * std::sin(angle) + scene.width / 2.0;
        const double seenY = y * std::cos(angle) - x * std::sin(angle) + scene.height / 2.0;
        return static_cast<int>(std::clamp(painter.sample(seenX, seenY, side) + noise(random), 0.0, 255.0));
    });
}

void copyInto(const Picture &from, const Picture &to, int x, int y) {
    for (int row = 0; row < from.height; ++row)
        std::memcpy(to.planes[0].data + (y + row) * to.planes[0].stride + x,
                    from.planes[0].data + row * from.planes[0].stride, static_cast<std::size_t>(from.width));
}

} // namespace

media::EyePair<Picture> drawnEyes(const StereoScene &scene) {
    const Painter painter(scene);
    return {painted(scene, painter, -0.5), painted(scene, painter, 0.5)};
}

Picture besideEachOther(const media::EyePair<Picture> &eyes) {
    Picture both = media::makePicture(eyes.left.width + eyes.right.width, eyes.left.height, grey8);
    copyInto(eyes.left, both, 0, 0);
    copyInto(eyes.right, both, eyes.left.width, 0);
    return both;
}

Picture aboveEachOther(const media::EyePair<Picture> &eyes) {
    Picture both = media::makePicture(eyes.left.width, eyes.left.height + eyes.right.height, grey8);
    copyInto(eyes.left, both, 0, 0);
    copyInto(eyes.right, both, 0, eyes.left.height);
    return both;
}

Picture drawnTexture(int width, int height, unsigned seed) {
    return drawn(width, height, grey8,
                 [&](int, int x, int y) { return static_cast<int>(std::clamp(texture(seed, x, y), 0.0, 255.0)); });
}

} // namespace lumetwin::test
