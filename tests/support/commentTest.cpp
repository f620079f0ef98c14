// SPDX-License-Identifier: MIT
// Turning text into comment lines and back: round trips, markers, line breaking.
#include <gtest/gtest.h>

#include "support/comment.hpp"

namespace {

std::string commented(const std::string& line) {
    std::vector<std::string> out;
    comment(line, out, "", "", "", "#", 10000, " \t");
    EXPECT_EQ(out.size(), 1u);
    return out.front();
}

std::string uncommented(const std::string& line) {
    std::vector<std::string> out;
    uncomment(line, out, "#", "");
    EXPECT_EQ(out.size(), 1u);
    return out.front();
}

TEST(Commenting, RoundTripsEveryKindOfLine) {
    for (const std::string line : {"_cell_length_a 5.4", "", "  loop_", "#already", "\t; text"}) {
        EXPECT_EQ(commented(line), "#" + line);
        EXPECT_EQ(uncommented(commented(line)), line);
    }
}

TEST(Commenting, UncommentRemovesOnlyOneLeadingMarkerAndKeepsIndent) {
    EXPECT_EQ(uncommented("##x"), "#x");
    EXPECT_EQ(uncommented("  #x"), "  x");
    EXPECT_EQ(uncommented("x # y"), "x # y");
    EXPECT_EQ(uncommented(""), "");
    std::vector<std::string> out;
    uncomment("# note", out, "#", " ");
    EXPECT_EQ(out.back(), "note");
}

TEST(Commenting, BreaksLongTextAtBreakCharactersWithinTheWidth) {
    std::vector<std::string> out;
    comment("alpha beta gamma", out, "", "", "", "#", 8, " ");
    EXPECT_EQ(out, (std::vector<std::string>{"#alpha ", "#beta ", "#gamma"}));
    for (const auto& line : out) EXPECT_LE(line.size(), 8u);
}

TEST(Commenting, CutsAWordLongerThanTheWidthAndUsesThePrefixes) {
    std::vector<std::string> out;
    comment("abcdefgh", out, "> ", "  ", "", "#", 6, " ");
    EXPECT_EQ(out, (std::vector<std::string>{"#> abc", "#  def", "#  gh"}));
}

}  // namespace
