// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/CameraProperties.h"
#include "media/bmff/BoxWriter.h"
#include "media/heif/ItemProperties.h"
#include "tests/media/heif/HeifBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace lumetwin::media::heif {
namespace {

using bmff::uuidBox;
using test::joined;
using test::u32;

constexpr double infinity = std::numeric_limits<double>::infinity();

Bytes hexadecimal(std::string_view digits) {
    Bytes bytes;
    std::string pair;
    for (const char digit : digits) {
        if (digit == ' ')
            continue;
        pair.push_back(digit);
        if (pair.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(pair, nullptr, 16)));
            pair.clear();
        }
    }
    return bytes;
}

// The properties of a photo that a headset has taken.
TEST(CameraProperties, areTheBytesOfAHeadsetsPhoto) {
    EXPECT_EQ(uuidBox(extrinsicsUuid, extrinsicsPayload({0, 0, 0})),
              hexadecimal("0000001C 75756964 4363e914 5b7d4aab 97aebea6 9803b434 00000000"));
    EXPECT_EQ(uuidBox(extrinsicsUuid, extrinsicsPayload({63807, 0, 0})),
              hexadecimal("00000020 75756964 4363e914 5b7d4aab 97aebea6 9803b434 00000001 0000F93F"));
    const double focalLength = std::ldexp(0x2622D86E, -30);
    EXPECT_EQ(uuidBox(intrinsicsUuid, intrinsicsPayload(fixedIntrinsics(focalLength, 0.5, 0.5).value())),
              hexadecimal("00000028 75756964 22cc04c7 d6d94e07 9d904eb6 ecbaf3a3 00001E00 2622D86E 20000000 20000000"));
    EXPECT_EQ(uuidBox(disparityUuid, disparityPayload(293)),
              hexadecimal("0000001C 75756964 de225085 36cb4365 87432f87 05e7c78a 00000125"));
}

// The values of the standard's conformance files.
TEST(CameraProperties, areTheBytesOfTheConformanceFiles) {
    FixedIntrinsics intrinsics{26, 0x02000000, 0x01000000, 0x00800000, {}};
    EXPECT_EQ(intrinsicsPayload(intrinsics), hexadecimal("00001A00 02000000 01000000 00800000"));
    intrinsics.anisotropic = {0x029CAAAB, -201, 1};
    EXPECT_EQ(intrinsicsPayload(intrinsics), hexadecimal("00011A01 02000000 01000000 00800000 029CAAAB FFFFFF37"));
    EXPECT_EQ(extrinsicsPayload({10000, 0, 0}, 1), joined({u32(33), u32(10000), u32(1)}));
    EXPECT_EQ(extrinsicsPayload({-30000, 50000, -80000}, 1),
              joined({u32(39), u32(static_cast<std::uint32_t>(-30000)), u32(50000),
                      u32(static_cast<std::uint32_t>(-80000)), u32(1)}));
}

TEST(CameraProperties, numbersBelowTwoHaveThirtyFractionalBitsRoundedToNearest) {
    const FixedIntrinsics fixed = fixedIntrinsics(0.001, 1.5, -0.25).value();
    EXPECT_EQ(fixed.shift, 30);
    EXPECT_EQ(fixed.focalLengthX, 0x0010624E);
    EXPECT_EQ(fixed.principalPointX, 0x60000000);
    EXPECT_EQ(fixed.principalPointY, -0x10000000);
}

TEST(CameraProperties, aPrincipalPointOfTwiceTheSizeTakesOneBitLess) {
    EXPECT_EQ(fixedIntrinsics(0.5, 2, 2), (FixedIntrinsics{29, 0x10000000, 0x40000000, 0x40000000, {}}));
    EXPECT_EQ(fixedIntrinsics(3.75, 2, 2), (FixedIntrinsics{29, 0x78000000, 0x40000000, 0x40000000, {}}));
    EXPECT_EQ(fixedIntrinsics(4, 2, 2), (FixedIntrinsics{28, 0x40000000, 0x20000000, 0x20000000, {}}));
    EXPECT_EQ(fixedIntrinsics(-4, 2, 2), (FixedIntrinsics{28, -0x40000000, 0x20000000, 0x20000000, {}}));
}

TEST(CameraProperties, theSharedShiftIsTheLargestThatHolds) {
    EXPECT_EQ(fixedIntrinsics(1e6, 2, 2)->shift, 11);
    EXPECT_EQ(fixedIntrinsics(2147483646, 2, 2)->shift, 0);
    // Rounding must not carry a number out of its range.
    EXPECT_EQ(fixedIntrinsics(2 - std::ldexp(1, -40), 0, 0)->shift, 29);
    EXPECT_EQ(fixedIntrinsics(0, 0, 0)->shift, 30);
}

TEST(CameraProperties, whatNoNumberOfBitsHoldsSaturates) {
    EXPECT_EQ(fixedIntrinsics(infinity, 2, 2), (FixedIntrinsics{0, 0x7FFFFFFF, 2, 2, {}}));
    EXPECT_EQ(fixedIntrinsics(-infinity, 2, 2),
              (FixedIntrinsics{0, std::numeric_limits<std::int32_t>::min(), 2, 2, {}}));
    EXPECT_EQ(fixedIntrinsics(1e300, 2, 2)->focalLengthX, 0x7FFFFFFF);
    EXPECT_FALSE(fixedIntrinsics(std::nan(""), 2, 2));
    EXPECT_FALSE(fixedIntrinsics(1, std::nan(""), 2));
    EXPECT_EQ(disparityPayload(1'000'000'000'000), u32(0x7FFFFFFF));
    EXPECT_EQ(disparityPayload(std::numeric_limits<std::int64_t>::min()), u32(0x80000000));
    EXPECT_EQ(disparityPayload(-150), u32(static_cast<std::uint32_t>(-150)));
}

} // namespace
} // namespace lumetwin::media::heif
