// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/ViewPairing.h"

#include "media/ffmpeg/LightLevelData.h"

extern "C" {
#include <libavutil/stereo3d.h>
}

#include <utility>

namespace lumetwin::media::ffmpeg {

namespace {

StereoView viewOf(const AVFrame &frame) {
    const AVFrameSideData *data = av_frame_get_side_data(&frame, AV_FRAME_DATA_STEREO3D);
    if (!data)
        return StereoView::none;
    switch (reinterpret_cast<const AVStereo3D *>(data->data)->view) {
    case AV_STEREO3D_VIEW_LEFT:
        return StereoView::left;
    case AV_STEREO3D_VIEW_RIGHT:
        return StereoView::right;
    default:
        return StereoView::none;
    }
}

int viewId(const AVFrame &frame) {
    const AVFrameSideData *data = av_frame_get_side_data(&frame, AV_FRAME_DATA_VIEW_ID);
    return data ? *reinterpret_cast<const int *>(data->data) : 0;
}

/// The views of a stream without a reference displays message: by convention the first is the left one.
StereoView viewOrConvention(const AVFrame &frame, bool bothViews) {
    const StereoView view = viewOf(frame);
    if (view != StereoView::none || !bothViews || !av_frame_get_side_data(&frame, AV_FRAME_DATA_VIEW_ID))
        return view;
    return viewId(frame) == 0 ? StereoView::left : StereoView::right;
}

} // namespace

std::optional<Frame> ViewPairing::take(FramePointer decoded) {
    const std::int64_t time = decoded->pts;
    const std::int64_t duration = decoded->duration;
    const std::int64_t shown = time != AV_NOPTS_VALUE ? time : decoded->best_effort_timestamp;
    const int view = viewId(*decoded);
    const LightLevels levels = lightLevels(*decoded);
    TaggedPicture tagged;
    tagged.view = viewOrConvention(*decoded, bothViews_);
    tagged.picture = cropToAperture(importer_.import(std::move(decoded)));
    if (pending_ && pending_->count == 1 && pendingTime_ == time && pendingView_ != view) {
        pending_->pictures[1] = std::move(tagged);
        pending_->count = 2;
        return std::nullopt;
    }
    Frame begun;
    begun.pictures[0] = std::move(tagged);
    begun.count = 1;
    if (shown != AV_NOPTS_VALUE)
        begun.time = shown;
    begun.duration = duration;
    begun.levels = levels;
    pendingTime_ = time;
    pendingView_ = view;
    return std::exchange(pending_, std::move(begun));
}

std::optional<Frame> ViewPairing::finish() {
    return std::exchange(pending_, std::nullopt);
}

Picture ViewPairing::cropToAperture(Picture picture) const {
    const int left = cropping_.left >> picture.format.chromaShiftX << picture.format.chromaShiftX;
    const int top = cropping_.top >> picture.format.chromaShiftY << picture.format.chromaShiftY;
    const int width = picture.width - cropping_.left - cropping_.right;
    const int height = picture.height - cropping_.top - cropping_.bottom;
    if (width < 1 || height < 1 || (width == picture.width && height == picture.height))
        return picture;
    return cropped(picture, left, top, width, height);
}

} // namespace lumetwin::media::ffmpeg
