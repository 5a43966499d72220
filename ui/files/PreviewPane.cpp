// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/PreviewPane.h"

#include "engine/batch/Forecast.h"
#include "engine/stereo/StereoWarnings.h"
#include "engine/texts/WarningTexts.h"
#include "ui/files/DisparityBar.h"
#include "ui/files/PreviewCanvas.h"
#include "ui/files/RowTexts.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"
#include "ui/widgets/RowLayout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

constexpr int sliderSteps = 1000;
constexpr int wholePicture = 16384; // pixels; larger than any that is read

} // namespace

PreviewPane::PreviewPane(std::shared_ptr<const ConversionSettings> settings, MediaOperations operations,
                         QWidget *parent)
    : QWidget(parent), settings_(std::move(settings)), loader_(std::move(operations)) {
    build();
    applyFonts();
    connect(&loader_, &PreviewLoader::drawn, this, &PreviewPane::drawn);
    connect(&loader_, &PreviewLoader::examined, this, &PreviewPane::examined);
    connect(&loader_, &PreviewLoader::failed, this, &PreviewPane::failed);
    showNothing();
}

void PreviewPane::build() {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(buildTools());
    canvas_ = new PreviewCanvas(this);
    canvas_->setObjectName(QStringLiteral("previewCanvas"));
    canvas_->setAccessibleName(localizedText("preview.title"));
    canvas_->setToolTip(localizedText("preview.keys"));
    connect(canvas_, &PreviewCanvas::resized, this, [this] { load(isExact_); });
    connect(canvas_, &PreviewCanvas::modeAsked, this, [this](int mode) { setMode(static_cast<PreviewMode>(mode)); });
    connect(canvas_, &PreviewCanvas::actualSizeAsked, this, &PreviewPane::setActualSize);
    layout->addWidget(canvas_, 1);
    layout->addWidget(buildTimeLine());
    layout->addWidget(buildJudgement());
    for (QWidget *control : std::initializer_list<QWidget *>{modePopup_, timeSlider_}) {
        control->setFocusPolicy(Qt::StrongFocus); // the wheel does not give the focus
        control->installEventFilter(this);
    }
}

QWidget *PreviewPane::buildTools() {
    auto *tools = new QWidget(this);
    QHBoxLayout *layout = rowLayoutIn(tools);
    modePopup_ = new QComboBox(tools);
    modePopup_->setObjectName(QStringLiteral("previewModePopup"));
    modePopup_->setAccessibleName(localizedText("preview.mode"));
    modePopup_->setToolTip(localizedText("preview.keys"));
    for (const char *key :
         {"preview.mode.side.by.side", "preview.mode.left", "preview.mode.right", "preview.mode.anaglyph",
          "preview.mode.wiggle", "preview.mode.difference", "preview.mode.as.written"})
        modePopup_->addItem(localizedText(key));
    connect(modePopup_, &QComboBox::currentIndexChanged, this, [this] { load(isExact_); });
    actualSizeButton_ = new QToolButton(tools);
    actualSizeButton_->setObjectName(QStringLiteral("actualSizeButton"));
    actualSizeButton_->setText(QStringLiteral("100 %"));
    actualSizeButton_->setCheckable(true);
    actualSizeButton_->setFocusPolicy(Qt::StrongFocus);
    actualSizeButton_->setToolTip(localizedText("preview.actual.size"));
    actualSizeButton_->setAccessibleName(localizedText("preview.actual.size"));
    connect(actualSizeButton_, &QToolButton::toggled, this, &PreviewPane::setActualSize);
    layout->addWidget(modePopup_);
    layout->addStretch();
    layout->addWidget(actualSizeButton_);
    return tools;
}

QWidget *PreviewPane::buildTimeLine() {
    timeLine_ = new QWidget(this);
    QHBoxLayout *layout = rowLayoutIn(timeLine_);
    timeSlider_ = new QSlider(Qt::Horizontal, timeLine_);
    timeSlider_->setObjectName(QStringLiteral("previewTimeSlider"));
    timeSlider_->setRange(0, sliderSteps);
    timeSlider_->setValue(sliderSteps / 10);
    timeSlider_->setSingleStep(sliderSteps / 100);
    timeSlider_->setPageStep(sliderSteps / 10);
    timeSlider_->setAccessibleName(localizedText("preview.time"));
    connect(timeSlider_, &QSlider::valueChanged, this, &PreviewPane::positionMoved);
    connect(timeSlider_, &QSlider::sliderReleased, this, [this] { load(true); });
    timeLabel_ = new QLabel(timeLine_);
    layout->addWidget(timeSlider_, 1);
    layout->addWidget(timeLabel_);
    return timeLine_;
}

