// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSize>

class QSplitter;
class QWidget;

namespace lumetwin {

/// Shows a panel to the right of the form, or in the form's place where the screen has too little room for both. The
/// window grows with the panel and gets its old size back without it.
class SidePanel : public QObject {
    Q_OBJECT

public:
    /// The window must outlive this object. The form and the panel become its content.
    SidePanel(QWidget *window, QWidget *form, QWidget *panel);

    /// What the window shows.
    QWidget *content() const;
    bool isOpen() const { return isOpen_; }
    /// Whether the open panel stands beside the form.
    bool isBeside() const { return isBeside_; }
    /// Whether form and panel can be seen together on the window's screen.
    bool hasRoomForBoth() const;
    void open();
    void close();

signals:
    /// The panel was opened or closed. beside: it stands beside the form, not in its place.
    void changed(bool open, bool beside);

private:
    void openBeside();
    void setLeastWidths(int form, int panel);

    QWidget *window_;
    QWidget *form_;
    QWidget *panel_;
    QSplitter *splitter_;
    bool isOpen_ = false;
    bool isBeside_ = false;
    int leastBefore_ = 0; ///< the window's minimum width without the panel
    QSize sizeBefore_;    ///< of the window, before the panel was opened beside the form; empty when it was not resized
};

} // namespace lumetwin
