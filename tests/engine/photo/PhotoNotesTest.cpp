// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/photo/PhotoNotes.h"
#include "engine/photo/SBSImageToSpatial.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "media/PhotoExtras.h"
#include "tests/media/bmff/BoxBuilder.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

using media::PhotoExtras;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr PhotoExtras none;
constexpr PhotoExtras gainMap{true, false, false};
constexpr PhotoExtras depthMap{false, true, false};
constexpr PhotoExtras film{false, false, true};

Bytes bigEndian(std::uint64_t value, int size) {
    return number(value, size);
}

Bytes segment(int marker, const Bytes &content) {
    return joined({{0xFF, static_cast<std::uint8_t>(marker)}, bigEndian(content.size() + 2, 2), content});
}

Bytes xmp(const std::string &packet) {
    return segment(0xE1, joined({letters("http://ns.adobe.com/xap/1.0/"), {0}, letters(packet)}));
}

Bytes isoGainMap() {
    return segment(0xE2, joined({letters("urn:iso:std:iso:ts:21496:-1"), {0, 0, 0, 0, 0}}));
}

/// A multi-picture index of two images, the second one so many bytes behind the index's header.
Bytes pictureIndex(std::uint32_t offset) {
    const Bytes first = Bytes(16, 0);
    const Bytes second = joined({Bytes(8, 0), u32(offset), Bytes(4, 0)});
    return segment(0xE2, joined({letters("MPF"),
                                 {0},
                                 letters("MM"),
                                 bigEndian(42, 2),
                                 u32(8),
                                 bigEndian(1, 2),
                                 bigEndian(0xB002, 2),
                                 bigEndian(7, 2),
                                 u32(32),
                                 u32(26),
                                 u32(0),
                                 first,
                                 second}));
}

class PhotoNotes : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// A JPEG file with segments in front of its own, and bytes behind its end.
    void writeJpeg(const std::string &name, const Bytes &segments, const Bytes &behind = {}) {
        writeWithMagick(drawn(64, 32), file(name));
        const Bytes plain = readFile(file(name));
        writeFile(file(name), joined({{0xFF, 0xD8}, segments, Bytes(plain.begin() + 2, plain.end()), behind}));
    }

    PhotoExtras extrasOf(const Bytes &segments, const Bytes &behind = {}) {
        writeJpeg("a.jpg", segments, behind);
        return media::photoExtras(file("a.jpg"));
    }

    TemporaryFolder folder_;
};

TEST_F(PhotoNotes, ordinaryPhotosHaveNoExtras) {
    EXPECT_EQ(extrasOf({}), none);
    writeWithMagick(drawn(32, 32), file("a.png"));
    EXPECT_EQ(media::photoExtras(file("a.png")), none);
    writeSpatialPhoto(file("a.heic"), drawn(32, 32), drawn(32, 32));
    EXPECT_EQ(media::photoExtras(file("a.heic")), none);
    EXPECT_EQ(media::photoExtras(file("absent.jpg")), none);
}

TEST_F(PhotoNotes, packetsTellOfExtras) {
    EXPECT_EQ(extrasOf(xmp("<x xmlns:hdrgm=\"http://ns.adobe.com/hdr-gain-map/1.0/\" hdrgm:Version=\"1.0\"/>")),
              gainMap);
    EXPECT_EQ(extrasOf(xmp("<x xmlns:HDRGainMap=\"http://ns.apple.com/HDRGainMap/1.0/\"/>")), gainMap);
    EXPECT_EQ(extrasOf(xmp("<x xmlns:GDepth=\"http://ns.google.com/photos/1.0/depthmap/\"/>")), depthMap);
    EXPECT_EQ(extrasOf(xmp("<x GCamera:MotionPhoto=\"1\"/>")), film);
    EXPECT_EQ(extrasOf(xmp("<GCamera:MicroVideo>1</GCamera:MicroVideo>")), film);
    EXPECT_EQ(extrasOf(xmp("<x GCamera:MotionPhoto=\"0\" GCamera:MotionPhotoVersion=\"1\"/>")), none);
    EXPECT_EQ(extrasOf(segment(0xE5, letters("<x GCamera:MotionPhoto=\"1\"/>"))), none) << "no packet";
}

TEST_F(PhotoNotes, segmentsTellOfGainMaps) {
    EXPECT_EQ(extrasOf(isoGainMap()), gainMap);
}

TEST_F(PhotoNotes, furtherImagesTellOfExtras) {
    writeJpeg("plain.jpg", {});
    const std::size_t plain = readFile(file("plain.jpg")).size();
    const Bytes second = joined({{0xFF, 0xD8}, isoGainMap(), {0xFF, 0xD9}});
    const std::size_t header = 2 + 4 + 4; // behind the image's start, the marker and its length, the index's mark
    const std::size_t end = plain + pictureIndex(0).size();
    EXPECT_EQ(extrasOf(pictureIndex(static_cast<std::uint32_t>(end - header)), second), gainMap);
    EXPECT_EQ(extrasOf(pictureIndex(static_cast<std::uint32_t>(end - header + 1)), second), none) << "no image there";
    EXPECT_EQ(extrasOf(pictureIndex(0xFFFFFFFF), second), none) << "behind the file's end";
}

