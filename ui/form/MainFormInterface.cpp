// SPDX-License-Identifier: GPL-3.0-or-later
// The building of the form: every control, its texts, its starting state and its action.
#include "ui/form/MainViewController.h"

#include "ui/files/DropFolderView.h"
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

template <typename Widget> Widget *named(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QString local(const char *key) {
    return toQString(text(key));
}

/// The caption's words name the control for screen readers too.
void describe(QLabel *caption, QWidget *control) {
    caption->setBuddy(control);
    control->setAccessibleName(caption->accessibleName());
}

/// A button's words, and the letter that the Alt key presses it by.
template <typename Button> Button *labelled(Button *button, const QString &words, char mnemonic) {
    button->setText(withMnemonic(words, mnemonic));
    button->setAccessibleName(words);
    return button;
}

/// Every number as short as it can be: 10, -100, 19.24.
std::string number(double value) {
    return QString::number(value).toStdString();
}

QString shown(const QKeySequence &keys) {
    return keys.toString(QKeySequence::NativeText);
}

} // namespace

void MainViewController::buildInterface() {
    contentView = named(new QWidget(this), "contentView");
    scrollView = named(new QScrollArea(contentView), "scrollView");
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
    scrollView->setWidget(documentView);
    setTabOrders();
    setShortcuts();
    updateResets();
}

