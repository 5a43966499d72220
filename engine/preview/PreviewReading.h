// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/StereoPreview.h"
#include "media/OutputFile.h"

#include <filesystem>

namespace lumetwin {

/// A file in memory for the pixels of the largest preview that a request allows. Throws MediaError.
media::OutputFile pixelFile(const PreviewRequest &request, const std::filesystem::path &input);

/// Copies the pixels of a preview out of the file in which another process has drawn them. That process is not trusted:
/// the facts are checked against the request and against the size of the file before memory is taken. Throws
/// MediaError, which names the input, where they do not agree.
StereoPreview readPixels(const PreviewFacts &facts, const PreviewRequest &request, const media::OutputFile &pixels);

} // namespace lumetwin
