// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace lumetwin::media {

/// What was attempted with a file.
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
    rename, ///< the partial file to its own name
};

inline constexpr MediaOperation lastMediaOperation = MediaOperation::rename;

/// Why it failed, as far as there is something to say that does not depend on a library.
enum class MediaReason {
    other, ///< the details say it all
    // The system.
    noSuchFile,
    noPermission,
    isFolder,
    noRegularFile, ///< a pipe, a device, …
    noSpace,
    readOnly,
    beyondSystemLimit, ///< the file system or the user's limit holds no larger file
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
    noDecoder,   ///< details: of what
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
    beyondFormat,   ///< the format holds no such picture; details: its size
    pictureRefused, ///< by the encoder
    encoderFailed,
    dataRefused,
    photographNotAdded,
    headerNotFound,
    stereoTrackNotFound,
};

inline constexpr MediaReason lastMediaReason = MediaReason::stereoTrackNotFound;

/// In English: the beginning of a sentence that ends in the file's name ("Cannot open"), and the rest of it.
std::string_view words(MediaOperation operation);
std::string_view words(MediaReason reason);

/// The one error type of media/: which file, which operation, why, and the library's own code and words.
class MediaError : public std::runtime_error {
public:
    /// Details: what belongs to the reason (a size, a name), or the library's own words.
    MediaError(std::filesystem::path file, MediaOperation operation, int code, MediaReason reason,
               std::string details = {});
    /// Of a library that has words of its own for it.
    MediaError(std::filesystem::path file, MediaOperation operation, int code, std::string libraryWords)
        : MediaError(std::move(file), operation, code, MediaReason::other, std::move(libraryWords)) {}

    /// Of the system, by its number (errno).
    static MediaError ofSystem(std::filesystem::path file, MediaOperation operation, int number);

    const std::filesystem::path &file() const { return file_; }
    MediaOperation operation() const { return operation_; }
    MediaReason reason() const { return reason_; }
    const std::string &details() const { return details_; }
    /// The library's code (or errno, negated, for the system's); 0 where there is none.
    int code() const { return code_; }

private:
    std::filesystem::path file_;
    MediaOperation operation_;
    MediaReason reason_;
    std::string details_;
    int code_;
};

/// The reason that a number of the system (errno) stands for; `other` for rare ones.
MediaReason systemReason(int number);

} // namespace lumetwin::media
