// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/parent/WorkerProgram.h"

#include "tests/support/TestMedia.h"

#include <gtest/gtest.h>

namespace lumetwin::worker {
namespace {

namespace fs = std::filesystem;

void makeProgram(const fs::path &file) {
    fs::create_directories(file.parent_path());
    test::writeFile(file, std::string("#!/bin/true\n"));
    fs::permissions(file, fs::perms::owner_all);
}

TEST(WorkerProgram, IsFoundInABuildTree) {
    const test::TemporaryFolder tree;
    makeProgram(tree / "worker" / "lumetwin-worker");
    fs::create_directory(tree / "tools");
    EXPECT_EQ(workerProgramFor(tree / "tools"), tree / "worker" / "lumetwin-worker");
}

TEST(WorkerProgram, IsFoundInAnInstalledTreeWhereverItStands) {
    const test::TemporaryFolder tree;
    const fs::path bin = tree / "opt" / "bin";
    fs::create_directories(bin);
    const fs::path program = (bin / WORKER_FROM_BIN / "lumetwin-worker").lexically_normal();
    makeProgram(program);
    EXPECT_EQ(workerProgramFor(bin), program);
}

TEST(WorkerProgram, ThatCannotBeExecutedIsMissing) {
    const test::TemporaryFolder tree;
    makeProgram(tree / "worker" / "lumetwin-worker");
    fs::permissions(tree / "worker" / "lumetwin-worker", fs::perms::owner_read);
    fs::create_directory(tree / "tools");
    EXPECT_EQ(workerProgramFor(tree / "tools"), fs::path());
}

} // namespace
} // namespace lumetwin::worker
