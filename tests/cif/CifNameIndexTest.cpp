// SPDX-License-Identifier: MIT
// The flat name index of a block: lookups ignoring case across growth, erasing and adding again.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cif/CifNameIndex.hpp"
#include "cif/CifNames.hpp"

namespace {

TEST(CifNameIndex, FindsEveryNameInAnyCaseThroughGrowthErasingAndAddingAgain) {
    CifNameIndex index;
    std::vector<THandle<CifDataItem>> items;
    for (int i = 0; i < 300; ++i) {
        // Names that share long prefixes and differ only late, as data names do.
        items.emplace_back(new CifDataItem("_atom_site_aniso_U_" + std::to_string(i)));
        index.emplace(items.back()->name(), items.back());
    }
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 300; i += 3) index.erase(cif_lowercase(items[i]->name()));
        EXPECT_EQ(index.size(), 200u);
        for (int i = 0; i < 300; ++i) {
            std::string upper = items[i]->name();
            for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            const THandle<CifDataItem>* found = index.find(upper);
            if (i % 3 == 0) {
                EXPECT_EQ(found, nullptr) << upper;
            } else {
                ASSERT_NE(found, nullptr) << upper;
                EXPECT_EQ(found->get(), items[i].get());
            }
        }
        // Erased names come back (reusing erased slots many times over).
        for (int i = 0; i < 300; i += 3) index.emplace(items[i]->name(), items[i]);
        EXPECT_EQ(index.size(), 300u);
        for (const THandle<CifDataItem>& item : items) EXPECT_EQ(index.find(item->name())->get(), item.get());
    }
    EXPECT_EQ(index.find("_atom_site_aniso_U_300"), nullptr);
    EXPECT_EQ(index.find(""), nullptr);
    // Erasing drops the index's hold on the item.
    index.erase("_atom_site_aniso_u_7");
    EXPECT_EQ(items[7].use_count(), 1);
    index.clear();
    EXPECT_EQ(index.find(items[1]->name()), nullptr);
    EXPECT_EQ(items[1].use_count(), 1);
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
