// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/FileRowDelegate.h"

#include "ui/files/FileListModel.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"
#include "ui/widgets/Symbol.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

namespace lumetwin {

namespace {

// Points.
constexpr double rowHeight = 70;
constexpr double margin = 8;
constexpr double checkWidth = 20;
constexpr double pictureWidth = 136;
constexpr double pictureHeight = 54;
constexpr double lineHeight = 18;
constexpr double symbolSize = 14;

Symbol symbolOf(FileRow::Kind kind) {
    return kind == FileRow::Kind::photo ? Symbol::picture : kind == FileRow::Kind::video ? Symbol::film : Symbol::other;
}

std::optional<Symbol> symbolOf(RowTone tone) {
    switch (tone) {
    case RowTone::good:
        return Symbol::done;
    case RowTone::warning:
        return Symbol::warning;
    case RowTone::error:
        return Symbol::failure;
    default:
        return std::nullopt;
    }
}

QColor colourOf(RowTone tone, const QPalette &palette) {
    switch (tone) {
    case RowTone::warning:
        return warningColour(palette);
    case RowTone::error:
        return errorColour(palette);
    case RowTone::faded:
        return secondaryTextColour(palette);
    default:
        return palette.color(QPalette::WindowText);
    }
}

const FileListModel &modelOf(const QModelIndex &index) {
    return *qobject_cast<const FileListModel *>(index.model());
}

/// Draws one row.
class RowPainter {
public:
    RowPainter(QPainter &painter, const QStyleOptionViewItem &option, const FileListModel &model, const FileRow &row)
        : painter_(painter), option_(option), model_(model), row_(row), scale_(PointScale::current()),
          isSelected_(option.state.testFlag(QStyle::State_Selected)) {}

    void paint() {
        paintBackground();
        paintCheck();
        paintPicture();
        paintTexts();
        paintProgress();
    }

private:
    QRect rect() const { return option_.rect; }
    QColor selected(const QColor &colour) const {
        return isSelected_ ? option_.palette.color(QPalette::HighlightedText) : colour;
    }
    bool isFaded() const { return row_.isLeftOut || row_.kind == FileRow::Kind::unsupported; }

    void paintBackground() {
        if (isSelected_)
            painter_.fillRect(rect(), accentColour(option_.palette));
        painter_.setPen(separatorColour(option_.palette));
        painter_.drawLine(rect().bottomLeft(), rect().bottomRight());
        if (option_.state.testFlag(QStyle::State_HasFocus)) {
            painter_.setPen(QPen(selected(option_.palette.color(QPalette::Highlight)), 1, Qt::DotLine));
            painter_.drawRect(rect().adjusted(1, 1, -2, -3));
        }
    }

    void paintCheck() {
        if (row_.kind == FileRow::Kind::unsupported)
            return;
        QStyleOptionViewItem check(option_);
        check.rect = FileRowDelegate::checkRect(rect());
        check.state = (check.state & ~QStyle::State_HasFocus) | (row_.isLeftOut ? QStyle::State_Off : QStyle::State_On);
        const QStyle *style = option_.widget ? option_.widget->style() : QApplication::style();
        style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &check, &painter_, option_.widget);
    }

    void paintPicture() {
        const QRect frame(rect().x() + scale_.horizontal(margin * 2 + checkWidth),
                          rect().y() + (rect().height() - scale_.vertical(pictureHeight)) / 2,
                          scale_.horizontal(pictureWidth), scale_.vertical(pictureHeight));
        painter_.setOpacity(isFaded() ? 0.45 : 1);
        if (!row_.look || row_.look->thumbnail.isNull()) {
            painter_.fillRect(frame, separatorColour(option_.palette));
            const int side = scale_.vertical(22);
            QRect symbol(0, 0, side, side);
            symbol.moveCenter(frame.center());
            const QColor colour = isHighContrast(option_.palette) ? option_.palette.color(QPalette::Window)
                                                                  : secondaryTextColour(option_.palette);
            drawSymbol(painter_, symbol, symbolOf(row_.kind), colour);
        } else {
            painter_.fillRect(frame, Qt::black);
            QRect place(QPoint(), row_.look->thumbnail.size().scaled(frame.size(), Qt::KeepAspectRatio));
            place.moveCenter(frame.center());
            painter_.setRenderHint(QPainter::SmoothPixmapTransform);
            painter_.drawImage(place, row_.look->thumbnail);
        }
        painter_.setOpacity(1);
    }

