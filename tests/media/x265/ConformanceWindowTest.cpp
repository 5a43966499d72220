// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/ConformanceWindow.h"

#include "media/x265/StillEncoder.h"
#include "tests/support/Drawing.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace lumetwin::media::x265 {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A sequence parameter set for pictures of 64 × 64 pixels.
Bytes sequenceSet() {
    const CodedStill still = encodeStill("test.heic", test::noise(64, 64, yuv420), 20, 1);
    const auto found = std::find_if(still.parameterSets.begin(), still.parameterSets.end(),
                                    [](const Bytes &unit) { return hevc::nalType(unit) == hevc::NalType::sequence; });
    return found == still.parameterSets.end() ? Bytes{} : *found;
}

TEST(ConformanceWindow, isSetInASequenceParameterSet) {
    const auto smaller = withConformanceWindow(sequenceSet(), 40, 22);
    ASSERT_TRUE(smaller);
    EXPECT_NE(*smaller, sequenceSet());
    EXPECT_EQ(withConformanceWindow(*smaller, 40, 22), smaller) << "a window that is there is replaced";
    EXPECT_FALSE(withConformanceWindow(sequenceSet(), 66, 64)) << "larger than the picture";
}

// Found by fuzzing: the type was read from units that have none.
TEST(ConformanceWindow, rejectsUnitsThatAreNotLongerThanTheirHeader) {
    EXPECT_FALSE(withConformanceWindow({}, 8, 8));
    const Bytes whole = sequenceSet();
    for (std::size_t size = 1; size <= hevc::nalHeaderBytes; ++size) {
        const Bytes unit(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(withConformanceWindow(unit, 8, 8)) << size;
    }
}

TEST(ConformanceWindow, rejectsASetThatEndsBeforeItsWindow) {
    const Bytes whole = sequenceSet();
    constexpr std::size_t beforeTheLevelEnds = 15;
    ASSERT_GT(whole.size(), beforeTheLevelEnds);
    for (std::size_t size = hevc::nalHeaderBytes; size < beforeTheLevelEnds; ++size) {
        const Bytes unit(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(withConformanceWindow(unit, 8, 8)) << size;
    }
}

} // namespace
} // namespace lumetwin::media::x265
