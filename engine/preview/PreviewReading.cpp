// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewReading.h"

#include "engine/preview/PreviewSize.h"
#include "media/MediaError.h"
#include "media/MemoryFile.h"

#include <new>
#include <utility>

namespace lumetwin {

namespace {

PreviewPicture readPicture(const PreviewSize &size, std::uint64_t place, const media::OutputFile &pixels) {
    std::vector<std::uint8_t> bytes(size.bytes());
    if (pixels.readAt(place, bytes) != bytes.size())
        throw media::MediaError(pixels.path(), media::MediaOperation::read, 0, media::MediaReason::endsEarly);
    return {size.width, size.height, std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes))};
}

} // namespace

media::OutputFile pixelFile(const PreviewRequest &request, const std::filesystem::path &input) {
    return media::makeMemoryFile(2 * previewLimits(request).bytes(), input);
}

StereoPreview readPixels(const PreviewFacts &facts, const PreviewRequest &request, const media::OutputFile &pixels) {
    const PreviewSize limits = previewLimits(request);
    const PreviewSize size{facts.width, facts.height};
    if (size.width < 1 || size.height < 1 || size.width > limits.width || size.height > limits.height)
        throw media::MediaError(pixels.path(), media::MediaOperation::read, 0,
                                media::MediaReason::contradictoryParameters);
    if (pixels.size() < size.bytes() * (facts.hasBothEyes ? 2 : 1))
        throw media::MediaError(pixels.path(), media::MediaOperation::read, 0, media::MediaReason::endsEarly);
    StereoPreview preview;
    static_cast<PreviewFacts &>(preview) = facts;
    preview.left = readPicture(size, 0, pixels);
    if (facts.hasBothEyes)
        preview.right = readPicture(size, size.bytes(), pixels);
    return preview;
}

} // namespace lumetwin
