// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PhotoPackings.h"
#include "tests/support/JpegBuilder.h"
#include "tests/support/Paths.h"
#include "tests/support/Photos.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

using media::StereoPacking;
using Arrangement = media::StereoPacking::Arrangement;

std::uint32_t checksumOf(const Bytes &bytes) {
    std::uint32_t value = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        value ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1 ^ ((value & 1) != 0 ? 0xEDB88320 : 0);
    }
    return ~value;
}

/// A chunk of a PNG file.
Bytes chunk(std::string_view type, const Bytes &data) {
    const Bytes content = joined({letters(type), data});
    return joined({number(data.size(), 4), content, number(checksumOf(content), 4)});
}

class PngStereo : public testing::Test {
protected:
    static constexpr std::size_t behindHeader = 8 + 25; ///< signature and IHDR

    std::filesystem::path file(const std::string &name = "a.png") const { return folder_.path() / name; }

    /// A picture as another program writes it, with one more chunk.
    void write(const Raster &picture, const Bytes &more, std::size_t place = behindHeader,
               const std::vector<std::string> &options = {}) const {
        writeWithMagick(picture, file(), options);
        Bytes bytes = readFile(file());
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(place, bytes.size() - 12));
        bytes.insert(at, more.begin(), more.end());
        writeFile(file(), bytes);
    }

    media::PhotoPackings packings() const { return media::readPhotoPackings(media::InputFile(file())); }

    TemporaryFolder folder_;
    Raster picture_ = drawn(64, 20);
};

TEST_F(PngStereo, saysWhichEyeIsFirst) {
    write(picture_, chunk("sTER", {0}));
    EXPECT_EQ(packings().packing, (StereoPacking{Arrangement::sideBySide, true, false}));
    EXPECT_THAT(output({"exiftool", file().string()}), testing::HasSubstr("Cross-fuse")); // an outside judge
    write(picture_, chunk("sTER", {1}));
    EXPECT_EQ(packings().packing, (StereoPacking{Arrangement::sideBySide, false, false}));
    EXPECT_THAT(output({"exiftool", file().string()}), testing::HasSubstr("Diverging-fuse"));
}

TEST_F(PngStereo, chunksThatSayNothing) {
    Bytes wrongChecksum = chunk("sTER", {1});
    wrongChecksum.back() ^= 1;
    for (const Bytes &more : {Bytes{}, chunk("sTER", {2}), chunk("sTER", {}), chunk("sTER", {0, 0}), wrongChecksum}) {
        write(picture_, more);
        EXPECT_EQ(packings().packing, std::nullopt);
    }
    write(picture_, chunk("sTER", {1}), 1u << 30); // behind the samples
    EXPECT_EQ(packings().packing, std::nullopt);
}

TEST_F(PngStereo, cutAtEveryPlace) {
    write(picture_, chunk("sTER", {1}));
    const Bytes whole = readFile(file());
    for (std::size_t size = 0; size < 80; ++size) {
        writeFile(file(), Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(packings().packing.has_value(), size >= behindHeader + 13) << size;
    }
    Bytes endless = whole;
    endless[behindHeader] = 0x7F; // the chunk is two gigabytes long
    writeFile(file(), endless);
    EXPECT_EQ(packings(), media::PhotoPackings{});
}

/// The second eye begins at a multiple of eight.
TEST_F(PngStereo, columnsBetweenTheEyesAreLeftOut) {
    for (const int width : {1, 7, 8, 9, 12, 33}) {
        SCOPED_TRACE(width);
        const Raster left = drawn(width, 20, 1);
        const Raster right = drawn(width, 20, 2);
        const int between = (8 - width % 8) % 8;
        Raster padding(std::max(between, 1), 20);
        fill(padding, 0, 0, padding.width, 20, {255, 0, 255});
        const Raster padded = between > 0 ? sideBySide(left, padding) : left;
        for (const std::vector<std::string> &options :
             {std::vector<std::string>{}, {"-interlace", "PNG"}, {"-define", "png:bit-depth=16"}}) {
            write(sideBySide(padded, right), chunk("sTER", {1}), behindHeader, options);
            EXPECT_EQ(readWithOurs(file()), sideBySide(left, right));
            write(sideBySide(padded, right), {}, behindHeader, options);
            EXPECT_EQ(readWithOurs(file()), sideBySide(padded, right));
        }
    }
}

TEST_F(PngStereo, fileWithoutThoseColumnsIsCutInHalves) {
    for (const int width : {98, 4, 66}) { // no such file has these widths
        const Raster picture = drawn(width, 20);
        write(picture, chunk("sTER", {0}));
        EXPECT_EQ(readWithOurs(file()), picture);
    }
}

TEST_F(PngStereo, exifTellsTheFieldOfView) {
    write(drawn(72, 24), chunk("sTER", {0}));
    output({"exiftool", "-q", "-overwrite_original", "-FocalLengthIn35mmFormat=18", file().string()});
    EXPECT_NEAR(packings().horizontalFieldOfView.value_or(0), 90, 0.01); // of 36 x 24
    EXPECT_TRUE(packings().packing);
}

} // namespace
} // namespace lumetwin::test
