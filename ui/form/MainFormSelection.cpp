// SPDX-License-Identifier: GPL-3.0-or-later
// Handles what the user selects on the form: the input, the output folder, a file to check.
#include "ui/form/MainViewController.h"

#include "engine/batch/InputList.h"
#include "ui/files/DropFolderView.h"
#include "ui/files/DroppedFiles.h"
#include "ui/form/PreflightChecks.h"
#include "ui/form/PreflightSequence.h"
#include "ui/form/SpatialCheck.h"
#include "ui/progress/BatchPresentation.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Localized.h"

#include <QPushButton>

#include <set>
#include <utility>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

/// Adds each file that is not among the files yet.
void addMissing(std::vector<fs::path> &files, const std::vector<fs::path> &added) {
    std::set<fs::path> known(files.begin(), files.end());
    for (const fs::path &file : added)
        if (known.insert(file).second)
            files.push_back(file);
}

} // namespace

bool MainViewController::openInput(const std::vector<fs::path> &paths) {
    return inputDropView->acceptPaths(paths);
}

void MainViewController::selectInputFolder() {
    QWidget *source = inputDropView->hasFocus() ? static_cast<QWidget *>(inputDropView) : inputSelectBtn;
    services_.panels->chooseInput(source, [form = QPointer(this)](const std::vector<fs::path> &paths) {
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
        setInputFiles(input);
        inputDropView->showFiles(input.files);
    }
    warnAboutAVI();
}

void MainViewController::setInputFolder(const fs::path &folder) {
    settings->inputFolderURL = folder;
    settings->inputFiles.reset();
    settings->otherFiles.clear();
    showPath(inputPathLabel, displayPath(folder));
    inputWasSet();
}

void MainViewController::setInputFiles(const DroppedInput &input) {
    const std::vector<fs::path> &files = input.files;
    settings->inputFiles = files;
    settings->otherFiles = input.others;
    settings->inputFolderURL.reset();
    showPath(inputPathLabel, files.size() == 1 ? displayPath(files.front())
                                               : toQString(filesSelectedText(static_cast<std::int64_t>(files.size()))));
    inputWasSet();
}

void MainViewController::inputWasSet() {
    settings->leftOut.clear();
    aviQuestionAnswered_ = false;
    emit inputChanged();
}

bool MainViewController::addToInput(const std::vector<fs::path> &paths) {
    if (!isIdle())
        return false;
    if (!settings->inputFiles && !settings->inputFolderURL)
        return openInput(paths);
    const DroppedInput added = filesAmong(paths);
    if (added.empty())
        return openInput(paths); // says why
    DroppedInput input = settings->inputFiles
                             ? DroppedInput{.files = *settings->inputFiles, .others = settings->otherFiles}
                             : filesAmong({*settings->inputFolderURL});
    addMissing(input.files, added.files);
    addMissing(input.others, added.others);
    const std::set<fs::path> leftOut = settings->leftOut;
    setInputFiles(input);
    inputDropView->showFiles(input.files);
    settings->leftOut = leftOut;
    warnAboutAVI();
    return true;
}

void MainViewController::warnAboutAVI() {
    if (settings->enableResize || !containsAVI(inputEntries(*settings)))
        return;
    const Alert alert{
        text("alert.avi.title"), text("alert.avi.message"), {text("alert.avi.enable.resize"), text("button.continue")}};
    services_.alerts->present(alert, this, [this](int button) {
        aviQuestionAnswered_ = button != AlertPresenter::dismissed;
        if (button == 0)
            turnOnResize();
    });
}

void MainViewController::selectOutputFolder() {
    services_.panels->chooseOutputFolder(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (form && !paths.empty())
            form->outputChosen(paths.front());
    });
}

void MainViewController::outputChosen(const fs::path &folder) {
    const std::string objection = outputDropView->objection(folder);
    if (!objection.empty())
        return services_.alerts->present({objection, text("error.output.unwritable.message")}, this, [](int) {});
    setOutputFolder(folder);
    outputDropView->showFolder(folder);
}

void MainViewController::setOutputFolder(const fs::path &folder) {
    settings->outputFolderURL = folder;
    showPath(outputPathLabel, displayPath(folder));
    emit settingsChanged();
}

void MainViewController::showPath(ElidedLabel *label, const QString &path) {
    label->setText(path);
    label->setProperty("secondary", false);
    applyColours();
}

void MainViewController::checkSpatialMedia() {
    services_.panels->chooseFileToCheck(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (form && !paths.empty())
            form->checkFile(paths.front());
    });
}

void MainViewController::checkFile(const fs::path &file) {
    setChecking(true);
    checkSpatialFile(file, this, services_, [this](const Alert &answer) {
        setChecking(false);
        checkResult_ = answer;
        showCheckResult();
    });
}

void MainViewController::setChecking(bool checking) {
    const QString title = toQString(text(checking ? "button.checking" : "button.check.spatial"));
    const bool hadFocus = checkSpatialBtn->hasFocus();
    checkSpatialBtn->setText(title);
    setShortcuts(); // setText removed the shortcut
    checkSpatialBtn->setAccessibleName(title);
    checkSpatialBtn->setEnabled(!checking);
    if (hadFocus && checking)
        inputSelectBtn->setFocus();
}

/// Shows the result of a check, but not while a batch runs or is about to start.
void MainViewController::showCheckResult() {
    if (!checkResult_ || preflight_ || batch_->state() != BatchPresentation::State::idle)
        return;
    const Alert answer = *std::exchange(checkResult_, {});
    services_.alerts->present(answer, this, [](int) {});
}

} // namespace lumetwin
