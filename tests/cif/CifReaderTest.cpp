// SPDX-License-Identifier: MIT
// Reading CIF 1.1 text into blocks, items and values, and every problem with its line.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/cif/CifTestSupport.hpp"

using cif_test::Messages;
using cif_test::messages;
using cif_test::read;

namespace {

const char* const clean_text =
    "data_one\n"
    "_cell_length_a 10.5\n"
    "_title 'a quoted value'\n"
    "loop_\n"
    "_atom_site_label\n"
    "_atom_site_x\n"
    "C1 0.1\n"
    "C2 0.2\n"
    "data_two\n"
    "_note\n"
    ";\n"
    "text line one\n"
    "text line two\n"
    ";\n";

TEST(CifReader, CleanTextGivesBlocksItemsValuesAndLinesWithoutMessages) {
    THandle<Cif> cif = read(clean_text);
    EXPECT_TRUE(cif->errors()->empty()) << cif->errors()->begin()->complete_message();
    ASSERT_EQ(cif->blocks().size(), 2u);
    THandle<CifDataBlock> one = cif->block(0);
    EXPECT_EQ(one->name(), "one");
    EXPECT_EQ(one->line(), 1);
    EXPECT_EQ(one->last_line(), 8);
    EXPECT_EQ(one->value("_CELL_LENGTH_A"), "10.5");
    EXPECT_EQ(one->find("_cell_length_a")->line(), 2);
    EXPECT_EQ(one->value("_title"), "a quoted value");
    EXPECT_TRUE(one->find("_title")->is_quoted(0));
    THandle<CifDataItem> x = one->find("_atom_site_x");
    ASSERT_FALSE(x.is_null());
    EXPECT_TRUE(x->is_looped());
    EXPECT_EQ(x->size(), 2u);
    EXPECT_EQ(x->value(1), "0.2");
    EXPECT_EQ(x->line(), 6);
    THandle<CifDataBlock> two = cif->block(1);
    EXPECT_EQ(two->line(), 9);
    EXPECT_EQ(two->value("_note"), "\ntext line one\ntext line two");
    EXPECT_EQ(cif->line_count(), 14);
    EXPECT_TRUE(cif->block(2).is_null());
}

TEST(CifReader, LineEndsOfEveryKindGiveTheSameDocument) {
    std::string crlf, cr;
    for (char c : std::string(clean_text)) {
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
        cr += c == '\n' ? '\r' : c;
    }
    for (const std::string& text : {crlf, cr}) {
        THandle<Cif> cif = read(text);
        EXPECT_TRUE(cif->errors()->empty());
        ASSERT_EQ(cif->blocks().size(), 2u);
        EXPECT_EQ(cif->block(1)->line(), 9);
        EXPECT_EQ(cif->block(1)->value("_note"), "\ntext line one\ntext line two");
        EXPECT_EQ(cif->block(0)->find("_atom_site_x")->line(), 6);
    }
}

TEST(CifReader, ReadsFromAStreamAsFromText) {
    std::istringstream stream(clean_text);
    Cif cif;
    cif.read(stream, CifParserSettings());
    EXPECT_TRUE(cif.errors()->empty());
    EXPECT_EQ(cif.blocks().size(), 2u);
    EXPECT_EQ(cif.block(0)->value("_atom_site_label"), "C1");
}

TEST(CifReader, UnterminatedQuoteEndsAtTheLineEnd) {
    THandle<Cif> cif = read("data_a\n_a 'open value\n_b \"also open\n_c 3\n");
    EXPECT_EQ(messages(*cif), (Messages{{305, 2}, {305, 3}}));
    EXPECT_EQ(cif->block(0)->value("_a"), "open value");
    EXPECT_EQ(cif->block(0)->value("_b"), "also open");
    EXPECT_EQ(cif->block(0)->value("_c"), "3");
}

TEST(CifReader, QuotesInsideValuesFollowTheCif11Rule) {
    THandle<Cif> cif = read("data_a\n_a 'it's here'\n_b \"say \"hi\"\"\n_c O'Brien\n");
    EXPECT_TRUE(cif->errors()->empty());
    EXPECT_EQ(cif->block(0)->value("_a"), "it's here");
    EXPECT_EQ(cif->block(0)->value("_b"), "say \"hi\"");
    EXPECT_EQ(cif->block(0)->value("_c"), "O'Brien");

    // Long values, long runs of blanks and long names, with the inner quote,
    // the closing quote or the line end at every place of a sixteen-byte
    // stretch, and the end of the text close behind.
    for (std::size_t at = 0; at < 36; ++at) {
        const std::string before(at, 'x'), after(40 - at, 'y'), blanks(at / 2 + 1, ' ');
        const std::string name = "_n" + std::string(at / 2, 'm');
        const std::string text = "data_a\n_a" + blanks + "'" + before + "'s" + after + "'\n" + name + blanks +
                                 "'" + before + "'\n_c '" + before + "\n_d 1";
        THandle<Cif> read_back = read(text);
        SCOPED_TRACE(at);
        EXPECT_EQ(messages(*read_back), (Messages{{305, 4}, {340, 5}}));
        EXPECT_EQ(read_back->block(0)->value("_a"), before + "'s" + after);
        EXPECT_EQ(read_back->block(0)->value(name), before);
        EXPECT_EQ(read_back->block(0)->value("_c"), before);
        EXPECT_EQ(read_back->block(0)->value("_d"), "1");
    }
}

TEST(CifReader, UnterminatedTextFieldStopsBeforeTheNextBlock) {
    THandle<Cif> cif = read("data_a\n_a\n;\ntext\ndata_b\n_b 1\n");
    EXPECT_EQ(messages(*cif), (Messages{{306, 3}}));
    EXPECT_EQ(cif->errors()->begin()->message(), "Text field not terminated; taken to end at line: 4");
    ASSERT_EQ(cif->blocks().size(), 2u);
    EXPECT_EQ(cif->block(0)->value("_a"), "\ntext");
    EXPECT_EQ(cif->block(1)->value("_b"), "1");
    EXPECT_EQ(cif->block(1)->line(), 5);
}

TEST(CifReader, UnterminatedTextFieldWithoutALaterBlockRunsToTheEnd) {
    THandle<Cif> cif = read("data_a\n_a\n;text\n_b 1\n");
    EXPECT_EQ(messages(*cif), (Messages{{306, 3}}));
    EXPECT_EQ(cif->errors()->begin()->detail(), "4");
    EXPECT_EQ(cif->block(0)->value("_a"), "text\n_b 1");
}

TEST(CifReader, LoopsWithMissingValuesAreFilledAndReported) {
    THandle<Cif> cif = read("data_a\nloop_\n_x\n_y\n1 2\n3\n_z 5\n");
    EXPECT_EQ(messages(*cif), (Messages{{307, 2}}));
    THandle<CifDataItem> y = cif->block(0)->find("_y");
    ASSERT_EQ(y->size(), 2u);
    EXPECT_EQ(y->value(1), "?");
    EXPECT_EQ(cif->block(0)->value("_z"), "5");
}

TEST(CifReader, LoopsWithoutValuesOrNamesAreReported) {
    THandle<Cif> cif = read("data_a\nloop_\n_x\n_y\nloop_\nloop_\n_w\n1\n");
    EXPECT_EQ(messages(*cif), (Messages{{308, 2}, {317, 5}}));
    THandle<CifDataItem> x = cif->block(0)->find("_x");
    ASSERT_FALSE(x.is_null());
    EXPECT_TRUE(x->is_looped());
    EXPECT_FALSE(x->has_value());
    EXPECT_EQ(cif->block(0)->value("_w"), "1");
    EXPECT_TRUE(cif->block(0)->find("_w")->is_looped());
}

TEST(CifReader, DataNamesWithoutValuesAndValuesWithoutNames) {
    THandle<Cif> cif = read("data_a\n_a\n_b 1 2 3\n_c 4\n5\n_d");
    EXPECT_EQ(messages(*cif), (Messages{{309, 2}, {310, 3}, {310, 5}, {309, 6}, {340, 6}}));
    EXPECT_FALSE(cif->block(0)->find("_a").is_null());
    EXPECT_FALSE(cif->block(0)->has_value("_a"));
    EXPECT_EQ(cif->block(0)->value("_b"), "1");
    EXPECT_EQ(cif->block(0)->value("_c"), "4");
}

TEST(CifReader, RepeatedBlockNamesAreFoundAmongManyBlocks) {
    // Enough blocks for the table of names to grow several times.
    std::string text;
    for (int b = 0; b < 300; ++b) text.append("data_b").append(std::to_string(b)).append("\n");
    text += "data_B7\ndata_b299\ndata_b2999\ndata_b30\n";
    THandle<Cif> cif = read(text);
    std::vector<std::string> repeated;
    for (auto it = cif->errors()->begin(); it != cif->errors()->end(); ++it)
        if (it->id() == CifError::duplicate_block_name)
            repeated.push_back(std::to_string(it->line()) + ": " + it->message());
    EXPECT_EQ(repeated, (std::vector<std::string>{"301: Duplicate data block name B7, first at line: 8",
                                                  "302: Duplicate data block name b299, first at line: 300",
                                                  "304: Duplicate data block name b30, first at line: 31"}));
    EXPECT_EQ(cif->block_count(), 304u);
}

TEST(CifReader, DataBeforeTheFirstBlockIsReportedOnce) {
    THandle<Cif> cif = read("_a 1\n_b 2\nloop_\n_c\n1\ndata_x\n_d 3\n");
    EXPECT_EQ(messages(*cif), (Messages{{311, 1}}));
    ASSERT_EQ(cif->blocks().size(), 1u);
    EXPECT_TRUE(cif->block(0)->find("_a").is_null());
    EXPECT_EQ(cif->block(0)->value("_d"), "3");
}

TEST(CifReader, DuplicatesKeepTheFirstAndNameItsLine) {
    THandle<Cif> cif = read("data_x\n_a 1\n_A 2\nloop_\n_a\n_b\n3 4\ndata_X\n_a 5\n");
    EXPECT_EQ(messages(*cif), (Messages{{312, 3}, {312, 5}, {313, 8}}));
    auto it = cif->errors()->begin();
    EXPECT_EQ(it->message(), "Duplicate data name _A, first at line: 2");
    EXPECT_EQ((it + 2)->message(), "Duplicate data block name X, first at line: 1");
    EXPECT_EQ(cif->block(0)->value("_a"), "1");
    EXPECT_EQ(cif->block(0)->value("_b"), "4");
    ASSERT_EQ(cif->blocks().size(), 2u);
    EXPECT_EQ(cif->block(1)->value("_a"), "5");
}

TEST(CifReader, ReservedWordsAreReportedAndSkipped) {
    THandle<Cif> cif = read("data_a\nglobal_\n_a 1\nstop_\nsave_frame\n_b 2\nsave_\n");
    EXPECT_EQ(messages(*cif), (Messages{{314, 2}, {315, 4}, {316, 5}, {316, 7}}));
    EXPECT_EQ(cif->block(0)->value("_a"), "1");
    EXPECT_EQ(cif->block(0)->value("_b"), "2");
}

TEST(CifReader, SaveFramesAreReadWhenAllowed) {
    CifParserSettings settings;
    settings.allow_save_frames = true;
    THandle<Cif> cif =
        read("data_dict\n_top 0\nsave_one\n_a 1\nsave_\nsave_two\n_a 2\ndata_next\n", settings);
    EXPECT_EQ(messages(*cif), (Messages{{345, 6}}));
    const auto& frames = cif->block(0)->save_frames();
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0]->name(), "one");
    EXPECT_EQ(frames[0]->value("_a"), "1");
    EXPECT_EQ(frames[1]->value("_a"), "2");
    EXPECT_TRUE(cif->block(0)->find("_a").is_null());
    EXPECT_EQ(cif->block(1)->name(), "next");
}

