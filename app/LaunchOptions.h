// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionDirection.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace lumetwin {

/// What the command line asks for.
struct LaunchOptions {
    std::optional<ConversionDirection> direction = {};
    QStringList inputs = {}; ///< files, folders or file URLs
    QString output = {};     ///< a text to print instead of opening the window: the help, the version
    QString error = {};      ///< what is wrong with the command line; empty when it can be used
};

/// Reads the arguments, the program's name first.
LaunchOptions launchOptions(const QStringList &arguments);

} // namespace lumetwin
