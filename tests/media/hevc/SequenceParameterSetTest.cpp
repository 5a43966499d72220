// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/SequenceParameterSet.h"

#include "tests/media/hevc/SequenceSets.h"

#include <gtest/gtest.h>

namespace lumetwin::media::hevc {
namespace {

using test::Bytes;
using test::sequenceUnit;
using test::shortSequenceUnit;

TEST(SequenceParameterSet, isReadInEveryFormat) {
    for (const test::SequenceSet &expected :
         {test::SequenceSet{}, {1, 1, 0, 10, 8, 6}, {0, 3, 2, 12, 12, 4}, {0, 7, 3, 8, 16, 5}, {1, 2, 1, 8, 8, 3}}) {
        const auto set = readSequenceParameterSet(sequenceUnit(expected));
        ASSERT_TRUE(set);
        EXPECT_EQ(set->profileTierLevel, (std::array<std::uint8_t, 12>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
        EXPECT_EQ(set->temporalLayers, expected.subLayers);
        EXPECT_TRUE(set->temporallyNested);
        EXPECT_EQ(set->chromaFormat, expected.chromaFormat);
        EXPECT_EQ(set->lumaDepth, expected.lumaDepth);
        EXPECT_EQ(set->chromaDepth, expected.chromaDepth);
        EXPECT_EQ(set->smallestCodingBlock, expected.smallestCodingBlock);
    }
}

TEST(SequenceParameterSet, hasAShorterFormAboveTheBaseLayerOnly) {
    EXPECT_EQ(readSequenceParameterSet(shortSequenceUnit(1, 4))->smallestCodingBlock, 4);
    EXPECT_EQ(readSequenceParameterSet(shortSequenceUnit(1, 6, true))->smallestCodingBlock, 6);
    EXPECT_FALSE(readSequenceParameterSet(shortSequenceUnit(0, 4)));
}

TEST(SequenceParameterSet, thatIsDamagedIsNone) {
    EXPECT_FALSE(readSequenceParameterSet(sequenceUnit({0, 1, 4})));
    EXPECT_FALSE(readSequenceParameterSet(sequenceUnit({0, 1, 1, 17})));
    EXPECT_FALSE(readSequenceParameterSet(sequenceUnit({0, 1, 1, 8, 17})));
    EXPECT_FALSE(readSequenceParameterSet(sequenceUnit({0, 1, 1, 8, 8, 7})));
    for (const Bytes &whole : {sequenceUnit({}), shortSequenceUnit(1, 3)})
        for (std::size_t size = 0; size + 1 < whole.size(); ++size)
            EXPECT_FALSE(readSequenceParameterSet(NalBytes(whole).first(size))) << size;
    Bytes other = sequenceUnit({});
    other[0] = 34 << 1;
    EXPECT_FALSE(readSequenceParameterSet(other));
    EXPECT_FALSE(readSequenceParameterSet(Bytes(40, 0)));
}

} // namespace
} // namespace lumetwin::media::hevc
