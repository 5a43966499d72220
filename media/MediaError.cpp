// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/MediaError.h"

#include <cerrno>
#include <system_error>

namespace lumetwin::media {

namespace {

std::string message(const std::filesystem::path &file, MediaOperation operation, MediaReason reason,
                    const std::string &details) {
    std::string text = std::string(words(operation)) + " " + file.filename().string() + ": ";
    if (reason == MediaReason::other)
        return text + details;
    text += words(reason);
    return details.empty() ? text : text + " (" + details + ")";
}

} // namespace

std::string_view words(MediaOperation operation) {
    switch (operation) {
    case MediaOperation::open:
        return "Cannot open";
    case MediaOperation::read:
        return "Cannot read";
    case MediaOperation::decode:
        return "Cannot decode";
    case MediaOperation::decodeSound:
        return "Cannot decode the sound of";
    case MediaOperation::create:
        return "Cannot create";
    case MediaOperation::encode:
        return "Cannot encode";
    case MediaOperation::encodeSound:
        return "Cannot encode the sound of";
    case MediaOperation::write:
        return "Cannot write";
    case MediaOperation::complete:
        return "Cannot complete";
    case MediaOperation::rename:
        return "Cannot rename the partial file to";
    }
    return {};
}

std::string_view words(MediaReason reason) {
    switch (reason) {
    case MediaReason::other:
        return "unknown error";
    // The system's reasons, with the texts of the C library.
    case MediaReason::noSuchFile:
        return "No such file or directory";
    case MediaReason::noPermission:
        return "Permission denied";
    case MediaReason::isFolder:
        return "Is a directory";
    case MediaReason::noRegularFile:
        return "Not a regular file";
    case MediaReason::noSpace:
        return "No space left on device";
    case MediaReason::readOnly:
        return "Read-only file system";
    case MediaReason::beyondSystemLimit:
        return "File too large";
    case MediaReason::tooManyOpenFiles:
        return "Too many open files";
    case MediaReason::deviceFailure:
        return "Input/output error";
    case MediaReason::noMemory:
        return "not enough memory";
    case MediaReason::emptyFile:
        return "The file is empty";
    case MediaReason::fileTooLarge:
        return "the file is too large";
    case MediaReason::damaged:
        return "it is damaged";
    case MediaReason::endsEarly:
        return "it ends early";
    case MediaReason::encrypted:
        return "it is encrypted";
    case MediaReason::encryptedMovie:
        return "the movie is encrypted";
    case MediaReason::contradictoryParameters:
        return "its parameter sets contradict each other";
    case MediaReason::noFrame:
        return "not one frame could be read";
    case MediaReason::noDecoder:
        return "there is no decoder for it";
    case MediaReason::unsupported:
        return "it is not supported";
    case MediaReason::unknownImageKind:
        return "not an image of a known kind";
    case MediaReason::noHeifFile:
        return "it is no HEIF file";
    case MediaReason::imageSequence:
        return "an image sequence, not a photo";
    case MediaReason::noImage:
        return "there is no image in it";
    case MediaReason::emptyImage:
        return "the image is empty";
    case MediaReason::imageTooLarge:
        return "the image is too large";
    case MediaReason::tooManyScans:
        return "too many scans";
    case MediaReason::unsupportedSamples:
        return "this layout of samples is not supported";
    case MediaReason::unusableProfile:
        return "its colour profile cannot be used";
    case MediaReason::beyondFormat:
        return "the format holds no picture of such a kind or size";
    case MediaReason::pictureRefused:
        return "the encoder does not take such a picture";
    case MediaReason::encoderFailed:
        return "the encoder failed";
    case MediaReason::dataRefused:
        return "the system refused data";
    case MediaReason::photographNotAdded:
        return "the photograph's data could not be added";
    case MediaReason::headerNotFound:
        return "its header is not where it was written";
    case MediaReason::stereoTrackNotFound:
        return "the stereo track is not as the muxer should have written it";
    }
    return {};
}

MediaError::MediaError(std::filesystem::path file, MediaOperation operation, int code, MediaReason reason,
                       std::string details)
    : std::runtime_error(message(file, operation, reason, details)), file_(std::move(file)), operation_(operation),
      reason_(reason), details_(std::move(details)), code_(code) {}

MediaError MediaError::ofSystem(std::filesystem::path file, MediaOperation operation, int number) {
    const MediaReason reason = systemReason(number);
    return {std::move(file), operation, -number, reason,
            reason == MediaReason::other ? std::generic_category().message(number) : std::string()};
}

MediaReason systemReason(int number) {
    switch (number) {
    case ENOENT:
    case ENOTDIR:
        return MediaReason::noSuchFile;
    case EACCES:
    case EPERM:
        return MediaReason::noPermission;
    case EISDIR:
        return MediaReason::isFolder;
    case ENOSPC:
    case EDQUOT:
        return MediaReason::noSpace;
    case EROFS:
        return MediaReason::readOnly;
    case EFBIG:
        return MediaReason::beyondSystemLimit;
    case EMFILE:
    case ENFILE:
        return MediaReason::tooManyOpenFiles;
    case EIO:
        return MediaReason::deviceFailure;
    case ENOMEM:
        return MediaReason::noMemory;
    default:
        return MediaReason::other;
    }
}

} // namespace lumetwin::media
