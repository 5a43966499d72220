// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace lumetwin {

/// Adds the letter that reaches a control together with the Alt key. It is marked inside the text where the text
/// contains it, otherwise appended in brackets, as is usual in scripts without Latin letters.
QString withMnemonic(const QString &text, char letter);

} // namespace lumetwin
