// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ScaledStyle.h"

#include "ui/alerts/AlertIcon.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QPainter>
#include <QStyleOption>

namespace lumetwin {

ScaledStyle::ScaledStyle() : QProxyStyle(QStringLiteral("fusion")) {}

int ScaledStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    const int base = QProxyStyle::pixelMetric(metric, option, widget);
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
        return PointScale::current().vertical(base);
    default:
        return base;
    }
}

void ScaledStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_PanelButtonCommand || element == PE_FrameLineEdit || element == PE_FrameFocusRect)
        drawEdge(option, painter);
    const bool box = element == PE_IndicatorCheckBox;
    if ((!box && element != PE_IndicatorRadioButton) || !(isDark(option->palette) || isHighContrast(option->palette)))
        return;
    // Qt's Fusion style shows the keyboard focus of a check box by its edge, but not that of a radio button.
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

void ScaledStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                     const QWidget *widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox)
        drawEdge(option, painter);
    else if (control == CC_ScrollBar && isHighContrast(option->palette))
        painter->fillRect(subControlRect(control, option, SC_ScrollBarSlider, widget).adjusted(2, 2, -2, -2),
                          option->palette.color(QPalette::WindowText));
    else if (control == CC_Slider && isHighContrast(option->palette))
        for (const SubControl part : {SC_SliderGroove, SC_SliderHandle}) {
            QRect place = subControlRect(control, option, part, widget);
            if (part == SC_SliderGroove)
                place = QRect(place.left(), place.center().y() - 2, place.width(), 4);
            painter->save();
            painter->setPen(option->palette.color(QPalette::WindowText));
            painter->setBrush(option->palette.color(part == SC_SliderHandle ? QPalette::Highlight : QPalette::Window));
            painter->drawRoundedRect(QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
            painter->restore();
        }
}

/// Fusion draws edges a little darker than the background, which cannot be seen on black.
void ScaledStyle::drawEdge(const QStyleOption *option, QPainter *painter) {
    if (!isHighContrast(option->palette))
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(
        QPen(option->palette.color(option->state & State_HasFocus ? QPalette::Highlight : QPalette::WindowText),
             option->state & State_HasFocus ? 2 : 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), 2, 2);
    painter->restore();
}

int ScaledStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                           QStyleHintReturn *answer) const {
    switch (hint) {
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0; // the style has icons for some buttons only, and they are small
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton; // a click moves the handle there, not by a page step
    case SH_MenuBar_AltKeyNavigation:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, answer);
    }
}

QIcon ScaledStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const {
    // The style's icons are bitmaps of 32 pixels, which look blurred at high resolutions.
    if (icon == SP_MessageBoxWarning && !QIcon::hasThemeIcon(QStringLiteral("dialog-warning")))
        return warningIcon();
    if (icon == SP_MessageBoxInformation && !QIcon::hasThemeIcon(QStringLiteral("dialog-information")))
        return informationIcon();
    return QProxyStyle::standardIcon(icon, option, widget);
}

} // namespace lumetwin
