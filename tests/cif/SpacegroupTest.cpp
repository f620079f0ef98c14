// SPDX-License-Identifier: MIT
// Space groups: settings, symbols as users write them, crystal systems, groups of operators.
#include <gtest/gtest.h>

#include <algorithm>
#include <gemmi/symmetry.hpp>
#include <set>
#include <string>
#include <vector>

#include "cif/Spacegroup.hpp"
#include "cif/SpacegroupCache.hpp"
#include "cif/SpacegroupOperators.hpp"

namespace {

TEST(Spacegroup, GroupsHaveTheirTabulatedSettings) {
    EXPECT_EQ(Spacegroup::nsettings(14), 9);  // three cell choices for each of three unique axes
    EXPECT_GE(Spacegroup::nsettings(1), 1);
    EXPECT_EQ(Spacegroup::orma_symbol(1, 1), "P 1");
    EXPECT_EQ(Spacegroup::nsettings(0), 0);
    EXPECT_EQ(Spacegroup::nsettings(231), 0);
    EXPECT_EQ(Spacegroup::orma_symbol(14, 1), "P 1 21/c 1");
    EXPECT_EQ(Spacegroup::orma_symbol(14, 2), "P 1 21/n 1");
    EXPECT_EQ(Spacegroup::orma_symbol(62, 1), "P n m a");
    EXPECT_EQ(Spacegroup::orma_symbol(14, 10), "");
    EXPECT_EQ(Spacegroup::orma_symbol(0, 1), "");
    // Every setting of every group has a symbol of its own, found again from itself.
    std::set<std::string> seen;
    int settings = 0;
    for (int number = 1; number <= 230; ++number) {
        ASSERT_GE(Spacegroup::nsettings(number), 1) << number;
        for (int s = 1; s <= Spacegroup::nsettings(number); ++s, ++settings) {
            std::string symbol = Spacegroup::orma_symbol(number, s);
            EXPECT_TRUE(seen.insert(symbol).second) << symbol;
            EXPECT_EQ(Spacegroup::derive_orma_symbol(symbol), symbol);
            EXPECT_EQ(Spacegroup::number_of(Spacegroup::name_space_separated(symbol)), number);
        }
    }
    EXPECT_GT(settings, 500);
}

TEST(Spacegroup, SymbolsAreRecognisedAsUsersWriteThem) {
    for (const char* written :
         {"P 21/c", "P21/c", "P 1 21/c 1", "p 21/c", "P 1 2(1)/c 1", "P 1 2~1~/c 1", "14"}) {
        EXPECT_EQ(Spacegroup::derive_orma_symbol(written), "P 1 21/c 1") << written;
        EXPECT_EQ(Spacegroup::number_of(written), 14) << written;
    }
    EXPECT_EQ(Spacegroup::derive_orma_symbol("Fd3m"), "F d -3 m:1");  // the bar of older cubic symbols
    EXPECT_EQ(Spacegroup::derive_orma_symbol("I m 3 m"), "I m -3 m");
    EXPECT_EQ(Spacegroup::derive_orma_symbol("P 21/b 21/c 21/a"), "P b c a");  // a full symbol
    EXPECT_EQ(Spacegroup::derive_orma_symbol("P 4/n"), "P 4/n:1");
    EXPECT_EQ(Spacegroup::derive_orma_symbol("P 4/n:2"), "P 4/n:2");
    for (const char* unknown : {"P 21/x", "", "?", "Q 1", "231", "0", "P 1 2"}) {
        EXPECT_EQ(Spacegroup::derive_orma_symbol(unknown), "Unknown") << unknown;
        EXPECT_EQ(Spacegroup::number_of(unknown), 0) << unknown;
    }
    EXPECT_EQ(Spacegroup::name_space_separated("P212121"), "P 21 21 21");
    EXPECT_EQ(Spacegroup::name_space_separated("  not a group "), "not a group");
}

TEST(Spacegroup, CrystalSystemsIndexTheWizardsList) {
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(2)), "triclinic");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(14)), "monoclinic");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(62)), "orthorhombic");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(139)), "tetragonal");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(148)), "rhombohedral");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(152)), "trigonal");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(194)), "hexagonal");
    EXPECT_STREQ(Spacegroup::crystal_system_name(Spacegroup::crystal_system(225)), "cubic");
    EXPECT_EQ(Spacegroup::crystal_system(0), 0);
    EXPECT_STREQ(Spacegroup::crystal_system_name(99), "?");
    // Boundaries of the systems.
    EXPECT_EQ(Spacegroup::crystal_system(3), Spacegroup::monoclinic);
    EXPECT_EQ(Spacegroup::crystal_system(16), Spacegroup::orthorhombic);
    EXPECT_EQ(Spacegroup::crystal_system(75), Spacegroup::tetragonal);
    EXPECT_EQ(Spacegroup::crystal_system(143), Spacegroup::trigonal);
    EXPECT_EQ(Spacegroup::crystal_system(168), Spacegroup::hexagonal);
    EXPECT_EQ(Spacegroup::crystal_system(195), Spacegroup::cubic);
}

