// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"
#include "engine/photo/SBSImageToSpatial.h"
#include "engine/photo/SpatialPhotoError.h"
#include "engine/photo/SpatialPhotoMetadata.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "engine/texts/ProcessorError.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumetwin::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SBSToSpatial : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// Converts a drawn picture and returns both eyes as the judge decodes them.
    std::vector<Raster> convert(const Raster &source, const std::string &name = "in.png",
                                const std::vector<std::string> &options = {}) {
        writeWithMagick(source, file(name), options);
        convertSBSImageToSpatial(settings_, file(name), file("out.heic"));
        std::vector<Raster> eyes = decodedByJudge(file("out.heic"));
        EXPECT_EQ(eyes.size(), 2u);
        return eyes;
    }

    std::string failure(const std::string &name, const std::string &output = "out.heic") {
        try {
            convertSBSImageToSpatial(settings_, file(name), file(output));
            return {};
        } catch (const SpatialPhotoError &error) {
            return error.what();
        } catch (const ProcessorError &error) {
            return error.what();
        }
    }

    TemporaryFolder folder_;
    ConversionSettings settings_;
};

TEST_F(SBSToSpatial, leftIsLeft) {
    const auto eyes = convert(sideBySide(drawn(120, 80, 1), drawn(120, 80, 2)));
    EXPECT_GT(psnr(eyes[0], drawn(120, 80, 1)), 38);
    EXPECT_GT(psnr(eyes[1], drawn(120, 80, 2)), 38);
    EXPECT_TRUE(isSpatialPhoto(file("out.heic")));
}

TEST_F(SBSToSpatial, swapMakesTheRightHalfTheLeftEye) {
    settings_.swapLeftRight = true;
    const auto eyes = convert(sideBySide(drawn(120, 80, 1), drawn(120, 80, 2)));
    EXPECT_GT(psnr(eyes[0], drawn(120, 80, 2)), 38);
    EXPECT_GT(psnr(eyes[1], drawn(120, 80, 1)), 38);
}

TEST_F(SBSToSpatial, anOddLastColumnBelongsToNeitherEye) {
    Raster source(1921, 108);
    fill(source, 0, 0, 960, 108, {200, 40, 40});
    fill(source, 960, 0, 960, 108, {40, 40, 200});
    fill(source, 1920, 0, 1, 108, {255, 255, 255});
    const auto eyes = convert(source);
    for (const Raster &eye : eyes) {
        EXPECT_EQ(eye.width, 960);
        EXPECT_EQ(eye.height, 108);
    }
    EXPECT_NEAR(eyes[0].at(959, 50)[0], 200, 4);
    EXPECT_NEAR(eyes[1].at(0, 50)[2], 200, 4);
    EXPECT_NEAR(eyes[1].at(959, 50)[0], 40, 4);
}

TEST_F(SBSToSpatial, oddEyesKeepTheirSize) {
    for (const char *name : {"in.png", "in.jpg"}) {
        const auto eyes = convert(sideBySide(drawn(121, 77, 1), drawn(121, 77, 2)), name, {"-quality", "98"});
        for (const Raster &eye : eyes) {
            EXPECT_EQ(eye.width, 121);
            EXPECT_EQ(eye.height, 77);
        }
        EXPECT_GT(psnr(eyes[1], drawn(121, 77, 2)), 34);
    }
}

TEST_F(SBSToSpatial, tinyPicturesWork) {
    for (const auto &[width, height] : {std::pair{2, 1}, {3, 2}, {10, 7}}) {
        const auto eyes = convert(drawn(width, height));
        EXPECT_EQ(eyes[0].width, width / 2);
        EXPECT_EQ(eyes[0].height, height);
    }
    writeWithMagick(drawn(1, 5), file("narrow.png"));
    EXPECT_EQ(failure("narrow.png"), "Failed to render eye images (the image is empty)");
}

