// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

class QMimeData;
class QObject;

namespace lumetwin {

/// The result of a drop or a choice: one folder, or media files sorted by name. Both are empty when nothing can be
/// used.
struct DroppedInput {
    std::optional<std::filesystem::path> folder = {};
    std::vector<std::filesystem::path> files = {};
    std::vector<std::filesystem::path> others = {}; ///< files of other kinds, sorted by path

    bool empty() const { return !folder && files.empty(); }
};

/// Whether a path is that of a folder; false also where that cannot be known.
bool isFolder(const std::filesystem::path &path);

/// The files among the items: each file itself, and the visible files of each folder (not of its subfolders). A folder
/// that cannot be listed adds nothing.
DroppedInput filesAmong(const std::vector<std::filesystem::path> &items);

/// A single folder is used as the folder. For everything else the result is filesAmong.
DroppedInput classifyDrop(const std::vector<std::filesystem::path> &dropped);

/// The same for a choice in a file dialog, where a single file of any type is accepted.
DroppedInput classifyChoice(const std::vector<std::filesystem::path> &chosen);

/// The local files of a text/uri-list (RFC 2483). Their names keep the bytes of the file system.
std::vector<std::filesystem::path> localFiles(const QByteArray &uriList);
/// The local files in the URL list of a drag or of the clipboard.
std::vector<std::filesystem::path> localFiles(const QMimeData &data);

/// The key of a file transfer through the desktop portal, which sandboxed programs use for drag and drop. Empty when
/// there is none.
QByteArray portalTransferKey(const QMimeData &data);

/// Gives the files of a drop or of the clipboard to `take`: at once, or later when a portal has to be asked for them,
/// and then only if the receiver still exists. Returns what `take` returned, or whether files will come later.
bool receiveFiles(const QMimeData &data, QObject *receiver,
                  std::function<bool(const std::vector<std::filesystem::path> &files)> take);

/// Whether a drag contains at least one file.
bool holdsFiles(const QMimeData &data);

} // namespace lumetwin
