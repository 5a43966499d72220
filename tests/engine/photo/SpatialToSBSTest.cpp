// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/photo/SpatialToSBSFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin::test {
namespace {

using testing::StartsWith;

TEST_F(SpatialToSBS, leftIsLeft) {
    writeMarkers(200, 150);
    const Raster picture = convert();
    ASSERT_EQ(picture.width, 400);
    ASSERT_EQ(picture.height, 150);
    expectNear(picture, 0, 0, red);
    expectNear(picture, 199, 149, red);
    expectNear(picture, 200, 0, blue);
    expectNear(picture, 399, 149, blue);
}

TEST_F(SpatialToSBS, theGroupDecidesNotTheOrderInTheFile) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    ASSERT_EQ(ids.size(), 2u);
    setStereoGroup(file("in.heic"), {ids[1], ids[0]});
    const Raster picture = convert();
    expectNear(picture, 10, 10, blue);
    expectNear(picture, 100, 10, red);
}

TEST_F(SpatialToSBS, swapPutsTheRightEyeLeft) {
    writeMarkers(64, 64);
    settings_.swapLeftRight = true;
    const Raster picture = convert();
    expectNear(picture, 10, 10, blue);
    expectNear(picture, 100, 10, red);
}

TEST_F(SpatialToSBS, halfWidthKeepsTheWidthOfOneEye) {
    writeMarkers(200, 150);
    settings_.halfWidth = true;
    const Raster picture = convert();
    ASSERT_EQ(picture.width, 200);
    ASSERT_EQ(picture.height, 150);
    expectNear(picture, 95, 75, red);
    expectNear(picture, 105, 75, blue);
}

TEST_F(SpatialToSBS, sizesOfTheKnownExample) {
    writeMarkers(2000, 1500);
    Raster picture = convert("out.jpg");
    EXPECT_EQ(picture.width, 4000);
    EXPECT_EQ(picture.height, 1500);
    settings_.halfWidth = true;
    picture = convert("half.jpg");
    EXPECT_EQ(picture.width, 2000);
    EXPECT_EQ(picture.height, 1500);
    expectNear(picture, 990, 700, red, 10);
    expectNear(picture, 1010, 700, blue, 10);
}

TEST_F(SpatialToSBS, oddHalfWidthLeavesTheLastColumnBlack) {
    writeMarkers(1999, 20);
    settings_.halfWidth = true;
    const Raster picture = convert();
    ASSERT_EQ(picture.width, 1999);
    expectNear(picture, 998, 10, red);
    expectNear(picture, 999, 10, blue);
    expectNear(picture, 1997, 10, blue);
    expectNear(picture, 1998, 10, black, 0);
}

TEST_F(SpatialToSBS, resizingSetsTheCanvas) {
    writeMarkers(64, 48);
    settings_.enableResize = true;
    Raster picture = convert();
    EXPECT_EQ(picture.width, 3840);
    EXPECT_EQ(picture.height, 1080);
    settings_.halfWidth = true;
    picture = convert();
    EXPECT_EQ(picture.width, 1920);
    EXPECT_EQ(picture.height, 1080);
}

TEST_F(SpatialToSBS, letterboxHasBlackBars) {
    writeMarkers(192, 108);
    settings_.enableResize = true;
    settings_.resizeWidth = 144;
    settings_.resizeHeight = 144;
    settings_.compressionQuality = 1;
    for (const char *name : {"out.png", "out.jpg", "out.tiff"}) {
        SCOPED_TRACE(name);
        const Raster picture = convert(name);
        ASSERT_EQ(picture.width, 288);
        ASSERT_EQ(picture.height, 144);
        // 144 × 81 in the middle of 144: 31.5 rows above and below.
        expectNear(picture, 70, 27, black, 3); // subsampled chroma mixes two rows beside the edge
        expectNear(picture, 70, 34, red, 8);
        expectNear(picture, 200, 108, blue, 8);
        expectNear(picture, 200, 116, black, 3);
    }
}