TEST(CifReader, LineLengthFollowsTheSettingAndCifsOwnLimit) {
    std::string text = "data_a\n_a " + std::string(30, 'x') + "\n_b " + std::string(3000, 'y') + "\n";
    CifParserSettings settings;
    settings.line_length = 20;
    THandle<Cif> cif = read(text, settings);
    EXPECT_EQ(messages(*cif), (Messages{{318, 2}, {318, 3}}));
    EXPECT_EQ(cif->errors()->begin()->message(), "Line is longer than 20 characters");
    settings.line_length = 0;
    cif = read(text, settings);
    EXPECT_EQ(messages(*cif), (Messages{{318, 3}}));
    EXPECT_EQ(cif->errors()->begin()->detail(), "2048");
}

TEST(CifReader, NamesLongerThanCif11AllowsAreReported) {
    std::string long_name = "_" + std::string(75, 'n');
    std::string long_block = std::string(76, 'b');
    CifParserSettings settings;
    settings.line_length = 0;
    THandle<Cif> cif =
        read("data_" + long_block + "\n" + long_name + " 1\n_" + std::string(74, 'k') + " 2\n", settings);
    EXPECT_EQ(messages(*cif), (Messages{{321, 1}, {319, 2}}));
    EXPECT_EQ(cif->block(0)->value(long_name), "1");
}

