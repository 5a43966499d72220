// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace lumetwin::test {

/// A program that runs in a terminal of its own.
class Terminal {
public:
    /// False where the system has no pseudo-terminals, as in some bare containers.
    static bool available();

    Terminal(const std::vector<std::string> &command, unsigned short columns, const std::string &kind = "xterm");
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /// Waits until the program has written the words; false when it ends without them.
    bool waitFor(const std::string &words);
    void type(const std::string &keys);
    void resize(unsigned short columns);
    /// Waits for the end: the exit status, or 128 and the number of the signal that killed it.
    int finish();
    /// Everything that was written so far.
    const std::string &written() const { return written_; }

private:
    bool readMore();

    int descriptor_ = -1;
    pid_t program_ = -1;
    std::string written_;
};

} // namespace lumetwin::test
