// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/files/PreviewLoader.h"

#include <QPointF>
#include <QTimer>
#include <QWidget>

namespace lumetwin {

/// Shows the picture of a preview, fitted into the widget or pixel by pixel, or a text where there is no picture. The
/// mouse and the arrow keys move a picture that is larger than the widget.
class PreviewCanvas : public QWidget {
    Q_OBJECT

public:
    explicit PreviewCanvas(QWidget *parent = nullptr);

    void setShow(const PreviewShow &show);
    /// Shows a text instead of a picture.
    void setMessage(const QString &message);
    /// What is shown; wiggle: the left eye's picture.
    const QImage &picture() const { return show_.picture; }
    QString message() const { return message_; }
    bool hasPicture() const { return !show_.picture.isNull(); }
    /// Whether one pixel of the picture is one pixel of the screen.
    bool isActualSize() const { return isActualSize_; }
    void setActualSize(bool actualSize);
    /// In pixels of the screen.
    QSize room() const;

signals:
    void resized();
    /// The user pressed the key of a mode; its position.
    void modeAsked(int mode);
    void actualSizeAsked(bool actualSize);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    QRectF placeOf(const QImage &picture) const;
    void moveBy(QPointF offset);

    PreviewShow show_;
    QString message_;
    bool isActualSize_ = false;
    bool showsSecond_ = false;
    QPointF offset_; ///< of the picture's middle from the widget's, in widget pixels
    QPointF grabbed_;
    QTimer wiggle_;
};

} // namespace lumetwin
