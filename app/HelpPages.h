// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUrl>

namespace lumetwin {

// Paths on the help web site.
inline constexpr char helpPathJA[] = "/mac/lumetw/index.html";
inline constexpr char helpPathEN[] = "/mac/lumetw/index_en.html";

/// The address of a help page; an invalid one when the host that was built in makes none.
QUrl helpPageUrl(const char *path);

/// Opens a help page in the default browser; does nothing when its address is not valid.
void openHelpPage(const char *path);

} // namespace lumetwin
