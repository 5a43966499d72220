// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Texts.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/Points.h"
#include "ui/widgets/ScaledStyle.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace lumetwin::test {

/// A language, and the size of its texts in percent of the usual one.
struct TextConditions {
    const char *language;
    int textPercent;
};

inline void PrintTo(const TextConditions &conditions, std::ostream *stream) {
    *stream << conditions.language << conditions.textPercent;
}

constexpr TextConditions allTextConditions[] = {{"en", 100}, {"en", 125}, {"en", 150}, {"en", 200},
                                                {"ja", 100}, {"ja", 125}, {"ja", 150}, {"ja", 200}};

inline std::string conditionsName(const testing::TestParamInfo<TextConditions> &testInfo) {
    return std::string(testInfo.param.language) + std::to_string(testInfo.param.textPercent);
}

/// Sets language and text size for as long as it exists.
class TextsUnder {
public:
    explicit TextsUnder(const TextConditions &conditions) {
        setTextLocale(conditions.language);
        QFont font = usual_;
        font.setPointSizeF(10.0 * conditions.textPercent / 100);
        QApplication::setFont(font);
        QApplication::setStyle(new ScaledStyle);
    }
    ~TextsUnder() {
        setTextLocale("en");
        QApplication::setFont(usual_);
    }
    TextsUnder(const TextsUnder &) = delete;
    TextsUnder &operator=(const TextsUnder &) = delete;

private:
    const QFont usual_ = QApplication::font();
};

inline std::string widgetName(const QWidget &widget) {
    return (widget.objectName().isEmpty() ? QLatin1String(widget.metaObject()->className()) : widget.objectName())
        .toStdString();
}

/// The width that a widget's text needs.
inline int neededWidth(const QWidget &widget) {
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->wordWrap() ? 0 : label->fontMetrics().horizontalAdvance(withoutMnemonic(label->text()));
    if (const auto *button = qobject_cast<const QPushButton *>(&widget)) // its edges may come close
        return button->fontMetrics().horizontalAdvance(withoutMnemonic(button->text())) + 2;
    if (qobject_cast<const QAbstractButton *>(&widget) || qobject_cast<const QComboBox *>(&widget))
        return widget.sizeHint().width();
    if (const auto *field = qobject_cast<const QLineEdit *>(&widget))
        return field->fontMetrics().horizontalAdvance(field->text()) + 12;
    return 0;
}

inline void expectNothingCutOff(const QWidget &window) {
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(&window) || qobject_cast<const ElidedLabel *>(widget))
            continue;
        EXPECT_LE(neededWidth(*widget), widget->width())
            << widgetName(*widget) << " " << widget->accessibleName().toStdString();
        const auto *label = qobject_cast<const QLabel *>(widget);
        if (label && label->wordWrap()) {
            EXPECT_LE(label->heightForWidth(label->width()), label->height()) << label->text().toStdString();
        }
    }
}

/// Expects that no two visible widgets of a window overlap, except a widget and its descendants.
inline void expectNoOverlaps(const QWidget &window) {
    QList<const QWidget *> shown;
    for (const QWidget *widget : window.findChildren<QWidget *>())
        if (widget->isVisibleTo(&window) && !widget->isWindow() && widget->window() == window.window())
            shown << widget;
    // Widgets that are scrolled out of view lie behind other parts of the window.
    const auto place = [&window](const QWidget *widget) {
        return widget->visibleRegion().boundingRect().translated(widget->mapTo(&window, QPoint()));
    };
    for (qsizetype i = 0; i < shown.size(); ++i)
        for (qsizetype j = i + 1; j < shown.size(); ++j)
            if (!shown[i]->isAncestorOf(shown[j]) && !shown[j]->isAncestorOf(shown[i])) {
                EXPECT_FALSE(place(shown[i]).intersects(place(shown[j])))
                    << widgetName(*shown[i]) << " and " << widgetName(*shown[j]);
            }
}

} // namespace lumetwin::test
