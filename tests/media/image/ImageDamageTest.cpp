// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Photos.h"

#include "media/MediaError.h"
#include "tests/support/Paths.h"

#include <gtest/gtest.h>

#include <random>

#include <sys/resource.h>
#include <sys/stat.h>

namespace lumetwin::test {
namespace {

class ImageDamage : public testing::Test {
protected:
    std::filesystem::path file(const std::string &name) const { return folder_.path() / name; }

    /// The message of the error that reading gives; empty when it succeeds.
    static std::string failure(const std::filesystem::path &path) {
        try {
            media::readImage(path);
            return {};
        } catch (const media::MediaError &error) {
            EXPECT_NE(std::string(error.what()).find(path.filename().string()), std::string::npos) << error.what();
            return error.what();
        }
    }

    TemporaryFolder folder_;
};

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

std::uint32_t crcOf(const std::vector<std::uint8_t> &bytes, std::size_t from, std::size_t to) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = from; i < to; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return ~crc;
}

void bigEndian(std::vector<std::uint8_t> &bytes, std::size_t at, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * (size - 1 - i)));
}

/// A small PNG whose header claims another size.
std::vector<std::uint8_t> pngClaiming(const std::filesystem::path &small, std::uint32_t width, std::uint32_t height) {
    writeWithMagick(drawn(8, 8), small);
    std::vector<std::uint8_t> bytes = readFile(small);
    bigEndian(bytes, 16, width, 4);
    bigEndian(bytes, 20, height, 4);
    bigEndian(bytes, 29, crcOf(bytes, 12, 29), 4);
    return bytes;
}

TEST_F(ImageDamage, emptyFilesAreNoImages) {
    for (const char *name : {"a.jpg", "a.png", "a.tiff", "a.heic"}) {
        writeFile(file(name), Bytes());
        EXPECT_EQ(media::imageKind(file(name)), std::nullopt);
        EXPECT_EQ(failure(file(name)), std::string("Cannot read ") + name + ": The file is empty");
        writeFile(file(name), Bytes{1, 2, 3});
        EXPECT_EQ(failure(file(name)), std::string("Cannot read ") + name + ": not an image of a known kind");
    }
}

TEST_F(ImageDamage, pipesAreNotWaitedFor) {
    ASSERT_EQ(mkfifo(file("a.png").c_str(), 0600), 0);
    EXPECT_EQ(media::imageKind(file("a.png")), std::nullopt);
}

TEST_F(ImageDamage, missingFilesSayWhy) {
    EXPECT_NE(failure(file("none.jpg")).find("No such file"), std::string::npos);
}

TEST_F(ImageDamage, giantHeadersAreRefusedBeforeMemoryIsTaken) {
    const long before = peakKilobytes();
    writeFile(file("giant.png"), pngClaiming(file("small.png"), 60000, 60000));
    EXPECT_NE(failure(file("giant.png")).find("too large"), std::string::npos);

    writeWithMagick(drawn(8, 8), file("giant.jpg"));
    std::vector<std::uint8_t> jpeg = readFile(file("giant.jpg"));
    std::size_t frame = 2;
    while (jpeg[frame + 1] != 0xC0)
        frame += 2 + jpeg[frame + 2] * 256u + jpeg[frame + 3];
    bigEndian(jpeg, frame + 5, 60000, 2);
    bigEndian(jpeg, frame + 7, 60000, 2);
    writeFile(file("giant.jpg"), jpeg);
    EXPECT_NE(failure(file("giant.jpg")).find("too large"), std::string::npos);

    writeWithMagick(drawn(8, 8), file("giant.tiff"), {"-define", "tiff:endian=msb", "-compress", "None"});
    std::vector<std::uint8_t> tiff = readFile(file("giant.tiff"));
    const std::size_t directory =
        (std::size_t{tiff[4]} << 24) | (std::size_t{tiff[5]} << 16) | (std::size_t{tiff[6]} << 8) | tiff[7];
    for (std::size_t entry = directory + 2; entry + 12 <= tiff.size(); entry += 12)
        if (tiff[entry] == 1 && (tiff[entry + 1] == 0 || tiff[entry + 1] == 1)) // width, height
            bigEndian(tiff, entry + 8, 60000, tiff[entry + 3] == 3 ? 2 : 4);
    writeFile(file("giant.tiff"), tiff);
    EXPECT_NE(failure(file("giant.tiff")).find("too large"), std::string::npos);
    EXPECT_LT(peakKilobytes() - before, 64 * 1024);
}

TEST_F(ImageDamage, aHeaderThatPromisesMoreThanTheFileHoldsTakesNoMemory) {
    const long before = peakKilobytes();
    constexpr int side = 16000;
    writeFile(file("bomb.png"), pngClaiming(file("small.png"), side, side));
    EXPECT_NE(failure(file("bomb.png")), "");
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizer marks all reserved memory, used or not: an eighth of the picture's 3 bytes for each pixel.
    constexpr long marks = long{side} * side * 3 / 8 / 1024;
#else
    constexpr long marks = 0;
#endif
    EXPECT_LT(peakKilobytes() - before, 64 * 1024 + marks);
}

