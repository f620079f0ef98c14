// SPDX-License-Identifier: MIT
// Operator lists found again by their span of text give the entry their texts give.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDataItem.hpp"
#include "cif/SpacegroupOperators.hpp"
#include "cif/SpacegroupOperatorsRecent.hpp"

namespace {

constexpr std::string_view operators_name = "_symmetry_equiv_pos_as_xyz";

// A document of one block whose loop lists the operators (and, with ids,
// a column of numbers after them).
THandle<Cif> read(const std::string& rows, bool ids = false) {
    THandle<Cif> cif(new Cif());
    std::string text = "data_x\nloop_\n" + std::string(operators_name) + "\n";
    if (ids) text += "_symmetry_equiv_pos_site_id\n";
    cif->read_text(text + rows + "\n");
    EXPECT_TRUE(cif->errors()->empty()) << rows;
    return cif;
}

CifDataItem& operators_of(const THandle<Cif>& cif) {
    THandle<CifDataItem> item = (*cif->block_begin())->find(operators_name);
    EXPECT_FALSE(item.is_null());
    return *item;
}

// The entry the item's texts give, however they are laid out.
std::shared_ptr<const SpacegroupOperators> by_texts(const CifDataItem& item) {
    std::vector<std::string_view> texts;
    for (std::size_t n = 0; n < item.size(); ++n) texts.push_back(item.value_view(n));
    return SpacegroupOperators::of(texts);
}

TEST(SpacegroupOperatorsRecent, AListLaidOutAlikeIsFoundAgainAndAnyOtherGetsItsOwnTexts) {
    struct Case {
        const char* name;
        std::string first, second;
        bool ids = false;
        bool same_entry;
    };
    const Case cases[] = {
        {"the same text", "x,y,z -x,-y,z", "x,y,z -x,-y,z", false, true},
        {"another value of the same length", "x,y,z -x,-y,z x,-y,-z", "x,y,z -x,y,-z x,-y,-z", false, false},
        // The key looks at the first, middle and last values only.
        {"another value between those the key looks at", "x,y,z -x,-y,z x,-y,-z -x,y,-z x,y,-z",
         "x,y,z -x,y,-z x,-y,-z -x,y,-z x,y,-z", false, false},
        {"other blanks between", "x,y,z -x,-y,z", "x,y,z\n-x,-y,z", false, true},
        {"quoted", "'x,y,z' '-x,-y,z'", "x,y,z -x,-y,z", false, true},
        {"quoted with blanks", "'x, y, z' '-x, -y, z'", "'x, y, z' '-x,-y, z'", false, false},
        {"ids between", "x,y,z 1 -x,-y,z 2", "x,y,z 1 -x,-y,z 2", true, true},
        {"other ids between", "x,y,z 1 -x,-y,z 2", "x,y,z 7 -x,-y,z 2", true, true},
        {"one value fewer", "x,y,z -x,-y,z x,-y,-z", "x,y,z -x,-y,z", false, false},
    };
    for (const Case& c : cases) {
        SpacegroupOperatorsRecent recent;
        THandle<Cif> first = read(c.first, c.ids), second = read(c.second, c.ids);
        const auto first_entry = recent.entry(operators_of(first));
        EXPECT_EQ(first_entry, by_texts(operators_of(first))) << c.name;
        const auto second_entry = recent.entry(operators_of(second));
        EXPECT_EQ(second_entry, by_texts(operators_of(second))) << c.name;
        EXPECT_EQ(first_entry == second_entry, c.same_entry) << c.name;
    }
}

TEST(SpacegroupOperatorsRecent, ValuesChangedAfterReadingAreReadAsTheyStand) {
    const std::string rows = "x,y,z -x,-y,z x,-y,-z -x,y,-z";
    SpacegroupOperatorsRecent recent;
    THandle<Cif> original = read(rows);
    const auto entry = recent.entry(operators_of(original));
    // A value of the same text elsewhere: the span and its ends stay, one place moves.
    THandle<Cif> copied = read(rows);
    CifDataItem& item = operators_of(copied);
    item.copy_value_from(1, item, 2);
    ASSERT_EQ(item.value_view(1), "x,-y,-z");
    EXPECT_EQ(recent.entry(item), by_texts(item));
    EXPECT_NE(recent.entry(item), entry);
    // A value added outside the text.
    THandle<Cif> added = read(rows);
    operators_of(added).set_value(2, "x,y,-z");
    EXPECT_EQ(recent.entry(operators_of(added)), by_texts(operators_of(added)));
    // Set back to what it was, the list is the original's again.
    operators_of(added).set_value(2, "x,-y,-z");
    EXPECT_EQ(recent.entry(operators_of(added)), entry);
}

TEST(SpacegroupOperatorsRecent, ListsSharingASetEachGetTheirOwnEntry) {
    // More lists than places: lists of a set take each other's place.
    SpacegroupOperatorsRecent recent;
    std::vector<THandle<Cif>> lists;
    for (std::size_t n = 0; n < 2 * SpacegroupOperatorsRecent::sets * SpacegroupOperatorsRecent::ways; ++n)
        lists.push_back(read("x,y,z x+" + std::to_string(n + 1) + "/" + std::to_string(n + 2) + ",y,z"));
    for (int round = 0; round < 2; ++round) {
        for (const THandle<Cif>& list : lists)
            ASSERT_EQ(recent.entry(operators_of(list)), by_texts(operators_of(list))) << round;
    }
}

}  // namespace
