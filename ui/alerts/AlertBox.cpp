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

/// Lets a line break inside words that no line holds, such as long file names.
QString breakable(const std::string &text) {
    static const QRegularExpression run(QStringLiteral("([^\\s\\x{200b}]{24})"));
    return toQString(text).replace(run, QStringLiteral("\\1\u200b"));
}

/// The longest line that reads well, in pixels.
int longestLine(const QWidget &widget) {
    constexpr double readable = 360; // points
    return std::min(PointScale::current().horizontal(readable), widget.screen()->availableSize().width() / 2);
}

/// The text with line feeds where its lines would become longer than that. The message box measures its message before
/// it wraps it, and cuts off what is bold and long.
QString broken(const QString &text, const QFont &font, int width) {
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

/// The message box breaks lines at a width that knows nothing of the user's font, and what is written large becomes a
/// narrow column: a label gets the width of its longest line, up to a line that reads well, and never less than what
/// cannot be broken.
void giveRoom(QLabel *label) {
    const int longest = label->fontMetrics().size(0, label->text()).width() + 2 * label->margin() + 2 +
                        label->contentsMargins().left() + label->contentsMargins().right();
    const int most = longestLine(*label);
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
    setText(breakable(alert.message));
    if (!alert.informative.empty())
        setInformativeText(breakable(alert.informative));
    if (!alert.details.empty())
        addDetails(alert);
    addButtons(alert);
    if (auto *label = findChild<QLabel *>(QStringLiteral("qt_msgbox_label"))) {
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        label->setText(broken(label->text(), bold, longestLine(*label)));
        giveRoom(label);
    }
    if (auto *label = findChild<QLabel *>(QStringLiteral("qt_msgbox_informativelabel"))) {
        label->setTextFormat(Qt::PlainText);
        giveRoom(label);
    }
}

/// The message box shows them in a field that only the mouse can scroll.
void AlertBox::addDetails(const Alert &alert) {
    setDetailedText(toQString(alert.details));
    auto *field = findChild<QTextEdit *>();
    const bool named = !alert.detailsName.empty();
    field->setAccessibleName(toQString(named ? alert.detailsName : lumetwin::text("spoken.details")));
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
        // The second button calls off; it keeps its place at the end.
        const ButtonRole role = position == 1 ? RejectRole : AcceptRole;
        QPushButton *button = addButton(toQString(alert.buttons[static_cast<std::size_t>(position)]), role);
        button->setAutoDefault(true);
        if (position == alert.defaultButton)
            setDefaultButton(button);
        setEscapeButton(button); // without one the box could not be closed
        connect(button, &QPushButton::clicked, this, [this, position] { emit answered(position); });
    }
}

void AlertBox::holdBack() {
    constexpr int moment = 800; // milliseconds
    held_ = true;
    for (QAbstractButton *button : buttons())
        button->setEnabled(false);
    QTimer::singleShot(moment, this, [this] {
        held_ = false;
        for (QAbstractButton *button : buttons())
            button->setEnabled(true);
        QPushButton *usual = defaultButton();
        (usual ? static_cast<QAbstractButton *>(usual) : buttons().constFirst())->setFocus();
    });
}

void AlertBox::dismiss() {
    emit answered(AlertPresenter::dismissed);
    done(0);
}

void AlertBox::keyPressEvent(QKeyEvent *event) {
    if (event->matches(QKeySequence::Cancel))
        return held_ ? void() : dismiss();
    QMessageBox::keyPressEvent(event);
}

void AlertBox::closeEvent(QCloseEvent *event) {
    emit answered(AlertPresenter::dismissed);
    QMessageBox::closeEvent(event);
}

} // namespace lumetwin
