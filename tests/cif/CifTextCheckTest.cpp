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
#include "cif/CifTextWindow.hpp"

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
    // Below 64, a line may be too long within one window of the check.
    for (unsigned seed = 1; seed <= 30; ++seed) {
        const int limit = seed % 3 == 0 ? 40 : 80;
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
            if (size > limit) expected.emplace_back(CifError::line_too_long, line);
            text += row;
            lines = line;
            if (line < 300 || seed % 2 == 0) text += '\n';
        }
        ASSERT_EQ(lines, 300);
        EXPECT_EQ(run_check(text, limit, 1), expected) << "seed " << seed;
    }
}

#if defined(__SSE2__)
using Details = std::vector<std::string>;  // code, line and detail of each message

Details details(CifErrorSink& sink) {
    Details found;
    for (const CifError& error : sink.errors())
        found.push_back(std::to_string(error.id()) + " " + std::to_string(error.line()) + " " +
                        error.detail());
    return found;
}

// The windows a lexer hands over, in runs from places of its own (ahead of
// the check, overlapping what it has checked, or behind it), leave the
// messages of a check of the whole text as they are.
TEST(CifTextCheck, WindowsHandedOverGiveTheMessagesOfTheWholeCheck) {
    const char* odd_bytes[] = {"\x01", "\x7f", "\xc3\xa9", "\xc3", "\xe2\x82", "\xef\xbf\xbe", "\t"};
    struct Case {
        int version;
        int line_length;  // below 64, a line may be too long within one window
    };
    for (const Case c : {Case{1, 80}, Case{2, 80}, Case{1, 40}, Case{2, 3000}}) {
        CifParserSettings settings;
        settings.line_length = c.line_length;
        for (unsigned seed = 1; seed <= 20; ++seed) {
            std::mt19937 random(seed);
            std::uniform_int_distribution<int> length(0, 150);
            std::uniform_int_distribution<int> choice(0, 99);
            std::string text;
            for (int line = 1; line <= 200; ++line) {
                std::string row(static_cast<std::size_t>(length(random)), 'x');
                if (!row.empty() && choice(random) < 10)
                    row.insert(static_cast<std::size_t>(choice(random)) % row.size(),
                               odd_bytes[choice(random) % 7]);
                text += row;
                if (line < 200 || seed % 2 == 0) text += '\n';
            }
            CifErrorSink whole(100000);
            CifTextCheck(settings, c.version, whole).check(text, 0);

            CifErrorSink handed(100000);
            CifTextCheck check(settings, c.version, handed);
            check.begin(text, 0);
            const std::ptrdiff_t size = static_cast<std::ptrdiff_t>(text.size());
            std::uniform_int_distribution<int> jump(-70, 200);
            std::uniform_int_distribution<int> run(1, 6);
            for (std::ptrdiff_t at = jump(random) + 70; at + 64 <= size; at += jump(random)) {
                for (int n = run(random); n > 0 && at >= 0 && at + 64 <= size; --n, at += 64) {
                    const CifTextWindow window(text.data() + at, false);
                    check.take(text.data() + at, window.newline, window.usual);
                }
                if (at < 0) at = 0;
            }
            check.finish();
            EXPECT_EQ(details(handed), details(whole))
                << "CIF " << c.version << ", limit " << c.line_length << ", seed " << seed;
            EXPECT_FALSE(whole.errors().empty());
        }
    }
}
#endif

}  // namespace
