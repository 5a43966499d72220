// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/ProcessorError.h"
#include "media/MediaError.h"
#include "tests/engine/preview/PreviewFixture.h"
#include "tests/support/JpegBuilder.h"
#include "tests/support/SpatialPhotos.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

using Arrangement = EyeArrangement;

Raster above(const Raster &upper, const Raster &lower) {
    Raster both(upper.width, upper.height * 2);
    std::copy(upper.samples.begin(), upper.samples.end(), both.samples.begin());
    std::copy(lower.samples.begin(), lower.samples.end(),
              both.samples.begin() + static_cast<std::ptrdiff_t>(upper.samples.size()));
    return both;
}

class PhotoPreview : public PreviewTest {
protected:
    std::filesystem::path written(const Raster &picture, const std::string &name,
                                  const std::vector<std::string> &options = {}) const {
        writeWithMagick(picture, file(name), options);
        return file(name);
    }

    void expectEyes(const StereoPreview &preview, const Raster &first, const Raster &second, double quality) const {
        ASSERT_TRUE(preview.hasBothEyes);
        ASSERT_EQ(preview.width, first.width);
        ASSERT_EQ(preview.height, first.height);
        EXPECT_EQ(preview.eyeWidth, first.width);
        EXPECT_EQ(preview.eyeHeight, first.height);
        EXPECT_EQ(preview.pixelAspect, 1);
        EXPECT_GT(psnr(rasterOf(preview.left), first), quality);
        EXPECT_GT(psnr(rasterOf(preview.right), second), quality);
    }

    /// Only one eye is delivered, and it is this one.
    void expectOnly(const StereoPreview &preview, const Raster &picture) const {
        EXPECT_FALSE(preview.hasBothEyes);
        EXPECT_TRUE(preview.right.isEmpty());
        ASSERT_EQ(preview.width, picture.width);
        ASSERT_EQ(preview.height, picture.height);
        EXPECT_EQ(preview.eyeWidth, picture.width);
        EXPECT_GT(psnr(rasterOf(preview.left), picture), 30);
    }

    Raster left = drawn(160, 100, 1);
    Raster right = drawn(160, 100, 2);
};

TEST_F(PhotoPreview, sideBySideOfEachFormat) {
    for (const char *name : {"a.png", "a.tiff"})
        expectEyes(preview(media::InputFile(written(sideBySide(left, right), name))), left, right, 98);
    expectEyes(preview(media::InputFile(written(sideBySide(left, right), "a.jpg", {"-quality", "98"}))), left, right,
               34);
    request.layout.rightEyeFirst = true;
    expectEyes(preview("a.png"), right, left, 98);
}

TEST_F(PhotoPreview, overUnder) {
    request.layout.arrangement = Arrangement::overUnder;
    written(above(left, right), "a.png");
    expectEyes(preview("a.png"), left, right, 98);
    request.layout.rightEyeFirst = true;
    expectEyes(preview("a.png"), right, left, 98);
}

TEST_F(PhotoPreview, halvesGetTheirTrueShape) {
    request.layout.isHalf = true;
    written(sideBySide(left, right), "a.png", {"-resize", "50%x100%!"});
    expectEyes(preview("a.png"), left, right, 24);
    request.layout.arrangement = Arrangement::overUnder;
    written(above(left, right), "a.png", {"-resize", "100%x50%!"});
    expectEyes(preview("a.png"), left, right, 24);
}

TEST_F(PhotoPreview, anOddLastColumnBelongsToNeitherEye) {
    Raster odd = plain(321, 100, {255, 0, 255});
    for (int y = 0; y < 100; ++y) {
        std::copy_n(left.at(0, y), 160 * 3, odd.at(0, y));
        std::copy_n(right.at(0, y), 160 * 3, odd.at(160, y));
    }
    written(odd, "a.png");
    expectEyes(preview("a.png"), left, right, 98);
}

