// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/ValueSlider.h"

#include <QSignalBlocker>

#include <cmath>

namespace lumetwin {

ValueSlider::ValueSlider(const NumberRange &range, QWidget *parent)
    : QSlider(Qt::Horizontal, parent), range_(range), stepsPerUnit_(std::pow(10, range.decimals)),
      doubleValue_(range.start) {
    setRange(positionFor(range.minimum), positionFor(range.maximum));
    // One step is the last decimal that the field shows.
    setSingleStep(1);
    setPageStep(10);
    setDoubleValue(range.start);
    connect(this, &QSlider::valueChanged, this, &ValueSlider::positionChanged);
}

int ValueSlider::positionFor(double value) const {
    return static_cast<int>(std::lround(value * stepsPerUnit_));
}

void ValueSlider::setDoubleValue(double value) {
    const QSignalBlocker quiet(this);
    doubleValue_ = value;
    setValue(positionFor(value));
}

void ValueSlider::positionChanged(int position) {
    doubleValue_ = position / stepsPerUnit_;
    emit moved(doubleValue_);
}

} // namespace lumetwin