TEST_F(SpatialToSBS, cropFillKeepsTheMiddle) {
    Raster left = solid(192, 108, red);
    fill(left, 0, 0, 30, 108, blue); // cut off: only the middle 108 columns stay
    writeSpatialPhoto(file("in.heic"), left, left);
    settings_.enableResize = true;
    settings_.resizeWidth = 144;
    settings_.resizeHeight = 144;
    settings_.resizeMode = ResizeMode::cropFill;
    const Raster picture = convert();
    ASSERT_EQ(picture.width, 288);
    expectNear(picture, 3, 70, red, 8);
    expectNear(picture, 143, 70, red, 8);
}

TEST_F(SpatialToSBS, stretchFillsTheTarget) {
    writeMarkers(192, 108);
    settings_.enableResize = true;
    settings_.resizeWidth = 100;
    settings_.resizeHeight = 100;
    settings_.resizeMode = ResizeMode::stretch;
    const Raster picture = convert();
    for (const int y : {0, 99}) {
        expectNear(picture, 0, y, red);
        expectNear(picture, 99, y, red);
        expectNear(picture, 100, y, blue);
    }
}

TEST_F(SpatialToSBS, withoutResizingTheModeChangesNothing) {
    writeSpatialPhoto(file("in.heic"), drawn(120, 80), drawn(120, 80, 3));
    const Raster plain = convert();
    for (const ResizeMode mode : allResizeModes) {
        settings_.resizeMode = mode;
        EXPECT_EQ(convert(), plain);
    }
}

TEST_F(SpatialToSBS, pngAndTiffHoldExactlyTheDecodedEyes) {
    for (const auto &[width, height] : {std::pair{160, 120}, {161, 121}}) {
        writeSpatialPhoto(file("in.heic"), drawn(width, height), drawn(width, height, 5));
        const std::vector<Raster> eyes = decodedByJudge(file("in.heic"));
        ASSERT_EQ(eyes.size(), 2u);
        const Raster expected = sideBySide(eyes[0], eyes[1]);
        EXPECT_EQ(convert("out.png"), expected);
        EXPECT_EQ(convert("out.TIFF"), expected);
    }
}

TEST_F(SpatialToSBS, everyFormatIsWhatItsNameSays) {
    writeSpatialPhoto(file("in.heic"), drawn(120, 80), drawn(120, 80, 3));
    const Raster exact = convert("out.png");
    settings_.compressionQuality = 1;
    for (const auto &[name, kind] : {std::pair{"a.jpg", media::ImageKind::jpeg},
                                     {"a.jpeg", media::ImageKind::jpeg},
                                     {"a.PNG", media::ImageKind::png},
                                     {"a.tif", media::ImageKind::tiff},
                                     {"a.TIFF", media::ImageKind::tiff},
                                     {"a.heic", media::ImageKind::heif},
                                     {"a.webp", media::ImageKind::jpeg}}) {
        SCOPED_TRACE(name);
        convertSpatialPhotoToSBS(settings_, file("in.heic"), file(name));
        EXPECT_EQ(media::imageKind(file(name)), kind);
        const Raster picture = kind == media::ImageKind::heif  ? decodedByJudge(file(name)).at(0)
                               : std::string(name) == "a.webp" ? readWithOurs(file(name))
                                                               : readWithMagick(file(name));
        ASSERT_EQ(picture.width, 240);
        EXPECT_GT(psnr(picture, exact), 34); // readers differ in how they interpolate chroma
    }
    EXPECT_FALSE(std::filesystem::exists(file("a.jpg.partial")));
}

TEST_F(SpatialToSBS, heicQualityIsMonotonic) {
    writeSpatialPhoto(file("in.heic"), drawn(120, 80), drawn(120, 80, 3));
    const Raster exact = convert("out.png");
    double before = 0;
    for (const double quality : {0.0, 0.5, 0.75, 1.0}) {
        settings_.compressionQuality = quality;
        convertSpatialPhotoToSBS(settings_, file("in.heic"), file("out.heic"));
        const double now = psnr(decodedByJudge(file("out.heic")).at(0), exact);
        EXPECT_GT(now, before) << quality;
        before = now;
    }
}

