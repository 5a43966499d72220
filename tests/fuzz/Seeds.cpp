// SPDX-License-Identifier: GPL-3.0-or-later
// Writes small well-formed files for the fuzz targets to begin with: seeds FOLDER
#include "tests/media/heif/HeifBuilder.h"
#include "tests/support/JpegBuilder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

using namespace lumetwin::test;

Bytes visualEntry(std::string_view type, const Bytes &children) {
    return box(type, joined({Bytes(78, 0), children}));
}

Bytes track(std::string_view handler, const std::vector<Bytes> &entries) {
    const Bytes table = fullBox("stsd", joined({u32(static_cast<std::uint32_t>(entries.size())), joinedAll(entries)}));
    return box("trak", box("mdia", joined({fullBox("hdlr", joined({letters("mhlr"), letters(handler), Bytes(12, 0)})),
                                           box("minf", box("stbl", table))})));
}

Bytes packedEntry() {
    const Bytes eyes = box("eyes", joined({fullBox("stri", {11}), box("pack", fullBox("pkin", letters("over")))}));
    const Bytes usage = box("vexu", joined({eyes, box("pack", fullBox("pkin", letters("side")))}));
    return visualEntry("avc1", joined({box("mvcC", Bytes(8, 1)), usage, fullBox("st3d", {2}), u32(0)}));
}

Bytes stereoEntry() {
    const Bytes eyes =
        box("eyes", joined({fullBox("stri", {3}), fullBox("hero", {1}), box("cams", fullBox("blin", u32(19240))),
                            box("cmfy", fullBox("dadj", u32(200)))}));
    const Bytes usage = box("vexu", joined({eyes, box("proj", fullBox("prji", letters("rect")))}));
    return visualEntry("hvc1", joined({box("lhvC", {1}), usage, box("hfov", u32(64000)), u32(0)}));
}

std::vector<Bytes> movies() {
    const Bytes type = box("ftyp", joined({letters("qt  "), u32(0), letters("qt  ")}));
    const Bytes stereo = track("vide", {stereoEntry()});
    const Bytes sound = track("soun", {box("mp4a", Bytes(28, 0))});
    return {joined({type, box("wide", {}), box("mdat", Bytes(8, 1)), box("moov", joined({sound, stereo}))}),
            joined({type, longBox("moov", track("vide", {visualEntry("avc1", {}), stereoEntry()})), u32(0),
                    letters("mdat")}),
            joined({type, box("moov", joined({stereo, box("mvex", fullBox("trex", Bytes(20, 0)))})),
                    box("moof", Bytes(16, 0))}),
            joined({type, box("moov", track("vide", {packedEntry()}))})};
}

/// A coding, the size of a configuration record, the record, and a sample with a frame packing message.
std::vector<Bytes> packedStreams() {
    const Bytes avcMessage{6, 45, 7, 0x81, 0x81, 0, 0, 3, 0, 1, 0x20, 0x80};
    const Bytes hevcMessage{39 << 1, 1, 45, 6, 0x81, 0x81, 0, 0, 3, 0, 3, 0x80};
    const Bytes avcSlice{0x65, 0x88, 1, 2};
    const Bytes hevcSlice{19 << 1, 1, 0x88, 1};
    const Bytes startCode{0, 0, 0, 1};
    const auto unit = [](const Bytes &bytes, int size) { return joined({number(bytes.size(), size), bytes}); };
    const Bytes avcRecord = joined({{1, 100, 0, 30, 0xFF, 0xE1}, unit({15, 118, 0, 30}, 2), {1}, unit({8, 1}, 2)});
    const Bytes hevcRecord = joined({{1}, Bytes(20, 0), {0xFD, 1, 39, 0, 1}, unit(hevcMessage, 2)});
    const auto stream = [](std::uint8_t coding, const Bytes &record, const Bytes &sample) {
        return joined({{coding, static_cast<std::uint8_t>(record.size())}, record, sample});
    };
    return {stream(0, {}, joined({startCode, avcMessage, startCode, avcSlice, startCode, {20, 0x40, 0, 1}})),
            stream(1, {}, joined({startCode, hevcMessage, startCode, hevcSlice})),
            stream(0, avcRecord, joined({unit(avcMessage, 4), unit(avcSlice, 4)})),
            stream(1, hevcRecord, joined({unit(hevcMessage, 2), unit(hevcSlice, 2)}))};
}

/// A configuration record with a sequence parameter set of 64 × 64, in front of two layers' pictures.
Bytes sequenceParameterSet() {
    return {0x42, 1, 1, 1,    0x60, 0,    0,    3,    0,    0x90, 0,    0,    3,    0,
            0,    3, 0, 0x1E, 0xA0, 0x20, 0x81, 0x05, 0x96, 0xEA, 0xAE, 0x4C, 0x92, 0xE5};
}

