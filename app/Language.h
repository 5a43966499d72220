// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <string>

namespace lumetwin {

/// The first of the user's languages that has a text table; English when none has. The languages are in order of
/// preference.
std::string preferredTextLocale(const QStringList &uiLanguages);

/// Loads Qt's own texts in the language of our texts.
void translateToolkit();

/// Sets the language of our texts and of Qt's texts from the user's locale.
void followUserLanguage();

} // namespace lumetwin
