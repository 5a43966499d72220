// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAccessible>
#include <QWidget>

#include <string>
#include <vector>

namespace lumetwin::test {

using Things = std::vector<QAccessibleInterface *>;

inline QAccessibleInterface &accessible(QWidget &widget) {
    return *QAccessible::queryAccessibleInterface(&widget);
}

inline std::string nameOf(const QAccessibleInterface &thing) {
    return thing.text(QAccessible::Name).toStdString();
}

/// What a control is for: its label's words where it has one, otherwise its own name. Some versions of the toolkit name
/// a menu by what is chosen in it and leave its purpose to the label.
inline QString purposeOf(const QAccessibleInterface &thing) {
    const auto labels = thing.relations(QAccessible::Label);
    return (labels.isEmpty() ? &thing : labels.front().first)->text(QAccessible::Name);
}

inline QWidget &widgetOf(const QAccessibleInterface &thing) {
    return *qobject_cast<QWidget *>(thing.object());
}

/// Everything below a thing that is shown.
inline Things shownBelow(const QAccessibleInterface &root) {
    Things found;
    for (int index = 0; index < root.childCount(); ++index)
        if (QAccessibleInterface *child = root.child(index); child && !child->state().invisible) {
            found.push_back(child);
            const Things below = shownBelow(*child);
            found.insert(found.end(), below.begin(), below.end());
        }
    return found;
}

/// What the keyboard can work with now.
inline Things controlsBelow(QWidget &root) {
    Things things = shownBelow(accessible(root));
    std::erase_if(
        things, [](const QAccessibleInterface *thing) { return !thing->state().focusable || thing->state().disabled; });
    return things;
}

} // namespace lumetwin::test
