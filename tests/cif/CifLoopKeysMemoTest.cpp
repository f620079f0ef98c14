// SPDX-License-Identifier: MIT
// A loop's keys kept per thread: found only for the same names, definitions and dictionary.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cif/CifLoopKeysMemo.hpp"

namespace {

CifDataBlock::ItemList loop_of(const std::vector<std::string>& names) {
    CifDataBlock::ItemList loop;
    for (const std::string& name : names) loop.emplace_back(new CifDataItem(name));
    return loop;
}

TEST(CifLoopKeysMemo, KeysAreFoundOnlyForTheSameNamesDefinitionsAndDictionary) {
    CifLoopKeysMemo memo;
    const CifItemDefinition label, type;
    const CifLoopKeysMemo::Definitions definitions = {&label, &type};
    const CifLoopKeysMemo::Keys keys = {{0}, {0, 1}};
    memo.keep(7, loop_of({"_atom_site_label", "_atom_site_type_symbol"}), definitions, keys);

    const CifLoopKeysMemo::Keys* found =
        memo.find(7, loop_of({"_atom_site_label", "_atom_site_type_symbol"}), definitions);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(*found, keys);

    const struct {
        const char* what;
        std::uint64_t serial;
        std::vector<std::string> names;
        CifLoopKeysMemo::Definitions definitions;
    } misses[] = {
        {"another dictionary", 8, {"_atom_site_label", "_atom_site_type_symbol"}, definitions},
        {"the names in another order", 7, {"_atom_site_type_symbol", "_atom_site_label"}, definitions},
        {"a name in other case", 7, {"_atom_site_Label", "_atom_site_type_symbol"}, definitions},
        {"one name fewer", 7, {"_atom_site_label"}, {&label}},
        {"one name more",
         7,
         {"_atom_site_label", "_atom_site_type_symbol", "_atom_site_x"},
         {&label, &type, nullptr}},
        {"other definitions", 7, {"_atom_site_label", "_atom_site_type_symbol"}, {&label, nullptr}},
        {"no dictionary to trust", 0, {"_atom_site_label", "_atom_site_type_symbol"}, definitions},
    };
    for (const auto& miss : misses)
        EXPECT_EQ(memo.find(miss.serial, loop_of(miss.names), miss.definitions), nullptr) << miss.what;
}

TEST(CifLoopKeysMemo, ANumberOfZeroKeepsNothingAndALaterLoopInTheSameSlotTakesItsPlace) {
    CifLoopKeysMemo memo;
    const CifLoopKeysMemo::Definitions none = {nullptr};
    memo.keep(0, loop_of({"_a"}), none, {{0}});
    EXPECT_EQ(memo.find(0, loop_of({"_a"}), none), nullptr);

    // Enough loops to fill every slot: each is found right after it is kept,
    // and the last ones kept are all still there or replaced by newer ones.
    for (int i = 0; i < 500; ++i) {
        const CifDataBlock::ItemList loop = loop_of({"_loop_" + std::to_string(i)});
        memo.keep(3, loop, none, {{static_cast<std::size_t>(i)}});
        const CifLoopKeysMemo::Keys* found = memo.find(3, loop, none);
        ASSERT_NE(found, nullptr) << i;
        EXPECT_EQ(found->front().front(), static_cast<std::size_t>(i));
    }
    int kept = 0;
    for (int i = 0; i < 500; ++i)
        kept += memo.find(3, loop_of({"_loop_" + std::to_string(i)}), none) != nullptr;
    EXPECT_GT(kept, 0);
    EXPECT_LE(kept, 64);
}

}  // namespace
