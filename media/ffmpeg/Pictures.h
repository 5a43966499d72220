// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/ffmpeg/Ffmpeg.h"

#include <optional>

namespace lumetwin::media::ffmpeg {

/// Where a picture of the frame's pixel format can be viewed as it stands, its layout; nothing for packed, semi-planar
/// and RGB formats.
std::optional<PictureFormat> planarFormat(AVPixelFormat format);

ColourTags colourTags(const AVFrame &frame);
ColourTags colourTags(const AVCodecParameters &parameters);
void setColour(AVCodecContext &codec, const ColourTags &colour);
void setColour(AVCodecParameters &parameters, const ColourTags &colour);

/// Turns decoded frames into pictures: shares their storage where the format allows, else unpacks them to the nearest
/// planar YUV format.
class PictureImporter {
public:
    Picture import(FramePointer frame);

private:
    FramePointer unpacked(const AVFrame &frame);
    Scaler scaler_;
};

/// A frame that shares an 8-bit 4:2:0 picture's storage.
FramePointer frameOf(const Picture &picture);

} // namespace lumetwin::media::ffmpeg
