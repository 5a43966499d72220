// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Picture.h"
#include "media/ffmpeg/Ffmpeg.h"

#include <optional>

namespace lumetwin::media::ffmpeg {

/// The picture format for a pixel format that can be used without conversion; nullopt for packed, semi-planar and RGB
/// formats.
std::optional<PictureFormat> planarFormat(AVPixelFormat format);

/// The format in which PictureImporter gives pictures of this pixel format.
PictureFormat importedFormat(AVPixelFormat format);

/// The pixel format of pictures for an encoder: 4:2:0 of 8 or 10 bits.
AVPixelFormat pixelFormat(const PictureFormat &format);

ColourTags colourTags(const AVFrame &frame);
ColourTags colourTags(const AVCodecParameters &parameters);
void setColour(AVCodecContext &codec, const ColourTags &colour);
void setColour(AVCodecParameters &parameters, const ColourTags &colour);

/// Converts decoded frames to pictures. Shares their storage if the format allows it; otherwise unpacks them to the
/// nearest planar YUV format.
class PictureImporter {
public:
    Picture import(FramePointer frame);

private:
    FramePointer unpacked(const AVFrame &frame);
    Scaler scaler_;
};

/// A frame that shares the storage of a 4:2:0 picture of 8 or 10 bits.
FramePointer frameOf(const Picture &picture);

} // namespace lumetwin::media::ffmpeg
