// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Accessibility.h"

#include "ui/files/DisparityBar.h"
#include "ui/files/DropFolderView.h"
#include "ui/files/PreviewCanvas.h"
#include "ui/form/HeaderBand.h"
#include "ui/form/SectionView.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/ValueSlider.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace lumetwin {

namespace {

/// Reports the slider's decimal value, not its integer position.
class AccessibleValueSlider : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleValueSlider(ValueSlider *slider) : QAccessibleWidget(slider, QAccessible::Slider) {}

    void *interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? QString::number(slider()->doubleValue()) : QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return slider()->doubleValue(); }
    void setCurrentValue(const QVariant &value) override { slider()->moveTo(value.toDouble()); }
    QVariant maximumValue() const override { return slider()->range().maximum; }
    QVariant minimumValue() const override { return slider()->range().minimum; }
    QVariant minimumStepSize() const override { return slider()->step(); }

private:
    ValueSlider *slider() const { return static_cast<ValueSlider *>(widget()); }
};

/// A drop target. Its name is the title of its section; its description is the text that it shows.
class AccessibleDropView : public QAccessibleWidget {
public:
    explicit AccessibleDropView(DropFolderView *view) : QAccessibleWidget(view, QAccessible::Button) {}

    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Description || kind == QAccessible::Value)
            return static_cast<DropFolderView *>(widget())->shownText();
        return QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &action) override {
        const auto *view = static_cast<DropFolderView *>(widget());
        if (action == pressAction() && view->isEnabled() && view->onActivated)
            view->onActivated();
    }
};

QAccessibleInterface *accessibleFor(const QString &, QObject *object) {
    if (auto *slider = qobject_cast<ValueSlider *>(object))
        return new AccessibleValueSlider(slider);
    if (auto *view = qobject_cast<DropFolderView *>(object))
        return new AccessibleDropView(view);
    if (auto *sheet = qobject_cast<ProgressViewController *>(object))
        return new QAccessibleWidget(sheet, QAccessible::Dialog);
    if (auto *section = qobject_cast<SectionView *>(object))
        return new QAccessibleWidget(section, QAccessible::Grouping);
    if (qobject_cast<PreviewCanvas *>(object) || qobject_cast<DisparityBar *>(object))
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Graphic);
    if (auto *band = qobject_cast<HeaderBand *>(object))
        return new QAccessibleWidget(band, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void installAccessibility() {
    QAccessible::installFactory(accessibleFor);
}

} // namespace lumetwin
