// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FileRow.h"

#include "engine/batch/EyeFiles.h"
#include "engine/batch/Forecast.h"
#include "engine/batch/InputList.h"
#include "engine/inspection/MediaKinds.h"
#include "ui/files/DroppedFiles.h"

#include <algorithm>
#include <tuple>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

std::uintmax_t sizeOf(const fs::path &file) {
    std::error_code missing;
    const std::uintmax_t bytes = fs::file_size(file, missing);
    return missing ? 0 : bytes;
}

FileRow rowOf(const ListedFile &listed, const ConversionSettings &settings) {
    FileRow row;
    row.file = listed.file;
    row.rightEye = listed.rightEye;
    row.named = listed.named.empty() ? listed.file : listed.named;
    row.kind = isPhotoFile(row.file) ? FileRow::Kind::photo : FileRow::Kind::video;
    row.bytes = sizeOf(row.file) + (row.rightEye.empty() ? 0 : sizeOf(row.rightEye));
    row.isLeftOut = settings.leftOut.contains(row.file);
    return row;
}

FileRow unsupportedRow(const fs::path &file) {
    FileRow row;
    row.file = file;
    row.bytes = sizeOf(file);
    return row;
}

bool isSpatial(const FileRow &row) {
    return isSpatialMedia(row.look->facts);
}

/// Whether it can be read at all.
bool isUsable(const FileRow &row) {
    return row.kind != FileRow::Kind::unsupported && row.look && row.look->failure.empty();
}

} // namespace

std::vector<FileRow> rowsOf(const ConversionSettings &settings) {
    std::vector<fs::path> entries;
    if (settings.inputFiles)
        entries = *settings.inputFiles;
    else if (settings.inputFolderURL)
        entries = visibleChildren(*settings.inputFolderURL);
    std::vector<FileRow> rows;
    for (const ListedFile &listed : pairEyes(mediaFiles(entries), settings))
        rows.push_back(rowOf(listed, settings));
    entries.insert(entries.end(), settings.otherFiles.begin(), settings.otherFiles.end());
    std::ranges::sort(entries);
    for (const fs::path &entry : entries)
        if (!isMediaFile(entry) && !isFolder(entry))
            rows.push_back(unsupportedRow(entry));
    return rows;
}

StereoLayout layoutOf(const FileRow &row, const ConversionSettings &settings) {
    return layoutToRead(row.look->facts, settings);
}

StereoLayout layoutToShow(const MediaFacts &facts, const ConversionSettings &settings) {
    if (settings.direction == ConversionDirection::sbsToSpatial)
        return layoutToRead(facts, settings);
    const bool isKnown = facts.layout && facts.layout->source != LayoutSource::fileName;
    return isKnown ? *facts.layout : StereoLayout{.arrangement = EyeArrangement::secondUnread};
}

bool isAgainstDirection(const FileRow &row, const ConversionSettings &settings) {
    return isUsable(row) && isSpatial(row) == (settings.direction == ConversionDirection::sbsToSpatial);
}

bool willBeConverted(const FileRow &row, const ConversionSettings &settings) {
    if (row.isLeftOut || row.kind == FileRow::Kind::unsupported)
        return false;
    return !row.look || (isUsable(row) && !isAgainstDirection(row, settings));
}

std::vector<double> framesOfRun(const std::vector<FileRow> &rows, const ConversionSettings &settings) {
    std::vector<double> frames;
    for (const FileRow &row : rows) {
        if (row.isLeftOut || row.kind == FileRow::Kind::unsupported)
            continue;
        const bool isFilm = row.kind == FileRow::Kind::video && willBeConverted(row, settings);
        const double count =
            isFilm && row.look && row.look->picture ? row.look->picture->duration * row.look->picture->frameRate : 0;
        if (isFilm && count <= 0)
            return {};
        frames.push_back(isFilm ? std::max(1.0, count) : willBeConverted(row, settings) ? 1 : 0);
    }
    return frames;
}

bool isNoStereo(const FileRow &row, const ConversionSettings &settings) {
    return settings.direction == ConversionDirection::sbsToSpatial && isUsable(row) && !isSpatial(row) &&
           row.findings && row.findings->wasExamined && !row.findings->seen;
}

std::vector<Warning> warningsOf(const FileRow &row, const ConversionSettings &settings) {
    if (settings.direction != ConversionDirection::sbsToSpatial || !isUsable(row) || isSpatial(row))
        return {};
    return forecastWarnings(row.look->facts, row.findings, settings);
}

std::shared_ptr<const ConversionSettings> snapshotOf(const ConversionSettings &settings) {
    auto copy = std::make_shared<ConversionSettings>();
    copy->direction = settings.direction;
    copy->inputFolderURL = settings.inputFolderURL;
    copy->inputFiles = settings.inputFiles;
    copy->otherFiles = settings.otherFiles;
    copy->leftOut = settings.leftOut;
    copy->outputFolderURL = settings.outputFolderURL;
    copy->inputLayout = settings.inputLayout;
    copy->sbsOutputFormat = settings.sbsOutputFormat;
    copy->sbsPhotoOutputFormat = settings.sbsPhotoOutputFormat;
    copy->halfWidth = settings.halfWidth;
    copy->swapLeftRight = settings.swapLeftRight;
    copy->enableResize = settings.enableResize;
    copy->resizeWidth = settings.resizeWidth;
    copy->resizeHeight = settings.resizeHeight;
    copy->resizeMode = settings.resizeMode;
    return copy;
}

bool drawsAlike(const ConversionSettings &one, const ConversionSettings &other) {
    const auto picture = [](const ConversionSettings &settings) {
        return std::tuple(settings.direction, settings.halfWidth, settings.swapLeftRight, settings.enableResize,
                          settings.resizeWidth, settings.resizeHeight, settings.resizeMode);
    };
    return picture(one) == picture(other);
}

} // namespace lumetwin
