// SPDX-License-Identifier: GPL-3.0-or-later
// Two views of ten bits: an outside decoder agrees with the encoder's reconstruction bit for bit, and the headers say
// what the streams are.
#include "media/x265/Encoder.h"
#include "media/x265/StereoEncoder.h"

#include "media/hevc/BitReader.h"
#include "media/hevc/CodedUnits.h"
#include "tests/media/x265/CodingParameters.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace lumetwin::media::x265 {
namespace {

using test::TemporaryFolder;
using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::uint16_t>;

constexpr int deepWidth = 160;
constexpr int deepHeight = 96;

/// One plane of a view, 0 to 1023: smooth waves that move, with two bits of grain.
Samples plane(int view, int frame, int columns, int rows, int mean) {
    Samples samples;
    samples.reserve(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    unsigned hash = static_cast<unsigned>(frame * 2 + view) * 747796405U + 2891336453U;
    std::vector<double> across;
    for (int x = 0; x < columns; ++x)
        across.push_back(std::sin((x + 3 * frame + 7 * view) * 0.09));
    for (int y = 0; y < rows; ++y) {
        const double down = std::cos((y + frame) * 0.12);
        for (int x = 0; x < columns; ++x) {
            hash = hash * 1664525U + 1013904223U;
            const double wave = across[static_cast<std::size_t>(x)] + down;
            samples.push_back(static_cast<std::uint16_t>(mean + 150 * wave + (hash >> 30)));
        }
    }
    return samples;
}

Parameters tenBitParameters(const x265_api &library) {
    Parameters parameters = codingParameters(library, deepWidth, deepHeight, 2, 20);
    parameters->sourceBitDepth = parameters->internalBitDepth = 10;
    parameters->maxCUSize = 32;
    return parameters;
}

class DeepCoder {
public:
    explicit DeepCoder(int frames)
        : library_(*libraryFor(10)), parameters_(tenBitParameters(library_)), encoder_(openEncoder(*parameters_)),
          reconstruction(static_cast<std::size_t>(2 * frames)) {
        x265_nal *units = nullptr;
        std::uint32_t count = 0;
        library_.encoder_headers(encoder_.get(), &units, &count);
        for (std::uint32_t index = 0; index < count; ++index)
            if (units[index].type != NAL_UNIT_PREFIX_SEI)
                append(units[index]);
        for (int frame = 0; frame < frames; ++frame)
            encode(frame);
        while (step(nullptr))
            ;
    }

private:
    void append(const x265_nal &unit) { stream.insert(stream.end(), unit.payload, unit.payload + unit.sizeBytes); }

    void encode(int frame) {
        std::array<std::array<Samples, 3>, 2> views;
        std::array<x265_picture, 2> input;
        for (int view = 0; view < 2; ++view) {
            std::array<Samples, 3> &planes = views.at(static_cast<std::size_t>(view));
            planes = {plane(view, frame, deepWidth, deepHeight, 480),
                      plane(view, frame, deepWidth / 2, deepHeight / 2, 500),
                      plane(view, frame + 9, deepWidth / 2, deepHeight / 2, 530)};
            x265_picture &picture = input.at(static_cast<std::size_t>(view));
            library_.picture_init(parameters_.get(), &picture);
            for (std::size_t index = 0; index < 3; ++index) {
                picture.planes[index] = planes.at(index).data();
                picture.stride[index] = (index == 0 ? deepWidth : deepWidth / 2) * 2;
            }
            picture.bitDepth = 10;
            picture.pts = frame;
        }
        step(input.data());
    }

    bool step(x265_picture *input) {
        std::array<x265_picture, 2> output;
        for (x265_picture &picture : output)
            library_.picture_init(parameters_.get(), &picture);
        x265_nal *units = nullptr;
        std::uint32_t count = 0;
        if (library_.encoder_encode(encoder_.get(), &units, &count, input, output.data()) <= 0)
            return false;
        for (std::uint32_t index = 0; index < count; ++index)
            append(units[index]);
        for (std::size_t view = 0; view < 2; ++view)
            keep(output.at(view), static_cast<std::size_t>(output[0].pts) * 2 + view);
        return true;
    }

    void keep(const x265_picture &picture, std::size_t place) {
        Bytes &samples = reconstruction.at(place);
        for (int index = 0; index < 3; ++index)
            for (int y = 0; y < (index ? deepHeight / 2 : deepHeight); ++y) {
                const auto *row = static_cast<const std::uint8_t *>(picture.planes[index]) +
                                  static_cast<std::ptrdiff_t>(y) * picture.stride[index];
                samples.insert(samples.end(), row,
                               row + 2 * static_cast<std::ptrdiff_t>(index ? deepWidth / 2 : deepWidth));
            }
    }

    const x265_api &library_;
    Parameters parameters_;
    Encoder encoder_;

public:
    Bytes stream;
    std::vector<Bytes> reconstruction; ///< of both views of each frame, in order of showing
};

#define SKIP_WITHOUT_TEN_BITS()                                                                                        \
    if (!codesTwoViews(10))                                                                                            \
    GTEST_SKIP() << "this x265 codes two views of 8 bits only"

void expectTheSameSamples(int frames) {
    const DeepCoder coded(frames);
    const TemporaryFolder folder;
    test::writeFile(folder / "views.hevc", coded.stream);
    test::ffmpeg({"-view_ids", "-1", "-i", (folder / "views.hevc").string(), "-fps_mode", "passthrough", "-f",
                  "rawvideo", "-pix_fmt", "yuv420p10le", (folder / "views.raw").string()});
    const Bytes decoded = test::readFile(folder / "views.raw");
    Bytes expected;
    for (const Bytes &picture : coded.reconstruction)
        expected.insert(expected.end(), picture.begin(), picture.end());
    EXPECT_TRUE(decoded == expected) << decoded.size() << " and " << expected.size() << " bytes";
}

TEST(TenBitCoding, IsDecodedBitForBit) {
    SKIP_WITHOUT_TEN_BITS();
    for (const int frames : {1, 2, 48})
        expectTheSameSamples(frames);
}

TEST(TenBitCoding, IsDecodedBitForBitOverAThousandFrames) {
    SKIP_WITHOUT_TEN_BITS();
    expectTheSameSamples(1000);
}

StereoFormat tenBits(int pictureWidth, int pictureHeight) {
    StereoFormat format;
    format.width = pictureWidth;
    format.height = pictureHeight;
    format.averageBitRate = 1'000'000;
    format.depth = 10;
    format.colour = {9, 16, 9, ColourRange::limited, ChromaLocation::topLeft};
    return format;
}

std::string bitsOf(const Bytes &bytes) {
    std::string bits;
    for (const std::uint8_t byte : bytes)
        for (int place = 7; place >= 0; --place)
            bits += (byte >> place & 1) ? '1' : '0';
    return bits;
}

/// Profile space, tier, number and compatibility, as they are in a header (ITU-T H.265, 7.3.3).
std::string profileBits(unsigned number) {
    Bytes bytes{static_cast<std::uint8_t>(number), 0, 0, 0, 0};
    bytes[1 + number / 8] = static_cast<std::uint8_t>(0x80 >> number % 8);
    return bitsOf(bytes);
}

TEST(TenBitCoding, SaysWhichProfilesTheLayersHave) {
    SKIP_WITHOUT_TEN_BITS();
    const StereoEncoder encoder("test.mov", tenBits(160, 96));
    const std::vector<std::uint8_t> &sets = encoder.parameterSets();
    for (const hevc::NalBytes unit : hevc::unitsOf(sets, 0)) {
        if (hevc::nalType(unit) != hevc::NalType::video)
            continue;
        hevc::BitReader reader(unit);
        Bytes content;
        while (reader.position() + 8 <= reader.size())
            content.push_back(static_cast<std::uint8_t>(reader.bits(8)));
        const std::string bits = bitsOf(content);
        constexpr unsigned main10 = 2;
        constexpr unsigned multiviewExtended10 = 13;
        const std::size_t base = bits.find(profileBits(main10));
        const std::size_t second = bits.find(profileBits(multiviewExtended10));
        EXPECT_EQ(base, 8U * 6) << "the general profile of the video parameter set";
        ASSERT_NE(second, std::string::npos);
        // Progressive, frames only; at most 12, at most 10 bits, not 8; at most 4:2:2, 4:2:0, not monochrome.
        EXPECT_EQ(bits.substr(second + 40, 10), "1001110110");
        return;
    }
    FAIL() << "there is no video parameter set";
}

TEST(TenBitCoding, CropsTinyPictures) {
    SKIP_WITHOUT_TEN_BITS();
    const TemporaryFolder folder;
    StereoEncoder encoder("test.mov", tenBits(64, 48));
    Bytes stream = encoder.parameterSets();
    const auto sink = [&](const AccessUnit &unit) {
        stream.insert(stream.end(), unit.bytes.begin(), unit.bytes.end());
    };
    Picture grey = makePicture(64, 48, {ColourModel::yuv, 10, 1, 1});
    for (int index = 0; index < 3; ++index)
        for (int y = 0; y < grey.planeHeight(index); ++y)
            for (int x = 0; x < grey.planeWidth(index); ++x)
                reinterpret_cast<std::uint16_t *>(grey.planes[index].data + y * grey.planes[index].stride)[x] = 514;
    encoder.encode(grey, grey, 0, sink);
    encoder.finish(sink);
    test::writeFile(folder / "views.hevc", stream);
    test::ffmpeg({"-view_ids", "-1", "-i", (folder / "views.hevc").string(), "-f", "rawvideo", "-pix_fmt",
                  "yuv420p10le", (folder / "views.raw").string()});
    const Bytes decoded = test::readFile(folder / "views.raw");
    ASSERT_EQ(decoded.size(), 2U * 2 * 64 * 48 * 3 / 2);
    for (std::size_t at = 0; at < decoded.size(); at += 2)
        ASSERT_NEAR(decoded[at] | decoded[at + 1] << 8, 514, 2);
}

TEST(TenBitCoding, MeetsTheAverageBitRateOfTheWholeStream) {
    SKIP_WITHOUT_TEN_BITS();
    constexpr std::int64_t bitRate = 200'000;
    StereoFormat format = tenBits(deepWidth, deepHeight);
    format.averageBitRate = bitRate;
    StereoEncoder encoder("test.mov", format);
    double bits = 0;
    const auto sink = [&](const AccessUnit &unit) { bits += 8.0 * static_cast<double>(unit.bytes.size()); };
    constexpr int frames = 600;
    for (int frame = 0; frame < frames; ++frame) {
        std::array<Picture, 2> views;
        for (int view = 0; view < 2; ++view) {
            Picture &picture = views.at(static_cast<std::size_t>(view));
            picture = makePicture(deepWidth, deepHeight, format.pictureFormat());
            for (int index = 0; index < 3; ++index) {
                const int columns = picture.planeWidth(index);
                const Samples samples = plane(view, frame, columns, picture.planeHeight(index), 500);
                for (int y = 0; y < picture.planeHeight(index); ++y)
                    std::copy_n(samples.begin() + y * columns, columns,
                                reinterpret_cast<std::uint16_t *>(picture.planes[index].data +
                                                                  y * picture.planes[index].stride));
            }
        }
        encoder.encode(views[0], views[1], frame * format.frameDuration, sink);
    }
    encoder.finish(sink);
    EXPECT_NEAR(bits / 20 / bitRate, 1, 0.03);
}

TEST(TenBitCoding, PutsTheLightLevelsBesideTheParameterSets) {
    StereoFormat format = tenBits(160, 96);
    format.depth = 8; // they do not hang on it
    format.levels.mastering =
        MasteringDisplay{{34000, 16000}, {13250, 34500}, {7500, 3000}, {15635, 16450}, 10'000'000, 1};
    format.levels.content = ContentLight{1000, 400};
    const StereoEncoder encoder("test.mov", format);
    const std::vector<hevc::NalBytes> units = hevc::unitsOf(encoder.parameterSets(), 0);
    ASSERT_EQ(units.size(), 8U);
    const hevc::NalBytes mastering = units[6].first(units[6].size() - 1); // without the zero of the next start code
    // Green, blue, red, white; the emulation prevention byte stands before the last 1.
    EXPECT_EQ(Bytes(mastering.begin(), mastering.end()),
              (Bytes{0x4E, 0x01, 137,  24,   0x33, 0xC2, 0x86, 0xC4, 0x1D, 0x4C, 0x0B, 0xB8, 0x84, 0xD0, 0x3E,
                     0x80, 0x3D, 0x13, 0x40, 0x42, 0x00, 0x98, 0x96, 0x80, 0x00, 0x00, 0x03, 0x00, 0x01, 0x80}));
    EXPECT_EQ(Bytes(units[7].begin(), units[7].end()), (Bytes{0x4E, 0x01, 144, 4, 0x03, 0xE8, 0x01, 0x90, 0x80}));
}

} // namespace
} // namespace lumetwin::media::x265