TEST_F(SpatialToSBS, oneImageIsNoSpatialPhoto) {
    writeWithMagick(drawn(16, 16), file("in.heic"));
    std::filesystem::remove(file("in.heic"));
    media::writeImage(file("in.heic"), media::ImageKind::heif, {pictureOf(drawn(64, 64)), {}}, 1);
    EXPECT_EQ(failure(), "This is not a spatial photo: Does not contain two or more images (count=1)");
    media::writeImage(file("in.heic"), media::ImageKind::jpeg, {pictureOf(drawn(64, 64)), {}}, 1);
    EXPECT_EQ(failure(), "This is not a spatial photo: Does not contain two or more images (count=1)");
}

TEST_F(SpatialToSBS, eyesOfDifferentSizeAreAnError) {
    media::writeSpatialPhoto(file("in.heic"), pictureOf(drawn(64, 64)), pictureOf(drawn(80, 64)), factsFor(64, 64), {});
    EXPECT_EQ(failure(), "The left and right images differ in size");
}

TEST_F(SpatialToSBS, filesThatAreNoImagesCannotBeOpened) {
    EXPECT_EQ(failure(), "Could not open the file: in.heic (No such file or directory)");
    writeFile(file("in.heic"), Bytes{1, 2, 3});
    EXPECT_EQ(failure(), "Could not open the file: in.heic (not an image of a known kind)");
    writeFile(file("in.heic"), Bytes{});
    EXPECT_EQ(failure(), "Could not open the file: in.heic (The file is empty)");
    writeImageSequence(file("in.heic"));
    EXPECT_EQ(failure(), "Could not open the file: in.heic (an image sequence, not a photo)");
    writeMarkers(64, 64);
    Bytes bytes = readFile(file("in.heic"));
    bytes.resize(placeOfBox(bytes, "meta") + 100);
    writeFile(file("in.heic"), bytes);
    EXPECT_EQ(failure(), "Could not open the file: in.heic (it is damaged: a box's size is wrong)");
}

TEST_F(SpatialToSBS, codingsThatAreNotReadAreNamed) {
    for (const auto &[type, name] : {std::pair("avc1", "AVC"), {"j2k1", "JPEG 2000"}, {"av01", "AV1"}}) {
        writeMarkers(64, 64);
        setCoding(file("in.heic"), type);
        EXPECT_EQ(failure(),
                  std::string("Failed to retrieve left and right images. (there is no decoder for it: ") + name + ")");
    }
}

TEST_F(SpatialToSBS, encryptedPhotosAreNamedSo) {
    writeMarkers(64, 64);
    encryptItems(file("in.heic"));
    EXPECT_EQ(failure(), "Failed to retrieve left and right images. (it is encrypted)");
}

TEST_F(SpatialToSBS, eyesThatCannotBeDecodedAreAnError) {
    writeMarkers(64, 64);
    Bytes bytes = readFile(file("in.heic"));
    const std::size_t data = placeOfBox(bytes, "mdat") + 8;
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(data), bytes.end(), std::uint8_t{0xFF});
    writeFile(file("in.heic"), bytes);
    for (const char *output : {"out.png", "out.jpg"})
        EXPECT_THAT(failure(output), StartsWith("Failed to retrieve left and right images. (it ends early: "));
    EXPECT_FALSE(std::filesystem::exists(file("out.jpg")));
}

TEST_F(SpatialToSBS, aFullDiskIsAnErrorOfTheWriting) {
    writeMarkers(64, 64);
    for (const char *name : {"out.jpg", "out.png", "out.tiff", "out.heic"}) {
        // /dev/full takes nothing.
        std::filesystem::create_symlink("/dev/full", file(std::string(name) + ".partial"));
        EXPECT_EQ(failure(name), std::string("Failed to write image: ") + name + " (No space left on device)");
        EXPECT_FALSE(std::filesystem::exists(file(name)));
    }
}

