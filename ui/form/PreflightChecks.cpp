// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/PreflightChecks.h"

#include "engine/batch/EyeFiles.h"
#include "engine/batch/InputList.h"
#include "engine/batch/OutputNaming.h"
#include "engine/inspection/MediaKinds.h"
#include "engine/texts/Texts.h"
#include "ui/form/ResizePreview.h"

#include <algorithm>
#include <iterator>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t maximumNamesShown = 5;

std::string sortedLines(std::vector<std::string> names) {
    std::ranges::sort(names);
    std::string lines;
    for (const std::string &name : names)
        lines += name + "\n";
    return lines;
}

Alert directionQuestion(const char *title, const char *message) {
    return {text(title), text(message), {text("button.fix.direction"), text("button.convert.anyway.continue")}};
}

} // namespace

std::vector<fs::path> inputEntries(const ConversionSettings &settings) {
    std::vector<fs::path> entries;
    try {
        if (settings.inputFiles)
            entries = *settings.inputFiles;
        else if (settings.inputFolderURL)
            entries = visibleChildren(*settings.inputFolderURL);
    } catch (const fs::filesystem_error &) {
        return {};
    }
    std::set<fs::path> leftOut;
    for (const ListedFile &listed : pairEyes(mediaFiles(entries), settings))
        if (settings.leftOut.contains(listed.file))
            leftOut.insert({listed.file, listed.rightEye});
    std::erase_if(entries, [&](const fs::path &entry) { return leftOut.contains(entry); });
    return entries;
}

std::vector<fs::path> candidateVideos(const std::vector<fs::path> &entries) {
    std::vector<fs::path> videos;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(videos), isVideoFile);
    return videos;
}

bool containsAVI(const std::vector<fs::path> &entries) {
    return std::any_of(entries.begin(), entries.end(),
                       [](const fs::path &entry) { return lowerCasedExtension(entry) == "avi"; });
}

std::optional<Alert> directionMismatch(ConversionDirection direction, std::size_t candidates, std::size_t spatial) {
    if (direction == ConversionDirection::spatialToSBS && candidates > 0 && spatial == 0)
        return directionQuestion("alert.direction.spatial2sbs.title", "alert.direction.spatial2sbs.message");
    if (direction == ConversionDirection::sbsToSpatial && spatial > 0)
        return directionQuestion("alert.direction.sbs2spatial.title", "alert.direction.sbs2spatial.message");
    return std::nullopt;
}

std::optional<Alert> oddResizeSizeError(const ConversionSettings &settings) {
    if (!settings.enableResize || (settings.resizeWidth % 2 == 0 && settings.resizeHeight % 2 == 0))
        return std::nullopt;
    return Alert{formatted("error.resize.odd.format", roundedUpTo16(settings.resizeWidth),
                           roundedUpTo16(settings.resizeHeight))};
}

std::vector<std::string> existingOutputs(const std::vector<fs::path> &entries, const ConversionSettings &settings) {
    std::vector<std::string> names;
    std::vector<ListedFile> files;
    for (const fs::path &entry : entries)
        if (isMediaFile(entry))
            files.push_back({.file = entry, .folder = {}});
    for (const ListedFile &listed : inputsOfRun(std::move(files), settings)) {
        std::string name = outputName(listed.named.empty() ? listed.file : listed.named, settings);
        std::error_code ignored;
        if (fs::exists(*settings.outputFolderURL / name, ignored))
            names.push_back(std::move(name));
    }
    return names;
}

std::optional<OnExisting> overwriteAnswer(int button) {
    switch (button) {
    case 0:
        return OnExisting::replace;
    case 2:
        return OnExisting::keepBoth;
    case 3:
        return OnExisting::skip;
    default:
        return std::nullopt;
    }
}

Alert overwriteQuestion(const std::vector<std::string> &names) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), maximumNamesShown); ++i)
        list += (i ? "\n" : "") + names[i];
    if (names.size() > maximumNamesShown)
        list += "\n" +
                formatted("alert.overwrite.more.format", static_cast<std::int64_t>(names.size() - maximumNamesShown));
    Alert question{text("alert.overwrite.title"),
                   formatted("alert.overwrite.message.format", list),
                   {text("button.overwrite"), text("button.cancel"), text("button.keep.both"), text("button.skip")}};
    question.defaultButton = 1;
    if (names.size() > maximumNamesShown) {
        question.details = sortedLines(names);
        question.detailsName = text("spoken.replaced");
    }
    return question;
}

} // namespace lumetwin
