// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/inspection/Inspection.h"

#include "media/StereoMovieFacts.h"

namespace lumetwin {

namespace {

// The first system that knows stereo movies.
constexpr SystemVersion stereoMovies{14, 0, 0};

template <typename Integer> std::optional<double> scaled(const std::optional<Integer> &value, double unit) {
    return value ? std::optional(*value / unit) : std::nullopt;
}

} // namespace

bool isSpatialVideo(const std::filesystem::path &file, SystemVersion system) noexcept {
    const media::StereoMovieFacts facts = media::readStereoMovieFacts(file);
    return facts.hasVideoTrack && facts.hasSampleDescription && system >= stereoMovies && facts.anyBaseline;
}

StereoValues videoStereoValues(const std::filesystem::path &file, SystemVersion system) noexcept {
    if (system < stereoMovies)
        return {};
    const media::StereoMovieFacts facts = media::readStereoMovieFacts(file);
    return {scaled(facts.horizontalFieldOfView, 1000.0), scaled(facts.baseline, 1000.0),
            scaled(facts.disparityAdjustment, 100.0)};
}

} // namespace lumetwin
