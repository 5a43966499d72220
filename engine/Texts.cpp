// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Texts.h"

namespace lumetwin {

std::string text(std::string_view key) { return text(key, key); }

std::string text(std::string_view, std::string_view englishDefault) { return std::string(englishDefault); }

void setTextLocale(std::string_view) {}

std::string_view textLanguage() { return "en"; }

} // namespace lumetwin
