// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "model/ConversionSettings.h"
#include "model/MediaFacts.h"
#include "model/PictureSize.h"
#include "model/SystemVersion.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

namespace lumetwin {

namespace media {
class InputFile;
class OutputFile;
} // namespace media

enum class ConversionKind { spatialVideoToSBS, sbsVideoToSpatial, spatialPhotoToSBS, sbsImageToSpatial };

/// What is done to single files, as values: a batch does not know whether that happens in a process of its own, and
/// tests drive one without converting anything. Any thread may call them.
struct MediaOperations {
    /// Writes the output, or returns early where the control says so. Throws what went wrong.
    using Converter = std::function<Outcome(const ConversionSettings &, const media::InputFile &,
                                            const media::OutputFile &, const ConversionControl &, SystemVersion)>;

    /// What a look at the headers tells; see lookAt().
    std::function<MediaFacts(const media::InputFile &)> look;
    /// See pictureSize().
    std::function<PictureSize(const media::InputFile &)> measure;
    Converter convertSpatialVideoToSBS;
    Converter convertSBSVideoToSpatial;
    Converter convertSpatialPhotoToSBS;
    Converter convertSBSImageToSpatial;

    const Converter &converter(ConversionKind kind) const;

    /// The same, opening the file. Throw MediaError where it cannot be opened.
    MediaFacts lookAtFile(const std::filesystem::path &file) const;
    /// Of a file that is not spatial, the size too.
    std::pair<MediaFacts, std::optional<PictureSize>> inspectFile(const std::filesystem::path &file) const;

    /// The engine's own functions, called in this process.
    static MediaOperations inProcess();
};

} // namespace lumetwin
