// SPDX-License-Identifier: MIT
// The filter of a block's names: never turns away a name the block holds, turns away most others.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "cif/CifBlockNameFilter.hpp"
#include "cif/CifCheckValues.hpp"
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

TEST(CifBlockNameFilter, EveryNameTheBlockHoldsPassesInAnyCase) {
    for (int count : {1, 30, 256, 300}) {
        SCOPED_TRACE(count);
        THandle<Cif> cif = cif_test::read(block_of(count));
        const CifDataBlock& block = *cif->blocks().front();
        const CifBlockNameFilter names(block);
        for (auto item = block.begin_write_order(); item != block.end_write_order(); ++item) {
            EXPECT_TRUE(names.may_hold((*item)->name())) << (*item)->name();
            EXPECT_TRUE(names.may_hold(swapped_case((*item)->name()))) << (*item)->name();
        }
    }
}

TEST(CifBlockNameFilter, MostNamesTheBlockLacksAreTurnedAwayUnlessItHoldsVeryMany) {
    auto passed = [](int count) {
        THandle<Cif> cif = cif_test::read(block_of(count));
        const CifBlockNameFilter names(*cif->blocks().front());
        int passed = 0;
        THandle<Cif> others = cif_test::read(block_of(1000, 5000));
        const CifDataBlock& absent = *others->blocks().front();
        for (auto item = absent.begin_write_order(); item != absent.end_write_order(); ++item)
            passed += names.may_hold((*item)->name());
        return passed;
    };
    EXPECT_LT(passed(30), 50);
    EXPECT_LT(passed(200), 300);
    EXPECT_EQ(passed(300), 1000);  // too many names to tell: all pass
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
            EXPECT_EQ(!cif_check_find(block, c.name).is_null(), c.held);
        }
        EXPECT_FALSE(cif_check_find(other_block, "_cell_measurement_theta_min").is_null());
        CifReading volume = cif_check_read(block, {"_cell.volume", "_cell_volume"});
        EXPECT_TRUE(volume.ok);
        EXPECT_EQ(volume.name, "_Cell_Volume");
    }
    EXPECT_EQ(CifBlockNameFilter::of(block), nullptr);  // the scope is over
}

}  // namespace
