// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/MainFormFrames.h"

namespace lumetwin {

namespace {

constexpr double left = 20;
constexpr double sectionWidth = 680;
constexpr double gap = 14;

PointFrame section(double y, double height) {
    return {left, y, sectionWidth, height};
}

double top(const PointFrame &frame) {
    return frame.y + frame.height;
}

} // namespace

MainFormFrames mainFormFrames(ConversionDirection direction, bool enableResize) {
    MainFormFrames frames;
    frames.startButton = section(20, 48);
    frames.commonSection = section(82, enableResize ? 248 : 138);
    frames.optionsSection =
        section(top(frames.commonSection) + gap, direction == ConversionDirection::sbsToSpatial ? 160 : 180);
    frames.outputSection = section(top(frames.optionsSection) + gap, 100);
    frames.inputSection = section(frames.outputSection.y + 114, 100);
    frames.directionSection = section(frames.inputSection.y + 114, 76);
    frames.header = {0, frames.directionSection.y + 90, MainFormFrames::documentWidth, 68};
    frames.documentHeight = frames.header.y + 86;
    return frames;
}

} // namespace lumetwin