std::vector<Bytes> accessUnits() {
    const auto unit = [](const Bytes &bytes) { return joined({number(bytes.size(), 4), bytes}); };
    const Bytes set = sequenceParameterSet();
    const Bytes record = joined({{1}, Bytes(20, 0), {0xFF, 1, 33, 0, 1}, number(set.size(), 2), set});
    const Bytes base{19 << 1, 1, 0xAF, 1, 2, 3};
    const Bytes second{19 << 1, 1 << 3 | 1, 0xAF, 1, 2, 3};
    const Bytes sample = joined({unit({35 << 1, 1, 0x50}), unit(base), unit(second)});
    const auto size = static_cast<std::uint8_t>(record.size());
    const Bytes startCode{0, 0, 0, 1};
    return {joined({{size, 0}, record, sample}), joined({{size, size}, record, record, sample}),
            joined({{0, 0}, startCode, set, startCode, base, startCode, second})};
}

std::vector<Bytes> parameterSets() {
    const Bytes set = sequenceParameterSet();
    const Bytes record = joined({{1}, Bytes(20, 0), {0xFF, 1, 33, 0, 1}, number(set.size(), 2), set});
    return {joined({{1, 8, 8}, set}), joined({{1, 7, 5}, record}), joined({{1, 8, 8}, {0x40, 1, 0x0C, 1, 0xFF, 0xFF}})};
}

std::vector<Bytes> commandLines() {
    const Bytes end(1, 0);
    const auto line = [&](std::initializer_list<std::string_view> words) {
        Bytes bytes;
        for (const std::string_view word : words)
            bytes = joined({bytes, letters(word), end});
        return bytes;
    };
    return {
        line({"--direction", "sbsToSpatial", "--output", "/x", "--fov=63.4", "--input-layout", "overUnder", "a.mp4"}),
        line({"--direction", "spatialToSBS", "--width", "960", "--height", "1080", "--quality", "0.5", "--dry-run"}),
        line({"inspect", "--json", "a.heic", "b.mov"}), line({"completion", "zsh"}), line({"--", "-a"})};
}

/// CBOR: an answer with a size, one with progress, and a request to look.
std::vector<Bytes> messages() {
    const Bytes size = joined({{0xA2, 0x66},
                               letters("answer"),
                               {0x64},
                               letters("size"),
                               {0x64},
                               letters("size"),
                               {0xA2, 0x65},
                               letters("width"),
                               {0x18, 64, 0x66},
                               letters("height"),
                               {0x18, 48}});
    const Bytes progress = joined({{0xA3, 0x66},
                                   letters("answer"),
                                   {0x68},
                                   letters("progress"),
                                   {0x65},
                                   letters("frame"),
                                   {3, 0x66},
                                   letters("frames"),
                                   {9}});
    const Bytes look = joined({{0xA4, 0x67},
                               letters("request"),
                               {0x64},
                               letters("look"),
                               {0x64},
                               letters("kind"),
                               {0, 0x65},
                               letters("input"),
                               {0x62},
                               letters("/a"),
                               {0x68},
                               letters("language"),
                               {0x62},
                               letters("en")});
    return {size, progress, look};
}

HeifBuilder describedPair() {
    HeifBuilder heif = stereoGrids();
    heif.item(10, "Exif", true).item(11, "mime", true, "application/rdf+xml").item(12, "tmap").item(13);
    heif.refer("cdsc", 10, {3, 6})
        .refer("cdsc", 11, {3})
        .refer("dimg", 12, {6, 13})
        .refer("iloc", 11, {10})
        .refer("thmb", 13, {3});
    heif.group("altr", 30, {12, 6}).group("ster", 31, {30, 3});
    heif.itemData = letters("0123456789");
    heif.place(10, 1, 0, 8).place(11, 2, 1, 4).place(1, 0, 40, 4);
    const int first = heif.property(box("irot", u8(1)));
    heif.property(box("clap", joined({u32(9), u32(1), u32(8), u32(1), u32(0xffffffff), u32(2), u32(0), u32(2)})));
    heif.property(box("imir", u8(1)));
    heif.property(fullBox("pixi", {3, 8, 8, 8}));
    heif.property(box("colr", letters("profxx")));
    heif.property(box("colr", joined({letters("nclx"), u16(1), u16(13), u16(6), u8(0x80)})));
    heif.property(fullBox("cmin", joined({u32(1), u32(2), u32(3), u32(4), u32(5)}), 0x11a01));
    heif.property(fullBox("cmex", joined({u32(1), u32(2), u32(3), Bytes(6, 0), u32(1)}), 47));
    heif.property(fullBox("auxC", letters("urn")));
    return heif.associate(3, {first, first + 1, first + 2, first + 3, first + 4, first + 5, first + 6, first + 7})
        .associate(13, {first + 8});
}

