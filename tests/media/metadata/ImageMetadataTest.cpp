// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Photos.h"

#include "media/SRGB.h"
#include "media/metadata/ExifBlock.h"
#include "tests/support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

using media::ImageKind;
using testing::HasSubstr;
using testing::Not;

class ImageMetadata : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// A photograph as a camera writes it: turned, with a thumbnail and everything people keep.
    void writePhotograph(const std::string &name, const std::vector<std::string> &more = {}) {
        writeWithMagick(drawn(160, 120), file(name), {"-quality", "90"});
        writeWithMagick(drawn(16, 12), file("thumbnail.jpg"));
        std::vector<std::string> command{"exiftool",
                                         "-q",
                                         "-overwrite_original",
                                         "-Make=Acme",
                                         "-Model=Twin 3",
                                         "-LensModel=18 mm f/2",
                                         "-DateTimeOriginal=2024:05:06 07:08:09",
                                         "-OffsetTimeOriginal=+09:00",
                                         "-ExposureTime=1/125",
                                         "-FNumber=2.8",
                                         "-ISO=200",
                                         "-Orientation#=6",
                                         "-ExifImageWidth=999",
                                         "-ExifImageHeight=888",
                                         "-GPSLatitude=35.5",
                                         "-GPSLatitudeRef=N",
                                         "-GPSLongitude=139.25",
                                         "-GPSLongitudeRef=E",
                                         "-XMP-dc:Title=Two eyes",
                                         "-XMP-tiff:Orientation#=6",
                                         "-ThumbnailImage<=" + file("thumbnail.jpg").string()};
        command.insert(command.end(), more.begin(), more.end());
        command.push_back(file(name).string());
        output(command);
    }

    std::string facts(const std::string &name) {
        return output({"exiftool", "-G1", "-s", "-a", "-n", file(name).string()});
    }

    TemporaryFolder folder_;
};

void expectPhotograph(const std::string &facts) {
    const std::vector<std::string> wanted{"Acme",   "Twin 3", "18 mm f/2", "2024:05:06 07:08:09",
                                          "+09:00", "0.008",  "2.8",       "200",
                                          "35.5",   "139.25", "Two eyes"};
    for (const std::string &text : wanted)
        EXPECT_THAT(facts, HasSubstr(text));
}

TEST_F(ImageMetadata, goesIntoEveryFormat) {
    for (const std::string source : {"a.jpg", "a.tiff", "a.png"}) {
        writePhotograph(source);
        media::StillImage image = media::readImage(file(source));
        for (const auto &[name, kind] :
             {std::pair{"out.jpg", ImageKind::jpeg}, {"out.png", ImageKind::png}, {"out.tiff", ImageKind::tiff}}) {
            SCOPED_TRACE(source + " to " + name);
            media::writeImage(file(name), kind, image, 0.75);
            const std::string written = facts(name);
            expectPhotograph(written);
            EXPECT_THAT(written, Not(HasSubstr("Orientation                     : 6")));
            EXPECT_THAT(written, HasSubstr("ExifImageWidth                  : 160"));
            EXPECT_THAT(written, HasSubstr("ExifImageHeight                 : 120"));
            EXPECT_THAT(written, Not(HasSubstr("Thumbnail")));
            EXPECT_THAT(written, Not(HasSubstr("Warning")));
        }
    }
}

TEST_F(ImageMetadata, bigEndianExifIsUnderstood) {
    writePhotograph("a.jpg", {"-ExifByteOrder=Big-endian"});
    media::StillImage image = media::readImage(file("a.jpg"));
    for (const auto &[name, kind] : {std::pair{"out.jpg", ImageKind::jpeg}, {"out.tiff", ImageKind::tiff}}) {
        media::writeImage(file(name), kind, image, 0.75);
        expectPhotograph(facts(name));
        EXPECT_THAT(facts(name), Not(HasSubstr("Warning")));
    }
}

TEST_F(ImageMetadata, xmpAloneIsCarried) {
    writeWithMagick(drawn(32, 32), file("a.jpg"));
    output({"exiftool", "-q", "-overwrite_original", "-XMP-exif:GPSLatitude=12.5",
            "-XMP-photoshop:DateCreated=2020:01:02 03:04:05", file("a.jpg").string()});
    media::writeImage(file("out.png"), ImageKind::png, media::readImage(file("a.jpg")), 0.75);
    EXPECT_THAT(facts("out.png"), HasSubstr("12.5"));
    EXPECT_THAT(facts("out.png"), HasSubstr("2020:01:02 03:04:05"));
}

TEST_F(ImageMetadata, profilesAreEmbedded) {
    for (const auto &[name, kind] :
         {std::pair{"a.jpg", ImageKind::jpeg}, {"a.png", ImageKind::png}, {"a.tiff", ImageKind::tiff}}) {
        media::Picture picture = pictureOf(drawn(16, 16));
        picture.colour.primaries = 12; // Display P3
        media::writeImage(file(name), kind, {picture, {}}, 0.75);
        const auto profile = media::readImage(file(name)).metadata.iccProfile;
        ASSERT_FALSE(profile.empty()) << name;
        media::writeImage(file("again.png"), ImageKind::png, {pictureOf(drawn(16, 16)), {profile, {}, {}}}, 0.75);
        EXPECT_EQ(media::readImage(file("again.png")).metadata.iccProfile, profile) << name;
    }
}

