// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string_view>

namespace lumetwin {

/// Where a file has the pictures of the two eyes.
enum class EyeArrangement {
    sideBySide,  ///< beside each other in one frame
    overUnder,   ///< above each other in one frame
    twoPictures, ///< two pictures in one photo file (Multi-Picture Format)
    twoStreams,  ///< two video streams in one file
    twoFiles,
    alternating,  ///< one after the other in one stream
    interleaved,  ///< in rows, columns, or fields of one frame
    secondUnread, ///< the second eye is coded in a way that no free decoder reads (MVC)
};

/// Who says how a file has its eyes; the first that says something is believed.
enum class LayoutSource {
    none,      ///< nobody: side by side is assumed
    container, ///< tags of the container or of the image file, or the definition of the format
    stream,    ///< messages inside the video stream (SEI)
    fileName,
    picture, ///< what the pixels look like
    user,
};

/// How a file has the pictures of the two eyes.
struct StereoLayout {
    EyeArrangement arrangement = EyeArrangement::sideBySide;
    bool isHalf = false;        ///< each eye is squeezed to half its width (over-under: height)
    bool rightEyeFirst = false; ///< the right eye is in the left half, in the upper half, or in the first picture
    LayoutSource source = LayoutSource::none;

    bool operator==(const StereoLayout &) const = default;

    /// Whether both say the same of the eyes, whoever says it.
    bool agreesWith(const StereoLayout &other) const {
        return arrangement == other.arrangement && isHalf == other.isHalf && rightEyeFirst == other.rightEyeFirst;
    }
};

inline constexpr EyeArrangement lastEyeArrangement = EyeArrangement::secondUnread;
inline constexpr LayoutSource lastLayoutSource = LayoutSource::user;

/// The stable name of an arrangement, for programs.
constexpr std::string_view rawValue(EyeArrangement arrangement) {
    constexpr std::array<std::string_view, 8> names{"sideBySide", "overUnder",   "twoPictures", "twoStreams",
                                                    "twoFiles",   "alternating", "interleaved", "secondUnread"};
    return names.at(static_cast<std::size_t>(arrangement));
}

/// The stable name of a source, for programs.
constexpr std::string_view rawValue(LayoutSource source) {
    constexpr std::array<std::string_view, 6> names{"none", "container", "stream", "fileName", "picture", "user"};
    return names.at(static_cast<std::size_t>(source));
}

} // namespace lumetwin
