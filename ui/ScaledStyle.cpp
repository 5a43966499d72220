// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ScaledStyle.h"

#include "ui/Points.h"

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
        return PointScale::current().vertical(usual);
    default:
        return usual;
    }
}

} // namespace lumetwin
