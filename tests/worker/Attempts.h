// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace lumetwin::test {

/// What an attacker who controls the worker has: two descriptors and two names.
struct Surroundings {
    int input = -1;
    int output = -1;
    std::filesystem::path inputName;
    std::filesystem::path outputName;

    std::filesystem::path beside(const char *name) const { return outputName.parent_path() / name; }
};

/// Something that the attacker tries. Returns the result of the system call; below 0 (with errno) if it was refused.
struct Attempt {
    std::string name;
    std::function<long(const Surroundings &)> act;
    bool everybodyMay = true; ///< an unconfined process can do it on all systems that run the tests
    int refusal = EPERM;      ///< the expected errno
};

/// All attempts.
std::vector<Attempt> allAttempts();
std::vector<Attempt> attemptsOnFiles();
std::vector<Attempt> attemptsOnTheInput();
std::vector<Attempt> attemptsOnTheNetwork();
std::vector<Attempt> attemptsOnProcesses();
std::vector<Attempt> attemptsOnTheKernel();

} // namespace lumetwin::test
