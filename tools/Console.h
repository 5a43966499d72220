// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <string>

namespace lumetwin::batch {

/// Lines on standard output (or another stream) and, on a terminal, one line of progress on standard error that is
/// redrawn in place. Not for use from several threads at once.
class Console {
public:
    explicit Console(std::FILE *lines = stdout);
    ~Console();
    Console(const Console &) = delete;
    Console &operator=(const Console &) = delete;

    /// Whether progress can be redrawn; otherwise showProgress does nothing.
    bool isLive() const { return live_; }
    /// Of the terminal as it is now.
    int columns() const;

    void print(const std::string &line);
    void printError(const std::string &line);
    void showProgress(const std::string &line);
    void clearProgress();

private:
    void printTo(std::FILE *stream, const std::string &line);

    std::FILE *lines_;
    bool live_ = false;
    std::string shown_; ///< the progress on the screen
};

} // namespace lumetwin::batch
