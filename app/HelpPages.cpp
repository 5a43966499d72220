// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HelpPages.h"

#include <QDesktopServices>

namespace lumetwin {

QUrl helpPageUrl(const char *path) {
    const QUrl url(QStringLiteral("https://" LUMETWIN_HELP_HOST) + QLatin1String(path), QUrl::StrictMode);
    return url.isValid() && !url.host().isEmpty() ? url : QUrl();
}

void openHelpPage(const char *path) {
    if (const QUrl url = helpPageUrl(path); url.isValid())
        QDesktopServices::openUrl(url);
}

} // namespace lumetwin