TEST_F(ImageMetadata, widerColoursAreDrawnIntoSRGB) {
    media::Picture picture = pictureOf(drawn(8, 8));
    picture.colour.primaries = 12;
    Raster solid(8, 8);
    fill(solid, 0, 0, 8, 8, {200, 60, 60});
    picture = pictureOf(solid);
    picture.colour.primaries = 12;
    const Raster converted = rasterOf(media::inSRGB(picture, {}, "a.png"));
    // Display P3 (200, 60, 60) lies at about (216, 44, 54) in sRGB.
    EXPECT_NEAR(converted.at(4, 4)[0], 216, 2);
    EXPECT_NEAR(converted.at(4, 4)[1], 44, 3);
    EXPECT_NEAR(converted.at(4, 4)[2], 54, 3);
}

TEST_F(ImageMetadata, sRGBSamplesAreNotTouched) {
    writeWithMagick(drawn(40, 30), file("a.jpg"), {"-sampling-factor", "2x2"});
    const media::StillImage image = media::readImage(file("a.jpg"));
    const media::Picture same = media::inSRGB(image.picture, image.metadata.iccProfile, "a.jpg");
    EXPECT_EQ(same.planes[0].data, image.picture.planes[0].data);
}

TEST_F(ImageMetadata, makersNoteStaysAtItsPlace) {
    // An Exif block whose maker's note lies behind everything else at offset 200.
    std::vector<std::uint8_t> block(260);
    const auto put = [&block](std::size_t at, std::initializer_list<int> bytes) {
        for (const int byte : bytes)
            block[at++] = static_cast<std::uint8_t>(byte);
    };
    put(0, {'I', 'I', 42, 0, 8, 0, 0, 0});
    put(8, {1, 0, 0x69, 0x87, 4, 0, 1, 0, 0, 0, 26, 0, 0, 0, 0, 0, 0, 0});
    put(26, {1, 0, 0x7C, 0x92, 7, 0, 50, 0, 0, 0, 200, 0, 0, 0, 0, 0, 0, 0});
    for (std::size_t i = 0; i < 50; ++i)
        block[200 + i] = static_cast<std::uint8_t>(i + 1);
    media::images::ExifBlock exif = media::images::ExifBlock::parse(block);
    exif.describePicture(10, 20);
    const std::vector<std::uint8_t> written = exif.bytes();
    ASSERT_GE(written.size(), 250u);
    for (std::size_t i = 0; i < 50; ++i)
        EXPECT_EQ(written[200 + i], i + 1);
    EXPECT_FALSE(media::images::ExifBlock::parse(written).empty());
}

TEST_F(ImageMetadata, smallExifWhoseValuesShareBytesDoesNotGrow) {
    // A directory of 1,000 fields that all use the same 16 KiB.
    constexpr std::uint32_t fields = 1000, photograph = 8 + 2 + 12 + 4, values = photograph + 2 + 12 * fields;
    constexpr std::uint32_t valueSize = 16 << 10;
    std::vector<std::uint8_t> block(values + valueSize, 'x');
    const auto put = [&block](std::size_t at, std::uint32_t number, int size) {
        for (int byte = 0; byte < size; ++byte)
            block[at + static_cast<std::size_t>(byte)] = static_cast<std::uint8_t>(number >> 8 * byte);
    };
    const auto putField = [&](std::size_t at, std::uint32_t tag, std::uint32_t type, std::uint32_t count,
                              std::uint32_t value) {
        put(at, tag, 2);
        put(at + 2, type, 2);
        put(at + 4, count, 4);
        put(at + 8, value, 4);
    };
    put(0, 0x002A4949, 4);
    put(4, 8, 4);
    put(8, 1, 2);
    putField(10, 0x8769, 4, 1, photograph);
    put(photograph, fields, 2);
    for (std::uint32_t field = 0; field < fields; ++field)
        putField(photograph + 2 + 12 * field, 0x9000 + field, 7, valueSize, values);
    const std::vector<std::uint8_t> written = media::images::ExifBlock::parse(block).bytes();
    EXPECT_GT(written.size(), valueSize) << "what fits is kept";
    EXPECT_LE(written.size(), 2 * block.size());
}

TEST_F(ImageMetadata, damagedExifIsLeftOut) {
    for (const std::vector<std::uint8_t> &block :
         {std::vector<std::uint8_t>{},
          {'I', 'I', 42, 0},
          {'I', 'I', 42, 0, 255, 255, 255, 255},
          {'M', 'M', 0, 42, 0, 0, 0, 8, 255, 255, 1, 15, 0, 2, 255, 255, 255, 255, 0, 0, 0, 0}})
        EXPECT_TRUE(media::images::ExifBlock::parse(block).empty());
}

} // namespace
} // namespace lumetwin::test
