// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lumetwin {

/// Container and codec of side-by-side video.
enum class SBSOutputFormat { mp4H264, mp4H265, movHEVC, mkvH264, mkvH265 };

inline constexpr std::array allSBSOutputFormats{SBSOutputFormat::mp4H264, SBSOutputFormat::mp4H265,
                                                SBSOutputFormat::movHEVC, SBSOutputFormat::mkvH264,
                                                SBSOutputFormat::mkvH265};

/// The name of the format, as in the format menu.
constexpr std::string_view rawValue(SBSOutputFormat format) {
    switch (format) {
    case SBSOutputFormat::mp4H264:
        return "MP4 (H.264)";
    case SBSOutputFormat::mp4H265:
        return "MP4 (H.265/HEVC)";
    case SBSOutputFormat::movHEVC:
        return "MOV (HEVC)";
    case SBSOutputFormat::mkvH264:
        return "MKV (H.264)";
    case SBSOutputFormat::mkvH265:
        return "MKV (H.265/HEVC)";
    }
    return {};
}

/// The format with exactly that name; nullopt if there is none.
constexpr std::optional<SBSOutputFormat> sbsOutputFormat(std::string_view raw) {
    for (SBSOutputFormat format : allSBSOutputFormats)
        if (rawValue(format) == raw)
            return format;
    return std::nullopt;
}

} // namespace lumetwin
