// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUrl>

namespace lumetwin {

// Paths on the help web site, and below the folder of the installed pages.
inline constexpr char helpPathJA[] = "/mac/lumetw/index.html";
inline constexpr char helpPathEN[] = "/mac/lumetw/index_en.html";

/// The address of a help page on the web site that was built in; an invalid one where none was.
QUrl helpSiteUrl(const char *path);

/// A help page of those that are installed beside a program in that folder; an invalid address where it is missing.
QUrl installedHelpUrl(const QString &programFolder, const char *path);

/// The page on the web site where one was built in, else the installed one.
QUrl helpPageUrl(const char *path);

/// Opens a help page in the default browser. Returns whether that went well.
bool openHelpPage(const char *path);

} // namespace lumetwin
