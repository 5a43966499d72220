// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/PartialFile.h"
#include "media/heif/HeifReader.h"
#include "media/heif/HeifWriter.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace lumetwin::media::heif {
namespace {

/// The first bytes of a file up to the media data, with the places in the file taken out.
Bytes descriptionIn(const Bytes &file) {
    const std::string_view mark = "mdat";
    return {file.begin(), std::search(file.begin(), file.end(), mark.begin(), mark.end()) - 4};
}

/// The platform's own photo, taken apart and written again: everything before the media data is the same byte for byte.
TEST(HeifWriter, writesAHeadsetsPhotoAsTheHeadsetDid) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const Bytes original = test::readFile(*samples / "spatial-photo" / "spatial_photo.heic");
    const auto read32 = [&](std::size_t at) {
        return std::uint32_t{original[at]} << 24 | original[at + 1] << 16 | original[at + 2] << 8 | original[at + 3];
    };
    const auto boxNamed = [&](std::string_view name) {
        return static_cast<std::size_t>(std::search(original.begin(), original.end(), name.begin(), name.end()) -
                                        original.begin()) -
               4;
    };
    const auto contents = [&](std::string_view name) {
        const std::size_t at = boxNamed(name);
        return Bytes(original.begin() + static_cast<std::ptrdiff_t>(at) + 8,
                     original.begin() + static_cast<std::ptrdiff_t>(at + read32(at)));
    };
    const auto itemBytes = [&](std::uint32_t item) { // entries of 16 bytes, by the item's place
        std::size_t at = boxNamed("iloc") + 16;
        while ((original[at] << 8 | original[at + 1]) != static_cast<int>(item))
            at += 16;
        const auto begin = original.begin() + read32(at + 8);
        return Bytes(begin, begin + read32(at + 12));
    };
    CodedImage eyes[2];
    for (std::uint32_t index = 0; index < 2; ++index) {
        CodedImage &eye = eyes[index];
        eye.width = eye.height = 2560;
        eye.tileWidth = eye.tileHeight = 512;
        eye.columns = eye.rows = 5;
        eye.configuration = contents("hvcC");
        const Bytes colour = contents("colr");
        eye.colourProfile.assign(colour.begin() + 4, colour.end());
        for (std::uint32_t tile = 1; tile <= 25; ++tile) {
            const Bytes coded = itemBytes(tile + index * 26);
            eye.tiles.push_back({Bytes(coded.begin() + 4, coded.end())});
        }
        const Bytes exif = itemBytes(54 + index);
        eye.exif.assign(exif.begin() + 10, exif.end());
        const Bytes xmp = itemBytes(56 + index);
        eye.xmp.assign(xmp.begin(), xmp.end());
        eye.camera =
            Camera{2560 * std::ldexp(0x2622D86E, -30), {1280, 1280}, {static_cast<std::int32_t>(index) * 63807, 0, 0}};
    }
    const test::TemporaryFolder folder;
    PartialFile partial(folder / "again.heic");
    writeStereoHeif(partial.file(), eyes[0], eyes[1], 293);
    partial.finish();
    const Bytes again = test::readFile(folder / "again.heic");
    const std::size_t places = boxNamed("iloc");
    const Bytes before = descriptionIn(original);
    const Bytes after = descriptionIn(again);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(Bytes(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(places)),
              Bytes(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(places)));
    const HeifFile file = readHeifFile(folder / "again.heic");
    EXPECT_EQ(file.stereoGroups.front().id, 53u);
}

} // namespace
} // namespace lumetwin::media::heif