TEST_F(PhotoNotes, damagedSegmentsEndTheSearch) {
    const Bytes whole = joined({{0xFF, 0xD8}, pictureIndex(70), xmp("<x GCamera:MotionPhoto=\"1\"/>")});
    for (std::size_t size = 3; size < whole.size(); ++size) {
        writeFile(file("a.jpg"), Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(media::photoExtras(file("a.jpg")), none) << size;
    }
    EXPECT_EQ(extrasOf({0xFF, 0xE1, 0, 0}), none) << "a length that is none";
}

TEST_F(PhotoNotes, aSideBySidePhotoTellsWhatItLosesOnItsWay) {
    const auto notesOf = [&](const std::string &name) {
        std::vector<Warning> notes = convertSBSImageToSpatial({}, file(name), file("out.heic")).warnings;
        return notes;
    };
    writeJpeg("plain.jpg", {});
    EXPECT_THAT(notesOf("plain.jpg"), IsEmpty());
    writeJpeg("full.jpg",
              joined({xmp("<x GCamera:MotionPhoto=\"1\" xmlns:GDepth=\"http://ns.google.com/photos/1.0/depthmap/\"/>"),
                      isoGainMap()}));
    EXPECT_THAT(notesOf("full.jpg"),
                ElementsAre(Warning{WarningKind::gainMapLeft, {}}, Warning{WarningKind::depthMapLeft, {}},
                            Warning{WarningKind::motionFilmLeft, {}}));
    writeWithMagick(drawn(64, 32), file("deep.png"), {"-depth", "16", "-define", "png:bit-depth=16"});
    EXPECT_THAT(notesOf("deep.png"),
                ElementsAre(Warning{WarningKind::depthReduced, {std::int64_t{16}, std::int64_t{8}}}));
    writeWithMagick(drawn(64, 32), file("plain.png"));
    EXPECT_THAT(notesOf("plain.png"), IsEmpty());
}

TEST_F(PhotoNotes, aSpatialPhotoTellsWhatItLosesOnItsWay) {
    writeSpatialPhoto(file("in.heic"), drawn(64, 64), drawn(64, 64, 2));
    EXPECT_THAT(convertSpatialPhotoToSBS({}, file("in.heic"), file("out.jpg")).warnings, IsEmpty());
    for (const char *movie : {"moov", "mpvd"}) {
        writeSpatialPhoto(file("in.heic"), drawn(64, 64), drawn(64, 64, 2));
        writeFile(file("in.heic"), joined({readFile(file("in.heic")), box(movie, Bytes(20, 0))}));
        EXPECT_THAT(convertSpatialPhotoToSBS({}, file("in.heic"), file("out.jpg")).warnings,
                    ElementsAre(Warning{WarningKind::motionFilmLeft, {}}));
    }
}

TEST_F(PhotoNotes, aPhotoOfHighDynamicRangeBecomesAnOrdinaryJpeg) {
    Raster grey(64, 64);
    test::fill(grey, 0, 0, 64, 64, {148, 148, 148}); // 58 % of PQ: white of 203 cd/m²
    media::Picture eye = test::pictureOf(grey);
    eye.colour.primaries = 9;
    eye.colour.transfer = 16;
    media::writeSpatialPhoto(file("in.heic"), eye, eye, test::factsFor(64, 64), {});
    EXPECT_THAT(convertSpatialPhotoToSBS({}, file("in.heic"), file("out.jpg")).warnings,
                ElementsAre(Warning{WarningKind::standardRange, {}}));
    const Raster shown = test::readWithMagick(file("out.jpg"));
    for (const int sample : shown.colour(30, 30))
        EXPECT_NEAR(sample, 212, 4) << "bright, with room above it for what is brighter";
    EXPECT_THAT(convertSpatialPhotoToSBS({}, file("in.heic"), file("sbs.heic")).warnings, IsEmpty());
    EXPECT_THAT(convertSBSImageToSpatial({}, file("sbs.heic"), file("back.heic")).warnings,
                ElementsAre(Warning{WarningKind::standardRange, {}}));
    for (const int sample : test::readWithOurs(file("back.heic")).colour(30, 30))
        EXPECT_NEAR(sample, 212, 4);
}

TEST_F(PhotoNotes, depthIsOnlyReducedWhereTheOutputHoldsLess) {
    writeSpatialPhoto(file("in.heic"), drawn(64, 64), drawn(64, 64, 2));
    EXPECT_THAT(photoNotes(media::ImageFile(media::InputFile(file("in.heic"))), 10, 16), IsEmpty());
    EXPECT_THAT(photoNotes(media::ImageFile(media::InputFile(file("in.heic"))), 8, 8), IsEmpty());
    EXPECT_THAT(photoNotes(media::ImageFile(media::InputFile(file("in.heic"))), 10, 8),
                ElementsAre(Warning{WarningKind::depthReduced, {std::int64_t{10}, std::int64_t{8}}}));
}

TEST_F(PhotoNotes, theSamples) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    EXPECT_THAT(convertSBSImageToSpatial({}, *samples / "ordinary" / "rgb10_128x128.heif", file("out.heic")).warnings,
                ElementsAre(Warning{WarningKind::depthReduced, {std::int64_t{10}, std::int64_t{8}}}));
    EXPECT_THAT(convertSBSImageToSpatial({}, *samples / "sbs-image" / "calf_3840x1080.jpg", file("out.heic")).warnings,
                IsEmpty());
    EXPECT_THAT(
        convertSpatialPhotoToSBS({}, *samples / "spatial-photo" / "spatial_photo.heic", file("out.jpg")).warnings,
        IsEmpty());
}

} // namespace
} // namespace lumetwin::test