TEST_F(PhotoPreview, isReducedToTheLimits) {
    // Large plain halves, with a mark in the upper left corner of the left one.
    Raster large = sideBySide(plain(2000, 1500, {200, 40, 40}), plain(2000, 1500, {40, 40, 200}));
    fill(large, 0, 0, 1000, 750, {40, 200, 40});
    for (const char *name : {"a.jpg", "a.png"}) {
        written(large, name, {"-quality", "95"});
        for (const int limit : {1400, 900, 640, 160, 64, 7}) {
            request.maximumWidth = limit;
            request.maximumHeight = limit;
            const StereoPreview found = preview(name);
            ASSERT_EQ(found.width, limit) << name;
            ASSERT_EQ(found.height, (limit * 3 + 2) / 4) << name;
            EXPECT_EQ(found.eyeWidth, 2000);
            EXPECT_EQ(found.eyeHeight, 1500);
            const auto expectNear = [&](const PreviewPicture &picture, int x, int y, std::array<int, 3> colour) {
                const std::array<int, 3> seen = rasterOf(picture).colour(x, y);
                for (std::size_t channel = 0; channel < 3; ++channel)
                    EXPECT_NEAR(seen[channel], colour[channel], 4) << name << " " << limit;
            };
            const int lastX = found.width - 1;
            const int lastY = found.height - 1;
            expectNear(found.left, 0, 0, {40, 200, 40});
            expectNear(found.left, lastX, 0, {200, 40, 40});
            expectNear(found.left, 0, lastY, {200, 40, 40});
            expectNear(found.right, lastX, lastY, {40, 40, 200});
            // Half a pixel of the reduced JPEG may belong to both eyes.
            expectNear(found.right, std::min(1, lastX), 0, {40, 40, 200});
        }
    }
}

TEST_F(PhotoPreview, isNeverEnlarged) {
    written(sideBySide(left, right), "a.jpg");
    request.maximumWidth = 65535;
    request.maximumHeight = 65535;
    EXPECT_EQ(preview("a.jpg").width, 160);
}

TEST_F(PhotoPreview, ofASpatialPhoto) {
    writeSpatialPhoto(file("a.heic"), left, right);
    request.layout = {.arrangement = Arrangement::overUnder, .rightEyeFirst = true}; // the file knows it itself
    expectEyes(preview("a.heic"), left, right, 30);
    request.maximumWidth = request.maximumHeight = 40;
    const StereoPreview small = preview("a.heic");
    EXPECT_EQ(small.width, 40);
    EXPECT_EQ(small.height, 25);
    EXPECT_EQ(small.eyeWidth, 160);
}

TEST_F(PhotoPreview, ofTwoPicturesInOneFile) {
    const auto jpeg = [&](const Raster &picture) { return readFile(written(picture, "part.jpg", {"-quality", "96"})); };
    const MultiPictureBuilder builder{
        {}, {{jpeg(left), PicturePart::eye, 1, {}}, {jpeg(right), PicturePart::eye, 2, {}}}, 0, {}, {}};
    writeFile(file("a.mpo"), builder.file());
    request.layout.arrangement = Arrangement::twoPictures;
    expectEyes(preview("a.mpo"), left, right, 32);
    request.layout.rightEyeFirst = true;
    expectEyes(preview("a.mpo"), right, left, 32);
    request.maximumWidth = request.maximumHeight = 20;
    EXPECT_EQ(preview("a.mpo").width, 20);
    Bytes damaged = builder.file();
    damaged.resize(damaged.size() / 4);
    writeFile(file("b.mpo"), damaged);
    EXPECT_THROW(preview("b.mpo"), media::MediaError);
}

TEST_F(PhotoPreview, ofTwoFiles) {
    const media::InputFile first(written(left, "a_L.png"));
    const media::InputFile second(written(right, "a_R.jpg", {"-quality", "98"}));
    request.layout.arrangement = Arrangement::twoFiles;
    expectEyes(preview({first, second}), left, right, 34);
    expectOnly(preview(first), left);
    EXPECT_THROW(preview({first, media::InputFile(written(drawn(150, 100), "b.png"))}), ProcessorError);
}

TEST_F(PhotoPreview, whatCannotBeReadAsTwoEyesIsOnePicture) {
    written(left, "a.jpg", {"-quality", "98"});
    for (const Arrangement arrangement :
         {Arrangement::twoPictures, Arrangement::twoStreams, Arrangement::twoFiles, Arrangement::alternating,
          Arrangement::interleaved, Arrangement::secondUnread}) {
        request.layout.arrangement = arrangement;
        expectOnly(preview("a.jpg"), left);
    }
    request.layout.arrangement = Arrangement::sideBySide;
    const Raster narrow = plain(1, 9, {10, 200, 30});
    written(narrow, "b.png");
    expectOnly(preview("b.png"), narrow);
}