TEST_F(SBSToSpatial, valuesAreThoseOfTheTable) {
    settings_.horizontalFOV = 90;
    settings_.stereoBaseline = 64;
    settings_.disparityAdjustment = 2.5;
    convert(Raster(3840, 1080));
    const media::SpatialPhotoFacts facts = spatialPhotoFacts(settings_, 1920, 1080);
    EXPECT_NEAR(facts.focalLength, 960, 1e-9);
    EXPECT_EQ(facts.principalPoint, (std::array{3840.0, 2160.0}));
    EXPECT_EQ(facts.rightPosition, (std::array{64000, 0, 0}));
    EXPECT_EQ(facts.disparityAdjustment, 250);
    const std::string info = heifInfo(file("out.heic"));
    EXPECT_THAT(info, HasSubstr("focal length: 960.000000; 960.000000"));
    EXPECT_THAT(info, HasSubstr("principal point: 3840.000000; 2160.000000"));
    EXPECT_THAT(info, HasSubstr("camera position (um): 64000"));
    const StereoValues values = stereoValues(file("out.heic"));
    EXPECT_NEAR(values.horizontalFOV.value(), 90, 1e-6);
    EXPECT_NEAR(values.stereoBaseline.value(), 64, 1e-9);
    EXPECT_EQ(values.disparity, 2.5);
}

TEST_F(SBSToSpatial, valuesAreTruncatedNotRounded) {
    settings_.disparityAdjustment = -2.999;
    EXPECT_EQ(spatialPhotoFacts(settings_, 100, 100).disparityAdjustment, -299);
    settings_.disparityAdjustment = 0;
    EXPECT_EQ(spatialPhotoFacts(settings_, 100, 100).disparityAdjustment, 0);
    convert(drawn(40, 20));
    EXPECT_EQ(stereoValues(file("out.heic")).disparity, 0.0);
}

