// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Cancellation.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace lumetwin::media::images {

/// The ICC profile of sRGB (IEC 61966-2-1) that we write into files.
std::vector<std::uint8_t> sRGBProfile();

/// An ICC profile of an RGB space with the given chromaticities (white, red, green, blue as x, y) and a power curve.
std::vector<std::uint8_t> profileOf(const double (&white)[2], const double (&primaries)[3][2], double gamma);

/// An ICC profile for the RGB values of a picture with these tags; empty for sRGB and unspecified tags.
std::vector<std::uint8_t> profileOf(const ColourTags &colour);

/// Whether a profile is sRGB, within the rounding of 8-bit samples.
bool isSRGB(std::span<const std::uint8_t> profile);

/// Whether a profile is for pictures with this number of colour channels (1, 3, 4).
bool matchesChannels(std::span<const std::uint8_t> profile, int channels);

/// Converts a picture with 8-bit or 16-bit samples from a profile to sRGB: RGB in place, grey into a new RGB picture.
/// Throws MediaError when the profile cannot be used.
Picture throughProfile(Picture picture, std::span<const std::uint8_t> profile, const std::filesystem::path &file,
                       const Cancellation &cancellation = {});

/// Converts rows of interleaved CMYK samples (0 is no ink) to interleaved sRGB of the same depth. Without a usable
/// profile it assumes ideal inks.
class CmykRows {
public:
    /// `bytesPerSample`: 1 or 2. `inverted`: 0 means full ink.
    CmykRows(std::span<const std::uint8_t> profile, int bytesPerSample, bool inverted);
    ~CmykRows();
    void convert(const void *cmyk, void *rgb, int count) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media::images
