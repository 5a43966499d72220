// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StereoEncoder.h"

#include "media/MediaError.h"
#include "media/hevc/NalUnits.h"
#include "media/x265/ConformanceWindow.h"
#include "media/x265/Encoder.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace lumetwin::media::x265 {
namespace {

using test::TemporaryFolder;

StereoFormat formatOf(int width, int height, std::int64_t bitRate = 1'000'000) {
    StereoFormat format;
    format.width = width;
    format.height = height;
    format.averageBitRate = bitRate;
    format.colour = {1, 1, 1, ColourRange::limited, ChromaLocation::left};
    return format;
}

/// A moving pattern with noise; the right view sees it shifted.
Picture scene(int width, int height, int frame, bool right, int noise = 6) {
    Picture picture = makePicture(width, height, yuv420);
    std::minstd_rand random(static_cast<unsigned>(frame * 2 + right + 1));
    std::vector<double> across;
    for (int x = 0; x < width; ++x)
        across.push_back(std::sin((x + frame * 2 + (right ? 6 : 0)) * 0.11));
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y) {
            const double down = std::cos(y * 0.13 + frame * 0.05);
            for (int x = 0; x < picture.planeWidth(plane); ++x) {
                const double wave = across[static_cast<std::size_t>(x)] + down;
                const int grain = static_cast<int>(random() % static_cast<unsigned>(2 * noise + 1)) - noise;
                picture.planes[plane].data[y * picture.planes[plane].stride + x] =
                    static_cast<std::uint8_t>(plane == 0 ? 126 + 40 * wave + grain : 128 + 10 * wave);
            }
        }
    return picture;
}

Picture black(int width, int height) {
    Picture picture = makePicture(width, height, yuv420);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            std::fill_n(picture.planes[plane].data + y * picture.planes[plane].stride, picture.planeWidth(plane),
                        plane == 0 ? 16 : 128);
    return picture;
}

struct Encoded {
    std::vector<std::uint8_t> parameterSets;
    std::vector<AccessUnit> units;
    double bits() const {
        double sum = 0;
        for (const AccessUnit &unit : units)
            sum += 8.0 * static_cast<double>(unit.bytes.size());
        return sum;
    }
};

Encoded encode(const StereoFormat &format, int frames, int noise = 6) {
    StereoEncoder encoder("test.mov", format);
    Encoded result{encoder.parameterSets(), {}};
    const auto sink = [&](const AccessUnit &unit) { result.units.push_back(unit); };
    for (int frame = 0; frame < frames; ++frame)
        encoder.encode(scene(format.width, format.height, frame, false, noise),
                       scene(format.width, format.height, frame, true, noise), frame * format.frameDuration, sink);
    encoder.finish(sink);
    return result;
}

std::vector<hevc::NalBytes> unitsOf(const std::vector<std::uint8_t> &stream) {
    std::vector<std::size_t> starts;
    for (std::size_t at = 0; at + 3 < stream.size(); ++at)
        if (stream[at] == 0 && stream[at + 1] == 0 && stream[at + 2] == 0 && stream[at + 3] == 1)
            starts.push_back(at);
    starts.push_back(stream.size());
    std::vector<hevc::NalBytes> units;
    for (std::size_t index = 0; index + 1 < starts.size(); ++index)
        units.push_back(hevc::NalBytes(stream).subspan(starts[index] + 4, starts[index + 1] - starts[index] - 4));
    return units;
}

TEST(StereoEncoder, LosesNoFrameAtTheEnd) {
    for (const int frames : {1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 31}) {
        const Encoded encoded = encode(formatOf(128, 96), frames);
        ASSERT_EQ(encoded.units.size(), static_cast<std::size_t>(frames));
        std::vector<std::int64_t> times;
        for (const AccessUnit &unit : encoded.units) {
            times.push_back(unit.time);
            EXPECT_LE(unit.decodingTime, unit.time);
        }
        std::sort(times.begin(), times.end());
        for (int frame = 0; frame < frames; ++frame)
            EXPECT_EQ(times[static_cast<std::size_t>(frame)], frame * 20);
    }
}

