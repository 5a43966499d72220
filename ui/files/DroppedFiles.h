// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <filesystem>
#include <optional>
#include <vector>

class QMimeData;

namespace lumetwin {

/// What a drop or a choice is taken as: one folder, or media files sorted by name. Neither: nothing usable.
struct DroppedInput {
    std::optional<std::filesystem::path> folder;
    std::vector<std::filesystem::path> files;

    bool empty() const { return !folder && files.empty(); }
};

/// What several items come to: the visible media files of each folder (without descent) and each media file itself,
/// sorted by name. Folders that cannot be listed contribute nothing.
std::vector<std::filesystem::path> mediaAmong(const std::vector<std::filesystem::path> &items);

/// Exactly one folder is taken as it is; everything else as the media among it.
DroppedInput classifyDrop(const std::vector<std::filesystem::path> &dropped);

/// The same for what was chosen in a panel, where a single file is taken whatever it is.
DroppedInput classifyChoice(const std::vector<std::filesystem::path> &chosen);

/// The local files of a text/uri-list (RFC 2483), with the bytes of their names as they are in the file system.
std::vector<std::filesystem::path> localFiles(const QByteArray &uriList);
/// The local files that a drag or the clipboard names by URL.
std::vector<std::filesystem::path> localFiles(const QMimeData &data);

/// The key of a transfer of files through the desktop portal, which confined programs offer and receive; empty
/// when there is none.
QByteArray portalTransferKey(const QMimeData &data);

/// Whether a drag holds at least one file.
bool holdsFiles(const QMimeData &data);

} // namespace lumetwin
