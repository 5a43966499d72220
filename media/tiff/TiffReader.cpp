// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/tiff/TiffReader.h"

#include "media/MediaError.h"
#include "media/colour/ColourProfile.h"
#include "media/metadata/ExifInTiff.h"
#include "media/samples/FileStream.h"
#include "media/samples/Limits.h"
#include "media/samples/Rows.h"
#include "media/tiff/Tiff.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <new>

namespace lumetwin::media::images {

namespace {

constexpr MediaOperation reading = MediaOperation::read;
constexpr int maximumSamples = 16; // colours, alpha and other samples of a pixel

/// The sample layout of a page that this reader handles without the library's conversion.
struct Page {
    int width = 0;
    int height = 0;
    int bits = 8;
    int channels = 3;
    int colours = 3;
    Alpha alpha = Alpha::none;
    bool separate = false; ///< each sample in its own plane
    bool whiteIsZero = false;
};

template <typename Value> Value field(const TiffFile &tiff, ttag_t tag, Value fallback) {
    Value value = fallback;
    return TIFFGetFieldDefaulted(tiff.get(), tag, &value) == 1 ? value : fallback;
}

int coloursOf(std::uint16_t photometric) {
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return 1;
    case PHOTOMETRIC_RGB:
        return 3;
    case PHOTOMETRIC_SEPARATED:
        return 4;
    default:
        return 0;
    }
}

Alpha alphaOf(const TiffFile &tiff) {
    std::uint16_t count = 0;
    const std::uint16_t *kinds = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1 || count == 0)
        return Alpha::none;
    return kinds[0] == EXTRASAMPLE_UNASSALPHA   ? Alpha::straight
           : kinds[0] == EXTRASAMPLE_ASSOCALPHA ? Alpha::premultiplied
                                                : Alpha::none;
}

Page pageOf(const TiffFile &tiff) {
    const auto width = field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH, 0);
    const auto height = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH, 0);
    checkSize(tiff.file, width, height);
    auto photometric = field<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC, std::numeric_limits<std::uint16_t>::max());
    if (photometric == PHOTOMETRIC_YCBCR && field<std::uint16_t>(tiff, TIFFTAG_COMPRESSION, 1) == COMPRESSION_JPEG) {
        TIFFSetField(tiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        photometric = PHOTOMETRIC_RGB;
    }
    Page page;
    page.width = static_cast<int>(width);
    page.height = static_cast<int>(height);
    page.bits = field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    page.channels = field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    page.colours = coloursOf(photometric);
    page.alpha = alphaOf(tiff);
    page.separate = field<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    page.whiteIsZero = photometric == PHOTOMETRIC_MINISWHITE;
    return page;
}

bool isPlain(const TiffFile &tiff, const Page &page) {
    const auto kind = field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    return (page.bits == 8 || page.bits == 16) && (kind == SAMPLEFORMAT_UINT || kind == SAMPLEFORMAT_VOID) &&
           page.colours != 0 && page.channels >= page.colours && page.channels <= maximumSamples &&
           (page.alpha == Alpha::none || page.channels > page.colours);
}

/// Copies rows of the file into the picture.
class RowTaker {
public:
    RowTaker(const Page &page, const Picture &picture, std::span<const std::uint8_t> profile)
        : page_(page), picture_(picture) {
        if (page.colours != 4)
            return;
        inks_ = std::make_unique<CmykRows>(profile, page.bits / 8, false);
        cmyk_.resize(static_cast<std::size_t>(page.width) * 4);
        rgb_.resize(static_cast<std::size_t>(page.width) * 3);
    }

    void take(const void *row, int x, int y, int count) {
        if (page_.bits == 8)
            takeSamples(static_cast<const std::uint8_t *>(row), x, y, count);
        else
            takeSamples(static_cast<const std::uint16_t *>(row), x, y, count);
    }

private:
    template <typename Sample> void takeSamples(const Sample *row, int x, int y, int count) {
        if (inks_)
            return takeInks(row, x, y, count);
        scatterRow(row, PixelLayout{page_.channels, page_.alpha}, picture_, x, y, count);
        if (page_.whiteIsZero) {
            Sample *out = planeRow<Sample>(picture_, 0, y) + x;
            std::transform(out, out + count, out, [](Sample value) { return static_cast<Sample>(~value); });
        }
    }

    template <typename Sample> void takeInks(const Sample *row, int x, int y, int count) {
        auto *cmyk = reinterpret_cast<Sample *>(cmyk_.data());
        auto *rgb = reinterpret_cast<Sample *>(rgb_.data());
        for (int i = 0; i < count; ++i)
            std::copy_n(row + static_cast<std::ptrdiff_t>(i) * page_.channels, 4, cmyk + 4 * i);
        inks_->convert(cmyk, rgb, count);
        scatterRow(static_cast<const Sample *>(rgb), PixelLayout{3, Alpha::none}, picture_, x, y, count);
    }

    const Page &page_;
    const Picture &picture_;
    std::unique_ptr<CmykRows> inks_;
    std::vector<std::uint16_t> cmyk_;
    std::vector<std::uint16_t> rgb_;
};

