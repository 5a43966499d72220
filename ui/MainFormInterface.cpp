// SPDX-License-Identifier: GPL-3.0-or-later
// The building of the form: every control, its texts, its starting state and its action.
#include "ui/MainViewController.h"

#include "ui/ColouredButton.h"
#include "ui/DropFolderView.h"
#include "ui/ElidedLabel.h"
#include "ui/HeaderBand.h"
#include "ui/Localized.h"
#include "ui/SectionView.h"
#include "ui/ValueSlider.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>

namespace lumetwin {

namespace {

template <typename Widget> Widget *named(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QString local(const char *key) {
    return toQString(text(key));
}

/// The caption's text names the control for screen readers too.
void describe(QLabel *caption, QWidget *control) {
    caption->setBuddy(control);
    control->setAccessibleName(caption->text());
}

} // namespace

void MainViewController::buildInterface() {
    scrollView = named(new QScrollArea(this), "scrollView");
    scrollView->setFrameShape(QFrame::NoFrame);
    scrollView->setFocusPolicy(Qt::NoFocus);
    documentView = named(new QWidget, "documentView");
    buildHeader();
    buildDirection();
    buildInput();
    buildOutput();
    optionsSection = named(new SectionView(local("section.output.options"), documentView), "optionsSection");
    buildSpatialOptions();
    buildSBSOptions();
    buildCommonOptions();
    buildStartButton();
    setTabOrders();
    scrollView->setWidget(documentView);
}

QLabel *MainViewController::caption(QLabel *&label, const std::string &text, QWidget *parent, bool unit) {
    if (!label) {
        label = new QLabel(toQString(text), parent);
        label->setTextFormat(Qt::PlainText);
        label->setProperty("secondary", unit);
    }
    return label;
}

void MainViewController::buildHeader() {
    headerView = named(new HeaderBand(documentView), "headerView");
    titleLabel = named(new QLabel(QStringLiteral("🎬  Lumetwin"), headerView), "titleLabel");
    subtitleLabel = named(new QLabel(local("app.subtitle"), headerView), "subtitleLabel");
    subtitleLabel->setProperty("secondary", true);
}

void MainViewController::buildDirection() {
    directionSection = named(new SectionView(local("section.direction"), documentView), "directionSection");
    spatialToSBSButton =
        named(new QRadioButton(local("direction.spatial.to.sbs"), directionSection), "spatialToSBSButton");
    sbsToSpatialButton =
        named(new QRadioButton(local("direction.sbs.to.spatial"), directionSection), "sbsToSpatialButton");
    spatialToSBSButton->setChecked(true);
    auto *tags = new QButtonGroup(this);
    tags->addButton(spatialToSBSButton, 0);
    tags->addButton(sbsToSpatialButton, 1);
    // Also when the arrow keys choose: the button that becomes checked is the sender.
    connect(tags, &QButtonGroup::buttonToggled, this, [this](QAbstractButton *button, bool checked) {
        if (checked)
            directionChanged(button);
    });
}

void MainViewController::buildInput() {
    inputSection = named(new SectionView(local("panel.select.input.title"), documentView), "inputSection");
    inputDropView = named(new DropFolderView(inputSection), "inputDropView");
    inputDropView->setPlaceholder(local("drop.folder.file.placeholder"));
    inputDropView->setAccessibleName(inputSection->titleLabel->text());
    inputDropView->onFolderDropped = [this](const auto &folder) {
        setInputFolder(folder);
        warnOfAVI();
    };
    inputDropView->onFilesDropped = [this](const auto &files) {
        setInputFiles(files);
        warnOfAVI();
    };
    inputDropView->onActivated = [this] { selectInputFolder(); };
    inputSelectBtn = named(new QPushButton(local("button.select"), inputSection), "inputSelectBtn");
    inputSelectBtn->setAccessibleDescription(inputSection->titleLabel->text());
    connect(inputSelectBtn, &QPushButton::clicked, this, &MainViewController::selectInputFolder);
    checkSpatialBtn = named(new QPushButton(local("button.check.spatial"), inputSection), "checkSpatialBtn");
    connect(checkSpatialBtn, &QPushButton::clicked, this, &MainViewController::checkSpatialMedia);
    inputPathLabel = named(new ElidedLabel(local("label.not.selected"), inputSection), "inputPathLabel");
    inputPathLabel->setProperty("secondary", true);
}

void MainViewController::buildOutput() {
    outputSection = named(new SectionView(local("section.output.folder"), documentView), "outputSection");
    outputDropView = named(new DropFolderView(outputSection), "outputDropView");
    outputDropView->setPlaceholder(toQString(folderPlaceholder()));
    outputDropView->setAccessibleName(outputSection->titleLabel->text());
    outputDropView->onFolderDropped = [this](const auto &folder) { setOutputFolder(folder); };
    outputDropView->onActivated = [this] { selectOutputFolder(); };
    outputSelectBtn = named(new QPushButton(local("button.select.folder"), outputSection), "outputSelectBtn");
    outputSelectBtn->setAccessibleDescription(outputSection->titleLabel->text());
    connect(outputSelectBtn, &QPushButton::clicked, this, &MainViewController::selectOutputFolder);
    outputPathLabel = named(new ElidedLabel(local("label.not.selected"), outputSection), "outputPathLabel");
    outputPathLabel->setProperty("secondary", true);
}

QLineEdit *MainViewController::numberField(const char *name, const QString &start, QLabel *caption) {
    auto *field = named(new QLineEdit(start, caption->parentWidget()), name);
    field->setAlignment(Qt::AlignRight);
    describe(caption, field);
    return field;
}

void MainViewController::buildSpatialOptions() {
    spatialOptionsView = named(new QWidget(optionsSection), "spatialOptionsView");
    const auto slider = [this](const char *name, const StereoRange &range, QLabel *caption) {
        auto *made = named(new ValueSlider(range, spatialOptionsView), name);
        made->setAccessibleName(caption->text());
        return made;
    };
    QWidget *view = spatialOptionsView;
    fovSlider = slider("fovSlider", fovRange, caption(lblFOV, text("option.fov"), view));
    fovField = numberField("fovField", QStringLiteral("63.4"), lblFOV);
    caption(lblFovUnit, "°", view, true);
    disparitySlider = slider("disparitySlider", disparityRange, caption(lblDisparity, text("option.disparity"), view));
    disparityField = numberField("disparityField", QStringLiteral("2.00"), lblDisparity);
    caption(lblDispUnit, "%", view, true);
    baselineSlider = slider("baselineSlider", baselineRange, caption(lblBaseline, text("option.baseline"), view));
    baselineField = numberField("baselineField", QStringLiteral("19.24"), lblBaseline);
    caption(lblBaseUnit, "mm", view, true);
    connect(fovSlider, &ValueSlider::moved, this, &MainViewController::fovSliderChanged);
    connect(disparitySlider, &ValueSlider::moved, this, &MainViewController::disparitySliderChanged);
    connect(baselineSlider, &ValueSlider::moved, this, &MainViewController::baselineSliderChanged);
    const auto follow = [this](QLineEdit *edited, void (MainViewController::*action)()) {
        connect(edited, &QLineEdit::textChanged, this, action);
        connect(edited, &QLineEdit::editingFinished, this, action);
    };
    follow(fovField, &MainViewController::fovFieldChanged);
    follow(disparityField, &MainViewController::disparityFieldChanged);
    follow(baselineField, &MainViewController::baselineFieldChanged);
}

void MainViewController::buildSBSOptions() {
    sbsOptionsView = named(new QWidget(optionsSection), "sbsOptionsView");
    const auto popup = [this](const char *name, const auto &cases, QLabel *caption) {
        auto *made = named(new QComboBox(sbsOptionsView), name);
        for (const auto item : cases)
            made->addItem(QString::fromUtf8(rawValue(item).data(), static_cast<qsizetype>(rawValue(item).size())));
        describe(caption, made);
        return made;
    };
    QWidget *view = sbsOptionsView;
    formatPopup = popup("formatPopup", allSBSOutputFormats, caption(lblFmt, text("option.output.format"), view));
    connect(formatPopup, &QComboBox::currentIndexChanged, this, &MainViewController::formatChanged);
    photoFormatPopup = popup("photoFormatPopup", allSBSPhotoOutputFormats,
                             caption(lblPhotoFmt, text("option.photo.output.format"), view));
    connect(photoFormatPopup, &QComboBox::currentIndexChanged, this, &MainViewController::photoFormatChanged);
    caption(lblQuality, text("option.quality"), view);
    compressionSlider = named(new ValueSlider(qualityRange, view), "compressionSlider");
    describe(lblQuality, compressionSlider);
    connect(compressionSlider, &ValueSlider::moved, this, &MainViewController::compressionChanged);
    compressionLabel = named(new QLabel(QStringLiteral("75%"), view), "compressionLabel");
    halfWidthCheck = named(new QCheckBox(local("option.half.width"), view), "halfWidthCheck");
    connect(halfWidthCheck, &QCheckBox::toggled, this, &MainViewController::halfWidthChanged);
}

void MainViewController::buildCommonOptions() {
    commonSection = named(new SectionView(local("section.common"), documentView), "commonSection");
    QWidget *view = commonSection;
    swapLRCheck = named(new QCheckBox(local("option.swap.lr"), view), "swapLRCheck");
    connect(swapLRCheck, &QCheckBox::toggled, this, &MainViewController::swapLRChanged);
    copyAudioCheck = named(new QCheckBox(local("option.copy.audio"), view), "copyAudioCheck");
    copyAudioCheck->setChecked(true);
    connect(copyAudioCheck, &QCheckBox::toggled, this, &MainViewController::copyAudioChanged);
    enableResizeCheck = named(new QCheckBox(local("option.enable.resize"), view), "enableResizeCheck");
    connect(enableResizeCheck, &QCheckBox::toggled, this, &MainViewController::enableResizeChanged);
    resizeWidthField =
        numberField("resizeWidthField", QStringLiteral("1920"), caption(lblEyeW, text("resize.eye.width"), view));
    caption(lblCross, "×", view, true);
    resizeHeightField =
        numberField("resizeHeightField", QStringLiteral("1080"), caption(lblEyeH, text("resize.eye.height"), view));
    caption(lblPx, "px", view, true);
    for (QLineEdit *field : {resizeWidthField, resizeHeightField}) {
        connect(field, &QLineEdit::textChanged, this, &MainViewController::resizeDimChanged);
        connect(field, &QLineEdit::editingFinished, this, &MainViewController::resizeDimChanged);
    }
    caption(lblResizeMode, text("resize.mode.label"), view);
    resizeModePopup = named(new QComboBox(view), "resizeModePopup");
    resizeModePopup->addItem(toQString(text("resize.mode.stretch", "Stretch to output size (ignore aspect ratio)")));
    resizeModePopup->addItem(toQString(text("resize.mode.cropFill", "Preserve aspect ratio (center crop)")));
    resizeModePopup->addItem(toQString(text("resize.mode.letterbox", "Preserve aspect ratio (letterbox)")));
    resizeModePopup->setCurrentIndex(rawValue(ResizeMode::letterbox));
    describe(lblResizeMode, resizeModePopup);
    connect(resizeModePopup, &QComboBox::currentIndexChanged, this, &MainViewController::resizeModeChanged);
    resizeWarningLabel = named(new QLabel(view), "resizeWarningLabel");
    resizeWarningLabel->setWordWrap(true);
    resizeWarningLabel->setTextFormat(Qt::PlainText);
    resizeWarningLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void MainViewController::buildStartButton() {
    const QString title = local("button.start.conversion");
    startButton = named(new ColouredButton(QStringLiteral("▶  ") + title, 10, documentView), "startButton");
    startButton->setAccessibleName(title);
    startButton->setAutoDefault(false);
    connect(startButton, &QPushButton::clicked, this, &MainViewController::startConversion);
}

void MainViewController::setTabOrders() {
    const QList<QWidget *> order{
        spatialToSBSButton, sbsToSpatialButton, inputDropView,    inputSelectBtn,    checkSpatialBtn, outputDropView,
        outputSelectBtn,    fovSlider,          fovField,         disparitySlider,   disparityField,  baselineSlider,
        baselineField,      formatPopup,        photoFormatPopup, compressionSlider, halfWidthCheck,  swapLRCheck,
        copyAudioCheck,     enableResizeCheck,  resizeWidthField, resizeHeightField, resizeModePopup, startButton};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    for (QWidget *control : order)
        control->installEventFilter(this);
    updateTabStop();
}

/// The tabulator stops at the chosen direction, however it was chosen; the toolkit lets it stop at the button that had
/// the focus last.
void MainViewController::updateTabStop() {
    for (QRadioButton *button : {spatialToSBSButton, sbsToSpatialButton})
        button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
}

} // namespace lumetwin
