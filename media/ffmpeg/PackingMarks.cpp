// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/PackingMarks.h"

#include "media/bmff/BoxWriter.h"
#include "media/ffmpeg/HeaderBoxes.h"
#include "media/hevc/FramePackingUnit.h"

#include <cstring>
#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

using Arrangement = StereoPacking::Arrangement;

// ISO/IEC 14496-12, 12.1.3: header, SampleEntry and VisualSampleEntry before the child boxes.
constexpr std::size_t entryHeader = 8 + 78;

/// The value of `st3d`. Few programs know the one for the right eye first, and others warn of it.
std::optional<std::uint8_t> frameMode(const StereoPacking &packing) {
    if (packing.rightEyeFirst)
        return std::nullopt;
    if (packing.arrangement == Arrangement::sideBySide)
        return 2;
    return packing.arrangement == Arrangement::overUnder ? std::optional<std::uint8_t>(1) : std::nullopt;
}

/// StereoMode (RFC 9559, 5.1.4.1.28.3) by the muxer's names; nullptr where there is none.
const char *stereoMode(const StereoPacking &packing) {
    if (packing.arrangement == Arrangement::sideBySide)
        return packing.rightEyeFirst ? "right_left" : "left_right";
    if (packing.arrangement == Arrangement::overUnder)
        return packing.rightEyeFirst ? "bottom_top" : "top_bottom";
    return nullptr;
}

} // namespace

void markPacket(AVPacket &packet, const StereoPacking &packing, hevc::Coding coding) {
    std::vector<std::uint8_t> added;
    hevc::appendAnnexB(added, hevc::framePackingUnit(packing, coding));
    const auto size = static_cast<std::size_t>(packet.size);
    const std::size_t place = hevc::beforeFirstSlice({packet.data, size}, coding);
    if (av_grow_packet(&packet, static_cast<int>(added.size())) < 0 || av_packet_make_writable(&packet) < 0)
        throw std::bad_alloc();
    std::memmove(packet.data + place + added.size(), packet.data + place, size - place);
    std::memcpy(packet.data + place, added.data(), added.size());
}

void markStream(AVStream &stream, const StereoPacking &packing) {
    const char *mode = stereoMode(packing);
    if (!mode)
        return;
    if (av_dict_set(&stream.metadata, "stereo_mode", mode, 0) < 0)
        throw std::bad_alloc();
    if (!packing.isHalf)
        return;
    const AVRational aspect = stream.sample_aspect_ratio.num > 0 ? stream.sample_aspect_ratio : AVRational{1, 1};
    const bool isOverUnder = packing.arrangement == Arrangement::overUnder;
    stream.sample_aspect_ratio = av_mul_q(aspect, isOverUnder ? AVRational{1, 2} : AVRational{2, 1});
    stream.codecpar->sample_aspect_ratio = stream.sample_aspect_ratio;
}

void markTrack(MovieHeader &header, const StereoPacking &packing) {
    const auto mode = frameMode(packing);
    const auto track = videoTrack(header);
    auto path = track ? descend(header, *track, {"mdia", "minf", "stbl", "stsd"}) : std::nullopt;
    // stsd is a full box with a count before its entries.
    const std::size_t begin = path ? path->back().begin + 16 : 0;
    if (!mode || !path || begin + entryHeader + 8 > path->back().end)
        return;
    const std::size_t end = begin + get32(header.data() + begin);
    const std::size_t configuration = begin + entryHeader;
    const std::size_t place = configuration + get32(header.data() + configuration);
    if (place > end || end > path->back().end)
        return;
    path->push_back({begin, end});
    replace(header, *path, place, place, bmff::fullBox("st3d", 0, bmff::FieldWriter().u8(*mode)));
}

} // namespace lumetwin::media::ffmpeg
