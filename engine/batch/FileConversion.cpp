// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/batch/FileConversion.h"

#include "engine/photo/SpatialPhotoError.h"
#include "engine/texts/FileNames.h"
#include "engine/texts/MediaErrorTexts.h"
#include "engine/texts/ProcessorError.h"
#include "media/MediaError.h"
#include "media/PartialFile.h"

namespace lumetwin {
namespace {

using Path = std::filesystem::path;

Path placeOf(ConversionKind kind, Path output) {
    if (kind == ConversionKind::sbsVideoToSpatial)
        output.replace_extension("mov");
    if (kind == ConversionKind::sbsImageToSpatial)
        output.replace_extension("heic");
    return output;
}

/// Runs a step of a conversion. Each kind of conversion has its own error for it.
template <typename Step, typename Photo, typename Spatial>
auto saying(ConversionKind kind, const Step &step, const Photo &ofPhoto, const Spatial &ofSpatialPhoto) {
    try {
        return step();
    } catch (const media::MediaError &error) {
        if (kind == ConversionKind::spatialPhotoToSBS)
            throw ofPhoto(causeOf(error));
        if (kind == ConversionKind::sbsImageToSpatial)
            throw ofSpatialPhoto(causeOf(error));
        throw;
    }
}

} // namespace

media::InputFile openInput(ConversionKind kind, const Path &file) {
    return saying(
        kind, [&] { return media::InputFile(file); },
        [&](const Words &cause) { return SpatialPhotoError::cannotOpenFile(file, cause); },
        [&](const Words &cause) {
            return processorError(withCause(words("error.photo.cannot.open.format", lastPathComponent(file)), cause));
        });
}

FileConversion::FileConversion(ConversionKind kind, const Path &output)
    : kind_(kind), output_(placeOf(kind, output)),
      partial_(saying(
          kind, [&] { return std::make_unique<media::PartialFile>(output_); },
          [&](const Words &cause) {
              return processorError(
                  withCause(words("error.photo.no.destination.format", lastPathComponent(output_)), cause));
          },
          [&](const Words &cause) { return SpatialPhotoError::cannotCreateDestination(output_, cause); })) {}

FileConversion::~FileConversion() = default;

Outcome FileConversion::run(const MediaOperations &operations, const ConversionSettings &settings,
                            const ConversionInput &input, const ConversionControl &control, SystemVersion system) {
    Outcome outcome = operations.converter(kind_)(settings, input, partial_->file(), control, system);
    if (!outcome.written)
        discard();
    return outcome;
}

void FileConversion::finish() {
    saying(
        kind_, [&] { partial_->finish(); },
        [&](const Words &cause) {
            return processorError(
                withCause(words("error.photo.write.failed.format", lastPathComponent(output_)), cause));
        },
        [&](const Words &cause) { return SpatialPhotoError::finalizationFailed(output_, cause); });
}

void FileConversion::discard() noexcept {
    partial_->discard();
}

Outcome convertFile(const MediaOperations &operations, ConversionKind kind, const ConversionSettings &settings,
                    const ConversionInput &input, const Path &output, const ConversionControl &control,
                    SystemVersion system) {
    FileConversion conversion(kind, output);
    Outcome outcome = conversion.run(operations, settings, input, control, system);
    if (outcome.written)
        conversion.finish();
    return outcome;
}

} // namespace lumetwin
