// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Language.h"

#include "engine/texts/Texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace lumetwin {

std::string preferredTextLocale(const QStringList &uiLanguages) {
    for (const QString &language : uiLanguages)
        for (const char *known : {"en", "ja"})
            if (language == QLatin1String(known) || language.startsWith(QLatin1String(known) + QLatin1Char('-')))
                return known;
    return "en";
}

void translateToolkit() {
    const QString language = QString::fromStdString(std::string(textLanguage()));
    auto *translator = new QTranslator(qApp);
    if (translator->load(QLocale(language), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

void followUserLanguage() {
    setTextLocale(preferredTextLocale(QLocale::system().uiLanguages()));
    translateToolkit();
}

} // namespace lumetwin
