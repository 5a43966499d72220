// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace lumetwin {

/// The toolkit's own style with check boxes, radio buttons and sliders that grow with the user's font, and with edges
/// of check boxes and radio buttons that can be seen in dark palettes.
class ScaledStyle : public QProxyStyle {
    Q_OBJECT

public:
    ScaledStyle();

    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
};

} // namespace lumetwin
