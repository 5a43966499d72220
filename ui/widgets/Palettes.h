// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

class QWidget;

namespace lumetwin {

/// A colour of red, green, blue and alpha in 0...1.
QColor colour(double red, double green, double blue, double alpha = 1);
/// A grey of a white level and alpha in 0...1.
QColor white(double level, double alpha = 1);

/// The contrast ratio of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio").
double contrast(const QColor &one, const QColor &other);

// System colours, taken from the palette of the desktop.
bool isDark(const QPalette &palette);
/// A palette of a desktop's high contrast theme: its own colours are used as they are, and nothing in between.
bool isHighContrast(const QPalette &palette);
/// The accent colour, darkened where white text on it would not be readable.
QColor accentColour(const QPalette &palette);
/// Text on the accent colour.
QColor onAccentColour(const QPalette &palette);
/// The ground of a section: the base in light palettes; in dark ones a little above the window, so that fields and
/// check boxes, which are darker, stand out.
QColor sectionColour(const QPalette &palette);
/// The accent colour as text on a section.
QColor accentTextColour(const QPalette &palette);
QColor secondaryTextColour(const QPalette &palette);
/// The band behind the form's title: the accent colour at reduced opacity on the window.
QColor bandColour(const QPalette &palette);
/// Secondary text on that band.
QColor bandTextColour(const QPalette &palette);
QColor separatorColour(const QPalette &palette);
/// The edge of a check box or radio button on a section.
QColor indicatorEdgeColour(const QPalette &palette);
/// Orange that can be read on a section.
QColor warningColour(const QPalette &palette);

/// Red that can be read on a section.
QColor errorColour(const QPalette &palette);

/// Gives a label's text a colour of its own; out of use it fades as other text does.
void setTextColour(QWidget *widget, const QColor &colour);

} // namespace lumetwin
