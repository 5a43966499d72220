// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/MovieCompletion.h"

#include "media/MediaError.h"
#include "media/ffmpeg/MovieHeader.h"
#include "media/ffmpeg/PackingMarks.h"
#include "media/ffmpeg/StereoEntry.h"

#include <algorithm>
#include <cstdint>

namespace lumetwin::media::ffmpeg {

namespace {

constexpr std::int64_t largestShownSide = 65535; // of what a header shows

} // namespace

void MovieCompletion::showPictures(int width, int height, PixelAspect aspect) {
    const std::int64_t shownWidth = std::int64_t{width} * aspect.width / aspect.height;
    shown_ = Size{static_cast<int>(std::clamp<std::int64_t>(shownWidth, 1, largestShownSide)), height};
}

void MovieCompletion::apply(const OutputFile &file) const {
    editMovieHeader(file, [&](MovieHeader &header) {
        completeEditLists(header);
        removeFragmentDefaults(header);
        if (shown_)
            setPresentationSize(header, shown_->width, shown_->height);
        if (stereo_ && !completeStereoEntry(header, *stereo_))
            throw MediaError(file.path(), MediaOperation::write, 0, MediaReason::stereoTrackNotFound);
        if (stereo_ && shown_)
            addApertures(header, shown_->width, shown_->height);
        if (packing_)
            markTrack(header, *packing_);
        addMetadata(header, metadataItems(tags_));
    });
}

} // namespace lumetwin::media::ffmpeg
