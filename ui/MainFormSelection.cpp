// SPDX-License-Identifier: GPL-3.0-or-later
// What the user selects on the form: the input, the output folder, a file to check.
#include "ui/MainViewController.h"

#include "engine/InputList.h"
#include "ui/DropFolderView.h"
#include "ui/DroppedFiles.h"
#include "ui/ElidedLabel.h"
#include "ui/Localized.h"
#include "ui/PreflightChecks.h"
#include "ui/SpatialCheck.h"

namespace lumetwin {

namespace fs = std::filesystem;

bool MainViewController::openInput(const std::vector<fs::path> &paths) {
    return inputDropView->acceptPaths(paths);
}

void MainViewController::selectInputFolder() {
    services_.panels->chooseInput(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (form)
            form->inputChosen(paths);
    });
}

void MainViewController::inputChosen(const std::vector<fs::path> &paths) {
    const DroppedInput input = classifyChoice(paths);
    if (input.empty())
        return;
    if (input.folder) {
        setInputFolder(*input.folder);
        inputDropView->showFolder(*input.folder);
    } else {
        setInputFiles(input.files);
        inputDropView->showFiles(input.files);
    }
    warnOfAVI();
}

void MainViewController::setInputFolder(const fs::path &folder) {
    settings->inputFolderURL = folder;
    settings->inputFiles.reset();
    showPath(inputPathLabel, shownPath(folder));
}

void MainViewController::setInputFiles(const std::vector<fs::path> &files) {
    settings->inputFiles = files;
    settings->inputFolderURL.reset();
    showPath(inputPathLabel, files.size() == 1 ? shownPath(files.front())
                                               : toQString(filesSelected(static_cast<std::int64_t>(files.size()))));
}

void MainViewController::warnOfAVI() {
    if (settings->enableResize || !holdsAVI(inputEntries(*settings)))
        return;
    const Alert alert{
        text("alert.avi.title"), text("alert.avi.message"), {text("alert.avi.enable.resize"), text("button.continue")}};
    services_.alerts->present(alert, this, [this](int button) {
        if (button == 0)
            turnOnResize();
    });
}

void MainViewController::selectOutputFolder() {
    services_.panels->chooseOutputFolder(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (!form || paths.empty())
            return;
        form->setOutputFolder(paths.front());
        form->outputDropView->showFolder(paths.front());
    });
}

void MainViewController::setOutputFolder(const fs::path &folder) {
    settings->outputFolderURL = folder;
    showPath(outputPathLabel, shownPath(folder));
}

void MainViewController::showPath(ElidedLabel *label, const QString &path) {
    label->setText(path);
    label->setProperty("secondary", false);
    applyColours();
}

void MainViewController::checkSpatialMedia() {
    services_.panels->chooseFileToCheck(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (form && !paths.empty())
            checkSpatialFile(paths.front(), form, form->settings, form->services_);
    });
}

} // namespace lumetwin
