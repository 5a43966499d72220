// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace lumetwin {

/// Qt's Fusion style with some changes: check boxes, radio buttons and sliders grow with the user's font, the edges of
/// check boxes and radio buttons can be seen in dark palettes, and alerts have sharp icons and buttons without icons.
class ScaledStyle : public QProxyStyle {
    Q_OBJECT

public:
    ScaledStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *answer) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;

private:
    static void drawEdge(const QStyleOption *option, QPainter *painter);
};

} // namespace lumetwin
