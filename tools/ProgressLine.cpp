// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/ProgressLine.h"

#include "engine/texts/FileNames.h"
#include "engine/texts/Texts.h"

#include <fmt/format.h>
#include <utf8.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <vector>

namespace lumetwin::batch {
namespace {

constexpr int minimumNameColumns = 12; // columns that stay free for the file's name
constexpr int minimumBarColumns = 6;
constexpr int maximumBarColumns = 30;
constexpr double settlingTime = 0.5; // seconds; before that a rate is not reliable

struct Cell {
    std::string_view bytes;
    int width = 0;
};

/// A locale with the widths of all Unicode characters, independent of the user's locale.
locale_t unicodeLocale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

int characterColumns(char32_t code) {
    if (!unicodeLocale())
        return 1;
    const locale_t before = uselocale(unicodeLocale());
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(before);
    return width < 0 ? 1 : width;
}

/// The characters of a text with their widths. The text is valid UTF-8.
std::vector<Cell> toCells(std::string_view text) {
    std::vector<Cell> cells;
    for (auto at = text.begin(); at != text.end();) {
        const auto begin = at;
        const char32_t code = utf8::unchecked::next(at);
        cells.push_back({std::string_view(begin, at), characterColumns(code)});
    }
    return cells;
}

double framesPerSecond(const BatchProgress &progress) {
    return progress.seconds >= settlingTime ? static_cast<double>(progress.frame) / progress.seconds : 0;
}

/// The details about the file's frames, the most important first.
std::vector<std::string> frameDetails(const BatchProgress &progress) {
    std::vector<std::string> parts;
    const double rate = framesPerSecond(progress);
    if (progress.frames > 0) {
        parts.push_back(fmt::format("{}%", std::min<std::int64_t>(100, progress.frame * 100 / progress.frames)));
        if (rate > 0)
            parts.push_back(formatted(
                "batch.time.left.format",
                clockTime(static_cast<double>(std::max<std::int64_t>(0, progress.frames - progress.frame)) / rate)));
    }
    if (rate > 0)
        parts.push_back(formatted("batch.rate.format", rate));
    if (progress.frames > 0)
        parts.push_back(fmt::format("{}/{}", progress.frame, progress.frames));
    else if (progress.frame > 0)
        parts.push_back(formatted("batch.frames.format", progress.frame));
    return parts;
}

std::string bar(const BatchProgress &progress, int columns) {
    const int inner = columns - 2;
    const auto done = static_cast<int>(
        std::min(1.0, static_cast<double>(progress.frame) / static_cast<double>(progress.frames)) * inner);
    return fmt::format("[{}{}]", std::string(static_cast<std::size_t>(done), '#'),
                       std::string(static_cast<std::size_t>(inner - done), '-'));
}

} // namespace

int displayWidth(std::string_view text) {
    int width = 0;
    for (const Cell &cell : toCells(printable(text)))
        width += cell.width;
    return width;
}

std::string elidedInMiddle(std::string_view text, int columns) {
    std::string safe = printable(text);
    if (displayWidth(safe) <= columns)
        return safe;
    if (columns < 1)
        return {};
    const std::vector<Cell> cells = toCells(safe);
    const int available = columns - 1; // one column is for the ellipsis
    std::string head;
    int used = 0;
    for (auto cell = cells.begin(); cell != cells.end() && used + cell->width <= (available + 1) / 2; ++cell) {
        head += cell->bytes;
        used += cell->width;
    }
    std::size_t tail = safe.size();
    for (auto cell = cells.rbegin(); cell != cells.rend() && used + cell->width <= available; ++cell) {
        tail -= cell->bytes.size();
        used += cell->width;
    }
    return head + "…" + safe.substr(tail);
}

std::string clockTime(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e9));
    const std::int64_t hours = whole / 3600;
    if (hours > 0)
        return fmt::format("{}:{:02}:{:02}", hours, whole / 60 % 60, whole % 60);
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

std::string progressLine(const BatchProgress &progress, int columns) {
    const int available = columns - 1;
    std::string counter = fmt::format("[{}/{}]", progress.index + 1, progress.total);
    if (displayWidth(counter) > available)
        return {};
    const int nameWidth = displayWidth(progress.fileName);
    int left = available - displayWidth(counter) - 1;
    std::string tail;
    for (const std::string &part : frameDetails(progress)) {
        const int width = displayWidth(part) + 2;
        if (left - width < std::min(nameWidth, minimumNameColumns))
            break;
        tail += "  " + part;
        left -= width;
    }
    if (left < 2)
        return counter;
    const std::string name = elidedInMiddle(progress.fileName, left);
    left -= displayWidth(name) + 2;
    if (progress.frames > 0 && left >= minimumBarColumns)
        tail = "  " + bar(progress, std::min(left, maximumBarColumns)) + tail;
    return counter + " " + name + tail;
}

} // namespace lumetwin::batch
