// SPDX-License-Identifier: MIT
// Printing blocks as CIF 1.1 and 2.0 text that reads back unchanged within the line limit.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "cif/CifPrinter.hpp"
#include "tests/cif/CifTestSupport.hpp"

using cif_test::read;
using Form = CifPrinter::Form;

namespace {

std::string printed(const CifDataBlock& block, CifWriteSettings settings = CifWriteSettings()) {
    std::ostringstream out;
    block.print(out, settings);
    return out.str();
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST(CifPrinter, Cif11FormsAreTheSimplestThatReadBack) {
    auto form = [](const std::string& value, bool quoted = false) {
        return CifPrinter::choose_form(value, quoted, false, 1);
    };
    EXPECT_EQ(form("C12H22O11"), Form::bare);
    EXPECT_EQ(form("O'Brien"), Form::bare);
    EXPECT_EQ(form("loop_x"), Form::bare);
    EXPECT_EQ(form("?"), Form::bare);
    EXPECT_EQ(form("?", true), Form::single_quoted);
    EXPECT_EQ(form("two words"), Form::single_quoted);
    EXPECT_EQ(form("it's here"), Form::single_quoted);
    EXPECT_EQ(form("don' t"), Form::double_quoted);
    EXPECT_EQ(form("' and \" "), Form::text_field);
    EXPECT_EQ(form(""), Form::single_quoted);
    for (const char* special : {"_x", "#x", "$x", "'x", "\"x", ";x", "[x", "]x", "data_x", "DATA_", "save_x",
                                "loop_", "global_", "Stop_"}) {
        EXPECT_EQ(form(special), Form::single_quoted) << special;
    }
    EXPECT_EQ(form("line\nbreak"), Form::text_field);
    EXPECT_EQ(CifPrinter::format("a b", Form::single_quoted), "'a b'");
    EXPECT_EQ(CifPrinter::format("x\ny", Form::text_field), ";x\ny\n;");
}

TEST(CifPrinter, Cif20FormsFollowItsQuotingRules) {
    auto form = [](const std::string& value) { return CifPrinter::choose_form(value, false, false, 2); };
    EXPECT_EQ(form("plain"), Form::bare);
    EXPECT_EQ(form("a[1]"), Form::single_quoted);
    EXPECT_EQ(form("{x}"), Form::single_quoted);
    EXPECT_EQ(form("it's"), Form::bare);
    EXPECT_EQ(form("it's here"), Form::double_quoted);
    EXPECT_EQ(form("it's \"so\""), Form::triple_single);
    EXPECT_EQ(form("''' and \"x\" end"), Form::triple_double);
    EXPECT_EQ(form("''' and \"x\""), Form::text_field);
    EXPECT_EQ(form("a\n;b"), Form::triple_single);
    EXPECT_EQ(CifPrinter::choose_form("[1 2]", false, true, 2), Form::verbatim);
}

TEST(CifPrinter, BlockLayoutAlignsValuesAndKeepsLoopsInPlace) {
    THandle<Cif> cif = read(
        "data_demo\n"
        "_cell_length_a 10.5\n"
        "loop_\n_atom_site_label\n_atom_site_type\nC1 C\nO12 O\n"
        "_title 'two words'\n"
        "_note\n;\nline\n;\n");
    std::string text = printed(*cif->block(0));
    std::vector<std::string> lines = lines_of(text);
    ASSERT_GE(lines.size(), 9u) << text;
    EXPECT_EQ(lines[0], "data_demo");
    EXPECT_EQ(lines[1], "_cell_length_a                   10.5");
    EXPECT_EQ(lines[2], "loop_");
    EXPECT_EQ(lines[5], "C1  C");
    EXPECT_EQ(lines[6], "O12 O");
    EXPECT_EQ(lines[7], "_title                           'two words'");
    EXPECT_EQ(text.substr(text.find("_note")), "_note\n;\nline\n;\n");
}

TEST(CifPrinter, LinesStayWithinTheLimitWhereCifAllows) {
    CifDataBlock block(THandle<CifDictionary>(), "data_wide", -1);
    block.set_value("_a_rather_long_data_name_for_the_limit", "a value that does not fit beside its name");
    std::vector<std::string> names;
    for (int c = 0; c < 6; ++c) names.push_back("_loop_column_" + std::to_string(c));
    block.create_loop(names);
    for (int c = 0; c < 6; ++c) {
        THandle<CifDataItem> item = block.find(names[c]);
        item->clear_values();
        for (int r = 0; r < 4; ++r) item->add_value("value" + std::to_string(r * 10 + c));
    }
    CifWriteSettings settings;
    settings.line_length = 30;
    std::string text = printed(block, settings);
    for (const std::string& line : lines_of(text)) {
        bool single_value = line.find(' ') == std::string::npos || line[0] == '\'';
        if (!single_value) {
            EXPECT_LE(line.size(), 30u) << line;
        }
    }
    THandle<Cif> again = read(text, CifParserSettings{0});
    EXPECT_TRUE(again->errors()->empty());
    EXPECT_EQ(again->block(0)->value("_a_rather_long_data_name_for_the_limit"),
              "a value that does not fit beside its name");
    EXPECT_EQ(again->block(0)->find("_loop_column_5")->value(3), "value35");
}

TEST(CifPrinter, ItemsWithoutValuesAndShortColumnsPrintAsUnknown) {
    CifDataBlock block(THandle<CifDictionary>(), "data_x", -1);
    block.obtain("_empty");
    block.create_loop({"_p", "_q"});
    block.find("_p")->add_value("1");
    block.find("_p")->add_value("2");
    block.find("_q")->add_value("3");
    THandle<Cif> again = read(printed(block));
    EXPECT_TRUE(again->errors()->empty());
    EXPECT_EQ(again->block(0)->value("_empty"), "?");
    EXPECT_EQ(again->block(0)->find("_q")->value(1), "?");
}

TEST(CifPrinter, CommentsArePrintedWithTheirItems) {
    THandle<Cif> cif = read("# lead\ndata_a\n# about\n_a 1 # note\nloop_\n_x\n1\n# inner\n2\n# end\n");
    std::string text = printed(*cif->block(0));
    EXPECT_EQ(text,
              "# lead\ndata_a\n# about\n_a                               1 # note\nloop_\n_x\n# "
              "inner\n1\n2\n# end\n");
    CifWriteSettings quiet;
    quiet.write_comments = false;
    EXPECT_EQ(printed(*cif->block(0), quiet).find('#'), std::string::npos);
}

// A CIF 1.1 document whose first comment is a version code further down
// prints under a 1.1 code of its own, so the code is not read as the
// printed text's version (a value quoted as CIF 1.1 allows would then fail).
TEST(CifPrinter, AVersionCodeCommentDoesNotBecomeThePrintedTextsVersion) {
    struct Case {
        const char* source;
        const char* start;  // the printed text's beginning
    };
    const Case cases[] = {
        {"\n\n#\\#CIF_2.0\ndata_b\n_l \"k'\"\n", "#\\#CIF_1.1\n#\\#CIF_2.0\ndata_b\n"},
        {"\n#\\#CIF_9.9 later\ndata_b\n_l \"k'\"\n", "#\\#CIF_1.1\n#\\#CIF_9.9 later\ndata_b\n"},
        {"#\\#CIF_1.1\ndata_b\n_l \"k'\"\n", "#\\#CIF_1.1\ndata_b\n"},
        {"# about\n#\\#CIF_2.0\ndata_b\n_l \"k'\"\n", "# about\n#\\#CIF_2.0\ndata_b\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.source);
        THandle<Cif> cif = read(c.source);
        ASSERT_EQ(cif->version(), 1);
        std::ostringstream out;
        cif->print(out, CifWriteSettings());
        EXPECT_EQ(out.str().rfind(c.start, 0), 0u) << out.str();
        THandle<Cif> again = read(out.str());
        EXPECT_EQ(again->version(), 1);
        EXPECT_EQ(again->errors()->errors_of_type(CifError::error), 0);
        EXPECT_EQ(again->block(0)->value("_l"), "k'");
    }
}

// Values made of the characters that need care in CIF.
std::string awkward_value(std::mt19937& random, bool allow_line_start_semicolon) {
    static const std::vector<std::string> pieces = {
        " ", "\t",     "'",  "\"",  "#",   "_",      ";",     "$",     "[",       "]",
        "{", "}",      "\n", "?",   ".",   "data_",  "loop_", "save_", "global_", "stop_",
        "x", "1.5(2)", "' ", "\" ", "'''", "\"\"\"", ":",     "abc"};
    std::uniform_int_distribution<std::size_t> count(0, 6);
    std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
    std::string value;
    for (std::size_t n = count(random); n > 0; --n) value += pieces[pick(random)];
    if (!allow_line_start_semicolon) {
        for (std::size_t at = value.find("\n;"); at != std::string::npos; at = value.find("\n;"))
            value[at + 1] = ':';
    }
    return value;
}

void expect_round_trip(int version, int line_length) {
    std::mt19937 random(20240517u + static_cast<unsigned>(version * 1000 + line_length));
    CifDataBlock block(THandle<CifDictionary>(), "data_round", -1);
    std::vector<std::string> values;
    for (int n = 0; n < 300; ++n) {
        values.push_back(awkward_value(random, version >= 2));
        block.set_value("_single_" + std::to_string(n), values.back());
    }
    block.create_loop({"_col_a", "_col_b", "_col_c"});
    for (const char* name : {"_col_a", "_col_b", "_col_c"}) {
        THandle<CifDataItem> item = block.find(name);
        item->clear_values();
        for (int r = 0; r < 100; ++r) item->add_value(awkward_value(random, version >= 2));
    }
    CifWriteSettings settings;
    settings.cif_version = version;
    settings.line_length = line_length;
    std::ostringstream out;
    if (version >= 2) out << "#\\#CIF_2.0\n";
    block.print(out, settings);
    CifParserSettings reading;
    reading.line_length = 0;
    THandle<Cif> again = read(out.str(), reading);
    ASSERT_EQ(again->errors()->errors_of_type(CifError::error), 0)
        << again->errors()->begin()->complete_message() << "\n"
        << out.str();
    ASSERT_EQ(again->blocks().size(), 1u);
    THandle<CifDataBlock> back = again->block(0);
    for (int n = 0; n < 300; ++n) EXPECT_EQ(back->value("_single_" + std::to_string(n)), values[n]) << n;
    for (const char* name : {"_col_a", "_col_b", "_col_c"}) {
        THandle<CifDataItem> original = block.find(name);
        THandle<CifDataItem> read_back = back->find(name);
        ASSERT_EQ(read_back->size(), original->size()) << name;
        for (unsigned int r = 0; r < original->size(); ++r)
            EXPECT_EQ(read_back->value(r), original->value(r));
    }
}

TEST(CifPrinter, AwkwardValuesReadBackUnchangedInCif11) {
    expect_round_trip(1, 80);
    expect_round_trip(1, 20);
}

TEST(CifPrinter, AwkwardValuesReadBackUnchangedInCif20) {
    expect_round_trip(2, 80);
    expect_round_trip(2, 20);
}

TEST(CifPrinter, ReadValuesKeepTheirQuotingAndListsTheirText) {
    THandle<Cif> cif = read("#\\#CIF_2.0\ndata_a\n_q '?'\n_u ?\n_l [1 'a b' {'k':2}]\n");
    CifWriteSettings settings;
    settings.cif_version = 2;
    std::string text = printed(*cif->block(0), settings);
    EXPECT_NE(text.find("'?'"), std::string::npos);
    EXPECT_NE(text.find("[1 'a b' {'k':2}]"), std::string::npos);
    THandle<Cif> again = read("#\\#CIF_2.0\n" + text);
    EXPECT_TRUE(again->errors()->empty());
    EXPECT_TRUE(again->block(0)->find("_q")->is_quoted(0));
    EXPECT_FALSE(again->block(0)->find("_u")->is_quoted(0));
}

TEST(CifPrinter, StreamOperatorUsesTheDefaultSettings) {
    THandle<Cif> cif = read("data_a\n_a 1\n");
    std::ostringstream out;
    out << *cif->block(0);
    EXPECT_EQ(out.str(), printed(*cif->block(0)));
}

}  // namespace
