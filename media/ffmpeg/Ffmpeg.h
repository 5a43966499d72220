// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Owner types for FFmpeg's objects, and conversion of its errors.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include "media/MediaError.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace lumetwin::media::ffmpeg {

struct Deleter {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(SwrContext *context) const { swr_free(&context); }
    void operator()(SwsContext *context) const { sws_freeContext(context); }
};

using Codec = std::unique_ptr<AVCodecContext, Deleter>;
using FramePointer = std::unique_ptr<AVFrame, Deleter>;
using Packet = std::unique_ptr<AVPacket, Deleter>;
using Resampler = std::unique_ptr<SwrContext, Deleter>;
using Scaler = std::unique_ptr<SwsContext, Deleter>;

FramePointer makeFrame();
Packet makePacket();
/// Whether a packet is encrypted (common encryption, ISO/IEC 23001-7).
bool isEncrypted(const AVPacket &packet);

/// FFmpeg's message for an error code.
std::string words(int code);

/// The MediaError for an FFmpeg error code, to be thrown.
MediaError error(const std::filesystem::path &file, MediaOperation operation, int code);

/// Throws MediaError when the code is an error; otherwise returns the code.
int check(int code, const std::filesystem::path &file, MediaOperation operation);

/// Gives a track the parameter sets and the like that its sample entry contains.
void setExtradata(AVCodecParameters &parameters, std::span<const std::uint8_t> bytes);

/// Creates a decoder for a stream, not yet opened. Throws MediaError when there is none.
Codec makeDecoder(const std::filesystem::path &file, const AVStream &stream);

} // namespace lumetwin::media::ffmpeg
