// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/LightLevels.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumetwin::media::x265 {

/// For filmed media it needs a sixth fewer bits than the next faster preset and an eighth more time.
/// bench/spatial_video.py prints the table; bench/README.md has a copy.
inline constexpr const char *shippedPreset = "veryfast";

/// The format of a two-view stream. Sizes are even. Pictures that are too small for the encoder are padded, and cropped
/// again by the stream's conformance window.
struct StereoFormat {
    int width = 0; ///< one view
    int height = 0;
    std::int64_t averageBitRate = 0; ///< bits per second, both layers together
    int timeScale = 600;             ///< ticks per second
    std::int64_t frameDuration = 20; ///< ticks from one frame to the next
    ColourTags colour;
    std::string preset = shippedPreset;
    int depth = 8;      ///< bits per sample: 8 or 10
    LightLevels levels; ///< announced with the parameter sets

    PictureFormat pictureFormat() const { return {ColourModel::yuv, depth, 1, 1}; }
};

/// Whether the library codes two views of that depth. Asks it by opening a small encoder.
bool codesTwoViews(int depth);

/// One access unit of both layers, layer 0 first, as Annex B bytes. Times are in the caller's ticks.
struct AccessUnit {
    std::vector<std::uint8_t> bytes;
    std::int64_t time = 0;
    std::int64_t decodingTime = 0;
    std::int64_t duration = 0; ///< until the next one is decoded
    bool keyFrame = false;     ///< the picture of layer 0 is an intra random access point
};

using AccessUnitSink = std::function<void(const AccessUnit &)>;

/// Encodes two views into one multiview HEVC stream (ITU-T H.265, Annex G). Layer 0 / view 0 is the left eye; layer 1 /
/// view 1 is the right eye, predicted from the left. May be used by one thread at a time.
class StereoEncoder {
public:
    /// `file` is named in errors. Throws MediaError when the encoder does not support the format.
    StereoEncoder(const std::filesystem::path &file, const StereoFormat &format);
    ~StereoEncoder();
    StereoEncoder(const StereoEncoder &) = delete;
    StereoEncoder &operator=(const StereoEncoder &) = delete;

    /// VPS with its extension, SPS and PPS of both layers, the SEI that assigns the views to the eyes, and the light
    /// levels, in Annex B format. They belong into the sample entry: a repetition within the access units would end
    /// them.
    const std::vector<std::uint8_t> &parameterSets() const;

    /// The reordering delay in access units.
    int reordering() const;

    /// Both pictures are 4:2:0 with the size and depth of the format. Samples are copied before this returns. The
    /// duration, in ticks, is only used for the last frame; 0 means that of the format. Throws MediaError.
    void encode(const Picture &left, const Picture &right, std::int64_t time, const AccessUnitSink &sink,
                std::int64_t duration = 0);
    /// Encodes the remaining access units.
    void finish(const AccessUnitSink &sink);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media::x265
