// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/colour/ToneCurve.h"

#include <algorithm>
#include <cmath>

namespace lumetwin::media::colour {

namespace {

// ITU-R BT.2100, table 4.
constexpr double pqPeak = 10000;
constexpr double m1 = 2610.0 / 16384;
constexpr double m2 = 2523.0 / 4096 * 128;
constexpr double c1 = 3424.0 / 4096;
constexpr double c2 = 2413.0 / 4096 * 32;
constexpr double c3 = 2392.0 / 4096 * 32;

// How far below the brightest the compression begins. BT.2390 has 0.5, which leaves clouds and lamps of a film of
// 1000 cd/m² almost no difference.
constexpr double kneeOffset = 1;

/// ITU-R BT.2100, table 5: scene light of an HLG signal, 0 to 1.
double sceneLight(double signal) {
    constexpr double a = 0.17883277;
    constexpr double b = 1 - 4 * a;
    constexpr double c = 0.55991073;
    return signal <= 0.5 ? signal * signal / 3 : (std::exp((signal - c) / a) + b) / 12;
}

} // namespace

double luminanceOfPq(double signal) {
    const double root = std::pow(std::max(signal, 0.0), 1 / m2);
    return pqPeak * std::pow(std::max(root - c1, 0.0) / (c2 - c3 * root), 1 / m1);
}

double pqOfLuminance(double luminance) {
    const double power = std::pow(std::max(luminance, 0.0) / pqPeak, m1);
    return std::pow((c1 + c2 * power) / (1 + c3 * power), m2);
}

Triple lightOfHlg(const Triple &signals, const Triple &weights) {
    constexpr double gammaLessOne = 0.2; // for a screen of 1000 cd/m²
    Triple light{};
    double luminance = 0;
    for (std::size_t index = 0; index < light.size(); ++index) {
        light.at(index) = sceneLight(signals.at(index));
        luminance += weights.at(index) * light.at(index);
    }
    const double gain = luminance > 0 ? usualPeak * std::pow(luminance, gammaLessOne) : 0;
    for (double &value : light)
        value *= gain;
    return light;
}

double standardLuminance(double luminance, double peak) {
    if (peak <= standardWhite)
        return std::min(luminance / standardWhite, 1.0);
    const double source = pqOfLuminance(peak);
    const double most = pqOfLuminance(standardWhite) / source;
    const double knee = (1 + kneeOffset) * most - kneeOffset;
    const double signal = std::min(pqOfLuminance(luminance) / source, 1.0);
    if (signal <= knee)
        return luminance / standardWhite;
    // A Hermite spline from the knee to the brightest.
    const double t = (signal - knee) / (1 - knee);
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double mapped = (2 * t3 - 3 * t2 + 1) * knee + (t3 - 2 * t2 + t) * (1 - knee) + (-2 * t3 + 3 * t2) * most;
    return std::min(luminanceOfPq(mapped * source) / standardWhite, 1.0);
}

Triple withinGamut(const Triple &colour, double grey) {
    constexpr double untouched = 0.9; // of the way from grey to the bounds
    double way = 0;                   // of the colour, where the bounds are at 1
    for (const double value : colour) {
        const double room = value > grey ? 1 - grey : grey;
        const double distance = std::abs(value - grey);
        if (distance > 0)
            way = std::max(way, room > 0 ? distance / room : 1e9);
    }
    if (way <= untouched)
        return colour;
    const double beyond = (way - untouched) / (1 - untouched);
    const double share = (untouched + (1 - untouched) * beyond / (1 + beyond)) / way;
    Triple moved{};
    for (std::size_t index = 0; index < moved.size(); ++index)
        moved.at(index) = grey + (colour.at(index) - grey) * share;
    return moved;
}

} // namespace lumetwin::media::colour
