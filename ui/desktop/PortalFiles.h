// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <filesystem>
#include <functional>
#include <vector>

namespace lumetwin {

/// Whether the program runs in a sandbox that can open files only through portals.
bool isConfined();

/// Asks the documents portal for the files of a transfer (org.freedesktop.portal.FileTransfer.RetrieveFiles). The
/// answer comes later on the calling thread. It is empty when the portal is missing or does not know the key.
void retrievePortalFiles(const QByteArray &key,
                         const std::function<void(const std::vector<std::filesystem::path> &files)> &received);

} // namespace lumetwin
