// SPDX-License-Identifier: MIT
// Reading CIF 2.0 text: lists, tables, triple quotes, UTF-8, and what breaks them.
#include <gtest/gtest.h>

#include "tests/cif/CifTestSupport.hpp"

using cif_test::Messages;
using cif_test::messages;
using cif_test::read;

namespace {

std::string cif2(const std::string& body) { return "#\\#CIF_2.0\ndata_a\n" + body; }

TEST(CifReaderCif2, ListsTablesAndTripleQuotesAreValues) {
    THandle<Cif> cif =
        read(cif2("_list [1 2 [3 4] {'k':v \"m\":[5]}]\n"
                  "_t '''multi\nline ' '' text'''\n"
                  "_q \"it's\"\n"
                  "_e []\n"));
    EXPECT_TRUE(cif->errors()->empty()) << cif->errors()->begin()->complete_message();
    EXPECT_EQ(cif->version(), 2);
    THandle<CifDataBlock> block = cif->block(0);
    EXPECT_EQ(block->value("_list"), "[1 2 [3 4] {'k':v \"m\":[5]}]");
    EXPECT_TRUE(block->find("_list")->is_compound(0));
    EXPECT_EQ(block->value("_t"), "multi\nline ' '' text");
    EXPECT_EQ(block->value("_q"), "it's");
    EXPECT_EQ(block->value("_e"), "[]");
    EXPECT_EQ(block->find("_q")->line(), 6);
}

TEST(CifReaderCif2, ListsMaySpanLinesInsideLoops) {
    THandle<Cif> cif = read(cif2("loop_\n_a\n_b\n[1\n 2] x\n{'k':\n;text\n;\n} y\n_c 1\n"));
    EXPECT_TRUE(cif->errors()->empty()) << cif->errors()->begin()->complete_message();
    THandle<CifDataItem> a = cif->block(0)->find("_a");
    ASSERT_EQ(a->size(), 2u);
    EXPECT_EQ(a->value(0), "[1\n 2]");
    EXPECT_EQ(a->value(1), "{'k':\n;text\n;\n}");
    EXPECT_EQ(cif->block(0)->find("_c")->line(), 12);
}

TEST(CifReaderCif2, BrokenListsAndTablesAreReportedWhereTheyOpen) {
    EXPECT_EQ(messages(*read(cif2("_l [1 2\n_b 3\n"))), (Messages{{334, 3}}));
    EXPECT_EQ(messages(*read(cif2("_t {'a':1\n"))), (Messages{{335, 3}}));
    EXPECT_EQ(messages(*read(cif2("_t {a:1}\n"))), (Messages{{336, 3}}));
    EXPECT_EQ(messages(*read(cif2("_t {'a' 1}\n"))), (Messages{{336, 3}}));
    EXPECT_EQ(messages(*read(cif2("_t {'a':}\n"))), (Messages{{344, 3}}));
    EXPECT_EQ(messages(*read(cif2("_a 1 ]\n_b [1}\n"))), (Messages{{337, 3}, {337, 4}}));
    EXPECT_EQ(messages(*read(cif2("_a 'x'y\n_b x[1]\n"))),
              (Messages{{338, 3}, {310, 3}, {338, 4}, {310, 4}}));
    THandle<Cif> cif = read(cif2("_l [1 2\n_b 3\n"));
    EXPECT_EQ(cif->block(0)->value("_b"), "3");
}

TEST(CifReaderCif2, NestingDeeperThanTheLimitIsCutWithoutRecursion) {
    CifParserSettings settings;
    settings.max_nesting = 3;
    THandle<Cif> cif = read(cif2("_a [[[[[1]]]]]\n_b 2\n"), settings);
    EXPECT_EQ(messages(*cif), (Messages{{331, 3}}));
    EXPECT_EQ(cif->block(0)->value("_a"), "[[[[[1]]]]]");
    EXPECT_EQ(cif->block(0)->value("_b"), "2");
    std::string deep(200000, '[');
    cif = read(cif2("_a " + deep + "\n_b 2\n"));
    EXPECT_EQ(messages(*cif), (Messages{{318, 3}, {331, 3}, {334, 3}}));
    EXPECT_EQ(cif->block(0)->value("_b"), "2");
}

TEST(CifReaderCif2, TextMustBeValidUtf8WithoutControlCharacters) {
    THandle<Cif> cif = read(cif2("_a caf\xC3\xA9\n_b \xC3\x28\n_c \xC2\x85\n_d \xE0\x80\x80\n_e \x07\n"));
    EXPECT_EQ(messages(*cif), (Messages{{333, 4}, {302, 5}, {333, 6}, {302, 7}}));
    EXPECT_EQ((*cif->errors())[1].detail(), "U+0085");
    EXPECT_EQ(cif->block(0)->value("_a"), "caf\xC3\xA9");
}

TEST(CifReaderCif2, LinesAreMeasuredInCharacters) {
    CifParserSettings settings;
    settings.line_length = 10;
    EXPECT_TRUE(read(cif2("_a \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\n"), settings)->errors()->empty());
    EXPECT_EQ(messages(*read(cif2("_a \xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9wxyz\n"), settings)),
              (Messages{{318, 3}}));
}

TEST(CifReaderCif2, Cif11NameLimitsDoNotApply) {
    CifParserSettings settings;
    settings.line_length = 0;
    EXPECT_TRUE(read(cif2("_" + std::string(100, 'n') + " 1\n"), settings)->errors()->empty());
}

TEST(CifReaderCif2, UnknownVersionCodesAreReadAsCif11) {
    THandle<Cif> cif = read("#\\#CIF_3.0\ndata_a\n_a [x]\n");
    EXPECT_EQ(messages(*cif), (Messages{{339, 1}, {330, 3}}));
    EXPECT_EQ(cif->version(), 1);
    EXPECT_TRUE(read("#\\#CIF_1.1\ndata_a\n_a 1\n")->errors()->empty());
    cif = read("\xEF\xBB\xBF#\\#CIF_2.0\ndata_a\n_a 1\n");
    EXPECT_TRUE(cif->errors()->empty());
    EXPECT_EQ(cif->version(), 2);
}

TEST(CifReaderCif2, UnterminatedTripleQuotesStopBeforeTheNextBlock) {
    THandle<Cif> cif = read(cif2("_a '''open\ntext\ndata_b\n_b 1\n"));
    EXPECT_EQ(messages(*cif), (Messages{{305, 3}}));
    EXPECT_EQ(cif->block(0)->value("_a"), "open\ntext");
    ASSERT_EQ(cif->blocks().size(), 2u);
    EXPECT_EQ(cif->block(1)->line(), 5);
}

}  // namespace