TEST(CifReader, EmptyBlockNameAndEmptyTexts) {
    EXPECT_EQ(messages(*read("data_\n_a 1\n")), (Messages{{322, 1}}));
    EXPECT_EQ(messages(*read("")), (Messages{{323, 1}}));
    EXPECT_EQ(messages(*read("# only a comment\n\n")), (Messages{{323, 1}}));
    EXPECT_EQ(read("")->line_count(), 0);
}

TEST(CifReader, CharactersCif11DoesNotAllowAreReportedOncePerLine) {
    std::string text = "data_a\n_a x\x07y\x07\n_b \x0Bv\n_c \x0C\n_d caf\xE9\n_e n";
    text += '\0';
    text += "l\n_f \x7F\n";
    THandle<Cif> cif = read(text);
    EXPECT_EQ(messages(*cif), (Messages{{302, 2}, {302, 3}, {302, 4}, {302, 5}, {302, 6}, {302, 7}}));
    EXPECT_EQ(cif->errors()->begin()->message(), "Character 0x07 is not allowed in CIF");
    EXPECT_EQ((*cif->errors())[4].detail(), "0x00");
    EXPECT_EQ(cif->block(0)->value("_a"), "x\x07y\x07");
    EXPECT_EQ(cif->block(0)->value("_e"), std::string("n\0l", 3));
    EXPECT_EQ(cif->block(0)->value("_d"), "caf\xE9");
}

