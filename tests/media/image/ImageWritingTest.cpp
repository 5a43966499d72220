// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Photos.h"

#include "media/ColourConversion.h"
#include "media/MediaError.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

#include <cstring>

namespace lumetwin::test {
namespace {

using media::ImageKind;

class ImageWriting : public testing::Test {
protected:
    void write(const std::string &name, ImageKind kind, const media::Picture &picture, double quality = 0.75) {
        media::writeImage(folder_.path() / name, kind, {picture, {}}, quality);
    }
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }
    double loss(const std::string &name, ImageKind kind, double quality) {
        const Raster picture = drawn(300, 200);
        write(name, kind, pictureOf(picture), quality);
        return psnr(readWithMagick(file(name)), picture);
    }

    TemporaryFolder folder_;
};

TEST_F(ImageWriting, pngAndTiffAreExact) {
    const Raster picture = drawn(123, 77);
    write("a.png", ImageKind::png, pictureOf(picture));
    write("a.tiff", ImageKind::tiff, pictureOf(picture));
    EXPECT_EQ(readWithMagick(file("a.png")), picture);
    EXPECT_EQ(readWithMagick(file("a.tiff")), picture);
}

TEST_F(ImageWriting, deepPicturesStayDeepInPngAndTiff) {
    media::Picture picture = media::makePicture(64, 1, {media::ColourModel::rgb, 10, 0, 0}, {});
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int x = 0; x < 64; ++x)
            reinterpret_cast<std::uint16_t *>(picture.planes[plane].data)[x] =
                static_cast<std::uint16_t>(x * 1023 / 63);
    for (const auto &[name, kind] : {std::pair{"a.png", ImageKind::png}, {"a.tiff", ImageKind::tiff}}) {
        write(name, kind, picture);
        const media::Picture read = media::readImage(file(name)).picture;
        ASSERT_EQ(read.format.depth, 16);
        const auto *samples = reinterpret_cast<const std::uint16_t *>(read.planes[1].data);
        EXPECT_EQ(samples[0], 0);
        EXPECT_EQ(samples[63], 65535);
        EXPECT_EQ(samples[20] >> 6, 20 * 1023 / 63);
    }
}

TEST_F(ImageWriting, jpegPlanesPassThroughAtFullQuality) {
    // 4:2:0 planes come back within the rounding of the transform: nothing was converted on the way.
    const Raster drawing = drawn(203, 141);
    const media::Picture planes = media::convertColour(pictureOf(drawing), media::yuv420, media::jpegColour);
    write("a.jpg", ImageKind::jpeg, planes, 1.0);
    const media::Picture read = media::readImage(file("a.jpg")).picture;
    ASSERT_EQ(read.format, media::yuv420);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < read.planeHeight(plane); ++y)
            for (int x = 0; x < read.planeWidth(plane); ++x) {
                const auto at = static_cast<std::size_t>(plane);
                ASSERT_NEAR(read.planes[at].data[y * read.planes[at].stride + x],
                            planes.planes[at].data[y * planes.planes[at].stride + x], 2);
            }
}

/// A picture of 8 or 10 bits and limited range, high enough to be coded in several parts.
media::Picture highVideoPicture(int depth) {
    const media::ColourTags video{1, 1, 1, media::ColourRange::limited, media::ChromaLocation::centre};
    media::Picture picture = media::makePicture(83, 1031, {media::ColourModel::yuv, depth, 1, 1}, video);
    unsigned noise = 1;
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < picture.planeHeight(plane); ++y)
            for (int x = 0; x < picture.planeWidth(plane); ++x) {
                noise = noise * 1664525 + 1013904223;
                const auto &[data, stride] = picture.planes[static_cast<std::size_t>(plane)];
                if (depth > 8)
                    reinterpret_cast<std::uint16_t *>(data + y * stride)[x] = 64 + (noise >> 16) % 800;
                else
                    data[y * stride + x] = 16 + (noise >> 16) % 200;
            }
    return picture;
}

void expectEqualSamples(const media::Picture &one, const media::Picture &other) {
    ASSERT_EQ(one.format, other.format);
    ASSERT_EQ(one.width, other.width);
    ASSERT_EQ(one.height, other.height);
    for (int plane = 0; plane < one.format.planeCount(); ++plane)
        for (int y = 0; y < one.planeHeight(plane); ++y) {
            const auto at = static_cast<std::size_t>(plane);
            ASSERT_EQ(std::memcmp(one.planes[at].data + y * one.planes[at].stride,
                                  other.planes[at].data + y * other.planes[at].stride,
                                  static_cast<std::size_t>(one.planeWidth(plane))),
                      0)
                << "plane " << plane << ", row " << y;
        }
}

