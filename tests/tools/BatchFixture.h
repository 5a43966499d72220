// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace lumetwin::test {

/// Runs lumetwin-batch with the fake conversions of ActedBatch.cpp, in English, on folders "in" and "out" of its own.
class BatchFixture : public testing::Test {
protected:
    BatchFixture() {
        setenv("LC_ALL", "C.UTF-8", 1);
        std::filesystem::create_directory(folder / "in");
        std::filesystem::create_directory(folder / "out");
    }

    /// Creates an empty file in the input folder.
    std::string file(const std::string &name) {
        writeFile(folder / ("in/" + name), std::string());
        return folder / ("in/" + name);
    }

    static ProgramResult run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), ACTED_BATCH);
        return runProgram(arguments);
    }

    TemporaryFolder folder;
};

} // namespace lumetwin::test
