// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MediaError.h"
#include "media/heif/HeifFile.h"
#include "media/heif/ImageList.h"
#include "tests/media/heif/HeifBuilder.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

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

constexpr std::string_view xmp = "application/rdf+xml";

HeifBuilder described() {
    HeifBuilder heif;
    heif.item(1).item(2).item(3, "Exif", true).item(4, "mime", true, xmp).item(5, "mime", true, "text/plain");
    heif.refer("cdsc", 3, {1, 2}).refer("cdsc", 4, {2}).refer("cdsc", 5, {1});
    heif.itemData = letters("0123456789");
    return heif;
}

/// The bytes of the Exif item and of the XMP item, as text.
std::pair<std::string, std::string> metadata(const Bytes &bytes) {
    const test::TemporaryFolder folder;
    test::writeFile(folder / "a.heic", bytes);
    const HeifFile file = readHeifFile(folder / "a.heic");
    const auto text = [&](const std::optional<HeifPayload> &payload) {
        if (!payload)
            return std::string("none");
        const Bytes content = readHeifPayload(folder / "a.heic", *payload);
        return std::string(content.begin(), content.end());
    };
    EXPECT_EQ(text(file.images.at(0).xmp), "none");
    EXPECT_EQ(text(file.images.at(0).exif), text(file.images.at(1).exif));
    return {text(file.images.at(1).exif), text(file.images.at(1).xmp)};
}

using Pair = std::pair<std::string, std::string>;

TEST(HeifPayload, isFoundInTheMetaBoxAndInTheFile) {
    HeifBuilder heif = described();
    heif.place(3, 1, 2, 3).place(4, 0, 4, 8);
    EXPECT_EQ(metadata(heif.file()), Pair("234", "ftypheic"));
}

TEST(HeifPayload, reachesToTheEndWhereItsLengthIsZero) {
    HeifBuilder heif = described();
    heif.place(3, 1, 7, 0);
    heif.place(4, 0, static_cast<std::uint32_t>(heif.file().size() + 16 - 3), 0);
    EXPECT_EQ(metadata(heif.file()), Pair("789", "\7\7\7"));
}

TEST(HeifPayload, mayLieInAnotherItem) {
    HeifBuilder heif = described();
    heif.refer("iloc", 4, {3}).place(3, 1, 1, 8).place(4, 2, 2, 4);
    EXPECT_EQ(metadata(heif.file()), Pair("12345678", "3456"));
}

TEST(HeifPayload, isPutTogetherFromItsExtents) {
    HeifBuilder heif = described();
    heif.locations = {joined({u16(3), u16(1), u16(0), u16(3), u32(0), u32(2), u32(8), u32(2), u32(4), u32(1)})};
    EXPECT_EQ(metadata(heif.file()).first, "01894");
}

TEST(HeifPayload, readsAllVersionsAndFieldSizes) {
    const Bytes entries = joined({u16(3), u16(1), u16(0), test::number(2, 8), u16(1), test::number(1, 8),
                                  test::number(3, 8), test::number(2, 8)});
    auto children = described().children();
    children[7] = fullBox("iloc", joined({u16(0x8888), u16(1), entries}), 1u << 24);
    EXPECT_EQ(metadata(HeifBuilder::fileOf(children)).first, "56");
    children[7] =
        fullBox("iloc", joined({u16(0x4400), u32(1), u32(3), u16(1), u16(0), u16(1), u32(9), u32(1)}), 2u << 24);
    EXPECT_EQ(metadata(HeifBuilder::fileOf(children)).first, "9");
    // Version 0 knows the file only; the place is in the base, the offset has no bytes.
    children[7] = fullBox("iloc", joined({u16(0x0440), u16(1), u16(3), u16(0), u32(4), u16(1), u32(4)}));
    EXPECT_EQ(metadata(HeifBuilder::fileOf(children)).first, "ftyp");
}

TEST(HeifPayload, isAbsentWhereItsPlaceMakesNoSense) {
    const auto exifOf = [](const Bytes &location) {
        HeifBuilder heif = described();
        heif.locations = {location};
        return metadata(heif.file()).first;
    };
    EXPECT_EQ(exifOf(joined({u16(3), u16(1), u16(0), u16(1), u32(8), u32(3)})), "none");          // beyond idat
    EXPECT_EQ(exifOf(joined({u16(3), u16(0), u16(1), u16(1), u32(0), u32(3)})), "none");          // in another file
    EXPECT_EQ(exifOf(joined({u16(3), u16(2), u16(0), u16(1), u32(0), u32(3)})), "none");          // in no item
    EXPECT_EQ(exifOf(joined({u16(3), u16(7), u16(0), u16(1), u32(0), u32(3)})), "none");          // unknown method
    EXPECT_EQ(exifOf(joined({u16(3), u16(0), u16(0), u16(0)})), "none");                          // no extents
    EXPECT_EQ(exifOf(joined({u16(3), u16(0), u16(0), u16(1), u32(0x7fffffff), u32(3)})), "none"); // beyond the file
}

TEST(HeifPayload, isNotReadBeyondTheLimit) {
    const test::TemporaryFolder folder;
    HeifBuilder heif = described();
    heif.place(3, 1, 0, 10);
    test::writeFile(folder / "a.heic", heif.file());
    const HeifPayload payload = *readHeifFile(folder / "a.heic").images[0].exif;
    EXPECT_EQ(readHeifPayload(folder / "a.heic", payload, 10).size(), 10u);
    EXPECT_THROW(readHeifPayload(folder / "a.heic", payload, 9), MediaError);
    HeifPayload huge;
    huge.extents.assign(3, {0, ~std::uint64_t{0} / 2});
    EXPECT_THROW(readHeifPayload(folder / "a.heic", huge, ~std::uint64_t{0}), MediaError);
    HeifPayload beyond;
    beyond.extents = {{0, 4}, {~std::uint64_t{0}, 4}};
    EXPECT_THROW(readHeifPayload(folder / "a.heic", beyond), MediaError);
    test::writeFile(folder / "a.heic", Bytes(12, 0)); // has become shorter since
    EXPECT_THROW(readHeifPayload(folder / "a.heic", payload), MediaError);
}

TEST(HeifPayload, compressedPacketsAreLeftAlone) {
    HeifBuilder heif = described();
    heif.items[3] = fullBox(
        "infe", joined({u16(4), u16(0), letters("mime"), u8(0), letters(xmp), u8(0), letters("deflate"), u8(0)}),
        2u << 24 | 1);
    heif.place(4, 1, 0, 3);
    EXPECT_EQ(metadata(heif.file()).second, "none");
}

TEST(HeifPayload, itemsInsideEachOtherAreFoundOut) {
    HeifBuilder heif = described();
    heif.refer("iloc", 3, {4}).refer("iloc", 4, {3}).place(3, 2, 0, 1).place(4, 2, 0, 1);
    EXPECT_EQ(metadata(heif.file()), Pair("none", "none"));
}

} // namespace
} // namespace lumetwin::media
