// SPDX-License-Identifier: MIT
// The process's data names: each spelling once, a full pool, documents sharing names.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cif/CifNamePool.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifTextStore.hpp"

namespace {

const CifKeptName* add(CifNamePool& pool, const std::string& name) {
    return pool.find_or_add(name, cif_name_hash(name));
}

TEST(CifNamePool, EachSpellingIsKeptOnceAndFoundAgainAsTheTableGrows) {
    CifNamePool pool;
    std::vector<const CifKeptName*> first;
    for (int n = 0; n < 3000; ++n) first.push_back(add(pool, "_atom_site_label_" + std::to_string(n)));
    for (int n = 0; n < 3000; ++n) {
        const CifKeptName* again = add(pool, "_atom_site_label_" + std::to_string(n));
        ASSERT_EQ(again, first[n]) << n;
        ASSERT_EQ(again->text, "_atom_site_label_" + std::to_string(n));
        ASSERT_EQ(again->hash, cif_name_hash(again->text));
    }
    // Case counts: a name is kept as written (names hash alike across case).
    const CifKeptName* small = add(pool, "_cell_length_a");
    const CifKeptName* capital = add(pool, "_Cell_Length_A");
    EXPECT_NE(small, capital);
    EXPECT_EQ(capital->text, "_Cell_Length_A");
    EXPECT_EQ(pool.size(), 3002u);
}

TEST(CifNamePool, AFullPoolStillFindsWhatItHoldsAndStoresKeepTheRest) {
    CifNamePool by_count(4, 1000);
    for (const char* name : {"_a", "_b", "_c", "_d"}) ASSERT_NE(add(by_count, name), nullptr);
    EXPECT_EQ(add(by_count, "_e"), nullptr);
    EXPECT_NE(add(by_count, "_c"), nullptr);
    CifNamePool by_bytes(100, 10);
    EXPECT_NE(add(by_bytes, "_1234567"), nullptr);
    EXPECT_EQ(add(by_bytes, "_xy"), nullptr);
    EXPECT_NE(add(by_bytes, "_x"), nullptr);

    // Two documents' stores hand out the process's one copy of a name.
    CifTextStore one, other;
    const CifKeptName& name = one.intern("_space_group_name_H-M_alt");
    EXPECT_EQ(&other.intern("_space_group_name_H-M_alt"), &name);
    EXPECT_EQ(&one.intern("_space_group_name_H-M_alt"), &name);
    EXPECT_EQ(other.intern("_Space_Group_Name_H-M_Alt").text, "_Space_Group_Name_H-M_Alt");
}

}  // namespace
