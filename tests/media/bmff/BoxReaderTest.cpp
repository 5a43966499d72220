// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/bmff/BoxReader.h"
#include "tests/media/bmff/BoxBuilder.h"

#include <gtest/gtest.h>

namespace lumetwin::media::bmff {
namespace {

using test::box;
using test::Bytes;
using test::joined;
using test::letters;
using test::u32;

std::vector<std::uint32_t> typesIn(const Bytes &bytes) {
    const auto source = fromMemory(bytes);
    int count = 0;
    BoxWalk walk(*source, 0, bytes.size(), count);
    std::vector<std::uint32_t> types;
    Box found;
    while (walk.next(found))
        types.push_back(found.type);
    return types;
}

TEST(BoxWalk, readsShortLongAndOpenSizes) {
    const Bytes bytes = joined({box("aaaa", {1, 2}), test::longBox("bbbb", {3}), u32(0), letters("cccc"), {9, 9, 9}});
    EXPECT_EQ(typesIn(bytes), (std::vector{fourCC("aaaa"), fourCC("bbbb"), fourCC("cccc")}));
}

TEST(BoxWalk, takesTerminatorsForTheEnd) {
    EXPECT_EQ(typesIn(joined({box("aaaa", {}), {0, 0, 0, 0}})).size(), 1u);
    EXPECT_EQ(typesIn(joined({box("aaaa", {}), {0, 0, 0}})).size(), 1u);
    EXPECT_EQ(typesIn(joined({box("aaaa", {}), u32(0), u32(0), {1, 2}})).size(), 1u);
}

TEST(BoxWalk, refusesSizesThatLie) {
    EXPECT_THROW(typesIn(joined({u32(7), letters("aaaa"), {1, 2, 3}})), FormatError);
    EXPECT_THROW(typesIn(joined({u32(100), letters("aaaa"), {1, 2, 3}})), FormatError);
    EXPECT_THROW(typesIn(joined({u32(1), letters("aaaa"), test::number(~0ULL, 8)})), FormatError);
    EXPECT_THROW(typesIn(joined({u32(1), letters("aaaa"), test::number(15, 8)})), FormatError);
    EXPECT_THROW(typesIn(joined({u32(1), letters("aaaa"), {0, 0}})), FormatError);
}

TEST(BoxWalk, boundsTheWorkThatAFileCanCause) {
    Bytes bytes;
    for (int index = 0; index <= BoxWalk::limit; ++index)
        bytes.insert(bytes.end(), {0, 0, 0, 8, 'f', 'r', 'e', 'e'});
    EXPECT_THROW(typesIn(bytes), FormatError);
}

TEST(BoxWalk, keepsTheUuid) {
    Bytes uuid(16);
    uuid[15] = 7;
    const Bytes bytes = box("uuid", joined({uuid, {42}}));
    const auto source = fromMemory(bytes);
    int count = 0;
    Box found;
    ASSERT_TRUE(BoxWalk(*source, 0, bytes.size(), count).next(found));
    EXPECT_EQ(found.uuid[15], 7);
    EXPECT_EQ(payload(*source, found, 100), Bytes{42});
    EXPECT_THROW(payload(*source, found, 0), FormatError);
}

TEST(Fields, readsBigEndianAndStopsAtTheEnd) {
    const Bytes bytes{1, 2, 3, 4, 5, 0xff, 0xff, 0xff, 0xfe};
    Fields fields(bytes);
    EXPECT_EQ(fields.u8(), 1);
    EXPECT_EQ(fields.u32(), 0x02030405u);
    EXPECT_EQ(fields.number(0), 0u);
    EXPECT_EQ(fields.i32(), -2);
    EXPECT_EQ(fields.left(), 0u);
    EXPECT_THROW(fields.u8(), FormatError);
}

} // namespace
} // namespace lumetwin::media::bmff
