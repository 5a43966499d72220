// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/DropFolderView.h"

#include "engine/inspection/MediaKinds.h"
#include "ui/files/DropIcon.h"
#include "ui/files/DroppedFiles.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QAccessible>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>

#include <algorithm>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

constexpr double cornerRadius = 8; // points
constexpr double lineWidth = 1.5;

struct Colours {
    QColor background;
    QColor border;
    QColor text;
};

const Colours highlightedColours{colour(0.1, 0.25, 0.5), colour(0.3, 0.6, 1.0), greyColour(0.95)};
const Colours refusedColours{colour(0.24, 0.09, 0.09), colour(0.9, 0.4, 0.35), colour(1.0, 0.78, 0.74)};
const Colours contentColours{colour(0.08, 0.18, 0.1), colour(0.2, 0.6, 0.3, 0.8), colour(0.4, 0.8, 0.4)};
const Colours emptyColours{colour(0.1, 0.11, 0.15), colour(0.25, 0.3, 0.45, 0.8), greyColour(0.62)};
const QColor dashColour = colour(0.3, 0.35, 0.5, 0.8);

/// In high contrast only the desktop's own colours are used. A target under a drag looks like a selected item.
Colours highContrastColours(const QPalette &palette, bool highlighted) {
    if (highlighted)
        return {palette.color(QPalette::Highlight), palette.color(QPalette::HighlightedText),
                palette.color(QPalette::HighlightedText)};
    return {palette.color(QPalette::Window), palette.color(QPalette::WindowText), palette.color(QPalette::WindowText)};
}

} // namespace

std::vector<Symbol> symbolsOfFiles(const std::vector<fs::path> &files) {
    const bool photos = std::any_of(files.begin(), files.end(), isPhotoFile);
    const bool videos = std::any_of(files.begin(), files.end(), isVideoFile);
    if (!photos)
        return {Symbol::film};
    return videos ? std::vector{Symbol::film, Symbol::picture} : std::vector{Symbol::picture};
}

DropFolderView::DropFolderView(QWidget *parent) : QWidget(parent), placeholder_(toQString(folderPlaceholder())) {
    setupView();
}

void DropFolderView::setupView() {
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    iconLabel = new DropIcon(this);
    iconLabel->setObjectName(QStringLiteral("iconLabel"));
    label = new ElidedLabel(placeholder_, this);
    label->setObjectName(QStringLiteral("label"));
    refusalEnd_.setSingleShot(true);
    connect(&refusalEnd_, &QTimer::timeout, this, &DropFolderView::endRefusal);
    updateAppearance();
}

void DropFolderView::setPlaceholder(const QString &text) {
    placeholder_ = text;
    updateAppearance();
}

void DropFolderView::layoutLabels() {
    const PointScale scale = PointScale::current();
    const double h = height() / scale.y, w = width() / scale.x;
    iconLabel->setGeometry(scale.toQt({8, (h - 20) / 2, 22, 20}, h));
    label->setFont(scale.font(11));
    label->setGeometry(scale.toQt({34, (h - 18) / 2, w - 44, 18}, h));
}

