// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>

class QWidget;

namespace lumetwin {

/// A colour from red, green, blue and alpha in 0...1.
QColor colour(double red, double green, double blue, double alpha = 1);
/// A grey from its level (0 black, 1 white) and alpha in 0...1.
QColor greyColour(double level, double alpha = 1);

/// The contrast ratio of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio").
double contrast(const QColor &one, const QColor &other);

// Colours derived from the desktop's palette.
bool isDark(const QPalette &palette);
/// Whether the palette belongs to a high contrast theme. Then only its own colours are used, without mixing.
bool isHighContrast(const QPalette &palette);
/// The accent colour, darkened where white text on it would not be readable.
QColor accentColour(const QPalette &palette);
/// The colour of text on the accent colour.
QColor textOnAccentColour(const QPalette &palette);
/// The background of a section: the base colour in light palettes. In dark palettes it is a little lighter than the
/// window, so that the darker fields and check boxes stand out.
QColor sectionColour(const QPalette &palette);
/// The accent colour for text on a section.
QColor accentTextColour(const QPalette &palette);
QColor secondaryTextColour(const QPalette &palette);
/// The band behind the form's title: the accent colour at reduced opacity on the window.
QColor bandColour(const QPalette &palette);
/// The colour of secondary text on that band.
QColor bandTextColour(const QPalette &palette);
QColor separatorColour(const QPalette &palette);
/// The edge of a check box or radio button on a section.
QColor indicatorEdgeColour(const QPalette &palette);
/// Orange that can be read on a section.
QColor warningColour(const QPalette &palette);

/// The background of the zone of a scale that is good.
QColor comfortColour(const QPalette &palette);

/// Red that can be read on a section.
QColor errorColour(const QPalette &palette);

/// Sets the text colour of a label. A disabled label shows it faded.
void setTextColour(QWidget *widget, const QColor &colour);

} // namespace lumetwin
