// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieReader.h"
#include "model/SystemVersion.h"

#include <filesystem>
#include <optional>

namespace lumetwin {

/// Stereo values in the form's units; absent where the file does not carry them.
struct StereoValues {
    std::optional<double> horizontalFOV;  ///< degrees
    std::optional<double> stereoBaseline; ///< millimetres
    std::optional<double> disparity;      ///< percent of the image width
};

/// Whether a photo holds a stereo pair. Never throws: what cannot be read is not spatial.
bool isSpatialPhoto(const std::filesystem::path &file) noexcept;

/// Whether a movie's first video track announces a stereo camera baseline. Never throws.
bool isSpatialVideo(const std::filesystem::path &file, SystemVersion system = SystemVersion::current()) noexcept;

StereoValues photoStereoValues(const std::filesystem::path &file) noexcept;
StereoValues videoStereoValues(const std::filesystem::path &file,
                               SystemVersion system = SystemVersion::current()) noexcept;

/// The basic facts that the converters size their output and progress by.
struct VideoInfo {
    media::VideoTrack track;
    std::int64_t width = 0; ///< natural width, truncated; no rotation applied
    std::int64_t height = 0;
    float fps = 0;       ///< nominal frame rate, 0 when unknown
    double duration = 0; ///< seconds
};

/// The facts of a track of a movie of that duration (seconds).
VideoInfo videoInfo(const media::VideoTrack &track, double duration);

/// Those of a movie's first video track. Throws ProcessorError with "error.no.video.track" when there is no video.
VideoInfo loadVideoInfo(const media::MovieFile &movie);

} // namespace lumetwin
