// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SidePanel.h"

#include "app/WindowSizes.h"
#include "ui/widgets/Points.h"

#include <QScreen>
#include <QSplitter>

#include <algorithm>

namespace lumetwin {

namespace {

// Points.
constexpr double widthOfBoth = 1280;
constexpr double widthOfForm = 720;
constexpr double leastOfForm = 680;
constexpr double leastOfPanel = 440;

} // namespace

SidePanel::SidePanel(QWidget *window, QWidget *form, QWidget *panel)
    : QObject(window), window_(window), form_(form), panel_(panel), splitter_(new QSplitter(Qt::Horizontal, window)) {
    splitter_->setObjectName(QStringLiteral("windowSplitter"));
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(form);
    splitter_->addWidget(panel);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    panel->hide();
}

QWidget *SidePanel::content() const {
    return splitter_;
}

bool SidePanel::hasRoomForBoth() const {
    const int wanted = PointScale::current().horizontal(widthOfBoth);
    const int available =
        std::max(window_->width(), window_->screen()->availableGeometry().width() - windowFrame.width());
    return available >= wanted;
}

void SidePanel::open() {
    if (isOpen_)
        return;
    isOpen_ = true;
    isBeside_ = hasRoomForBoth();
    panel_->show();
    if (isBeside_)
        openBeside();
    else
        form_->hide();
    emit changed(true, isBeside_);
}

/// Widens the window to the right, and moves it to the middle where the screen would end. A window that fills the
/// screen stays as it is.
void SidePanel::openBeside() {
    const int form = std::min(form_->width(), PointScale::current().horizontal(widthOfForm));
    const int wanted = PointScale::current().horizontal(widthOfBoth);
    sizeBefore_ = {};
    if (window_->width() < wanted && !window_->isMaximized() && !window_->isFullScreen()) {
        sizeBefore_ = window_->size();
        const QRect available = window_->screen()->availableGeometry();
        window_->resize(std::min(wanted, available.width() - windowFrame.width()), window_->height());
        if (window_->isVisible() && window_->frameGeometry().right() > available.right())
            window_->move(available.center().x() - window_->frameGeometry().width() / 2, window_->y());
    }
    setLeastWidths(PointScale::current().horizontal(leastOfForm), PointScale::current().horizontal(leastOfPanel));
    splitter_->setSizes({form, std::max(1, window_->width() - form)});
}

/// Keeps form and panel from being cut off by the splitter or by a narrow window. Two zeros: the window as it was.
void SidePanel::setLeastWidths(int form, int panel) {
    if (form > 0)
        leastBefore_ = window_->minimumWidth();
    form_->setMinimumWidth(form);
    panel_->setMinimumWidth(panel);
    window_->setMinimumWidth(form > 0 ? std::max(leastBefore_, form + splitter_->handleWidth() + panel) : leastBefore_);
}

void SidePanel::close() {
    if (!isOpen_)
        return;
    isOpen_ = false;
    if (isBeside_)
        setLeastWidths(0, 0);
    panel_->hide();
    form_->show();
    if (!sizeBefore_.isEmpty() && !window_->isMaximized() && !window_->isFullScreen())
        window_->resize(sizeBefore_.width(), window_->height());
    sizeBefore_ = {};
    emit changed(false, isBeside_);
}

} // namespace lumetwin