QLabel *MainViewController::caption(QLabel *&label, const std::string &text, QWidget *parent, char mnemonic) {
    if (!label) {
        label = new QLabel(parent);
        label->setTextFormat(Qt::PlainText);
        labelled(label, toQString(text), mnemonic);
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
    headerView = named(new HeaderBand(documentView), "headerView");
    titleLabel = named(new QLabel(QStringLiteral("Lumetwin"), headerView), "titleLabel");
    subtitleLabel = named(new QLabel(local("app.subtitle"), headerView), "subtitleLabel");
    subtitleLabel->setProperty("secondary", true);
}

void MainViewController::buildDirection() {
    directionSection = named(new SectionView(local("section.direction"), documentView), "directionSection");
    spatialToSBSButton = named(new QRadioButton(directionSection), "spatialToSBSButton");
    sbsToSpatialButton = named(new QRadioButton(directionSection), "sbsToSpatialButton");
    labelled(spatialToSBSButton, local("direction.spatial.to.sbs"), 'p');
    labelled(sbsToSpatialButton, local("direction.sbs.to.spatial"), 'd');
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
    outputDropView->takeOnlyFolders();
    outputDropView->objection = [](const auto &folder) {
        return canWriteInto(folder) ? "" : formatted("error.output.unwritable.format", shownName(folder).toStdString());
    };
    outputDropView->onFolderDropped = [this](const auto &folder) { setOutputFolder(folder); };
    outputDropView->onActivated = [this] { selectOutputFolder(); };
    outputSelectBtn = named(new QPushButton(local("button.select.folder"), outputSection), "outputSelectBtn");
    outputSelectBtn->setAccessibleDescription(outputSection->titleLabel->text());
    connect(outputSelectBtn, &QPushButton::clicked, this, &MainViewController::selectOutputFolder);
    outputPathLabel = named(new ElidedLabel(local("label.not.selected"), outputSection), "outputPathLabel");
    outputPathLabel->setProperty("secondary", true);
}

NumberField *MainViewController::stereoField(const char *name, const StereoRange &range, QLabel *caption,
                                             const char *help) {
    const auto parse = [range](const QString &text) { return fieldValue(range, text); };
    auto *field = named(new NumberField(fieldText(range, range.start), parse, caption->parentWidget()), name);
    field->setAlignment(Qt::AlignRight);
    describe(caption, field);
    const std::string low = number(range.minimum), high = number(range.maximum);
    const QString words = toQString(formatted(help, low, high, number(range.start)));
    field->setWords(toQString(formatted("field.range.format", low, high)), words);
    caption->setToolTip(words);
    return field;
}

NumberField *MainViewController::sizeField(const char *name, std::int64_t start, QLabel *caption) {
    const auto parse = [](const QString &text) -> std::optional<double> {
        const auto size = eyeSize(text);
        return size ? std::optional(static_cast<double>(*size)) : std::nullopt;
    };
    auto *field = named(new NumberField(QString::number(start), parse, caption->parentWidget()), name);
    field->setAlignment(Qt::AlignRight);
    describe(caption, field);
    field->setWords(local("field.size"), local("resize.help"));
    return field;
}

QToolButton *MainViewController::resetButton(const char *name, const StereoRange &range, QLabel *caption,
                                             ValueSlider *slider) {
    auto *button = named(new QToolButton(spatialOptionsView), name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setToolTip(toQString(formatted("button.reset.format", number(range.start))));
    button->setAccessibleName(button->toolTip());
    button->setAccessibleDescription(caption->accessibleName());
    connect(button, &QToolButton::clicked, slider, [slider, range] { slider->moveTo(range.start); });
    return button;
}

void MainViewController::buildSpatialOptions() {
    spatialOptionsView = named(new QWidget(optionsSection), "spatialOptionsView");
    QWidget *view = spatialOptionsView;
    const auto slider = [view](const char *name, const StereoRange &range, QLabel *caption) {
        auto *made = named(new ValueSlider(range, view), name);
        made->setAccessibleName(caption->accessibleName());
        return made;
    };
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
    sbsOptionsView = named(new QWidget(optionsSection), "sbsOptionsView");
    const auto popup = [this](const char *name, const auto &cases, QLabel *caption) {
        auto *made = named(new QComboBox(sbsOptionsView), name);
        for (const auto item : cases)
            made->addItem(QString::fromUtf8(rawValue(item).data(), static_cast<qsizetype>(rawValue(item).size())));
        describe(caption, made);
        return made;
    };
    QWidget *view = sbsOptionsView;
    formatPopup = popup("formatPopup", allSBSOutputFormats, caption(lblFmt, text("option.output.format"), view, 'v'));
    connect(formatPopup, &QComboBox::currentIndexChanged, this, &MainViewController::formatChanged);
    photoFormatPopup = popup("photoFormatPopup", allSBSPhotoOutputFormats,
                             caption(lblPhotoFmt, text("option.photo.output.format"), view, 'f'));
    connect(photoFormatPopup, &QComboBox::currentIndexChanged, this, &MainViewController::photoFormatChanged);
    caption(lblQuality, text("option.quality"), view, 'q');
    compressionSlider = named(new ValueSlider(qualityRange, view), "compressionSlider");
    describe(lblQuality, compressionSlider);
    for (QWidget *part : std::initializer_list<QWidget *>{lblQuality, compressionSlider})
        part->setToolTip(local("option.quality.help"));
    connect(compressionSlider, &ValueSlider::moved, this, &MainViewController::compressionChanged);
    compressionLabel = named(new QLabel(QStringLiteral("75%"), view), "compressionLabel");
    halfWidthCheck = labelled(named(new QCheckBox(view), "halfWidthCheck"), local("option.half.width"), 'w');
    connect(halfWidthCheck, &QCheckBox::toggled, this, &MainViewController::halfWidthChanged);
}

void MainViewController::buildCommonOptions() {
    commonSection = named(new SectionView(local("section.common"), documentView), "commonSection");
    QWidget *view = commonSection;
    swapLRCheck = labelled(named(new QCheckBox(view), "swapLRCheck"), local("option.swap.lr"), 's');
    connect(swapLRCheck, &QCheckBox::toggled, this, &MainViewController::swapLRChanged);
    copyAudioCheck = labelled(named(new QCheckBox(view), "copyAudioCheck"), local("option.copy.audio"), 'u');
    copyAudioCheck->setChecked(true);
    connect(copyAudioCheck, &QCheckBox::toggled, this, &MainViewController::copyAudioChanged);
    keepTimingCheck = labelled(named(new QCheckBox(view), "keepTimingCheck"), local("option.keep.timing"), 'k');
    keepTimingCheck->setToolTip(local("option.keep.timing.help"));
    connect(keepTimingCheck, &QCheckBox::toggled, this, &MainViewController::keepTimingChanged);
    enableResizeCheck = labelled(named(new QCheckBox(view), "enableResizeCheck"), local("option.enable.resize"), 'r');
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
    startLine = named(new QFrame(contentView), "startLine");
    startLine->setFrameShape(QFrame::HLine);
    startButton = named(new ColouredButton(QStringLiteral("▶  ") + title, 10, contentView), "startButton");
    startButton->setAccessibleName(title);
    connect(startButton, &QPushButton::clicked, this, &MainViewController::startConversion);
    // The keypad's key counts as well.
    auto *keypad = new QShortcut(Qt::CTRL | Qt::Key_Enter, contentView);
    connect(keypad, &QShortcut::activated, startButton, [this] { startButton->click(); });
}

void MainViewController::setTabOrders() {
    const QList<QWidget *> order{
        spatialToSBSButton, sbsToSpatialButton, inputDropView,   inputSelectBtn, checkSpatialBtn, outputDropView,
        outputSelectBtn,    fovSlider,          fovField,        fovReset,       disparitySlider, disparityField,
        disparityReset,     baselineSlider,     baselineField,   baselineReset,  formatPopup,     photoFormatPopup,
        compressionSlider,  halfWidthCheck,     swapLRCheck,     copyAudioCheck, keepTimingCheck, enableResizeCheck,
        resizeWidthField,   resizeHeightField,  resizeModePopup, startButton};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    for (QWidget *control : order) {
        control->installEventFilter(this);
        // The wheel gives no focus: see eventFilter.
        if (control->focusPolicy() == Qt::WheelFocus)
            control->setFocusPolicy(Qt::StrongFocus);
    }
    updateTabStop();
}

/// The keys of what has no letter of its own, and Enter, which presses what has the focus.
void MainViewController::setShortcuts() {
    const QKeySequence select(QKeySequence::Open), folder(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
        check(Qt::CTRL | Qt::Key_I), start(Qt::CTRL | Qt::Key_Return);
    for (const auto &[button, keys] : {std::pair<QPushButton *, QKeySequence>{inputSelectBtn, select},
                                       {checkSpatialBtn, check},
                                       {outputSelectBtn, folder},
                                       {startButton, start}}) {
        button->setShortcut(keys);
        button->setToolTip(shown(keys));
        button->setAutoDefault(true);
    }
}

/// The tabulator stops at the chosen direction, however it was chosen; the toolkit lets it stop at the button that had
/// the focus last.
void MainViewController::updateTabStop() {
    for (QRadioButton *button : {spatialToSBSButton, sbsToSpatialButton})
        button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
}

} // namespace lumetwin
