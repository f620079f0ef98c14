// SPDX-License-Identifier: MIT
// The rows of loops read on the fast path: values of every length at every
// position against the windows the lexer looks through, with their lines.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/cif/CifTestSupport.hpp"

namespace {

struct Expected {
    std::string value;
    int line;
};

// A loop of three columns whose values (plain words, with now and then a
// quoted one, a comment or a blank line) are checked one by one against
// what was written.
void check_loop(unsigned seed, int version) {
    std::mt19937 random(seed);
    std::string text =
        version >= 2 ? "#\\#CIF_2.0\ndata_x\nloop_\n_a\n_b\n_c\n" : "data_x\nloop_\n_a\n_b\n_c\n";
    int line = version >= 2 ? 7 : 6;
    std::vector<Expected> expected;
    std::uniform_int_distribution<int> length(1, 90);
    std::uniform_int_distribution<int> choice(0, 99);
    for (int n = 0; n < 3 * 400; ++n) {
        int kind = choice(random);
        std::string value;
        if (kind < 4) {
            const std::string quoted = "q " + std::to_string(n);
            value.append(1, '\'').append(quoted).append(1, '\'');  // quoted: the slow path, then back
            expected.push_back({quoted, line});
        } else {
            int size = length(random);
            for (int i = 0; i < size; ++i)
                value += static_cast<char>('a' + (n + i) % 3 + (i % 5 == 4 ? 'A' - 'a' : 0));
            value[0] = static_cast<char>('0' + n % 10);  // never a reserved word
            expected.push_back({value, line});
        }
        text += value;
        int gap = choice(random);
        if (gap < 50) {
            text += ' ';
        } else if (gap < 60) {
            text += "\t \t";
        } else if (gap < 90) {
            text += '\n';
            ++line;
        } else if (gap < 95) {
            text += "  # a comment\n\n";
            line += 2;
        } else {
            text += std::string(70, ' ') + "\n";
            ++line;
        }
    }
    text += "\n_after 1\n";
    CifParserSettings settings;
    settings.line_length = 0;
    THandle<Cif> cif = cif_test::read(text, settings);
    ASSERT_EQ(cif->errors()->errors_of_type(CifError::error), 0) << seed;
    const THandle<CifDataBlock> block = cif->block(0);
    const char* const names[] = {"_a", "_b", "_c"};
    for (std::size_t n = 0; n < expected.size(); ++n) {
        THandle<CifDataItem> item = block->find(names[n % 3]);
        ASSERT_EQ(item->size(), expected.size() / 3);
        ASSERT_EQ(item->value_view(n / 3), expected[n].value) << "seed " << seed << ", value " << n;
    }
    EXPECT_EQ(block->find("_after")->line(), line + 1) << seed;
}

TEST(CifPlainValues, EveryValueAndLineSurvivesTheWindowsOfTheFastPath) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        check_loop(seed, 1);
        check_loop(seed, 2);
    }
}

TEST(CifPlainValues, WordsEndingAtABracketOrNulLeaveTheFastPathWithTheirMessages) {
    // Far enough into the loop that the fast path is under way.
    std::string rows;
    for (int i = 0; i < 40; ++i) rows += "1.5 2.5\n";
    struct Case {
        int version;
        std::string bad_row;
        int code;
        std::string second;  // the value after 3.5
        std::size_t rows;
    };
    const Case cases[] = {
        // x, then the list [1]: one value more, so the loop ends a value short.
        {2, "3.5 x[1]\n", CifError::missing_white_space, "x", 82},
        // A NUL inside a word is part of it.
        {1, std::string("3.5 x\0y\n", 8), CifError::invalid_character, std::string("x\0y", 3), 81},
    };
    for (const Case& c : cases) {
        std::string text = (c.version >= 2 ? "#\\#CIF_2.0\n" : "") + std::string("data_x\nloop_\n_a\n_b\n") +
                           rows + c.bad_row + rows;
        THandle<Cif> cif = cif_test::read(text);
        bool found = false;
        for (const CifError& error : *cif->errors()) {
            if (error.id() == c.code) {
                found = true;
                EXPECT_EQ(error.line(), (c.version >= 2 ? 46 : 45)) << c.code;
            }
        }
        EXPECT_TRUE(found) << c.code;
        const THandle<CifDataBlock> block = cif->block(0);
        EXPECT_EQ(block->find("_a")->value(40), "3.5");
        EXPECT_EQ(block->find("_b")->value(40), c.second);
        EXPECT_EQ(block->find("_a")->size(), c.rows);
    }
}

}  // namespace

