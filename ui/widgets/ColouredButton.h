// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

#include <optional>

namespace lumetwin {

/// A borderless button with rounded corners and a white title. Its background is its own colour, or the desktop's
/// accent colour while it has none. A stop square, play sign or check mark at the start of the title is drawn here,
/// because some fonts show it as a coloured picture and others lack it.
class ColouredButton : public QPushButton {
    Q_OBJECT

public:
    ColouredButton(const QString &title, double cornerRadius, QWidget *parent = nullptr);

    void setColour(const QColor &colour);
    QColor colour() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintTitle(QPainter &painter) const;

    double cornerRadius_; // points
    std::optional<QColor> colour_;
};

} // namespace lumetwin
