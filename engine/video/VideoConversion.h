// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "engine/inspection/VideoInfo.h"
#include "engine/video/AudioCopy.h"
#include "engine/video/RangeConversion.h"
#include "engine/video/VideoTiming.h"
#include "media/MovieWriter.h"
#include "model/ConversionSettings.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace lumetwin {

/// The source of a video conversion: its facts, its time line, and its sound if it is copied.
class VideoSource {
public:
    /// Throws MediaError or ProcessorError when the file has no video.
    VideoSource(const ConversionSettings &settings, const media::InputFile &input, const ConversionControl &control);

    media::MovieFile movie;
    VideoInfo info;
    WarningList warnings;
    VideoTiming timing;
    std::optional<AudioCopy> audio;

    /// The number of frames from the container, otherwise from duration and rate; 0 when unknown.
    std::int64_t expectedFrames() const;
    /// The estimated size of the whole output, including sound, for that video bit rate.
    double estimatedBytes(std::int64_t videoBitRate) const;
    /// The frame rate for the encoder.
    double frameRate() const;
    /// The bits per sample of the output, 8 or 10; adds what is to be said about it. See outputDepth().
    int depth(BitDepth wish, int deepest, bool limitOfCodec = false);
    /// The conversion to standard range for an output of that depth, and its note. Eight bits are too few for a film of
    /// high dynamic range; and players of H.264 ignore its tags.
    RangeConversion rangeConversion(const media::LightLevels &levels, int depth, bool isH264, int width, int height);
};

/// The light levels of a film: those of its stream, otherwise those of its container. The reader has not given out a
/// frame yet.
media::LightLevels lightLevels(const VideoInfo &info, media::FrameReader &reader);

/// The average video bit rate: 0.15 bits for each pixel of each frame at full quality, truncated, at least 1 Mbit/s.
/// Computed in 64-bit floats, multiplied in the order of the arguments.
std::int64_t averageBitRate(double first, double second, double quality);

/// The pixel aspect ratio of the source. With resizing it is square, because the user gives the size on the screen.
media::PixelAspect outputPixelAspect(const ConversionSettings &settings, const VideoInfo &info);

/// Writes what a frame shows, at the time that the clock gives it; returns whether it shows anything.
using FrameWriter = std::function<bool(const media::Frame &frame, OutputClock &clock)>;

/// The names of a conversion's threads.
struct ThreadNames {
    const char *video;
    const char *audio;
};

/// Writes frame after frame, and copies the sound, beside each other on threads of the given names; waits for both;
/// then finishes the writer, or cancels it when the user asked for that. An error of the frames ends the file: the
/// writer is cancelled and the error thrown; so it is where not one frame was written. Throws the writer's failure.
Outcome runVideoConversion(VideoSource &source, media::FrameReader &reader, media::MovieWriter &writer,
                           const ThreadNames &names, const ConversionControl &control, const FrameWriter &writeFrame);

} // namespace lumetwin
