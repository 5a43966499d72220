// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/media/jpeg/MultiPictureFixture.h"

namespace lumetwin::test {
namespace {

TEST_F(MultiPicture, hasItsEyesInTheOrderOfTheirNumbers) {
    for (const bool bigEndian : {false, true}) {
        SCOPED_TRACE(bigEndian ? "big-endian" : "little-endian");
        MultiPictureBuilder builder = pair(bigEndian);
        expectEyes(builder, left_, right_);
        builder.parts[0].number = 2;
        builder.parts[1].number = 1;
        expectEyes(builder, right_, left_);
    }
}

TEST_F(MultiPicture, hasItsEyesInTheFilesOrderWithoutNumbers) {
    MultiPictureBuilder builder = pair();
    for (const auto &[one, other] : {std::pair<std::optional<std::uint32_t>, std::optional<std::uint32_t>>{{}, {}},
                                     {2, {}},
                                     {{}, 1},
                                     {7, 7},
                                     {0xFFFFFFFF, 1}}) {
        builder.parts[0].number = one;
        builder.parts[1].number = other;
        expectEyes(builder, left_, right_);
    }
}

TEST_F(MultiPicture, mayHaveMoreThanTwoEyes) {
    MultiPictureBuilder builder = pair();
    builder.parts[0].number = 3;
    builder.parts.push_back({jpeg(third_), PicturePart::eye, 1, {}});
    expectEyes(builder, third_, right_);
    EXPECT_EQ(packings(builder.file()).eyePictures, 3);
}

TEST_F(MultiPicture, keepsThumbnailsAndOtherPicturesApart) {
    MultiPictureBuilder builder = pair();
    builder.gap = 333;
    builder.parts[0].attributes |= 0x20000000; // representative
    const Bytes small = jpeg(drawn(32, 24, 4));
    builder.parts.insert(builder.parts.begin() + 1, {small, 0x010001, {}, {}});
    builder.parts.push_back({small, 0x010002, {}, {}});
    expectEyes(builder, left_, right_);
    EXPECT_EQ(packings(builder.file()).otherPictures, 0);
    builder.parts.push_back({small, 0x020001, {}, {}});
    builder.parts.push_back({small, 0x020003, {}, {}});
    const PhotoPackings found = packings(builder.file());
    EXPECT_EQ(found.eyePictures, 2);
    EXPECT_EQ(found.otherPictures, 2);
}

TEST_F(MultiPicture, ofPhonesHasNoEyes) {
    // A gain map, as two makers have it, and a preview.
    for (const auto &[first, second] :
         {std::pair{0x030000u, 0x050000u}, {0x030000u, 0u}, {0x20030000u, 0x010001u}, {0u, 0u}}) {
        MultiPictureBuilder builder = pair();
        builder.parts[0] = {jpeg(left_), first, {}, {}};
        builder.parts[1] = {jpeg(right_), second, {}, {}};
        const PhotoPackings found = packings(builder.file());
        EXPECT_EQ(found.eyePictures, 0);
        EXPECT_EQ(found.otherPictures, 0);
        EXPECT_EQ(found.packing, std::nullopt);
        EXPECT_EQ(failure(builder.file())->reason(), MediaReason::noImage);
    }
}

TEST_F(MultiPicture, withOneEyeIsNoPair) {
    MultiPictureBuilder builder = pair();
    builder.parts[1].attributes = 0x010001;
    EXPECT_EQ(packings(builder.file()).eyePictures, 1);
    EXPECT_EQ(failure(builder.file())->reason(), MediaReason::noImage);
}

TEST_F(MultiPicture, saysHowItsCamerasStood) {
    for (const bool bigEndian : {false, true}) {
        MultiPictureBuilder builder = pair(bigEndian);
        builder.parts[0].more = {builder.tiff.fraction(0xB205, 0, 1000, 10), builder.tiff.fraction(0xB206, 0, 1)};
        builder.parts[1].more = {builder.tiff.fraction(0xB205, -22, 10, 10), builder.tiff.fraction(0xB206, 77, 1000)};
        const PhotoPackings found = packings(builder.file());
        EXPECT_DOUBLE_EQ(found.baseline.value_or(0), 0.077);
        EXPECT_DOUBLE_EQ(found.convergence.value_or(0), -2.2);
    }
}

TEST_F(MultiPicture, mayNotKnowHowItsCamerasStood) {
    MultiPictureBuilder builder = pair();
    EXPECT_EQ(packings(builder.file()).baseline, std::nullopt);
    for (const auto &[above, below] : {std::pair<std::int64_t, std::int64_t>{0xFFFFFFFF, 0xFFFFFFFF}, {5, 0}, {0, 1}}) {
        builder.parts[1].more = {builder.tiff.fraction(0xB206, above, below)};
        EXPECT_EQ(packings(builder.file()).baseline, std::nullopt);
    }
}

TEST_F(MultiPicture, givesEachEyeItsOwnMetadata) {
    MultiPictureBuilder builder = pair();
    for (PicturePart &part : builder.parts) {
        writeFile(file("part.jpg"), part.jpeg);
        output({"exiftool", "-q", "-overwrite_original", &part == &builder.parts[0] ? "-Make=Left" : "-Make=Right",
                file("part.jpg").string()});
        part.jpeg = readFile(file("part.jpg"));
    }
    writeFile(file(), builder.file());
    std::vector<std::string> blocks;
    media::readEyePictures(media::ImageFile(media::InputFile(file())), [&](Eye, const media::StillImage &image) {
        blocks.emplace_back(image.metadata.exif.begin(), image.metadata.exif.end());
    });
    EXPECT_THAT(blocks, testing::ElementsAre(testing::HasSubstr("Left"), testing::HasSubstr("Right")));
}

TEST_F(MultiPicture, isReadAsAnotherProgramReadsIt) {
    writeFile(file(), pair(true).file());
    const std::string facts = output({"exiftool", "-a", "-G1", "-s", file().string()});
    EXPECT_THAT(facts, testing::HasSubstr("Multi-frame Disparity"));
    EXPECT_THAT(facts, testing::Not(testing::HasSubstr("Warning")));
}

TEST_F(MultiPicture, sampleHasTheEyesThatLieBesideIt) {
    if (!sampleMedia())
        GTEST_SKIP() << "no sample media";
    const auto sample = *sampleMedia() / "other-layouts" / "Panasonic-DMC-GX8.mpo";
    const std::vector<Raster> read = eyes(sample);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].width, 1824);
    EXPECT_EQ(read[0].height, 1368);
    const auto beside = [&](const char *name) {
        const Raster picture = readWithMagick(sample.parent_path() / name);
        return part(picture, 0, 0, 1824, 1367); // they lack the last row
    };
    const Raster left = part(read[0], 0, 0, 1824, 1367);
    const Raster right = part(read[1], 0, 0, 1824, 1367);
    EXPECT_GT(psnr(left, beside("Panasonic-DMC-GX8-left.jpg")), 30);
    EXPECT_GT(psnr(right, beside("Panasonic-DMC-GX8-right.jpg")), 30);
    EXPECT_LT(psnr(left, beside("Panasonic-DMC-GX8-right.jpg")), 25);
    const PhotoPackings found = media::readPhotoPackings(media::InputFile(sample));
    EXPECT_EQ(found.eyePictures, 2);
    EXPECT_DOUBLE_EQ(found.baseline.value_or(0), 0.01);
    EXPECT_DOUBLE_EQ(found.convergence.value_or(1), 0);
    EXPECT_NEAR(found.horizontalFieldOfView.value_or(0), 28.55, 0.02); // 68 mm on film
}

} // namespace
} // namespace lumetwin::test
