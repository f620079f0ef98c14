// SPDX-License-Identifier: MIT
// The flat name index of a block: lookups ignoring case across growth and rebuilding.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "cif/CifNameIndex.hpp"
#include "cif/CifNames.hpp"

namespace {

std::string upper(std::string name) {
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return name;
}

TEST(CifNameIndex, FindsEveryPositionInAnyCaseThroughGrowthAndRebuilding) {
    CifNameIndex index;
    CifNameIndex::ItemList items;
    EXPECT_EQ(index.find(items, "_a"), CifNameIndex::npos);
    for (int i = 0; i < 300; ++i) {
        // Names that share long prefixes and differ only late, as data names do.
        items.emplace_back(new CifDataItem("_atom_site_aniso_U_" + std::to_string(i)));
        index.add(items, items.size() - 1);
        // Every name added so far is found, across each growth of the table.
        if (i == 11 || i == 12 || i == 13 || i == 299) {
            for (int j = 0; j <= i; ++j)
                EXPECT_EQ(index.find(items, upper(items[j]->name())), std::size_t(j));
        }
    }
    EXPECT_EQ(index.size(), 300u);
    // Items taken out and the rest moved: the index built again knows the new places only.
    for (int round = 0; round < 3; ++round) {
        CifNameIndex::ItemList kept;
        std::vector<std::string> gone;
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (i % 3 == 0) {
                gone.push_back(items[i]->name());
            } else {
                kept.push_back(items[i]);
            }
        }
        std::reverse(kept.begin(), kept.end());
        items.swap(kept);
        index.build(items);
        EXPECT_EQ(index.size(), items.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            EXPECT_EQ(index.find(items, cif_lowercase(items[i]->name())), i) << items[i]->name();
        for (const std::string& name : gone) EXPECT_EQ(index.find(items, name), CifNameIndex::npos) << name;
    }
    EXPECT_EQ(index.find(items, "_atom_site_aniso_U_300"), CifNameIndex::npos);
    EXPECT_EQ(index.find(items, ""), CifNameIndex::npos);
    index.clear();
    EXPECT_TRUE(index.empty());
    EXPECT_EQ(index.find(items, items[1]->name()), CifNameIndex::npos);
}

TEST(CifNameIndex, OneProbeFindsANameOrThePlaceWhereItGoesThroughGrowth) {
    CifNameIndex index;
    CifNameIndex::ItemList items;
    items.emplace_back(new CifDataItem("_first"));
    index.build(items);
    for (int i = 0; i < 200; ++i) {
        const std::string name = "_atom_site_aniso_U_" + std::to_string(i);
        // Every name added before is found in any case, and not added again.
        const std::size_t earlier = static_cast<std::size_t>(i % 7);
        std::size_t slot = 0;
        EXPECT_EQ(index.find_slot(items, upper(items[earlier]->name()), items[earlier]->name_hash(), slot),
                  earlier);
        // A new name is not found; it goes where the probe stopped, or the
        // table grows (past three quarters full) and takes it with the rest.
        THandle<CifDataItem> item(new CifDataItem(name));
        ASSERT_EQ(index.find_slot(items, name, item->name_hash(), slot), CifNameIndex::npos) << name;
        items.push_back(item);
        index.add_at(items, items.size() - 1, slot);
        ASSERT_EQ(index.size(), items.size());
        for (std::size_t j = 0; j < items.size(); ++j) ASSERT_EQ(index.find(items, items[j]->name()), j) << i;
    }
}

TEST(CifNameIndex, NamesEqualButForCaseHashAlike) {
    for (const char* name : {"", "_a", "_Cell_Length_A", "_symmetry_equiv_pos_as_xyz", "_refln.F_meas_au"}) {
        std::string lower = cif_lowercase(name);
        EXPECT_EQ(cif_name_hash(name), cif_name_hash(lower)) << name;
    }
    EXPECT_NE(cif_name_hash("_cell_length_a"), cif_name_hash("_cell_length_b"));
    EXPECT_NE(cif_name_hash("_cell_length_a"), cif_name_hash("_cell_length_a_"));
}

}  // namespace

// Names are compared eight bytes at a time: every pair of bytes at every
// place of a word and of the tail must agree with the comparison a byte at a
// time (letters ignore case; "@", "[", "`", "{" and bytes above 0x7F do not).
TEST(CifNameIndex, NamesCompareAsCharacterByCharacterIgnoringCase) {
    auto one_by_one = [](std::string_view a, std::string_view b) {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (cif_lower(a[i]) != cif_lower(b[i])) return false;
        return true;
    };
    for (std::size_t length : {1u, 7u, 8u, 9u, 16u, 21u}) {
        for (std::size_t at : {std::size_t(0), length / 2, length - 1}) {
            std::string a(length, '_');
            std::string b(length, '_');
            for (int x = 0; x < 256; ++x) {
                for (int y = 0; y < 256; ++y) {
                    a[at] = static_cast<char>(x);
                    b[at] = static_cast<char>(y);
                    ASSERT_EQ(cif_iequals(a, b), one_by_one(a, b))
                        << length << " " << at << " " << x << " " << y;
                }
            }
        }
    }
    EXPECT_TRUE(cif_iequals("_Symmetry_Equiv_Pos_As_XYZ", "_symmetry_equiv_pos_as_xyz"));
    EXPECT_FALSE(cif_iequals("_cell_length_a", "_cell_length_a_"));
    EXPECT_FALSE(cif_iequals(std::string_view("_a\0b", 4), std::string_view("_a\0c", 4)));
}
