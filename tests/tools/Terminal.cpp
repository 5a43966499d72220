// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/Terminal.h"

#include <cstdlib>
#include <pty.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace lumetwin::test {
namespace {

/// Turns off echo, so that typed keys do not appear in the program's output.
void disableEcho() {
    termios modes{};
    tcgetattr(STDIN_FILENO, &modes);
    modes.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &modes);
}

} // namespace

bool Terminal::isAvailable() {
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) < 0)
        return false;
    close(master);
    close(slave);
    return true;
}

Terminal::Terminal(const std::vector<std::string> &command, unsigned short columns, const std::string &kind) {
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 24;
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    program_ = forkpty(&descriptor_, nullptr, nullptr, &size);
    if (program_ < 0)
        throw std::runtime_error("no terminal");
    if (program_ == 0) {
        disableEcho();
        setenv("TERM", kind.c_str(), 1);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
}

Terminal::~Terminal() {
    if (program_ > 0) {
        kill(program_, SIGKILL);
        waitpid(program_, nullptr, 0);
    }
    close(descriptor_);
}

bool Terminal::readMore() {
    char buffer[4096];
    const ssize_t count = read(descriptor_, buffer, sizeof buffer); // fails once the program has ended
    if (count > 0)
        written_.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
}

bool Terminal::waitFor(const std::string &words) {
    while (written_.find(words) == std::string::npos)
        if (!readMore())
            return false;
    return true;
}

void Terminal::type(const std::string &keys) {
    if (write(descriptor_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        throw std::runtime_error("the terminal takes no keys");
}

void Terminal::resize(unsigned short columns) {
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 24;
    ioctl(descriptor_, TIOCSWINSZ, &size);
}

int Terminal::finish() {
    while (readMore()) {
    }
    int status = 0;
    waitpid(program_, &status, 0);
    program_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace lumetwin::test
