// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/DroppedFiles.h"

#include "engine/batch/InputList.h"
#include "engine/inspection/MediaKinds.h"
#include "ui/desktop/PortalFiles.h"

#include <QMimeData>
#include <QPointer>
#include <QUrl>

#include <algorithm>
#include <iterator>

namespace lumetwin {

namespace fs = std::filesystem;

namespace {

/// GTK uses both names for a transfer.
constexpr const char *transferTypes[] = {"application/vnd.portal.filetransfer", "application/vnd.portal.files"};

/// The visible files of a folder; for anything else the item itself.
std::vector<fs::path> filesIn(const fs::path &item) {
    if (!isFolder(item))
        return {item};
    try {
        return visibleChildren(item);
    } catch (const fs::filesystem_error &) {
        return {};
    }
}

/// The path of a file URL of this machine (RFC 8089); empty for any other URL.
fs::path localPath(const QByteArray &url) {
    constexpr char scheme[] = "file:";
    if (qstrnicmp(url.constData(), scheme, 5) != 0)
        return {};
    QByteArray rest = url.mid(5);
    if (rest.startsWith("//")) {
        const qsizetype slash = rest.indexOf('/', 2);
        if (slash < 0)
            return {};
        rest = rest.mid(slash);
    }
    // A folder's URL may end in a slash. The path must not, because path::filename() would be empty.
    QByteArray path = QByteArray::fromPercentEncoding(rest);
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    return path.startsWith('/') && !path.contains('\0') ? fs::path(path.toStdString()) : fs::path();
}

} // namespace

bool isFolder(const fs::path &path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

DroppedInput filesAmong(const std::vector<fs::path> &items) {
    std::vector<fs::path> files;
    for (const fs::path &item : items)
        for (fs::path &file : filesIn(item))
            files.push_back(std::move(file));
    DroppedInput input;
    for (ListedFile &listed : mediaFiles(files))
        input.files.push_back(std::move(listed.file));
    for (fs::path &file : files)
        if (!isMediaFile(file) && !isFolder(file))
            input.others.push_back(std::move(file));
    std::ranges::sort(input.others);
    return input;
}

DroppedInput classifyDrop(const std::vector<fs::path> &dropped) {
    if (dropped.size() == 1 && isFolder(dropped.front()))
        return {.folder = dropped.front()};
    return filesAmong(dropped);
}

DroppedInput classifyChoice(const std::vector<fs::path> &chosen) {
    if (chosen.size() == 1 && !isFolder(chosen.front()))
        return {.files = chosen};
    return classifyDrop(chosen);
}

std::vector<fs::path> localFiles(const QByteArray &uriList) {
    std::vector<fs::path> files;
    for (const QByteArray &line : uriList.split('\n'))
        if (fs::path path = localPath(line.trimmed()); !path.empty())
            files.push_back(std::move(path));
    return files;
}

std::vector<fs::path> localFiles(const QMimeData &data) {
    // The raw list keeps names that are not valid UTF-8; QUrl does not.
    return localFiles(data.data(QStringLiteral("text/uri-list")));
}

QByteArray portalTransferKey(const QMimeData &data) {
    for (const char *type : transferTypes)
        if (QByteArray key = data.data(QLatin1String(type)); !key.isEmpty())
            return key.endsWith('\0') ? key.chopped(1) : key;
    return {};
}

bool receiveFiles(const QMimeData &data, QObject *receiver, std::function<bool(const std::vector<fs::path> &)> take) {
    const std::vector<fs::path> files = localFiles(data);
    const QByteArray key = portalTransferKey(data);
    // Inside a sandbox only the portal's paths can be opened.
    if (!files.empty() && (key.isEmpty() || !isConfined()))
        return take(files);
    if (key.isEmpty())
        return false;
    retrievePortalFiles(key,
                        [receiver = QPointer(receiver), take = std::move(take)](const std::vector<fs::path> &later) {
                            if (receiver)
                                take(later);
                        });
    return true;
}

bool holdsFiles(const QMimeData &data) {
    // Only the format is checked, because reading the key may start the transfer.
    return !localFiles(data).empty() ||
           std::any_of(std::begin(transferTypes), std::end(transferTypes),
                       [&](const char *type) { return data.hasFormat(QLatin1String(type)); });
}

} // namespace lumetwin
