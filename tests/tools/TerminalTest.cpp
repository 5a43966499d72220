// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/Terminal.h"

#include "tests/support/TestMedia.h"
#include "tools/ProgressLine.h"

#include <gtest/gtest.h>

#include <csignal>
#include <regex>

namespace lumetwin::test {
namespace {

const std::string controlC = "\x03";

class InTerminal : public testing::Test {
protected:
    InTerminal() {
        setenv("LC_ALL", "C.UTF-8", 1);
        std::filesystem::create_directory(folder / "out");
    }

    void SetUp() override {
        if (!Terminal::isAvailable())
            GTEST_SKIP() << "this system has no pseudo-terminals";
    }

    std::string file(const std::string &name) {
        writeFile(folder / name, std::string());
        return folder / name;
    }

    std::vector<std::string> commandFor(const std::vector<std::string> &inputs) {
        std::vector<std::string> whole{ACTED_BATCH, "--output", folder / "out"};
        whole.insert(whole.end(), inputs.begin(), inputs.end());
        return whole;
    }

    /// All states of the progress line, in order.
    static std::vector<std::string> progressLines(const std::string &written) {
        std::vector<std::string> lines;
        static const std::regex line("\r\x1b\\[K([^\r\n]+)");
        for (std::sregex_iterator match(written.begin(), written.end(), line), end; match != end; ++match)
            lines.push_back((*match)[1]);
        return lines;
    }

    TemporaryFolder folder;
};

TEST_F(InTerminal, ProgressIsRedrawnInPlace) {
    Terminal terminal(commandFor({file("a.mov"), file("slow.mov")}), 80);
    ASSERT_TRUE(terminal.waitFor("fps"));
    terminal.type(controlC);
    EXPECT_EQ(terminal.finish(), 130);
    bool complete = false;
    for (const std::string &line : progressLines(terminal.written()))
        complete |= std::regex_search(
            line, std::regex("^\\[2/2\\] slow\\.mov  \\[#*-+\\]  \\d+%  [\\d:]+ left  [\\d.]+ fps  \\d+/1000$"));
    EXPECT_TRUE(complete) << terminal.written();
    EXPECT_NE(terminal.written().find("a.mov → a_sbs.mp4\r\n"), std::string::npos);
    EXPECT_EQ(terminal.written().find("[1/2] a.mov\r\n"), std::string::npos) << "no plain lines for each file";
}

TEST_F(InTerminal, ProgressIsErasedAtTheEnd) {
    Terminal terminal(commandFor({file("slow.mov")}), 80);
    ASSERT_TRUE(terminal.waitFor("[1/1] slow.mov"));
    terminal.type(controlC);
    EXPECT_EQ(terminal.finish(), 130);
    const std::size_t last = terminal.written().rfind("[1/1]");
    EXPECT_NE(terminal.written().find("\r\x1b[K", last), std::string::npos);
    EXPECT_TRUE(std::regex_search(
        terminal.written(), std::regex("Converted: 0, skipped: 0, failed: 0, not finished: 1 \\([\\d:]+\\)\r\n$")))
        << terminal.written();
}

TEST_F(InTerminal, ControlCStopsCleanly) {
    Terminal terminal(commandFor({file("a.mov"), file("slow.mov"), file("z.mov")}), 80);
    ASSERT_TRUE(terminal.waitFor("slow.mov"));
    terminal.type(controlC);
    EXPECT_EQ(terminal.finish(), 130);
    EXPECT_NE(terminal.written().find("Stopped. Files that were already finished are kept."), std::string::npos);
    EXPECT_NE(terminal.written().find("Converted: 1, skipped: 0, failed: 0"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(folder / "out/a_sbs.mp4"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out/z_sbs.mp4"));
}

TEST_F(InTerminal, SecondControlCKills) {
    Terminal terminal(commandFor({file("stuck.mov")}), 80);
    ASSERT_TRUE(terminal.waitFor("stuck.mov"));
    terminal.type(controlC);
    ASSERT_TRUE(terminal.waitFor("Stopping. Press Ctrl+C again to stop at once.")) << terminal.written();
    terminal.type(controlC);
    EXPECT_EQ(terminal.finish(), 128 + SIGINT);
}

TEST_F(InTerminal, LinesFitNarrowTerminals) {
    for (const unsigned short columns : {1, 5, 6, 10, 20, 33, 50}) {
        Terminal terminal(commandFor({file("a.mov"), file("slow-写真の長い名前の動画ファイル.mov")}), columns);
        ASSERT_TRUE(terminal.waitFor(columns > 6 ? "[2/2]" : "a_sbs.mp4\r\n"));
        if (columns >= 50) {
            ASSERT_TRUE(terminal.waitFor("left"));
        }
        terminal.type(controlC);
        EXPECT_EQ(terminal.finish(), 130);
        for (const std::string &line : progressLines(terminal.written()))
            if (line.starts_with("[")) {
                EXPECT_LT(batch::displayWidth(line), columns) << line;
            }
    }
}

TEST_F(InTerminal, LineFollowsTheSizeOfTheTerminal) {
    Terminal terminal(commandFor({file("slow.mov")}), 80);
    ASSERT_TRUE(terminal.waitFor("1000"));
    terminal.resize(30);
    ASSERT_TRUE(terminal.waitFor("left\r\x1b[K")) << "frames and rate have no room any more";
    terminal.type(controlC);
    EXPECT_EQ(terminal.finish(), 130);
}

TEST_F(InTerminal, DumbTerminalsGetPlainLines) {
    Terminal terminal(commandFor({file("a.mov")}), 80, "dumb");
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_TRUE(terminal.written().starts_with("[1/1] a.mov\r\na.mov → a_sbs.mp4\r\nConverted: 1"))
        << terminal.written();
    EXPECT_EQ(terminal.written().find('\x1b'), std::string::npos);
}

TEST_F(InTerminal, StrangeNamesDoNotReachTheTerminal) {
    Terminal terminal(commandFor({file("fail\x1b[2J\n.mov"), file("slow\x07\x9b.mov")}), 80);
    ASSERT_TRUE(terminal.waitFor("[2/2] slow\uFFFD\uFFFD.mov"));
    terminal.type(controlC);
    EXPECT_EQ(terminal.finish(), 130);
    EXPECT_EQ(terminal.written().find("\x1b[2J"), std::string::npos);
    EXPECT_EQ(terminal.written().find('\x07'), std::string::npos);
    EXPECT_NE(terminal.written().find("  fail\uFFFD[2J\uFFFD.mov: acted failure\r\n"), std::string::npos);
}

} // namespace
} // namespace lumetwin::test
