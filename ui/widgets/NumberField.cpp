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
    : QLineEdit(start, parent), parse_(std::move(parse)), typed_(parse_(start)), kept_(value()) {
    connect(this, &QLineEdit::textChanged, this, &NumberField::read);
    connect(this, &QLineEdit::editingFinished, this, &NumberField::keep);
}

void NumberField::showValue(double value, const QString &text) {
    {
        const QSignalBlocker quiet(this);
        setText(text);
    }
    typed_ = kept_ = value;
    mark();
}

void NumberField::setWords(const QString &takes, const QString &help) {
    takes_ = takes;
    help_ = help;
    mark();
}

void NumberField::read() {
    typed_ = parse_(text());
    // A text that nobody typed is no step on the way to another one.
    if (!isModified())
        keep();
    mark();
}

void NumberField::keep() {
    kept_ = value();
}

void NumberField::mark() {
    const bool wasWrong = accessibleDescription() == takes_ && !takes_.isEmpty();
    setToolTip(isAccepted() ? help_ : takes_);
    setAccessibleDescription(isAccepted() ? help_ : takes_);
    if (!isAccepted() && !wasWrong && hasFocus()) {
        QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&changed);
        QToolTip::showText(mapToGlobal(QPoint(0, height())), takes_, this);
    } else if (isAccepted() && wasWrong) {
        QToolTip::hideText();
    }
    update();
}

void NumberField::paintEvent(QPaintEvent *event) {
    QLineEdit::paintEvent(event);
    if (isAccepted())
        return;
    const double line = 2 * PointScale::current().y;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(errorColour(palette()), line));
    painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), 3, 3);
}

} // namespace lumetwin