TEST_F(ImageWriting, theSeamsOfAHighJpegShowNothing) {
    for (const int depth : {8, 10}) {
        SCOPED_TRACE(depth);
        const media::Picture picture = highVideoPicture(depth);
        const media::Picture converted = media::convertColour(picture, media::yuv420, media::jpegColour);
        write("converted.jpg", ImageKind::jpeg, converted);
        write("a.jpg", ImageKind::jpeg, picture);
        const media::Picture whole = media::readImage(file("a.jpg")).picture;
        expectEqualSamples(whole, media::readImage(file("converted.jpg")).picture);
        for (const int from : {0, 240, 496}) { // across the seams
            write("part.jpg", ImageKind::jpeg, media::cropped(converted, 0, from, 83, 160));
            expectEqualSamples(media::cropped(whole, 0, from, 83, 160), media::readImage(file("part.jpg")).picture);
        }
    }
}

TEST_F(ImageWriting, aHighJpegIsReadByOthers) {
    const Raster picture = drawn(60, 4000);
    for (const double quality : {0.75, 1.0}) { // halved chroma, whole chroma
        write("a.jpg", ImageKind::jpeg, pictureOf(picture), quality);
        EXPECT_GT(psnr(readWithMagick(file("a.jpg")), picture), 32) << quality;
    }
}

TEST_F(ImageWriting, theWidestJpegIsWhole) {
    media::Picture picture = media::makePicture(65500, 300, {media::ColourModel::grey, 8, 0, 0}, {});
    for (int y = 0; y < picture.height; ++y)
        std::memset(picture.planes[0].data + y * picture.planes[0].stride, y / 2, 65500);
    write("a.jpg", ImageKind::jpeg, picture, 1.0);
    const media::Picture read = media::readImage(file("a.jpg")).picture;
    for (int y = 0; y < picture.height; ++y)
        for (const int x : {0, 32000, 65499})
            ASSERT_NEAR(read.planes[0].data[y * read.planes[0].stride + x], y / 2, 1) << y;
}

TEST_F(ImageWriting, jpegQualityIsMonotonicAndLosslessToTheEyeAtOne) {
    double before = 0;
    for (const double quality : {0.0, 0.25, 0.5, 0.75, 0.9, 1.0}) {
        const double now = loss("a.jpg", ImageKind::jpeg, quality);
        EXPECT_GT(now, before) << quality;
        before = now;
    }
    EXPECT_GT(before, 45);
    EXPECT_GT(loss("a.jpg", ImageKind::jpeg, 0.75), 34);
}

TEST_F(ImageWriting, limitedRangeBecomesFullInJpeg) {
    const Raster drawing = drawn(64, 48);
    media::ColourTags video{1, 1, 1, media::ColourRange::limited, media::ChromaLocation::left};
    const media::Picture planes = media::convertColour(pictureOf(drawing), {media::ColourModel::yuv, 8, 0, 0}, video);
    write("a.jpg", ImageKind::jpeg, planes, 1.0);
    EXPECT_LE(largestDifference(readWithMagick(file("a.jpg")), drawing), 6);
}

TEST_F(ImageWriting, greyStaysGrey) {
    media::Picture picture = media::makePicture(16, 16, {media::ColourModel::grey, 8, 0, 0}, {});
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            picture.planes[0].data[y * picture.planes[0].stride + x] = static_cast<std::uint8_t>(x * 16);
    for (const auto &[name, kind] :
         {std::pair{"a.png", ImageKind::png}, {"a.tiff", ImageKind::tiff}, {"a.jpg", ImageKind::jpeg}}) {
        write(name, kind, picture, 1.0);
        EXPECT_EQ(media::readImage(file(name)).picture.format.model, media::ColourModel::grey) << name;
        EXPECT_NEAR(readWithMagick(file(name)).at(8, 8)[0], 128, 1) << name;
    }
}

TEST_F(ImageWriting, aFailingWriteLeavesWhatWasThere) {
    writeFile(file("a.jpg"), Bytes{1, 2, 3});
    media::Picture large = media::makePicture(65535, 1, {media::ColourModel::grey, 8, 0, 0}, {});
    EXPECT_THROW(write("a.jpg", ImageKind::jpeg, large), media::MediaError); // JPEG ends at 65500
    EXPECT_EQ(readFile(file("a.jpg")), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(ImageWriting, aFolderThatIsNotThereIsNamed) {
    try {
        write("missing/a.png", ImageKind::png, pictureOf(drawn(8, 8)));
        FAIL();
    } catch (const media::MediaError &error) {
        EXPECT_NE(std::string(error.what()).find("a.png"), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("No such file"), std::string::npos) << error.what();
    }
}

} // namespace
} // namespace lumetwin::test
