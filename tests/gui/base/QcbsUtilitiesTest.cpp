// SPDX-License-Identifier: GPL-3.0-or-later
// The program's small text utilities.
#include <gtest/gtest.h>

#include "base/QcbsUtilities.hpp"

namespace {

TEST(TextUtilities, SimplifyPathKeepsTheLastComponentBehindABlank) {
    const std::pair<const char*, const char*> cases[] = {{"name.cif", "name.cif"},
                                                         {"/a/b/c.cif", " c.cif"},
                                                         {"dir\\x.cif", " x.cif"},
                                                         {"a\\b/c.cif", " c.cif"},
                                                         {"a/b\\c.cif", " c.cif"},
                                                         {"dir/", " "},
                                                         {"", ""}};
    for (const auto& [path, simplified] : cases) {
        QString text = path;
        simplify_path(text);
        EXPECT_EQ(text, simplified) << path;
    }
}

TEST(TextUtilities, LinkTypeLooksForEachPrefixAtIndexZeroOrOneOfTheSimplifiedLink) {
    const std::pair<const char*, int> cases[] = {
        {"EDIT_x", 0},     {"ERROR_301", 1}, {"a/INFO_x", 2},  // " INFO_x" after simplifying
        {"LOOP_atom", 3},  {"xEDIT_", 0},    {"xxEDIT_", 4},   // index 2 is too late
        {"a/b/xEDIT_", 4}, {"edit_x", 4},                      // case matters
        {"INFO_EDIT_", 2},                                     // a later "EDIT_" does not hide it
    };
    for (const auto& [link, type] : cases) EXPECT_EQ(determineLinkType(link), type) << link;
    EXPECT_EQ(removeSpecialStringFromLink("EDIT_cell_length_a"), "_cell_length_a");
    EXPECT_EQ(removeSpecialStringFromLink("docs/INFO_atom_site_label"), "_atom_site_label");
    EXPECT_TRUE(removeSpecialStringFromLink("plain.html").isNull());
}

TEST(TextUtilities, ToLiteralReadsTheInputAtTheResultsIndex) {
    const std::pair<const char*, const char*> cases[] = {
        {"a.b", "a\\.b"},
        {"", ""},
        {"a..b", "a\\..b"},
        {"plain text", "plain text"},
        {"x$", "x\\$"},
        // The ")" at input index 2 is found while the result's index 2 holds
        // "x", so the back-slash lands before the "x".
        {"(x)", "\\(\\x)"}};
    for (const auto& [text, literal] : cases) EXPECT_EQ(toLiteral(text), literal) << text;
}

TEST(TextUtilities, SmallConversions) {
    EXPECT_EQ(rgbToWebHex(255, 0, 10), "#ff000a");
    EXPECT_EQ(rgbToWebHex(16, 15, 1), "#100f01");
    EXPECT_EQ(rgbToWebHex(256, 0, 0), "#1000000");
    QString text = "\n\nabc";
    EXPECT_TRUE(removeNewLineAtStart(text));
    EXPECT_EQ(text, "\nabc");
    QString other = "abc\n";
    EXPECT_FALSE(removeNewLineAtStart(other));
}

}  // namespace
