// SPDX-License-Identifier: GPL-3.0-or-later
// What the form's controls do.
#include "ui/MainViewController.h"

#include "engine/InputList.h"
#include "ui/ColouredButton.h"
#include "ui/DropFolderView.h"
#include "ui/DroppedFiles.h"
#include "ui/ElidedLabel.h"
#include "ui/Localized.h"
#include "ui/NumberParsing.h"
#include "ui/Palettes.h"
#include "ui/PreflightChecks.h"
#include "ui/PreflightSequence.h"
#include "ui/ProgressViewController.h"
#include "ui/ResizePreview.h"
#include "ui/SheetOverlay.h"
#include "ui/SpatialCheck.h"
#include "ui/ValueSlider.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalBlocker>

#include <system_error>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

/// Moving a slider: the value goes into the setting, and its text into the field.
void takeFromSlider(double value, const StereoRange &range, double &setting, QLineEdit *field) {
    setting = value;
    const QSignalBlocker quiet(field);
    field->setText(QString::number(value, 'f', range.decimals));
}

/// Editing a field: a number in the range goes into the setting and moves the slider; anything else does nothing.
void takeFromField(const QLineEdit *field, const StereoRange &range, double &setting, ValueSlider *slider) {
    const auto value = parseDecimal(field->text());
    if (!value || !range.accepts(*value))
        return;
    setting = *value;
    slider->setDoubleValue(*value);
}

void takeSize(const QLineEdit *field, std::int64_t &setting) {
    if (const auto size = parseInteger(field->text()); size && *size >= 1)
        setting = *size;
}

void commitNumber(const QLineEdit *field, const StereoRange &range, double &setting) {
    if (const auto value = parseDecimal(field->text()); value && range.accepts(*value))
        setting = *value;
}

/// The percentage, truncated; a decimal such as 0.29 counts as what it says although its binary form lies below.
QString qualityText(double quality) {
    constexpr double binaryError = 1e-9;
    return QString::number(static_cast<int>(quality * 100 + binaryError)) + QLatin1Char('%');
}

} // namespace

MainViewController::MainViewController(FormServices services, QWidget *parent)
    : QWidget(parent), services_(std::move(services)) {
    buildInterface();
    applyFonts();
    applyColours();
    layoutOptionsArea();
}

MainViewController::~MainViewController() {
    // A batch that still runs must not go on without anybody to see it.
    if (sheet_ && isConverting())
        sheet_->runningProcessor()->cancelRequested = true;
}

void MainViewController::directionChanged(QAbstractButton *sender) {
    const bool toSBS = sender == spatialToSBSButton;
    settings->direction = toSBS ? ConversionDirection::spatialToSBS : ConversionDirection::sbsToSpatial;
    spatialToSBSButton->setChecked(toSBS);
    sbsToSpatialButton->setChecked(!toSBS);
    layoutOptionsArea();
    updateResizePreview();
}

void MainViewController::fovSliderChanged(double value) {
    takeFromSlider(value, fovRange, settings->horizontalFOV, fovField);
}

void MainViewController::disparitySliderChanged(double value) {
    takeFromSlider(value, disparityRange, settings->disparityAdjustment, disparityField);
}

void MainViewController::baselineSliderChanged(double value) {
    takeFromSlider(value, baselineRange, settings->stereoBaseline, baselineField);
}

void MainViewController::fovFieldChanged() {
    takeFromField(fovField, fovRange, settings->horizontalFOV, fovSlider);
    updateResizePreview();
}

void MainViewController::disparityFieldChanged() {
    takeFromField(disparityField, disparityRange, settings->disparityAdjustment, disparitySlider);
    updateResizePreview();
}

void MainViewController::baselineFieldChanged() {
    takeFromField(baselineField, baselineRange, settings->stereoBaseline, baselineSlider);
    updateResizePreview();
}

void MainViewController::formatChanged(int index) {
    if (index >= 0 && index < static_cast<int>(allSBSOutputFormats.size()))
        settings->sbsOutputFormat = allSBSOutputFormats[static_cast<std::size_t>(index)];
}

void MainViewController::photoFormatChanged(int index) {
    if (index >= 0 && index < static_cast<int>(allSBSPhotoOutputFormats.size()))
        settings->sbsPhotoOutputFormat = allSBSPhotoOutputFormats[static_cast<std::size_t>(index)];
}

void MainViewController::compressionChanged(double value) {
    settings->compressionQuality = value;
    compressionLabel->setText(qualityText(value));
}

void MainViewController::halfWidthChanged(bool checked) {
    settings->halfWidth = checked;
    updateResizePreview();
}

void MainViewController::swapLRChanged(bool checked) {
    settings->swapLeftRight = checked;
}

void MainViewController::copyAudioChanged(bool checked) {
    settings->copyAudio = checked;
}

