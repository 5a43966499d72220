// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include <string>

namespace lumetwin {

/// The first of the user's languages, in order of preference, that has a text table; English when there is none.
std::string preferredTextLocale(const QStringList &uiLanguages);

/// Loads the toolkit's own texts in the language of ours.
void translateToolkit();

/// Sets the language of our texts and of the toolkit's own after the user's locale.
void followUserLanguage();

} // namespace lumetwin
