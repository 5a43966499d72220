// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameTimes.h"
#include "media/ffmpeg/Input.h"

#include <filesystem>
#include <functional>

namespace lumetwin::media::ffmpeg {

/// Whether a container has no times of its own, like raw streams.
bool isWithoutTimes(const AVFormatContext &input);

/// Whether a container counts frames as they are coded, so that only all its times together tell when frames are shown.
bool countsAsCoded(const AVFormatContext &input);

/// When a track's frames are shown: from the container's index where it lists every frame, else from the packets of the
/// whole file, which is read through (nothing is decoded). Ends early once `cancelled` says so. Throws MediaError.
FrameTimes scanFrames(const InputFile &file, const AVFormatContext &input, const AVStream &stream,
                      const std::function<bool()> &cancelled);

/// The rate that the stream's own parameter sets state (HEVC and H.264: VUI timing); nothing where they do not.
Fraction statedRate(const std::filesystem::path &file, const AVStream &stream);

} // namespace lumetwin::media::ffmpeg
