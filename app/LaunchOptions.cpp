// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LaunchOptions.h"

#include <QCommandLineParser>

namespace lumetwin {

namespace {

QString directionName(ConversionDirection direction) {
    return direction == ConversionDirection::spatialToSBS ? QStringLiteral("spatialToSBS")
                                                          : QStringLiteral("sbsToSpatial");
}

} // namespace

LaunchOptions launchOptions(const QStringList &arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Converts stereoscopic videos and photos in a window."));
    // Not Qt's own help option, which comes with "--help-all".
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Prints this text."));
    parser.addOption(help);
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption direction(QStringLiteral("direction"), QStringLiteral("spatialToSBS or sbsToSpatial."),
                                       QStringLiteral("DIRECTION"));
    parser.addOption(direction);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Files, or a folder, to use as the input."),
                                 QStringLiteral("[FILE...]"));
    LaunchOptions options;
    if (!parser.parse(arguments))
        options.error = parser.errorText();
    else if (parser.isSet(help))
        options.output = parser.helpText();
    else if (parser.isSet(version))
        options.output = QStringLiteral("lumetwin " LUMETWIN_VERSION "\n");
    options.inputs = parser.positionalArguments();
    if (!options.error.isEmpty() || !parser.isSet(direction))
        return options;
    for (const auto known : {ConversionDirection::spatialToSBS, ConversionDirection::sbsToSpatial})
        if (parser.value(direction) == directionName(known))
            options.direction = known;
    if (!options.direction)
        options.error =
            QStringLiteral("--direction: \"%1\" is neither spatialToSBS nor sbsToSpatial").arg(parser.value(direction));
    return options;
}

} // namespace lumetwin
