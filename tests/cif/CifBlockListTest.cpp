// SPDX-License-Identifier: MIT
// Blocks kept as records until handed out: names, lines, lookups, checks, printing and threads.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cif/ORMACifConsistencyChecker.hpp"
#include "tests/cif/CifTestSupport.hpp"

namespace {

using cif_test::read;

// Blocks: a (empty), b (an item), c (empty), d (a comment before it, an
// item), e (a stray value only), f (empty, the last).
const char* const text =
    "data_a\n"     // 1
    "\n"           // 2
    "data_b\n"     // 3
    "_x 1\n"       // 4
    "data_c\n"     // 5
    "# about d\n"  // 6
    "data_D\n"     // 7
    "_y 2\n"       // 8
    "data_e\n"     // 9
    "'stray'\n"    // 10
    "\n"           // 11
    "data_f\n";    // 12

struct Expected {
    const char* name;
    int line, last_line, end_line;
    bool made_by_reading;
};
const Expected expected[] = {
    {"a", 1, 1, 2, false}, {"b", 3, 4, 4, true},    {"c", 5, 5, 6, false},
    {"D", 7, 8, 8, true},  {"e", 9, 10, 11, false}, {"f", 12, 12, 12, false},
};

TEST(CifBlockList, RecordsKeepNameAndLinesWhenMadeAndTakeItemsAfterwards) {
    THandle<Cif> cif = read(text);
    const CifBlockList& blocks = cif->blocks();
    ASSERT_EQ(blocks.size(), std::size(expected));
    for (std::size_t n = 0; n < blocks.size(); ++n) {
        const Expected& e = expected[n];
        SCOPED_TRACE(e.name);
        EXPECT_EQ(blocks.made(n), e.made_by_reading);
        EXPECT_EQ(blocks.holds_nothing(n), !e.made_by_reading);
        EXPECT_EQ(blocks.name(n), e.name);
        EXPECT_EQ(blocks.line(n), e.line);
        EXPECT_EQ(blocks.last_line(n), e.last_line);
        EXPECT_EQ(blocks.end_line(n), e.end_line);
    }
    EXPECT_EQ(blocks[3]->comments(), "# about d");

    // Handed out: the same object every time, with the record's name and lines.
    THandle<CifDataBlock> a = cif->block(0);
    EXPECT_TRUE(blocks.made(0));
    EXPECT_EQ(a, cif->block(0));
    EXPECT_EQ(a, *cif->block_begin());
    EXPECT_EQ(a->name(), "a");
    EXPECT_EQ(a->line(), 1);
    EXPECT_EQ(a->last_line(), 1);
    EXPECT_EQ(a->end_line(), 2);
    EXPECT_TRUE(blocks.holds_nothing(0));

    // Items added later are found through the document.
    a->set_value("_cell_length_a", "5.0");
    EXPECT_FALSE(blocks.holds_nothing(0));
    EXPECT_EQ(cif->block(0)->value("_cell_length_a"), "5.0");
    a->set_name("renamed");
    EXPECT_EQ(blocks.name(0), "renamed");
    EXPECT_TRUE(cif->block_with_name("RENAMED") == cif->block_begin());
    EXPECT_TRUE(cif->block_with_name("a") == cif->block_end());
}

TEST(CifBlockList, WhatARecordCannotHoldMakesTheBlock) {
    // A name too long for a record, a block whose text runs on past what a
    // record counts.
    const std::string long_name(70000, 'n');
    const std::string long_text =
        "data_" + long_name + "\ndata_far\n" + std::string(70000, '\n') + "stray\ndata_last\n";
    THandle<Cif> cif = read(long_text);
    const CifBlockList& blocks = cif->blocks();
    ASSERT_EQ(blocks.size(), 3u);
    EXPECT_TRUE(blocks.made(0));
    EXPECT_EQ(blocks.name(0), long_name);
    EXPECT_TRUE(blocks.made(1));
    EXPECT_EQ(cif->block(1)->line(), 2);
    EXPECT_EQ(cif->block(1)->last_line(), 70003);
    EXPECT_EQ(cif->block(1)->end_line(), 70003);
    EXPECT_FALSE(blocks.made(2));
    EXPECT_EQ(blocks.line(2), 70004);
}

TEST(CifBlockList, LookupsPassOverRecordsWithoutMakingThem) {
    THandle<Cif> cif = read(std::string(text) + "data_A\n");  // a second "a", line 13
    const CifBlockList& blocks = cif->blocks();
    struct NameCase {
        const char* name;
        long place;  // -1: none
    };
    for (const NameCase& c :
         std::vector<NameCase>{{"a", 0}, {"data_A", 0}, {"d", 3}, {"DATA_f", 5}, {"g", -1}, {"", -1}}) {
        Cif::iterator found = cif->block_with_name(c.name);
        EXPECT_EQ(found == cif->block_end() ? -1L : long(found - cif->block_begin()), c.place) << c.name;
    }
    struct LineCase {
        int line;
        long place;
    };
    for (const LineCase& c : std::vector<LineCase>{
             {0, -1}, {1, 0}, {2, 0}, {3, 1}, {6, 2}, {7, 3}, {11, 4}, {12, 5}, {13, 6}, {14, -1}}) {
        Cif::iterator found = cif->block_at_line(c.line);
        EXPECT_EQ(found == cif->block_end() ? -1L : long(found.index()), c.place) << c.line;
    }
    for (std::size_t n = 0; n < blocks.size(); ++n) EXPECT_EQ(blocks.made(n), n == 1 || n == 3) << n;

    // A block added among records has no lines; the records keep theirs.
    Cif::iterator added = cif->new_block("data_new", cif->block_begin() + 1);
    EXPECT_EQ(added.index(), 1u);
    EXPECT_EQ((*added)->name(), "new");
    EXPECT_EQ(blocks.name(2), "b");
    EXPECT_EQ((*cif->block_at_line(1))->name(), "a");
    EXPECT_EQ((*cif->block_at_line(4))->name(), "b");
}

TEST(CifBlockList, ChecksPrintingAndFilledBlocksAreTheSameForRecordsAndMadeBlocks) {
    CifParserSettings settings;
    const std::string document =
        "data_empty\n" + std::string(text) +
        "data_crystal\n_cell_length_a 5\n_cell_length_b 5\n_symmetry_cell_setting cubic\n";
    auto checked = [&](bool make_all) {
        THandle<Cif> cif = read(document, settings);
        if (make_all) {
            for (const THandle<CifDataBlock>& block : cif->blocks()) EXPECT_FALSE(block.is_null());
        }
        cif->check_mandatory({"_publ_section_title", "_x"}, {"_cell_length_c", "_y"});
        ORMACifConsistencyChecker(cif).check_cif();
        return cif;
    };
    THandle<Cif> records = checked(false);
    THandle<Cif> made = checked(true);
    EXPECT_EQ(cif_test::messages(*records), cif_test::messages(*made));
    EXPECT_FALSE(cif_test::messages(*records).empty());
    for (std::size_t n = 0; n < records->block_count(); ++n)
        EXPECT_EQ(records->blocks().made(n), n == 2 || n == 4 || n == 7) << n;

    std::ostringstream printed_records, printed_made;
    records->print(printed_records);
    made->print(printed_made);
    EXPECT_EQ(printed_records.str(), printed_made.str());
    EXPECT_NE(printed_records.str().find("data_empty\n"), std::string::npos);
    EXPECT_FALSE(records->blocks().made(0));

    // filled() gives what holds something, made blocks emptied or not.
    auto filled_names = [](const Cif& cif) {
        std::vector<std::string> names;
        for (const THandle<CifDataBlock>& block : cif.blocks().filled()) names.push_back(block->name());
        return names;
    };
    const std::vector<std::string> holding{"b", "D", "crystal"};
    EXPECT_EQ(filled_names(*records), holding);
    EXPECT_EQ(filled_names(*made), holding);
    made->block(1)->set_value("_z", "3");
    made->block(2)->remove("_x");
    EXPECT_EQ(filled_names(*made), (std::vector<std::string>{"a", "D", "crystal"}));
}

TEST(CifBlockList, BlocksMadeFromRecordsOutliveTheirDocument) {
    THandle<CifDataBlock> kept;
    THandle<CifDataItem> item;
    {
        THandle<Cif> cif = read(text);
        kept = cif->block(2);
        item = kept->obtain("_added");
        item->add_value("value");
        cif->read_text("data_other\n");  // the document reads anew
        EXPECT_EQ(cif->block(0)->name(), "other");
    }
    EXPECT_EQ(kept->name(), "c");
    EXPECT_EQ(kept->line(), 5);
    EXPECT_EQ(kept->find("_ADDED"), item);
    EXPECT_EQ(kept->value("_added"), "value");
    kept->set_value("_more", "1");
    EXPECT_EQ(kept->item_count(), 2u);
}

TEST(CifBlockList, ThreadsHandingOutTheSameRecordsMakeEachOnce) {
    std::string many;
    for (int n = 0; n < 2000; ++n) many += "data_b" + std::to_string(n) + "\n";
    THandle<Cif> cif = read(many);
    const CifBlockList& blocks = cif->blocks();
    constexpr int threads = 4;
    std::vector<std::vector<const CifDataBlock*>> seen(threads);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            // Each thread starts elsewhere, so that they meet on every record.
            for (std::size_t i = 0; i < blocks.size(); ++i) {
                std::size_t n = (i + std::size_t(t) * 500) % blocks.size();
                seen[t].push_back(blocks[n].get());
            }
        });
    }
    for (std::thread& worker : workers) worker.join();
    for (int t = 0; t < threads; ++t) {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            std::size_t n = (i + std::size_t(t) * 500) % blocks.size();
            ASSERT_EQ(seen[t][i], blocks[n].get()) << t << " " << n;
        }
    }
    EXPECT_EQ(blocks[1999]->name(), "b1999");
}

}  // namespace
