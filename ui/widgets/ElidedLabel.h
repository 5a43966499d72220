// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

namespace lumetwin {

/// A label with one line of plain text. When the text is too long, an ellipsis replaces its middle and the tool tip
/// shows all of it. text() always returns the whole text.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(const QString &text = {}, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;

private:
    QString elidedText() const;
};

} // namespace lumetwin
