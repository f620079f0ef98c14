// SPDX-License-Identifier: MIT
// The scan of plain DDL1 texts finds what the reader finds and gives up where it reports.
// reports.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDdl1Scan.hpp"

namespace {

// The document reader's view of text, as a dictionary reads it.
THandle<Cif> read_document(const std::string& text) {
    CifParserSettings settings;
    settings.line_length = 0;
    settings.check_data_names = false;
    THandle<Cif> cif(new Cif());
    cif->read_text(text, settings);
    return cif;
}

std::string messages_of(const Cif& cif) {
    std::string messages;
    for (const CifError& error : *cif.errors()) messages += error.complete_message() + "\n";
    return messages;
}

// Every block, item, value, quoting and line the scan found, as the document has them.
void expect_as_document(const CifDdl1Scan& scan, const Cif& cif) {
    ASSERT_EQ(scan.blocks().size(), cif.blocks().size());
    for (std::size_t b = 0; b < scan.blocks().size(); ++b) {
        const CifDdl1Scan::Block& block = scan.blocks()[b];
        const CifDataBlock& document = *cif.blocks()[b];
        EXPECT_EQ(block.name, document.name());
        EXPECT_EQ(block.line, document.line()) << block.name;
        EXPECT_EQ(block.items().size(), document.item_count()) << block.name;
        for (const CifDdl1Scan::Item& item : block.items()) {
            const std::string_view name = block.name_of(item);
            const THandle<CifDataItem> found = document.find(name);
            ASSERT_FALSE(found.is_null()) << name;
            EXPECT_EQ(item.line, found->line()) << name;
            const std::span<const CifDdl1Scan::Value> values = block.values(item);
            ASSERT_EQ(values.size(), found->size()) << name;
            for (std::size_t n = 0; n < values.size(); ++n) {
                EXPECT_EQ(block.text(values[n]), found->value_view(n)) << name << ' ' << n;
                EXPECT_EQ(values[n].quoted != 0, found->is_quoted(n)) << name << ' ' << n;
            }
            EXPECT_EQ(block.find(name), &item);
        }
    }
}

struct Case {
    const char* what;
    std::string text;
    bool scanned;  // whether the scan takes it (never where the reader reports anything)
};

TEST(CifDdl1Scan, FindsWhatTheReaderFindsOrGivesUpWhereItReports) {
    const std::string head = "#\\#CIF_1.1\ndata_on_this_dictionary\n_dictionary_name t.dic\n";
    const std::string block = "data_a\n    _name   '_a_b'\n\t_type numb\n_definition\n;\n text\n;\n";
    const std::vector<Case> cases = {
        {"a plain dictionary", head + block, true},
        {"looped names, quotes and text fields",
         head + "data_ab\nloop_ _name '_a_x' \"_a_y\"\n_DEFINITION\n;\n one\n;  # a comment\nloop_\n"
                "_enumeration _enumeration_detail\n ? 'it's' . \"a\"b\" ;x ';'\n",
         true},
        {"an empty quoted value and a field closed at the text's end", head + "data_e\n_units ''\n_x\n;\n;\n",
         true},
        {"no header", block, true},
        {"a line of 2048 bytes", head + block + "_long " + std::string(2042, 'x') + "\n", true},
        {"a line of 2049 bytes", head + block + "_long " + std::string(2043, 'x') + "\n", false},
        {"no final line end", head + block.substr(0, block.size() - 1), false},
        {"CR LF", "data_a\r\n_name x\r\n", false},
        {"a tab-free control byte", head + block + "_x a\x01\n", false},
        {"a byte above ASCII", head + block + "_x \xC3\xA9\n", false},
        {"a CIF 2.0 header", "#\\#CIF_2.0\n" + block, false},
        {"an unknown header", "#\\#CIF_9.9\n" + block, false},
        {"an item before any block", "_x 1\n" + block, false},
        {"no block", "# nothing\n", false},
        {"a block without a name", head + "data_\n_x 1\n", false},
        {"a block named twice", head + block + "data_A\n_name '_c'\n", false},
        {"a name twice in a block", head + block + "_TYPE char\n", false},
        {"a looped name twice", head + "data_l\nloop_ _x _X 1 2\n", false},
        {"a name without a value", head + block + "_x\n", false},
        {"a name before a heading", head + "data_n\n_x\ndata_m\n_y 1\n", false},
        {"a stray value", head + block + "_x 1 2\n", false},
        {"a loop without names", head + "data_l\nloop_\n1 2\n", false},
        {"a loop without values", head + "data_l\nloop_ _x _y\ndata_m\n_z 1\n", false},
        {"a short loop row", head + "data_l\nloop_ _x _y 1 2 3\n", false},
        {"an unterminated quote", head + "data_q\n_x 'open\n", false},
        {"an unterminated text field", head + "data_t\n_x\n;\n never closed\n", false},
        {"text after a closing semicolon", head + "data_t\n_x\n;\n t\n;y\n", false},
        {"a save frame", head + "data_s\nsave_f\n_x 1\nsave_\n", false},
        {"global_", head + "global_\n" + block, false},
        {"stop_", head + block + "stop_\n", false},
        {"a reserved first character", head + "data_r\n_x $y\n", false},
        {"a bracket", head + "data_r\n_x [y]\n", false},
        {"a data name of 76 characters", head + "data_n\n_" + std::string(75, 'n') + " 1\n", false},
        {"a block name of 76 characters", head + "data_" + std::string(76, 'b') + "\n_x 1\n", false},
        {"a data name of 75 characters", head + "data_n\n_" + std::string(74, 'n') + " 1\n", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const THandle<Cif> cif = read_document(c.text);
        const std::string messages = messages_of(*cif);
        if (c.scanned) {
            EXPECT_EQ(messages, "");
        }
        CifDdl1Scan scan;
        ASSERT_EQ(scan.scan(c.text), c.scanned) << messages;
        if (c.scanned) {
            expect_as_document(scan, *cif);
        } else {
            EXPECT_TRUE(scan.blocks().empty());
        }
    }
}

TEST(CifDdl1Scan, ARefusedTextLeavesNothingOfAnEarlierScan) {
    CifDdl1Scan scan;
    ASSERT_TRUE(scan.scan("data_a\n_x 1\n"));
    ASSERT_EQ(scan.blocks().size(), 1u);
    EXPECT_FALSE(scan.scan("data_a\n_x 1\ndata_b\n_y\n"));
    EXPECT_TRUE(scan.blocks().empty());
    ASSERT_TRUE(scan.scan("data_c\n_z 2\n"));
    ASSERT_EQ(scan.blocks().size(), 1u);
    EXPECT_EQ(scan.blocks()[0].name, "c");
}

}  // namespace
