// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AudioCopy.h"
#include "engine/ConversionControl.h"
#include "engine/Inspection.h"
#include "media/MovieWriter.h"
#include "model/ConversionSettings.h"

#include <functional>
#include <optional>

namespace lumetwin {

/// Output times are in 1/600 s.
inline constexpr int videoTimeScale = 600;

/// The regenerated time line of one file: a constant rate, whatever the source's own times are.
struct VideoTiming {
    double rate = 30;               ///< the source's nominal rate, 30 when it has none
    std::int64_t frameDuration = 0; ///< in 1/600 s: 600 / rate, truncated
    std::int64_t totalFrames = 0;   ///< duration × nominal rate, truncated; 0 when unknown
};

VideoTiming videoTiming(const VideoInfo &info);

/// 0.15 bits for each pixel of each frame at full quality, truncated, and never below 1 Mbit/s. `pixels` as a
/// 64-bit float; multiplied in the order of the arguments.
std::int64_t averageBitRate(double first, double second, double quality);

/// That of the source; who asks for a size means it as it is shown.
media::PixelAspect outputPixelAspect(const ConversionSettings &settings, const VideoInfo &info);

/// Runs the frame loop and the audio copy beside each other on threads of the given names and waits for both; then
/// finishes the writer, or cancels it when the user asked for that. An error of the frame loop ends the file: the
/// writer is cancelled and the error thrown. Throws the writer's failure.
void runVideoConversion(const ConversionControl &control, media::MovieWriter &writer, std::optional<AudioCopy> &audio,
                        const char *videoQueue, const char *audioQueue, const std::function<void()> &frameLoop);

/// After the last frame: throws when not one was written; warns with the counts when data was damaged or missing.
void checkWrittenFrames(const media::MovieFile &movie, const VideoInfo &info, const media::FrameReader &reader,
                        std::int64_t written, const ConversionControl &control);

} // namespace lumetwin
