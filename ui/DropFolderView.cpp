// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DropFolderView.h"

#include "engine/MediaKinds.h"
#include "ui/DropIcon.h"
#include "ui/DroppedFiles.h"
#include "ui/Localized.h"
#include "ui/Palettes.h"
#include "ui/Points.h"
#include "ui/desktop/PortalFiles.h"

#include <QAccessible>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>

#include <algorithm>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

constexpr double cornerRadius = 8; // points
constexpr double lineWidth = 1.5;

struct Look {
    QColor background;
    QColor border;
};

const Look highlightedLook{colour(0.1, 0.25, 0.5), colour(0.3, 0.6, 1.0)};
const Look contentLook{colour(0.08, 0.18, 0.1), colour(0.2, 0.6, 0.3, 0.8)};
const Look emptyLook{colour(0.1, 0.11, 0.15), colour(0.25, 0.3, 0.45, 0.8)};
const QColor dashes = colour(0.3, 0.35, 0.5, 0.8);
const QColor placeholderText = white(0.5);
const QColor contentText = colour(0.4, 0.8, 0.4);

} // namespace

QString iconOfFiles(const std::vector<fs::path> &files) {
    const bool photos = std::any_of(files.begin(), files.end(), isPhotoFile);
    const bool videos = std::any_of(files.begin(), files.end(), isVideoFile);
    if (!photos)
        return QStringLiteral("🎬");
    return videos ? QStringLiteral("🎬🖼️") : QStringLiteral("🖼️");
}

DropFolderView::DropFolderView(QWidget *parent) : QWidget(parent), placeholder_(toQString(folderPlaceholder())) {
    setupView();
}

void DropFolderView::setupView() {
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    iconLabel = new DropIcon(QStringLiteral("📁"), this);
    iconLabel->setObjectName(QStringLiteral("iconLabel"));
    label = new ElidedLabel(placeholder_, this);
    label->setObjectName(QStringLiteral("label"));
    setTextColour(label, placeholderText);
    updateAppearance();
}

void DropFolderView::setPlaceholder(const QString &text) {
    placeholder_ = text;
    label->setText(text);
}

void DropFolderView::layoutLabels() {
    const PointScale scale = PointScale::current();
    const double h = height() / scale.y, w = width() / scale.x;
    iconLabel->setFont(scale.font(16));
    iconLabel->setGeometry(scale.toQt({8, (h - 20) / 2, 22, 20}, h));
    label->setFont(scale.font(11));
    label->setGeometry(scale.toQt({34, (h - 18) / 2, w - 44, 18}, h));
}

void DropFolderView::updateAppearance() {
    update();
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

void DropFolderView::setHighlighted(bool highlighted) {
    isHighlighted_ = highlighted;
    updateAppearance();
}

void DropFolderView::showContent(const QString &icon, const QString &text) {
    hasContent_ = true;
    iconLabel->setText(icon);
    label->setText(text);
    setTextColour(label, contentText);
    updateAppearance();
}

void DropFolderView::showFolder(const fs::path &folder) {
    showContent(QStringLiteral("📁"), shownName(folder));
}

void DropFolderView::showFiles(const std::vector<fs::path> &files) {
    const QString text = files.size() == 1 ? shownName(files.front())
                                           : toQString(filesSelected(static_cast<std::int64_t>(files.size())));
    showContent(iconOfFiles(files), text);
}

bool DropFolderView::acceptPaths(const std::vector<fs::path> &paths) {
    const DroppedInput input = classifyDrop(paths);
    if (input.folder) {
        showFolder(*input.folder);
        if (onFolderDropped)
            onFolderDropped(*input.folder);
    } else if (!input.files.empty()) {
        showFiles(input.files);
        if (onFilesDropped)
            onFilesDropped(input.files);
    }
    return !input.empty();
}

bool DropFolderView::acceptData(const QMimeData &mime) {
    const std::vector<fs::path> files = localFiles(mime);
    const QByteArray key = portalTransferKey(mime);
    // Inside a sandbox only the portal's paths lead anywhere.
    if (!files.empty() && (key.isEmpty() || !isConfined()))
        return acceptPaths(files);
    if (key.isEmpty())
        return false;
    retrievePortalFiles(key, [view = QPointer(this)](const std::vector<fs::path> &received) {
        if (view)
            view->acceptPaths(received);
    });
    return true;
}

void DropFolderView::dragEnterEvent(QDragEnterEvent *event) {
    if (!holdsFiles(*event->mimeData()))
        return event->ignore();
    setHighlighted(true);
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void DropFolderView::dragLeaveEvent(QDragLeaveEvent *) {
    setHighlighted(false);
}

void DropFolderView::dropEvent(QDropEvent *event) {
    setHighlighted(false);
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(acceptData(*event->mimeData()));
}

void DropFolderView::keyPressEvent(QKeyEvent *event) {
    if (event->matches(QKeySequence::Paste)) {
        if (const QMimeData *mime = QGuiApplication::clipboard()->mimeData())
            acceptData(*mime);
    } else if (onActivated &&
               (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        onActivated();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void DropFolderView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    layoutLabels();
}

void DropFolderView::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        layoutLabels();
}

void DropFolderView::paintEvent(QPaintEvent *) {
    const PointScale scale = PointScale::current();
    const double line = lineWidth * scale.y, radius = cornerRadius * scale.y;
    const Look &look = isHighlighted_ ? highlightedLook : hasContent_ ? contentLook : emptyLook;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look.border, line));
    painter.setBrush(look.background);
    const QRectF edge = QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
    painter.drawRoundedRect(edge, radius, radius);
    painter.setBrush(Qt::NoBrush);
    if (!hasContent_ && !isHighlighted_) {
        QPen pen(dashes, line);
        pen.setDashPattern({5 / lineWidth, 4 / lineWidth}); // Qt counts in line widths
        pen.setCapStyle(Qt::FlatCap);
        painter.setPen(pen);
        painter.drawRoundedRect(QRectF(rect()).adjusted(scale.y, scale.y, -scale.y, -scale.y), radius, radius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight).lighter(125), 2 * scale.y));
        painter.drawRoundedRect(QRectF(rect()).adjusted(scale.y, scale.y, -scale.y, -scale.y), radius, radius);
    }
}

} // namespace lumetwin
