// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ColourConversion.h"
#include "media/MediaError.h"
#include "media/heif/HeifFile.h"
#include "media/heif/HeifReader.h"
#include "media/heif/HeifWriter.h"
#include "media/heif/HevcConfiguration.h"
#include "tests/support/Paths.h"
#include "tests/support/SpatialPhotos.h"

#include <gtest/gtest.h>

#include <random>

namespace lumetwin::test {
namespace {

class HeifReading : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// A HEIC file of one picture that the outside encoder codes with the given options.
    void writeCoded(const Raster &raster, const std::vector<std::string> &options) {
        const media::Picture planes = media::convertColour(pictureOf(raster), media::yuv420, media::jpegColour);
        std::vector<std::uint8_t> raw;
        for (int plane = 0; plane < 3; ++plane)
            for (int y = 0; y < planes.planeHeight(plane); ++y) {
                const auto &from = planes.planes[static_cast<std::size_t>(plane)];
                raw.insert(raw.end(), from.data + y * from.stride,
                           from.data + y * from.stride + planes.planeWidth(plane));
            }
        writeFile(file("in.yuv"), raw);
        std::vector<std::string> command{stackProgram("x265"),
                                         "--input",
                                         file("in.yuv").string(),
                                         "--input-res",
                                         std::to_string(raster.width) + "x" + std::to_string(raster.height),
                                         "--fps",
                                         "1",
                                         "--frames",
                                         "1",
                                         "--no-info",
                                         "--log-level",
                                         "none",
                                         "--range",
                                         "full",
                                         "--colormatrix",
                                         "smpte170m",
                                         "--qp",
                                         "10",
                                         "-o",
                                         file("out.hevc").string()};
        command.insert(command.end(), options.begin(), options.end());
        output(command);
        media::heif::CodedImage image;
        image.width = image.tileWidth = static_cast<std::uint32_t>(raster.width);
        image.height = image.tileHeight = static_cast<std::uint32_t>(raster.height);
        std::vector<media::heif::Bytes> sets;
        std::vector<media::heif::Bytes> slices;
        for (const media::heif::Bytes &unit : unitsOf(readFile(file("out.hevc"))))
            (unit[0] >> 1 < 32 ? slices : sets).push_back(unit);
        sets.resize(3); // without messages
        image.configuration = media::heif::hevcConfiguration(sets);
        slices_ = slices.size();
        image.tiles.push_back(std::move(slices));
        media::PartialFile partial(file("coded.heic"));
        media::heif::writeHeif(partial.file(), image);
        partial.finish();
    }

    static std::vector<media::heif::Bytes> unitsOf(const std::vector<std::uint8_t> &stream) {
        std::vector<media::heif::Bytes> units;
        std::size_t zeros = 0;
        for (const std::uint8_t byte : stream) {
            if (zeros >= 2 && byte == 1) {
                if (!units.empty())
                    units.back().resize(units.back().size() - std::min<std::size_t>(zeros, units.back().size()));
                units.emplace_back();
            } else if (!units.empty()) {
                units.back().push_back(byte);
            }
            zeros = byte == 0 ? zeros + 1 : 0;
        }
        return units;
    }

    TemporaryFolder folder_;
    std::size_t slices_ = 0;
};

TEST_F(HeifReading, picturesOfSeveralSlicesAreWhole) {
    const Raster picture = drawn(256, 256);
    writeCoded(picture, {"--slices", "4", "--ctu", "32"});
    ASSERT_GT(slices_, 1u);
    EXPECT_GT(psnr(readWithOurs(file("coded.heic")), picture), 33); // what is lost with the chroma
}

TEST_F(HeifReading, picturesThatADecoderWouldHoldBackComeOut) {
    const Raster picture = drawn(128, 96);
    writeCoded(picture, {"--bframes", "4", "--b-pyramid", "--keyint", "20"});
    EXPECT_GT(psnr(readWithOurs(file("coded.heic")), picture), 33); // what is lost with the chroma
}

TEST_F(HeifReading, openRandomAccessPicturesAreKnown) {
    const Raster picture = drawn(128, 96);
    writeCoded(picture, {"--open-gop", "--keyint", "20", "--no-repeat-headers"});
    EXPECT_GT(psnr(readWithOurs(file("coded.heic")), picture), 33); // what is lost with the chroma
}

TEST_F(HeifReading, rotationIsPartOfThePicture) {
    Raster picture(96, 64);
    fill(picture, 0, 0, 96, 64, {40, 40, 200});
    fill(picture, 0, 0, 30, 20, {220, 40, 40}); // top left
    media::writeImage(file("in.heic"), media::ImageKind::heif, {pictureOf(picture), {}}, 1);
    // The list of bit depths lends its place to a rotation by 90 degrees anticlockwise.
    const std::size_t place = placeOfBox(readFile(file("in.heic")), "pixi");
    overwrite(file("in.heic"), place + 4, {'i', 'r', 'o', 't', 1});
    const Raster turned = readWithOurs(file("in.heic"));
    ASSERT_EQ(turned.width, 64);
    ASSERT_EQ(turned.height, 96);
    EXPECT_NEAR(turned.at(5, 90)[0], 220, 6); // bottom left
    EXPECT_NEAR(turned.at(60, 5)[2], 200, 6);
}

TEST_F(HeifReading, profilesAndMetadataOfTheFirstImage) {
    media::Picture picture = pictureOf(drawn(64, 64));
    picture.colour.primaries = 12;
    media::writeImage(file("a.heic"), media::ImageKind::heif, {picture, {}}, 1);
    const media::StillImage image = media::readImage(file("a.heic"));
    EXPECT_FALSE(image.metadata.iccProfile.empty());
    EXPECT_EQ(image.picture.format, media::yuv420);
    EXPECT_EQ(image.picture.colour.range, media::ColourRange::full);
}

TEST_F(HeifReading, changedBytesNeverBringTheProgramDown) {
    writeSpatialPhoto(file("whole.heic"), drawn(96, 64), drawn(96, 64, 2));
    const std::vector<std::uint8_t> whole = readFile(file("whole.heic"));
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::uint8_t> bytes = whole;
        for (int change = 0; change < 3; ++change) // headers are hit as often as samples
            bytes[random() % (round % 2 == 0 ? std::min<std::size_t>(bytes.size(), 1500) : bytes.size())] =
                static_cast<std::uint8_t>(random());
        writeFile(file("changed.heic"), bytes);
        try {
            media::readImage(file("changed.heic"));
            const media::heif::HeifReader reader{media::InputFile(file("changed.heic"))};
            for (std::size_t image = 0; image < reader.headers().images.size(); ++image)
                reader.read(image, media::PhotoSamples::rgb, {});
        } catch (const media::MediaError &) {
        }
    }
}

TEST_F(HeifReading, ordinarySamplesAreRead) {
    const auto samples = sampleMedia();
    if (!samples)
        GTEST_SKIP() << "the folder of sample media is not there";
    const media::Picture deep = media::readImage(*samples / "ordinary" / "rgb10_128x128.heif").picture;
    EXPECT_EQ(deep.format.depth, 10);
    EXPECT_EQ(deep.width, 128);
    EXPECT_EQ(media::readImage(*samples / "ordinary" / "two_images_no_group.heic").picture.width, 1280);
    const Raster transparent = readWithOurs(*samples / "ordinary" / "alpha_512x512.heic");
    EXPECT_EQ(transparent.width, 512);
}

} // namespace
} // namespace lumetwin::test
