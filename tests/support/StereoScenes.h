// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/EyePair.h"
#include "media/Picture.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace lumetwin::test {

/// A room that two eyes look into: a wall, a floor in front of it, and things that stand on the floor, all with their
/// own texture. Disparities are in percent of the width of an eye; positive: behind the screen.
struct StereoScene {
    int width = 640; ///< of one eye
    int height = 360;
    double far = 1.0;   ///< disparity of the wall
    double near = -0.8; ///< disparity of the floor at the lower edge
    int things = 7;
    bool isHanging = false; ///< the floor is a ceiling, and the things hang from it
    double lower = 0;       ///< how much lower the right eye's picture is, in percent of the width
    double turn = 0;        ///< degrees by which the right eye is turned
    double noise = 1.5;     ///< standard deviation of each eye's own noise
    unsigned seed = 1;
};

/// Grey pictures with 8 bits.
media::EyePair<media::Picture> drawnEyes(const StereoScene &scene = {});

/// Both pictures in one.
media::Picture besideEachOther(const media::EyePair<media::Picture> &eyes);
media::Picture aboveEachOther(const media::EyePair<media::Picture> &eyes);

/// A grey picture of the wall alone: textured, but no two eyes.
media::Picture drawnTexture(int width, int height, unsigned seed = 1);

/// Writes a grey picture with ImageMagick, in the format of the file's extension.
void writePicture(const media::Picture &picture, const std::filesystem::path &file);
/// Writes a film of grey pictures of one size, 30 a second. `options` are those of the program's output.
void writeFilm(std::span<const media::Picture> pictures, const std::filesystem::path &file,
               const std::vector<std::string> &options = {"-c:v", "libx264", "-qp", "12", "-g", "1"});

} // namespace lumetwin::test
