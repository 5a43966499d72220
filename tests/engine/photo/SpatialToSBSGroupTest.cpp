// SPDX-License-Identifier: GPL-3.0-or-later
// Which images of a photo are its eyes.
#include "tests/engine/photo/SpatialToSBSFixture.h"
#include "tests/media/heif/HeifBuilder.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lumetwin::test {
namespace {

std::uint32_t numberAt(const Bytes &bytes, std::size_t place, int size = 4) {
    std::uint32_t value = 0;
    for (int at = 0; at < size; ++at)
        value = value << 8 | bytes.at(place + static_cast<std::size_t>(at));
    return value;
}

void add(Bytes &bytes, std::size_t place, std::uint32_t more) {
    const Bytes sum = number(numberAt(bytes, place) + more, 4);
    std::ranges::copy(sum, bytes.begin() + static_cast<std::ptrdiff_t>(place));
}

/// Puts one more group before or behind those of a file as our writer lays it out: `meta`, then the coded samples.
void addGroup(const std::filesystem::path &file, std::string_view type, const std::vector<std::uint32_t> &ids,
              bool first) {
    Bytes content = joined({u32(4000), u32(static_cast<std::uint32_t>(ids.size()))});
    for (const std::uint32_t id : ids)
        content = joined({content, u32(id)});
    const Bytes group = fullBox(type, content);
    const auto size = static_cast<std::uint32_t>(group.size());
    Bytes bytes = readFile(file);
    const std::size_t list = placeOfBox(bytes, "grpl");
    const std::size_t locations = placeOfBox(bytes, "iloc");
    ASSERT_EQ(numberAt(bytes, locations + 8), 1u << 24);    // version 1
    ASSERT_EQ(numberAt(bytes, locations + 12, 2), 0x4400u); // offsets and sizes of four bytes
    for (std::uint32_t item = 0; item < numberAt(bytes, locations + 14, 2); ++item)
        if (const std::size_t entry = locations + 16 + std::size_t{16} * item; numberAt(bytes, entry + 2, 2) == 0)
            add(bytes, entry + 8, size);
    const std::size_t place = list + (first ? 8 : numberAt(bytes, list));
    add(bytes, list, size);
    add(bytes, placeOfBox(bytes, "meta"), size);
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(place), group.begin(), group.end());
    writeFile(file, bytes);
}

TEST_F(SpatialToSBS, twoImagesWithoutAGroupAreNoSpatialPhoto) {
    writeMarkers(64, 64);
    renameBox(file("in.heic"), "grpl", "free");
    EXPECT_EQ(failure(), "This is not a spatial photo: No stereo pair group found");
    writeMarkers(64, 64);
    renameBox(file("in.heic"), "ster", "altr");
    EXPECT_EQ(failure(), "This is not a spatial photo: No stereo pair group found");
    output({"convert", "-size", "8x8", "xc:red", "xc:blue", "TIFF:" + file("in.heic").string()});
    EXPECT_EQ(failure(), "This is not a spatial photo: No stereo pair group found");
}

TEST_F(SpatialToSBS, aGroupThatNamesNobodyMeansTheFirstTwoImages) {
    writeMarkers(64, 64);
    setStereoGroup(file("in.heic"), {});
    const Raster picture = convert();
    expectNear(picture, 10, 10, red);
    expectNear(picture, 100, 10, blue);
}

TEST_F(SpatialToSBS, aGroupThatLacksAnImageMeansTheFirstTwo) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    for (const auto &incomplete :
         {std::vector<std::uint32_t>{ids[1]}, {ids[1], 4711}, {4711, ids[0]}, {4711, 4712}, {0, 0}}) {
        setStereoGroup(file("in.heic"), incomplete);
        const Raster picture = convert();
        expectNear(picture, 10, 10, red);
        expectNear(picture, 100, 10, blue);
        writeMarkers(64, 64);
    }
}

TEST_F(SpatialToSBS, aGroupThatNamesOneImageTwiceShowsItTwice) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    setStereoGroup(file("in.heic"), {ids[1], ids[1]});
    for (const int x : {10, 100})
        expectNear(convert(), x, 10, blue);
}

TEST_F(SpatialToSBS, theStereoGroupIsFoundBesideOthers) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    const auto reversed = std::vector<std::uint32_t>{ids[1], ids[0]};
    for (const char *type : {"altr", "eqiv", "pymd", "brst", "xyz "}) {
        SCOPED_TRACE(type);
        writeMarkers(64, 64);
        addGroup(file("in.heic"), type, reversed, true);
        addGroup(file("in.heic"), type, reversed, false);
        EXPECT_TRUE(isSpatialPhoto(file("in.heic")));
        const Raster picture = convert();
        expectNear(picture, 10, 10, red);
        expectNear(picture, 100, 10, blue);
    }
}

TEST_F(SpatialToSBS, theFirstOfTwoStereoGroupsCounts) {
    writeMarkers(64, 64);
    const auto ids = stereoGroup(file("in.heic"));
    addGroup(file("in.heic"), "ster", {ids[1], ids[0]}, false);
    expectNear(convert(), 10, 10, red);
    addGroup(file("in.heic"), "ster", {ids[1], ids[0]}, true);
    expectNear(convert(), 10, 10, blue);
}

} // namespace
} // namespace lumetwin::test
