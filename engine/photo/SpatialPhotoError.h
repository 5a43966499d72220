// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Words.h"

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace lumetwin {

/// An error while reading or writing a spatial photo. The English descriptions are fixed. A cause, if known, follows in
/// brackets.
class SpatialPhotoError : public std::runtime_error {
public:
    enum class Case {
        cannotOpenFile,
        notASpatialPhoto,
        cannotCreateDestination,
        finalizationFailed,
        imageExtractionFailed,
        invalidImage,
    };
    static constexpr const char *domain = "SpatialPhotoError";

    static SpatialPhotoError cannotOpenFile(const std::filesystem::path &file, const Words &cause = {});
    static SpatialPhotoError notASpatialPhoto(const Words &reason, const Words &cause = {});
    static SpatialPhotoError cannotCreateDestination(const std::filesystem::path &file, const Words &cause = {});
    static SpatialPhotoError finalizationFailed(const std::filesystem::path &file, const Words &cause = {});
    static SpatialPhotoError imageExtractionFailed(const Words &cause = {});
    static SpatialPhotoError invalidImage();
    /// As another process threw it.
    static SpatialPhotoError restored(Case kind, const Words &description) { return {kind, description}; }

    // The reasons of notASpatialPhoto.
    static Words tooFewImages(std::size_t count);
    static Words noContainerProperties();
    static Words noStereoGroup();

    Case kind() const { return kind_; }
    /// The position of the case in the enumeration.
    int code() const { return static_cast<int>(kind_); }
    /// The description in the user's language.
    const std::string &shown() const { return shown_; }

private:
    SpatialPhotoError(Case kind, const Words &description)
        : std::runtime_error(description.english), kind_(kind), shown_(description.shown) {}

    Case kind_;
    std::string shown_;
};

} // namespace lumetwin
