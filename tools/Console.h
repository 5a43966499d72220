// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <string>

namespace lumetwin::batch {

/// Prints lines to a stream and, on a terminal, shows one line of progress on standard error that it redraws in place.
/// May be used by one thread at a time.
class Console {
public:
    explicit Console(std::FILE *stream = stdout);
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// Whether standard error is a terminal that can redraw a line. If not, showProgress does nothing.
    bool isLive() const { return live_; }
    /// The current width of the terminal.
    int columns() const;

    void print(const std::string &line);
    void printError(const std::string &line);
    void showProgress(const std::string &line);
    void clearProgress();

private:
    void printTo(std::FILE *stream, const std::string &line);

    std::FILE *stream_;
    bool live_ = false;
    std::string shownProgress_; ///< the progress line on the screen; empty when there is none
};

} // namespace lumetwin::batch
