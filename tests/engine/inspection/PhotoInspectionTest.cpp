// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

class PhotoInspection : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }
    TemporaryFolder folder_;
};

TEST_F(PhotoInspection, tellsSpatialPhotosByTheirGroup) {
    writeSpatialPhoto(file("a.heic"), drawn(64, 64), drawn(64, 64, 2));
    EXPECT_TRUE(isSpatialPhoto(file("a.heic")));
    setStereoGroup(file("a.heic"), {});
    EXPECT_TRUE(isSpatialPhoto(file("a.heic"))); // who the eyes are is the converter's question
    renameBox(file("a.heic"), "ster", "altr");
    EXPECT_FALSE(isSpatialPhoto(file("a.heic")));
}

TEST_F(PhotoInspection, ordinaryFilesAreNotSpatial) {
    media::writeImage(file("one.heic"), media::ImageKind::heif, {pictureOf(drawn(64, 64)), {}}, 1);
    writeWithMagick(drawn(64, 64), file("a.jpg"));
    writeFile(file("text.heic"), Bytes{'n', 'o'});
    for (const char *name : {"one.heic", "a.jpg", "text.heic", "none.heic"}) {
        EXPECT_FALSE(isSpatialPhoto(file(name))) << name;
        const StereoValues values = stereoValues(file(name));
        EXPECT_FALSE(values.horizontalFOV || values.stereoBaseline || values.disparity) << name;
    }
}

TEST_F(PhotoInspection, readsTheValues) {
    media::SpatialPhotoFacts facts{32, {32, 32}, {-63500, 0, 0}, 150};
    media::writeSpatialPhoto(file("a.heic"), pictureOf(drawn(64, 64)), pictureOf(drawn(64, 64)), facts, {});
    const StereoValues values = stereoValues(file("a.heic"));
    EXPECT_NEAR(values.horizontalFOV.value(), 90, 1e-6);
    EXPECT_NEAR(values.stereoBaseline.value(), 63.5, 1e-9);
    EXPECT_EQ(values.disparity, 1.5);
}

TEST_F(PhotoInspection, aFocalLengthOfZeroGivesNoFieldOfView) {
    media::SpatialPhotoFacts facts{0, {32, 32}, {0, 0, 0}, 0};
    media::writeSpatialPhoto(file("a.heic"), pictureOf(drawn(64, 64)), pictureOf(drawn(64, 64)), facts, {});
    const StereoValues values = stereoValues(file("a.heic"));
    EXPECT_FALSE(values.horizontalFOV);
    EXPECT_FALSE(values.stereoBaseline);
    EXPECT_EQ(values.disparity, 0.0);
}

TEST_F(PhotoInspection, theSamples) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    const auto photo = *samples / "spatial-photo" / "spatial_photo.heic";
    EXPECT_TRUE(isSpatialPhoto(photo));
    const StereoValues values = stereoValues(photo);
    EXPECT_NEAR(values.horizontalFOV.value(), 80.0, 0.01);
    EXPECT_NEAR(values.stereoBaseline.value(), 63.807, 1e-6);
    EXPECT_EQ(values.disparity, 2.93);
    for (const char *name : {"two_images_no_group.heic", "alpha_512x512.heic", "rgb10_128x128.heif", "sample.avi"})
        EXPECT_FALSE(isSpatialPhoto(*samples / "ordinary" / name)) << name;
}

} // namespace
} // namespace lumetwin::test
