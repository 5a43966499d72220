// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QProgressBar>

namespace lumetwin {

/// A progress bar from 0 to 1, or one that only shows that work goes on. Its colours suit a dark background.
class BarIndicator : public QProgressBar {
    Q_OBJECT

public:
    BarIndicator(const QColor &fill, QWidget *parent = nullptr);

    double doubleValue() const { return doubleValue_; }
    /// The value is stored as it is; only the drawing clamps it to 0...1.
    void setDoubleValue(double value);
    bool isIndeterminate() const { return indeterminate_; }
    void setIndeterminate(bool indeterminate);

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    QColor fill_;
    double doubleValue_ = 0;
    bool indeterminate_ = false;
    QBasicTimer animation_;
    QElapsedTimer sinceStart_;
};

} // namespace lumetwin
