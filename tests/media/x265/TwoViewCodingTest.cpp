// SPDX-License-Identifier: GPL-3.0-or-later
// What the two-view encoder of the library makes of scenes that are hard for a second view: an outside decoder agrees
// with its reconstruction bit for bit, and two views never cost more than two films.
#include "media/x265/Encoder.h"

#include "tests/media/x265/CodingParameters.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>

namespace lumetwin::media::x265 {
namespace {

using test::TemporaryFolder;
using Bytes = std::vector<std::uint8_t>;

constexpr int width = 320;
constexpr int height = 192;
constexpr int frames = 50;

/// Smooth noise: the same place has the same value, and places far from each other have nothing in common.
double texture(double x, double y, unsigned seed) {
    const auto corner = [seed](int column, int row) {
        unsigned hash = static_cast<unsigned>(column) * 374761393U + static_cast<unsigned>(row) * 668265263U + seed;
        hash = (hash ^ (hash >> 13)) * 1274126177U;
        return static_cast<double>((hash ^ (hash >> 16)) & 255U);
    };
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double right = x - column;
    const double down = y - row;
    return (corner(column, row) * (1 - right) + corner(column + 1, row) * right) * (1 - down) +
           (corner(column, row + 1) * (1 - right) + corner(column + 1, row + 1) * right) * down;
}

/// Luma of a frame of one eye at a place: 0 to 255.
using Scene = std::function<double(int eye, int frame, int x, int y)>;

double ground(double x, double y, unsigned seed) {
    return 0.5 * texture(x / 5, y / 5, seed) + 0.5 * texture(x / 23, y / 23, seed + 1);
}

double pan(int eye, int frame, int x, int y) {
    return ground(x + 9.0 * frame + eye * 14, y, 7);
}

double unrelated(int eye, int frame, int x, int y) {
    return ground(x + 2.0 * frame, y, eye ? 1000 : 7);
}

double fade(int eye, int frame, int x, int y) {
    return pan(eye, frame / 4, x, y) * (1 - 0.015 * frame);
}

struct View {
    Bytes luma;
    Bytes chroma = Bytes(static_cast<std::size_t>(width / 2) * (height / 2), 128);
};

View draw(const Scene &scene, int eye, int frame) {
    View view;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            view.luma.push_back(static_cast<std::uint8_t>(16 + scene(eye, frame, x, y) * 219 / 255));
    return view;
}

struct Coded {
    Bytes stream;
    std::array<double, 2> bytes{};
    std::array<double, 2> squaredError{};
    /// Of both views of each frame in order of showing, as an outside decoder gives them out.
    std::vector<Bytes> reconstruction = std::vector<Bytes>(std::size_t{2} * frames);

    double psnr(int view) const {
        return 10 * std::log10(255.0 * 255 * width * height * frames / squaredError.at(static_cast<std::size_t>(view)));
    }
};

class Coder {
public:
    Coder(const Scene &scene, int views, int firstEye)
        : scene_(scene), views_(views), firstEye_(firstEye),
          parameters_(codingParameters(*libraryFor(8), width, height, views, 28)), encoder_(openEncoder(*parameters_)) {
    }

    Coded code() {
        x265_nal *units = nullptr;
        std::uint32_t count = 0;
        x265_encoder_headers(encoder_.get(), &units, &count);
        for (std::uint32_t index = 0; index < count; ++index)
            if (units[index].type != NAL_UNIT_PREFIX_SEI)
                append(units[index]);
        for (int frame = 0; frame < frames; ++frame)
            encode(frame);
        while (step(nullptr))
            ;
        return std::move(coded_);
    }

private:
    void append(const x265_nal &unit) {
        coded_.stream.insert(coded_.stream.end(), unit.payload, unit.payload + unit.sizeBytes);
    }

    void encode(int frame) {
        std::array<View, 2> drawn;
        std::array<x265_picture, 2> input;
        for (int view = 0; view < views_; ++view) {
            View &eye = drawn.at(static_cast<std::size_t>(view)) = draw(scene_, firstEye_ + view, frame);
            x265_picture &picture = input.at(static_cast<std::size_t>(view));
            x265_picture_init(parameters_.get(), &picture);
            picture.planes[0] = eye.luma.data();
            picture.planes[1] = picture.planes[2] = eye.chroma.data();
            picture.stride[0] = width;
            picture.stride[1] = picture.stride[2] = width / 2;
            picture.bitDepth = 8;
            picture.pts = frame;
        }
        step(input.data());
    }

