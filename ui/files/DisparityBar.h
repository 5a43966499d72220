// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/StereoFindings.h"

#include <QWidget>

#include <optional>

namespace lumetwin {

/// Shows from where to where a picture's depth reaches, on a scale with the zone that is comfortable to watch.
class DisparityBar : public QWidget {
    Q_OBJECT

public:
    explicit DisparityBar(QWidget *parent = nullptr);

    /// Without figures the bar is empty.
    void setFigures(const std::optional<DisparityFigures> &figures);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double xOf(double disparity) const;

    std::optional<DisparityFigures> figures_;
};

} // namespace lumetwin
