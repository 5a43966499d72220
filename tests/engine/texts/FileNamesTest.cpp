// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/texts/FileNames.h"

#include <gtest/gtest.h>

namespace lumetwin {
namespace {

const std::string mark = "\uFFFD";

TEST(LastPathComponent, IsTheName) {
    EXPECT_EQ(lastPathComponent("/a/b.mov"), "b.mov");
    EXPECT_EQ(lastPathComponent("b.mov"), "b.mov");
    EXPECT_EQ(lastPathComponent("/a/b.mov/"), "b.mov");
    EXPECT_EQ(lastPathComponent("/a/b.mov///"), "b.mov");
    EXPECT_EQ(lastPathComponent("/a/\xff.mov"), "\xff.mov");
}

TEST(Printable, KeepsText) {
    const std::string text = "plain é 写真 🎬 ⚠️ ~";
    EXPECT_EQ(printable(text), text);
    EXPECT_EQ(printable(""), "");
    EXPECT_EQ(printable("\u07FF\u0800\uFFFD\U00010000\U0010FFFF"), "\u07FF\u0800\uFFFD\U00010000\U0010FFFF");
}

TEST(Printable, ReplacesControls) {
    EXPECT_EQ(printable(std::string("a\0b", 3)), "a" + mark + "b");
    EXPECT_EQ(printable("\x1b[31m"), mark + "[31m");
    EXPECT_EQ(printable("a\r\n\t\x7f"), "a" + mark + mark + mark + mark);
    EXPECT_EQ(printable("\u009B"
                        "2J"),
              mark + "2J"); // the C1 form of the escape sequence
    EXPECT_EQ(printable("\u202Evom.x"), mark + "vom.x");
    EXPECT_EQ(printable("\u2028\u2066"), mark + mark);
}

TEST(Printable, ReplacesWhatIsNoUtf8) {
    EXPECT_EQ(printable("\xff\xfe"), mark + mark);
    EXPECT_EQ(printable("\xC3"), mark);                                  // cut short
    EXPECT_EQ(printable("\xC3("), mark + "(");                           // not continued
    EXPECT_EQ(printable("\xC0\xAF"), mark + mark);                       // over-long
    EXPECT_EQ(printable("\xE0\x80\xAF"), mark + mark + mark);            // over-long
    EXPECT_EQ(printable("\xED\xA0\x80"), mark + mark + mark);            // surrogate
    EXPECT_EQ(printable("\xF4\x90\x80\x80"), mark + mark + mark + mark); // above U+10FFFF
    EXPECT_EQ(printable("\xF5\x80\x80\x80"), mark + mark + mark + mark);
    EXPECT_EQ(printable("\x80"), mark);
}

} // namespace
} // namespace lumetwin
