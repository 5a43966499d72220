// SPDX-License-Identifier: GPL-3.0-or-later
// The form's layout, fonts and colours.
#include "ui/form/MainViewController.h"

#include "ui/files/DropFolderView.h"
#include "ui/form/HeaderBand.h"
#include "ui/form/MainFormFrames.h"
#include "ui/form/ResizePreview.h"
#include "ui/form/SectionView.h"
#include "ui/widgets/ColouredButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/NumberField.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Symbol.h"
#include "ui/widgets/ValueSlider.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>

namespace lumetwin {

namespace {

constexpr double titleHeight = 24; // points, at the top of a section
constexpr double textSize = 13;
constexpr double smallTextSize = 12;
constexpr double pinnedMargin = 14; // points, above and below the start button in a low window

int pinnedRowHeight(const PointScale &scale) {
    constexpr double buttonHeight = 48;
    return scale.vertical(buttonHeight + 2 * pinnedMargin);
}

/// Places widgets in a container by the distance from its top, in points.
class Rows {
public:
    Rows(double containerHeight, const PointScale &scale) : height_(containerHeight), scale_(scale) {}

    void place(QWidget *widget, double x, double top, double width, double height) const {
        widget->setGeometry(scale_.toQt({x, height_ - top - height, width, height}, height_));
    }

private:
    double height_;
    PointScale scale_;
};

} // namespace

void MainViewController::applyFonts() {
    const PointScale scale = PointScale::current();
    for (QWidget *control : documentView->findChildren<QWidget *>())
        if (qobject_cast<QLabel *>(control) || qobject_cast<QAbstractButton *>(control) ||
            qobject_cast<QComboBox *>(control))
            control->setFont(scale.font(textSize));
    titleLabel->setFont(scale.font(22, QFont::Bold));
    subtitleLabel->setFont(scale.font(smallTextSize));
    for (NumberField *field : {fovField, disparityField, baselineField, resizeWidthField, resizeHeightField})
        field->setFont(scale.digitFont(smallTextSize));
    for (QLabel *label : {static_cast<QLabel *>(inputPathLabel), static_cast<QLabel *>(outputPathLabel),
                          compressionLabel, resizeWarningLabel})
        label->setFont(scale.font(smallTextSize));
    startButton->setFont(scale.font(16, QFont::DemiBold));
}

void MainViewController::applyColours() {
    for (QLabel *label : documentView->findChildren<QLabel *>())
        if (const QVariant secondary = label->property("secondary"); secondary.isValid())
            setTextColour(label,
                          secondary.toBool() ? secondaryTextColour(palette()) : palette().color(QPalette::WindowText));
    setTextColour(subtitleLabel, bandTextColour(palette()));
    setTextColour(compressionLabel, accentTextColour(palette()));
    setTextColour(resizeWarningLabel, isOddSize(*settings) ? warningColour(palette()) : secondaryTextColour(palette()));
    setTextColour(startLine, separatorColour(palette()));
    const int size = PointScale::current().vertical(16);
    filesButton->setIconSize(QSize(size, size));
    filesButton->setIcon(symbolIcon(Symbol::files, palette().color(QPalette::ButtonText), size, devicePixelRatioF()));
    for (QToolButton *button : {fovReset, disparityReset, baselineReset}) {
        button->setIconSize(QSize(size, size));
        button->setIcon(symbolIcon(Symbol::reset, palette().color(QPalette::WindowText), size, devicePixelRatioF()));
    }
}

/// In a window that is too low, the form scrolls and the start button stays visible below it. In a window that is too
/// narrow, the right margin shrinks first, then all widths.
void MainViewController::layoutDocument() {
    constexpr double buttonRow = 68; // points from the common options' gap to the bottom
    constexpr double spareMargin = 18;
    scale_ = PointScale::current();
    const MainFormFrames frames = mainFormFrames(settings->direction, settings->enableResize);
    const int formHeight = scale_.vertical(frames.documentHeight - buttonRow);
    const int visibleHeight =
        scale_.vertical(frames.documentHeight) <= height() ? formHeight : height() - pinnedRowHeight(scale_);
    scrollView->setGeometry(0, 0, width(), qMin(formHeight, visibleHeight));
    const int scrollBarWidth = formHeight > visibleHeight ? scrollView->verticalScrollBar()->sizeHint().width() : 0;
    const int available = width() - scrollBarWidth;
    scale_.x = qMin(scale_.x, available / (MainFormFrames::documentWidth - spareMargin));
    const int formWidth = scale_.horizontal(MainFormFrames::documentWidth);
    documentView->resize(available, formHeight);
    const QPoint origin(qMax(0, (available - formWidth) / 2), 0);
    const auto place = [&](QWidget *widget, const PointFrame &frame) {
        widget->setGeometry(scale_.toQt(frame, frames.documentHeight).translated(origin));
    };
    place(commonSection, frames.commonSection);
    place(optionsSection, frames.optionsSection);
    place(outputSection, frames.outputSection);
    place(inputSection, frames.inputSection);
    place(directionSection, frames.directionSection);
    place(headerView, frames.header);
    place(startButton, frames.startButton);
    startLine->setVisible(formHeight > visibleHeight);
    if (formHeight > visibleHeight) {
        startButton->move(startButton->x(), visibleHeight + scale_.vertical(pinnedMargin));
        startLine->setGeometry(0, visibleHeight, width(), 1);
    }
    layoutSections();
    layoutOptions();
    layoutCommon();
}

void MainViewController::layoutSections() {
    const PointScale &scale = scale_;
    headerView->setSymbolRect(scale.toQt({20, 31, 28, 28}, 68));
    titleLabel->setGeometry(scale.toQt({20, 30, 540, 28}, 68));
    titleLabel->setIndent(scale.horizontal(36));
    subtitleLabel->setGeometry(scale.toQt({22, 10, 540, 17}, 68));
    filesButton->setGeometry(scale.toQt({580, 30, 120, 30}, 68));
    // Placed a little low, so that they do not touch the section's title.
    spatialToSBSButton->setGeometry(scale.toQt({16, 32, 380, 22}, 76));
    sbsToSpatialButton->setGeometry(scale.toQt({16, 8, 380, 22}, 76));
    inputDropView->setGeometry(scale.toQt({14, 40, 320, 36}, 100));
    inputSelectBtn->setGeometry(scale.toQt({344, 42, 150, 32}, 100));
    checkSpatialBtn->setGeometry(scale.toQt({504, 42, 150, 32}, 100));
    inputPathLabel->setGeometry(scale.toQt({14, 12, 650, 18}, 100));
    outputDropView->setGeometry(scale.toQt({14, 40, 320, 36}, 100));
    outputSelectBtn->setGeometry(scale.toQt({344, 42, 150, 32}, 100));
    outputPathLabel->setGeometry(scale.toQt({14, 12, 650, 18}, 100));
}

void MainViewController::layoutOptions() {
    const bool toSpatial = settings->direction == ConversionDirection::sbsToSpatial;
    const double height = toSpatial ? 160 : 180;
    const Rows section(height, scale_);
    const Rows view(height - titleHeight, scale_);
    for (QWidget *options : {spatialOptionsView, sbsOptionsView})
        section.place(options, 0, titleHeight, 680, height - titleHeight);
    const auto stereo = [&](double top, QLabel *caption, QWidget *slider, QWidget *field, QLabel *unit,
                            QWidget *reset) {
        view.place(caption, 14, top, 190, 28);
        view.place(slider, 210, top, 310, 28);
        view.place(field, 534, top, 76, 28);
        view.place(unit, 614, top, 31, 28);
        view.place(reset, 646, top, 26, 28);
    };
    view.place(lblInputLayout, 14, 4, 190, 28);
    view.place(inputLayoutPopup, 210, 4, 400, 28);
    stereo(37, lblFOV, fovSlider, fovField, lblFovUnit, fovReset);
    stereo(69, lblDisparity, disparitySlider, disparityField, lblDispUnit, disparityReset);
    stereo(101, lblBaseline, baselineSlider, baselineField, lblBaseUnit, baselineReset);
    const auto option = [&](double top, QLabel *caption, QWidget *control) {
        view.place(caption, 14, top, 190, 28);
        view.place(control, 210, top, 250, 28);
    };
    option(6, lblFmt, formatPopup);
    option(42, lblPhotoFmt, photoFormatPopup);
    option(78, lblQuality, compressionSlider);
    view.place(compressionLabel, 472, 78, 60, 28);
    view.place(halfWidthCheck, 14, 114, 650, 28);
    spatialOptionsView->setVisible(toSpatial);
    sbsOptionsView->setVisible(!toSpatial);
}

void MainViewController::layoutCommon() {
    const bool resizing = settings->enableResize;
    const Rows section(resizing ? 248 : 138, scale_);
    section.place(swapLRCheck, 14, 28, 650, 28);
    section.place(copyAudioCheck, 14, 62, 310, 28);
    section.place(keepTimingCheck, 340, 62, 330, 28);
    section.place(enableResizeCheck, 14, 96, 650, 28);
    section.place(lblEyeW, 40, 130, 113, 28);
    section.place(resizeWidthField, 154, 130, 76, 28);
    section.place(lblCross, 244, 130, 20, 28);
    section.place(lblEyeH, 268, 130, 118, 28);
    section.place(resizeHeightField, 388, 130, 76, 28);
    section.place(lblPx, 472, 130, 40, 28);
    section.place(lblResizeMode, 40, 166, 113, 28);
    section.place(resizeModePopup, 154, 166, 420, 28);
    section.place(resizeWarningLabel, 40, 202, 630, 40);
    for (QWidget *widget :
         std::initializer_list<QWidget *>{lblEyeW, resizeWidthField, lblCross, lblEyeH, resizeHeightField, lblPx,
                                          lblResizeMode, resizeModePopup, resizeWarningLabel})
        widget->setVisible(resizing);
}

void MainViewController::layoutOptionsArea() {
    layoutDocument();
    scrollView->verticalScrollBar()->setValue(0);
    // In a window that is too low for the whole form, keep the control visible that the user just changed.
    if (QWidget *control = focusWidget(); control && commonSection->isAncestorOf(control))
        scrollView->ensureWidgetVisible(commonSection, 0, PointScale::current().vertical(14));
}

void MainViewController::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    contentView->setGeometry(rect());
    layoutDocument();
}

void MainViewController::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (!startButton)
        return;
    if (event->type() == QEvent::FontChange) {
        applyFonts();
        layoutDocument();
    } else if (event->type() == QEvent::PaletteChange) {
        applyColours();
    }
}

bool MainViewController::eventFilter(QObject *watched, QEvent *event) {
    auto *control = qobject_cast<QWidget *>(watched);
    if (!control)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::FocusIn)
        scrollView->ensureWidgetVisible(control, 20, 40);
    else if (event->type() == QEvent::MouseButtonPress)
        lastClicked_ = control;
    else if (event->type() == QEvent::FocusOut && lastClicked_ == control)
        lastClicked_ = nullptr;
    // The wheel scrolls the form. It changes a control only after the user clicked that control.
    if (event->type() == QEvent::Wheel && lastClicked_ != control) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace lumetwin
