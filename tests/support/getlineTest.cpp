// SPDX-License-Identifier: MIT
// orma::getline: every line ending, the final line, empty lines, other bytes kept.
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "support/getline.hpp"

namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    std::string line;
    while (orma::getline(in, line)) lines.push_back(line);
    return lines;
}

using Lines = std::vector<std::string>;

TEST(OrmaGetline, AcceptsEveryLineEnding) {
    EXPECT_EQ(linesOf("a\nb\n"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\r\nb\r\n"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\rb\r"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\r\nb\rc\nd"), (Lines{"a", "b", "c", "d"}));
}

TEST(OrmaGetline, FinalLineWithoutEndIsReadAndFinalEndAddsNoEmptyLine) {
    EXPECT_EQ(linesOf("a\nb"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\n\n"), (Lines{"a", ""}));
    EXPECT_EQ(linesOf(""), Lines{});
    EXPECT_EQ(linesOf("\n"), (Lines{""}));
}

TEST(OrmaGetline, EmptyLinesBetweenCrLfAreKept) {
    EXPECT_EQ(linesOf("a\r\n\r\nb"), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOf("a\r\rb"), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOf("a\n\rb"), (Lines{"a", "", "b"}));
}

TEST(OrmaGetline, KeepsBytesOtherThanLineEnds) {
    const std::string latin1 = "caf\xe9\t\x1a";
    EXPECT_EQ(linesOf(latin1 + "\n"), (Lines{latin1}));
}

}  // namespace
