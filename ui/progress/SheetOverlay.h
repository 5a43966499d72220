// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/progress/Sheet.h"

#include <QPointer>

namespace lumetwin {

/// Presents a sheet on a window's content: covers and dims the content and keeps the sheet in its middle. The sheet is
/// a part of the window, not a window of its own, because a window that is blocked by a modal one does not hear of its
/// close button. This way the program can ask before it closes.
class SheetOverlay : public QWidget {
    Q_OBJECT

public:
    /// Covers the content and becomes the parent of the sheet.
    SheetOverlay(QWidget *content, Sheet *sheet);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void coverContent();

    QPointer<QWidget> content_;
    Sheet *sheet_;
};

} // namespace lumetwin
