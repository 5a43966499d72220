// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/preview/PreviewDrawing.h"

#include "engine/inspection/MediaKinds.h"
#include "engine/preview/PreviewPixels.h"
#include "engine/preview/PreviewSize.h"
#include "engine/preview/PreviewSource.h"
#include "media/Memory.h"

#include <future>
#include <optional>

namespace lumetwin {

namespace {

PreviewFacts draw(const PreviewSource &source, const PreviewRequest &request, const std::filesystem::path &file,
                  const media::OutputFile &pixels) {
    PreviewFacts facts = source.facts;
    const PreviewSize limits = previewLimits(request);
    const PreviewSize size = fittedPreview(static_cast<double>(facts.eyeWidth), static_cast<double>(facts.eyeHeight),
                                           facts.pixelAspect, limits.width, limits.height);
    facts.width = size.width;
    facts.height = size.height;
    facts.hasBothEyes = source.right.has_value();
    std::future<std::vector<std::uint8_t>> right;
    if (source.right && !facts.isFlat)
        right = std::async(std::launch::async, [&] { return previewPixels(*source.right, size, file); });
    const std::vector<std::uint8_t> left = previewPixels(source.left, size, file);
    pixels.writeAt(0, left);
    if (source.right)
        pixels.writeAt(size.bytes(), facts.isFlat ? left : right.get());
    return facts;
}

} // namespace

PreviewFacts drawPreview(const ConversionInput &input, const PreviewRequest &request, const media::OutputFile &pixels) {
    const media::LargeBlockScope memory;
    const PreviewSource source = isPhotoFile(input.path()) ? photoSource(input, request) : filmSource(input, request);
    return draw(source, request, input.path(), pixels);
}

} // namespace lumetwin
