// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/StereoEntry.h"

#include "media/bmff/BoxWriter.h"
#include "media/ffmpeg/HeaderBoxes.h"

#include <cstring>

namespace lumetwin::media::ffmpeg {

namespace {

using bmff::box;
using bmff::FieldWriter;
using bmff::fullBox;

// ISO/IEC 14496-12, 12.1.3: SampleEntry (8) and VisualSampleEntry (70) before the child boxes.
constexpr std::size_t entryFields = 78;
constexpr std::size_t vendorField = 12;
constexpr std::size_t sizeField = 24;
constexpr std::size_t compressorField = 42;
constexpr std::size_t compressorSize = 32;

constexpr std::uint8_t leftEye = 1;
constexpr std::uint8_t rightEye = 2;
constexpr std::uint8_t leftIsHero = 1;

MovieHeader joined(std::initializer_list<MovieHeader> parts) {
    FieldWriter bytes;
    for (const MovieHeader &part : parts)
        bytes.append(part);
    return bytes.bytes();
}

MovieHeader videoExtendedUsage(const StereoVideoEncoding &encoding) {
    const int eyes = (encoding.hasLeftEye ? leftEye : 0) | (encoding.hasRightEye ? rightEye : 0);
    const MovieHeader baseline = fullBox("blin", 0, FieldWriter().u32(encoding.baseline));
    const MovieHeader disparity = fullBox("dadj", 0, FieldWriter().i32(encoding.disparityAdjustment));
    FieldWriter usage;
    usage.append(box("eyes", joined({fullBox("stri", 0, FieldWriter().u8(static_cast<std::uint64_t>(eyes))),
                                     fullBox("hero", 0, FieldWriter().u8(leftIsHero)), box("cams", baseline),
                                     box("cmfy", disparity)})));
    if (encoding.rectilinear)
        usage.append(box("proj", fullBox("prji", 0, FieldWriter().text("rect"))));
    return box("vexu", usage);
}

/// Marks every array of an hvcC payload as complete (ISO/IEC 14496-15, 8.3.2.1), because samples contain no parameter
/// sets.
bool markComplete(MovieHeader &configuration) {
    constexpr std::size_t boxHeader = 8;
    constexpr std::size_t fields = 22;
    if (configuration.size() < boxHeader + fields + 1)
        return false;
    std::size_t at = boxHeader + fields;
    const int arrays = configuration[at++];
    for (int array = 0; array < arrays; ++array) {
        if (at + 3 > configuration.size())
            return false;
        configuration[at] |= 0x80;
        int units = configuration[at + 1] << 8 | configuration[at + 2];
        for (at += 3; units > 0; --units) {
            if (at + 2 > configuration.size())
                return false;
            at += 2 + static_cast<std::size_t>(configuration[at] << 8 | configuration[at + 1]);
        }
    }
    return at == configuration.size();
}

void nameCodec(MovieHeader &header, std::size_t fields) {
    std::memset(header.data() + fields + vendorField, 0, 4);
    constexpr std::string_view name = "HEVC";
    std::uint8_t *compressor = header.data() + fields + compressorField;
    std::memset(compressor, 0, compressorSize);
    compressor[0] = static_cast<std::uint8_t>(name.size());
    std::memcpy(compressor + 1, name.data(), name.size());
}

} // namespace

bool completeStereoEntry(MovieHeader &header, const StereoVideoEncoding &encoding) {
    const auto track = videoTrack(header);
    auto path = track ? descend(header, *track, {"mdia", "minf", "stbl", "stsd"}) : std::nullopt;
    // stsd is a full box with a count before its entries.
    const auto entry = path ? child(header, path->back().begin + 16, path->back().end, "hvc1") : std::nullopt;
    if (!entry || entry->end != path->back().end || entry->end - entry->begin < 8 + entryFields)
        return false;
    const std::size_t begin = entry->begin + 8 + entryFields;
    const auto taken = [&](std::string_view type) {
        const auto found = child(header, begin, entry->end, type);
        return found ? MovieHeader(header.begin() + static_cast<std::ptrdiff_t>(found->begin),
                                   header.begin() + static_cast<std::ptrdiff_t>(found->end))
                     : MovieHeader();
    };
    MovieHeader configuration = taken("hvcC");
    const MovieHeader layered = taken("lhvC");
    if (layered.empty() || !markComplete(configuration))
        return false;
    const MovieHeader boxes =
        joined({configuration, layered, taken("colr"), taken("clli"), taken("mdcv"), taken("fiel"),
                videoExtendedUsage(encoding), box("hfov", FieldWriter().u32(encoding.horizontalFieldOfView)),
                taken("pasp"), taken("clap")});
    nameCodec(header, entry->begin + 8);
    path->push_back(*entry);
    replace(header, *path, begin, entry->end, boxes);
    return true;
}

void addApertures(MovieHeader &header, int width, int height) {
    const auto track = videoTrack(header);
    const auto head = track ? child(header, track->begin + 8, track->end, "tkhd") : std::nullopt;
    const auto path = track ? descend(header, *track, {"mdia", "minf", "stbl", "stsd"}) : std::nullopt;
    if (!head || !path || child(header, track->begin + 8, track->end, "tapt"))
        return;
    const std::uint8_t *fields = header.data() + path->back().begin + 16 + 8;
    const std::uint32_t coded = get32(fields + sizeField);
    const auto shown = FieldWriter()
                           .u32(std::uint64_t{static_cast<std::uint32_t>(width)} << 16)
                           .u32(std::uint64_t{static_cast<std::uint32_t>(height)} << 16);
    const auto encoded = FieldWriter().u32(coded >> 16 << 16).u32(coded << 16);
    replace(header, {*track}, head->end, head->end,
            box("tapt", joined({fullBox("clef", 0, shown), fullBox("prof", 0, shown), fullBox("enof", 0, encoded)})));
}

} // namespace lumetwin::media::ffmpeg
