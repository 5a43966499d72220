// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifFile.h"
#include "media/heif/HeifReader.h"
#include "media/heif/ImageList.h"
#include "tests/media/heif/HeifBuilder.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::media {
namespace {

using test::Bytes;
using test::fullBox;
using test::HeifBuilder;
using test::joined;
using test::letters;
using test::u16;
using test::u32;
using test::u8;

void readQuietly(const Bytes &bytes) {
    try {
        heif::readHeif(*bmff::fromMemory(bytes));
    } catch (const bmff::FormatError &) {
        // refused
    }
}

std::string refusal(const Bytes &bytes) {
    try {
        heif::readHeif(*bmff::fromMemory(bytes));
    } catch (const bmff::FormatError &error) {
        return error.what();
    }
    return "no error";
}

std::string refusal(const HeifBuilder &heif) {
    return refusal(heif.file());
}

HeifBuilder everything() {
    HeifBuilder heif = test::stereoGrids();
    heif.item(10, "Exif", true).item(11, "mime", true, "application/rdf+xml").item(12, "tmap");
    heif.refer("cdsc", 10, {3, 6}).refer("cdsc", 11, {3}).refer("dimg", 12, {6}).refer("iloc", 11, {10});
    heif.group("altr", 30, {12, 6});
    heif.itemData = letters("0123456789");
    heif.place(10, 1, 0, 8).place(11, 2, 1, 4);
    heif.property(test::box("irot", u8(1)));
    heif.property(test::box("clap", Bytes(32, 1)));
    heif.property(fullBox("pixi", {3, 8, 8, 8}));
    heif.property(test::box("colr", letters("profxx")));
    return heif.associate(3, {6, 7, 8, 9});
}

TEST(HeifDamage, cutsAnywhereAreRefusedUntilTheMetaBoxIsWhole) {
    const Bytes whole = everything().file();
    const std::size_t metaEnd = whole.size() - 40;
    for (std::size_t size = 0; size < metaEnd; ++size)
        EXPECT_NE(refusal(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), "no error") << size;
    EXPECT_EQ(refusal(whole), "no error");
}

TEST(HeifDamage, everyChangedByteIsSurvived) {
    const Bytes whole = everything().file();
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<std::uint8_t>(value);
            readQuietly(damaged);
        }
}

