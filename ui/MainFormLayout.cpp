// SPDX-License-Identifier: GPL-3.0-or-later
// The looks of the form: where everything stands, fonts and colours.
#include "ui/MainViewController.h"

#include "ui/ColouredButton.h"
#include "ui/DropFolderView.h"
#include "ui/ElidedLabel.h"
#include "ui/MainFormFrames.h"
#include "ui/Palettes.h"
#include "ui/SectionView.h"
#include "ui/ValueSlider.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>

namespace lumetwin {

namespace {

constexpr double titleHeight = 24; // points that a section's title takes at its top
constexpr double textSize = 13;
constexpr double smallTextSize = 12;

/// Places widgets in a container by their distance from its top.
class Rows {
public:
    explicit Rows(double containerHeight) : height_(containerHeight), scale_(PointScale::current()) {}

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
    for (QLineEdit *field : {fovField, disparityField, baselineField, resizeWidthField, resizeHeightField})
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
    setTextColour(compressionLabel, accentTextColour(palette()));
    setTextColour(resizeWarningLabel, warningColour(palette()));
}

void MainViewController::layoutDocument() {
    const PointScale scale = PointScale::current();
    const MainFormFrames frames = mainFormFrames(settings->direction, settings->enableResize);
    const int width = scale.horizontal(MainFormFrames::documentWidth), height = scale.vertical(frames.documentHeight);
    // A scroll bar may take of the right margin without cutting anything off; a wide window gets wide margins.
    const int margin = scale.horizontal(18);
    const QSize room = scrollView->maximumViewportSize();
    const int bar = height > room.height() ? scrollView->verticalScrollBar()->sizeHint().width() : 0;
    const int available = room.width() - bar;
    const int documentWidth = qMax(width - qBound(0, width - available, margin), available);
    documentView->resize(documentWidth, qMax(height, room.height()));
    const QPoint origin(qMax(0, (documentWidth - width) / 2), 0);
    const auto place = [&](QWidget *widget, const PointFrame &frame) {
        widget->setGeometry(scale.toQt(frame, frames.documentHeight).translated(origin));
    };
    place(startButton, frames.startButton);
    place(commonSection, frames.commonSection);
    place(optionsSection, frames.optionsSection);
    place(outputSection, frames.outputSection);
    place(inputSection, frames.inputSection);
    place(directionSection, frames.directionSection);
    place(headerView, frames.header);
    layoutSections();
    layoutOptions();
    layoutCommon();
}

void MainViewController::layoutSections() {
    const PointScale scale = PointScale::current();
    titleLabel->setGeometry(scale.toQt({20, 30, 680, 28}, 68));
    subtitleLabel->setGeometry(scale.toQt({22, 10, 680, 17}, 68));
    spatialToSBSButton->setGeometry(scale.toQt({16, 36, 380, 22}, 76));
    sbsToSpatialButton->setGeometry(scale.toQt({16, 10, 380, 22}, 76));
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
    const Rows section(height);
    const Rows view(height - titleHeight);
    for (QWidget *options : {spatialOptionsView, sbsOptionsView})
        section.place(options, 0, titleHeight, 680, height - titleHeight);
    const auto stereo = [&](double top, QLabel *caption, QWidget *slider, QWidget *field, QLabel *unit) {
        view.place(caption, 16, top, 190, 28);
        view.place(slider, 210, top, 320, 28);
        view.place(field, 546, top, 76, 28);
        view.place(unit, 630, top, 40, 28);
    };
    stereo(10, lblFOV, fovSlider, fovField, lblFovUnit);
    stereo(50, lblDisparity, disparitySlider, disparityField, lblDispUnit);
    stereo(90, lblBaseline, baselineSlider, baselineField, lblBaseUnit);
    const auto option = [&](double top, QLabel *caption, QWidget *control) {
        view.place(caption, 16, top, 190, 28);
        view.place(control, 210, top, 250, 28);
    };
    option(6, lblFmt, formatPopup);
    option(42, lblPhotoFmt, photoFormatPopup);
    option(78, lblQuality, compressionSlider);
    view.place(compressionLabel, 472, 78, 60, 28);
    view.place(halfWidthCheck, 16, 114, 650, 28);
    spatialOptionsView->setVisible(toSpatial);
    sbsOptionsView->setVisible(!toSpatial);
}

void MainViewController::layoutCommon() {
    const bool resizing = settings->enableResize;
    const Rows section(resizing ? 248 : 138);
    section.place(swapLRCheck, 16, 28, 650, 28);
    section.place(copyAudioCheck, 16, 62, 650, 28);
    section.place(enableResizeCheck, 16, 96, 650, 28);
    section.place(lblEyeW, 40, 130, 110, 28);
    section.place(resizeWidthField, 154, 130, 76, 28);
    section.place(lblCross, 244, 130, 20, 28);
    section.place(lblEyeH, 274, 130, 110, 28);
    section.place(resizeHeightField, 388, 130, 76, 28);
    section.place(lblPx, 472, 130, 40, 28);
    section.place(lblResizeMode, 40, 166, 110, 28);
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
    // In a window that is too low for the whole form, what the user just changed stays in sight.
    if (QWidget *control = focusWidget(); control && commonSection->isAncestorOf(control))
        scrollView->ensureWidgetVisible(commonSection, 0, PointScale::current().vertical(14));
}

void MainViewController::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    scrollView->setGeometry(rect());
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
    if (control && event->type() == QEvent::FocusIn)
        scrollView->ensureWidgetVisible(control, 20, 40);
    // The wheel scrolls the form; it changes only controls that are in use.
    if (control && event->type() == QEvent::Wheel && !control->hasFocus()) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace lumetwin