    void paintTexts() {
        const int left = rect().x() + scale_.horizontal(margin * 3 + checkWidth + pictureWidth);
        const int width = rect().right() - scale_.horizontal(margin) - left;
        const int line = scale_.vertical(lineHeight);
        const int top = rect().y() + (rect().height() - 3 * line) / 2;
        const QPalette &palette = option_.palette;
        const QColor plain = isFaded() ? secondaryTextColour(palette) : palette.color(QPalette::WindowText);
        paintLine({left, top, width, line}, displayName(row_.file), scale_.font(13, QFont::DemiBold), plain,
                  Qt::ElideMiddle);
        paintLine({left, top + line, width, line}, rowDetails(row_, model_.settings()), scale_.font(12),
                  secondaryTextColour(palette), Qt::ElideRight);
        const RowState state = model_.stateOf(row_);
        QRect place(left, top + 2 * line, width, line);
        if (const auto symbol = symbolOf(state.tone)) {
            const int side = scale_.vertical(symbolSize);
            drawSymbol(
                painter_, QRect(place.x(), place.y() + (line - side) / 2, side, side), *symbol,
                selected(state.tone == RowTone::good ? accentTextColour(palette) : colourOf(state.tone, palette)));
            place.setLeft(place.x() + side + scale_.horizontal(5));
        }
        paintLine(place, state.text, scale_.font(12), colourOf(state.tone, palette), Qt::ElideRight);
    }

    void paintLine(const QRect &place, const QString &text, const QFont &font, const QColor &colour,
                   Qt::TextElideMode elide) {
        painter_.setFont(font);
        painter_.setPen(selected(colour));
        painter_.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(text, elide, place.width()));
    }

    void paintProgress() {
        if (!row_.fraction)
            return;
        const int height = scale_.vertical(3);
        const QRect bar(rect().x(), rect().bottom() - height, qRound(rect().width() * *row_.fraction), height);
        painter_.fillRect(bar, selected(accentColour(option_.palette)));
    }

    QPainter &painter_;
    const QStyleOptionViewItem &option_;
    const FileListModel &model_;
    const FileRow &row_;
    PointScale scale_;
    bool isSelected_;
};

} // namespace

QRect FileRowDelegate::checkRect(const QRect &row) {
    const PointScale scale = PointScale::current();
    const int side = scale.vertical(checkWidth);
    return {row.x() + scale.horizontal(margin), row.y() + (row.height() - side) / 2, side, side};
}

void FileRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const {
    const FileListModel &model = modelOf(index);
    painter->save();
    painter->setClipRect(option.rect);
    RowPainter(*painter, option, model, model.rowAt(index)).paint();
    painter->restore();
}

QSize FileRowDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const {
    const PointScale scale = PointScale::current();
    return {scale.horizontal(300), scale.vertical(rowHeight)};
}

bool FileRowDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                  const QModelIndex &index) {
    if (event->type() != QEvent::MouseButtonRelease && event->type() != QEvent::MouseButtonDblClick)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    const int around = PointScale::current().horizontal(margin) - 1;
    const QRect target = checkRect(option.rect).adjusted(-around, -around, around, around);
    if (mouse->button() != Qt::LeftButton || !target.contains(mouse->pos()) ||
        !index.flags().testFlag(Qt::ItemIsUserCheckable))
        return false;
    if (event->type() == QEvent::MouseButtonRelease) {
        const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        model->setData(index, isChecked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    }
    return true;
}

} // namespace lumetwin
