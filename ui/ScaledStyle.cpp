// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ScaledStyle.h"

#include "ui/AlertIcon.h"
#include "ui/Palettes.h"
#include "ui/Points.h"

#include <QPainter>
#include <QStyleOption>

namespace lumetwin {

ScaledStyle::ScaledStyle() : QProxyStyle(QStringLiteral("fusion")) {}

int ScaledStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    const int usual = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
    case PM_SliderThickness:
    case PM_SliderLength:
    case PM_SliderControlThickness:
    case PM_ButtonMargin:
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
    case PM_MessageBoxIconSize:
        return PointScale::current().vertical(usual);
    default:
        return usual;
    }
}

void ScaledStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool box = element == PE_IndicatorCheckBox;
    if ((!box && element != PE_IndicatorRadioButton) || !isDark(option->palette))
        return;
    // The style marks the box that the keyboard has reached by its edge, but no radio button.
    if (box && (option->state & State_HasFocus) && (option->state & State_KeyboardFocusChange))
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(indicatorEdgeColour(option->palette));
    painter->setBrush(Qt::NoBrush);
    const QRectF edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (box)
        painter->drawRoundedRect(edge, 2, 2);
    else
        painter->drawEllipse(edge);
    painter->restore();
}

int ScaledStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                           QStyleHintReturn *answer) const {
    // The style has pictures for some buttons only, and small ones.
    return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0 : QProxyStyle::styleHint(hint, option, widget, answer);
}

QIcon ScaledStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const {
    // The style's own are pictures of 32 pixels, which high resolutions blow up.
    if (icon == SP_MessageBoxWarning && !QIcon::hasThemeIcon(QStringLiteral("dialog-warning")))
        return warningIcon();
    if (icon == SP_MessageBoxInformation && !QIcon::hasThemeIcon(QStringLiteral("dialog-information")))
        return informationIcon();
    return QProxyStyle::standardIcon(icon, option, widget);
}

} // namespace lumetwin
