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

/// The text of a key.
inline QString localizedText(const char *key) {
    return toQString(text(key));
}

/// A path for display. Bytes that are not valid UTF-8 are replaced.
inline QString displayPath(const std::filesystem::path &path) {
    return QString::fromStdString(path.string());
}
inline QString displayName(const std::filesystem::path &path) {
    return displayPath(path.filename());
}

/// The text for a count: the first one for 1, otherwise the second one, which is a format.
inline QString countedText(const char *one, const char *format, std::int64_t count) {
    return toQString(count == 1 ? text(one) : formatted(format, count));
}

/// Texts that have an English default in the code.
inline std::string folderPlaceholder() {
    return text("drop.folder.placeholder", "Drop folder here");
}
inline std::string filesSelectedText(std::int64_t count) {
    return fmt::sprintf(text("label.files.selected.format", "%d files selected"), count);
}

} // namespace lumetwin
