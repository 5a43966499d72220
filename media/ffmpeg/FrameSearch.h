// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameReader.h"
#include "media/ffmpeg/VideoDecoder.h"
#include "media/ffmpeg/VideoPackets.h"
#include "media/ffmpeg/ViewPairing.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace lumetwin::media::ffmpeg {

/// Looks for one frame, from where the demuxer is. For one search; the functions throw MediaError.
class FrameSearch {
public:
    FrameSearch(std::filesystem::path file, AVFormatContext &input, const AVStream &stream, bool bothViews);

    struct Omissions {
        bool loopFilter = false;
        bool slowSecondView = false; ///< where its decoding, and that of the first view, take long
    };
    /// The next random access picture alone. nullopt when it cannot be decoded, or there is none.
    std::optional<Frame> randomAccessFrame(const Omissions &omitted);
    bool leftSecondViewOut() const { return leftSecondViewOut_; }

    /// Whether pictures before the wanted one that no other picture needs are decoded.
    enum class Unreferenced { leftOut, decoded };

    struct Result {
        std::optional<Frame> frame;
        /// False: the frame is later than that time, or there is none.
        bool isReached = false;
        /// True: a picture was left out that may be the wanted one; it must be searched again with all of them.
        bool isDoubtful = false;
        std::optional<std::int64_t> begin; ///< time of the random access picture from which was decoded
    };
    /// Decodes from the next random access picture to the last frame whose time is not later, or to the end, or for ten
    /// seconds of the film.
    Result frameAt(std::int64_t time, Unreferenced unreferenced);

    /// Width and height of a pixel, as the last decoded picture says; 0 : 1 where it does not.
    AVRational pixelShape() const { return pixelShape_; }

private:
    std::optional<Frame> taken(FramePointer decoded);
    /// Skips to the next random access picture; null when there is none.
    const AVPacket *nextKeyPacket();
    void open(bool bothViews);
    bool knowsUnreferenced() const;
    bool isFarEnough(const AVPacket &packet, std::int64_t begin) const;

    std::filesystem::path file_;
    AVRational tick_;
    AVCodecID codec_;
    bool bothViews_;
    double pixelsOfBothViews_ = 0;
    bool leftSecondViewOut_ = false;
    AVRational pixelShape_{0, 1};
    VideoDecoder decoder_;
    VideoPackets packets_;
    ViewPairing pairing_;
};

} // namespace lumetwin::media::ffmpeg
