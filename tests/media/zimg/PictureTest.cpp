// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/Picture.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace lumetwin::media {
namespace {

using namespace test;

TEST(Picture, refusesSizesOutOfRange) {
    EXPECT_THROW(makePicture(0, 10, yuv420), std::length_error);
    EXPECT_THROW(makePicture(70000, 10, yuv420), std::length_error);
    EXPECT_THROW(makePicture(60000, 60000, yuv444), std::length_error);
}

TEST(PicturePool, givesStorageOutAgain) {
    PicturePool pool(64, 64, yuv420);
    const std::uint8_t *first = pool.take().planes[0].data;
    const Picture again = pool.take();
    EXPECT_EQ(again.planes[0].data, first);
    EXPECT_NE(pool.take().planes[0].data, first);
}

TEST(PicturePool, mayEndBeforeItsPictures) {
    Picture picture;
    {
        PicturePool pool(64, 64, yuv420);
        picture = pool.take();
    }
    picture.planes[0].data[0] = 7;
    EXPECT_EQ(picture.planes[0].data[0], 7);
}

} // namespace
} // namespace lumetwin::media
