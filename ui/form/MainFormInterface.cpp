// SPDX-License-Identifier: GPL-3.0-or-later
// Builds the form: every control with its texts, its initial state and its action.
#include "ui/form/MainViewController.h"

#include "ui/files/DropFolderView.h"
#include "ui/files/DroppedFiles.h"
#include "ui/files/WritableFolder.h"
#include "ui/form/FormValues.h"
#include "ui/form/HeaderBand.h"
#include "ui/form/SectionView.h"
#include "ui/widgets/ColouredButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Mnemonics.h"
#include "ui/widgets/NumberField.h"
#include "ui/widgets/ValueSlider.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QRadioButton>
#include <QScrollArea>
#include <QShortcut>
#include <QToolButton>

namespace lumetwin {

namespace {

template <typename Widget> Widget *withName(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

/// Makes the label the caption of the control, also for screen readers.
void setCaption(QLabel *caption, QWidget *control) {
    caption->setBuddy(control);
    control->setAccessibleName(caption->accessibleName());
}

/// Sets the text of a button or label, and the letter that reaches it together with the Alt key.
template <typename Button> Button *withLabel(Button *button, const QString &words, char mnemonic) {
    button->setText(withMnemonic(words, mnemonic));
    button->setAccessibleName(words);
    return button;
}

/// The shortest text of a number, such as 10, -100 or 19.24.
std::string shortNumber(double value) {
    return QString::number(value).toStdString();
}

QString shortcutText(const QKeySequence &keys) {
    return keys.toString(QKeySequence::NativeText);
}

} // namespace

void MainViewController::buildInterface() {
    contentView = withName(new QWidget(this), "contentView");
    scrollView = withName(new QScrollArea(contentView), "scrollView");
    scrollView->setFrameShape(QFrame::NoFrame);
    scrollView->setFocusPolicy(Qt::NoFocus);
    documentView = withName(new QWidget, "documentView");
    buildHeader();
    buildDirection();
    buildInput();
    buildOutput();
    optionsSection = withName(new SectionView(localizedText("section.output.options"), documentView), "optionsSection");
    buildSpatialOptions();
    buildSBSOptions();
    buildCommonOptions();
    buildStartButton();
    scrollView->setWidget(documentView);
    setTabOrders();
    setShortcuts();
    updateResetButtons();
    reportChanges();
}

/// Emits settingsChanged after any control has changed its setting.
void MainViewController::reportChanges() {
    for (QAbstractButton *button : std::initializer_list<QAbstractButton *>{halfWidthCheck, swapLRCheck, copyAudioCheck,
                                                                            keepTimingCheck, enableResizeCheck})
        connect(button, &QAbstractButton::toggled, this, &MainViewController::settingsChanged);
    for (QComboBox *popup : {formatPopup, photoFormatPopup, inputLayoutPopup, resizeModePopup})
        connect(popup, &QComboBox::currentIndexChanged, this, &MainViewController::settingsChanged);
    for (NumberField *field : {fovField, disparityField, baselineField, resizeWidthField, resizeHeightField})
        connect(field, &NumberField::textChanged, this, &MainViewController::settingsChanged);
}

QLabel *MainViewController::caption(QLabel *&label, const std::string &text, QWidget *parent, char mnemonic) {
    if (!label) {
        label = new QLabel(parent);
        label->setTextFormat(Qt::PlainText);
        withLabel(label, toQString(text), mnemonic);
        label->setProperty("secondary", false);
    }
    return label;
}

QLabel *MainViewController::unit(QLabel *&label, const char *text, QWidget *parent) {
    if (!label) {
        label = new QLabel(QString::fromUtf8(text), parent);
        label->setTextFormat(Qt::PlainText);
        label->setProperty("secondary", true);
    }
    return label;
}

void MainViewController::buildHeader() {
    headerView = withName(new HeaderBand(documentView), "headerView");
    headerView->setAccessibleName(QStringLiteral("Lumetwin"));
    titleLabel = withName(new QLabel(QStringLiteral("Lumetwin"), headerView), "titleLabel");
    filesButton = withName(new QPushButton(localizedText("files.title"), headerView), "filesButton");
    filesButton->setCheckable(true);
    filesButton->setToolTip(localizedText("files.button.help"));
    filesButton->setAutoDefault(true);
    connect(filesButton, &QPushButton::clicked, this, [this] {
        filesButton->setChecked(!filesButton->isChecked()); // until the panel is open
        emit filesPanelAsked();
    });
    subtitleLabel = withName(new QLabel(localizedText("app.subtitle"), headerView), "subtitleLabel");
    subtitleLabel->setProperty("secondary", true);
}

void MainViewController::buildDirection() {
    directionSection = withName(new SectionView(localizedText("section.direction"), documentView), "directionSection");
    spatialToSBSButton = withName(new QRadioButton(directionSection), "spatialToSBSButton");
    sbsToSpatialButton = withName(new QRadioButton(directionSection), "sbsToSpatialButton");
    withLabel(spatialToSBSButton, localizedText("direction.spatial.to.sbs"), 'p');
    withLabel(sbsToSpatialButton, localizedText("direction.sbs.to.spatial"), 'd');
    spatialToSBSButton->setChecked(true);
    auto *tags = new QButtonGroup(this);
    tags->addButton(spatialToSBSButton, 0);
    tags->addButton(sbsToSpatialButton, 1);
    // This also handles the arrow keys. The button that becomes checked is the sender.
    connect(tags, &QButtonGroup::buttonToggled, this, [this](QAbstractButton *button, bool checked) {
        if (checked)
            directionChanged(button);
    });
}

void MainViewController::buildInput() {
    inputSection = withName(new SectionView(localizedText("panel.select.input.title"), documentView), "inputSection");
    inputDropView = withName(new DropFolderView(inputSection), "inputDropView");
    inputDropView->setPlaceholder(localizedText("drop.folder.file.placeholder"));
    inputDropView->setAccessibleName(inputSection->titleLabel->text());
    inputDropView->onFolderDropped = [this](const auto &folder) {
        setInputFolder(folder);
        warnAboutAVI();
    };
    inputDropView->onFilesDropped = [this](const DroppedInput &files) {
        setInputFiles(files);
        warnAboutAVI();
    };
    inputDropView->onActivated = [this] { selectInputFolder(); };
    inputSelectBtn = withName(new QPushButton(localizedText("button.select"), inputSection), "inputSelectBtn");
    inputSelectBtn->setAccessibleDescription(inputSection->titleLabel->text());
    connect(inputSelectBtn, &QPushButton::clicked, this, &MainViewController::selectInputFolder);
    checkSpatialBtn = withName(new QPushButton(localizedText("button.check.spatial"), inputSection), "checkSpatialBtn");
    connect(checkSpatialBtn, &QPushButton::clicked, this, &MainViewController::checkSpatialMedia);
    inputPathLabel = withName(new ElidedLabel(localizedText("label.not.selected"), inputSection), "inputPathLabel");
    inputPathLabel->setProperty("secondary", true);
}

void MainViewController::buildOutput() {
    outputSection = withName(new SectionView(localizedText("section.output.folder"), documentView), "outputSection");
    outputDropView = withName(new DropFolderView(outputSection), "outputDropView");
    outputDropView->setPlaceholder(toQString(folderPlaceholder()));
    outputDropView->setAccessibleName(outputSection->titleLabel->text());
    outputDropView->acceptOnlyFolders();
    outputDropView->objection = [](const auto &folder) {
        return canWriteInto(folder) ? ""
                                    : formatted("error.output.unwritable.format", displayName(folder).toStdString());
    };
    outputDropView->onFolderDropped = [this](const auto &folder) { setOutputFolder(folder); };
    outputDropView->onActivated = [this] { selectOutputFolder(); };
    outputSelectBtn =
        withName(new QPushButton(localizedText("button.select.folder"), outputSection), "outputSelectBtn");
    outputSelectBtn->setAccessibleDescription(outputSection->titleLabel->text());
    connect(outputSelectBtn, &QPushButton::clicked, this, &MainViewController::selectOutputFolder);
    outputPathLabel = withName(new ElidedLabel(localizedText("label.not.selected"), outputSection), "outputPathLabel");
    outputPathLabel->setProperty("secondary", true);
}

NumberField *MainViewController::stereoField(const char *name, const NumberRange &range, QLabel *caption,
                                             const char *help) {
    const auto parse = [range](const QString &text) { return fieldValue(range, text); };
    auto *field = withName(new NumberField(fieldText(range, range.start), parse, caption->parentWidget()), name);
    field->setAlignment(Qt::AlignRight);
    setCaption(caption, field);
    const std::string low = shortNumber(range.minimum), high = shortNumber(range.maximum);
    const QString words = toQString(formatted(help, low, high, shortNumber(range.start)));
    field->setTexts(toQString(formatted("field.range.format", low, high)), words);
    caption->setToolTip(words);
    return field;
}

NumberField *MainViewController::sizeField(const char *name, std::int64_t start, QLabel *caption) {
    const auto parse = [](const QString &text) -> std::optional<double> {
        const auto size = parseEyeSize(text);
        return size ? std::optional(static_cast<double>(*size)) : std::nullopt;
    };
    auto *field = withName(new NumberField(QString::number(start), parse, caption->parentWidget()), name);
    field->setAlignment(Qt::AlignRight);
    setCaption(caption, field);
    field->setTexts(localizedText("field.size"), localizedText("resize.help"));
    return field;
}

QToolButton *MainViewController::resetButton(const char *name, const NumberRange &range, QLabel *caption,
                                             ValueSlider *slider) {
    auto *button = withName(new QToolButton(spatialOptionsView), name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setToolTip(toQString(formatted("button.reset.format", shortNumber(range.start))));
    button->setAccessibleName(button->toolTip());
    button->setAccessibleDescription(caption->accessibleName());
    connect(button, &QToolButton::clicked, slider, [slider, range] { slider->moveTo(range.start); });
    return button;
}

void MainViewController::buildSpatialOptions() {
    spatialOptionsView = withName(new QWidget(optionsSection), "spatialOptionsView");
    QWidget *view = spatialOptionsView;
    const auto slider = [view](const char *name, const NumberRange &range, QLabel *caption) {
        auto *made = withName(new ValueSlider(range, view), name);
        made->setAccessibleName(caption->accessibleName());
        return made;
    };
    caption(lblInputLayout, text("option.input.layout"), view, 'i');
    inputLayoutPopup = withName(new QComboBox(view), "inputLayoutPopup");
    for (const char *key : {"layout.choice.automatic", "layout.choice.side.by.side", "layout.choice.side.by.side.half",
                            "layout.choice.over.under", "layout.choice.over.under.half", "layout.choice.two.pictures",
                            "layout.choice.two.streams", "layout.choice.two.files"})
        inputLayoutPopup->addItem(localizedText(key));
    setCaption(lblInputLayout, inputLayoutPopup);
    inputLayoutPopup->setToolTip(localizedText("option.input.layout.help"));
    connect(inputLayoutPopup, &QComboBox::currentIndexChanged, this, &MainViewController::inputLayoutChanged);
    fovSlider = slider("fovSlider", fovRange, caption(lblFOV, text("option.fov"), view, 'h'));
    fovField = stereoField("fovField", fovRange, lblFOV, "option.fov.help.format");
    unit(lblFovUnit, "°", view);
    fovReset = resetButton("fovReset", fovRange, lblFOV, fovSlider);
    disparitySlider =
        slider("disparitySlider", disparityRange, caption(lblDisparity, text("option.disparity"), view, 'a'));
    disparityField = stereoField("disparityField", disparityRange, lblDisparity, "option.disparity.help.format");
    unit(lblDispUnit, "%", view);
    disparityReset = resetButton("disparityReset", disparityRange, lblDisparity, disparitySlider);
    baselineSlider = slider("baselineSlider", baselineRange, caption(lblBaseline, text("option.baseline"), view, 'b'));
    baselineField = stereoField("baselineField", baselineRange, lblBaseline, "option.baseline.help.format");
    unit(lblBaseUnit, "mm", view);
    baselineReset = resetButton("baselineReset", baselineRange, lblBaseline, baselineSlider);
    for (const auto &[moved, field] :
         {std::pair{fovSlider, fovField}, {disparitySlider, disparityField}, {baselineSlider, baselineField}})
        moved->setToolTip(field->toolTip());
    connect(fovSlider, &ValueSlider::moved, this, &MainViewController::fovSliderChanged);
    connect(disparitySlider, &ValueSlider::moved, this, &MainViewController::disparitySliderChanged);
    connect(baselineSlider, &ValueSlider::moved, this, &MainViewController::baselineSliderChanged);
    const auto follow = [this](NumberField *edited, void (MainViewController::*action)()) {
        connect(edited, &QLineEdit::textChanged, this, action);
        connect(edited, &QLineEdit::editingFinished, this, action);
    };
    follow(fovField, &MainViewController::fovFieldChanged);
    follow(disparityField, &MainViewController::disparityFieldChanged);
    follow(baselineField, &MainViewController::baselineFieldChanged);
}

void MainViewController::buildSBSOptions() {
    sbsOptionsView = withName(new QWidget(optionsSection), "sbsOptionsView");
    const auto popup = [this](const char *name, const auto &cases, QLabel *caption) {
        auto *made = withName(new QComboBox(sbsOptionsView), name);
        for (const auto item : cases)
            made->addItem(QString::fromUtf8(rawValue(item).data(), static_cast<qsizetype>(rawValue(item).size())));
        setCaption(caption, made);
        return made;
    };
    QWidget *view = sbsOptionsView;
    formatPopup = popup("formatPopup", allSBSOutputFormats, caption(lblFmt, text("option.output.format"), view, 'v'));
    connect(formatPopup, &QComboBox::currentIndexChanged, this, &MainViewController::formatChanged);
    photoFormatPopup = popup("photoFormatPopup", allSBSPhotoOutputFormats,
                             caption(lblPhotoFmt, text("option.photo.output.format"), view, 'f'));
    connect(photoFormatPopup, &QComboBox::currentIndexChanged, this, &MainViewController::photoFormatChanged);
    caption(lblQuality, text("option.quality"), view, 'q');
    compressionSlider = withName(new ValueSlider(qualityRange, view), "compressionSlider");
    setCaption(lblQuality, compressionSlider);
    for (QWidget *part : std::initializer_list<QWidget *>{lblQuality, compressionSlider})
        part->setToolTip(localizedText("option.quality.help"));
    connect(compressionSlider, &ValueSlider::moved, this, &MainViewController::compressionChanged);
    compressionLabel = withName(new QLabel(QStringLiteral("75%"), view), "compressionLabel");
    halfWidthCheck =
        withLabel(withName(new QCheckBox(view), "halfWidthCheck"), localizedText("option.half.width"), 'w');
    connect(halfWidthCheck, &QCheckBox::toggled, this, &MainViewController::halfWidthChanged);
}

void MainViewController::buildCommonOptions() {
    commonSection = withName(new SectionView(localizedText("section.common"), documentView), "commonSection");
    QWidget *view = commonSection;
    swapLRCheck = withLabel(withName(new QCheckBox(view), "swapLRCheck"), localizedText("option.swap.lr"), 's');
    connect(swapLRCheck, &QCheckBox::toggled, this, &MainViewController::swapLRChanged);
    copyAudioCheck =
        withLabel(withName(new QCheckBox(view), "copyAudioCheck"), localizedText("option.copy.audio"), 'u');
    copyAudioCheck->setChecked(true);
    connect(copyAudioCheck, &QCheckBox::toggled, this, &MainViewController::copyAudioChanged);
    keepTimingCheck =
        withLabel(withName(new QCheckBox(view), "keepTimingCheck"), localizedText("option.keep.timing"), 'k');
    keepTimingCheck->setToolTip(localizedText("option.keep.timing.help"));
    connect(keepTimingCheck, &QCheckBox::toggled, this, &MainViewController::keepTimingChanged);
    enableResizeCheck =
        withLabel(withName(new QCheckBox(view), "enableResizeCheck"), localizedText("option.enable.resize"), 'r');
    connect(enableResizeCheck, &QCheckBox::toggled, this, &MainViewController::enableResizeChanged);
    resizeWidthField =
        sizeField("resizeWidthField", settings->resizeWidth, caption(lblEyeW, text("resize.eye.width"), view, 'e'));
    unit(lblCross, "×", view);
    resizeHeightField =
        sizeField("resizeHeightField", settings->resizeHeight, caption(lblEyeH, text("resize.eye.height"), view, 'g'));
    unit(lblPx, "px", view);
    for (NumberField *field : {resizeWidthField, resizeHeightField}) {
        connect(field, &NumberField::textChanged, this, &MainViewController::resizeDimChanged);
        connect(field, &NumberField::editingFinished, this, &MainViewController::resizeDimChanged);
    }
    caption(lblResizeMode, text("resize.mode.label"), view, 't');
    resizeModePopup = withName(new QComboBox(view), "resizeModePopup");
    resizeModePopup->addItem(toQString(text("resize.mode.stretch", "Stretch to output size (ignore aspect ratio)")));
    resizeModePopup->addItem(toQString(text("resize.mode.cropFill", "Preserve aspect ratio (center crop)")));
    resizeModePopup->addItem(toQString(text("resize.mode.letterbox", "Preserve aspect ratio (letterbox)")));
    resizeModePopup->setCurrentIndex(rawValue(ResizeMode::letterbox));
    setCaption(lblResizeMode, resizeModePopup);
    connect(resizeModePopup, &QComboBox::currentIndexChanged, this, &MainViewController::resizeModeChanged);
    resizeWarningLabel = withName(new QLabel(view), "resizeWarningLabel");
    resizeWarningLabel->setWordWrap(true);
    resizeWarningLabel->setTextFormat(Qt::PlainText);
    resizeWarningLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void MainViewController::buildStartButton() {
    const QString title = localizedText("button.start.conversion");
    startLine = withName(new QFrame(contentView), "startLine");
    startLine->setFrameShape(QFrame::HLine);
    startButton = withName(new ColouredButton(QStringLiteral("▶  ") + title, 10, contentView), "startButton");
    startButton->setAccessibleName(title);
    connect(startButton, &QPushButton::clicked, this, &MainViewController::startConversion);
    // Ctrl and the Enter key of the keypad also start.
    auto *keypad = new QShortcut(Qt::CTRL | Qt::Key_Enter, contentView);
    connect(keypad, &QShortcut::activated, startButton, [this] { startButton->click(); });
}

void MainViewController::setTabOrders() {
    const QList<QWidget *> order{
        filesButton,     spatialToSBSButton, sbsToSpatialButton, inputDropView,     inputSelectBtn,  checkSpatialBtn,
        outputDropView,  outputSelectBtn,    inputLayoutPopup,   fovSlider,         fovField,        fovReset,
        disparitySlider, disparityField,     disparityReset,     baselineSlider,    baselineField,   baselineReset,
        formatPopup,     photoFormatPopup,   compressionSlider,  halfWidthCheck,    swapLRCheck,     copyAudioCheck,
        keepTimingCheck, enableResizeCheck,  resizeWidthField,   resizeHeightField, resizeModePopup, startButton};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    for (QWidget *control : order) {
        control->installEventFilter(this);
        // Turning the wheel must not move the focus; see eventFilter.
        if (control->focusPolicy() == Qt::WheelFocus)
            control->setFocusPolicy(Qt::StrongFocus);
    }
    updateTabStop();
}

/// Sets the shortcuts of the buttons that have no Alt letter, and lets Enter press the focused button.
void MainViewController::setShortcuts() {
    const QKeySequence select(QKeySequence::Open), folder(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
        check(Qt::CTRL | Qt::Key_I), start(Qt::CTRL | Qt::Key_Return);
    for (const auto &[button, keys] : {std::pair<QPushButton *, QKeySequence>{inputSelectBtn, select},
                                       {checkSpatialBtn, check},
                                       {outputSelectBtn, folder},
                                       {startButton, start}}) {
        button->setShortcut(keys);
        button->setToolTip(shortcutText(keys));
        button->setAutoDefault(true);
    }
}

/// Lets the Tab key stop at the chosen direction, however it was chosen. Without this, Qt stops at the radio button
/// that had the focus last.
void MainViewController::updateTabStop() {
    for (QRadioButton *button : {spatialToSBSButton, sbsToSpatialButton})
        button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
}

} // namespace lumetwin
