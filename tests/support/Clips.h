// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace lumetwin::test {

// Luma of the two halves of a drawn side-by-side frame, and of the mark in the upper left corner of each half.
inline constexpr int leftLuma = 60;
inline constexpr int rightLuma = 150;
inline constexpr int markLuma = 220;

/// A side-by-side clip to be drawn.
struct Clip {
    int width = 384; ///< of the whole frame
    int height = 96;
    int frames = 3;
    std::string rate = "30";
    std::string format = "yuv420p";
    std::string filter; ///< more filters, after the drawing
    std::vector<std::string> video{"-c:v", "libx264", "-qp", "6"};
    std::string sound; ///< an audio source of the drawing program, such as "sine=d=1"; none while empty
    std::vector<std::string> audio{"-c:a", "aac"};
    bool everyEncoder = false; ///< drawn by the distribution's ffmpeg instead of the stack's
};

/// Draws the clip: grey halves of their own luma, each with a bright mark; an odd last column is white.
std::filesystem::path draw(const std::filesystem::path &file, const Clip &clip = {});

/// Two views, the left one in layer 0, each as draw() would draw its half.
struct StereoClip {
    int width = 192; ///< of one eye
    int height = 96;
    int frames = 3;
    double rate = 30;
};

/// Writes the clip as a spatial movie.
std::filesystem::path drawStereo(const std::filesystem::path &file, const StereoClip &clip = {});

/// The movie's samples as they are in another file, written by the stack's ffmpeg with more options; its headers are
/// there once.
std::filesystem::path remuxed(const std::filesystem::path &movie, const std::filesystem::path &copy,
                              const std::vector<std::string> &options = {});

} // namespace lumetwin::test