TEST(StereoEncoder, KeepsTimesThatAreNotEvenlySpaced) {
    StereoEncoder encoder("test.mov", formatOf(128, 96));
    std::vector<std::int64_t> times;
    std::vector<AccessUnit> units;
    const auto sink = [&](const AccessUnit &unit) { units.push_back(unit); };
    std::int64_t time = 0;
    for (int frame = 0; frame < 20; ++frame) {
        times.push_back(time);
        encoder.encode(scene(128, 96, frame, false), scene(128, 96, frame, true), time, sink);
        time += 1 + frame * 7 % 50;
    }
    encoder.finish(sink);
    std::vector<std::int64_t> shown;
    std::int64_t before = -1000;
    for (const AccessUnit &unit : units) {
        shown.push_back(unit.time);
        EXPECT_GT(unit.decodingTime, before);
        EXPECT_LE(unit.decodingTime, unit.time);
        before = unit.decodingTime;
    }
    std::sort(shown.begin(), shown.end());
    EXPECT_EQ(shown, times);
}

TEST(StereoEncoder, EndsWithoutAnyFrame) {
    EXPECT_TRUE(encode(formatOf(128, 96), 0).units.empty());
}

TEST(StereoEncoder, FinishesOnlyOnce) {
    StereoEncoder encoder("test.mov", formatOf(128, 96));
    int units = 0;
    const auto sink = [&](const AccessUnit &) { ++units; };
    encoder.encode(scene(128, 96, 0, false), scene(128, 96, 0, true), 0, sink);
    encoder.finish(sink);
    encoder.finish(sink);
    EXPECT_EQ(units, 1);
}

TEST(StereoEncoder, GivesTheParameterSetsOfBothLayersAndTheEyesOfTheViews) {
    const Encoded encoded = encode(formatOf(128, 96), 1);
    std::vector<std::pair<int, int>> kinds;
    for (const hevc::NalBytes unit : unitsOf(encoded.parameterSets))
        kinds.emplace_back(hevc::nalType(unit), hevc::nalLayer(unit));
    EXPECT_EQ(kinds, (std::vector<std::pair<int, int>>{{32, 0}, {33, 0}, {33, 1}, {34, 0}, {34, 1}, {39, 0}}));
    const hevc::NalBytes eyes = unitsOf(encoded.parameterSets).back();
    EXPECT_EQ(std::vector<std::uint8_t>(eyes.begin(), eyes.end()),
              (std::vector<std::uint8_t>{0x4E, 0x01, 0xB0, 0x04, 0x04, 0x0D, 0x00, 0x20, 0x80}));
}

TEST(StereoEncoder, PutsBothLayersAndNothingElseIntoEachAccessUnit) {
    const Encoded encoded = encode(formatOf(128, 96), 75);
    int keyFrames = 0;
    for (const AccessUnit &access : encoded.units) {
        const auto units = unitsOf(access.bytes);
        ASSERT_EQ(units.size(), 2U);
        EXPECT_EQ(hevc::nalLayer(units[0]), 0);
        EXPECT_EQ(hevc::nalLayer(units[1]), 1);
        EXPECT_LT(hevc::nalType(units[0]), 32);
        EXPECT_LT(hevc::nalType(units[1]), 32);
        EXPECT_EQ(access.keyFrame, hevc::nalType(units[0]) >= 16 && hevc::nalType(units[0]) <= 21);
        keyFrames += access.keyFrame;
    }
    EXPECT_TRUE(encoded.units[0].keyFrame);
    EXPECT_EQ(keyFrames, 2) << "one every two seconds";
}

TEST(StereoEncoder, PredictsTheRightViewFromTheLeft) {
    // Equal views without grain: almost nothing is left to say about the right one.
    StereoEncoder encoder("test.mov", formatOf(256, 192, 4'000'000));
    double base = 0;
    double enhancement = 0;
    const auto sink = [&](const AccessUnit &access) {
        for (const hevc::NalBytes unit : unitsOf(access.bytes))
            (hevc::nalLayer(unit) == 0 ? base : enhancement) += static_cast<double>(unit.size());
    };
    for (int frame = 0; frame < 8; ++frame) {
        const Picture view = scene(256, 192, frame, false);
        encoder.encode(view, view, frame * 20, sink);
    }
    encoder.finish(sink);
    EXPECT_LT(enhancement, base / 10);
}

