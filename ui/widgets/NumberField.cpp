// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/NumberField.h"

#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QAccessible>
#include <QPainter>
#include <QSignalBlocker>
#include <QToolTip>

namespace lumetwin {

NumberField::NumberField(const QString &start, Parse parse, QWidget *parent)
    : QLineEdit(start, parent), parse_(std::move(parse)), typedValue_(parse_(start)), previousValue_(value()) {
    connect(this, &QLineEdit::textChanged, this, &NumberField::parseText);
    connect(this, &QLineEdit::editingFinished, this, &NumberField::savePreviousValue);
}

void NumberField::showValue(double value, const QString &text) {
    {
        const QSignalBlocker quiet(this);
        setText(text);
    }
    typedValue_ = previousValue_ = value;
    updateMarking();
}

void NumberField::setTexts(const QString &expectedInput, const QString &help) {
    expectedInput_ = expectedInput;
    help_ = help;
    updateMarking();
}

void NumberField::parseText() {
    typedValue_ = parse_(text());
    // A text that was set by the program is complete, so its value counts at once.
    if (!isModified())
        savePreviousValue();
    updateMarking();
}

void NumberField::savePreviousValue() {
    previousValue_ = value();
}

void NumberField::updateMarking() {
    const bool wasWrong = accessibleDescription() == expectedInput_ && !expectedInput_.isEmpty();
    setToolTip(isValid() ? help_ : expectedInput_);
    setAccessibleDescription(isValid() ? help_ : expectedInput_);
    if (!isValid() && !wasWrong && hasFocus()) {
        QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&changed);
        QToolTip::showText(mapToGlobal(QPoint(0, height())), expectedInput_, this);
    } else if (isValid() && wasWrong) {
        QToolTip::hideText();
    }
    update();
}

void NumberField::paintEvent(QPaintEvent *event) {
    QLineEdit::paintEvent(event);
    if (isValid())
        return;
    const double line = 2 * PointScale::current().y;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(errorColour(palette()), line));
    painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), 3, 3);
}

} // namespace lumetwin
