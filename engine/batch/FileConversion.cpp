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

/// Creates and owns the partial output.
class Destination {
public:
    Destination(ConversionKind kind, const Path &output)
        : kind_(kind), output_(output),
          partial_(saying(
              kind, [&] { return std::make_unique<media::PartialFile>(output); },
              [&](const Words &cause) {
                  return processorError(
                      withCause(words("error.photo.no.destination.format", lastPathComponent(output)), cause));
              },
              [&](const Words &cause) { return SpatialPhotoError::cannotCreateDestination(output, cause); })) {}

    const media::OutputFile &file() const { return partial_->file(); }
    void discard() { partial_->discard(); }
    void finish() {
        saying(
            kind_, [&] { partial_->finish(); },
            [&](const Words &cause) {
                return processorError(
                    withCause(words("error.photo.write.failed.format", lastPathComponent(output_)), cause));
            },
            [&](const Words &cause) { return SpatialPhotoError::finalizationFailed(output_, cause); });
    }

private:
    ConversionKind kind_;
    Path output_;
    std::unique_ptr<media::PartialFile> partial_;
};

} // namespace

media::InputFile openInput(ConversionKind kind, const Path &file) {
    return saying(
        kind, [&] { return media::InputFile(file); },
        [&](const Words &cause) { return SpatialPhotoError::cannotOpenFile(file, cause); },
        [&](const Words &cause) {
            return processorError(withCause(words("error.photo.cannot.open.format", lastPathComponent(file)), cause));
        });
}

Outcome convertFile(const MediaOperations &operations, ConversionKind kind, const ConversionSettings &settings,
                    const ConversionInput &input, const Path &output, const ConversionControl &control,
                    SystemVersion system) {
    Destination destination(kind, placeOf(kind, output));
    Outcome outcome = operations.converter(kind)(settings, input, destination.file(), control, system);
    outcome.written ? destination.finish() : destination.discard();
    return outcome;
}

} // namespace lumetwin
