// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/form/StereoRanges.h"

#include <QSlider>

namespace lumetwin {

/// A horizontal slider over decimal numbers.
class ValueSlider : public QSlider {
    Q_OBJECT

public:
    explicit ValueSlider(const StereoRange &range, QWidget *parent = nullptr);

    double doubleValue() const { return doubleValue_; }
    const StereoRange &range() const { return range_; }
    /// The smallest difference between two of its values.
    double step() const { return 1 / stepsPerUnit_; }
    /// As if the user had moved it.
    void moveTo(double value) { setValue(position(value)); }
    /// Moves the slider without a signal. Exact, also between the slider's own steps.
    void setDoubleValue(double value);

signals:
    /// The user moved the slider.
    void moved(double value);

private:
    int position(double value) const;
    void follow(int position);

    StereoRange range_;
    double stepsPerUnit_;
    double doubleValue_;
};

} // namespace lumetwin
