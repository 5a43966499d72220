// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionInput.h"
#include "engine/MediaOperations.h"
#include "media/InputFile.h"

#include <filesystem>

namespace lumetwin {

/// Opens the input of a conversion. Throws the conversion's error when it cannot be opened.
media::InputFile openInput(ConversionKind kind, const std::filesystem::path &file);

/// Converts a file to a partial output, which is renamed when complete; the final name ends with the extension of the
/// conversion ("mov", "heic"). A cancelled conversion leaves no file; a failed one leaves the partial file. Throws the
/// conversion's errors.
Outcome convertFile(const MediaOperations &operations, ConversionKind kind, const ConversionSettings &settings,
                    const ConversionInput &input, const std::filesystem::path &output, const ConversionControl &control,
                    SystemVersion system);

} // namespace lumetwin
