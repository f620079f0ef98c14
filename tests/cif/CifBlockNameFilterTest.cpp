// SPDX-License-Identifier: MIT
// The index of a block's names: finds what the block holds, in any case, and nothing else.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "cif/CifBlockNameFilter.hpp"
#include "cif/CifCheckValues.hpp"
#include "cif/CifNames.hpp"
#include "tests/cif/CifTestSupport.hpp"

namespace {

// A block of count names of the shapes the checks ask for, short and long.
std::string block_of(int count, int first = 0) {
    std::string text = "data_a\n";
    for (int i = first; i < first + count; ++i) {
        const std::string stem = i % 3 == 0   ? "_c"
                                 : i % 3 == 1 ? "_diffrn_reflns_theta_"
                                              : "_atom_site_aniso_U_";
        text += stem + std::to_string(i) + (i % 2 == 0 ? "_min" : "") + " 1\n";
    }
    return text;
}

std::string swapped_case(std::string name) {
    for (char& c : name) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        else if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return name;
}

TEST(CifBlockNameFilter, FindsEveryItemTheBlockHoldsInAnyCaseAndNoOther) {
    // Up to the largest indexed block and beyond, where the block is asked.
    for (int count : {1, 30, 256, 1024, 1100}) {
        SCOPED_TRACE(count);
        THandle<Cif> cif = cif_test::read(block_of(count));
        const CifDataBlock& block = *cif->blocks().front();
        const CifBlockNameFilter names(block);
        EXPECT_EQ(names.asks_block(), count > 1024);
        if (names.asks_block()) continue;
        for (auto item = block.begin_write_order(); item != block.end_write_order(); ++item) {
            const std::string name = (*item)->name();
            const THandle<CifDataItem>* found = names.find(CifCheckName(name));
            ASSERT_NE(found, nullptr) << name;
            EXPECT_EQ(found->get(), item->get()) << name;
            const std::string swapped = swapped_case(name);
            found = names.find(CifCheckName(swapped));
            ASSERT_NE(found, nullptr) << swapped;
            EXPECT_EQ(found->get(), item->get()) << swapped;
        }
        // Names of the same shapes, lengths and keys' neighbourhoods, not held.
        THandle<Cif> others = cif_test::read(block_of(1000, 5000));
        const CifDataBlock& absent = *others->blocks().front();
        for (auto item = absent.begin_write_order(); item != absent.end_write_order(); ++item)
            EXPECT_EQ(names.find(CifCheckName((*item)->name())), nullptr) << (*item)->name();
    }
}

TEST(CifBlockNameFilter, ATableServingBlockAfterBlockFindsOnlyTheCurrentBlocksNames) {
    // Larger blocks first, so that each later filter takes the table the one
    // before it left; the previous block's names must be gone from it.
    const int blocks[][2] = {{1000, 0}, {30, 2000}, {1, 3000}, {30, 0}, {500, 4000}, {30, 4100}};
    std::vector<THandle<Cif>> read;
    for (const auto& [count, first] : blocks) read.push_back(cif_test::read(block_of(count, first)));
    for (std::size_t n = 0; n < read.size(); ++n) {
        SCOPED_TRACE(n);
        const CifDataBlock& block = *read[n]->blocks().front();
        const CifBlockNameFilter names(block);
        for (auto item = block.begin_write_order(); item != block.end_write_order(); ++item) {
            const THandle<CifDataItem>* found = names.find(CifCheckName((*item)->name()));
            ASSERT_NE(found, nullptr) << (*item)->name();
            EXPECT_EQ(found->get(), item->get());
        }
        if (n == 0) continue;
        const CifDataBlock& before = *read[n - 1]->blocks().front();
        for (auto item = before.begin_write_order(); item != before.end_write_order(); ++item) {
            // Found only as the current block's item of the same name.
            const THandle<CifDataItem>* found = names.find(CifCheckName((*item)->name()));
            EXPECT_TRUE(found == nullptr || found->get() != item->get()) << (*item)->name();
        }
    }
}

TEST(CifBlockNameFilter, NamesWrittenAsLiteralsHaveTheKeysOfTheSameNamesReadAtRunTime) {
    // The compiler's key and the run time's must agree, or a literal name
    // would miss the item filed under the block's name.
    constexpr CifCheckName literals[] = {"",
                                         "_a",
                                         "_cell_volume",
                                         "_cell.volume",
                                         "_12345678",
                                         "_atom_site_aniso_U_11",
                                         "_Space_Group_Symop.Operation_XYZ"};
    for (const CifCheckName& literal : literals) {
        const std::string copy(literal.text());
        EXPECT_EQ(literal.key(), CifCheckName(copy).key()) << copy;
        EXPECT_EQ(literal.key(), CifCheckName(swapped_case(copy)).key()) << copy;
    }
}

TEST(CifBlockNameFilter, ChecksFindWhatTheBlockHoldsWithOrWithoutTheFilter) {
    THandle<Cif> cif = cif_test::read("data_a\n_cell_length_a 5.1(2)\n_Cell_Volume 10\n_x ?\n");
    THandle<Cif> other = cif_test::read("data_b\n_cell_measurement_theta_min 2\n");
    const CifDataBlock& block = *cif->blocks().front();
    const CifDataBlock& other_block = *other->blocks().front();
    const CifBlockNameFilter names(block);
    EXPECT_EQ(CifBlockNameFilter::of(block), nullptr);
    struct Case {
        const char* name;
        bool held;
    };
    const Case cases[] = {
        {"_cell_length_a", true},
        {"_CELL_LENGTH_A", true},
        {"_cell_volume", true},
        {"_x", true},
        {"_X", true},
        {"_cell_length_b", false},
        {"_cell_volume_", false},
        {"_cell.volume", false},
        {"", false},
    };
    for (int scoped = 0; scoped < 2; ++scoped) {
        std::optional<CifBlockNameFilter::Scope> scope;
        if (scoped == 1) scope.emplace(names);
        EXPECT_EQ(CifBlockNameFilter::of(block), scoped == 1 ? &names : nullptr);
        EXPECT_EQ(CifBlockNameFilter::of(other_block), nullptr);  // another block is asked itself
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.name) + (scoped == 1 ? " with the filter" : " without"));
            EXPECT_EQ(!cif_check_find(block, CifCheckName(c.name)).is_null(), c.held);
            EXPECT_EQ(cif_check_item(block, CifCheckName(c.name)) != nullptr, c.held);
        }
        EXPECT_FALSE(cif_check_find(other_block, "_cell_measurement_theta_min").is_null());
        CifReading volume = cif_check_read(block, {"_cell.volume", "_cell_volume"});
        EXPECT_TRUE(volume.ok);
        EXPECT_EQ(volume.name, "_Cell_Volume");
    }
    EXPECT_EQ(CifBlockNameFilter::of(block), nullptr);  // the scope is over
}

