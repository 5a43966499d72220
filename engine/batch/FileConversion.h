// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"
#include "media/InputFile.h"

#include <filesystem>

namespace lumetwin {

/// Opens the input of a conversion. Throws what the conversion says of a file that cannot be opened.
media::InputFile openInput(ConversionKind kind, const std::filesystem::path &file);

/// Converts a file into a partial output, which gets its own name when it is complete; that name ends in what the
/// conversion writes ("mov", "heic"). Nothing stays of a conversion that is cancelled; of one that fails, what was
/// written stays under the partial name. Throws the conversion's errors.
Outcome convertFile(const MediaOperations &operations, ConversionKind kind, const ConversionSettings &settings,
                    const media::InputFile &input, const std::filesystem::path &output,
                    const ConversionControl &control, SystemVersion system);

} // namespace lumetwin
