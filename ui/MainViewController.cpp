// SPDX-License-Identifier: GPL-3.0-or-later
// How the form keeps the settings in step with its controls, and starts batches.
#include "ui/MainViewController.h"

#include "ui/BatchPresentation.h"
#include "ui/ColouredButton.h"
#include "ui/FormValues.h"
#include "ui/Localized.h"
#include "ui/PreflightSequence.h"
#include "ui/ResizePreview.h"
#include "ui/ValueSlider.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QSignalBlocker>

namespace lumetwin {

namespace {

/// Moving a slider: the value goes into the setting, and its text into the field.
void takeFromSlider(double value, const StereoRange &range, double &setting, QLineEdit *field) {
    setting = value;
    const QSignalBlocker quiet(field);
    field->setText(fieldText(range, value));
}

/// Editing a field: what it stands for goes into the setting and moves the slider; anything else does nothing.
void takeFromField(const QLineEdit *field, const StereoRange &range, double &setting, ValueSlider *slider) {
    if (const auto value = fieldValue(range, field->text())) {
        setting = *value;
        slider->setDoubleValue(*value);
    }
}

} // namespace

MainViewController::MainViewController(FormServices services, QWidget *parent)
    : QWidget(parent), services_(std::move(services)) {
    buildInterface();
    applyFonts();
    applyColours();
    layoutOptionsArea();
    batch_ = std::make_unique<BatchPresentation>(scrollView, services_);
    connect(batch_.get(), &BatchPresentation::batchStarted, this, &MainViewController::batchStarted);
    connect(batch_.get(), &BatchPresentation::batchProgressed, this, &MainViewController::batchProgressed);
    connect(batch_.get(), &BatchPresentation::batchFinished, this, &MainViewController::batchFinished);
    connect(batch_.get(), &BatchPresentation::batchEnded, this, &MainViewController::batchEnded);
    connect(batch_.get(), &BatchPresentation::stateChanged, this, &MainViewController::updateUse);
}

MainViewController::~MainViewController() {
    // A field that goes while it is edited tells the end of its editing, when this is a form no more.
    for (const QObject *child : findChildren<QObject *>())
        child->disconnect(this);
}

void MainViewController::directionChanged(QAbstractButton *sender) {
    const bool toSBS = sender == spatialToSBSButton;
    settings->direction = toSBS ? ConversionDirection::spatialToSBS : ConversionDirection::sbsToSpatial;
    spatialToSBSButton->setChecked(toSBS);
    sbsToSpatialButton->setChecked(!toSBS);
    updateTabStop();
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
    takeSizes();
    updateResizePreview();
}

void MainViewController::resizeModeChanged(int index) {
    settings->resizeMode = resizeMode(index).value_or(ResizeMode::letterbox);
}

void MainViewController::updateResizePreview() {
    if (settings->enableResize)
        resizeWarningLabel->setText(toQString(resizePreview(*settings)));
}

void MainViewController::takeSizes() {
    settings->resizeWidth = eyeSize(resizeWidthField->text()).value_or(settings->resizeWidth);
    settings->resizeHeight = eyeSize(resizeHeightField->text()).value_or(settings->resizeHeight);
}

void MainViewController::commitFields() {
    settings->enableResize = enableResizeCheck->isChecked();
    if (settings->enableResize)
        takeSizes();
    const auto commit = [](const QLineEdit *field, const StereoRange &range, double &setting) {
        setting = fieldValue(range, field->text()).value_or(setting);
    };
    commit(fovField, fovRange, settings->horizontalFOV);
    commit(disparityField, disparityRange, settings->disparityAdjustment);
    commit(baselineField, baselineRange, settings->stereoBaseline);
}

void MainViewController::turnOnResize() {
    resizeWidthField->setFocus();
    enableResizeCheck->setChecked(true);
    settings->enableResize = true;
    layoutOptionsArea();
    resizeWidthField->setFocus();
    resizeWidthField->selectAll();
}

void MainViewController::startConversion() {
    if (preflight_ || batch_->state() != BatchPresentation::State::idle)
        return;
    preflight_ = new PreflightSequence(*this, services_);
    preflight_->start();
}

void MainViewController::presentProgressSheet() {
    batch_->present(settings);
}

ProgressViewController *MainViewController::progressSheet() const {
    return batch_->sheet();
}

bool MainViewController::isConverting() const {
    return batch_->isConverting();
}

/// The form is out of use while a sheet covers it, and until a stopped batch, which reads the settings, has ended.
void MainViewController::updateUse() {
    const bool usable = batch_->state() == BatchPresentation::State::idle;
    const bool stopping = batch_->state() == BatchPresentation::State::stopping;
    const QString title = toQString(text(stopping ? "button.stopping" : "button.start.conversion"));
    startButton->setText(stopping ? title : QStringLiteral("▶  ") + title);
    startButton->setAccessibleName(title);
    scrollView->setEnabled(usable);
    if (usable)
        startButton->setFocus();
}

} // namespace lumetwin
