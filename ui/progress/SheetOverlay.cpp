// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/progress/SheetOverlay.h"

#include "ui/widgets/Palettes.h"

#include <QEvent>
#include <QPainter>

namespace lumetwin {

SheetOverlay::SheetOverlay(QWidget *content, Sheet *sheet)
    : QWidget(content->parentWidget()), content_(content), sheet_(sheet) {
    sheet->setParent(this);
    content->installEventFilter(this);
    coverContent();
    show();
    raise();
    sheet->show();
    sheet->setFocus();
}

void SheetOverlay::coverContent() {
    setGeometry(content_->geometry());
}

bool SheetOverlay::eventFilter(QObject *watched, QEvent *event) {
    if (watched == content_ && (event->type() == QEvent::Resize || event->type() == QEvent::Move))
        coverContent();
    return QWidget::eventFilter(watched, event);
}

void SheetOverlay::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    sheet_->fitInto(size());
    sheet_->move((width() - sheet_->width()) / 2, (height() - sheet_->height()) / 3);
}

void SheetOverlay::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), greyColour(0, 0.5));
}

} // namespace lumetwin