TEST(CifReader, EndOfFileCharacterByteOrderMarkAndMissingLineEnd) {
    THandle<Cif> cif = read("data_a\r\n_a 1\r\n\x1A");
    EXPECT_EQ(messages(*cif), (Messages{{341, 3}}));
    EXPECT_EQ(cif->block(0)->value("_a"), "1");
    cif = read("data_a\n_a 1\x1A\n_b 2\n");
    EXPECT_EQ(messages(*cif), (Messages{{302, 2}}));
    cif = read(
        "\xEF\xBB\xBF"
        "data_a\n_a 1");
    EXPECT_EQ(messages(*cif), (Messages{{342, 1}, {340, 2}}));
    EXPECT_EQ(cif->block(0)->name(), "a");
    EXPECT_EQ(cif->block(0)->value("_a"), "1");
}

TEST(CifReader, ReservedFirstCharactersOfUnquotedValuesAreErrorsAndTheValueIsKept) {
    THandle<Cif> cif = read("data_a\n_a [x]\n_b $frame\n_c {ok}\n_d ]x\n_e 'quoted [x]'\n_f x[y]$\n");
    EXPECT_EQ(messages(*cif), (Messages{{330, 2}, {330, 3}, {330, 5}}));
    for (const CifError& error : *cif->errors()) EXPECT_EQ(error.type(), CifError::error);
    EXPECT_EQ(cif->block(0)->value("_a"), "[x]");
    EXPECT_EQ(cif->block(0)->value("_d"), "]x");
}

TEST(CifReader, ATextFieldMustBeFollowedByWhiteSpaceAndWhatFollowsIsReadOn) {
    struct Case {
        const char* text;
        Messages expected;
        const char* name;  // read on after the field, with its value
        const char* value;
    };
    const Case cases[] = {
        {"data_a\n_t\n;\nText\n;_b 1\n", {{338, 5}}, "_b", "1"},
        {"data_a\n_t\n;\nText\n;x\n_b 1\n", {{338, 5}, {310, 5}}, "_b", "1"},
        {"data_a\n_t\n;\nText\n; _b 1\n", {}, "_b", "1"},
        {"data_a\n_t\n;\nText\n;\t_b 1\n", {}, "_b", "1"},
        {"data_a\n_t\n;\nText\n;# a comment\n_b 1\n", {}, "_b", "1"},
        {"data_a\n_t\n;\nText\n;", {{340, 5}}, "_t", "\nText"},
        {"#\\#CIF_2.0\ndata_a\n_t\n;\nText\n;_b 1\n", {{338, 6}}, "_b", "1"},
        {"#\\#CIF_2.0\ndata_a\n_t [\n;\nText\n;]\n_b 1\n", {}, "_b", "1"},
    };
    for (const Case& c : cases) {
        THandle<Cif> cif = read(c.text);
        EXPECT_EQ(messages(*cif), c.expected) << c.text;
        ASSERT_EQ(cif->block_count(), 1u) << c.text;
        EXPECT_EQ(cif->block(0)->value(c.name), c.value) << c.text;
    }
    // The field itself ends where the semicolon is.
    EXPECT_EQ(read("data_a\n_t\n;\nText\n;_b 1\n")->block(0)->value("_t"), "\nText");
}