using Buffer = std::unique_ptr<std::uint16_t[]>;

Buffer bufferFor(const TiffFile &tiff, std::uint64_t bytes) {
    Buffer buffer(bytes > (std::uint64_t{1} << 31) ? nullptr
                                                   : new (std::nothrow)
                                                         std::uint16_t[static_cast<std::size_t>(bytes / 2 + 1)]);
    if (!buffer)
        throw MediaError(tiff.file, reading, 0, MediaReason::imageTooLarge);
    return buffer;
}

void readLines(const TiffFile &tiff, const Page &page, RowTaker &rows, const Cancellation &cancellation) {
    const Buffer buffer = bufferFor(tiff, static_cast<std::uint64_t>(TIFFScanlineSize64(tiff.get())));
    for (int y = 0; y < page.height; ++y) {
        cancellation.check();
        if (TIFFReadScanline(tiff.get(), buffer.get(), static_cast<std::uint32_t>(y), 0) < 0)
            tiff.fail(reading, MediaReason::damaged);
        rows.take(buffer.get(), 0, y, page.width);
    }
}

/// The size of a strip or tile, and how to read one plane of it.
struct Piece {
    int width = 0;
    int height = 0;
    std::uint64_t bytes = 0;
    bool tiled = false;
};

Piece pieceOf(const TiffFile &tiff, const Page &page) {
    Piece piece;
    piece.tiled = TIFFIsTiled(tiff.get()) != 0;
    if (piece.tiled) {
        piece.width =
            static_cast<int>(std::min<std::uint32_t>(field<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH, 0), 65536));
        piece.height =
            static_cast<int>(std::min<std::uint32_t>(field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH, 0), 65536));
        piece.bytes = TIFFTileSize64(tiff.get());
    } else {
        const auto rows = field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, 0);
        piece.width = page.width;
        piece.height = static_cast<int>(std::min<std::uint32_t>(rows, static_cast<std::uint32_t>(page.height)));
        piece.bytes = TIFFStripSize64(tiff.get());
    }
    const auto wanted = static_cast<std::uint64_t>(piece.width) * static_cast<std::uint64_t>(piece.height) *
                        static_cast<std::uint64_t>(page.bits / 8 * (page.separate ? 1 : page.channels));
    if (piece.width < 1 || piece.height < 1 || piece.bytes < wanted)
        tiff.fail(reading, MediaReason::damaged);
    checkSize(tiff.file, piece.width, piece.height);
    return piece;
}

void readPiece(const TiffFile &tiff, const Piece &piece, int x, int y, int plane, void *buffer) {
    const auto column = static_cast<std::uint32_t>(x);
    const auto row = static_cast<std::uint32_t>(y);
    const auto sample = static_cast<std::uint16_t>(plane);
    const tmsize_t bytes = static_cast<tmsize_t>(piece.bytes);
    const tmsize_t got =
        piece.tiled
            ? TIFFReadEncodedTile(tiff.get(), TIFFComputeTile(tiff.get(), column, row, 0, sample), buffer, bytes)
            : TIFFReadEncodedStrip(tiff.get(), TIFFComputeStrip(tiff.get(), row, sample), buffer, bytes);
    if (got < 0)
        tiff.fail(reading, MediaReason::damaged);
}

template <typename Sample>
void interleave(const std::vector<Buffer> &planes, std::ptrdiff_t offset, int count, Sample *row) {
    const auto channels = static_cast<std::ptrdiff_t>(planes.size());
    for (std::ptrdiff_t plane = 0; plane < channels; ++plane) {
        const auto *in = reinterpret_cast<const Sample *>(planes[static_cast<std::size_t>(plane)].get()) + offset;
        for (int i = 0; i < count; ++i)
            row[i * channels + plane] = in[i];
    }
}

void readPieces(const TiffFile &tiff, const Page &page, RowTaker &rows, const Cancellation &cancellation) {
    const Piece piece = pieceOf(tiff, page);
    const int planeCount = page.separate ? page.channels : 1;
    std::vector<Buffer> planes;
    planes.reserve(static_cast<std::size_t>(planeCount));
    for (int plane = 0; plane < planeCount; ++plane)
        planes.push_back(bufferFor(tiff, piece.bytes));
    const Buffer line = bufferFor(tiff, static_cast<std::uint64_t>(piece.width) * page.channels * 2);
    const std::ptrdiff_t rowBytes = static_cast<std::ptrdiff_t>(piece.width) * page.channels * (page.bits / 8);
    for (int y = 0; y < page.height; y += piece.height)
        for (int x = 0; x < page.width; x += piece.width) {
            cancellation.check();
            for (std::size_t plane = 0; plane < planes.size(); ++plane)
                readPiece(tiff, piece, x, y, static_cast<int>(plane), planes[plane].get());
            const int count = std::min(piece.width, page.width - x);
            for (int row = 0; row < std::min(piece.height, page.height - y); ++row) {
                const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(row) * piece.width;
                const void *pixels = line.get();
                if (!page.separate)
                    pixels = reinterpret_cast<const std::uint8_t *>(planes[0].get()) + row * rowBytes;
                else if (page.bits == 8)
                    interleave(planes, first, count, reinterpret_cast<std::uint8_t *>(line.get()));
                else
                    interleave(planes, first, count, line.get());
                rows.take(pixels, x, y + row, count);
            }
        }
}

