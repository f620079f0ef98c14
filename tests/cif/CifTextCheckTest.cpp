// SPDX-License-Identifier: MIT
// The character and line-length check over long texts: every line that
// holds an unusual byte or is too long is found wherever it falls against
// the blocks the check reads at once.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "cif/CifCharacters.hpp"
#include "cif/CifTextCheck.hpp"

namespace {

using Messages = std::vector<std::pair<int, int>>;  // (code, line)

Messages run_check(const std::string& text, int line_length, int version) {
    CifParserSettings settings;
    settings.line_length = line_length;
    CifErrorSink sink(100000);
    CifTextCheck(settings, version, sink).check(text, 0);
    Messages found;
    for (const CifError& error : sink.errors()) found.emplace_back(error.id(), error.line());
    return found;
}

TEST(CifTextCheck, EveryOddOrLongLineIsFoundWhereverItFalls) {
    const char odd_bytes[] = {'\x01', '\x7f', '\xc3', '\r', '\x1b'};
    for (unsigned seed = 1; seed <= 30; ++seed) {
        std::mt19937 random(seed);
        std::uniform_int_distribution<int> length(0, 130);
        std::uniform_int_distribution<int> choice(0, 99);
        std::string text;
        Messages expected;
        int lines = 0;
        for (int line = 1; line <= 300; ++line) {
            int size = length(random);
            std::string row(static_cast<std::size_t>(size), 'x');
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = i % 7 == 3 ? '\t' : static_cast<char>('a' + i % 26);
            bool odd = size > 0 && choice(random) < 8;
            if (odd) {
                char byte = odd_bytes[choice(random) % 5];
                row[static_cast<std::size_t>(choice(random)) % row.size()] = byte;
                // CIF 1.1 reports any byte outside printable ASCII but CR.
                if (is_bad_nonprinting_char(static_cast<unsigned char>(byte)) ||
                    is_bad_printing_char(static_cast<unsigned char>(byte)))
                    expected.emplace_back(CifError::invalid_character, line);
            }
            if (size > 80) expected.emplace_back(CifError::line_too_long, line);
            text += row;
            lines = line;
            if (line < 300 || seed % 2 == 0) text += '\n';
        }
        ASSERT_EQ(lines, 300);
        EXPECT_EQ(run_check(text, 80, 1), expected) << "seed " << seed;
    }
}

}  // namespace