    bool step(x265_picture *input) {
        std::array<x265_picture, 2> output;
        for (x265_picture &picture : output)
            x265_picture_init(parameters_.get(), &picture);
        x265_nal *units = nullptr;
        std::uint32_t count = 0;
        if (x265_encoder_encode(encoder_.get(), &units, &count, input, output.data()) <= 0)
            return false;
        for (std::uint32_t index = 0; index < count; ++index) {
            append(units[index]);
            const std::uint8_t *header = units[index].payload + (units[index].payload[2] == 1 ? 3 : 4);
            coded_.bytes.at((header[1] >> 3) & 1) += units[index].sizeBytes;
        }
        for (int view = 0; view < views_; ++view)
            keep(output.at(static_cast<std::size_t>(view)), static_cast<int>(output[0].pts), view);
        return true;
    }

    void keep(const x265_picture &picture, int frame, int view) {
        Bytes &samples = coded_.reconstruction[static_cast<std::size_t>(frame) * 2 + static_cast<std::size_t>(view)];
        const View drawn = draw(scene_, firstEye_ + view, frame);
        for (int plane = 0; plane < 3; ++plane)
            for (int y = 0; y < (plane ? height / 2 : height); ++y) {
                const auto *row = static_cast<const std::uint8_t *>(picture.planes[plane]) +
                                  static_cast<std::ptrdiff_t>(y) * picture.stride[plane];
                samples.insert(samples.end(), row, row + (plane ? width / 2 : width));
            }
        for (std::size_t at = 0; at < drawn.luma.size(); ++at)
            coded_.squaredError.at(static_cast<std::size_t>(view)) += std::pow(samples[at] - drawn.luma[at], 2);
    }

    Scene scene_;
    int views_;
    int firstEye_;
    Parameters parameters_;
    Encoder encoder_;
    Coded coded_;
};

Coded twoViews(const Scene &scene) {
    return Coder(scene, 2, 0).code();
}

[[maybe_unused]] Coded film(const Scene &scene, int eye) {
    return Coder(scene, 1, eye).code();
}

void expectTheDecoderToAgree(const Scene &scene) {
    const Coded coded = twoViews(scene);
    const TemporaryFolder folder;
    test::writeFile(folder / "views.hevc", coded.stream);
    test::ffmpeg({"-view_ids", "-1", "-i", (folder / "views.hevc").string(), "-fps_mode", "passthrough", "-f",
                  "rawvideo", "-pix_fmt", "yuv420p", (folder / "views.raw").string()});
    const Bytes decoded = test::readFile(folder / "views.raw");
    Bytes expected;
    for (const Bytes &picture : coded.reconstruction)
        expected.insert(expected.end(), picture.begin(), picture.end());
    EXPECT_TRUE(decoded == expected) << decoded.size() << " and " << expected.size() << " bytes";
}

TEST(TwoViewCoding, IsDecodedBitForBitWhereTheCameraMovesFast) {
    expectTheDecoderToAgree(pan);
}

TEST(TwoViewCoding, IsDecodedBitForBitWhereTheEyesHaveNothingInCommon) {
    expectTheDecoderToAgree(unrelated);
}

TEST(TwoViewCoding, IsDecodedBitForBitInAFade) {
    expectTheDecoderToAgree(fade);
}

#ifdef X265_BITRATE_OF_ALL_VIEWS

TEST(TwoViewCoding, CostsNoMoreThanTwoFilmsWhereTheEyesHaveNothingInCommon) {
    const Coded both = twoViews(unrelated);
    const Coded right = film(unrelated, 1);
    EXPECT_LE(both.bytes[1], 1.01 * right.bytes[0]);
    EXPECT_GE(both.psnr(1), right.psnr(0) - 0.6) << "a slightly higher quantiser, and nothing else";
}

TEST(TwoViewCoding, CostsLessThanTwoFilmsWhereTheCameraMovesFast) {
    // The second view's search once lost what moves farther than its pattern reaches.
    const Coded both = twoViews(pan);
    const Coded right = film(pan, 1);
    EXPECT_LE(both.bytes[1], 0.75 * right.bytes[0]);
    EXPECT_GE(both.psnr(1), right.psnr(0) - 1);
}

TEST(TwoViewCoding, KeepsTheEyesWithinADecibel) {
    for (const Scene &scene : {Scene(pan), Scene(unrelated), Scene(fade)}) {
        const Coded both = twoViews(scene);
        EXPECT_NEAR(both.psnr(0), both.psnr(1), 1);
    }
}

#endif

} // namespace
} // namespace lumetwin::media::x265
