// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace lumetwin {

/// What goes wrong with spatial photos, read or written. The descriptions are fixed and English.
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

    static SpatialPhotoError cannotOpenFile(const std::filesystem::path &file);
    static SpatialPhotoError notASpatialPhoto(const std::string &reason);
    static SpatialPhotoError cannotCreateDestination(const std::filesystem::path &file);
    static SpatialPhotoError finalizationFailed(const std::filesystem::path &file);
    static SpatialPhotoError imageExtractionFailed();
    static SpatialPhotoError invalidImage();

    Case kind() const { return kind_; }
    /// The position of the case.
    int code() const { return static_cast<int>(kind_); }

private:
    SpatialPhotoError(Case kind, const std::string &description) : std::runtime_error(description), kind_(kind) {}

    Case kind_;
};

} // namespace lumetwin
