// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/batch/InputList.h"
#include "model/ConversionSettings.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

/// A file name that ends with the name of an eye.
struct EyeName {
    std::string rest; ///< the name without that ending, with its extension
    bool isRight = false;
};

/// Recognises endings such as "_L", "-left" and ".right", in upper or lower case; nullopt for other names.
std::optional<EyeName> eyeName(const std::filesystem::path &file);

/// In the direction to spatial media: joins two files of one folder that are the left and the right eye of one picture
/// or film, by their names. Done when the input layout is automatic or two files. Files of different kinds stay alone,
/// and so do names that three files share. A pair stands in the place of its left file.
std::vector<ListedFile> pairEyes(std::vector<ListedFile> files, const ConversionSettings &settings);

/// The inputs of a run: joined pairs and single files, without those that the user left out.
std::vector<ListedFile> inputsOfRun(std::vector<ListedFile> files, const ConversionSettings &settings);

} // namespace lumetwin
