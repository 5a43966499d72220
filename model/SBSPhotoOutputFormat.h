// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lumetwin {

/// File format of side-by-side images.
enum class SBSPhotoOutputFormat { jpg, png, tiff, heic };

inline constexpr std::array allSBSPhotoOutputFormats{SBSPhotoOutputFormat::jpg, SBSPhotoOutputFormat::png,
                                                     SBSPhotoOutputFormat::tiff, SBSPhotoOutputFormat::heic};

/// The name of the format, as in the format menu.
constexpr std::string_view rawValue(SBSPhotoOutputFormat format) {
    switch (format) {
    case SBSPhotoOutputFormat::jpg:
        return "JPEG";
    case SBSPhotoOutputFormat::png:
        return "PNG";
    case SBSPhotoOutputFormat::tiff:
        return "TIFF";
    case SBSPhotoOutputFormat::heic:
        return "HEIC";
    }
    return {};
}

/// The format with exactly that name; nullopt if there is none.
constexpr std::optional<SBSPhotoOutputFormat> sbsPhotoOutputFormat(std::string_view raw) {
    for (SBSPhotoOutputFormat format : allSBSPhotoOutputFormats)
        if (rawValue(format) == raw)
            return format;
    return std::nullopt;
}

} // namespace lumetwin
