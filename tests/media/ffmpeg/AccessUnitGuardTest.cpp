// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/AccessUnitGuard.h"

#include "tests/media/bmff/BoxBuilder.h"
#include "tests/media/hevc/SequenceSets.h"

#include <gtest/gtest.h>

namespace lumetwin::media::ffmpeg {
namespace {

using test::Bytes;
using test::joined;
using test::sequenceUnit;
using test::shortSequenceUnit;

constexpr int trail = 1;
constexpr int idr = 19;
constexpr int video = 32;
constexpr int picture = 34;
constexpr int prefixMessage = 39;
constexpr int suffixMessage = 40;

/// A NAL unit; of a slice the first bit behind the header says that it is its picture's first.
Bytes unit(int type, int layer, std::uint8_t third = 0x80) {
    return {static_cast<std::uint8_t>(type << 1), static_cast<std::uint8_t>(layer << 3 | 1), third,
            static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(layer)};
}

constexpr std::uint8_t notFirst = 0;

/// A configuration record with one array for each unit; lengths have four bytes.
Bytes record(const std::vector<Bytes> &units) {
    Bytes bytes(22, 0);
    bytes[0] = 1;
    bytes[21] = 3;
    bytes.push_back(static_cast<std::uint8_t>(units.size()));
    for (const Bytes &nal : units)
        bytes = joined({bytes, {nal[0]}, test::number(1, 2), test::number(nal.size(), 2), nal});
    return bytes;
}

Bytes sample(const std::vector<Bytes> &units) {
    Bytes bytes;
    for (const Bytes &nal : units)
        bytes = joined({bytes, test::u32(static_cast<std::uint32_t>(nal.size())), nal});
    return bytes;
}

struct Kept {
    Bytes bytes;
    bool damaged = false;
};

Kept keep(AccessUnitGuard &guard, Bytes bytes) {
    bytes.resize(guard.keep(bytes));
    return {bytes, guard.damaged()};
}

Kept keep(const std::vector<Bytes> &units) {
    AccessUnitGuard guard(record({unit(video, 0, 0)}));
    return keep(guard, sample(units));
}

const Bytes base = unit(trail, 0);
const Bytes second = unit(trail, 1);

void expectUntouched(const std::vector<Bytes> &units) {
    const Kept kept = keep(units);
    EXPECT_EQ(kept.bytes, sample(units));
    EXPECT_FALSE(kept.damaged);
}

TEST(AccessUnitGuard, leavesWholeAccessUnitsAlone) {
    expectUntouched({base, second});
    expectUntouched({base});
    expectUntouched({unit(prefixMessage, 0), unit(idr, 0), unit(21, 1)});
    expectUntouched({base, unit(trail, 0, notFirst), second, unit(trail, 1, notFirst)});
    expectUntouched({unit(35, 0), unit(video, 0, 0), sequenceUnit({}), unit(picture, 0), unit(idr, 0),
                     shortSequenceUnit(1, 3), unit(picture, 1), unit(prefixMessage, 1), unit(idr, 1), unit(36, 0)});
}

TEST(AccessUnitGuard, leavesOutWhatComesBeforeTheBaseLayer) {
    const Kept kept = keep({second, base});
    EXPECT_EQ(kept.bytes, sample({base}));
    EXPECT_TRUE(kept.damaged);
    EXPECT_TRUE(keep({second}).bytes.empty());
}

TEST(AccessUnitGuard, leavesOutPicturesThatBeginTwice) {
    EXPECT_EQ(keep({base, base, second, second, base}).bytes, sample({base, second}));
    EXPECT_EQ(keep({base, second, unit(trail, 0, notFirst)}).bytes, sample({base, second}));
    EXPECT_EQ(keep({unit(trail, 0, notFirst), base}).bytes, sample({base}));
    EXPECT_EQ(keep({base, unit(trail, 1, notFirst)}).bytes, sample({base}));
    EXPECT_TRUE(keep({base, base}).damaged);
}

TEST(AccessUnitGuard, leavesOutSlicesOfAnotherKindThanThePictures) {
    EXPECT_EQ(keep({base, unit(idr, 0, notFirst), second}).bytes, sample({base, second}));
    EXPECT_EQ(keep({unit(12, 0), unit(22, 0), base}).bytes, sample({base}));
}

TEST(AccessUnitGuard, leavesOutParameterSetsBehindTheirPictures) {
    EXPECT_EQ(keep({base, unit(picture, 0), second, unit(picture, 1), sequenceUnit({})}).bytes, sample({base, second}));
    EXPECT_TRUE(keep({base, second, unit(picture, 1)}).damaged);
}

TEST(AccessUnitGuard, leavesOutOtherLayersAndChecksumsWithoutAWord) {
    const Kept kept = keep({base, unit(trail, 2), second, unit(suffixMessage, 0), unit(62, 0), unit(picture, 5)});
    EXPECT_EQ(kept.bytes, sample({base, second}));
    EXPECT_FALSE(kept.damaged);
}

TEST(AccessUnitGuard, knowsOneVideoParameterSet) {
    EXPECT_TRUE(AccessUnitGuard(record({unit(video, 0, 0x20), unit(video, 0, 0x2F)})).consistent());
    EXPECT_FALSE(AccessUnitGuard(record({unit(video, 0, 0x00), unit(video, 0, 0x10)})).consistent());
    EXPECT_EQ(keep({unit(video, 0, 0x10), unit(video, 0, 0x0C), base}).bytes, sample({unit(video, 0, 0x0C), base}));
}

TEST(AccessUnitGuard, knowsOneSizeOfTheSmallestCodingBlock) {
    const Bytes sixteen = sequenceUnit({.smallestCodingBlock = 4});
    EXPECT_TRUE(AccessUnitGuard(record({sixteen, shortSequenceUnit(1, 4)})).consistent());
    EXPECT_FALSE(AccessUnitGuard(record({sixteen, shortSequenceUnit(1, 3)})).consistent());
    EXPECT_FALSE(AccessUnitGuard(record({sixteen, sequenceUnit({.layer = 1})})).consistent());
    EXPECT_FALSE(AccessUnitGuard(record({sixteen, {33 << 1, 9, 0x80, 0}})).consistent()) << "damaged";
    AccessUnitGuard guard(record({sixteen}));
    EXPECT_EQ(keep(guard, sample({base, shortSequenceUnit(1, 3), second})).bytes, sample({base, second}));
    EXPECT_TRUE(guard.damaged());
}

TEST(AccessUnitGuard, takesOverAnotherConfiguration) {
    AccessUnitGuard guard(record({unit(video, 0, 0), sequenceUnit({})}));
    Bytes other = record({sequenceUnit({})});
    other[21] = 1; // lengths of two bytes
    guard.configure(other);
    EXPECT_TRUE(guard.consistent());
    const Bytes shortLengths = joined({test::number(base.size(), 2), base});
    EXPECT_EQ(keep(guard, shortLengths).bytes, shortLengths);
    guard.configure(record({shortSequenceUnit(1, 4)}));
    EXPECT_FALSE(guard.consistent());
}

TEST(AccessUnitGuard, readsUpToALengthThatLies) {
    AccessUnitGuard guard(record({unit(video, 0, 0)}));
    const Kept kept = keep(guard, joined({sample({base}), test::u32(1000), second}));
    EXPECT_EQ(kept.bytes, sample({base}));
    EXPECT_TRUE(kept.damaged);
    EXPECT_TRUE(keep(guard, {0, 0}).bytes.empty());
    EXPECT_TRUE(keep(guard, {}).bytes.empty());
    EXPECT_EQ(keep(guard, sample({{}, {2}, {2, 1}, base})).bytes, sample({base})) << "units of nothing";
}

TEST(AccessUnitGuard, beginsAnewWithEachSample) {
    AccessUnitGuard guard(record({unit(video, 0, 0)}));
    for (int count = 0; count < 3; ++count)
        EXPECT_EQ(keep(guard, sample({base, second})).bytes, sample({base, second}));
    EXPECT_FALSE(guard.damaged());
}

TEST(AccessUnitGuard, understandsStartCodes) {
    const auto stream = [](const std::vector<Bytes> &units) {
        Bytes bytes;
        for (const Bytes &nal : units)
            bytes = joined({bytes, {0, 0, 1}, nal});
        return bytes;
    };
    EXPECT_FALSE(AccessUnitGuard(stream({unit(video, 0, 0x00), unit(video, 0, 0x10)})).consistent());
    AccessUnitGuard guard(stream({unit(video, 0, 0)}));
    EXPECT_EQ(keep(guard, stream({second, base, second, unit(suffixMessage, 0)})).bytes, stream({base, second}));
    EXPECT_TRUE(guard.damaged());
}

TEST(AccessUnitGuard, takesRecordsThatEndEarly) {
    const Bytes whole = record({unit(video, 0, 0x00), unit(video, 0, 0x10)});
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(AccessUnitGuard(std::span(whole).first(size)).consistent()) << size;
}

} // namespace
} // namespace lumetwin::media::ffmpeg
