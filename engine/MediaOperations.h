// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ConversionControl.h"
#include "engine/Outcome.h"
#include "engine/preview/StereoPreview.h"
#include "model/ConversionSettings.h"
#include "model/MediaFacts.h"
#include "model/PictureSize.h"
#include "model/StereoFindings.h"
#include "model/SystemVersion.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <optional>

namespace lumetwin {

namespace media {
class InputFile;
class OutputFile;
} // namespace media

struct ConversionInput;

/// What a close look at a file tells.
struct CloseInspection {
    MediaFacts facts;
    StereoLayout layout;     ///< in which a conversion would read a file that is not spatial
    StereoFindings findings; ///< about the picture of a file that is not spatial
};

/// What a file that is opened for inspection tells.
struct FileInspection {
    MediaFacts facts;
    std::optional<PictureSize> size; ///< of a file that is not spatial
    std::exception_ptr failure;      ///< why that size cannot be read
};

/// The files of an input: one, or where each eye has a file of its own, two.
struct InputPaths {
    std::filesystem::path file;
    std::filesystem::path rightEye = {}; ///< empty when one file has both eyes
};

enum class ConversionKind { spatialVideoToSBS, sbsVideoToSpatial, spatialPhotoToSBS, sbsImageToSpatial };

/// The functions that a batch calls for single files. A batch does not know whether they run in another process, and
/// tests replace them. May be called on any thread.
struct MediaOperations {
    /// Writes the output, or returns early when cancelled. Throws when it fails.
    using Converter = std::function<Outcome(const ConversionSettings &, const ConversionInput &,
                                            const media::OutputFile &, const ConversionControl &, SystemVersion)>;

    /// Reads the headers; see lookAt().
    std::function<MediaFacts(const media::InputFile &)> look;
    /// Reads the headers and the layout of the eyes; see lookClosely().
    std::function<MediaFacts(const ConversionInput &)> lookClosely;
    /// Examines the picture of a file whose eyes lie in this layout; see lumetwin::examine().
    std::function<StereoFindings(const ConversionInput &, const StereoLayout &)> examine;
    /// See pictureSize().
    std::function<PictureSize(const media::InputFile &)> measure;
    /// Draws the preview's pixels into the output (first the left eye's, then the right eye's); see drawPreview().
    std::function<PreviewFacts(const ConversionInput &, const PreviewRequest &, const media::OutputFile &pixels)>
        drawPreview = {};
    Converter convertSpatialVideoToSBS;
    Converter convertSBSVideoToSpatial;
    Converter convertSpatialPhotoToSBS;
    Converter convertSBSImageToSpatial;
    /// How many photos a batch may convert at the same time.
    int photosAtOnce = 1;

    const Converter &converter(ConversionKind kind) const;

    /// The same with a path. These throw MediaError when the file cannot be opened.
    MediaFacts lookAtFile(const std::filesystem::path &file) const;
    MediaFacts lookCloselyAt(const InputPaths &files) const;
    StereoFindings examineAt(const InputPaths &files, const StereoLayout &layout) const;
    /// A close look at the headers, and at the picture of a file that is not spatial.
    CloseInspection inspectClosely(const std::filesystem::path &file) const;
    /// The facts, and for a file that is not spatial also its size.
    FileInspection inspectFile(const std::filesystem::path &file) const;

    /// Draws a preview in memory. Throws the errors of drawPreview; MediaError when the file cannot be opened, and when
    /// what was drawn is not what was told of it.
    StereoPreview preview(const ConversionInput &input, const PreviewRequest &request) const;
    StereoPreview preview(const std::filesystem::path &file, const PreviewRequest &request) const;
    StereoPreview preview(const InputPaths &files, const PreviewRequest &request) const;

    /// The engine's own functions, called in this process.
    static MediaOperations inProcess();
};

} // namespace lumetwin
