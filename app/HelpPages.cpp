// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HelpPages.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>

namespace lumetwin {

QUrl helpSiteUrl(const char *path) {
    const QString host = QStringLiteral(LUMETWIN_HELP_HOST);
    const QUrl url(QStringLiteral("https://") + host + QLatin1String(path), QUrl::StrictMode);
    return !host.isEmpty() && url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

QUrl installedHelpUrl(const QString &programFolder, const char *path) {
    // This relative path is the same in the build folder and after an installation.
    const QFileInfo page(programFolder + QStringLiteral("/../share/lumetwin/help") + QLatin1String(path));
    return page.isFile() ? QUrl::fromLocalFile(page.canonicalFilePath()) : QUrl();
}

QUrl helpPageUrl(const char *path) {
    const QUrl site = helpSiteUrl(path);
    return site.isValid() ? site : installedHelpUrl(QCoreApplication::applicationDirPath(), path);
}

bool openHelpPage(const char *path) {
    const QUrl url = helpPageUrl(path);
    return url.isValid() && QDesktopServices::openUrl(url);
}

} // namespace lumetwin
