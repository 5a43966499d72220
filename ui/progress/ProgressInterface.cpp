// SPDX-License-Identifier: GPL-3.0-or-later
// The widgets, layout and colours of the progress sheet.
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BarIndicator.h"
#include "ui/widgets/ColouredButton.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace lumetwin {

namespace {

constexpr double sheetWidth = 560; // points
constexpr double sheetHeight = 340;
constexpr double sheetRadius = 14;

const QColor sheetBackground = colour(0.08, 0.09, 0.12);
const QColor stopRed = colour(0.7, 0.15, 0.15);
const QColor closeGreen = colour(0.15, 0.5, 0.25);
const QColor barBlue = colour(0.25, 0.55, 1.0);
const QColor barGreen = colour(0.3, 0.75, 0.5);
const QColor faintGrey = greyColour(0.62); // the darkest grey that can be read on the sheet

QString buttonTitle(const char *symbol, const std::string &title) {
    return QString::fromUtf8(symbol) + QStringLiteral("  ") + toQString(title);
}

} // namespace

void ProgressViewController::loadView() {
    setObjectName(QStringLiteral("progressSheet"));
    setAccessibleName(toQString(text("progress.title")));
}

ElidedLabel *ProgressViewController::addLabel(const char *name, const std::string &text, const QColor &colour) {
    auto *label = new ElidedLabel(toQString(text), this);
    label->setObjectName(QLatin1String(name));
    label->setAlignment(Qt::AlignCenter);
    labels_.emplace_back(label, colour);
    return label;
}

void ProgressViewController::buildInterface() {
    cancelButton = new ColouredButton(buttonTitle("⏹", text("button.cancel")), 8, this);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    cancelButton->setAccessibleName(toQString(text("button.cancel")));
    cancelButton->setColour(stopRed);
    connect(cancelButton, &QPushButton::clicked, this, &ProgressViewController::buttonPressed);
    elapsedLabel = addLabel("elapsedLabel", text("progress.elapsed.initial"), faintGrey);
    fileCountLabel = addLabel("fileCountLabel", "0 / 0", colour(0.5, 0.75, 1.0));
    overallProgress = new BarIndicator(barBlue, this);
    overallProgress->setObjectName(QStringLiteral("overallProgress"));
    overallProgress->setAccessibleName(toQString(text("spoken.overall.progress")));
    overallLabel = addLabel("overallLabel", text("progress.files.initial"), faintGrey);
    fileProgressBar = new BarIndicator(barGreen, this);
    fileProgressBar->setObjectName(QStringLiteral("fileProgressBar"));
    fileProgressBar->setAccessibleName(toQString(text("spoken.file.progress")));
    fileProgressBar->setIndeterminate(true);
    fileProgressLabel = addLabel("fileProgressLabel", text("progress.frame.initial"), colour(0.4, 0.85, 0.6));
    fileNameLabel = addLabel("fileNameLabel", text("progress.preparing"), greyColour(0.8));
    statusLabel = addLabel("statusLabel", text("progress.starting"), faintGrey);
    titleLabel = addLabel("titleLabel", text("progress.title"), greyColour(1));
    cancelButton->setAutoDefault(true);
    setFocusProxy(cancelButton);
    applyColours();
    layoutWidgets();
}

/// The sheet is dark with every palette except a high contrast one.
void ProgressViewController::applyColours() {
    const bool highContrast = isHighContrast(palette());
    for (const auto &[label, colour] : labels_)
        setTextColour(label, highContrast ? palette().color(QPalette::WindowText) : colour);
}

void ProgressViewController::fitInto(QSize room) {
    const PointScale current = PointScale::current();
    scale_ = {std::min(current.x, room.width() / sheetWidth), std::min(current.y, room.height() / sheetHeight)};
    if (titleLabel)
        layoutWidgets();
}

void ProgressViewController::layoutWidgets() {
    const PointScale &scale = scale_;
    setFixedSize(scale.horizontal(sheetWidth), scale.vertical(sheetHeight));
    const auto place = [&](QWidget *widget, const PointFrame &frame, double size,
                           QFont::Weight weight = QFont::Normal) {
        widget->setFont(scale.font(size, weight));
        widget->setGeometry(scale.toQt(frame, sheetHeight));
    };
    place(cancelButton, {200, 24, 160, 38}, 14, QFont::DemiBold);
    place(elapsedLabel, {40, 76, 480, 18}, 11);
    place(fileCountLabel, {40, 102, 480, 20}, 12);
    place(overallProgress, {40, 128, 480, 14}, 11);
    place(overallLabel, {40, 148, 480, 18}, 11);
    place(fileProgressBar, {40, 176, 480, 12}, 11);
    place(fileProgressLabel, {40, 194, 480, 18}, 11);
    place(fileNameLabel, {40, 220, 480, 20}, 12);
    place(statusLabel, {40, 250, 480, 18}, 11);
    place(titleLabel, {40, 278, 480, 26}, 16, QFont::Bold);
}

void ProgressViewController::turnIntoCloseButton() {
    cancelButton->setText(buttonTitle("✓", text("button.close")));
    cancelButton->setAccessibleName(toQString(text("button.close")));
    cancelButton->setColour(closeGreen);
    cancelButton->setFocus();
}

void ProgressViewController::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && titleLabel)
        fitInto(parentWidget() ? parentWidget()->size() : size());
    else if (event->type() == QEvent::PaletteChange && titleLabel)
        applyColours();
}

void ProgressViewController::paintEvent(QPaintEvent *) {
    const double radius = sheetRadius * scale_.y;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool highContrast = isHighContrast(palette());
    painter.setPen(highContrast ? QPen(palette().color(QPalette::WindowText), 2) : QPen(Qt::NoPen));
    painter.setBrush(highContrast ? palette().color(QPalette::Window) : sheetBackground);
    const double edge = highContrast ? 1 : 0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge), radius, radius);
}

} // namespace lumetwin
