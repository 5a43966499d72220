// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/texts/Texts.h"

#include <QString>

#include <filesystem>
#include <string>

namespace lumetwin {

inline QString toQString(const std::string &utf8) {
    return QString::fromStdString(utf8);
}

/// A path for people's eyes; bytes that are no UTF-8 are replaced.
inline QString shownPath(const std::filesystem::path &path) {
    return QString::fromStdString(path.string());
}
inline QString shownName(const std::filesystem::path &path) {
    return shownPath(path.filename());
}

/// The texts with an English default of their own.
inline std::string folderPlaceholder() {
    return text("drop.folder.placeholder", "Drop folder here");
}
inline std::string filesSelected(std::int64_t count) {
    return fmt::sprintf(text("label.files.selected.format", "%d files selected"), count);
}

} // namespace lumetwin