TEST(Spacegroup, OperatorsGiveTheirGroupInAnyOrderAndForm) {
    Spacegroup p21c({"x, y, z", "-x, y+1/2, -z+1/2", "-x, -y, -z", "x, -y-1/2, z-1/2"}, 14, "P 21/c");
    EXPECT_EQ(p21c.symbol(), "P 1 21/c 1");
    EXPECT_EQ(p21c.number(), 14);
    EXPECT_EQ(p21c.given_number(), 14);
    EXPECT_EQ(p21c.given_symbol(), "P 21/c");
    Spacegroup reordered({"'-X,-Y,-Z'", "X,-Y+1/2,Z+1/2", "x,y,z", "-x,1/2+y,1/2-z"});
    EXPECT_EQ(reordered.symbol(), "P 1 21/c 1");
    Spacegroup p21n({"x,y,z", "-x+1/2,y+1/2,-z+1/2", "-x,-y,-z", "x+1/2,-y+1/2,z+1/2"});
    EXPECT_EQ(p21n.symbol(), "P 1 21/n 1");
    // Centring translations given as operators of their own.
    Spacegroup c2c({"x,y,z", "-x,y,-z+1/2", "x+1/2,y+1/2,z", "-x+1/2,y+1/2,-z+1/2", "-x,-y,-z", "x,-y,z+1/2",
                    "-x+1/2,-y+1/2,-z", "x+1/2,-y+1/2,z+1/2"});
    EXPECT_EQ(c2c.symbol(), "C 1 2/c 1");
    EXPECT_EQ(Spacegroup({"x,y,z"}).symbol(), "P 1");
}

TEST(Spacegroup, OperatorsThatFormNoGroupOrCannotBeReadGiveUnknown) {
    Spacegroup unreadable({"x, y, z", "u, v"});
    EXPECT_FALSE(unreadable.operators_readable());
    EXPECT_EQ(unreadable.symbol(), "Unknown");
    Spacegroup incomplete({"x,y,z", "-y,x,z"});  // a fourfold axis without its square
    EXPECT_TRUE(incomplete.operators_readable());
    EXPECT_EQ(incomplete.symbol(), "Unknown");
    EXPECT_EQ(Spacegroup({}).symbol(), "Unknown");
    EXPECT_EQ(Spacegroup({"x,y,z", "0,0,0"}).symbol(), "Unknown");  // a singular matrix
    // Numbers beyond what the reading's integers hold, or factors whose
    // determinant would overflow, are unreadable; a far translation is not.
    for (const char* beyond : {"-x+99999999999999999999,-y,-z", "-x+2000000000,-y,-z",
                               "-x+99999999/2+99999999/2,-y,-z", "-1000*x,-y,-z"}) {
        EXPECT_FALSE(Spacegroup({"x,y,z", beyond}).operators_readable()) << beyond;
        EXPECT_EQ(SpacegroupOperators::of({"x,y,z", beyond})->operations(), nullptr) << beyond;
    }
    EXPECT_EQ(Spacegroup({"x,y,z", "-x+1000,-y,-z"}).symbol(), "P -1");
}

