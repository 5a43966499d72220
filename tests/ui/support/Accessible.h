// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAccessible>
#include <QWidget>

#include <string>
#include <vector>

namespace lumetwin::test {

using AccessibleObjects = std::vector<QAccessibleInterface *>;

inline QAccessibleInterface &accessible(QWidget &widget) {
    return *QAccessible::queryAccessibleInterface(&widget);
}

inline std::string accessibleName(const QAccessibleInterface &object) {
    return object.text(QAccessible::Name).toStdString();
}

/// The purpose of a control: the text of its label if it has one, otherwise its name. Some Qt versions name a menu by
/// its current item, so only the label has its purpose.
inline QString accessiblePurpose(const QAccessibleInterface &object) {
    const auto labels = object.relations(QAccessible::Label);
    return (labels.isEmpty() ? &object : labels.front().first)->text(QAccessible::Name);
}

inline QWidget &widgetOf(const QAccessibleInterface &object) {
    return *qobject_cast<QWidget *>(object.object());
}

/// All visible descendants of an accessible object.
inline AccessibleObjects visibleDescendants(const QAccessibleInterface &root) {
    AccessibleObjects found;
    for (int index = 0; index < root.childCount(); ++index)
        if (QAccessibleInterface *child = root.child(index); child && !child->state().invisible) {
            found.push_back(child);
            const AccessibleObjects below = visibleDescendants(*child);
            found.insert(found.end(), below.begin(), below.end());
        }
    return found;
}

/// The descendants that can have the keyboard focus now.
inline AccessibleObjects focusableControls(QWidget &root) {
    AccessibleObjects things = visibleDescendants(accessible(root));
    std::erase_if(things, [](const QAccessibleInterface *object) {
        return !object->state().focusable || object->state().disabled;
    });
    return things;
}

} // namespace lumetwin::test
