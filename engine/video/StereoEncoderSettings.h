// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/stereo/StereoMetadata.h"
#include "media/MovieWriter.h"
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumetwin {

// Left eye = layer 0 = view 0, right eye = layer 1 = view 1.
inline constexpr std::array<std::int64_t, 2> MVHEVCVideoLayerIDs{0, 1};
inline constexpr std::array<std::int64_t, 2> MVHEVCViewIDs{0, 1};
inline constexpr std::array<std::int64_t, 2> MVHEVCLeftAndRightViewIDs{0, 1};

/// One entry of a settings table. The key is the name of the platform's constant.
struct EncoderProperty {
    using Value = std::variant<bool, std::int32_t, std::uint32_t, std::int64_t, std::string, std::vector<std::int64_t>,
                               std::vector<EncoderProperty>>;
    std::string key;
    Value value;

    bool operator==(const EncoderProperty &) const = default;
};

/// A settings table. Entries keep the order in which they were added.
using EncoderProperties = std::vector<EncoderProperty>;

/// The value of an entry, or nullptr when the entry is missing or its value has another type.
template <typename Value> const Value *find(const EncoderProperties &table, std::string_view key) {
    for (const EncoderProperty &property : table)
        if (property.key == key)
            return std::get_if<Value>(&property.value);
    return nullptr;
}

/// The size of one eye in the output: the resize target, or half the source (without an odd last column).
struct EyeSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
};
EyeSize eyeSize(const ConversionSettings &settings, std::int64_t sourceWidth, std::int64_t sourceHeight);

/// The average bit rate of the stream in bits per second: 0.15 bits for each pixel of one eye and frame at full
/// quality, truncated, at least 1,000,000. Ends the program when the product is out of range.
std::int64_t spatialBitRate(const EyeSize &eye, double fps, double quality);

/// The stereo metadata in the integer units of the file, truncated toward zero. Values out of range end the program.
std::uint32_t baselineInMicrometres(double millimetres);
std::uint32_t fieldOfViewInThousandths(double degrees);
std::int32_t disparityInTenThousandths(double percent);

/// What the encoder is asked for. `fps` is the rate used for encoding (30 where the source has none). Without `values`
/// the stereo values are those of the settings.
media::StereoVideoEncoding stereoVideoEncoding(const ConversionSettings &settings, const EyeSize &eye, double fps,
                                               SystemVersion system, const std::optional<StereoMetadata> &values = {});

/// The same as a table, for whoever asks for it: codec, size of one eye, and the compression properties with the stereo
/// metadata.
EncoderProperties outputSettings(const ConversionSettings &settings, const EyeSize &eye, double fps,
                                 SystemVersion system);

/// The attributes of the buffers that contain the eyes of a frame.
EncoderProperties pixelBufferAttributes(const EyeSize &eye);

} // namespace lumetwin
