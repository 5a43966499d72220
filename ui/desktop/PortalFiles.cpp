// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/desktop/PortalFiles.h"

#include "ui/desktop/Bus.h"

#include <QDBusPendingReply>
#include <QFile>
#include <QStringList>
#include <QVariantMap>

namespace lumetwin {

bool isConfined() {
    // Every Flatpak sandbox has this file, see flatpak-metadata(5). Snap sets this variable.
    static const bool confined = QFile::exists(QStringLiteral("/.flatpak-info")) || qEnvironmentVariableIsSet("SNAP");
    return confined;
}

void retrievePortalFiles(const QByteArray &key,
                         const std::function<void(const std::vector<std::filesystem::path> &files)> &received) {
    const BusAddress documents{"org.freedesktop.portal.Documents", "/org/freedesktop/portal/documents",
                               "org.freedesktop.portal.FileTransfer"};
    call(sessionBus(), documents, "RetrieveFiles", {QString::fromUtf8(key), QVariantMap()},
         [received](const QDBusMessage &answer) {
             std::vector<std::filesystem::path> files;
             if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty())
                 for (const QString &file : answer.arguments().constFirst().toStringList())
                     files.emplace_back(QFile::encodeName(file).toStdString());
             received(files);
         });
}

} // namespace lumetwin
