// SPDX-License-Identifier: MIT
// The journal table: distinct names and codes, and finding journals from what a user types.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "cif/Journal.hpp"

namespace {

std::vector<std::string> names(const std::vector<int>& numbers) {
    std::vector<std::string> out;
    for (int n : numbers) out.emplace_back(Journal(n).name());
    return out;
}

TEST(Journal, EveryJournalIsFoundAgainByItsNameAndCodeAndNoTwoShareOne) {
    ASSERT_GE(Journal::count(), 60);
    std::set<std::string> codes;
    std::set<std::string> cleanedNames;
    for (int i = 0; i < Journal::count(); ++i) {
        const Journal journal(i);
        EXPECT_TRUE(codes.insert(Journal::cleaned(journal.code())).second) << journal.code();
        EXPECT_TRUE(cleanedNames.insert(Journal::cleaned(journal.name())).second) << journal.name();
        EXPECT_FALSE(journal.abbreviation().empty()) << journal.name();
        EXPECT_EQ(Journal::find(journal.name()), i) << journal.name();
        EXPECT_EQ(Journal::find(journal.code()), i) << journal.code();
        // A renamed journal shares its abbreviation with its former title.
        const int byAbbreviation = Journal::find(journal.abbreviation());
        ASSERT_GE(byAbbreviation, 0) << journal.abbreviation();
        EXPECT_EQ(Journal(byAbbreviation).abbreviation(), journal.abbreviation());
        for (const char c : journal.name())
            EXPECT_LT(static_cast<unsigned char>(c), 0x80) << journal.name() << ": ASCII, for any CIF";
    }
    // The current title wins over a former one of the same abbreviation.
    EXPECT_TRUE(Journal(Journal::find("Acta Cryst. E")).current());
}

TEST(Journal, TypedTextIsComparedWithoutPunctuationBlanksOrLetterCase) {
    EXPECT_EQ(Journal::cleaned(" Acta Cryst. (C); [x]: a,b "), "actacrystcxab");
    const int actaC = Journal::find("Acta Crystallographica Section C: Structural Chemistry");
    ASSERT_GE(actaC, 0);
    for (const char* typed : {"acta cryst c", "ACTA CRYST. C", "Acta.Cryst.C", "ActaCryst(C)"})
        EXPECT_EQ(Journal::find(typed), actaC) << typed;
    EXPECT_EQ(Journal::find(""), -1);
    EXPECT_EQ(Journal::find("Journal of Imaginary Results"), -1);
}

TEST(Journal, TheListNarrowsToPrefixesFirstThenNamesContainingTheText) {
    const struct {
        const char* typed;
        std::vector<std::string> first;  // the list begins with these, in this order
        const char* absent;              // and does not hold this
    } cases[] = {
        {"Acta Cryst. C", {"Acta Crystallographica Section C: Structural Chemistry"}, "Dalton Transactions"},
        {"j. appl. cryst", {"Journal of Applied Crystallography"}, "Journal of Synchrotron Radiation"},
        {"Dalton", {"Dalton Transactions"}, "Polyhedron"},
        // a substring of full names, after the names beginning with it
        {"crystallograph",
         {"Crystallography Reports", "Acta Crystallographica Section A: Foundations and Advances"},
         "Inorganic Chemistry"},
        {"Tetrahedron", {"Tetrahedron", "Tetrahedron Letters"}, "Organometallics"},
    };
    for (const auto& c : cases) {
        const std::vector<std::string> listed = names(Journal::matching(c.typed, false));
        ASSERT_GE(listed.size(), c.first.size()) << c.typed;
        EXPECT_EQ(std::vector<std::string>(listed.begin(), listed.begin() + long(c.first.size())), c.first)
            << c.typed;
        for (const std::string& name : listed) EXPECT_NE(name, c.absent) << c.typed;
    }
    EXPECT_EQ(int(Journal::matching(" ..;", false).size()), Journal::count()) << "nothing typed: all";
    EXPECT_TRUE(Journal::matching("no such journal", false).empty());
    // Titles no longer current are left out when asked.
    for (int n : Journal::matching("", true)) EXPECT_TRUE(Journal(n).current()) << Journal(n).name();
    EXPECT_LT(Journal::matching("", true).size(), Journal::matching("", false).size());
}

}  // namespace