QWidget *PreviewPane::buildJudgement() {
    judgement_ = new QWidget(this);
    auto *layout = new QVBoxLayout(judgement_);
    layout->setContentsMargins(0, 0, 0, 0);
    disparityBar_ = new DisparityBar(judgement_);
    disparityBar_->setObjectName(QStringLiteral("disparityBar"));
    disparityBar_->setAccessibleName(localizedText("preview.disparity"));
    wordsLabel_ = new QLabel(judgement_);
    wordsLabel_->setObjectName(QStringLiteral("previewWords"));
    wordsLabel_->setWordWrap(true);
    wordsLabel_->setTextFormat(Qt::PlainText);
    auto *buttons = new QWidget(judgement_);
    QHBoxLayout *row = rowLayoutIn(buttons);
    swapCheck_ = new QCheckBox(localizedText("preview.swap"), buttons);
    swapCheck_->setObjectName(QStringLiteral("previewSwapCheck"));
    connect(swapCheck_, &QCheckBox::clicked, this, &PreviewPane::swapAsked);
    adjustButton_ = new QPushButton(localizedText("preview.suggest.adjustment"), buttons);
    adjustButton_->setObjectName(QStringLiteral("suggestAdjustmentButton"));
    adjustButton_->setToolTip(localizedText("preview.suggest.adjustment.help"));
    connect(adjustButton_, &QPushButton::clicked, this, [this] {
        if (findings_ && findings_->disparity)
            emit adjustmentAsked(chosenAdjustment(*findings_->disparity));
    });
    row->addWidget(swapCheck_);
    row->addStretch();
    row->addWidget(adjustButton_);
    layout->addWidget(disparityBar_);
    layout->addWidget(wordsLabel_);
    layout->addWidget(buttons);
    return judgement_;
}

void PreviewPane::applyFonts() {
    const PointScale scale = PointScale::current();
    for (QWidget *control : std::initializer_list<QWidget *>{modePopup_, swapCheck_, adjustButton_})
        control->setFont(scale.font(13));
    for (QWidget *control : std::initializer_list<QWidget *>{wordsLabel_, actualSizeButton_})
        control->setFont(scale.font(12));
    timeLabel_->setFont(scale.digitFont(12));
}

void PreviewPane::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && canvas_)
        applyFonts();
}

/// The wheel does not change a control that it only passes.
bool PreviewPane::eventFilter(QObject *watched, QEvent *event) {
    const bool passes = event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus();
    return passes || QWidget::eventFilter(watched, event);
}

void PreviewPane::showNothing() {
    row_.reset();
    facts_.reset();
    findings_.reset();
    forgetWish();
    canvas_->setMessage(localizedText("preview.nothing"));
    timeLine_->hide();
    judgement_->hide();
}

void PreviewPane::showRow(const FileRow &row) {
    const bool isSame = row_ && row_->file == row.file && row_->look.has_value() == row.look.has_value();
    const bool isOther = !row_ || row_->file != row.file;
    row_ = row;
    if (isSame)
        return refresh();
    if (isOther) {
        facts_.reset();
        findings_.reset();
        forgetWish();
        canvas_->setMessage({});
        timeLine_->setVisible(row.kind == FileRow::Kind::video);
        judgement_->hide();
        const QSignalBlocker quiet(timeSlider_);
        timeSlider_->setValue(sliderSteps / 10);
        timeLabel_->clear();
    }
    if (row.kind == FileRow::Kind::unsupported)
        failed(localizedText("files.state.unsupported"));
    else if (row.look)
        load(true);
}

void PreviewPane::refresh() {
    if (!row_)
        return;
    swapCheck_->setChecked(settings_->swapLeftRight);
    showJudgement();
    load(isExact_);
}

void PreviewPane::setLocked(bool locked) {
    swapCheck_->setEnabled(!locked);
    adjustButton_->setEnabled(!locked);
}

void PreviewPane::setMode(PreviewMode mode) {
    modePopup_->setCurrentIndex(static_cast<int>(mode));
}

void PreviewPane::setActualSize(bool actualSize) {
    const QSignalBlocker quiet(actualSizeButton_);
    actualSizeButton_->setChecked(actualSize);
    canvas_->setActualSize(actualSize);
    load(isExact_);
}

void PreviewPane::forgetWish() {
    wish_.reset();
    loader_.clear();
}