void MainViewController::enableResizeChanged(bool checked) {
    settings->enableResize = checked;
    updateResizePreview();
    layoutOptionsArea();
}

void MainViewController::resizeDimChanged() {
    takeSize(resizeWidthField, settings->resizeWidth);
    takeSize(resizeHeightField, settings->resizeHeight);
    updateResizePreview();
}

void MainViewController::resizeModeChanged(int index) {
    settings->resizeMode = resizeMode(index).value_or(ResizeMode::letterbox);
}

void MainViewController::updateResizePreview() {
    if (settings->enableResize)
        resizeWarningLabel->setText(toQString(resizePreview(*settings)));
}

void MainViewController::commitFields() {
    settings->enableResize = enableResizeCheck->isChecked();
    if (settings->enableResize) {
        takeSize(resizeWidthField, settings->resizeWidth);
        takeSize(resizeHeightField, settings->resizeHeight);
    }
    commitNumber(fovField, fovRange, settings->horizontalFOV);
    commitNumber(disparityField, disparityRange, settings->disparityAdjustment);
    commitNumber(baselineField, baselineRange, settings->stereoBaseline);
}

void MainViewController::turnOnResize() {
    resizeWidthField->setFocus();
    enableResizeCheck->setChecked(true);
    settings->enableResize = true;
    layoutOptionsArea();
    resizeWidthField->setFocus();
    resizeWidthField->selectAll();
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

void MainViewController::setOutputFolder(const fs::path &folder) {
    settings->outputFolderURL = folder;
    showPath(outputPathLabel, shownPath(folder));
}

void MainViewController::showPath(ElidedLabel *label, const QString &path) {
    label->setText(path);
    label->setProperty("secondary", false);
    applyColours();
}

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
    std::error_code ignored;
    if (paths.size() == 1 && fs::is_directory(paths.front(), ignored)) {
        setInputFolder(paths.front());
        inputDropView->showFolder(paths.front());
        return warnOfAVI();
    }
    // A single chosen file is taken whatever it is; of several, the media.
    const std::vector<fs::path> files = paths.size() == 1 ? paths : mediaAmong(paths);
    if (files.empty())
        return;
    setInputFiles(files);
    inputDropView->showFiles(files);
    warnOfAVI();
}

void MainViewController::selectOutputFolder() {
    services_.panels->chooseOutputFolder(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (!form || paths.empty())
            return;
        form->setOutputFolder(paths.front());
        form->outputDropView->showFolder(paths.front());
    });
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

void MainViewController::checkSpatialMedia() {
    services_.panels->chooseFileToCheck(this, [form = QPointer(this)](const std::vector<fs::path> &paths) {
        if (form && !paths.empty())
            checkSpatialFile(paths.front(), form, form->settings, form->services_);
    });
}

void MainViewController::startConversion() {
    if (preflight_ || sheet_ || batchRuns_)
        return;
    preflight_ = new PreflightSequence(*this, services_);
    preflight_->start();
}

bool MainViewController::isConverting() const {
    return sheet_ && sheet_->state() == ProgressViewController::State::running;
}

void MainViewController::presentProgressSheet() {
    const QPointer<MainViewController> weak(this);
    ProgressViewController::Services services{services_.alerts.get(), services_.runBatch,
                                              [weak] {
                                                  if (weak)
                                                      weak->runEnded();
                                              },
                                              services_.showInFolder};
    sheet_ = new ProgressViewController(settings, services);
    connect(sheet_, &ProgressViewController::dismissed, this, &MainViewController::dismissSheet);
    connect(sheet_, &ProgressViewController::batchProgressed, this, &MainViewController::batchProgressed);
    connect(sheet_, &ProgressViewController::batchFinished, this, [this](bool success, const QString &message) {
        emit batchFinished(success, message);
        emit batchEnded();
    });
    batchRuns_ = true;
    emit batchStarted();
    sheet_->viewDidLoad();
    overlay_ = new SheetOverlay(documentHolder(), sheet_);
    updateUse();
}

void MainViewController::dismissSheet() {
    if (!sheet_)
        return;
    if (sheet_->isCancelled())
        emit batchEnded();
    sheet_ = nullptr;
    overlay_->hide();
    overlay_->deleteLater();
    updateUse();
}

void MainViewController::runEnded() {
    batchRuns_ = false;
    updateUse();
}

/// The form is out of use while a sheet covers it, and until a stopped batch, which reads the settings, has ended.
void MainViewController::updateUse() {
    const bool usable = !sheet_ && !batchRuns_;
    const bool stopping = !sheet_ && batchRuns_;
    const QString title = toQString(text(stopping ? "button.stopping" : "button.start.conversion"));
    startButton->setText(stopping ? title : QStringLiteral("▶  ") + title);
    startButton->setAccessibleName(title);
    documentHolder()->setEnabled(usable);
    if (usable)
        startButton->setFocus();
}

} // namespace lumetwin