Bytes wideTables() {
    auto children = stereoGrids().children();
    const auto entry = [](std::uint32_t id) {
        return fullBox("infe", joined({u32(id), u16(0), letters("hvc1"), u8(0)}), 3u << 24);
    };
    children[1] = fullBox("pitm", u32(70'001), 1u << 24);
    children[2] = fullBox("iinf", joined({u32(2), entry(70'000), entry(70'001)}), 1u << 24);
    children[3] = fullBox("iref", box("thmb", joined({u32(70'000), u16(1), u32(70'001)})), 1u << 24);
    children[4] =
        box("iprp", joined({box("ipco", HeifBuilder::size(8, 8)),
                            fullBox("ipma", joined({u32(1), u32(70'001), u8(1), u16(0x8001)}), 1u << 24 | 1)}));
    children[7] = fullBox("iloc",
                          joined({u16(0x8888), u32(1), u32(70'001), u16(0), u16(0), number(4, 8), u16(1), number(1, 8),
                                  number(2, 8), number(3, 8)}),
                          2u << 24);
    return HeifBuilder::fileOf(children);
}

/// A TIFF structure with a photograph's directory, its maker's note and text, big-endian.
Bytes exifBlock() {
    const auto field = [](int tag, int type, std::uint32_t count, std::uint32_t value) {
        return joined(
            {u16(static_cast<std::uint16_t>(tag)), u16(static_cast<std::uint16_t>(type)), u32(count), u32(value)});
    };
    const Bytes camera =
        joined({u16(3), field(0x010F, 2, 8, 90), field(0x8769, 4, 1, 50), field(0x8825, 4, 1, 98), u32(0)});
    const Bytes photograph = joined({u16(2), field(0x829A, 5, 1, 120), field(0x927C, 7, 10, 130), u32(0)});
    return joined({letters("MM"), u16(42), u32(8), camera, photograph, Bytes(10, 0), letters("Camera\0\0"),
                   joined({u16(1), field(1, 2, 2, 0x4E000000), u32(0)}), Bytes(30, 1)});
}

/// A packet that has something of all: both forms of properties, other quotes, comments, sections, instructions.
Bytes xmpPacket() {
    return letters("<?xpacket begin='' id='1'?><x:xmpmeta xmlns:x='adobe:ns:meta/'>"
                   "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                   "<rdf:Description xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" tiff:Orientation=\"6\" "
                   "xmlns:exif='http://ns.adobe.com/exif/1.0/' exif:PixelXDimension='9' tiff:Make='\"A\" &amp; B' "
                   "xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmlns:n='http://ns.adobe.com/xmp/note/' "
                   "n:HasExtendedXMP='0'><tiff:ImageWidth>4</tiff:ImageWidth>"
                   "<exif:PixelYDimension rdf:parseType='Resource'><rdf:value>7</rdf:value></exif:PixelYDimension>"
                   "<xmp:Thumbnails><rdf:Alt/></xmp:Thumbnails><!-- a --><![CDATA[b]]></rdf:Description>"
                   "<rdf:Description xmlns:GCamera='http://ns.google.com/photos/1.0/camera/' GCamera:MotionPhoto='1'/>"
                   "</rdf:RDF></x:xmpmeta>  <?xpacket end='w'?>");
}

Bytes packetWithExtras() {
    return letters(
        "<x xmlns:g='http://ns.adobe.com/hdr-gain-map/1.0/'><y xmlns:d=\"http://ns.google.com/photos/dd/1.0/\">"
        "<i:Semantic>Depth</i:Semantic></y></x>");
}

/// A JPEG file's segments: XMP, and a multi-picture index that names a second image with a gain map.
Bytes jpegWithExtras() {
    const auto segment = [](std::uint8_t marker, const Bytes &content) {
        return joined({u8(0xFF), u8(marker), u16(static_cast<int>(content.size() + 2)), content});
    };
    const Bytes head = joined({u8(0xFF), u8(0xD8)});
    const Bytes end = joined({u8(0xFF), u8(0xD9)});
    const Bytes packet = joined(
        {letters("http://ns.adobe.com/xap/1.0/"), u8(0), letters("<GCamera:MotionPhoto>1</GCamera:MotionPhoto>")});
    const Bytes xmp = segment(0xE1, packet);
    constexpr std::uint32_t indexSize = 8 + 2 + 12 + 4 + 32;
    const Bytes entries = joined({Bytes(16, 0), u32(0), u32(0), u32(indexSize + 2), u32(0)});
    const Bytes index =
        joined({letters("MM"), u16(42), u32(8), u16(1), u16(0xB002), u16(7), u32(32), u32(26), u32(0), entries});
    const Bytes second = segment(0xE2, joined({letters("urn:iso:std:iso:ts:21496:-1"), u8(0)}));
    return joined({head, xmp, segment(0xE2, joined({letters("MPF"), u8(0), index})), end, head, second, end});
}

/// A JPEG file's headers without samples: a frame of 4 x 3.
Bytes jpegHeaders() {
    return joined(
        {{0xFF, 0xD8}, jpegSegment(0xC0, joined({u8(8), u16(3), u16(4), u8(1), {1, 0x11, 0}})), {0xFF, 0xD9}});
}

Bytes multiPicture(bool bigEndian) {
    const TiffBuilder tiff{bigEndian};
    const std::vector<TiffField> own{tiff.fraction(0xB205, -3, 2, 10), tiff.fraction(0xB206, 77, 1000)};
    MultiPictureBuilder builder{
        tiff, {{jpegHeaders(), PicturePart::eye, 2, own}, {jpegHeaders(), PicturePart::eye, 1, own}}, 3, {}, {}};
    builder.parts.push_back({jpegHeaders(), 0x010001, {}, {}});
    return builder.file();
}

/// Exif of a lens: the focal length on film, or the resolution of the focal plane.
std::vector<Bytes> lenses() {
    const TiffBuilder tiff{true};
    const auto exif = [&](const std::vector<TiffField> &fields) {
        return tiff.structure({{tiff.longField(0x8769, 26)}, fields});
    };
    return {exif({tiff.longField(0xA405, 35)}),
            exif({tiff.fraction(0x920A, 24, 10), tiff.fraction(0xA20E, 1000, 1), tiff.longField(0xA210, 3)})};
}

std::vector<Bytes> stereoSegments() {
    const TiffBuilder tiff{false};
    const Bytes stim = stimBlock(tiff, {tiff.byteField(2, 1), tiff.fraction(18, 65, 1)});
    std::vector<Bytes> seeds = lenses();
    seeds.insert(seeds.end(), {jpsBlock(6, 2), jpsBlock(1, 3), stim, withSegment(jpegHeaders(), 0xE3, jpsBlock(4, 2)),
                               withSegment(jpegHeaders(), 0xE3, stim)});
    return seeds;
}

/// PNG chunks with stereo, Exif and XMP; only the checksum that is asked is right.
Bytes pngHeaders() {
    const auto chunk = [](std::string_view type, const Bytes &data, std::uint32_t checksum = 0) {
        return joined({u32(static_cast<std::uint32_t>(data.size())), letters(type), data, u32(checksum)});
    };
    const Bytes packet = joined({letters("XML:com.adobe.xmp"), Bytes(5, 0), letters("<a/>")});
    return joined({{0x89},
                   letters("PNG\r\n\x1A\n"),
                   chunk("IHDR", joined({u32(25), u32(9), {8, 2, 0, 0, 0}})),
                   chunk("sTER", {1}, 0xB5E4B59C),
                   chunk("eXIf", letters("II")),
                   chunk("IDAT", {}),
                   chunk("iTXt", packet),
                   chunk("IEND", {})});
}

void write(const std::filesystem::path &folder, const std::vector<Bytes> &files) {
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const Bytes &bytes : files)
        std::ofstream(folder / ("seed" + std::to_string(++number)), std::ios::binary)
            .write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

} // namespace

int main(int count, char **arguments) {
    if (count != 2) {
        std::fputs("usage: seeds FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    write(folder / "access_units", accessUnits());
    write(folder / "messages", messages());
    write(folder / "movie_facts", movies());
    write(folder / "options", commandLines());
    write(folder / "parameter_sets", parameterSets());
    write(folder / "heif_file", {stereoGrids().file(), describedPair().file(), wideTables()});
    write(folder / "jpeg_extras", {jpegWithExtras()});
    write(folder / "frame_packing", packedStreams());
    write(folder / "multi_picture", {multiPicture(false), multiPicture(true)});
    write(folder / "stereo_segments", stereoSegments());
    write(folder / "png_headers", {pngHeaders()});
    write(folder / "exif", {exifBlock()});
    write(folder / "xmp", {xmpPacket(), packetWithExtras()});
    return 0;
}