TEST(CifBlockNameFilter, KeysWorkedOutByTheCompilerAreTheHashesItemsKeep) {
    // The filter files items under the hash they keep and is asked with keys
    // the compiler made: they must agree at every length around a word.
    static constexpr CifCheckName names[] = {
        "_",
        "_a",
        "_abcdefg",
        "_abcdefgh",
        "_abcdefghi",
        "_cell_length_a",
        "_CELL_Length_A",
        "_atom_site_label_",
        "_atom_site_aniso.label",
        "_space_group_symop_operation_xyz",
    };
    for (const CifCheckName& name : names) {
        EXPECT_EQ(name.key(), cif_name_hash(name.text())) << name.text();
        EXPECT_EQ(CifCheckName(std::string(name.text())).key(), name.key()) << name.text();
    }
    // And an item found by a literal in either case.
    THandle<Cif> cif = cif_test::read("data_a\n_Cell_Length_A 1\n_atom_site_aniso.LABEL x\n");
    const CifBlockNameFilter filter(*cif->blocks().front());
    EXPECT_NE(filter.find("_cell_length_a"), nullptr);
    EXPECT_NE(filter.find("_atom_site_aniso.label"), nullptr);
    EXPECT_EQ(filter.find("_cell_length_b"), nullptr);
}

}  // namespace
