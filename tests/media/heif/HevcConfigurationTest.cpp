// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HevcConfiguration.h"
#include "media/heif/HeifWriter.h"
#include "tests/media/heif/CodedPictures.h"
#include "tests/media/heif/HeifBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace lumetwin::media::heif {
namespace {

using test::joined;
using test::u16;
using test::u8;

// Main Still Picture, level 3, 4:2:0, 8 bits, with emulation prevention bytes in its level and tier.
const Bytes sequence{0x42, 0x01, 0x01, 0x03, 0x70, 0x00, 0x00, 0x03, 0x00, 0xb0, 0x00, 0x00, 0x03, 0x00,
                     0x00, 0x03, 0x00, 0x5a, 0xa0, 0x04, 0x02, 0x00, 0x80, 0x59, 0x77, 0x92, 0x44};
const Bytes video{0x40, 0x01, 0x0c};
const Bytes picture{0x44, 0x01, 0xc0};

TEST(HevcConfiguration, repeatsWhatTheSequenceParameterSetSays) {
    const Bytes configuration = hevcConfiguration({video, sequence, picture});
    const Bytes fixed{0x01, 0x03, 0x70, 0,    0,    0,    0xb0, 0, 0, 0,    0, 0,
                      0x5a, 0xf0, 0,    0xfc, 0xfd, 0xf8, 0xf8, 0, 0, 0x0f, 3};
    EXPECT_EQ(configuration, joined({fixed, u8(0xa0), u16(1), u16(3), video, u8(0xa1), u16(1), u16(27), sequence,
                                     u8(0xa2), u16(1), u16(3), picture}));
}

TEST(HevcConfiguration, ordersParameterSetsByTheirKind) {
    EXPECT_EQ(hevcConfiguration({picture, sequence, video}), hevcConfiguration({video, sequence, picture}));
    const Bytes two = hevcConfiguration({video, sequence, picture, picture});
    EXPECT_EQ(Bytes(two.end() - 13, two.end()), joined({u8(0xa2), u16(2), u16(3), picture, u16(3), picture}));
}

TEST(HevcConfiguration, refusesOtherUnitsAndDamagedOnes) {
    const auto refused = [](const std::vector<Bytes> &units) {
        EXPECT_THROW(hevcConfiguration(units), std::invalid_argument);
    };
    refused({});
    refused({video, sequence});
    refused({video, sequence, picture, {0x26, 0x01, 0xaf}});
    refused({video, sequence, picture, {}});
    for (std::size_t size = 0; size < 22; ++size)
        refused({video, Bytes(sequence.begin(), sequence.begin() + static_cast<std::ptrdiff_t>(size)), picture});
    Bytes zeros(60, 0);
    std::copy_n(sequence.begin(), 3, zeros.begin());
    for (std::size_t at = 4; at < zeros.size(); at += 3)
        zeros[at] = 1; // no emulation prevention needed, numbers without end
    refused({video, Bytes(sequence.begin(), sequence.begin() + 18), picture});
}

} // namespace
} // namespace lumetwin::media::heif
