// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace lumetwin::media {

/// The operation on a file that failed.
enum class MediaOperation {
    open,
    read,
    decode,
    decodeSound,
    create,
    encode,
    encodeSound,
    write,
    complete,
    rename, ///< of the partial file to its final name
};

inline constexpr MediaOperation lastMediaOperation = MediaOperation::rename;

/// The reason, if it does not depend on a library.
enum class MediaReason {
    other, ///< only the details give the reason
    // The system.
    noSuchFile,
    noPermission,
    isFolder,
    noRegularFile, ///< a pipe, a device, …
    noSpace,
    readOnly,
    beyondSystemLimit, ///< the file system or the user's limit allows no larger file
    tooManyOpenFiles,
    deviceFailure,
    noMemory,
    // The file.
    emptyFile,
    fileTooLarge,
    damaged,
    endsEarly,
    encrypted,
    encryptedMovie,
    contradictoryParameters,
    noFrame,
    noDecoder,   ///< details: the codec
    unsupported, ///< details: what
    // Images.
    unknownImageKind,
    noHeifFile,
    imageSequence,
    noImage,
    emptyImage,
    imageTooLarge, ///< details: its size
    tooManyScans,
    unsupportedSamples,
    unusableProfile,
    // What is written.
    beyondFormat,   ///< the format does not allow such a picture; details: its size
    pictureRefused, ///< by the encoder
    encoderFailed,
    dataRefused,
    photographNotAdded,
    headerNotFound,
    stereoTrackNotFound,
};

inline constexpr MediaReason lastMediaReason = MediaReason::stereoTrackNotFound;

/// English texts: the operation begins a sentence that ends with the file's name ("Cannot open"); the reason follows.
std::string_view words(MediaOperation operation);
std::string_view words(MediaReason reason);

/// The only error type of media/: the file, the operation, the reason, and the library's code and message.
class MediaError : public std::runtime_error {
public:
    /// details: belong to the reason (a size, a name), or are the library's message.
    MediaError(std::filesystem::path file, MediaOperation operation, int code, MediaReason reason,
               std::string details = {});
    /// An error of a library with its own message.
    MediaError(std::filesystem::path file, MediaOperation operation, int code, std::string libraryWords)
        : MediaError(std::move(file), operation, code, MediaReason::other, std::move(libraryWords)) {}

    /// An error of the system, by its errno.
    static MediaError ofSystem(std::filesystem::path file, MediaOperation operation, int number);

    const std::filesystem::path &file() const { return file_; }
    MediaOperation operation() const { return operation_; }
    MediaReason reason() const { return reason_; }
    const std::string &details() const { return details_; }
    /// The library's code, or the negated errno for a system error; 0 when there is none.
    int code() const { return code_; }

private:
    std::filesystem::path file_;
    MediaOperation operation_;
    MediaReason reason_;
    std::string details_;
    int code_;
};

/// The reason for an errno; `other` for rare ones.
MediaReason systemReason(int number);

} // namespace lumetwin::media
