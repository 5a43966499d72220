// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/HeifWriter.h"
#include "media/MediaError.h"
#include "media/heif/HeifReader.h"
#include "tests/media/heif/CodedPictures.h"
#include "tests/media/heif/HeifBuilder.h"
#include "tests/support/Paths.h"
#include "tests/support/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace lumetwin::media::heif {
namespace {

using test::Bytes;
using testing::HasSubstr;

int leftDrawing(int x, int y) {
    return 40 + (x + y) % 64;
}
int rightDrawing(int x, int y) {
    return 150 + (x * 2 + y) % 64;
}

/// Does not decode, but has everything that the boxes are made of.
CodedImage plainImage(std::uint32_t width, std::uint32_t height) {
    CodedImage image;
    image.width = image.tileWidth = width;
    image.height = image.tileHeight = height;
    image.tiles = {{Bytes(20, 0x26)}};
    image.configuration = Bytes(23, 1);
    image.camera = Camera{width / 2.0, {2.0 * width, 2.0 * height}, {}};
    return image;
}

/// A block with one entry: the camera's maker.
Bytes exifOf(const std::string &maker) {
    Bytes bytes = test::joined({test::letters("MM"), test::u16(42), test::u32(8), test::u16(1), test::u16(0x010f),
                                test::u16(2), test::u32(static_cast<std::uint32_t>(maker.size() + 1)), test::u32(26),
                                test::u32(0), test::letters(maker), test::u8(0)});
    return bytes;
}

bool contains(const Bytes &bytes, const Bytes &part) {
    return !std::ranges::search(bytes, part).empty();
}

Bytes nclx(int primaries, int transfer, int matrix, int fullRange) {
    return test::box("colr", test::joined({test::letters("nclx"), test::u16(primaries), test::u16(transfer),
                                           test::u16(matrix), test::u8(fullRange)}));
}

std::string packetOf(const std::string &format) {
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
           "<rdf:Description xmlns:dc='http://purl.org/dc/elements/1.1/' dc:format='" +
           format + "'/></rdf:RDF></x:xmpmeta>";
}

HeifFile writtenPair(const std::filesystem::path &file, const CodedImage &left, const CodedImage &right,
                     std::int64_t disparity = 250) {
    PartialFile partial(file);
    std::filesystem::remove(file);
    writeStereoHeif(partial.file(), left, right, disparity);
    EXPECT_FALSE(std::filesystem::exists(file));
    partial.finish();
    EXPECT_FALSE(std::filesystem::exists(PartialFile::nameFor(file)));
    return readHeifFile(file);
}

struct Pair {
    CodedImage left;
    CodedImage right;
};

Pair codedPair(int width, int height, int tileWidth, int tileHeight) {
    Pair pair{test::codedImage(width, height, tileWidth, tileHeight, leftDrawing),
              test::codedImage(width, height, tileWidth, tileHeight, rightDrawing)};
    for (CodedImage *eye : {&pair.left, &pair.right})
        eye->camera = Camera{width / 2.0, {2.0 * width, 2.0 * height}, {}};
    pair.right.camera->position[0] = 64000;
    return pair;
}

/// The mean error of each image of a file against what was drawn, decoded by another program.
std::vector<double> decodedErrors(const std::filesystem::path &file, const CodedImage &image,
                                  const std::vector<test::Drawing> &drawings) {
    const test::TemporaryFolder folder;
    const auto result =
        test::runProgram({test::stackProgram("heif-dec"), file.string(), (folder / "out.y4m").string()});
    EXPECT_EQ(result.status, 0) << result.errors;
    std::vector<double> errors;
    for (std::size_t index = 0; index < drawings.size(); ++index) {
        const std::string name = drawings.size() == 1 ? "out.y4m" : "out-" + std::to_string(index + 1) + ".y4m";
        const Bytes bytes = test::readFile(folder / name);
        const std::string head(bytes.begin(), std::ranges::find(bytes, '\n'));
        EXPECT_THAT(head, HasSubstr("W" + std::to_string(image.width) + " H" + std::to_string(image.height)));
        const std::size_t begin = head.size() + 1 + 6; // "FRAME\n"
        double sum = 0;
        for (std::uint32_t y = 0; y < image.height; ++y)
            for (std::uint32_t x = 0; x < image.width; ++x)
                sum += std::abs(bytes.at(begin + std::size_t{y} * image.width + x) -
                                drawings[index](static_cast<int>(x), static_cast<int>(y)));
        errors.push_back(sum / image.width / image.height);
    }
    return errors;
}

std::string description(const std::filesystem::path &file, const std::string &option = "-d") {
    const auto result = test::runProgram({test::stackProgram("heif-info"), option, file.string()});
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
}

TEST(HeifWriter, writesAPairThatOurReaderAndOthersRead) {
    const test::TemporaryFolder folder;
    Pair pair = codedPair(128, 96, 128, 96);
    const HeifFile file = writtenPair(folder / "pair.heic", pair.left, pair.right);
    ASSERT_EQ(file.images.size(), 2u);
    EXPECT_EQ(file.primary, 0u);
    EXPECT_EQ(file.stereoEyes()->left, 0u);
    EXPECT_EQ(file.stereoEyes()->right, 1u);
    EXPECT_EQ(file.stereoDisparityAdjustment(), 250);
    EXPECT_EQ(file.images[1].disparityAdjustment, 250);
    EXPECT_EQ(file.images[0].position, (std::array<std::int32_t, 3>{0, 0, 0}));
    EXPECT_EQ(file.images[1].position, (std::array<std::int32_t, 3>{64000, 0, 0}));
    for (const HeifImage &image : file.images) {
        const PixelIntrinsics pixels = image.pixelIntrinsics().value();
        EXPECT_EQ(pixels.focalLengthX, 64);
        EXPECT_EQ(pixels.focalLengthY, 64);
        EXPECT_EQ(pixels.principalPointX, 256);
        EXPECT_EQ(pixels.principalPointY, 192);
        EXPECT_EQ(image.shownWidth, 128u);
        EXPECT_EQ(image.shownHeight, 96u);
    }
    EXPECT_TRUE(contains(test::readFile(folder / "pair.heic"), nclx(1, 13, 1, 0x80)));
    EXPECT_TRUE(contains(test::readFile(folder / "pair.heic"), test::fullBox("pixi", {3, 8, 8, 8})));
    const auto errors = decodedErrors(folder / "pair.heic", pair.left, {leftDrawing, rightDrawing});
    EXPECT_LT(errors[0], 2);
    EXPECT_LT(errors[1], 2);
    const std::string boxes = description(folder / "pair.heic");
    EXPECT_THAT(boxes, HasSubstr("Box: ster"));
    EXPECT_THAT(boxes, HasSubstr("principal-point: 2, 2"));
    EXPECT_THAT(boxes, HasSubstr("data: 0000: 00 00 00 fa"));
    EXPECT_THAT(boxes, HasSubstr("left image ID: 1"));
    EXPECT_THAT(boxes, HasSubstr("right image ID: 2"));
    EXPECT_THAT(boxes, HasSubstr("camera position (um): 64000 ; 0 ; 0"));
}

TEST(HeifWriter, writesGridsOfHiddenTiles) {
    const test::TemporaryFolder folder;
    const Pair pair = codedPair(201, 155, 128, 96); // an odd size, whose tiles overhang
    const HeifFile file = writtenPair(folder / "grid.heic", pair.left, pair.right);
    ASSERT_EQ(file.images.size(), 2u);
    EXPECT_EQ(file.images[0].item, 5u);
    EXPECT_EQ(file.images[1].item, 10u);
    EXPECT_EQ(file.images[0].shownWidth, 201u);
    EXPECT_EQ(file.images[0].shownHeight, 155u);
    EXPECT_NEAR(file.images[0].pixelIntrinsics()->principalPointX, 402, 1e-6);
    const auto errors = decodedErrors(folder / "grid.heic", pair.left, {leftDrawing, rightDrawing});
    EXPECT_LT(errors[0], 2);
    EXPECT_LT(errors[1], 2);
}

TEST(HeifWriter, cutsWhatACodedPictureHasTooMuch) {
    const test::TemporaryFolder folder;
    const Pair pair = codedPair(127, 95, 128, 96);
    const HeifFile file = writtenPair(folder / "odd.heic", pair.left, pair.right);
    EXPECT_EQ(file.images[1].codedWidth, 128u);
    EXPECT_EQ(file.images[1].width, 127u);
    EXPECT_EQ(file.images[1].shownHeight, 95u);
    const PixelIntrinsics pixels = file.images[1].pixelIntrinsics().value();
    EXPECT_NEAR(pixels.focalLengthX, 63.5, 1e-6);
    EXPECT_NEAR(pixels.principalPointX, 254, 1e-6);
    EXPECT_NEAR(pixels.principalPointY, 190, 1e-6);
    const auto errors = decodedErrors(folder / "odd.heic", pair.left, {leftDrawing, rightDrawing});
    EXPECT_LT(errors[0], 2);
    EXPECT_LT(errors[1], 2);
}

TEST(HeifWriter, writesOrdinaryPhotosToo) {
    const test::TemporaryFolder folder;
    for (const int tile : {160, 96}) {
        CodedImage image = test::codedImage(160, 128, tile, tile == 160 ? 128 : 96, leftDrawing);
        image.exif = exifOf("Single");
        PartialFile partial(folder / "one.heic");
        writeHeif(partial.file(), image);
        partial.finish();
        const HeifFile file = readHeifFile(folder / "one.heic");
        EXPECT_EQ(file.images.size(), 1u);
        EXPECT_EQ(file.primary, 0u);
        EXPECT_TRUE(file.stereoGroups.empty());
        EXPECT_FALSE(file.images[0].intrinsics);
        EXPECT_FALSE(file.images[0].disparityAdjustment);
        EXPECT_LT(decodedErrors(folder / "one.heic", image, {leftDrawing})[0], 2);
    }
}

TEST(HeifWriter, describesEachEyeByItsOwnExifAndXmp) {
    const test::TemporaryFolder folder;
    Pair pair = codedPair(128, 96, 128, 96);
    pair.left.exif = exifOf("Left Maker");
    pair.right.exif = exifOf("Right Maker");
    pair.left.xmp = packetOf("left packet");
    pair.right.xmp = packetOf("right packet");
    writtenPair(folder / "a.heic", pair.left, pair.right);
    const HeifReader reader{InputFile(folder / "a.heic")};
    for (const auto &[index, eye] : {std::pair<std::size_t, const CodedImage &>{0, pair.left}, {1, pair.right}}) {
        const ImageMetadata metadata = reader.read(index, PhotoSamples::coded, {}).metadata;
        EXPECT_EQ(metadata.exif, eye.exif);
        EXPECT_EQ(metadata.xmp, eye.xmp);
    }
    const Bytes head = test::joined({test::u32(6), test::letters("Exif"), test::u16(0)});
    EXPECT_TRUE(contains(test::readFile(folder / "a.heic"), test::joined({head, pair.left.exif})));
    const auto judge = test::runProgram(
        {"exiftool", "-a", "-G1", "-Make", "-XMP-dc:Format", "-ImageSize", "-warning", (folder / "a.heic").string()});
    if (judge.status == 127)
        GTEST_SKIP() << "no exiftool";
    EXPECT_THAT(judge.output, HasSubstr("Left Maker"));
    EXPECT_THAT(judge.output, HasSubstr("left packet"));
    EXPECT_THAT(judge.output, HasSubstr("right packet"));
    EXPECT_THAT(judge.output, HasSubstr("128x96"));
    EXPECT_THAT(judge.output, testing::Not(HasSubstr("Warning")));
}

TEST(HeifWriter, writesTheDisparityAdjustmentAlsoWhenItIsNone) {
    const test::TemporaryFolder folder;
    const CodedImage eye = plainImage(64, 64);
    for (const std::int64_t value : {std::int64_t{0}, std::int64_t{-10000}}) {
        const HeifFile file = writtenPair(folder / "a.heic", eye, eye, value);
        EXPECT_EQ(file.images[0].disparityAdjustment, value);
        EXPECT_EQ(file.images[1].disparityAdjustment, value);
    }
    const HeifFile file = writtenPair(folder / "a.heic", eye, eye, 1'000'000'000'000);
    EXPECT_EQ(file.stereoDisparityAdjustment(), std::numeric_limits<std::int32_t>::max());
}

TEST(HeifWriter, saturatesAnInfiniteFocalLengthAndLeavesOutNoNumber) {
    const test::TemporaryFolder folder;
    CodedImage eye = plainImage(64, 64);
    eye.camera->focalLength = std::numeric_limits<double>::infinity();
    const HeifFile infinite = writtenPair(folder / "a.heic", eye, eye);
    EXPECT_EQ(infinite.images[0].intrinsics->focalLengthX, 2147483647.0);
    EXPECT_EQ(infinite.images[0].intrinsics->principalPointX, 2.0);
    eye.camera->focalLength = std::nan("");
    const HeifFile none = writtenPair(folder / "a.heic", eye, eye);
    EXPECT_FALSE(none.images[0].intrinsics);
    EXPECT_TRUE(none.images[0].position);
}

TEST(HeifWriter, keepsTwoDifferentCamerasApart) {
    const test::TemporaryFolder folder;
    const CodedImage left = plainImage(64, 64);
    CodedImage right = left;
    right.camera->focalLength = 100;
    const HeifFile file = writtenPair(folder / "a.heic", left, right);
    EXPECT_EQ(file.images[0].pixelIntrinsics()->focalLengthX, 32);
    EXPECT_NEAR(file.images[1].pixelIntrinsics()->focalLengthX, 100, 1e-6);
}

TEST(HeifWriter, embedsAProfileBesideTheColourTags) {
    const test::TemporaryFolder folder;
    CodedImage eye = plainImage(64, 64);
    eye.colourProfile = test::letters("a profile");
    eye.colour = HeifColour{9, 16, 9, false};
    writtenPair(folder / "a.heic", eye, eye);
    EXPECT_TRUE(contains(test::readFile(folder / "a.heic"), test::box("colr", test::letters("profa profile"))));
    EXPECT_TRUE(contains(test::readFile(folder / "a.heic"), nclx(9, 16, 9, 0)));
}

TEST(HeifWriter, refusesImagesThatContradictThemselves) {
    const test::TemporaryFolder folder;
    const PartialFile partial(folder / "a.heic");
    const auto refused = [&](auto change) {
        CodedImage image = plainImage(64, 64);
        change(image);
        EXPECT_THROW(writeHeif(partial.file(), image), std::invalid_argument);
        EXPECT_EQ(partial.file().size(), 0u);
    };
    refused([](CodedImage &image) { image.columns = 2; });
    refused([](CodedImage &image) { image.columns = 0; });
    refused([](CodedImage &image) { image.tiles.clear(); });
    refused([](CodedImage &image) { image.width = 65; });
    refused([](CodedImage &image) { image.width = 0; });
    refused([](CodedImage &image) { image.tileHeight = 0; });
    refused([](CodedImage &image) { image.configuration.clear(); });
    refused([](CodedImage &image) { // the second column would lie outside
        image.columns = 2;
        image.tiles.resize(2);
    });
    CodedImage blind = plainImage(64, 64);
    blind.camera.reset();
    EXPECT_THROW(writeStereoHeif(partial.file(), plainImage(64, 64), blind, 0), std::invalid_argument);
}

std::string failureOf(const std::filesystem::path &output) {
    try {
        PartialFile partial(output);
        writeHeif(partial.file(), plainImage(64, 64));
        partial.finish();
    } catch (const MediaError &error) {
        EXPECT_EQ(error.file(), output);
        return error.what();
    }
    return "no error";
}

TEST(HeifWriter, namesTheOutputWhenTheSystemRefuses) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(failureOf(folder / "absent" / "a.heic"), "Cannot create a.heic: No such file or directory");
    std::filesystem::create_directory(folder / "b.heic.partial");
    EXPECT_EQ(failureOf(folder / "b.heic"), "Cannot create b.heic: Is a directory");
    std::filesystem::create_symlink("/dev/full", folder / "c.heic.partial");
    EXPECT_EQ(failureOf(folder / "c.heic"), "Cannot write c.heic: No space left on device");
    std::filesystem::create_directory(folder / "d.heic");
    EXPECT_EQ(failureOf(folder / "d.heic"), "Cannot rename the partial file to d.heic: Is a directory");
    EXPECT_TRUE(std::filesystem::exists(folder / "d.heic.partial")); // a failing writer leaves it
}

} // namespace
} // namespace lumetwin::media::heif