TEST(HeifDamage, countsThatLieAreRefused) {
    auto children = everything().children();
    const auto refused = [&](std::size_t child, const Bytes &replacement) {
        auto bent = children;
        bent[child] = replacement;
        return refusal(HeifBuilder::fileOf(bent));
    };
    EXPECT_EQ(refused(2, fullBox("iinf", u16(0xffff))), "items are missing in the list");
    EXPECT_EQ(refused(2, fullBox("iinf", u32(0xffffffff), 1u << 24)), "items are missing in the list");
    EXPECT_EQ(refused(3, fullBox("iref", test::box("dimg", joined({u16(3), u16(0xffff)})))), "a box ends early");
    EXPECT_EQ(refused(4, test::box("iprp", fullBox("ipma", u32(0xffffffff)))), "a box ends early");
    EXPECT_EQ(refused(5, test::box("grpl", fullBox("ster", joined({u32(1), u32(60'000)})))), "a box ends early");
    const std::string tooMany = "there are too many items, properties, references or groups";
    EXPECT_EQ(refused(5, test::box("grpl", fullBox("ster", joined({u32(1), u32(0xffffffff)})))), tooMany);
}

/// What is said of the places of items is the decoder's to read, and to refuse.
void expectNoPicture(const Bytes &bytes) {
    const test::TemporaryFolder folder;
    test::writeFile(folder / "a.heic", bytes);
    EXPECT_THROW(heif::HeifReader(InputFile(folder / "a.heic")).read(0, PhotoSamples::coded, {}), MediaError);
}

TEST(HeifDamage, extentsOfNoBytesCostNoMemory) {
    // Each of these items takes six bytes and claims 65535 extents that take none.
    Bytes entries;
    for (int item = 0; item < 60'000; ++item)
        entries.insert(entries.end(), {0, 3, 0, 0, 0xff, 0xff});
    auto children = everything().children();
    children[7] = fullBox("iloc", joined({u16(0), u16(60'000), entries}));
    expectNoPicture(HeifBuilder::fileOf(children));
}

TEST(HeifDamage, piecesThatMultiplyAreRefused) {
    // Four items in each other, each with many pieces of the one before.
    HeifBuilder heif;
    heif.item(1);
    heif.associate(1, {heif.property(HeifBuilder::size(8, 8)), heif.property(test::box("hvcC", Bytes(23, 0)))});
    heif.itemData = letters("0123456789");
    for (int item = 2; item < 6; ++item) {
        heif.item(item, "Exif", true).refer("cdsc", item, {1});
        heif.refer("iloc", item, {item - 1});
        Bytes pieces;
        for (int piece = 0; piece < 30; ++piece)
            pieces = joined({pieces, u32(0), u32(0)});
        heif.locations.push_back(joined({u16(item), u16(item == 2 ? 1 : 2), u16(0), u16(30), pieces}));
    }
    expectNoPicture(heif.file());
}

TEST(HeifDamage, itemsInsideEachOtherAreRefused) {
    HeifBuilder heif;
    heif.item(1).item(2, "Exif", true).item(3, "Exif", true).refer("cdsc", 2, {1}).refer("cdsc", 3, {1});
    heif.associate(1, {heif.property(HeifBuilder::size(8, 8)), heif.property(test::box("hvcC", Bytes(23, 0)))});
    heif.refer("iloc", 2, {3}).refer("iloc", 3, {2}).place(2, 2, 0, 1).place(3, 2, 0, 1);
    expectNoPicture(heif.file());
}

TEST(HeifDamage, moreItemsThanTheLimitAreRefused) {
    auto children = everything().children();
    Bytes entries;
    for (std::uint32_t item = 0; item <= heif::maximumItems; ++item) {
        const Bytes entry = fullBox("infe", joined({u32(item), u16(0), letters("hvc1"), u8(0)}), 3u << 24);
        entries.insert(entries.end(), entry.begin(), entry.end());
    }
    children[2] = fullBox("iinf", joined({u32(heif::maximumItems + 1), entries}), 1u << 24);
    EXPECT_EQ(refusal(HeifBuilder::fileOf(children)), "there are too many items, properties, references or groups");
}

TEST(HeifDamage, tablesBeyondEightMebibytesAreRefused) {
    auto children = everything().children();
    children[3] = fullBox("iref", test::box("free", Bytes(8 << 20, 0)));
    EXPECT_EQ(refusal(HeifBuilder::fileOf(children)), "a box is too large");
}

TEST(HeifDamage, itemsWithOneNumberAreRefused) {
    EXPECT_EQ(refusal(everything().item(3)), "two items have the same number");
}

TEST(HeifDamage, gridsOfThemselvesAreRefused) {
    const std::string circle = "its images are made of each other";
    HeifBuilder self;
    EXPECT_EQ(refusal(self.item(1, "grid").refer("dimg", 1, {1})), circle);
    HeifBuilder two;
    EXPECT_EQ(refusal(two.item(1, "grid").item(2, "grid").refer("dimg", 1, {2}).refer("dimg", 2, {1})), circle);
    HeifBuilder deep;
    for (int item = 1; item <= heif::deepestDerivation + 2; ++item)
        deep.item(item, "grid").refer("dimg", item, {item + 1});
    EXPECT_EQ(refusal(deep), circle);
    HeifBuilder reversed; // the deepest first
    for (int item = heif::deepestDerivation + 2; item >= 1; --item)
        reversed.item(item, "grid").refer("dimg", item, {item + 1});
    EXPECT_EQ(refusal(reversed), circle);
    HeifBuilder shallow;
    for (int item = 1; item <= heif::deepestDerivation; ++item)
        shallow.item(item, "grid").refer("dimg", item, {item + 1});
    EXPECT_EQ(refusal(shallow), "no error");
}

TEST(HeifDamage, manyPathsToOneTileTakeNoTime) {
    // Each grid names the next one 40 times: more than 10^12 ways down.
    HeifBuilder heif;
    for (int item = 1; item <= heif::deepestDerivation; ++item)
        heif.item(item, "grid").refer("dimg", item, std::vector<int>(40, item + 1));
    EXPECT_EQ(refusal(heif.item(heif::deepestDerivation + 1)), "no error");
}

TEST(HeifDamage, shortPropertiesAreRefused) {
    for (const std::string_view type : {"ispe", "irot", "imir", "clap", "cmin"}) {
        HeifBuilder heif;
        heif.property(test::box(type, {}));
        EXPECT_EQ(refusal(heif.item(1)), "a box ends early") << type;
    }
    HeifBuilder position;
    position.property(fullBox("cmex", u32(1), 3));
    EXPECT_EQ(refusal(position.item(1)), "a box ends early");
    HeifBuilder disparity;
    disparity.property(test::uuidBox(test::disparityUuid, {1, 2, 3}));
    EXPECT_EQ(refusal(disparity.item(1)), "a box ends early");
}

} // namespace
} // namespace lumetwin::media