TEST(Spacegroup, OperatorsSeenBeforeInAnyOrderOrFormAreTakenFromTheCache) {
    SpacegroupCache& cache = SpacegroupCache::by_operators();
    Spacegroup first({"x,y,z", "-x,-y,z+1/2", "-y,x,z+1/4", "y,-x,z+3/4"});
    ASSERT_EQ(first.symbol(), "P 41");
    struct Case {
        std::vector<std::string> operators;
        const char* symbol;
    };
    const Case cases[] = {
        {{"y,-x,z+3/4", "-y,x,z+1/4", "x,y,z", "-x,-y,z+1/2"}, "P 41"},         // another order
        {{"'X,Y,Z'", " -x, -y, 1/2+z", "-y,x,z+5/4", "y,-x+1,z-1/4"}, "P 41"},  // another form
    };
    for (const Case& c : cases) {
        std::size_t hits = cache.hits();
        std::size_t misses = cache.misses();
        Spacegroup again(c.operators, 76, "P 41");
        EXPECT_EQ(again.symbol(), c.symbol);
        EXPECT_EQ(again.number(), 76);
        EXPECT_EQ(cache.hits(), hits + 1);
        EXPECT_EQ(cache.misses(), misses);
    }
    // The same rotations with other translations are another group.
    std::size_t misses = cache.misses();
    EXPECT_EQ(Spacegroup({"x,y,z", "-x,-y,z+1/2", "-y,x,z+3/4", "y,-x,z+1/4"}).symbol(), "P 43");
    EXPECT_EQ(cache.misses(), misses + 1);
}

TEST(SpacegroupCache, FindsEachKeyOnceAndStartsAfreshWhenFull) {
    SpacegroupCache cache(2);
    int found = 0;
    auto lookup = [&](const std::string& key) {
        return cache.lookup(key, [&]() {
            ++found;
            return SpacegroupCache::Group{"G " + key, found};
        });
    };
    EXPECT_EQ(lookup("a").symbol, "G a");
    EXPECT_EQ(lookup("a").number, 1);
    EXPECT_EQ(lookup("b").symbol, "G b");
    EXPECT_EQ(found, 2);
    EXPECT_EQ(cache.hits(), 1u);
    lookup("c");  // full: a and b are dropped
    EXPECT_EQ(lookup("c").number, 3);
    EXPECT_EQ(lookup("a").number, 4);
    EXPECT_EQ(cache.misses(), 4u);
}

TEST(Spacegroup, EveryTabulatedSettingHasTheOperationsOfItsPointGroup) {
    // The search by operations passes over settings of another order unmade.
    for (const gemmi::SpaceGroup& setting : gemmi::spacegroup_tables::main)
        EXPECT_EQ(static_cast<int>(setting.operations().sym_ops.size()),
                  Spacegroup::point_group_order(setting.number))
            << setting.xhm();
    for (int outside : {0, -1, 231}) EXPECT_EQ(Spacegroup::point_group_order(outside), 0);
}

TEST(Spacegroup, EveryTabulatedSettingIsFoundWithOrWithoutItsNumber) {
    // Settings whose operators another setting shares ("C c c b:1" and
    // "C c c a:1") give the one the whole table names first, also when the
    // file's number sends the search to its group first.
    int checked = 0;
    for (const gemmi::SpaceGroup& setting : gemmi::spacegroup_tables::main) {
        std::vector<std::string> triplets;
        for (const gemmi::Op& op : setting.operations().all_ops_sorted()) triplets.push_back(op.triplet());
        const gemmi::SpaceGroup* first = gemmi::find_spacegroup_by_ops(setting.operations());
        ASSERT_NE(first, nullptr) << setting.xhm();
        // Reversed, so that the written list is new to the caches.
        std::reverse(triplets.begin(), triplets.end());
        EXPECT_EQ(Spacegroup(triplets, setting.number).symbol(), first->xhm()) << setting.xhm();
        std::rotate(triplets.begin(), triplets.begin() + 1, triplets.end());
        EXPECT_EQ(Spacegroup(triplets, 0).symbol(), first->xhm()) << setting.xhm();
        ++checked;
    }
    EXPECT_EQ(checked, 559);
}

