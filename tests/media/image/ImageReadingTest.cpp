// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Photos.h"

#include "media/MediaError.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin::test {
namespace {

struct Variant {
    std::string name; ///< file name; its extension says the format
    std::vector<std::string> options;
    int tolerance = 0; ///< largest difference from the other reader, in 8-bit levels
};

void PrintTo(const Variant &variant, std::ostream *stream) {
    *stream << variant.name;
}

class ImageReading : public testing::TestWithParam<Variant> {
protected:
    TemporaryFolder folder_;
};

TEST_P(ImageReading, givesWhatAnotherReaderGives) {
    const Variant &variant = GetParam();
    const auto file = folder_.path() / variant.name;
    writeWithMagick(drawn(203, 141), file, variant.options);
    const Raster expected = readWithMagick(file, {"-colorspace", "sRGB", "-background", "black", "-alpha", "remove"});
    const Raster read = readWithOurs(file);
    ASSERT_EQ(read.width, 203);
    ASSERT_EQ(read.height, 141);
    EXPECT_LE(largestDifference(read, expected), variant.tolerance);
}

const Variant variants[] = {
    // Readers differ in how they interpolate subsampled chroma and in its rounding.
    {"baseline444.jpg", {"-quality", "95", "-sampling-factor", "1x1"}, 3},
    {"baseline420.jpg", {"-quality", "95", "-sampling-factor", "2x2"}, 40},
    {"baseline422.jpg", {"-quality", "95", "-sampling-factor", "2x1"}, 40},
    {"baseline440.jpg", {"-quality", "95", "-sampling-factor", "1x2"}, 40},
    {"baseline411.jpg", {"-quality", "95", "-sampling-factor", "4x1"}, 2},
    {"progressive.jpg", {"-quality", "95", "-interlace", "JPEG", "-sampling-factor", "1x1"}, 3},
    {"arithmetic.jpg", {"-quality", "95", "-define", "jpeg:arithmetic-coding=true", "-sampling-factor", "1x1"}, 3},
    {"grey.jpg", {"-colorspace", "Gray", "-quality", "95"}, 1},
    {"cmyk.jpg", {"-colorspace", "CMYK", "-quality", "95"}, 3},
    {"rgb.png", {}, 0},
    {"interlaced.png", {"-interlace", "PNG"}, 0},
    {"palette.png", {"-colors", "200", "-type", "Palette"}, 0},
    {"bilevel.png", {"-threshold", "50%", "-type", "Bilevel"}, 0},
    {"grey.png", {"-colorspace", "Gray"}, 0},
    {"grey4.png",
     {"-colorspace", "Gray", "-depth", "4", "-define", "png:color-type=0", "-define", "png:bit-depth=4"},
     0},
    {"deep.png",
     {"-define", "png:bit-depth=16", "-define", "png:color-type=2", "-depth", "16", "-evaluate", "multiply", "0.737"},
     1},
    {"alpha.png", {"-alpha", "set", "-channel", "A", "-fx", "i/w", "+channel"}, 1},
    {"greyalpha.png", {"-colorspace", "Gray", "-alpha", "set", "-channel", "A", "-fx", "j/h", "+channel"}, 1},
    {"interlacedalpha.png", {"-interlace", "PNG", "-alpha", "set", "-channel", "A", "-fx", "i/w", "+channel"}, 1},
    {"plain.tiff", {"-compress", "None"}, 0},
    {"lzw.tiff", {"-compress", "LZW"}, 0},
    {"predictor.tiff", {"-compress", "LZW", "-define", "tiff:predictor=2"}, 0},
    {"deflate.tiff", {"-compress", "Zip"}, 0},
    {"jpeg.tiff", {"-compress", "JPEG", "-quality", "95"}, 3},
    {"deep.tiff", {"-depth", "16", "-evaluate", "multiply", "0.737", "-compress", "Zip"}, 1},
    {"bigendian.tiff",
     {"-depth", "16", "-evaluate", "multiply", "0.737", "-define", "tiff:endian=msb", "-compress", "None"},
     1},
    {"planar.tiff", {"-interlace", "Plane", "-compress", "LZW"}, 0},
    {"tiles.tiff", {"-define", "tiff:tile-geometry=64x48", "-compress", "LZW"}, 0},
    {"grey.tiff", {"-colorspace", "Gray"}, 0},
    {"whiteiszero.tiff", {"-colorspace", "Gray", "-define", "quantum:polarity=min-is-white"}, 0},
    {"palette.tiff", {"-colors", "200", "-type", "Palette"}, 1},
    {"bilevel.tiff", {"-threshold", "50%", "-type", "Bilevel", "-compress", "Group4"}, 0},
    {"cmyk.tiff", {"-colorspace", "CMYK"}, 1},
    {"alpha.tiff", {"-alpha", "set", "-channel", "A", "-fx", "i/w", "+channel"}, 1},
    {"strips.tiff", {"-define", "tiff:rows-per-strip=7"}, 0},
};

INSTANTIATE_TEST_SUITE_P(Formats, ImageReading, testing::ValuesIn(variants),
                         [](const testing::TestParamInfo<Variant> &entry) {
                             std::string name = entry.param.name;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

class ImageFile : public testing::Test {
protected:
    TemporaryFolder folder_;
};

TEST_F(ImageFile, keepsJpegSamplesAsTheyAreCoded) {
    const auto file = folder_.path() / "a.jpg";
    writeWithMagick(drawn(203, 141), file, {"-quality", "90", "-sampling-factor", "2x2"});
    const media::StillImage image = media::readImage(file);
    EXPECT_EQ(image.picture.format, media::yuv420);
    EXPECT_EQ(image.picture.colour, media::jpegColour);
    EXPECT_EQ(image.picture.planeWidth(1), 102);
}

TEST_F(ImageFile, isToldByItsContentNotItsName) {
    const auto file = folder_.path() / "really-a-png.jpg";
    writeWithMagick(drawn(40, 30), folder_.path() / "a.png");
    std::filesystem::rename(folder_.path() / "a.png", file);
    EXPECT_EQ(media::imageKind(file), media::ImageKind::png);
    EXPECT_EQ(readWithOurs(file), drawn(40, 30));
}

TEST_F(ImageFile, orientationOfExifIsNotApplied) {
    const auto file = folder_.path() / "a.jpg";
    writeWithMagick(drawn(64, 32), file, {"-quality", "95"});
    output({"exiftool", "-q", "-overwrite_original", "-Orientation#=6", file.string()});
    const media::StillImage image = media::readImage(file);
    EXPECT_EQ(image.picture.width, 64);
    EXPECT_EQ(image.picture.height, 32);
}

TEST_F(ImageFile, premultipliedSamplesOfATiffAreItsColoursOnBlack) {
    const auto file = folder_.path() / "a.tiff";
    const std::vector<std::string> dimmed{"-channel", "RGB", "-fx", "u*(0.2+0.8*i/w)", "+channel"};
    writeWithMagick(drawn(203, 141), file, dimmed);
    const Raster expected = readWithOurs(file);
    std::vector<std::string> transparent = dimmed;
    transparent.insert(transparent.end(), {"-alpha", "set", "-channel", "A", "-fx", "0.2+0.8*i/w", "+channel"});
    writeWithMagick(drawn(203, 141), file, transparent);
    EXPECT_GT(largestDifference(readWithOurs(file), expected), 20);
    // Releases of ImageMagick do not agree on what they write as premultiplied: the tag is ours (TIFF 6.0, section 18).
    Bytes bytes = readFile(file);
    const Bytes plain{0x52, 0x01, 0x03, 0x00, 0x01, 0x00, 0x00, 0x00, 0x02, 0x00};
    const auto tag = std::search(bytes.begin(), bytes.end(), plain.begin(), plain.end());
    ASSERT_NE(tag, bytes.end());
    tag[8] = 1;
    writeFile(file, bytes);
    EXPECT_LE(largestDifference(readWithOurs(file), expected), 1);
    EXPECT_LE(largestDifference(readWithMagick(file, {"-background", "black", "-alpha", "remove"}), expected), 2);
}

TEST_F(ImageFile, countsPages) {
    const auto file = folder_.path() / "pages.tiff";
    output({"convert", "-size", "20x10", "xc:red", "xc:green", "xc:blue", file.string()});
    EXPECT_EQ(media::imageCount(file), 3);
    EXPECT_EQ(readWithOurs(file).colour(3, 3), (std::array{255, 0, 0}));
}

TEST_F(ImageFile, pngGammaAndChromaticitiesBecomeAProfile) {
    const auto file = folder_.path() / "a.png";
    writeWithMagick(drawn(20, 20), file, {"-red-primary", "0.68,0.32", "-define", "png:exclude-chunk=gAMA"});
    // Not every release of ImageMagick writes this one: a gamma of 0.5555 (PNG, 11.3.3.2), behind the header.
    const Bytes gamma{0x00, 0x00, 0x00, 0x04, 0x67, 0x41, 0x4D, 0x41, 0x00, 0x00, 0xD8, 0xFE, 0x98, 0xC1, 0xF0, 0x41};
    Bytes bytes = readFile(file);
    bytes.insert(bytes.begin() + 33, gamma.begin(), gamma.end());
    writeFile(file, bytes);
    const std::string listed = output({"identify", "-verbose", file.string()});
    ASSERT_NE(listed.find("0.68"), std::string::npos);
    ASSERT_NE(listed.find("0.555"), std::string::npos);
    EXPECT_FALSE(media::readImage(file).metadata.iccProfile.empty());
    writeWithMagick(drawn(20, 20), file);
    EXPECT_TRUE(media::readImage(file).metadata.iccProfile.empty());
}

} // namespace
} // namespace lumetwin::test
