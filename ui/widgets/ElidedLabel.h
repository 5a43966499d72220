// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace lumetwin {

/// A one-line label of plain text that leaves out its middle where it is too long; text() stays whole, and a tool tip
/// shows it.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(const QString &text = {}, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;

private:
    QString shownText() const;
};

} // namespace lumetwin
