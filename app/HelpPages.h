// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUrl>

namespace lumetwin {

// Paths of the start pages, on the help web site and below the folder of the installed pages.
inline constexpr char helpPathJA[] = "/mac/lumetw/index.html";
inline constexpr char helpPathEN[] = "/mac/lumetw/index_en.html";

/// The address of a help page on the web site that the build names; an invalid URL when it names none.
QUrl helpSiteUrl(const char *path);

/// The URL of an installed help page, for a program in that folder; an invalid URL when the page is missing.
QUrl installedHelpUrl(const QString &programFolder, const char *path);

/// The page on the web site if the build names one, otherwise the installed page.
QUrl helpPageUrl(const char *path);

/// Opens a help page in the default browser. Returns whether that succeeded.
bool openHelpPage(const char *path);

} // namespace lumetwin
