// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/SettingsRules.h"

#include <QSlider>

namespace lumetwin {

/// A horizontal slider for decimal numbers.
class ValueSlider : public QSlider {
    Q_OBJECT

public:
    explicit ValueSlider(const NumberRange &range, QWidget *parent = nullptr);

    double doubleValue() const { return doubleValue_; }
    const NumberRange &range() const { return range_; }
    /// The difference between two neighbouring values.
    double step() const { return 1 / stepsPerUnit_; }
    /// Does what moving the slider by hand does, including the signal.
    void moveTo(double value) { setValue(positionFor(value)); }
    /// Moves the slider without a signal. The value is kept exactly, even between two steps of the slider.
    void setDoubleValue(double value);

signals:
    /// The user moved the slider.
    void moved(double value);

private:
    int positionFor(double value) const;
    void positionChanged(int position);

    NumberRange range_;
    double stepsPerUnit_;
    double doubleValue_;
};

} // namespace lumetwin