TEST_F(SpatialToSBS, truncatedPhotosAreErrorsAtEveryLength) {
    writeSpatialPhoto(file("whole.heic"), drawn(120, 80), drawn(120, 80, 3));
    const std::vector<std::uint8_t> whole = readFile(file("whole.heic"));
    for (std::size_t part = 0; part < 60; ++part) {
        writeFile(file("in.heic"),
                  Bytes{whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * part / 60)});
        EXPECT_NE(failure(), "") << part;
        EXPECT_FALSE(std::filesystem::exists(file("out.png")));
    }
}

TEST_F(SpatialToSBS, aMissingFolderIsAnErrorOfTheDestination) {
    writeMarkers(64, 64);
    EXPECT_EQ(failure("missing/out.jpg"), "Cannot create image destination: out.jpg (No such file or directory)");
}

TEST_F(SpatialToSBS, anImpossibleCanvasIsAnError) {
    writeMarkers(64, 64);
    settings_.enableResize = true;
    for (const std::int64_t width : {std::int64_t{0}, std::int64_t{-4}, std::int64_t{70000}, std::int64_t{1} << 40}) {
        settings_.resizeWidth = width;
        const char *cause = width > 0 ? "the image is too large" : "the image is empty";
        EXPECT_EQ(failure(), std::string("Failed to render SBS image (") + cause + ")") << width;
    }
}

TEST_F(SpatialToSBS, theInputSurvivesBeingTheOutput) {
    writeMarkers(64, 64);
    convertSpatialPhotoToSBS(settings_, file("in.heic"), file("in.heic"));
    const Raster picture = decodedByJudge(file("in.heic")).at(0);
    EXPECT_EQ(picture.width, 128);
    expectNear(picture, 100, 10, blue, 8);
}

TEST_F(SpatialToSBS, whatTheCameraWroteIsCarried) {
    writeSpatialPhoto(file("in.heic"), drawn(120, 80), drawn(120, 80, 3));
    writeWithMagick(drawn(16, 16), file("camera.jpg"));
    output({"exiftool", "-q", "-overwrite_original", "-Make=Acme", "-DateTimeOriginal=2024:05:06 07:08:09",
            "-GPSLatitude=35.5", "-GPSLatitudeRef=N", "-Orientation#=3", file("camera.jpg").string()});
    const media::ImageMetadata metadata = media::readImage(file("camera.jpg")).metadata;
    media::writeSpatialPhoto(file("in.heic"), pictureOf(drawn(120, 80)), pictureOf(drawn(120, 80, 2)),
                             factsFor(120, 80), metadata);
    for (const char *name : {"out.jpg", "out.png", "out.tiff", "out.heic"}) {
        SCOPED_TRACE(name);
        convertSpatialPhotoToSBS(settings_, file("in.heic"), file(name));
        const std::string facts = output({"exiftool", "-n", "-s", file(name).string()});
        EXPECT_NE(facts.find("Acme"), std::string::npos) << facts;
        EXPECT_NE(facts.find("2024:05:06 07:08:09"), std::string::npos);
        EXPECT_NE(facts.find("35.5"), std::string::npos);
        EXPECT_NE(facts.find("Orientation                     : 1"), std::string::npos);
    }
}

TEST_F(SpatialToSBS, theHeadsetPhotoOfTheSamples) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    const auto photo = *samples / "spatial-photo" / "spatial_photo.heic";
    convertSpatialPhotoToSBS(settings_, photo, file("out.png"));
    const Raster picture = readWithMagick(file("out.png"));
    const std::vector<Raster> eyes = decodedByJudge(photo);
    ASSERT_EQ(eyes.size(), 2u);
    EXPECT_EQ(picture, sideBySide(eyes[0], eyes[1]));
    settings_.compressionQuality = 1;
    convertSpatialPhotoToSBS(settings_, photo, file("out.jpg"));
    EXPECT_GT(psnr(readWithMagick(file("out.jpg")), picture), 40);
    const std::string facts = output({"exiftool", "-s", file("out.jpg").string()});
    EXPECT_NE(facts.find("Display P3"), std::string::npos);
}

} // namespace
} // namespace lumetwin::test
