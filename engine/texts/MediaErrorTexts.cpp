// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/MediaErrorTexts.h"

#include <new>
#include <stdexcept>

namespace lumetwin {

using media::MediaError;
using media::MediaOperation;
using media::MediaReason;

std::string_view keyOf(MediaOperation operation) {
    switch (operation) {
    case MediaOperation::open:
        return "media.open.format";
    case MediaOperation::read:
        return "media.read.format";
    case MediaOperation::decode:
        return "media.decode.format";
    case MediaOperation::decodeSound:
        return "media.decode.sound.format";
    case MediaOperation::create:
        return "media.create.format";
    case MediaOperation::encode:
        return "media.encode.format";
    case MediaOperation::encodeSound:
        return "media.encode.sound.format";
    case MediaOperation::write:
        return "media.write.format";
    case MediaOperation::complete:
        return "media.complete.format";
    case MediaOperation::rename:
        return "media.rename.format";
    }
    return {};
}

std::string_view keyOf(MediaReason reason) {
    switch (reason) {
    case MediaReason::other:
        return "reason.unknown";
    case MediaReason::noSuchFile:
        return "reason.no.such.file";
    case MediaReason::noPermission:
        return "reason.no.permission";
    case MediaReason::isFolder:
        return "reason.is.folder";
    case MediaReason::noRegularFile:
        return "reason.no.regular.file";
    case MediaReason::noSpace:
        return "reason.no.space";
    case MediaReason::readOnly:
        return "reason.read.only";
    case MediaReason::beyondSystemLimit:
        return "reason.beyond.system.limit";
    case MediaReason::tooManyOpenFiles:
        return "reason.too.many.open.files";
    case MediaReason::deviceFailure:
        return "reason.device.failure";
    case MediaReason::noMemory:
        return "reason.no.memory";
    case MediaReason::emptyFile:
        return "reason.empty.file";
    case MediaReason::fileTooLarge:
        return "reason.file.too.large";
    case MediaReason::damaged:
        return "reason.damaged";
    case MediaReason::endsEarly:
        return "reason.ends.early";
    case MediaReason::encrypted:
        return "reason.encrypted";
    case MediaReason::encryptedMovie:
        return "reason.encrypted.movie";
    case MediaReason::contradictoryParameters:
        return "reason.contradictory.parameters";
    case MediaReason::noFrame:
        return "reason.no.frame";
    case MediaReason::noDecoder:
        return "reason.no.decoder";
    case MediaReason::unsupported:
        return "reason.unsupported";
    case MediaReason::unknownImageKind:
        return "reason.unknown.image.kind";
    case MediaReason::noHeifFile:
        return "reason.no.heif.file";
    case MediaReason::imageSequence:
        return "reason.image.sequence";
    case MediaReason::noImage:
        return "reason.no.image";
    case MediaReason::emptyImage:
        return "reason.empty.image";
    case MediaReason::imageTooLarge:
        return "reason.image.too.large";
    case MediaReason::tooManyScans:
        return "reason.too.many.scans";
    case MediaReason::unsupportedSamples:
        return "reason.unsupported.samples";
    case MediaReason::unusableProfile:
        return "reason.unusable.profile";
    case MediaReason::beyondFormat:
        return "reason.format.exceeded";
    case MediaReason::pictureRefused:
        return "reason.picture.refused";
    case MediaReason::encoderFailed:
        return "reason.encoder.failed";
    case MediaReason::dataRefused:
        return "reason.data.refused";
    case MediaReason::photographNotAdded:
        return "reason.photograph.not.added";
    case MediaReason::headerNotFound:
        return "reason.header.not.found";
    case MediaReason::stereoTrackNotFound:
        return "reason.stereo.track.not.found";
    }
    return {};
}

namespace {

Words reasonWords(const MediaError &error, std::string_view keyWithDetails) {
    if (error.reason() == MediaReason::other && !error.details().empty())
        return {error.details(), error.details()};
    const Words reason = words(keyOf(error.reason()));
    return error.details().empty() ? reason : words(keyWithDetails, reason, error.details());
}

} // namespace

Words errorWords(const MediaError &error) {
    return words("error.because.format", words(keyOf(error.operation()), error.file().filename().string()),
                 reasonWords(error, "error.cause.format"));
}

Words causeOf(const MediaError &error) {
    return reasonWords(error, "error.because.format");
}

Words causeOf(const std::exception &error) {
    if (const auto *media = dynamic_cast<const MediaError *>(&error))
        return causeOf(*media);
    if (dynamic_cast<const std::bad_alloc *>(&error))
        return words(keyOf(MediaReason::noMemory));
    if (dynamic_cast<const std::length_error *>(&error))
        return words(keyOf(MediaReason::imageTooLarge));
    return {error.what(), error.what()};
}

Words causeOfSize(std::int64_t width, std::int64_t height) {
    return words(keyOf(width < 1 || height < 1 ? MediaReason::emptyImage : MediaReason::imageTooLarge));
}

Words withCause(const Words &message, const Words &cause) {
    return cause.english.empty() ? message : words("error.cause.format", message, cause);
}

} // namespace lumetwin
