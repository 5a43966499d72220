// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace lumetwin::test {

/// Runs a program in a new pseudo-terminal.
class Terminal {
public:
    /// False when the system has no pseudo-terminals, as in some minimal containers.
    static bool isAvailable();

    Terminal(const std::vector<std::string> &command, unsigned short columns, const std::string &kind = "xterm");
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /// Waits until the program has written the text. Returns false when it ends before that.
    bool waitFor(const std::string &words);
    void type(const std::string &keys);
    void resize(unsigned short columns);
    /// Waits until the program ends. Returns its exit status, or 128 plus the number of the signal that killed it.
    int finish();
    /// Everything that the program has written so far.
    const std::string &written() const { return written_; }

private:
    bool readMore();

    int descriptor_ = -1;
    pid_t program_ = -1;
    std::string written_;
};

} // namespace lumetwin::test