// Every tabulated Hall symbol, also written with "_" and tabs for blanks,
// reads to the operations the plain reading gives; a screw subscript on an
// axis left to a diagonal or on a one-fold is unreadable (read as it stands
// its translation would go to no axis).
TEST(SpacegroupOperators, HallSymbolsReadAsTabulatedAndScrewsWithoutAxesAreUnreadable) {
    for (const gemmi::SpaceGroup& setting : gemmi::spacegroup_tables::main) {
        const std::string hall = setting.hall;
        const std::vector<gemmi::Op> expected = gemmi::symops_from_hall(hall.c_str()).all_ops_sorted();
        // Blanks of the symbol itself; a change of basis keeps its spaces.
        const auto basis = std::min(hall.find(" ("), hall.size());
        std::string underscored = hall;
        std::replace(underscored.begin(), underscored.begin() + basis, ' ', '_');
        std::string tabbed = hall;
        std::replace(tabbed.begin(), tabbed.begin() + basis, ' ', '\t');
        tabbed = "\t" + tabbed;
        for (const std::string& written : {hall, underscored, tabbed})
            EXPECT_EQ(SpacegroupOperators::read_hall(written).all_ops_sorted(), expected) << written;
    }
    for (const char* hall : {"-F 4vw 23d'wv", "P 2 11", "P 3 2 31", "P 31 21\""})
        EXPECT_THROW(SpacegroupOperators::read_hall(hall), std::invalid_argument) << hall;
    // A change of basis with numbers beyond the reading's integers, or singular.
    for (const char* hall : {"P 1 (x,y,z+99999999999)", "-P 2 (x,x,z)"})
        EXPECT_THROW(SpacegroupOperators::read_hall(hall), std::exception) << hall;
    EXPECT_EQ(SpacegroupOperators::read_hall("P 2 (x,y,z+1/4)").all_ops_sorted().size(), 2u);
}

}  // namespace

