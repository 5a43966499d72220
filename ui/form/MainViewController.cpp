// SPDX-License-Identifier: GPL-3.0-or-later
// How the form keeps the settings in step with its controls, and starts batches.
#include "ui/form/MainViewController.h"

#include "ui/form/FormValues.h"
#include "ui/form/PreflightSequence.h"
#include "ui/form/ResizePreview.h"
#include "ui/progress/BatchPresentation.h"
#include "ui/widgets/ColouredButton.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/NumberField.h"
#include "ui/widgets/ValueSlider.h"

#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>
#include <QScrollArea>
#include <QToolButton>

namespace lumetwin {

namespace {

/// Moving a slider: the value goes into the setting, and its text into the field.
void takeFromSlider(double value, const StereoRange &range, double &setting, NumberField *field) {
    setting = value;
    field->showValue(value, fieldText(range, value));
}

/// Editing a field: what it stands for goes into the setting and moves the slider. What it does not take stands for
/// the value before the editing, so that no half-typed number is left behind.
void takeFromField(const NumberField *field, double &setting, ValueSlider *slider) {
    setting = field->value();
    slider->setDoubleValue(setting);
}

} // namespace

MainViewController::MainViewController(FormServices services, QWidget *parent)
    : QWidget(parent), services_(std::move(services)) {
    buildInterface();
    applyFonts();
    applyColours();
    layoutOptionsArea();
    spatialToSBSButton->setFocus(); // the first control has the focus at first, not the start button
    batch_ = std::make_unique<BatchPresentation>(contentView, services_);
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
    updateResets();
}

void MainViewController::disparitySliderChanged(double value) {
    takeFromSlider(value, disparityRange, settings->disparityAdjustment, disparityField);
    updateResets();
}

void MainViewController::baselineSliderChanged(double value) {
    takeFromSlider(value, baselineRange, settings->stereoBaseline, baselineField);
    updateResets();
}

void MainViewController::fovFieldChanged() {
    takeFromField(fovField, settings->horizontalFOV, fovSlider);
    updateResets();
    updateResizePreview();
}

void MainViewController::disparityFieldChanged() {
    takeFromField(disparityField, settings->disparityAdjustment, disparitySlider);
    updateResets();
    updateResizePreview();
}

void MainViewController::baselineFieldChanged() {
    takeFromField(baselineField, settings->stereoBaseline, baselineSlider);
    updateResets();
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

void MainViewController::keepTimingChanged(bool checked) {
    settings->keepTiming = checked;
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
    if (!settings->enableResize)
        return;
    resizeWarningLabel->setText(toQString(resizePreview(*settings)));
    applyColours();
}

void MainViewController::takeSizes() {
    settings->resizeWidth = static_cast<std::int64_t>(resizeWidthField->value());
    settings->resizeHeight = static_cast<std::int64_t>(resizeHeightField->value());
}

void MainViewController::updateResets() {
    fovReset->setEnabled(settings->horizontalFOV != fovRange.start);
    disparityReset->setEnabled(settings->disparityAdjustment != disparityRange.start);
    baselineReset->setEnabled(settings->stereoBaseline != baselineRange.start);
}

NumberField *MainViewController::wrongField() const {
    QList<NumberField *> inUse;
    if (settings->direction == ConversionDirection::sbsToSpatial)
        inUse = {fovField, disparityField, baselineField};
    if (settings->enableResize)
        inUse << resizeWidthField << resizeHeightField;
    for (NumberField *field : inUse)
        if (!field->isAccepted())
            return field;
    return nullptr;
}

QString MainViewController::nameOf(const NumberField *field) const {
    return field->accessibleName();
}

void MainViewController::commitFields() {
    settings->enableResize = enableResizeCheck->isChecked();
    if (settings->enableResize)
        takeSizes();
    const auto commit = [](const NumberField *field, double &setting) {
        if (field->isAccepted())
            setting = field->value();
    };
    commit(fovField, settings->horizontalFOV);
    commit(disparityField, settings->disparityAdjustment);
    commit(baselineField, settings->stereoBaseline);
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
    connect(preflight_, &QObject::destroyed, this, &MainViewController::showAnswer);
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
    setShortcuts(); // which go with the old title
    contentView->setEnabled(usable);
    if (usable)
        startButton->setFocus();
    showAnswer();
}

} // namespace lumetwin
