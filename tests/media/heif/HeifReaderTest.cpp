// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifReader.h"
#include "media/MediaError.h"
#include "media/heif/HeifFile.h"
#include "tests/media/heif/HeifFiles.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace lumetwin::media {
namespace {

using test::Bytes;
using test::fullBox;
using test::HeifBuilder;
using test::joined;
using test::letters;
using test::read;
using test::u16;
using test::u32;
using test::u8;
using testing::ElementsAre;

std::vector<std::uint32_t> itemsOf(const HeifFile &file) {
    std::vector<std::uint32_t> items;
    for (const HeifImage &image : file.images)
        items.push_back(image.item);
    return items;
}

TEST(HeifReader, listsAPhotoOfTwoGridsAsItsTwoImages) {
    const HeifFile file = read(test::stereoGrids());
    EXPECT_THAT(itemsOf(file), ElementsAre(3, 6));
    EXPECT_EQ(file.primary, 1u);
    ASSERT_EQ(file.stereoGroups.size(), 1u);
    EXPECT_EQ(file.stereoEyes()->left, 1u); // as the group says, not as the file orders them
    EXPECT_EQ(file.stereoEyes()->right, 0u);
    EXPECT_EQ(file.stereoDisparityAdjustment(), 293);
    const HeifImage &right = file.images[0];
    EXPECT_EQ(right.position, (std::array<std::int32_t, 3>{63807, 0, 0}));
    EXPECT_EQ(file.images[1].position, (std::array<std::int32_t, 3>{0, 0, 0}));
    EXPECT_EQ(right.width, 1000u);
    EXPECT_EQ(right.shownHeight, 500u);
    const PixelIntrinsics pixels = right.pixelIntrinsics().value();
    EXPECT_NEAR(2 * std::atan(500 / pixels.focalLengthX) * 180 / M_PI, 80.0, 0.001);
    EXPECT_EQ(pixels.focalLengthY, pixels.focalLengthX);
    EXPECT_EQ(pixels.principalPointX, 500);
    EXPECT_EQ(pixels.principalPointY, 250);
}

TEST(HeifReader, leavesOutThumbnailsAuxiliaryImagesHiddenOnesAndTiles) {
    HeifBuilder heif;
    heif.item(1).item(2).item(3).item(4).item(5, "grid").item(6, "hvc1", true).item(7).item(8, "Exif").item(9, "uri ");
    heif.refer("thmb", 2, {1}).refer("auxl", 3, {1}).refer("dimg", 5, {4});
    const int auxiliary = heif.property(fullBox("auxC", joined({letters("urn:mpeg:hevc:2015:auxid:2"), u8(0)})));
    heif.associate(7, {auxiliary});
    EXPECT_THAT(itemsOf(read(heif)), ElementsAre(1, 5));
}

TEST(HeifReader, takesAMonoscopicPrimaryImageForNoEye) {
    HeifBuilder heif;
    heif.item(1).item(2).item(3).group("ster", 9, {2, 3});
    const HeifFile file = read(heif);
    EXPECT_EQ(file.images.size(), 3u);
    EXPECT_EQ(file.primary, 0u);
    EXPECT_EQ(file.stereoEyes()->left, 1u);
    EXPECT_EQ(file.stereoEyes()->right, 2u);
}

TEST(HeifReader, theFirstStereoGroupCounts) {
    HeifBuilder heif;
    heif.item(1).item(2).item(3).group("ster", 8, {3, 2}).group("ster", 9, {2, 1});
    EXPECT_EQ(read(heif).stereoGroups.size(), 2u);
    EXPECT_EQ(read(heif).stereoEyes(), (EyePair<std::size_t>{2, 1}));

    HeifBuilder thumbnails; // which are no images of the file
    thumbnails.item(1).item(2).item(3).item(4).refer("thmb", 3, {1}).refer("thmb", 4, {2});
    thumbnails.group("ster", 8, {3, 4}).group("ster", 9, {2, 1});
    EXPECT_EQ(read(thumbnails).stereoEyes(), (EyePair<std::size_t>{0, 1}));
}

TEST(HeifReader, seesThroughToneMapsAndAlternatives) {
    HeifBuilder heif; // each eye: base, gain map, and both together; the left base is hidden
    heif.item(1, "hvc1", true).item(2).item(3, "tmap").item(4).item(5).item(6, "tmap");
    heif.refer("dimg", 3, {1, 2}).refer("dimg", 6, {4, 5});
    heif.group("altr", 20, {6, 4});
    heif.group("ster", 21, {3, 20});
    heif.primary = 3;
    const HeifFile file = read(heif);
    EXPECT_THAT(itemsOf(file), ElementsAre(1, 4));
    EXPECT_EQ(file.primary, 0u);
    EXPECT_EQ(file.stereoEyes()->left, 0u);
    EXPECT_EQ(file.stereoEyes()->right, 1u);

    heif.groups.pop_back();
    heif.group("ster", 21, {6, 3}); // the items themselves
    EXPECT_EQ(read(heif).stereoEyes()->left, 1u);
}

TEST(HeifReader, knowsGainMapsAndDepthMaps) {
    const auto withAuxiliary = [](std::string_view kind) {
        HeifBuilder heif;
        heif.item(1).item(2).refer("auxl", 2, {1});
        heif.associate(2, {heif.property(fullBox("auxC", joined({letters(kind), u8(0), u8(7)})))});
        return read(heif);
    };
    EXPECT_TRUE(withAuxiliary("urn:com:apple:photo:2020:aux:hdrgainmap").hasGainMap);
    EXPECT_FALSE(withAuxiliary("urn:com:apple:photo:2020:aux:hdrgainmap").hasDepthMap);
    EXPECT_TRUE(withAuxiliary("urn:mpeg:hevc:2015:auxid:2").hasDepthMap);
    EXPECT_TRUE(withAuxiliary("urn:mpeg:mpegB:cicp:systems:auxiliary:depth").hasDepthMap);
    for (const char *kind : {"urn:mpeg:hevc:2015:auxid:1", "urn:com:apple:photo:2018:aux:portraiteffectsmatte", ""}) {
        EXPECT_FALSE(withAuxiliary(kind).hasDepthMap) << kind;
        EXPECT_FALSE(withAuxiliary(kind).hasGainMap) << kind;
    }
    HeifBuilder toneMapped;
    toneMapped.item(1).item(2).item(3, "tmap").refer("dimg", 3, {1, 2});
    EXPECT_TRUE(read(toneMapped).hasGainMap);
    EXPECT_FALSE(read(test::stereoGrids()).hasGainMap);
}

TEST(HeifReader, knowsFilmsBeforeAndBehindTheImages) {
    const Bytes photo = test::stereoGrids().file();
    EXPECT_FALSE(read(photo).hasMovie);
    EXPECT_TRUE(read(joined({photo, test::box("moov", Bytes(8, 0))})).hasMovie);
    EXPECT_TRUE(read(joined({photo, test::box("mpvd", Bytes(8, 0))})).hasMovie);
    EXPECT_FALSE(read(joined({photo, Bytes{0, 0, 0, 200, 'm', 'o'}})).hasMovie) << "damage behind harms no image";
    const auto meta = fullBox("meta", test::joinedAll(test::stereoGrids().children()));
    EXPECT_TRUE(read(joined({HeifBuilder::type(), test::box("moov", Bytes(8, 0)), meta})).hasMovie);
    try {
        read(joined({HeifBuilder::type(), test::box("moov", Bytes(8, 0))}));
        FAIL() << "there is no image in it";
    } catch (const bmff::FormatError &error) {
        EXPECT_EQ(error.reason(), MediaReason::imageSequence);
    }
}

TEST(HeifReader, knowsCodingsAndEncryptedItems) {
    HeifBuilder heif;
    heif.item(1, "av01").item(2, "grid").refer("dimg", 2, {3}).item(3, "avc1").item(4);
    heif.items.push_back(fullBox("infe", joined({u16(5), u16(1), letters("hvc1"), u8(0)}), 2u << 24));
    const HeifFile file = read(heif);
    ASSERT_THAT(itemsOf(file), ElementsAre(1, 2, 4, 5));
    EXPECT_EQ(file.images[0].coding, bmff::fourCC("av01"));
    EXPECT_EQ(file.images[1].coding, bmff::fourCC("avc1"));
    EXPECT_EQ(file.images[2].coding, bmff::fourCC("hvc1"));
    EXPECT_FALSE(file.images[2].encrypted);
    EXPECT_TRUE(file.images[3].encrypted);
}

TEST(HeifReader, ignoresOtherGroups) {
    HeifBuilder heif;
    heif.item(1).item(2).group("eqiv", 5, {1, 2}).group("pymd", 6, {1, 2});
    heif.groups.push_back(test::uuidBox("524a52f447b337d09637933d05ac9b68", joined({u32(2), u32(7), u32(1), u32(1)})));
    heif.groups.push_back(test::box("slid", {1})); // not even a group
    const HeifFile file = read(heif);
    EXPECT_TRUE(file.stereoGroups.empty());
    EXPECT_FALSE(file.stereoEyes());
    EXPECT_FALSE(file.stereoDisparityAdjustment());
}

TEST(HeifReader, aGroupThatLacksAnImageMeansTheFirstTwo) {
    const std::vector<std::vector<int>> incomplete{{}, {6}, {6, 77}, {77, 3}, {1, 4}, {7, 7}};
    for (const std::vector<int> &entities : incomplete) {
        HeifBuilder heif = test::stereoGrids();
        heif.groups.clear();
        heif.group("ster", 7, entities);
        const HeifFile file = read(heif);
        ASSERT_EQ(file.stereoGroups.size(), 1u);
        EXPECT_EQ(file.stereoGroups[0].entities.size(), entities.size());
        EXPECT_EQ(file.stereoEyes(), (EyePair<std::size_t>{0, 1})) << testing::PrintToString(entities);
        EXPECT_EQ(file.stereoDisparityAdjustment(), 293);
    }
}

TEST(HeifReader, aGroupMeansTheImagesThatItNamesFirst) {
    const std::vector<std::pair<std::vector<int>, EyePair<std::size_t>>> complete{
        {{6, 3}, {1, 0}}, {{6, 3, 3}, {1, 0}}, {{6, 6}, {1, 1}}};
    for (const auto &[entities, eyes] : complete) {
        HeifBuilder heif = test::stereoGrids();
        heif.groups.clear();
        heif.group("ster", 7, entities);
        EXPECT_EQ(read(heif).stereoEyes(), eyes) << testing::PrintToString(entities);
    }
}

TEST(HeifReader, aFileOfOneImageHasNoEyes) {
    HeifBuilder heif;
    heif.item(1).group("ster", 7, {1, 1});
    const HeifFile file = read(heif);
    EXPECT_EQ(file.stereoGroups.size(), 1u);
    EXPECT_FALSE(file.stereoEyes());
    EXPECT_FALSE(file.stereoDisparityAdjustment());
}

TEST(HeifReader, readsCameraPropertiesUnderTheirFourCharacterNames) {
    // Values of the standard's conformance files: 1024 × 768, focal length 512, principal point (256, 96).
    HeifBuilder heif;
    const int size = heif.property(HeifBuilder::size(1024, 768));
    const int plain =
        heif.property(fullBox("cmin", joined({u32(0x02000000), u32(0x01000000), u32(0x00800000)}), 0x1a00));
    const int skewed = heif.property(
        fullBox("cmin", joined({u32(0x02000000), u32(0x01000000), u32(0x00800000), u32(0x029caaab), u32(0xffffff37)}),
                0x11a01));
    const int place = heif.property(fullBox(
        "cmex",
        joined({u32(static_cast<std::uint32_t>(-30000)), u32(50000), u32(static_cast<std::uint32_t>(-80000)), u32(1)}),
        39));
    heif.item(1).item(2).associate(1, {size, plain}).associate(2, {size, skewed, place});
    const HeifFile file = read(heif);
    const PixelIntrinsics first = file.images[0].pixelIntrinsics().value();
    EXPECT_EQ(first.focalLengthX, 512);
    EXPECT_EQ(first.focalLengthY, 512);
    EXPECT_EQ(first.principalPointX, 256);
    EXPECT_EQ(first.principalPointY, 96);
    EXPECT_FALSE(file.images[0].position);
    const PixelIntrinsics second = file.images[1].pixelIntrinsics().value();
    EXPECT_NEAR(second.focalLengthY, 501.5, 1e-4);
    EXPECT_EQ(second.skew, -100.5);
    EXPECT_EQ(file.images[1].position, (std::array<std::int32_t, 3>{-30000, 50000, -80000}));
}

TEST(HeifReader, keepsItsHandsOffVersionsItDoesNotKnow) {
    HeifBuilder heif;
    const int camera = heif.property(fullBox("cmin", u32(7), 9u << 24));
    const int place = heif.property(fullBox("cmex", {}, 9u << 24 | 1));
    heif.item(1).associate(1, {camera, place});
    EXPECT_FALSE(read(heif).images[0].intrinsics);
    EXPECT_FALSE(read(heif).images[0].position);
}

TEST(HeifReader, readsWideFormsOfEveryTable) {
    HeifBuilder heif;
    const int size = heif.property(HeifBuilder::size(70000, 8));
    auto children = heif.children();
    constexpr std::uint32_t big = 100'000;
    const auto entry = [](std::uint32_t id) {
        return fullBox("infe", joined({u32(id), u16(0), letters("hvc1"), u8(0)}), 3u << 24);
    };
    children[1] = fullBox("pitm", u32(big + 1), 1u << 24);
    children[2] = fullBox("iinf", joined({u32(3), entry(big), entry(big + 1), entry(big + 2)}), 1u << 24);
    children[3] = fullBox("iref", test::box("thmb", joined({u32(big + 2), u16(1), u32(big)})), 1u << 24);
    const Bytes association = joined({u32(big), u8(1), u16(0x8000 | size)});
    children[4] = test::box("iprp", joined({test::box("ipco", heif.properties[0]),
                                            fullBox("ipma", joined({u32(1), association}), 1u << 24 | 1)}));
    const HeifFile file = read(HeifBuilder::fileOf(children));
    EXPECT_THAT(itemsOf(file), ElementsAre(big, big + 1));
    EXPECT_EQ(file.primary, 1u);
    EXPECT_EQ(file.images[0].width, 70000u);
}

TEST(HeifReader, ignoresPropertiesOfGroupsAndPropertiesThatAreNotThere) {
    HeifBuilder heif;
    const int unknown = heif.property(test::uuidBox("a33e221ad1d0464db252780190d1734d", Bytes(7, 1)));
    heif.item(1).item(2).group("ster", 53, {1, 2}).associate(1, {0, unknown, 99}).associate(53, {unknown});
    EXPECT_TRUE(read(heif).stereoGroups.front().left);
}

TEST(HeifReader, findsTheMetaBoxWhereverItIs) {
    const auto children = test::stereoGrids().children();
    const Bytes payload = joined({u32(0), test::joinedAll(children)});
    EXPECT_EQ(read(joined({HeifBuilder::type(), test::longBox("mdat", Bytes(9, 1)), test::longBox("meta", payload)}))
                  .images.size(),
              2u);
    EXPECT_EQ(
        read(joined({HeifBuilder::type(), test::box("free", {}), u32(0), letters("meta"), payload})).images.size(), 2u);
    auto reversed = children;
    std::ranges::reverse(reversed);
    EXPECT_EQ(read(HeifBuilder::fileOf(reversed)).stereoEyes()->left, 1u);
}

TEST(HeifReader, refusesWhatIsNoHeifFile) {
    const auto fails = [](const Bytes &bytes) { EXPECT_THROW(read(bytes), bmff::FormatError); };
    fails({});
    fails(HeifBuilder::type());
    fails(fullBox("meta", test::joinedAll(test::stereoGrids().children())));
    auto children = test::stereoGrids().children();
    children[0] = fullBox("hdlr", joined({u32(0), letters("mdir"), Bytes(13, 0)}));
    fails(HeifBuilder::fileOf(children));
    children.erase(children.begin());
    fails(HeifBuilder::fileOf(children));
}

TEST(HeifReader, namesTheFileInItsErrors) {
    const test::TemporaryFolder folder;
    const auto failure = [&](const std::string &name) {
        try {
            readHeifFile(folder / name);
        } catch (const MediaError &error) {
            EXPECT_EQ(error.file(), folder / name);
            return std::string(error.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(failure("absent.heic"), "Cannot open absent.heic: No such file or directory");
    std::filesystem::create_directory(folder / "folder.heic");
    EXPECT_EQ(failure("folder.heic"), "Cannot open folder.heic: Is a directory");
    test::writeFile(folder / "text.heic", std::string("a text that is no photo, whatever it is called"));
    EXPECT_EQ(failure("text.heic"), "Cannot read text.heic: it is damaged (a box's size is wrong)");
    test::writeFile(folder / "empty.heic", std::string());
    EXPECT_EQ(failure("empty.heic"), "Cannot read empty.heic: it is no HEIF file");
}

TEST(HeifReader, readsTheSamplePhotos) {
    const auto samples = test::sampleMedia();
    if (!samples)
        GTEST_SKIP() << "no sample media";
    const auto photo = *samples / "spatial-photo" / "spatial_photo.heic";
    const HeifFile file = readHeifFile(photo);
    EXPECT_THAT(itemsOf(file), ElementsAre(26, 52));
    EXPECT_EQ(file.stereoEyes()->left, 0u);
    EXPECT_EQ(file.stereoEyes()->right, 1u);
    EXPECT_EQ(file.stereoDisparityAdjustment(), 293);
    EXPECT_EQ(file.images[1].position.value()[0], 63807);
    EXPECT_NEAR(file.images[0].pixelIntrinsics()->focalLengthX, 1525.44, 0.01);
    EXPECT_EQ(file.images[0].shownWidth, 2560u);
    const heif::HeifReader reader{InputFile(photo)};
    for (const std::size_t image : {0, 1}) {
        const ImageMetadata metadata = reader.read(image, PhotoSamples::coded, {}).metadata;
        EXPECT_EQ(metadata.iccProfile.size(), 536u);
        EXPECT_FALSE(metadata.exif.empty());
        EXPECT_NE(metadata.xmp.find("xmpmeta"), std::string::npos);
    }
    const auto ordinary = *samples / "ordinary";
    EXPECT_EQ(readHeifFile(ordinary / "two_images_no_group.heic").images.size(), 2u);
    EXPECT_FALSE(readHeifFile(ordinary / "two_images_no_group.heic").stereoEyes());
    EXPECT_EQ(readHeifFile(ordinary / "alpha_512x512.heic").images.size(), 1u);
    EXPECT_EQ(readHeifFile(ordinary / "rgb10_128x128.heif").images.size(), 1u);
}

} // namespace
} // namespace lumetwin::media