TEST(StereoEncoder, MeetsTheAverageBitRateOfTheWholeStream) {
    constexpr std::int64_t bitRate = 120'000;
    const Encoded encoded = encode(formatOf(192, 112, bitRate), 600, 4);
    EXPECT_NEAR(encoded.bits() / 20 / bitRate, 1, 0.03);
}

TEST(StereoEncoder, SpendsWhatAStillPassageSaved) {
    constexpr std::int64_t bitRate = 120'000;
    const StereoFormat format = formatOf(192, 112, bitRate);
    const auto view = [](int frame, bool right) {
        return frame >= 150 && frame < 270 ? black(192, 112) : scene(192, 112, frame, right, 4);
    };
    StereoEncoder encoder("test.mov", format);
    Encoded encoded;
    const auto sink = [&](const AccessUnit &unit) { encoded.units.push_back(unit); };
    for (int frame = 0; frame < 900; ++frame)
        encoder.encode(view(frame, false), view(frame, true), frame * format.frameDuration, sink);
    encoder.finish(sink);
    EXPECT_NEAR(encoded.bits() / 30 / bitRate, 1, 0.03);
}

#ifdef X265_BITRATE_OF_ALL_VIEWS

TEST(StereoEncoder, GivesTheSameBytesInEveryRun) {
    const Encoded once = encode(formatOf(192, 112, 300'000), 90, 4);
    for (int run = 0; run < 3; ++run) {
        const Encoded again = encode(formatOf(192, 112, 300'000), 90, 4);
        ASSERT_EQ(again.units.size(), once.units.size());
        for (std::size_t index = 0; index < once.units.size(); ++index)
            ASSERT_TRUE(again.units[index].bytes == once.units[index].bytes) << "access unit " << index;
    }
}

#endif

std::vector<std::uint8_t> lumaOf(const Picture &picture) {
    std::vector<std::uint8_t> luma;
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t *row = picture.planes[0].data + y * picture.planes[0].stride;
        luma.insert(luma.end(), row, row + picture.width);
    }
    return luma;
}

/// Both views of every frame, left first, as an independent decoder gives them out.
std::vector<std::vector<std::uint8_t>> decodedViews(const Encoded &encoded, int width, int height) {
    const TemporaryFolder folder;
    std::vector<std::uint8_t> stream = encoded.parameterSets;
    for (const AccessUnit &unit : encoded.units)
        stream.insert(stream.end(), unit.bytes.begin(), unit.bytes.end());
    test::writeFile(folder / "views.hevc", stream);
    test::ffmpeg({"-view_ids", "-1", "-i", (folder / "views.hevc").string(), "-fps_mode", "passthrough", "-f",
                  "rawvideo", "-pix_fmt", "yuv420p", (folder / "views.raw").string()});
    const std::vector<std::uint8_t> samples = test::readFile(folder / "views.raw");
    const std::size_t size = static_cast<std::size_t>(width) * height;
    std::vector<std::vector<std::uint8_t>> views;
    for (std::size_t at = 0; at + size <= samples.size(); at += size * 3 / 2)
        views.emplace_back(samples.begin() + static_cast<std::ptrdiff_t>(at),
                           samples.begin() + static_cast<std::ptrdiff_t>(at + size));
    return views;
}

TEST(StereoEncoder, IsDecodedWithoutDrift) {
    // Eyes below the smallest coded size, at it, and beside multiples of the coding units, of which larger eyes have
    // larger ones.
    for (const auto &[width, height] : std::vector<std::pair<int, int>>{
             {2, 2}, {10, 16}, {64, 50}, {96, 96}, {98, 102}, {100, 322}, {258, 194}, {258, 258}, {322, 270}}) {
        SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
        const auto views = decodedViews(encode(formatOf(width, height, 4'000'000), 24, 2), width, height);
        ASSERT_EQ(views.size(), 48U);
        for (int frame = 0; frame < 24; ++frame)
            for (const bool right : {false, true})
                EXPECT_GT(test::psnr(lumaOf(scene(width, height, frame, right, 2)),
                                     views[static_cast<std::size_t>(frame * 2 + right)]),
                          34)
                    << "frame " << frame << (right ? " right" : " left");
    }
}

TEST(StereoEncoder, IsDecodedWithoutDriftWhereScenesChangeSoonAfterAKeyFrame) {
    // Scenes of a few frames: each cut comes earlier than the encoder likes to place a key frame.
    constexpr int width = 192;
    constexpr int height = 128;
    const std::vector<int> cuts{0, 1, 3, 4, 7, 12, 13, 20};
    const auto picture = [&](int frame, bool right) {
        const int shot = static_cast<int>(std::upper_bound(cuts.begin(), cuts.end(), frame) - cuts.begin());
        Picture shown = scene(width, height, frame + shot * 1000, right, 2);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                std::uint8_t &sample = shown.planes[0].data[y * shown.planes[0].stride + x];
                sample = static_cast<std::uint8_t>(shot % 2 ? 255 - sample : sample / 2 + x / 2);
            }
        return shown;
    };
    StereoEncoder encoder("test.mov", formatOf(width, height, 8'000'000));
    Encoded encoded{encoder.parameterSets(), {}};
    const auto sink = [&](const AccessUnit &unit) { encoded.units.push_back(unit); };
    for (int frame = 0; frame < 24; ++frame)
        encoder.encode(picture(frame, false), picture(frame, true), frame * 20, sink);
    encoder.finish(sink);
    const auto views = decodedViews(encoded, width, height);
    ASSERT_EQ(views.size(), 48U);
    for (int frame = 0; frame < 24; ++frame)
        for (const bool right : {false, true})
            EXPECT_GT(test::psnr(lumaOf(picture(frame, right)), views[static_cast<std::size_t>(frame * 2 + right)]), 32)
                << "frame " << frame << (right ? " right" : " left");
}

TEST(StereoEncoder, RefusesPicturesBeyondEveryLevel) {
    EXPECT_THROW(StereoEncoder("huge.mov", formatOf(8192, 4354)), MediaError);
    EXPECT_THROW(StereoEncoder("huge.mov", formatOf(16384, 16384)), MediaError);
}

TEST(StereoEncoder, TakesEveryPreset) {
    // The slowest ones have as many merge candidates as HEVC allows, and no room for another.
    for (const char *preset : {"ultrafast", "superfast", "veryfast", "medium", "veryslow", "placebo"}) {
        SCOPED_TRACE(preset);
        StereoFormat format = formatOf(128, 96);
        format.preset = preset;
        EXPECT_NO_THROW(StereoEncoder("test.mov", format));
    }
}

TEST(StereoEncoder, RefusesAnUnknownPresetWithTheFilesName) {
    StereoFormat format = formatOf(128, 96);
    format.preset = "nonsense";
    try {
        StereoEncoder encoder("holiday.mov", format);
        FAIL();
    } catch (const MediaError &error) {
        EXPECT_STREQ(error.what(), "Cannot encode holiday.mov: there is no preset nonsense");
    }
}

TEST(ConformanceWindow, IsNothingForAnythingButTwoViewParameterSets) {
    EXPECT_FALSE(withConformanceWindow(std::vector<std::uint8_t>{0x40, 0x01}, 10, 10));
    EXPECT_FALSE(withConformanceWindow(std::vector<std::uint8_t>{0x42, 0x01, 0, 0}, 10, 10));
    EXPECT_FALSE(withConformanceWindow(std::vector<std::uint8_t>(64, 0xFF), 10, 10));
    const Encoded encoded = encode(formatOf(128, 96), 0);
    const hevc::NalBytes video = unitsOf(encoded.parameterSets)[0];
    EXPECT_FALSE(withConformanceWindow(video, 130, 96)) << "larger than the coded picture";
    for (std::size_t size = 2; size < video.size(); ++size)
        EXPECT_FALSE(withConformanceWindow(video.first(size), 64, 64) && size < video.size() / 2) << size;
}

TEST(ConformanceWindow, OfTheWholePictureIsEmptyAndChangesNothingElse) {
    const Encoded encoded = encode(formatOf(64, 50), 0);
    for (const int index : {0, 1}) {
        const hevc::NalBytes unit = unitsOf(encoded.parameterSets)[static_cast<std::size_t>(index)];
        const auto again = withConformanceWindow(unit, 64, 50);
        ASSERT_TRUE(again);
        EXPECT_EQ(*again, std::vector<std::uint8_t>(unit.begin(), unit.end()));
    }
}

} // namespace
} // namespace lumetwin::media::x265
