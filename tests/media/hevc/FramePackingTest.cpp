// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/hevc/FramePacking.h"

#include "media/hevc/BitWriter.h"
#include "media/hevc/FramePackingUnit.h"
#include "tests/media/bmff/BoxBuilder.h"

#include <gtest/gtest.h>

namespace lumetwin::media::hevc {
namespace {

using Arrangement = StereoPacking::Arrangement;
using test::Bytes;
using test::joined;

struct Message {
    std::uint32_t identifier = 0;
    bool cancels = false;
    std::uint32_t type = 3;
    bool quincunx = false;
    std::uint32_t interpretation = 1;
    bool mirrored = false;
    bool current = false;
    bool last = false; ///< the flag at its end
};

Bytes payloadOf(const Message &message, Coding coding) {
    BitWriter writer;
    writer.number(message.identifier);
    writer.bit(message.cancels);
    if (!message.cancels) {
        writer.bits(7, message.type);
        writer.bit(message.quincunx);
        writer.bits(6, message.interpretation);
        writer.bit(message.mirrored);
        writer.bits(2, 0);
        writer.bit(message.current);
        writer.bits(2, 0);
        if (!message.quincunx && message.type != 5)
            writer.bits(16, 0);
        writer.bits(8, 0);
        coding == Coding::avc ? writer.number(1) : writer.bit(1);
    }
    writer.bit(message.last);
    if (!writer.aligned())
        writer.bit(1);
    return writer.take();
}

Bytes head(Coding coding) {
    return coding == Coding::avc ? Bytes{6} : Bytes{39 << 1, 1};
}

Bytes messageOf(std::uint8_t type, const Bytes &payload) {
    return joined({{type, static_cast<std::uint8_t>(payload.size())}, payload});
}

Bytes unitOf(const Message &message, Coding coding) {
    return withEmulationPrevention(joined({head(coding), messageOf(45, payloadOf(message, coding)), {0x80}}));
}

std::optional<StereoPacking> packingOf(const Message &message, Coding coding) {
    const auto found = readFramePacking(unitOf(message, coding), coding);
    return found ? std::optional(found->packing) : std::nullopt;
}

const std::vector<Coding> codings{Coding::avc, Coding::hevc};

TEST(FramePacking, isReadInBothCodings) {
    for (const Coding coding : codings)
        for (const std::uint32_t identifier : {0u, 1u, 254u, 70'000u}) {
            EXPECT_EQ(packingOf({identifier}, coding), (StereoPacking{Arrangement::sideBySide, false, false}));
            EXPECT_EQ(packingOf({identifier, false, 4, false, 2}, coding),
                      (StereoPacking{Arrangement::overUnder, true, false}));
            EXPECT_EQ(packingOf({identifier, false, 3, false, 0}, coding),
                      (StereoPacking{Arrangement::sideBySide, false, false}));
        }
}

TEST(FramePacking, withPicturesInTurnKnowsWhichIsFirst) {
    for (const Coding coding : codings) {
        const auto rightFirst = [&](std::uint32_t interpretation, bool current) {
            const auto packing = packingOf({0, false, 5, false, interpretation, false, current}, coding);
            EXPECT_EQ(packing->arrangement, Arrangement::alternating);
            return packing->rightEyeFirst;
        };
        EXPECT_FALSE(rightFirst(1, true));
        EXPECT_TRUE(rightFirst(1, false));
        EXPECT_TRUE(rightFirst(2, true));
        EXPECT_FALSE(rightFirst(2, false));
    }
}

TEST(FramePacking, ofRowsColumnsAndTilesIsKnownToH264Only) {
    for (const std::uint32_t type : {0u, 1u, 2u, 7u}) {
        EXPECT_EQ(packingOf({0, false, type}, Coding::avc)->arrangement, Arrangement::interleaved);
        EXPECT_FALSE(packingOf({0, false, type}, Coding::hevc));
    }
    EXPECT_FALSE(packingOf({0, false, 6}, Coding::avc)); // one eye
}

TEST(FramePacking, withAMirroredEyeIsNotCutInHalves) {
    for (const Coding coding : codings)
        EXPECT_EQ(packingOf({0, false, 3, false, 1, true}, coding)->arrangement, Arrangement::interleaved);
}

TEST(FramePacking, saysInHevcWhetherThePixelAspectIsThatOfWholeEyes) {
    const auto read = [](const Message &message, Coding coding) {
        return readFramePacking(unitOf(message, coding), coding).value();
    };
    const Message whole{0, false, 3, false, 1, false, false, true};
    EXPECT_TRUE(read(whole, Coding::hevc).aspectIsOfWholeEyes);
    EXPECT_TRUE(read(whole, Coding::hevc).packing.isHalf);
    EXPECT_FALSE(read({}, Coding::hevc).aspectIsOfWholeEyes);
    EXPECT_FALSE(read(whole, Coding::avc).aspectIsOfWholeEyes); // there the flag means something else
    EXPECT_FALSE(read(whole, Coding::avc).packing.isHalf);
}

TEST(FramePacking, isFoundAmongOtherMessages) {
    for (const Coding coding : codings) {
        const Bytes before = joined({messageOf(5, Bytes(200, 7)), {0xFF, 0x01, 3, 1, 2, 3}}); // the second of type 256
        const Bytes after = messageOf(1, {1, 2});
        const Bytes unit = withEmulationPrevention(
            joined({head(coding), before, messageOf(45, payloadOf({}, coding)), after, {0x80}}));
        EXPECT_TRUE(readFramePacking(unit, coding));
        const Bytes long300 = joined({{5, 0xFF, 45}, Bytes(300, 0)});
        EXPECT_TRUE(readFramePacking(
            withEmulationPrevention(joined({head(coding), long300, messageOf(45, payloadOf({}, coding)), {0x80}})),
            coding));
    }
}

TEST(FramePacking, thatEndsOrIsDamagedIsNone) {
    for (const Coding coding : codings) {
        EXPECT_FALSE(packingOf({0, true}, coding));
        EXPECT_FALSE(packingOf({0, false, 3, false, 3}, coding));
        EXPECT_FALSE(packingOf({0, false, 99}, coding));
        Bytes cut = payloadOf({}, coding);
        cut.resize(cut.size() - 2);
        EXPECT_FALSE(readFramePacking(
            withEmulationPrevention(joined({head(coding), messageOf(45, cut), messageOf(1, {1, 2, 3, 4}), {0x80}})),
            coding));
        const Bytes whole = unitOf({}, coding);
        for (std::size_t size = 0; size + 2 < whole.size(); ++size)
            EXPECT_FALSE(readFramePacking(NalBytes(whole).first(size), coding)) << size;
        EXPECT_FALSE(readFramePacking(joined({head(coding), Bytes(50'000, 0xFF)}), coding));
        EXPECT_FALSE(readFramePacking(joined({head(coding), Bytes(300'000, 0)}), coding));
        Bytes other = whole;
        other[0] = 1;
        EXPECT_FALSE(readFramePacking(other, coding));
    }
}

Bytes withLengths(const std::vector<Bytes> &units, int size) {
    Bytes sample;
    for (const Bytes &unit : units)
        sample = joined({sample, test::number(unit.size(), size), unit});
    return sample;
}

Bytes withStartCodes(const std::vector<Bytes> &units) {
    Bytes sample;
    for (const Bytes &unit : units)
        appendAnnexB(sample, unit);
    return sample;
}

/// A configuration record with one unit of its own.
Bytes record(Coding coding, int lengthSize, const Bytes &unit) {
    const auto sizes = static_cast<std::uint8_t>(0xFC | (lengthSize - 1));
    const Bytes own = joined({test::number(unit.size(), 2), unit});
    if (coding == Coding::avc)
        return joined({{1, 100, 0, 30, sizes, 0xE1}, own, {0}});
    return joined({{1}, Bytes(20, 0), {sizes, 1, 39, 0, 1}, own});
}

Bytes slice(Coding coding) {
    return coding == Coding::avc ? Bytes{0x65, 0x88, 1, 2} : Bytes{19 << 1, 1, 0x88, 1};
}

TEST(FramePacking, ofAStreamIsThatOfItsFirstSample) {
    for (const Coding coding : codings) {
        const std::vector<Bytes> units{unitOf({0, false, 4}, coding), slice(coding)};
        EXPECT_EQ(packingOfStream(coding, {}, withStartCodes(units))->packing.arrangement, Arrangement::overUnder);
        for (const int size : {1, 2, 4}) {
            const Bytes configuration = record(coding, size, unitOf({}, coding));
            EXPECT_EQ(packingOfStream(coding, configuration, withLengths(units, size))->packing.arrangement,
                      Arrangement::overUnder);
            EXPECT_EQ(packingOfStream(coding, configuration, withLengths({slice(coding)}, size))->packing.arrangement,
                      Arrangement::sideBySide)
                << "the configuration's own message";
            for (std::size_t cut = 1; cut < configuration.size(); ++cut)
                packingOfStream(coding, NalBytes(configuration).first(cut), withLengths(units, size));
        }
        EXPECT_FALSE(packingOfStream(coding, {}, {}));
        EXPECT_FALSE(packingOfStream(coding, record(coding, 4, {1, 2, 3}), Bytes{0xFF, 0xFF, 0xFF, 0xFF, 6}));
    }
}

TEST(FramePacking, ofTwoViewsIsNamed) {
    const Bytes subset{15, 118, 0, 30, 1};
    const Bytes second{20, 0x40, 0, 1, 2};
    const Bytes scalableSubset{15, 83, 0, 30, 1};
    const Bytes scalableSlice{20, 0xC0, 0, 1, 2};
    for (const Bytes &unit : {subset, second}) {
        const auto found = packingOfStream(Coding::avc, {}, withStartCodes({slice(Coding::avc), unit}));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->packing.arrangement, Arrangement::secondUnread);
    }
    for (const Bytes &unit : {scalableSubset, scalableSlice})
        EXPECT_FALSE(packingOfStream(Coding::avc, {}, withStartCodes({slice(Coding::avc), unit})));
    EXPECT_FALSE(packingOfStream(Coding::hevc, {}, withStartCodes({subset, second})));
}

TEST(FramePacking, thatIsWrittenIsReadBack) {
    for (const Coding coding : codings)
        for (const Arrangement arrangement : {Arrangement::sideBySide, Arrangement::overUnder})
            for (const bool rightFirst : {false, true})
                for (const bool isHalf : {false, true}) {
                    const StereoPacking packing{arrangement, rightFirst, isHalf && coding == Coding::hevc};
                    const Bytes unit = framePackingUnit({arrangement, rightFirst, isHalf}, coding);
                    EXPECT_EQ(readFramePacking(unit, coding)->packing, packing);
                    for (std::size_t at = 2; at < unit.size(); ++at)
                        EXPECT_FALSE(unit[at - 2] == 0 && unit[at - 1] == 0 && unit[at] < 3);
                }
}

TEST(FramePacking, belongsBeforeTheFirstSlice) {
    for (const Coding coding : codings) {
        const Bytes set = coding == Coding::avc ? Bytes{0x67, 1, 2} : Bytes{33 << 1, 1, 2};
        const Bytes first = withStartCodes({set});
        const Bytes sample = withStartCodes({set, slice(coding), slice(coding)});
        EXPECT_EQ(beforeFirstSlice(sample, coding), first.size());
        const Bytes shortCode = joined({first, {0, 0, 1}, slice(coding)});
        EXPECT_EQ(beforeFirstSlice(shortCode, coding), first.size());
        EXPECT_EQ(beforeFirstSlice(first, coding), first.size());
        EXPECT_EQ(beforeFirstSlice({}, coding), 0u);
    }
}

} // namespace
} // namespace lumetwin::media::hevc
