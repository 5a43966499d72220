// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/MediaOperations.h"

#include "engine/ConversionInput.h"
#include "engine/inspection/Inspection.h"
#include "engine/inspection/LayoutInspection.h"
#include "engine/inspection/StereoCheck.h"
#include "engine/photo/SBSImageToSpatial.h"
#include "engine/photo/SpatialPhotoToSBS.h"
#include "engine/preview/PreviewDrawing.h"
#include "engine/preview/PreviewReading.h"
#include "engine/stereo/SourceLayout.h"
#include "engine/video/SBSVideoToSpatial.h"
#include "engine/video/SpatialVideoToSBS.h"
#include "media/InputFile.h"

#include <stdexcept>

namespace lumetwin {

namespace {

ConversionInput opened(const InputPaths &files) {
    ConversionInput input{media::InputFile(files.file)};
    if (!files.rightEye.empty())
        input.rightEye.emplace(files.rightEye);
    return input;
}

} // namespace

const MediaOperations::Converter &MediaOperations::converter(ConversionKind kind) const {
    switch (kind) {
    case ConversionKind::spatialVideoToSBS:
        return convertSpatialVideoToSBS;
    case ConversionKind::sbsVideoToSpatial:
        return convertSBSVideoToSpatial;
    case ConversionKind::spatialPhotoToSBS:
        return convertSpatialPhotoToSBS;
    case ConversionKind::sbsImageToSpatial:
        return convertSBSImageToSpatial;
    }
    throw std::logic_error("an unknown conversion");
}

MediaFacts MediaOperations::lookAtFile(const std::filesystem::path &file) const {
    return look(media::InputFile(file));
}

MediaFacts MediaOperations::lookCloselyAt(const InputPaths &files) const {
    return lookClosely(opened(files));
}

StereoFindings MediaOperations::examineAt(const InputPaths &files, const StereoLayout &layout) const {
    return examine(opened(files), layout);
}

CloseInspection MediaOperations::inspectClosely(const std::filesystem::path &file) const {
    const ConversionInput input{media::InputFile(file)};
    CloseInspection inspection{.facts = lookClosely(input), .layout = {}, .findings = {}};
    if (inspection.facts.isSpatial)
        return inspection;
    inspection.layout = sourceLayout(InputLayout::automatic, inspection.facts);
    try {
        inspection.findings = examine(input, inspection.layout);
    } catch (const std::exception &) {
        return inspection; // no picture, no findings
    }
    return inspection;
}

FileInspection MediaOperations::inspectFile(const std::filesystem::path &file) const {
    const media::InputFile opened(file);
    FileInspection inspection{.facts = look(opened), .size = {}, .failure = {}};
    if (inspection.facts.isSpatial)
        return inspection;
    try {
        inspection.size = measure(opened);
    } catch (...) {
        inspection.failure = std::current_exception();
    }
    return inspection;
}

StereoPreview MediaOperations::preview(const ConversionInput &input, const PreviewRequest &request) const {
    const media::OutputFile pixels = pixelFile(request, input.path());
    return readPixels(drawPreview(input, request, pixels), request, pixels);
}

StereoPreview MediaOperations::preview(const std::filesystem::path &file, const PreviewRequest &request) const {
    return preview(ConversionInput{media::InputFile(file)}, request);
}

StereoPreview MediaOperations::preview(const InputPaths &files, const PreviewRequest &request) const {
    return preview(opened(files), request);
}

MediaOperations MediaOperations::inProcess() {
    return {.look = lumetwin::lookAt,
            .lookClosely = lumetwin::lookClosely,
            .examine = lumetwin::examine,
            .measure = lumetwin::pictureSize,
            .drawPreview = lumetwin::drawPreview,
            .convertSpatialVideoToSBS = lumetwin::convertSpatialVideoToSBS,
            .convertSBSVideoToSpatial = lumetwin::convertSBSVideoToSpatial,
            .convertSpatialPhotoToSBS = lumetwin::convertSpatialPhotoToSBS,
            .convertSBSImageToSpatial = lumetwin::convertSBSImageToSpatial};
}

} // namespace lumetwin
