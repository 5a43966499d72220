// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MediaError.h"
#include "media/PhotoPackings.h"
#include "media/SpatialPhoto.h"
#include "tests/support/JpegBuilder.h"
#include "tests/support/Photos.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {

using media::Eye;
using media::MediaReason;
using media::PhotoPackings;

class MultiPicture : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name = "a.mpo") const { return folder_.path() / name; }

    Bytes jpeg(const Raster &picture, const std::vector<std::string> &options = {"-quality", "95"}) const {
        writeWithMagick(picture, file("part.jpg"), options);
        return readFile(file("part.jpg"));
    }

    /// Two eyes whose numbers are one and two.
    MultiPictureBuilder pair(bool bigEndian = false) const {
        return {
            {bigEndian}, {{jpeg(left_), PicturePart::eye, 1, {}}, {jpeg(right_), PicturePart::eye, 2, {}}}, 0, {}, {}};
    }

    PhotoPackings packings(const Bytes &bytes) const {
        writeFile(file(), bytes);
        return media::readPhotoPackings(media::InputFile(file()));
    }

    /// The eyes, left then right.
    static std::vector<Raster> eyes(const std::filesystem::path &path) {
        std::vector<Raster> rasters;
        std::vector<Eye> order;
        media::readEyePictures(media::ImageFile(media::InputFile(path)), [&](Eye eye, media::StillImage image) {
            order.push_back(eye);
            rasters.push_back(rasterOf(image.picture));
        });
        EXPECT_THAT(order, testing::ElementsAre(Eye::left, Eye::right));
        return rasters;
    }

    void expectEyes(const MultiPictureBuilder &builder, const Raster &left, const Raster &right) const {
        EXPECT_GE(packings(builder.file()).eyePictures, 2);
        const std::vector<Raster> read = eyes(file());
        ASSERT_EQ(read.size(), 2u);
        EXPECT_GT(psnr(read[0], left), 33);
        EXPECT_GT(psnr(read[1], right), 33);
        EXPECT_LT(psnr(read[0], right), 25); // the two are told apart
    }

    /// The error that reading the eyes gives.
    std::optional<media::MediaError> failure(const Bytes &bytes) const {
        writeFile(file(), bytes);
        try {
            media::readEyePictures(media::ImageFile(media::InputFile(file())), [](Eye, const media::StillImage &) {});
        } catch (const media::MediaError &error) {
            EXPECT_EQ(error.file(), file());
            return error;
        }
        return std::nullopt;
    }

    TemporaryFolder folder_;
    Raster left_ = drawn(96, 64, 1);
    Raster right_ = drawn(96, 64, 2);
    Raster third_ = drawn(96, 64, 3);
};

} // namespace lumetwin::test
