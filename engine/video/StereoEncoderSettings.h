// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/MovieWriter.h"
#include "model/ConversionSettings.h"
#include "model/SystemVersion.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumetwin {

// Left eye = layer 0 = view 0, right eye = layer 1 = view 1.
inline constexpr std::array<std::int64_t, 2> MVHEVCVideoLayerIDs{0, 1};
inline constexpr std::array<std::int64_t, 2> MVHEVCViewIDs{0, 1};
inline constexpr std::array<std::int64_t, 2> MVHEVCLeftAndRightViewIDs{0, 1};

/// One entry of a settings table, under the name of its platform constant.
struct EncoderProperty {
    using Value = std::variant<bool, std::int32_t, std::uint32_t, std::int64_t, std::string, std::vector<std::int64_t>,
                               std::vector<EncoderProperty>>;
    std::string key;
    Value value;

    bool operator==(const EncoderProperty &) const = default;
};

/// A settings table in the order in which its entries are added.
using EncoderProperties = std::vector<EncoderProperty>;

/// The entry's value; nullptr where the table has no such entry or another type of value.
template <typename Value> const Value *find(const EncoderProperties &table, std::string_view key) {
    for (const EncoderProperty &property : table)
        if (property.key == key)
            return std::get_if<Value>(&property.value);
    return nullptr;
}

/// Size of one eye in the output: the resize target as it stands, or half the source (an odd last column is lost).
struct EyeSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
};
EyeSize eyeSize(const ConversionSettings &settings, std::int64_t sourceWidth, std::int64_t sourceHeight);

/// Average bit rate of the stream, bits per second: 0.15 bits for each pixel of one eye and frame at full quality,
/// truncated, at least 1,000,000. A product out of range stops the program.
std::int64_t spatialBitRate(const EyeSize &eye, double fps, double quality);

/// The stereo metadata in the file's integer units, truncated toward zero. Values out of range stop the program.
std::uint32_t baselineInMicrometres(double millimetres);
std::uint32_t fieldOfViewInThousandths(double degrees);
std::int32_t disparityInTenThousandths(double percent);

/// What the encoder is asked for. `fps` is the rate used for encoding (30 where the source has none).
media::StereoVideoEncoding stereoVideoEncoding(const ConversionSettings &settings, const EyeSize &eye, double fps,
                                               SystemVersion system);

/// The same as a table, for whoever asks for it: codec, size of one eye, and the compression properties with the stereo
/// metadata.
EncoderProperties outputSettings(const ConversionSettings &settings, const EyeSize &eye, double fps,
                                 SystemVersion system);

/// The buffers that the eyes of a frame are handed over in.
EncoderProperties pixelBufferAttributes(const EyeSize &eye);

} // namespace lumetwin
