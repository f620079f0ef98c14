#include <gtest/gtest.h>

#include "application/QcbsUtilities.hpp"

namespace {

QString simplified(QString path) {
    simplify_path(path);
    return path;
}

TEST(TextUtilities, SimplifyPathKeepsTheLastComponentBehindABlank) {
    EXPECT_EQ(simplified("name.cif"), "name.cif");
    EXPECT_EQ(simplified("/a/b/c.cif"), " c.cif");
    EXPECT_EQ(simplified("dir\\x.cif"), " x.cif");
    EXPECT_EQ(simplified("a\\b/c.cif"), " c.cif");
    EXPECT_EQ(simplified("a/b\\c.cif"), " c.cif");
    EXPECT_EQ(simplified("dir/"), " ");
    EXPECT_EQ(simplified(""), "");
}

TEST(TextUtilities, LinkTypeLooksForPrefixesAtIndexZeroOrOne) {
    EXPECT_EQ(determineLinkType("EDIT_x"), 0);
    EXPECT_EQ(determineLinkType("ERROR_301"), 1);
    EXPECT_EQ(determineLinkType("a/INFO_x"), 2);  // " INFO_x" after simplifying
    EXPECT_EQ(determineLinkType("LOOP_atom"), 3);
    EXPECT_EQ(determineLinkType("xEDIT_"), 0);
    EXPECT_EQ(determineLinkType("xxEDIT_"), 4);
    EXPECT_EQ(determineLinkType("a/b/xEDIT_"), 4);  // " xEDIT_": prefix at index 2
    EXPECT_EQ(determineLinkType("edit_x"), 4);      // case matters
    // "EDIT_" is looked for before "INFO_" even when it starts later.
    EXPECT_EQ(determineLinkType("INFO_EDIT_"), 2);
}

TEST(TextUtilities, RemoveSpecialStringGivesTheDataNameOfTheWholeLink) {
    EXPECT_EQ(removeSpecialStringFromLink("EDIT_cell_length_a"), "_cell_length_a");
    EXPECT_EQ(removeSpecialStringFromLink("docs/INFO_atom_site_label"), "_atom_site_label");
    EXPECT_TRUE(removeSpecialStringFromLink("plain.html").isNull());
}

TEST(TextUtilities, RgbToWebHexPadsEachComponent) {
    EXPECT_EQ(rgbToWebHex(255, 0, 10), "#ff000a");
    EXPECT_EQ(rgbToWebHex(0, 0, 0), "#000000");
    EXPECT_EQ(rgbToWebHex(16, 15, 1), "#100f01");
    EXPECT_EQ(rgbToWebHex(256, 0, 0), "#1000000");
}

TEST(TextUtilities, ToLiteralReadsTheInputAtTheResultsIndex) {
    EXPECT_EQ(toLiteral("a.b"), "a\\.b");
    EXPECT_EQ(toLiteral(""), "");
    EXPECT_EQ(toLiteral("a..b"), "a\\..b");
    // The ")" at input index 2 is found while the result's index 2 holds "x",
    // so the back-slash lands before the "x".
    EXPECT_EQ(toLiteral("(x)"), "\\(\\x)");
    EXPECT_EQ(toLiteral("plain text"), "plain text");
    EXPECT_EQ(toLiteral("x$"), "x\\$");
}

TEST(TextUtilities, RemoveNewLineAtStartRemovesOnlyOne) {
    QString text = "\n\nabc";
    EXPECT_TRUE(removeNewLineAtStart(text));
    EXPECT_EQ(text, "\nabc");
    QString other = "abc\n";
    EXPECT_FALSE(removeNewLineAtStart(other));
    EXPECT_EQ(other, "abc\n");
}

TEST(ProgramFacts, NamesVersionsAndEnvironmentDirectories) {
    EXPECT_EQ(programQName(), "Tessary");
    EXPECT_EQ(TessaryVersion(), "1.2");
    EXPECT_EQ(makeTempFilename("a.cif"), "temp_a.cif");
    qputenv("TESSARYDIR", "/opt/tessary");
    EXPECT_EQ(tessaryDir(), "/opt/tessary");
    qunsetenv("TESSARYDIR");
    EXPECT_EQ(tessaryDir(), "");
    EXPECT_TRUE(tessaryDirQString().isEmpty());
    std::string lower = "Data_ABC";
    ToLowerCase(lower);
    EXPECT_EQ(lower, "data_abc");
}

}  // namespace
