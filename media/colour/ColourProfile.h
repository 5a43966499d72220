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

/// The ICC profile of sRGB (IEC 61966-2-1), as this library writes it into files.
std::vector<std::uint8_t> sRGBProfile();

/// An ICC profile of an RGB space with the given chromaticities (white, red, green, blue as x, y) and a power curve.
std::vector<std::uint8_t> profileOf(const double (&white)[2], const double (&primaries)[3][2], double gamma);

/// An ICC profile for what a picture's tags say of its RGB values; empty for sRGB and where tags say nothing.
std::vector<std::uint8_t> profileOf(const ColourTags &colour);

/// Whether a profile describes RGB values that are sRGB, to within the rounding of 8-bit samples.
bool isSRGB(std::span<const std::uint8_t> profile);

/// Whether a profile is one for pictures of the given count of colour channels (1, 3, 4).
bool suits(std::span<const std::uint8_t> profile, int channels);

/// Converts a picture's samples of 8 or 16 bits through a profile to sRGB: RGB where they are, grey into a new RGB
/// picture. Throws MediaError when the profile is unusable.
Picture throughProfile(Picture picture, std::span<const std::uint8_t> profile, const std::filesystem::path &file,
                       const Cancellation &cancellation = {});

/// Converts rows of interleaved CMYK samples, 0 no ink, to interleaved sRGB of the same depth. Without a usable profile
/// inks are taken as ideal.
class CmykRows {
public:
    /// `bytesPerSample` 1 or 2; `inverted`: the rows hold 0 for full ink.
    CmykRows(std::span<const std::uint8_t> profile, int bytesPerSample, bool inverted);
    ~CmykRows();
    void convert(const void *cmyk, void *rgb, int count) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace lumetwin::media::images
