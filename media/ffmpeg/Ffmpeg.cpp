// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/Ffmpeg.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cerrno>
#include <new>

namespace lumetwin::media::ffmpeg {

namespace {

// The largest single allocation. For comparison: an 8192 × 8192 frame with 16 bits needs 384 MiB.
constexpr std::size_t largestAllocation = std::size_t{1} << 30;

// FFmpeg's own error codes are made of four characters; smaller numbers are errno values.
constexpr int largestSystemNumber = 4096;

// Failures are returned as errors. The decoders' messages about damaged frames should not appear on the user's
// terminal.
[[maybe_unused]] const bool configured = [] {
    av_log_set_level(AV_LOG_QUIET);
    av_max_alloc(largestAllocation);
    return true;
}();

} // namespace

FramePointer makeFrame() {
    FramePointer frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

Packet makePacket() {
    Packet packet(av_packet_alloc());
    if (!packet)
        throw std::bad_alloc();
    return packet;
}

bool isEncrypted(const AVPacket &packet) {
    return av_packet_get_side_data(&packet, AV_PKT_DATA_ENCRYPTION_INFO, nullptr) != nullptr;
}

std::string words(int code) {
    char buffer[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, buffer, sizeof buffer);
    return buffer;
}

MediaError error(const std::filesystem::path &file, MediaOperation operation, int code) {
    const bool ofSystem = code > -largestSystemNumber;
    if (ofSystem && systemReason(AVUNERROR(code)) != MediaReason::other)
        return MediaError::ofSystem(file, operation, AVUNERROR(code));
    if (code == AVERROR_INVALIDDATA)
        return MediaError(file, operation, code, MediaReason::damaged, words(code));
    return MediaError(file, operation, code, words(code));
}

int check(int code, const std::filesystem::path &file, MediaOperation operation) {
    if (code < 0)
        throw error(file, operation, code);
    return code;
}

void setExtradata(AVCodecParameters &parameters, std::span<const std::uint8_t> bytes) {
    auto *copy = static_cast<std::uint8_t *>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!copy)
        throw std::bad_alloc();
    std::ranges::copy(bytes, copy);
    av_freep(&parameters.extradata);
    parameters.extradata = copy;
    parameters.extradata_size = static_cast<int>(bytes.size());
}

Codec makeDecoder(const std::filesystem::path &file, const AVStream &stream) {
    const AVCodecParameters &parameters = *stream.codecpar;
    const AVCodec *decoder = avcodec_find_decoder(parameters.codec_id);
    if (!decoder)
        throw MediaError(file, MediaOperation::decode, AVERROR_DECODER_NOT_FOUND, MediaReason::noDecoder,
                         avcodec_get_name(parameters.codec_id));
    Codec codec(avcodec_alloc_context3(decoder));
    if (!codec)
        throw std::bad_alloc();
    check(avcodec_parameters_to_context(codec.get(), &parameters), file, MediaOperation::decode);
    codec->pkt_timebase = stream.time_base;
    return codec;
}

} // namespace lumetwin::media::ffmpeg
