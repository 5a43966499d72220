// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/alerts/AlertBox.h"

#include "ui/alerts/AlertPresenter.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Points.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTextEdit>
#include <QTextLayout>
#include <QTimer>

#include <algorithm>

namespace lumetwin {

namespace {

/// Adds places where a line may break inside words that are longer than a line, such as long file names.
QString withBreakOpportunities(const std::string &text) {
    static const QRegularExpression run(QStringLiteral("([^\\s\\x{200b}]{24})"));
    return toQString(text).replace(run, QStringLiteral("\\1\u200b"));
}

/// The longest line that is easy to read, in pixels.
int maximumLineWidth(const QWidget &widget) {
    constexpr double readable = 360; // points
    return std::min(PointScale::current().horizontal(readable), widget.screen()->availableSize().width() / 2);
}

/// Breaks the text into lines of at most that width, in pixels. QMessageBox computes the width of its message before it
/// wraps the text, and would cut off a long bold text.
QString withLineBreaks(const QString &text, const QFont &font, int width) {
    QStringList lines;
    for (const QString &paragraph : text.split(QLatin1Char('\n'))) {
        QTextLayout layout(paragraph, font);
        layout.setTextOption(QTextOption());
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines << paragraph.mid(line.textStart(), line.textLength()).trimmed();
        }
        layout.endLayout();
    }
    return lines.join(QLatin1Char('\n'));
}

/// QMessageBox wraps its text at a width that does not depend on the font, so a large font gives a narrow column. This
/// sets the minimum width of a label to its longest line, but to at most maximumLineWidth, and never less than the
/// longest part that cannot be broken.
void setMinimumLabelWidth(QLabel *label) {
    const int longest = label->fontMetrics().size(0, label->text()).width() + 2 * label->margin() + 2 +
                        label->contentsMargins().left() + label->contentsMargins().right();
    const int most = maximumLineWidth(*label);
    const bool wraps = label->wordWrap();
    label->setWordWrap(true);
    const int unbreakable = label->minimumSizeHint().width();
    label->setWordWrap(wraps);
    label->setMinimumWidth(std::max(wraps ? std::min(longest, most) : longest, unbreakable));
}

} // namespace

AlertBox::AlertBox(const Alert &alert, QWidget *parent) : QMessageBox(parent) {
    setObjectName(QStringLiteral("alert"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(QStringLiteral("Lumetwin"));
    setAccessibleName(toQString(alert.message));
    setTextFormat(Qt::PlainText);
    setIcon(alert.style == AlertStyle::warning ? QMessageBox::Warning : QMessageBox::Information);
    setText(withBreakOpportunities(alert.message));
    if (!alert.informative.empty())
        setInformativeText(withBreakOpportunities(alert.informative));
    if (!alert.details.empty())
        addDetails(alert);
    addButtons(alert);
    if (auto *label = findChild<QLabel *>(QStringLiteral("qt_msgbox_label"))) {
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        label->setText(withLineBreaks(label->text(), bold, maximumLineWidth(*label)));
        setMinimumLabelWidth(label);
    }
    if (auto *label = findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"))) {
        label->setTextFormat(Qt::PlainText);
        setMinimumLabelWidth(label);
    }
}

/// Makes the details reachable by keyboard: in QMessageBox only the mouse can scroll them.
void AlertBox::addDetails(const Alert &alert) {
    setDetailedText(toQString(alert.details));
    auto *field = findChild<QTextEdit *>();
    const bool hasName = !alert.detailsName.empty();
    field->setAccessibleName(toQString(hasName ? alert.detailsName : lumetwin::text("spoken.details")));
    field->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    field->setFocusPolicy(Qt::StrongFocus);
}

void AlertBox::addButtons(const Alert &alert) {
    if (alert.buttons.empty()) {
        QPushButton *button = addButton(QMessageBox::Ok);
        setEscapeButton(button);
        connect(button, &QPushButton::clicked, this, [this] { emit answered(0); });
    }
    if (!alert.sideButton.empty())
        connect(addButton(toQString(alert.sideButton), ActionRole), &QPushButton::clicked, this,
                [this] { emit answered(AlertPresenter::sideButton); });
    for (int position = 0; position < static_cast<int>(alert.buttons.size()); ++position) {
        // The second button cancels. This role puts it last.
        const ButtonRole role = position == 1 ? RejectRole : AcceptRole;
        QPushButton *button = addButton(toQString(alert.buttons[static_cast<std::size_t>(position)]), role);
        button->setAutoDefault(true);
        if (position == alert.defaultButton)
            setDefaultButton(button);
        setEscapeButton(button); // without an escape button the box cannot be closed
        connect(button, &QPushButton::clicked, this, [this, position] { emit answered(position); });
    }
}

void AlertBox::ignoreInputBriefly() {
    constexpr int duration = 800; // milliseconds
    ignoresInput_ = true;
    for (QAbstractButton *button : buttons())
        button->setEnabled(false);
    QTimer::singleShot(duration, this, [this] {
        ignoresInput_ = false;
        for (QAbstractButton *button : buttons())
            button->setEnabled(true);
        QPushButton *first = defaultButton();
        (first ? static_cast<QAbstractButton *>(first) : buttons().constFirst())->setFocus();
    });
}

void AlertBox::dismiss() {
    emit answered(AlertPresenter::dismissed);
    done(0);
}

void AlertBox::keyPressEvent(QKeyEvent *event) {
    if (event->matches(QKeySequence::Cancel))
        return ignoresInput_ ? void() : dismiss();
    QMessageBox::keyPressEvent(event);
}

void AlertBox::closeEvent(QCloseEvent *event) {
    emit answered(AlertPresenter::dismissed);
    QMessageBox::closeEvent(event);
}

} // namespace lumetwin
