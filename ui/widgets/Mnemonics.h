// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace lumetwin {

/// The words of a control with the letter that the Alt key reaches it by: marked where it stands in the words, and
/// behind them in brackets where it does not, as scripts without Latin letters have it.
QString withMnemonic(const QString &words, char letter);

} // namespace lumetwin
