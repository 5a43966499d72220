// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/FrameTimes.h"
#include "media/ffmpeg/Input.h"

#include <filesystem>
#include <functional>

namespace lumetwin::media::ffmpeg {

/// Whether a container has no time stamps, such as a raw stream.
bool isWithoutTimes(const AVFormatContext &input);

/// Whether a container (a transport stream) is sought to a picture before which there may be no random access picture.
bool seeksToAnyPicture(const AVFormatContext &input);

/// Whether a container only numbers coded frames, so that presentation times follow only from all of them together.
bool countsAsCoded(const AVFormatContext &input);

/// The presentation times of a track's frames: from the container's index if it lists every frame, otherwise from the
/// packets of the whole file, which is read to the end without decoding. Stops early when `cancelled` returns true.
/// Throws MediaError.
FrameTimes scanFrames(const InputFile &file, const AVFormatContext &input, const AVStream &stream,
                      const std::function<bool()> &cancelled);

/// The frame rate in the stream's parameter sets (HEVC and H.264: VUI timing); 0 when there is none.
Fraction statedRate(const std::filesystem::path &file, const AVStream &stream);

} // namespace lumetwin::media::ffmpeg
