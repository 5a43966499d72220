// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/widgets/Mnemonics.h"

namespace lumetwin {

QString withMnemonic(const QString &words, char letter) {
    QString marked = words;
    marked.replace(QLatin1Char('&'), QStringLiteral("&&"));
    const qsizetype place = marked.indexOf(QLatin1Char(letter), 0, Qt::CaseInsensitive);
    return place < 0 ? marked + QStringLiteral("(&%1)").arg(QChar(QLatin1Char(letter)).toUpper())
                     : marked.insert(place, QLatin1Char('&'));
}

} // namespace lumetwin