TEST(CifReader, NamesTheDictionaryDoesNotDefineAreWarnedAbout) {
    THandle<CifDictionary> dictionary(new cif_test::ListDictionary({"_cell_length_a", "_atom_site_label"}));
    THandle<Cif> cif =
        read("data_a\n_cell_length_a 1\n_geom_extra 2\nloop_\n_atom_site_label\n_atom_site_odd\nC 1\n",
             CifParserSettings(), dictionary);
    EXPECT_EQ(messages(*cif), (Messages{{320, 3}, {320, 6}}));
    EXPECT_EQ(cif->errors()->begin()->complete_message(),
              "Warning: Line 3 : Created non-standard data item _geom_extra");
    EXPECT_EQ(cif->errors()->begin()->text(), "_geom_extra");
    CifParserSettings quiet;
    quiet.check_data_names = false;
    EXPECT_TRUE(read("data_a\n_geom_extra 2\n", quiet, dictionary)->errors()->empty());
}

TEST(CifReader, MessagesStopAtTheLimitWithANote) {
    CifParserSettings settings;
    settings.max_messages = 5;
    std::string text = "data_a\n";
    for (int i = 0; i < 10; ++i) text += "stray\n";
    THandle<Cif> cif = read(text, settings);
    ASSERT_EQ(cif->errors()->size(), 6u);
    EXPECT_EQ((*cif->errors())[4].line(), 6);
    EXPECT_EQ((*cif->errors())[5].id(), CifError::too_many_messages);
}

TEST(CifReader, OversizedTokensAreCutShort) {
    CifParserSettings settings;
    settings.max_token_size = 10;
    THandle<Cif> cif = read("data_a\n_a " + std::string(25, 'v') + "\n_b ok\n", settings);
    EXPECT_EQ(messages(*cif), (Messages{{332, 2}}));
    EXPECT_EQ(cif->block(0)->value("_a"), std::string(10, 'v'));
    EXPECT_EQ(cif->block(0)->value("_b"), "ok");
}

TEST(CifReader, CommentsAreKeptWithWhatTheyDescribe) {
    THandle<Cif> cif = read(
        "# header\n"
        "data_a\n"
        "# about a\n"
        "_a 1 # trailing\n"
        "loop_\n"
        "_x\n"
        "1\n"
        "# inner\n"
        "2\n"
        "# after loop\n"
        "_b 2\n"
        "# end\n");
    EXPECT_TRUE(cif->errors()->empty());
    THandle<CifDataBlock> block = cif->block(0);
    EXPECT_EQ(block->comments(), "# header");
    EXPECT_EQ(block->find("_a")->comments(), "# about a");
    EXPECT_EQ(block->find("_a")->comments(CifCommentable::trailing_comment), "# trailing");
    EXPECT_EQ(block->find("_x")->comments(CifCommentable::inner_comment), "# inner");
    EXPECT_EQ(block->find("_b")->comments(), "# after loop");
    EXPECT_EQ(block->comments(CifCommentable::following_comment), "# end");
}

TEST(CifReader, CommentLinesBeforeAnItemAreJoinedByLineEndsWhateverLiesBetweenThem) {
    const struct {
        const char* text;
        const char* comments;
    } cases[] = {
        {"data_a\n# one\n# two\n# three\n_a 1\n", "# one\n# two\n# three"},
        {"data_a\n# one\n\n# two\n_a 1\n", "# one\n# two"},
        {"data_a\r\n# one\r\n# two\r\n_a 1\r\n", "# one\n# two"},
        {"data_a\n# one\n   # two\n# three\n_a 1\n", "# one\n# two\n# three"},
        {"data_a\n# one\n#\n# three\n_a 1\n", "# one\n#\n# three"},
    };
    for (const auto& c : cases) {
        THandle<Cif> cif = read(c.text);
        THandle<CifDataItem> item = cif->block(0)->find("_a");
        ASSERT_FALSE(item.is_null()) << c.text;
        EXPECT_EQ(item->comments(), c.comments) << c.text;
    }
}

TEST(CifReader, BlockAtLineCoversEachBlockUpToTheNext) {
    THandle<Cif> cif = read("# lead\n\ndata_a\n_a 1\n\ndata_b\n_b 2\n# tail\n");
    auto name_at = [&](int line) {
        Cif::iterator it = cif->block_at_line(line);
        return it == cif->block_end() ? std::string("none") : (*it)->name();
    };
    EXPECT_EQ(name_at(-1), "none");
    EXPECT_EQ(name_at(1), "none");
    EXPECT_EQ(name_at(2), "none");
    EXPECT_EQ(name_at(3), "a");
    EXPECT_EQ(name_at(5), "a");
    EXPECT_EQ(name_at(6), "b");
    EXPECT_EQ(name_at(8), "b");
    EXPECT_EQ(name_at(9), "none");
    EXPECT_EQ(cif->block(0)->last_line(), 4);
    THandle<Cif> empty = read("");
    EXPECT_TRUE(empty->block_at_line(1) == empty->block_end());
}

}  // namespace