TEST_F(PhotoPreview, oneEyeOfALargeSpatialPhotoComesSooner) {
    writeSpatialPhoto(file("a.heic"), left, right);
    request.detail = PreviewDetail::soon;
    EXPECT_FALSE(preview("a.heic").isFlat);
    expectEyes(preview("a.heic"), left, right, 30);
    // A box that is skipped stands for many samples.
    Bytes bytes = readFile(file("a.heic"));
    const Bytes skipped(3'500'000);
    bytes = joined({bytes, number(skipped.size() + 8, 4), letters("free"), skipped});
    writeFile(file("a.heic"), bytes);
    EXPECT_TRUE(preview("a.heic").isFlat);
    expectEyes(preview("a.heic"), left, left, 30);
    for (const PreviewDetail detail : {PreviewDetail::near, PreviewDetail::exact}) {
        request.detail = detail;
        EXPECT_FALSE(preview("a.heic").isFlat);
        expectEyes(preview("a.heic"), left, right, 30);
    }
}

TEST_F(PhotoPreview, turnsNothing) {
    // As the converters, which keep Exif's orientation beside the pixels.
    written(sideBySide(left, right), "a.jpg", {"-quality", "98", "-orient", "RightTop"});
    expectEyes(preview("a.jpg"), left, right, 34);
}

TEST_F(PhotoPreview, greyInksAndDeepSamples) {
    const Raster grey = plain(64, 32, {120, 120, 120});
    written(grey, "grey.png", {"-colorspace", "Gray"});
    written(grey, "grey.jpg", {"-colorspace", "Gray", "-quality", "98"});
    written(grey, "deep.png", {"-depth", "16"});
    written(grey, "inks.jpg", {"-colorspace", "CMYK", "-quality", "98"});
    for (const char *name : {"grey.png", "grey.jpg", "deep.png"})
        EXPECT_NEAR(middleOf(preview(name).right), 120, 1) << name;
    EXPECT_NEAR(middleOf(preview("inks.jpg").right), 120, 12);
}

TEST_F(PhotoPreview, damagedPhotosAreErrors) {
    writeFile(file("a.jpg"), std::string("no picture"));
    EXPECT_THROW(preview("a.jpg"), media::MediaError);
    EXPECT_THROW(preview("missing.jpg"), media::MediaError);
    for (const char *name : {"b.jpg", "b.png", "b.tiff"}) {
        Bytes bytes = readFile(written(sideBySide(left, right), name));
        bytes.resize(bytes.size() / 2);
        writeFile(file(name), bytes);
        EXPECT_THROW(preview(name), media::MediaError) << name;
    }
    writeSpatialPhoto(file("b.heic"), left, right);
    Bytes bytes = readFile(file("b.heic"));
    bytes.resize(bytes.size() / 2);
    writeFile(file("b.heic"), bytes);
    EXPECT_THROW(preview("b.heic"), media::MediaError);
}

TEST_F(PhotoPreview, ofTheSamples) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no folder of samples";
    request.maximumWidth = 640;
    request.maximumHeight = 640;
    const StereoPreview spatial = operations().preview(*samples / "spatial-photo/spatial_photo.heic", request);
    EXPECT_TRUE(spatial.hasBothEyes);
    EXPECT_EQ(std::max(spatial.width, spatial.height), 640);
    request.layout.arrangement = Arrangement::twoPictures;
    const StereoPreview pair = operations().preview(*samples / "other-layouts/Panasonic-DMC-GX8.mpo", request);
    EXPECT_TRUE(pair.hasBothEyes);
    const Raster judge =
        readWithMagick(*samples / "other-layouts/Panasonic-DMC-GX8-right.jpg",
                       {"-resize", std::to_string(pair.width) + "x" + std::to_string(pair.height) + "!"});
    EXPECT_GT(psnr(rasterOf(pair.right), judge), 28);
}

} // namespace
} // namespace lumetwin::test