TEST_F(SBSToSpatial, baselinesAreTruncatedNotRounded) {
    const auto baseline = [&](double millimetres) {
        settings_.stereoBaseline = millimetres;
        return spatialPhotoFacts(settings_, 100, 100).rightPosition[0];
    };
    EXPECT_EQ(baseline(63.5), 63500);
    EXPECT_EQ(baseline(64.0001), 64000);
    EXPECT_EQ(baseline(63.9999), 63999);
    EXPECT_EQ(baseline(-63.9999), -63999);
    EXPECT_EQ(baseline(-0.0005), 0);
    EXPECT_EQ(baseline(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(baseline(std::numeric_limits<double>::quiet_NaN()), 0);

    settings_.stereoBaseline = 63.9999;
    convert(drawn(40, 20));
    EXPECT_THAT(heifInfo(file("out.heic")), HasSubstr("camera position (um): 63999"));
}

TEST_F(SBSToSpatial, aFieldOfViewOfZeroGivesAnInfiniteFocalLength) {
    settings_.horizontalFOV = 0;
    EXPECT_TRUE(std::isinf(spatialPhotoFacts(settings_, 100, 100).focalLength));
    convert(drawn(80, 40));
    EXPECT_TRUE(isSpatialPhoto(file("out.heic")));
    EXPECT_NEAR(stereoValues(file("out.heic")).horizontalFOV.value_or(0), 0, 1e-3);
}

TEST_F(SBSToSpatial, transparencyIsDrawnOntoBlack) {
    Raster source(80, 40);
    fill(source, 0, 0, 80, 40, {200, 100, 60});
    const auto eyes =
        convert(source, "in.png", {"-alpha", "set", "-channel", "A", "-evaluate", "set", "50%", "+channel"});
    EXPECT_NEAR(eyes[0].at(20, 20)[0], 100, 3);
    EXPECT_NEAR(eyes[1].at(20, 20)[1], 50, 3);
    EXPECT_THAT(heifInfo(file("out.heic")), HasSubstr("alpha channel: no"));
}

TEST_F(SBSToSpatial, theExtensionBecomesHeic) {
    writeWithMagick(drawn(80, 40), file("in.png"));
    convertSBSImageToSpatial(settings_, file("in.png"), file("out.jpg"));
    EXPECT_FALSE(std::filesystem::exists(file("out.jpg")));
    EXPECT_EQ(media::imageKind(file("out.heic")), media::ImageKind::heif);
}

TEST_F(SBSToSpatial, everyKindOfSourceWorks) {
    const Raster source = sideBySide(drawn(120, 80, 1), drawn(120, 80, 2));
    for (const auto &[name, options] :
         {std::pair<std::string, std::vector<std::string>>{"444.jpg", {"-quality", "98", "-sampling-factor", "1x1"}},
          {"420.jpg", {"-quality", "98", "-sampling-factor", "2x2"}},
          {"422.jpg", {"-quality", "98", "-sampling-factor", "2x1"}},
          {"440.jpg", {"-quality", "98", "-sampling-factor", "1x2"}},
          {"411.jpg", {"-quality", "98", "-sampling-factor", "4x1"}},
          {"cmyk.jpg", {"-quality", "98", "-colorspace", "CMYK"}},
          {"a.png", {}},
          {"deep.png", {"-define", "png:bit-depth=16", "-define", "png:color-type=2"}},
          {"a.tiff", {}},
          {"deep.tiff", {"-depth", "16"}}}) {
        const auto eyes = convert(source, name, options);
        EXPECT_GT(psnr(eyes[0], drawn(120, 80, 1)), 33) << name;
        EXPECT_GT(psnr(eyes[1], drawn(120, 80, 2)), 33) << name;
    }
}

TEST_F(SBSToSpatial, greyStaysGrey) {
    Raster source(80, 40);
    fill(source, 0, 0, 40, 40, {200, 200, 200});
    fill(source, 40, 0, 40, 40, {90, 90, 90});
    for (const char *name : {"in.png", "in.jpg"}) {
        const auto eyes = convert(source, name, {"-colorspace", "Gray", "-quality", "98"});
        for (const std::size_t channel : {0u, 1u, 2u}) {
            EXPECT_NEAR(eyes[0].at(20, 20)[channel], 200, 2) << name;
            EXPECT_NEAR(eyes[1].at(20, 20)[channel], 90, 2) << name;
        }
    }
}

TEST_F(SBSToSpatial, resizingFitsEachHalf) {
    settings_.enableResize = true;
    settings_.resizeWidth = 100;
    settings_.resizeHeight = 100;
    Raster source(384, 108);
    fill(source, 0, 0, 384, 108, {200, 200, 200});
    for (const ResizeMode mode : allResizeModes) {
        settings_.resizeMode = mode;
        const auto eyes = convert(source);
        EXPECT_EQ(eyes[0].width, 100);
        EXPECT_EQ(eyes[0].height, 100);
        // 192 × 108 scaled by 100/192: 56.25 rows, bars of 21.875.
        const int wanted = mode == ResizeMode::letterbox ? 0 : 200;
        EXPECT_NEAR(eyes[0].at(50, 19)[1], wanted, 5);
        EXPECT_NEAR(eyes[0].at(50, 80)[1], wanted, 5);
        EXPECT_NEAR(eyes[1].at(50, 50)[1], 200, 4);
    }
}

TEST_F(SBSToSpatial, croppingKeepsTheMiddleAndStretchingTheWhole) {
    settings_.enableResize = true;
    settings_.resizeWidth = 108;
    settings_.resizeHeight = 108;
    Raster source(384, 108); // each half has a red border of 30 columns on either side
    fill(source, 0, 0, 384, 108, {60, 60, 200});
    for (const int x : {0, 162, 192, 354})
        fill(source, x, 0, 30, 108, {200, 60, 60});
    settings_.resizeMode = ResizeMode::cropFill; // 42 columns fall away on either side
    for (const Raster &eye : convert(source))
        for (const int x : {1, 106})
            EXPECT_NEAR(eye.at(x, 54)[2], 200, 10) << x;
    settings_.resizeMode = ResizeMode::stretch; // 30 columns become 16.9
    for (const Raster &eye : convert(source))
        for (const int x : {1, 12, 95, 106})
            EXPECT_NEAR(eye.at(x, 54)[0], 200, 10) << x;
}

TEST_F(SBSToSpatial, anImpossibleEyeIsAnError) {
    writeWithMagick(drawn(64, 32), file("in.png"));
    settings_.enableResize = true;
    for (const std::int64_t width : {std::int64_t{0}, std::int64_t{-4}, std::int64_t{70000}, std::int64_t{1} << 40}) {
        settings_.resizeWidth = width;
        const char *cause = width > 0 ? "the image is too large" : "the image is empty";
        EXPECT_EQ(failure("in.png"), std::string("Failed to render eye images (") + cause + ")") << width;
        EXPECT_FALSE(std::filesystem::exists(file("out.heic")));
    }
}

TEST_F(SBSToSpatial, aFullDiskIsAnErrorOfTheFinish) {
    writeWithMagick(drawn(64, 32), file("in.png"));
    std::filesystem::create_symlink("/dev/full", file("out.heic.partial"));
    EXPECT_EQ(failure("in.png"), "Failed to write spatial photo: out.heic (No space left on device)");
    EXPECT_FALSE(std::filesystem::exists(file("out.heic")));
}

TEST_F(SBSToSpatial, halfWidthChangesNothing) {
    const Raster source = sideBySide(drawn(64, 48, 1), drawn(64, 48, 2));
    const auto plain = convert(source);
    settings_.halfWidth = true;
    EXPECT_EQ(convert(source), plain);
}

TEST_F(SBSToSpatial, widerProfilesAreConvertedToSRGB) {
    Raster source(80, 40);
    fill(source, 0, 0, 80, 40, {200, 60, 60});
    media::Picture picture = pictureOf(source);
    picture.colour.primaries = 12;
    media::writeImage(file("wide.png"), media::ImageKind::png, {picture, {}}, 1);
    convertSBSImageToSpatial(settings_, file("wide.png"), file("out.heic"));
    const Raster eye = decodedByJudge(file("out.heic")).at(0);
    EXPECT_NEAR(eye.at(20, 20)[0], 216, 3);
    EXPECT_NEAR(eye.at(20, 20)[1], 44, 4);
}

TEST_F(SBSToSpatial, aProfileThatSaysNothingIsAnErrorOfTheAlpha) {
    media::Picture picture = pictureOf(drawn(64, 32));
    picture.colour.primaries = 12;
    media::writeImage(file("wide.jpg"), media::ImageKind::jpeg, {picture, {}}, 1);
    std::vector<std::uint8_t> profile = media::readImage(file("wide.jpg")).metadata.iccProfile;
    constexpr std::size_t header = 128;
    ASSERT_GT(profile.size(), header);
    profile.resize(header);
    profile.resize(header + 4); // no tag follows
    profile[2] = 0;
    profile[3] = static_cast<std::uint8_t>(profile.size());
    media::writeImage(file("in.jpg"), media::ImageKind::jpeg, {pictureOf(drawn(64, 32)), {profile, {}, {}}}, 1);
    EXPECT_EQ(failure("in.jpg"), "Failed to remove alpha (its colour profile cannot be used)");
    EXPECT_FALSE(std::filesystem::exists(file("out.heic")));
}

TEST_F(SBSToSpatial, eyesBeyondOnePictureBecomeGrids) {
    Raster source(2 * 8300, 70);
    fill(source, 0, 0, 8300, 70, {200, 40, 40});
    fill(source, 8290, 0, 10, 70, {40, 200, 40});
    fill(source, 8300, 0, 8300, 70, {40, 40, 200});
    media::writeImage(file("in.png"), media::ImageKind::png, {pictureOf(source), {}}, 1);
    convertSBSImageToSpatial(settings_, file("in.png"), file("out.heic"));
    const std::vector<Raster> eyes = decodedByJudge(file("out.heic"));
    ASSERT_EQ(eyes.size(), 2u);
    ASSERT_EQ(eyes[0].width, 8300);
    ASSERT_EQ(eyes[0].height, 70);
    EXPECT_NEAR(eyes[0].at(10, 30)[0], 200, 4);
    EXPECT_NEAR(eyes[0].at(8295, 30)[1], 200, 6);
    EXPECT_NEAR(eyes[1].at(8299, 69)[2], 200, 4);
    EXPECT_THAT(heifInfo(file("out.heic")), HasSubstr("grid"));
    EXPECT_THAT(heifInfo(file("out.heic")), HasSubstr("8300x70"));
}

TEST_F(SBSToSpatial, whatCannotBeOpenedIsToldWithItsCause) {
    writeImageSequence(file("C021.heic"));
    EXPECT_EQ(failure("C021.heic"), "Cannot open photo: C021.heic (an image sequence, not a photo)");
    std::filesystem::create_directory(file("folder.png"));
    EXPECT_EQ(failure("folder.png"), "Cannot open photo: folder.png (Is a directory)");

    writeSpatialPhoto(file("a.heic"), drawn(64, 64), drawn(64, 64, 2));
    encryptItems(file("a.heic"));
    EXPECT_EQ(failure("a.heic"), "Cannot open photo: a.heic (it is encrypted)");
    for (const auto &[type, name] : {std::pair("avc1", "AVC"), {"j2k1", "JPEG 2000"}, {"av01", "AV1"}}) {
        writeSpatialPhoto(file("b.heic"), drawn(64, 64), drawn(64, 64, 2));
        setCoding(file("b.heic"), type);
        EXPECT_EQ(failure("b.heic"),
                  std::string("Cannot open photo: b.heic (there is no decoder for it: ") + name + ")");
    }
    EXPECT_FALSE(std::filesystem::exists(file("out.heic")));
    EXPECT_FALSE(std::filesystem::exists(file("out.heic.partial")));
}

TEST_F(SBSToSpatial, halfAFileIsToldToEndEarly) {
    using media::ImageKind;
    for (const auto &[name, kind] : {std::pair("a.jpg", ImageKind::jpeg),
                                     {"a.png", ImageKind::png},
                                     {"a.tiff", ImageKind::tiff},
                                     {"a.heic", ImageKind::heif}}) {
        media::writeImage(file(name), kind, {pictureOf(drawn(200, 100)), {}}, 0.9);
        Bytes bytes = readFile(file(name));
        bytes.resize(bytes.size() / 2);
        writeFile(file(name), bytes);
        const std::string told = failure(name);
        EXPECT_THAT(told, StartsWith(std::string("Cannot open photo: ") + name + " (")) << name;
        EXPECT_THAT(told, testing::AnyOf(HasSubstr("it ends early"), HasSubstr("it is damaged"))) << name;
    }
}

TEST_F(SBSToSpatial, unreadableSourcesCannotBeOpened) {
    EXPECT_EQ(failure("none.jpg"), "Cannot open photo: none.jpg (No such file or directory)");
    writeFile(file("empty.jpg"), Bytes());
    EXPECT_EQ(failure("empty.jpg"), "Cannot open photo: empty.jpg (The file is empty)");
    writeFile(file("text.png"), Bytes{'a', 'b'});
    EXPECT_EQ(failure("text.png"), "Cannot open photo: text.png (not an image of a known kind)");
    EXPECT_FALSE(std::filesystem::exists(file("out.heic")));
}

TEST_F(SBSToSpatial, aMissingFolderIsAnErrorOfTheDestination) {
    writeWithMagick(drawn(80, 40), file("in.png"));
    EXPECT_EQ(failure("in.png", "missing/out.heic"),
              "Could not create the output destination: out.heic (No such file or directory)");
}

TEST_F(SBSToSpatial, theInputSurvivesBeingTheOutput) {
    media::writeImage(file("in.heic"), media::ImageKind::heif, {pictureOf(drawn(160, 60)), {}}, 1);
    convertSBSImageToSpatial(settings_, file("in.heic"), file("in.heic"));
    EXPECT_EQ(decodedByJudge(file("in.heic")).size(), 2u);
}

TEST_F(SBSToSpatial, theWayThereAndBackKeepsThePicture) {
    writeWithMagick(sideBySide(drawn(400, 300, 1), drawn(400, 300, 2)), file("in.jpg"),
                    {"-quality", "95", "-sampling-factor", "2x2"});
    convertSBSImageToSpatial(settings_, file("in.jpg"), file("out.heic"));
    settings_.compressionQuality = 1;
    convertSpatialPhotoToSBS(settings_, file("out.heic"), file("back.jpg"));
    EXPECT_GT(psnr(readWithMagick(file("back.jpg")), readWithMagick(file("in.jpg"))), 42);
}

TEST_F(SBSToSpatial, photographsOfTheSamplesThereAndBack) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    settings_.compressionQuality = 1;
    for (const char *name : {"calf_3840x1080.jpg", "camera_3648x1368.jpg", "stereograph_odd_width_3643x1574.jpg"}) {
        SCOPED_TRACE(name);
        const auto source = *samples / "sbs-image" / name;
        convertSBSImageToSpatial(settings_, source, file("out.heic"));
        convertSpatialPhotoToSBS(settings_, file("out.heic"), file("back.jpg"));
        Raster original = readWithMagick(source);
        original = part(original, 0, 0, original.width / 2 * 2, original.height);
        EXPECT_GT(psnr(readWithMagick(file("back.jpg")), original), 42);
        EXPECT_NEAR(stereoValues(file("out.heic")).horizontalFOV.value(), 63.4, 1e-4);
    }
}

} // namespace
} // namespace lumetwin::test
