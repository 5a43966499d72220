// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Mnemonics.h"

namespace lumetwin {

QString withMnemonic(const QString &text, char letter) {
    QString result = text;
    result.replace(QLatin1Char('&'), QStringLiteral("&&"));
    const qsizetype position = result.indexOf(QLatin1Char(letter), 0, Qt::CaseInsensitive);
    return position < 0 ? result + QStringLiteral("(&%1)").arg(QChar(QLatin1Char(letter)).toUpper())
                        : result.insert(position, QLatin1Char('&'));
}

} // namespace lumetwin