/// The number of rows of a strip or tile. Reading fewer rows would decode the whole strip each time.
int rowsAtOnce(const TiffFile &tiff, const Page &page) {
    const auto rows = TIFFIsTiled(tiff.get()) != 0 ? field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH, 0)
                                                   : field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP, 0);
    return rows == 0 ? page.height : static_cast<int>(std::min(rows, static_cast<std::uint32_t>(page.height)));
}

void scatterPacked(const std::uint32_t *row, const Picture &picture, int y) {
    std::uint8_t *planes[3] = {planeRow<std::uint8_t>(picture, 0, y), planeRow<std::uint8_t>(picture, 1, y),
                               planeRow<std::uint8_t>(picture, 2, y)};
    for (int x = 0; x < picture.width; ++x) {
        planes[0][x] = static_cast<std::uint8_t>(TIFFGetR(row[x]));
        planes[1][x] = static_cast<std::uint8_t>(TIFFGetG(row[x]));
        planes[2][x] = static_cast<std::uint8_t>(TIFFGetB(row[x]));
    }
}

/// Uses the library's conversion to 8-bit RGB for palettes, small samples and print colour spaces.
void readConverted(const TiffFile &tiff, const Page &page, const Picture &picture, const Cancellation &cancellation) {
    char reason[1024] = "";
    TIFFRGBAImage converter;
    if (TIFFRGBAImageOK(tiff.get(), reason) == 0 || TIFFRGBAImageBegin(&converter, tiff.get(), 1, reason) == 0)
        throw MediaError(tiff.file, reading, 0, MediaReason::unsupported, reason);
    const std::unique_ptr<TIFFRGBAImage, void (*)(TIFFRGBAImage *)> owner(&converter, TIFFRGBAImageEnd);
    converter.req_orientation = converter.orientation; // rows in the order of the file
    const int rows = rowsAtOnce(tiff, page);
    const std::unique_ptr<std::uint32_t[]> raster(new (std::nothrow)
                                                      std::uint32_t[static_cast<std::size_t>(page.width) * rows]);
    if (!raster)
        throw MediaError(tiff.file, reading, 0, MediaReason::noMemory);
    for (int first = 0; first < page.height; first += rows) {
        cancellation.check();
        const int count = std::min(rows, page.height - first);
        converter.row_offset = first;
        if (TIFFRGBAImageGet(&converter, raster.get(), static_cast<std::uint32_t>(page.width),
                             static_cast<std::uint32_t>(count)) == 0)
            tiff.fail(reading, MediaReason::damaged);
        for (int row = 0; row < count; ++row)
            scatterPacked(raster.get() + static_cast<std::size_t>(row) * page.width, picture, first + row);
    }
}

ImageMetadata metadataIn(const TiffFile &tiff, const InputFile &file) {
    ImageMetadata metadata;
    std::uint32_t length = 0;
    const void *data = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &length, &data) == 1) {
        const auto *bytes = static_cast<const std::uint8_t *>(data);
        metadata.iccProfile.assign(bytes, bytes + length);
    }
    if (TIFFGetField(tiff.get(), TIFFTAG_XMLPACKET, &length, &data) == 1)
        metadata.xmp.assign(static_cast<const char *>(data), length);
    metadata.exif = exifOfTiffFile(file);
    return metadata;
}

} // namespace

int tiffPageCount(const InputFile &file) {
    const TiffFile tiff(file);
    return std::max<int>(1, static_cast<int>(TIFFNumberOfDirectories(tiff.get())));
}

PixelSize tiffSize(const InputFile &file) {
    const Page page = pageOf(TiffFile(file));
    return {page.width, page.height};
}

StillImage readTiff(const InputFile &file, const Cancellation &cancellation) {
    const TiffFile tiff(file);
    const Page page = pageOf(tiff);
    const bool plain = isPlain(tiff, page);
    StillImage image;
    image.metadata = metadataIn(tiff, file);
    const bool grey = plain && page.colours == 1;
    image.picture = makeChecked(file.path(), page.width, page.height,
                                {grey ? ColourModel::grey : ColourModel::rgb, plain ? page.bits : 8, 0, 0},
                                {1, 13, grey ? 2 : 0, ColourRange::full, ChromaLocation::unspecified});
    if (plain) {
        RowTaker rows(page, image.picture, image.metadata.iccProfile);
        if (page.separate || TIFFIsTiled(tiff.get()))
            readPieces(tiff, page, rows, cancellation);
        else
            readLines(tiff, page, rows, cancellation);
    } else {
        readConverted(tiff, page, image.picture, cancellation);
    }
    if (!matchesChannels(image.metadata.iccProfile, grey ? 1 : 3))
        image.metadata.iccProfile.clear();
    return image;
}

} // namespace lumetwin::media::images