/// Asks for the picture, unless it is asked for already or nobody can see it.
void PreviewPane::load(bool exact) {
    if (!row_ || !row_->look || row_->kind == FileRow::Kind::unsupported || !isVisible() || canvas_->room().isEmpty())
        return;
    isExact_ = exact;
    const bool isSpatial = isSpatialMedia(row_->look->facts);
    PreviewWish wish;
    wish.file = row_->file;
    wish.rightEye = row_->rightEye;
    wish.mode = static_cast<PreviewMode>(modePopup_->currentIndex());
    wish.request.layout = isSpatial ? StereoLayout() : layoutToShow(row_->look->facts, *settings_);
    wish.request.position = static_cast<double>(timeSlider_->value()) / sliderSteps;
    const bool isExact = exact && row_->kind == FileRow::Kind::video;
    wish.request.detail = isExact ? PreviewDetail::exact : PreviewDetail::near;
    if (!canvas_->isActualSize())
        wish.room = canvas_->room();
    wish.request.maximumWidth = canvas_->isActualSize() ? wholePicture : wish.room.width();
    wish.request.maximumHeight = canvas_->isActualSize() ? wholePicture : wish.room.height();
    if (wish_ && isSamePicture(*wish_, wish) && wish_->mode == wish.mode && wish_->room == wish.room &&
        drawsAlike(*wish_->settings, *settings_))
        return;
    wish.settings = snapshotOf(*settings_);
    wish_ = wish;
    loader_.load(std::move(wish));
}

/// While the slider is dragged, frames near the time are shown, which come sooner.
void PreviewPane::positionMoved() {
    if (facts_)
        showTime(facts_->duration * timeSlider_->value() / sliderSteps);
    load(!timeSlider_->isSliderDown());
}

void PreviewPane::showTime(double seconds) {
    const double duration = facts_ ? facts_->duration : 0;
    timeLabel_->setText(durationText(seconds) + QStringLiteral(" / ") + durationText(duration));
}

void PreviewPane::drawn(const PreviewShow &show) {
    facts_ = show.facts;
    canvas_->setShow(show);
    if (row_ && row_->kind == FileRow::Kind::video && show.isLast && !timeSlider_->isSliderDown())
        showTime(show.facts.seconds);
    modePopup_->setEnabled(show.facts.hasBothEyes);
    judgement_->setVisible(show.facts.hasBothEyes);
    showJudgement();
}

void PreviewPane::examined(const StereoFindings &findings) {
    findings_ = findings;
    showJudgement();
}

void PreviewPane::failed(const QString &reason) {
    canvas_->setMessage(reason);
    judgement_->hide();
}

/// The warnings of the last run, or those that a run would give, and what the picture that is shown adds to them.
std::string PreviewPane::judgementWords(const StereoFindings &findings) const {
    const bool hasResult = row_ && row_->result;
    std::vector<Warning> warnings;
    if (hasResult)
        warnings = row_->result->warnings;
    else if (row_ && row_->look)
        warnings = warningsOf(*row_, *settings_);
    StereoLayout layout;
    layout.arrangement = findings.seen.value_or(layout.arrangement);
    if (!hasResult)
        for (const Warning &warning : stereoWarnings(findings, layout))
            if (std::ranges::find(warnings, warning.kind, &Warning::kind) == warnings.end())
                warnings.push_back(warning);
    std::string words = hasResult ? row_->result->reason : "";
    for (const Warning &warning : warnings)
        words += (words.empty() ? "" : "\n") + warningText(warning);
    if (words.empty() && findings.disparity)
        words = formatted("preview.vertical.format", std::abs(findings.disparity->vertical));
    return words;
}

void PreviewPane::showJudgement() {
    swapCheck_->setChecked(settings_->swapLeftRight);
    if (!findings_ || !findings_->wasExamined) {
        disparityBar_->setFigures(std::nullopt);
        wordsLabel_->hide();
        adjustButton_->hide();
        return;
    }
    const StereoFindings shown = settings_->swapLeftRight ? ofSwappedEyes(*findings_) : *findings_;
    disparityBar_->setFigures(shown.disparity);
    wordsLabel_->setText(toQString(judgementWords(shown)));
    wordsLabel_->setVisible(!wordsLabel_->text().isEmpty());
    const bool writesAdjustment = settings_->direction == ConversionDirection::sbsToSpatial;
    adjustButton_->setVisible(shown.disparity.has_value() && writesAdjustment);
}

} // namespace lumetwin
