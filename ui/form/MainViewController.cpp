// SPDX-License-Identifier: GPL-3.0-or-later
// Copies the values of the form's controls into the settings, and starts batches.
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

/// After a slider moved: stores its value in the setting and shows it in the field.
void setValueFromSlider(double value, const NumberRange &range, double &setting, NumberField *field) {
    setting = value;
    field->showValue(value, fieldText(range, value));
}

/// After a field was edited: stores its value in the setting and moves the slider. While the text is not valid, the
/// value from before the editing is used, so that no half-typed number stays in the settings.
void setValueFromField(const NumberField *field, double &setting, ValueSlider *slider) {
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
    focusFirstControl();
    batch_ = std::make_unique<BatchPresentation>(contentView, services_);
    connect(batch_.get(), &BatchPresentation::batchStarted, this, &MainViewController::batchStarted);
    connect(batch_.get(), &BatchPresentation::batchProgressed, this, &MainViewController::batchProgressed);
    connect(batch_.get(), &BatchPresentation::batchFinished, this, &MainViewController::batchFinished);
    connect(batch_.get(), &BatchPresentation::batchEnded, this, &MainViewController::batchEnded);
    connect(batch_.get(), &BatchPresentation::stateChanged, this, &MainViewController::updateEnabledState);
    connect(batch_.get(), &BatchPresentation::fileBegan, this, &MainViewController::fileBegan);
    connect(batch_.get(), &BatchPresentation::fileProgressed, this, &MainViewController::fileProgressed);
    connect(batch_.get(), &BatchPresentation::fileEnded, this, &MainViewController::fileEnded);
    connect(batch_.get(), &BatchPresentation::threadLeft, this, &MainViewController::batchLeft);
}

MainViewController::~MainViewController() {
    // A field that is destroyed while it has the focus emits editingFinished. At that time this form no longer exists.
    for (const QObject *child : findChildren<QObject *>())
        child->disconnect(this);
}

void MainViewController::focusFirstControl() {
    (spatialToSBSButton->isChecked() ? spatialToSBSButton : sbsToSpatialButton)->setFocus();
}

void MainViewController::directionChanged(QAbstractButton *sender) {
    const bool toSBS = sender == spatialToSBSButton;
    settings->direction = toSBS ? ConversionDirection::spatialToSBS : ConversionDirection::sbsToSpatial;
    spatialToSBSButton->setChecked(toSBS);
    sbsToSpatialButton->setChecked(!toSBS);
    updateTabStop();
    layoutOptionsArea();
    updateResizePreview();
    emit settingsChanged();
}

void MainViewController::fovSliderChanged(double value) {
    setValueFromSlider(value, fovRange, settings->horizontalFOV, fovField);
    updateResetButtons();
}

void MainViewController::disparitySliderChanged(double value) {
    setValueFromSlider(value, disparityRange, settings->disparityAdjustment, disparityField);
    updateResetButtons();
}

void MainViewController::baselineSliderChanged(double value) {
    setValueFromSlider(value, baselineRange, settings->stereoBaseline, baselineField);
    updateResetButtons();
}

void MainViewController::fovFieldChanged() {
    setValueFromField(fovField, settings->horizontalFOV, fovSlider);
    updateResetButtons();
    updateResizePreview();
}

void MainViewController::disparityFieldChanged() {
    setValueFromField(disparityField, settings->disparityAdjustment, disparitySlider);
    updateResetButtons();
    updateResizePreview();
}

void MainViewController::baselineFieldChanged() {
    setValueFromField(baselineField, settings->stereoBaseline, baselineSlider);
    updateResetButtons();
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
    readSizeFields();
    updateResizePreview();
}

void MainViewController::inputLayoutChanged(int index) {
    if (index >= 0 && index < static_cast<int>(allInputLayouts.size()))
        settings->inputLayout = allInputLayouts.at(static_cast<std::size_t>(index));
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

void MainViewController::readSizeFields() {
    settings->resizeWidth = static_cast<std::int64_t>(resizeWidthField->value());
    settings->resizeHeight = static_cast<std::int64_t>(resizeHeightField->value());
}

void MainViewController::updateResetButtons() {
    fovReset->setEnabled(settings->horizontalFOV != fovRange.start);
    disparityReset->setEnabled(settings->disparityAdjustment != disparityRange.start);
    baselineReset->setEnabled(settings->stereoBaseline != baselineRange.start);
}

NumberField *MainViewController::firstInvalidField() const {
    QList<NumberField *> inUse;
    if (settings->direction == ConversionDirection::sbsToSpatial)
        inUse = {fovField, disparityField, baselineField};
    if (settings->enableResize)
        inUse << resizeWidthField << resizeHeightField;
    for (NumberField *field : inUse)
        if (!field->isValid())
            return field;
    return nullptr;
}

QString MainViewController::fieldName(const NumberField *field) const {
    return field->accessibleName();
}

void MainViewController::commitFields() {
    settings->enableResize = enableResizeCheck->isChecked();
    if (settings->enableResize)
        readSizeFields();
    const auto saveIfValid = [](const NumberField *field, double &setting) {
        if (field->isValid())
            setting = field->value();
    };
    saveIfValid(fovField, settings->horizontalFOV);
    saveIfValid(disparityField, settings->disparityAdjustment);
    saveIfValid(baselineField, settings->stereoBaseline);
}

void MainViewController::turnOnResize() {
    resizeWidthField->setFocus();
    enableResizeCheck->setChecked(true);
    settings->enableResize = true;
    layoutOptionsArea();
    resizeWidthField->setFocus();
    resizeWidthField->selectAll();
}

bool MainViewController::isIdle() const {
    return !preflight_ && batch_->state() == BatchPresentation::State::idle;
}

void MainViewController::setSwapped(bool swapped) {
    if (isIdle())
        swapLRCheck->setChecked(swapped);
}

void MainViewController::setDisparityAdjustment(double adjustment) {
    if (isIdle())
        disparitySlider->moveTo(adjustment);
}

void MainViewController::turnDirection() {
    if (isIdle())
        (spatialToSBSButton->isChecked() ? sbsToSpatialButton : spatialToSBSButton)->setChecked(true);
}

void MainViewController::setDirection(ConversionDirection direction) {
    if (settings->direction != direction)
        turnDirection();
}

void MainViewController::setLeftOut(const std::set<std::filesystem::path> &files) {
    settings->leftOut = files;
}

void MainViewController::showFilesPanelState(bool open) {
    filesButton->setChecked(open);
}

void MainViewController::startConversion() {
    if (!isIdle())
        return;
    preflight_ = new PreflightSequence(*this, services_);
    connect(preflight_, &QObject::destroyed, this, [this] {
        if (batch_->state() == BatchPresentation::State::idle)
            emit startRefused();
        showCheckResult();
    });
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

/// Disables the form while a sheet covers it, and until a stopped batch has ended, because that batch still reads the
/// settings.
void MainViewController::updateEnabledState() {
    const bool usable = batch_->state() == BatchPresentation::State::idle;
    const bool stopping = batch_->state() == BatchPresentation::State::stopping;
    const QString title = toQString(text(stopping ? "button.stopping" : "button.start.conversion"));
    startButton->setText(stopping ? title : QStringLiteral("▶  ") + title);
    startButton->setAccessibleName(title);
    setShortcuts(); // setText removed the shortcut
    contentView->setEnabled(usable);
    if (usable)
        startButton->setFocus();
    showCheckResult();
}

} // namespace lumetwin
