// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What is done with opened files, by their paths.

#include "engine/batch/FileConversion.h"
#include "engine/inspection/Inspection.h"
#include "media/Image.h"
#include "media/MediaError.h"
#include "media/PartialFile.h"
#include "media/SpatialPhoto.h"
#include "media/StereoMovieFacts.h"
#include "media/heif/HeifFile.h"

#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

namespace lumetwin::media {

inline StillImage readImage(const std::filesystem::path &file, const Cancellation &cancellation = {}) {
    return ImageFile(InputFile(file)).read(cancellation);
}

inline int imageCount(const std::filesystem::path &file) {
    return ImageFile(InputFile(file)).imageCount();
}

inline std::optional<ImageKind> imageKind(const std::filesystem::path &file) {
    try {
        return imageKind(InputFile(file));
    } catch (const MediaError &) {
        return std::nullopt;
    }
}

inline PhotoExtras photoExtras(const std::filesystem::path &file) {
    try {
        return ImageFile(InputFile(file)).extras();
    } catch (const MediaError &) {
        return {};
    }
}

inline HeifFile readHeifFile(const std::filesystem::path &file) {
    return readHeifFile(InputFile(file));
}

inline StereoMovieFacts readStereoMovieFacts(const std::filesystem::path &file) {
    try {
        return readStereoMovieFacts(InputFile(file));
    } catch (const MediaError &) {
        return {};
    }
}

/// Lets `write` write an output, which gets its name then. Nothing stays of one that is cancelled.
template <typename Write> void writeFinished(const std::filesystem::path &file, const Write &write) {
    PartialFile partial(file);
    try {
        write(partial.file());
        partial.finish();
    } catch (const Cancelled &) {
        partial.discard();
        throw;
    }
}

inline void writeImage(const std::filesystem::path &file, ImageKind kind, StillImage image, double quality,
                       const Cancellation &cancellation = {}, const std::optional<StereoPacking> &packing = {}) {
    writeFinished(
        file, [&](const OutputFile &to) { writeImage(to, kind, std::move(image), quality, cancellation, packing); });
}

inline void writeSpatialPhoto(const std::filesystem::path &file, Picture left, Picture right,
                              const SpatialPhotoFacts &facts, const ImageMetadata &metadata,
                              const Cancellation &cancellation = {}) {
    writeFinished(file, [&](const OutputFile &to) {
        writeSpatialPhoto(to, std::move(left), std::move(right), facts, metadata, cancellation);
    });
}

} // namespace lumetwin::media

namespace lumetwin {

inline MediaFacts lookAt(const std::filesystem::path &file) {
    try {
        return lookAt(media::InputFile(file));
    } catch (const media::MediaError &) {
        return {};
    }
}

inline bool isSpatialPhoto(const std::filesystem::path &file) {
    return isSpatialPhoto(lookAt(file));
}

inline bool isSpatialVideo(const std::filesystem::path &file, SystemVersion system = SystemVersion::current()) {
    return isSpatialVideo(lookAt(file), system);
}

inline StereoValues stereoValues(const std::filesystem::path &file, SystemVersion system = SystemVersion::current()) {
    return stereoValues(lookAt(file), system);
}

inline Outcome convertFile(ConversionKind kind, const ConversionSettings &settings, const std::filesystem::path &input,
                           const std::filesystem::path &output, const ConversionControl &control = {},
                           SystemVersion system = SystemVersion::current()) {
    return convertFile(MediaOperations::inProcess(), kind, settings, openInput(kind, input), output, control, system);
}

inline Outcome convertSpatialVideoToSBS(const ConversionSettings &settings, const std::filesystem::path &input,
                                        const std::filesystem::path &output, const ConversionControl &control,
                                        SystemVersion system = SystemVersion::current()) {
    return convertFile(ConversionKind::spatialVideoToSBS, settings, input, output, control, system);
}

inline Outcome convertSBSVideoToSpatial(const ConversionSettings &settings, const std::filesystem::path &input,
                                        const std::filesystem::path &output, const ConversionControl &control,
                                        SystemVersion system = SystemVersion::current()) {
    return convertFile(ConversionKind::sbsVideoToSpatial, settings, input, output, control, system);
}

inline Outcome convertSpatialPhotoToSBS(const ConversionSettings &settings, const std::filesystem::path &input,
                                        const std::filesystem::path &output, const ConversionControl &control = {}) {
    return convertFile(ConversionKind::spatialPhotoToSBS, settings, input, output, control);
}

inline Outcome convertSBSImageToSpatial(const ConversionSettings &settings, const std::filesystem::path &input,
                                        const std::filesystem::path &output, const ConversionControl &control = {}) {
    return convertFile(ConversionKind::sbsImageToSpatial, settings, input, output, control);
}

} // namespace lumetwin
