// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

#include <optional>

namespace lumetwin {

/// A borderless button with rounded corners and a white title on a colour of its own, or on the desktop's accent
/// colour while it has none. A stop square, play sign or check mark that begins the title is drawn, because some fonts
/// have it as a coloured picture and others not at all.
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