namespace {

// What the check of characters and line lengths finds in the rows of a
// loop read on the fast path, wherever the odd byte, the long line, the
// line ends and the end of the text fall against its windows: the blanks
// after the second row move everything after them one byte at a time.
TEST(CifPlainValues, OddBytesAndLongLinesAreFoundWhereverTheyFallAgainstTheWindows) {
    struct Case {
        const char* name;
        int version;
        std::string odd;  // inside a value of line 20
        int odd_code;
        std::string line_end;
        bool final_line_end;
    };
    const Case cases[] = {
        {"control character", 1, "\x01", CifError::invalid_character, "\n", true},
        {"DEL", 1, "\x7f", CifError::invalid_character, "\n", true},
        {"byte beyond ASCII", 1, "\xc3\xa9", CifError::invalid_character, "\n", true},
        {"broken UTF-8", 2, "\xc3", CifError::invalid_utf8, "\n", true},
        {"UTF-8, fine", 2, "\xc3\xa9", 0, "\n", true},
        {"CR LF line ends", 1, "\x01", CifError::invalid_character, "\r\n", true},
        {"CR line ends", 1, "\x01", CifError::invalid_character, "\r", true},
        {"no final line end", 1, "\x01", CifError::invalid_character, "\n", false},
    };
    CifParserSettings settings;
    settings.line_length = 80;
    for (const Case& c : cases) {
        for (int shift = 0; shift < 72; ++shift) {  // every place in a window, the line within 80
            std::vector<std::string> lines;
            if (c.version >= 2) lines.push_back("#\\#CIF_2.0");
            for (const char* head : {"data_x", "loop_", "_a", "_b"}) lines.push_back(head);
            const int first_row = static_cast<int>(lines.size()) + 1;
            lines.push_back("1 2");
            std::string spaced(static_cast<std::size_t>(shift) + 3, ' ');
            spaced.front() = '3';
            spaced.back() = '4';
            lines.push_back(spaced);
            for (int row = first_row + 2; row < first_row + 60; ++row) {
                std::string left = std::to_string(row) + ".5";
                if (row == first_row + 20) left = "7" + c.odd + "7";
                std::string right = row == first_row + 30 ? std::string(79, '9') : "0.25";
                lines.push_back(left + " " + right);
            }
            std::string text;
            for (std::size_t n = 0; n < lines.size(); ++n) {
                text += lines[n];
                if (n + 1 < lines.size() || c.final_line_end) text += c.line_end;
            }
            THandle<Cif> cif = cif_test::read(text, settings);
            cif_test::Messages expected;
            if (c.odd_code != 0) expected.emplace_back(c.odd_code, first_row + 20);
            expected.emplace_back(CifError::line_too_long, first_row + 30);
            const int last = static_cast<int>(lines.size());
            if (!c.final_line_end) expected.emplace_back(CifError::no_final_line_end, last);
            ASSERT_EQ(cif_test::messages(*cif), expected) << c.name << ", shift " << shift;
            const THandle<CifDataBlock> block = cif->block(0);
            ASSERT_EQ(block->find("_a")->size(), 60u) << c.name << ", shift " << shift;
            EXPECT_EQ(block->find("_a")->value(20), "7" + c.odd + "7") << c.name << ", shift " << shift;
            EXPECT_EQ(block->find("_b")->value(30), std::string(79, '9')) << c.name << ", shift " << shift;
            EXPECT_EQ(block->find("_b")->value(59), "0.25") << c.name << ", shift " << shift;
            EXPECT_EQ(block->find("_b")->line(), first_row - 1) << c.name;
        }
    }
}

}  // namespace
