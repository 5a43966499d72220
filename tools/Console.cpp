// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Console.h"

#include "engine/texts/FileNames.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace lumetwin::batch {
namespace {

constexpr int defaultColumns = 80;
constexpr const char *eraseLine = "\r\x1b[K";

bool isCapableTerminal() {
    const char *kind = std::getenv("TERM");
    return isatty(STDERR_FILENO) && kind && *kind && std::string_view(kind) != "dumb";
}

void writeNow(std::FILE *stream, const std::string &text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

Console::Console(std::FILE *stream) : stream_(stream), live_(isCapableTerminal()) {}

Console::~Console() {
    clearProgress();
}

int Console::columns() const {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : defaultColumns;
}

void Console::print(const std::string &line) {
    printTo(stream_, line);
}

void Console::printError(const std::string &line) {
    printTo(stderr, line);
}

void Console::printTo(std::FILE *stream, const std::string &line) {
    const std::string previousProgress = shownProgress_;
    clearProgress();
    writeNow(stream, printable(line) + '\n');
    showProgress(previousProgress);
}

void Console::showProgress(const std::string &line) {
    if (!live_ || line == shownProgress_)
        return;
    writeNow(stderr, eraseLine + line);
    shownProgress_ = line;
}

void Console::clearProgress() {
    if (!std::exchange(shownProgress_, {}).empty())
        writeNow(stderr, eraseLine);
}

} // namespace lumetwin::batch
