// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieFile.h"
#include "media/ffmpeg/Input.h"

namespace lumetwin::media {

struct MovieFile::State {
    State(const InputFile &file, const std::function<bool()> &cancelled, VideoStream video);

    InputFile file;
    ffmpeg::Input input; ///< used only by the frame reader while there is one, because its thread changes this
    // Facts from the headers.
    std::optional<VideoTrack> videoTrack;
    std::optional<AudioTrack> audioTrack;
    OtherContents otherContents;
    double duration; ///< seconds
    MovieTags tags;
};

} // namespace lumetwin::media

namespace lumetwin::media::ffmpeg {

/// The part of the coded picture outside the sample entry's clean aperture (ISO/IEC 14496-12, 12.1.4), in pixels.
struct Cropping {
    int top = 0;
    int bottom = 0;
    int left = 0;
    int right = 0;
};

Cropping cropping(const AVCodecParameters &parameters);

/// The pixel aspect ratio of the container, otherwise of the stream. Ratios above 4 : 1 are treated as errors and
/// ignored. `ofPicture` is what a decoded picture says; it counts where only the container's headers were read.
PixelAspect pixelAspect(const AVStream &stream, AVRational ofPicture = {0, 1});

/// The video stream with this number, from 0; null where there is none. Cover pictures do not count.
const AVStream *videoStream(const AVFormatContext &input, int number);

} // namespace lumetwin::media::ffmpeg