/// Updates the texts and their colours. paintEvent draws the box around them.
void DropFolderView::updateAppearance() {
    label->setText(!refusal_.isEmpty() ? refusal_ : hasContent_ ? content_ : placeholder_);
    const bool highContrast = isHighContrast(palette());
    const QColor textColour = highContrast          ? highContrastColours(palette(), isHighlighted_).text
                              : isHighlighted_      ? highlightedColours.text
                              : !refusal_.isEmpty() ? refusedColours.text
                              : hasContent_         ? contentColours.text
                                                    : emptyColours.text;
    setTextColour(label, textColour);
    iconLabel->setColour(textColour);
    update();
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

void DropFolderView::setHighlighted(bool highlighted) {
    isHighlighted_ = highlighted;
    updateAppearance();
}

void DropFolderView::showContent(const std::vector<Symbol> &symbols, const QString &text) {
    hasContent_ = true;
    content_ = text;
    iconLabel->setSymbols(symbols);
    endRefusal();
}

void DropFolderView::refuse(const QString &why) {
    constexpr int longEnoughToRead = 5000; // milliseconds
    refusal_ = why;
    refusalEnd_.start(longEnoughToRead);
    updateAppearance();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void DropFolderView::endRefusal() {
    refusal_.clear();
    refusalEnd_.stop();
    updateAppearance();
}

void DropFolderView::showFolder(const fs::path &folder) {
    showContent({Symbol::folder}, displayName(folder));
}

void DropFolderView::showFiles(const std::vector<fs::path> &files) {
    const QString text = files.size() == 1 ? displayName(files.front())
                                           : toQString(filesSelectedText(static_cast<std::int64_t>(files.size())));
    showContent(symbolsOfFiles(files), text);
}

std::string DropFolderView::reasonToRefuse(const DroppedInput &input) const {
    if (onlyFolders_ && !input.folder)
        return text("drop.refused.no.folder");
    if (input.empty())
        return text("drop.refused.no.media");
    return input.folder && objection ? objection(*input.folder) : std::string();
}

bool DropFolderView::acceptPaths(const std::vector<fs::path> &paths) {
    const DroppedInput input = classifyDrop(paths);
    if (const std::string reason = reasonToRefuse(input); !reason.empty()) {
        refuse(toQString(reason));
        return false;
    }
    if (input.folder) {
        showFolder(*input.folder);
        if (onFolderDropped)
            onFolderDropped(*input.folder);
    } else {
        showFiles(input.files);
        if (onFilesDropped)
            onFilesDropped(input);
    }
    return true;
}

bool DropFolderView::acceptData(const QMimeData &mime) {
    return receiveFiles(mime, this, [this](const std::vector<fs::path> &files) { return acceptPaths(files); });
}

/// A target for folders can decide while the drag moves. Any other target has to look into the dragged folder, and does
/// that at the drop.
bool DropFolderView::canAccept(const QMimeData &mime) const {
    const std::vector<fs::path> files = localFiles(mime);
    return !onlyFolders_ || files.empty() || classifyDrop(files).folder;
}

void DropFolderView::dragEnterEvent(QDragEnterEvent *event) {
    if (!holdsFiles(*event->mimeData()))
        return event->ignore();
    const bool usable = canAccept(*event->mimeData());
    setHighlighted(usable);
    if (!usable)
        refuse(toQString(lumetwin::text("drop.refused.no.folder")));
    // Always accepted: without that Qt sends no event when the drag leaves.
    event->setDropAction(usable ? Qt::CopyAction : Qt::IgnoreAction);
    event->accept();
}

void DropFolderView::dragMoveEvent(QDragMoveEvent *event) {
    event->setDropAction(isHighlighted_ ? Qt::CopyAction : Qt::IgnoreAction);
    event->setAccepted(isHighlighted_);
}

void DropFolderView::dragLeaveEvent(QDragLeaveEvent *) {
    setHighlighted(false);
}

void DropFolderView::dropEvent(QDropEvent *event) {
    setHighlighted(false);
    event->setDropAction(Qt::CopyAction);
    event->setAccepted(acceptData(*event->mimeData()));
}

void DropFolderView::mousePressEvent(QMouseEvent *event) {
    event->setAccepted(event->button() == Qt::LeftButton);
}

void DropFolderView::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) && onActivated)
        onActivated();
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
    else if (event->type() == QEvent::PaletteChange && iconLabel)
        updateAppearance();
}

void DropFolderView::paintEvent(QPaintEvent *) {
    const PointScale scale = PointScale::current();
    const double line = lineWidth * scale.y, radius = cornerRadius * scale.y;
    const Colours colours = isHighContrast(palette()) ? highContrastColours(palette(), isHighlighted_)
                            : isHighlighted_          ? highlightedColours
                            : !refusal_.isEmpty()     ? refusedColours
                            : hasContent_             ? contentColours
                                                      : emptyColours;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colours.border, line));
    painter.setBrush(colours.background);
    const QRectF edge = QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
    painter.drawRoundedRect(edge, radius, radius);
    painter.setBrush(Qt::NoBrush);
    if (!hasContent_ && !isHighlighted_ && refusal_.isEmpty()) {
        QPen pen(isHighContrast(palette()) ? colours.border : dashColour, line);
        pen.setDashPattern({5 / lineWidth, 4 / lineWidth}); // Qt measures dashes in line widths
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
