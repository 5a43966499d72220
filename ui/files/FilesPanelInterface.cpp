// SPDX-License-Identifier: GPL-3.0-or-later
// Builds the panel of files.
#include "ui/files/FilesPanel.h"

#include "ui/files/FileListView.h"
#include "ui/files/PreviewPane.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"
#include "ui/widgets/RowLayout.h"
#include "ui/widgets/Symbol.h"

#include <QEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumetwin {

namespace {

template <typename Widget> Widget *named(Widget *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QPushButton *button(const char *key, const char *name, QWidget *parent) {
    auto *made = named(new QPushButton(localizedText(key), parent), name);
    made->setAutoDefault(true);
    return made;
}

} // namespace

void FilesPanel::build() {
    const PointScale scale = PointScale::current();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(scale.horizontal(14), scale.vertical(14), scale.horizontal(20), scale.vertical(14));
    layout->setSpacing(scale.vertical(8));
    layout->addWidget(buildHeader());
    layout->addWidget(buildAdvice());
    splitter_ = named(new QSplitter(Qt::Vertical, this), "filesSplitter");
    splitter_->setChildrenCollapsible(false);
    auto *upper = new QWidget(splitter_);
    auto *upperLayout = new QVBoxLayout(upper);
    upperLayout->setContentsMargins(0, 0, 0, 0);
    list_ = named(new FileListView(&model_, upper), "fileList");
    list_->setAccessibleName(localizedText("files.title"));
    emptyLabel_ = named(new QLabel(localizedText("files.empty"), upper), "filesEmptyLabel");
    emptyLabel_->setAlignment(Qt::AlignCenter);
    emptyLabel_->setWordWrap(true);
    emptyLabel_->setTextFormat(Qt::PlainText);
    upperLayout->addWidget(list_, 1);
    upperLayout->addWidget(emptyLabel_, 1);
    list_->hide();
    preview_ = named(new PreviewPane(settings_, services_.operations, splitter_), "previewPane");
    splitter_->addWidget(upper);
    splitter_->addWidget(preview_);
    upper->setMinimumHeight(scale.vertical(80));
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({scale.vertical(400), scale.vertical(400)});
    layout->addWidget(splitter_, 1);
    layout->addWidget(buildFooter());
    connect(list_, &FileListView::currentFileChanged, this, &FilesPanel::showCurrent);
    connect(list_, &FileListView::viewMoved, this, [this] { looks_.prefer(list_->visibleFiles()); });
    connect(list_, &FileListView::openAsked, this, [this](const auto &file) { services_.openFile(file); });
    connect(list_, &FileListView::showAsked, this, [this](const auto &file) { services_.showInFolder(file); });
    connect(list_, &FileListView::reportAsked, this, &FilesPanel::copyReport);
    connect(preview_, &PreviewPane::swapAsked, this, &FilesPanel::swapAsked);
    connect(preview_, &PreviewPane::adjustmentAsked, this, &FilesPanel::adjustmentAsked);
}

QWidget *FilesPanel::buildHeader() {
    auto *header = new QWidget(this);
    QHBoxLayout *layout = rowLayoutIn(header);
    backButton_ = button("files.back", "filesBackButton", header);
    backButton_->hide();
    titleLabel_ = named(new QLabel(localizedText("files.title"), header), "filesTitle");
    closeButton_ = named(new QToolButton(header), "filesCloseButton");
    closeButton_->setAutoRaise(true);
    closeButton_->setFocusPolicy(Qt::StrongFocus);
    closeButton_->setToolTip(localizedText("files.close"));
    closeButton_->setAccessibleName(localizedText("files.close"));
    for (QAbstractButton *closing : std::initializer_list<QAbstractButton *>{backButton_, closeButton_})
        connect(closing, &QAbstractButton::clicked, this, &FilesPanel::closeAsked);
    layout->addWidget(backButton_);
    layout->addWidget(titleLabel_, 1);
    layout->addWidget(closeButton_);
    return header;
}

QWidget *FilesPanel::buildAdvice() {
    advice_ = named(new QWidget(this), "filesAdvice");
    auto *layout = new QVBoxLayout(advice_);
    layout->setContentsMargins(0, 0, 0, 0);
    adviceLabel_ = named(new QLabel(advice_), "filesAdviceLabel");
    adviceLabel_->setWordWrap(true);
    adviceLabel_->setTextFormat(Qt::PlainText);
    auto *buttons = new QWidget(advice_);
    QHBoxLayout *row = rowLayoutIn(buttons);
    leaveOutButton_ = button("files.advice.leave.out", "filesLeaveOutButton", buttons);
    turnButton_ = button("files.advice.turn", "filesTurnButton", buttons);
    connect(leaveOutButton_, &QPushButton::clicked, this,
            [this] { leaveOut(turnButton_->isHidden() ? isNoStereo : isAgainstDirection); });
    connect(turnButton_, &QPushButton::clicked, this, &FilesPanel::turnDirectionAsked);
    row->addWidget(leaveOutButton_);
    row->addWidget(turnButton_);
    row->addStretch();
    layout->addWidget(adviceLabel_);
    layout->addWidget(buttons);
    advice_->hide();
    return advice_;
}

QWidget *FilesPanel::buildFooter() {
    auto *footer = new QWidget(this);
    QHBoxLayout *layout = rowLayoutIn(footer);
    totalsLabel_ = named(new QLabel(footer), "filesTotals");
    totalsLabel_->setTextFormat(Qt::PlainText);
    totalsLabel_->setWordWrap(true);
    reportButton_ = button("files.report", "filesReportButton", footer);
    auto *menu = new QMenu(reportButton_);
    connect(menu->addAction(localizedText("files.report.copy")), &QAction::triggered, this, &FilesPanel::copyReport);
    connect(menu->addAction(localizedText("files.report.save")), &QAction::triggered, this, &FilesPanel::saveReport);
    reportButton_->setMenu(menu);
    againButton_ = button("files.again", "filesAgainButton", footer);
    connect(againButton_, &QPushButton::clicked, this, &FilesPanel::convertFailedAgain);
    layout->addWidget(totalsLabel_, 1);
    layout->addWidget(reportButton_);
    layout->addWidget(againButton_);
    return footer;
}

void FilesPanel::setReplacesForm(bool replacesForm) {
    backButton_->setVisible(replacesForm);
    closeButton_->setVisible(!replacesForm);
}

void FilesPanel::applyLooks() {
    const PointScale scale = PointScale::current();
    titleLabel_->setFont(scale.font(15, QFont::Bold));
    for (QLabel *label : {adviceLabel_, emptyLabel_, totalsLabel_})
        label->setFont(scale.font(12));
    for (QPushButton *made : {backButton_, leaveOutButton_, turnButton_, reportButton_, againButton_})
        made->setFont(scale.font(13));
    setTextColour(emptyLabel_, secondaryTextColour(palette()));
    setTextColour(totalsLabel_, secondaryTextColour(palette()));
    setTextColour(adviceLabel_, warningColour(palette()));
    const int size = scale.vertical(14);
    closeButton_->setIconSize({size, size});
    closeButton_->setIcon(symbolIcon(Symbol::close, palette().color(QPalette::WindowText), size, devicePixelRatioF()));
    QPalette listPalette = palette();
    listPalette.setColor(QPalette::Base, sectionColour(palette()));
    list_->setPalette(listPalette);
}

void FilesPanel::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (againButton_ && (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange))
        applyLooks();
}

} // namespace lumetwin