namespace {

TEST(SpacegroupOperators, AListAsWrittenHasOneEntryThatKeepsBothItsReadings) {
    // Texts unlikely to be used by another test, so that counts are this test's own.
    const std::vector<std::string_view> list = {"x,y,z", "-x,-y,z", "-x+1/2,y+1/2,-z", "x+1/2,-y+1/2,-z"};
    const std::size_t misses = SpacegroupOperators::misses();
    auto first = SpacegroupOperators::of(list);
    EXPECT_EQ(SpacegroupOperators::misses(), misses + 1);
    struct Case {
        std::vector<std::string_view> texts;
        bool same_entry;
    };
    const Case cases[] = {
        {list, true},
        {{"x,y,z", "-x,-y,z", "-x+1/2,y+1/2,-z"}, false},                      // a text fewer
        {{"-x,-y,z", "x,y,z", "-x+1/2,y+1/2,-z", "x+1/2,-y+1/2,-z"}, false},   // another order
        {{"x,y,z-x,-y", ",z", "-x+1/2,y+1/2,-z", "x+1/2,-y+1/2,-z"}, false},   // split elsewhere
        {{"x,y,z", "-x,-y,z ", "-x+1/2,y+1/2,-z", "x+1/2,-y+1/2,-z"}, false},  // a blank more
    };
    for (const Case& c : cases) {
        const std::size_t before = SpacegroupOperators::misses();
        EXPECT_EQ(SpacegroupOperators::of(c.texts) == first, c.same_entry);
        EXPECT_EQ(SpacegroupOperators::misses(), before + (c.same_entry ? 0 : 1));
    }
    // Both readings of one entry: the operations and the tabulated group.
    ASSERT_NE(first->operations(), nullptr);
    EXPECT_EQ(first->operations()->sym_ops.size(), 4u);
    EXPECT_EQ(first->group(18).symbol, "P 21 21 2");
    EXPECT_EQ(first->group(0).number, 18);  // found once: the number only ordered the search
    // Another order is another entry whose group the normalised operators give.
    SpacegroupCache& normalised = SpacegroupCache::by_operators();
    const std::size_t hits = normalised.hits();
    auto reordered = SpacegroupOperators::of(cases[2].texts);
    EXPECT_EQ(reordered->group(18).symbol, "P 21 21 2");
    EXPECT_EQ(normalised.hits(), hits + 1);
    // Quotes inside a value: the group reads the triplet, the operations do not.
    auto quoted = SpacegroupOperators::of({"'x,y,z'", "'-x,-y,z'"});
    EXPECT_EQ(quoted->operations(), nullptr);
    EXPECT_TRUE(quoted->group(3).readable);
    EXPECT_EQ(quoted->group(3).symbol, "P 1 1 2");
    auto unreadable = SpacegroupOperators::of({"x,y", "-x,-y,z"});
    EXPECT_EQ(unreadable->operations(), nullptr);
    EXPECT_FALSE(unreadable->group(0).readable);
}

TEST(SpacegroupOperators, TripletsSharedBetweenListsAreReadAlikeAndAloneUnreadable) {
    // Each triplet is read once for every list that holds it, blanks around it aside.
    auto sorted_ops = [](std::initializer_list<std::string_view> texts) {
        const gemmi::GroupOps* ops = SpacegroupOperators::of(texts)->operations();
        return ops == nullptr ? std::vector<gemmi::Op>() : ops->all_ops_sorted();
    };
    const std::vector<gemmi::Op> first = sorted_ops({"x,y,z", "-x,-y,-z+1/3"});
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(sorted_ops({" -x,-y,-z+1/3", "x,y,z\t"}), first);
    // A triplet that cannot be read makes its lists unreadable, not the
    // triplets read beside it.
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(SpacegroupOperators::of({"x,y,z", "-x,-y+1/3"})->operations(), nullptr);
        EXPECT_FALSE(SpacegroupOperators::of({"-x,-y+1/3 ", "x,y,z"})->group(0).readable);
    }
    EXPECT_EQ(sorted_ops({"x,y,z", " -x,-y,-z+1/3 "}), first);
}

TEST(SpacegroupOperators, OperationsAreTheSameWhetherTheGroupOrTheOperationsAreAskedFirst) {
    // Entries made directly, not shared through of(): each asked in its own order.
    const std::vector<std::vector<std::string_view>> lists = {
        {"x,y,z", "-x,-y,-z", "x+1/2,y+1/2,z", "-x+1/2,-y+1/2,-z"},  // centred, centrosymmetric
        {"x,y,z", "-y,x-y,z+1/3", "-x+y,-x,z+2/3"},                  // P 31
        {"x,y,z", "x,y,z+1/2", "-x,-y,z"},                           // a pure shift among them
        {"x, y, z", "-X, Y+1/2, -Z", "a,b,c"},                       // read by the library
        {"x,y,z", "-x,-y"},                                          // unreadable
        {"'x,y,z'", "'-x,-y,z'"},                                    // quoted
    };
    for (const std::vector<std::string_view>& list : lists) {
        const SpacegroupOperators operations_first(list), group_first(list);
        const gemmi::GroupOps* expected = operations_first.operations();
        EXPECT_EQ(group_first.group(0).symbol, operations_first.group(0).symbol) << list[1];
        const gemmi::GroupOps* ops = group_first.operations();
        ASSERT_EQ(ops == nullptr, expected == nullptr) << list[1];
        if (ops == nullptr) continue;
        EXPECT_EQ(ops->sym_ops, expected->sym_ops) << list[1];
        EXPECT_EQ(ops->cen_ops, expected->cen_ops) << list[1];
    }
}

}  // namespace
