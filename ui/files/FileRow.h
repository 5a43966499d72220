// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/preview/StereoPreview.h"
#include "model/ConversionSettings.h"
#include "model/FileResult.h"
#include "model/MediaFacts.h"
#include "model/StereoFindings.h"

#include <QImage>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

/// What a look at a file of the input has told.
struct FileLook {
    MediaFacts facts;
    std::string failure;                 ///< why it cannot be read, in the user's language; empty when it can
    std::optional<PreviewFacts> picture; ///< nullopt when it has no picture that can be shown
    QImage thumbnail;                    ///< both eyes beside each other; null when there is no picture
};

/// A file of the input, or two files that are the eyes of one picture or film.
struct FileRow {
    enum class Kind { video, photo, unsupported };

    std::filesystem::path file;
    std::filesystem::path rightEye; ///< empty when one file has both eyes
    std::filesystem::path named;    ///< the name that its output is made from, where it is not that of the file
    Kind kind = Kind::unsupported;
    std::uintmax_t bytes = 0;               ///< of both files
    bool isLeftOut = false;                 ///< by the user
    std::optional<FileLook> look;           ///< nullopt until it was looked at
    std::optional<StereoFindings> findings; ///< nullopt until its picture was examined
    std::optional<double> fraction;         ///< 0 to 1, while it is converted
    std::optional<FileResult> result;       ///< of the last run
};

/// The rows of an input: its media files in the order of a run, then files of other kinds. Takes the direction, the
/// inputs, their layout and the files left out from the settings. Throws std::filesystem::filesystem_error when the
/// folder cannot be listed.
std::vector<FileRow> rowsOf(const ConversionSettings &settings);

/// The layout in which a conversion reads a file that is not spatial. Only for a file that was looked at.
StereoLayout layoutOf(const FileRow &row, const ConversionSettings &settings);

/// The layout in which a file is shown: as it is read; but in the direction to side by side, where it is not read, a
/// file of which nobody says how its eyes lie is not cut.
StereoLayout layoutToShow(const MediaFacts &facts, const ConversionSettings &settings);

/// Whether a run with these settings converts it, as far as is known.
bool willBeConverted(const FileRow &row, const ConversionSettings &settings);

/// How many frames a run converts of each of its files, in its order: one of a photo, none of what it will skip. Empty
/// while the length of a film is not known.
std::vector<double> framesOfRun(const std::vector<FileRow> &rows, const ConversionSettings &settings);

/// Whether it is spatial media in the direction to spatial media, or the other way round.
bool isAgainstDirection(const FileRow &row, const ConversionSettings &settings);

/// Whether it would be cut into two eyes although its picture does not look like two.
bool isNoStereo(const FileRow &row, const ConversionSettings &settings);

/// What a conversion with these settings would warn of, as far as is known.
std::vector<Warning> warningsOf(const FileRow &row, const ConversionSettings &settings);

/// The part of the settings that decides about rows, for use on another thread.
std::shared_ptr<const ConversionSettings> snapshotOf(const ConversionSettings &settings);

/// Whether previews with these settings look alike.
bool drawsAlike(const ConversionSettings &one, const ConversionSettings &other);

} // namespace lumetwin
