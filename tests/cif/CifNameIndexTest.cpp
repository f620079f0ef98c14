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

TEST(CifNameIndex, NamesEqualButForCaseHashAlike) {
    for (const char* name : {"", "_a", "_Cell_Length_A", "_symmetry_equiv_pos_as_xyz", "_refln.F_meas_au"}) {
        std::string lower = cif_lowercase(name);
        EXPECT_EQ(cif_name_hash(name), cif_name_hash(lower)) << name;
    }
    EXPECT_NE(cif_name_hash("_cell_length_a"), cif_name_hash("_cell_length_b"));
    EXPECT_NE(cif_name_hash("_cell_length_a"), cif_name_hash("_cell_length_a_"));
}

}  // namespace
