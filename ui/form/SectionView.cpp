// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/form/SectionView.h"

#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QEvent>
#include <QPainter>

namespace lumetwin {

SectionView::SectionView(const QString &title, QWidget *parent) : QWidget(parent), titleLabel(new QLabel(title, this)) {
    titleLabel->setAutoFillBackground(true);
    titleLabel->setBackgroundRole(QPalette::Window);
    titleLabel->setTextFormat(Qt::PlainText);
    titleLabel->setAlignment(Qt::AlignCenter); // aligned with the controls below it
    setAccessibleName(title);
}

void SectionView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(separatorColour(palette()), 1));
    painter.setBrush(sectionColour(palette()));
    const int radius = PointScale::current().vertical(10);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void SectionView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    layoutTitle();
}

void SectionView::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        layoutTitle();
}

void SectionView::layoutTitle() {
    const PointScale scale = PointScale::current();
    titleLabel->setFont(scale.font(12, QFont::Bold));
    // The height of one line in the label's own font, even when a fallback font with a larger line height draws the
    // text.
    const QFontMetrics fitting(titleLabel->font());
    titleLabel->setGeometry(scale.horizontal(12), scale.vertical(6),
                            fitting.horizontalAdvance(titleLabel->text()) + scale.horizontal(4), fitting.height());
}

} // namespace lumetwin
