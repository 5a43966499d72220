// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Palettes.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace lumetwin {

namespace {

constexpr double minimumTextContrast = 4.5; // WCAG 2.1, success criterion 1.4.3
constexpr double highContrastRatio = 19.5;  // of at most 21; ordinary palettes have less

double linearComponent(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour) {
    return 0.2126 * linearComponent(colour.redF()) + 0.7152 * linearComponent(colour.greenF()) +
           0.0722 * linearComponent(colour.blueF());
}

QColor mix(const QColor &one, const QColor &other, double share) {
    const auto part = [share](double a, double b) { return a + (b - a) * share; };
    return colour(part(one.redF(), other.redF()), part(one.greenF(), other.greenF()), part(one.blueF(), other.blueF()));
}

/// The wanted colour if text in it can be read on the background. Otherwise it is mixed with black or white until it
/// can.
QColor readableColour(const QColor &background, const QColor &wanted) {
    const QColor end = luminance(background) > 0.18 ? QColor(Qt::black) : QColor(Qt::white);
    for (double share = 0; share < 1; share += 0.05)
        if (const QColor candidate = mix(wanted, end, share); contrast(candidate, background) >= minimumTextContrast)
            return candidate;
    return end;
}

} // namespace

QColor colour(double red, double green, double blue, double alpha) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue),
                            static_cast<float>(alpha));
}

QColor greyColour(double level, double alpha) {
    return colour(level, level, level, alpha);
}

double contrast(const QColor &one, const QColor &other) {
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

bool isDark(const QPalette &palette) {
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

bool isHighContrast(const QPalette &palette) {
    return contrast(palette.color(QPalette::Active, QPalette::Window),
                    palette.color(QPalette::Active, QPalette::WindowText)) >= highContrastRatio;
}

QColor accentColour(const QPalette &palette) {
    if (isHighContrast(palette))
        return palette.color(QPalette::Active, QPalette::Highlight);
    return readableColour(Qt::white, palette.color(QPalette::Active, QPalette::Highlight));
}

QColor textOnAccentColour(const QPalette &palette) {
    return isHighContrast(palette) ? palette.color(QPalette::Active, QPalette::HighlightedText) : QColor(Qt::white);
}

QColor sectionColour(const QPalette &palette) {
    if (isHighContrast(palette))
        return palette.color(QPalette::Window);
    return isDark(palette) ? mix(palette.color(QPalette::Window), Qt::white, 0.07) : palette.color(QPalette::Base);
}

QColor accentTextColour(const QPalette &palette) {
    return readableColour(sectionColour(palette), palette.color(QPalette::Active, QPalette::Highlight));
}

QColor secondaryTextColour(const QPalette &palette) {
    if (isHighContrast(palette))
        return palette.color(QPalette::WindowText);
    const QColor background = sectionColour(palette);
    return readableColour(background, mix(palette.color(QPalette::WindowText), background, 0.4));
}

QColor bandColour(const QPalette &palette) {
    constexpr double opacity = 0.15;
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    return isHighContrast(palette) ? window
                                   : mix(window, palette.color(QPalette::Active, QPalette::Highlight), opacity);
}

QColor bandTextColour(const QPalette &palette) {
    return readableColour(bandColour(palette), secondaryTextColour(palette));
}

QColor separatorColour(const QPalette &palette) {
    if (isHighContrast(palette))
        return palette.color(QPalette::WindowText);
    return mix(palette.color(QPalette::Window), palette.color(QPalette::WindowText), isDark(palette) ? 0.22 : 0.18);
}

QColor indicatorEdgeColour(const QPalette &palette) {
    if (isHighContrast(palette))
        return palette.color(QPalette::WindowText);
    return mix(sectionColour(palette), palette.color(QPalette::WindowText), 0.5);
}

QColor warningColour(const QPalette &palette) {
    return readableColour(sectionColour(palette), colour(1, 0.58, 0));
}

QColor comfortColour(const QPalette &palette) {
    return isHighContrast(palette) ? palette.color(QPalette::Highlight)
                                   : mix(sectionColour(palette), colour(0.2, 0.65, 0.35), isDark(palette) ? 0.55 : 0.4);
}

QColor errorColour(const QPalette &palette) {
    return readableColour(sectionColour(palette), colour(0.85, 0.15, 0.15));
}

void setTextColour(QWidget *widget, const QColor &colour) {
    const QPalette defaultPalette = QApplication::palette();
    QColor faded = colour;
    faded.setAlphaF(colour.alphaF() / 2);
    if (colour == defaultPalette.color(QPalette::Active, QPalette::WindowText))
        faded = defaultPalette.color(QPalette::Disabled, QPalette::WindowText);
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, colour);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, faded);
    widget->setPalette(palette);
}

} // namespace lumetwin
