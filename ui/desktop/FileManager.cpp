// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/desktop/FileManager.h"

#include "ui/desktop/Bus.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

#include <algorithm>

namespace lumetwin {

namespace {

constexpr std::size_t maximumSelected = 100; // more is not useful: file managers scroll to the first

QUrl toUrl(const std::filesystem::path &path) {
    return QUrl::fromLocalFile(QFile::decodeName(path.c_str()));
}

} // namespace

void showInFileManager(const std::filesystem::path &folder, const std::vector<std::filesystem::path> &files) {
    QStringList urls;
    for (std::size_t i = 0; i < std::min(files.size(), maximumSelected); ++i)
        urls << toUrl(files[i]).toString(QUrl::FullyEncoded);
    const auto openFolder = [folder] { QDesktopServices::openUrl(toUrl(folder)); };
    if (urls.isEmpty())
        return openFolder();
    call(sessionBus(),
         {"org.freedesktop.FileManager1", "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1"}, "ShowItems",
         {urls, QString()}, [openFolder](const QDBusMessage &answer) {
             if (answer.type() != QDBusMessage::ReplyMessage)
                 openFolder();
         });
}

} // namespace lumetwin