TEST_F(ImageDamage, truncatedFilesAreErrorsAtEveryLength) {
    const Raster picture = drawn(203, 141);
    for (const auto &[name, options] : {std::pair<std::string, std::vector<std::string>>{"a.jpg", {}},
                                        {"progressive.jpg", {"-interlace", "JPEG"}},
                                        {"cmyk.jpg", {"-colorspace", "CMYK"}},
                                        // What follows the samples may be missing.
                                        {"a.png", {"-strip"}},
                                        {"interlaced.png", {"-strip", "-interlace", "PNG"}},
                                        {"a.tiff", {"-compress", "LZW"}},
                                        {"tiles.tiff", {"-define", "tiff:tile-geometry=64x48", "-compress", "Zip"}}}) {
        writeWithMagick(picture, file(name), options);
        const std::vector<std::uint8_t> whole = readFile(file(name));
        const std::string cutName = "cut-" + name;
        for (std::size_t part = 0; part < 40; ++part) {
            const std::size_t length = whole.size() * part / 42;
            writeFile(file(cutName), Bytes{whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
            EXPECT_NE(failure(file(cutName)), "") << name << " cut to " << length << " of " << whole.size();
        }
    }
}

TEST_F(ImageDamage, theSizeIsReadWithoutTheSamples) {
    for (const auto &[name, share] :
         {std::pair<std::string, double>{"a.jpg", 0.5}, {"progressive.jpg", 0.5}, {"a.png", 0.5}, {"a.heic", 0.9}}) {
        media::writeImage(file("whole.heic"), media::ImageKind::heif, {pictureOf(drawn(203, 141)), {}}, 0.9);
        if (name == "a.heic")
            std::filesystem::rename(file("whole.heic"), file(name));
        else
            writeWithMagick(drawn(203, 141), file(name),
                            {"-strip", "-interlace", name == "progressive.jpg" ? "JPEG" : "None"});
        const std::vector<std::uint8_t> whole = readFile(file(name));
        const auto length = static_cast<std::ptrdiff_t>(static_cast<double>(whole.size()) * share);
        writeFile(file("cut-" + name), Bytes{whole.begin(), whole.begin() + length});
        EXPECT_NE(failure(file("cut-" + name)), "") << name;
        const media::PixelSize size = media::ImageFile(media::InputFile(file("cut-" + name))).size();
        EXPECT_EQ(size.width, 203) << name;
        EXPECT_EQ(size.height, 141) << name;
        writeFile(file("short-" + name), Bytes{whole.begin(), whole.begin() + 20});
        EXPECT_THROW(media::ImageFile(media::InputFile(file("short-" + name))).size(), media::MediaError) << name;
    }
}

TEST_F(ImageDamage, changedBytesNeverBringTheProgramDown) {
    const Raster picture = drawn(64, 48);
    std::mt19937 random(7);
    for (const auto &[name, options] : {std::pair<std::string, std::vector<std::string>>{"a.jpg", {}},
                                        {"progressive.jpg", {"-interlace", "JPEG"}},
                                        {"a.png", {"-set", "comment", "x"}},
                                        {"interlaced.png", {"-interlace", "PNG"}},
                                        {"a.tiff", {"-compress", "LZW"}},
                                        {"jpeg.tiff", {"-compress", "JPEG"}},
                                        {"tiles.tiff", {"-define", "tiff:tile-geometry=32x32", "-compress", "None"}}}) {
        writeWithMagick(picture, file(name), options);
        output({"exiftool", "-q", "-overwrite_original", "-Make=x", "-ExposureTime=0.01", "-GPSLatitude=1",
                file(name).string()});
        const std::vector<std::uint8_t> whole = readFile(file(name));
        for (int round = 0; round < 150; ++round) {
            std::vector<std::uint8_t> bytes = whole;
            for (int change = 0; change < 3; ++change)
                bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
            writeFile(file("changed-" + name), bytes);
            failure(file("changed-" + name));
        }
    }
}

TEST_F(ImageDamage, tiffTilesLargerThanAnyPictureAreRefused) {
    writeWithMagick(drawn(64, 48), file("a.tiff"),
                    {"-define", "tiff:endian=msb", "-define", "tiff:tile-geometry=32x32", "-compress", "None"});
    std::vector<std::uint8_t> tiff = readFile(file("a.tiff"));
    const std::size_t directory =
        (std::size_t{tiff[4]} << 24) | (std::size_t{tiff[5]} << 16) | (std::size_t{tiff[6]} << 8) | tiff[7];
    const std::size_t count = tiff[directory] * 256u + tiff[directory + 1];
    int changed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + 12 * i;
        if (tiff[entry] == 1 && (tiff[entry + 1] == 0x42 || tiff[entry + 1] == 0x43)) { // tile width, height
            tiff[entry + 3] = 4;
            bigEndian(tiff, entry + 8, 32000, 4);
            ++changed;
        }
    }
    ASSERT_EQ(changed, 2);
    writeFile(file("a.tiff"), tiff);
    EXPECT_NE(failure(file("a.tiff")), "");
}

} // namespace
} // namespace lumetwin::test
