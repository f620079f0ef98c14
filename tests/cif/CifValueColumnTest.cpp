// SPDX-License-Identifier: MIT
// Value columns: plain values kept short, the rest in full, at group and chunk boundaries.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "cif/CifValueColumn.hpp"

namespace {

// A text of plain words "w0 w1 w2 ..." and the references of its words.
struct Words {
    std::string text;
    std::vector<CifValueRef> refs;

    explicit Words(std::size_t count, std::size_t padding = 0) {
        for (std::size_t n = 0; n < count; ++n) {
            CifValueRef ref;
            ref.offset = static_cast<std::uint32_t>(text.size());
            std::string word(1, 'w');
            word += std::to_string(n);
            ref.bits = static_cast<std::uint32_t>(word.size());
            text += word;
            text += n % 7 == 0 ? '\n' : ' ';
            text.append(padding, '\t');
            refs.push_back(ref);
        }
    }
};

CifValueRef ref_of(std::uint32_t offset, std::uint32_t bits) {
    CifValueRef ref;
    ref.offset = offset;
    ref.bits = bits;
    return ref;
}

void expect_same(const CifValueColumn& column, const std::vector<CifValueRef>& refs) {
    ASSERT_EQ(column.size(), refs.size());
    for (std::size_t n = 0; n < refs.size(); ++n) {
        ASSERT_EQ(column[n].offset, refs[n].offset) << n;
        ASSERT_EQ(column[n].bits, refs[n].bits) << n;
    }
    // The same through copies of runs that start and end inside groups,
    // with and without the text's end, and through visits of them.
    const char* text_end = column.text() == nullptr ? nullptr : column.text() + std::strlen(column.text());
    for (std::size_t first : {std::size_t(0), std::size_t(3), CifValueColumn::group_size - 1}) {
        if (first >= refs.size()) continue;
        for (const char* end : {static_cast<const char*>(nullptr), text_end}) {
            std::vector<CifValueRef> out(refs.size() - first);
            column.copy_refs(first, out.size(), out.data(), end);
            for (std::size_t n = 0; n < out.size(); ++n) {
                ASSERT_EQ(out[n].offset, refs[first + n].offset) << first << " " << n;
                ASSERT_EQ(out[n].bits, refs[first + n].bits) << first << " " << n;
            }
        }
        std::size_t next = first;
        column.visit(
            first, refs.size() - first,
            [&](std::size_t n, std::uint32_t offset) {
                ASSERT_EQ(n, next++);
                ASSERT_EQ(offset, refs[n].offset) << n;
                ASSERT_EQ(CifValueColumn::word_length(column.text() + offset), refs[n].bits) << n;
            },
            [&](std::size_t n, CifValueRef ref) {
                ASSERT_EQ(n, next++);
                ASSERT_EQ(ref.offset, refs[n].offset) << n;
                ASSERT_EQ(ref.bits, refs[n].bits) << n;
            });
        ASSERT_EQ(next, refs.size());
    }
}

TEST(CifValueColumn, PlainValuesComeBackAsTheyWentIn) {
    // Counts around the single value, a group and the 2 MiB chunk of distances.
    const std::size_t g = CifValueColumn::group_size;
    const std::size_t chunk = std::size_t(1) << 20;
    for (std::size_t count :
         {std::size_t(1), std::size_t(2), g - 1, g, g + 1, 5 * g + 3, chunk - 1, chunk + g + 5}) {
        const Words words(count);
        CifValueColumn fast(words.text.c_str());
        CifValueColumn checked(words.text.c_str());
        for (const CifValueRef& ref : words.refs) {
            fast.push_plain(ref);
            checked.push_back(ref);
        }
        expect_same(fast, words.refs);
        expect_same(checked, words.refs);
        if (count >= g) {
            // Two bytes a value, not eight (a chunk begun is taken whole).
            const std::size_t begun = count > chunk ? 2 * chunk : 0;
            EXPECT_LT(fast.heap_bytes(), count * 3 + 4096 + begun) << count;
        }
    }
}

TEST(CifValueColumn, ValuesAppendedInRunsMatchThoseTakenOneByOne) {
    // Runs of every size from the gathered rows of a loop of three columns,
    // with values near each other and, padded, more than two bytes apart.
    const std::size_t g = CifValueColumn::group_size;
    for (std::size_t padding : {std::size_t(0), std::size_t(300)}) {
        const Words words(3 * g + 7, padding);
        CifValueColumn one_by_one(words.text.c_str());
        CifValueColumn appended(words.text.c_str());
        for (const CifValueRef& ref : words.refs) one_by_one.push_plain(ref);
        std::size_t run = 1;
        for (std::size_t n = 0; n < words.refs.size(); n += run, run = run * 3 % 509 + 1) {
            const std::size_t count = std::min(run, words.refs.size() - n);
            std::vector<CifValueRef> rows(3 * count, ref_of(0, 0));
            for (std::size_t k = 0; k < count; ++k) rows[3 * k + 1] = words.refs[n + k];
            appended.append_plain(rows.data() + 1, 3, count);
        }
        SCOPED_TRACE(padding);
        expect_same(appended, words.refs);
        EXPECT_EQ(appended.heap_bytes(), one_by_one.heap_bytes());
    }
}

TEST(CifValueColumn, AColumnSizedByItsFirstRunGrowsAndShrinksAsAnyOther) {
    // A first run makes room for all its values at once, in the small array
    // or straight in a store; values pushed and taken off afterwards cross
    // the sizes where the room grew.
    const std::size_t limit = CifValueColumn::small_limit;
    const Words words(3 * CifValueColumn::group_size);
    for (std::size_t before : {0, 1, 2, 3}) {
        for (std::size_t first :
             std::vector<std::size_t>{2, 3, 5, limit - 1, limit, limit + 1, 2 * limit + 1, 300}) {
            SCOPED_TRACE(testing::Message() << before << " then " << first);
            CifValueColumn column(words.text.c_str());
            for (std::size_t n = 0; n < before; ++n) column.push_plain(words.refs[n]);
            column.append_plain(words.refs.data() + before, 1, first);
            std::vector<CifValueRef> expected(words.refs.begin(), words.refs.begin() + before + first);
            expect_same(column, expected);
            for (std::size_t n = before + first; n < before + first + 40; ++n) {
                column.push_plain(words.refs[n]);
                expected.push_back(words.refs[n]);
            }
            expect_same(column, expected);
            while (expected.size() > 1) {
                column.pop_back();
                expected.pop_back();
                if (expected.size() % 7 == 0) expect_same(column, expected);
            }
            column.set(0, ref_of(words.refs[1].offset, words.refs[1].bits));
            ASSERT_EQ(column[0].offset, words.refs[1].offset);
        }
    }
}

TEST(CifValueColumn, ValuesThatCannotBeShortAreKeptInFull) {
    // Each case puts one odd value among plain ones, at the start, in the
    // middle and at the end of a group.
    const Words words(3 * CifValueColumn::group_size);
    const std::uint32_t far = static_cast<std::uint32_t>(words.text.size());
    std::string text = words.text + std::string(70000, ' ') + "far 'q' a\0b[x] ab";
    text.push_back('\0');
    const std::uint32_t far_word = far + 70000;
    struct Case {
        const char* what;
        CifValueRef odd;
    };
    const Case cases[] = {
        {"quoted", ref_of(far_word + 5, 1 | CifValueRef::quoted_flag)},
        {"added", ref_of(3, 2 | CifValueRef::added_flag)},
        {"compound", ref_of(far_word + 4, 3 | CifValueRef::compound_flag)},
        {"beyond two bytes of distance", ref_of(far_word, 3)},
        {"before the group's first value", ref_of(0, 2)},
        {"shorter than its word", ref_of(words.refs[5].offset, 1)},
        {"holding a NUL", ref_of(far_word + 8, 3)},
        {"ended by a bracket", ref_of(far_word + 12, 1)},
        {"the empty word", ref_of(far_word - 1, 0)},
    };
    for (const Case& c : cases) {
        for (std::size_t at : {std::size_t(0), std::size_t(100), CifValueColumn::group_size - 1,
                               CifValueColumn::group_size, 2 * CifValueColumn::group_size + 1}) {
            std::vector<CifValueRef> refs = words.refs;
            refs[at] = c.odd;
            CifValueColumn column(text.c_str());
            for (const CifValueRef& ref : refs) column.push_back(ref);
            SCOPED_TRACE(std::string(c.what).append(" at ").append(std::to_string(at)));
            expect_same(column, refs);
        }
    }
}

TEST(CifValueColumn, EditsKeepEveryOtherValue) {
    const std::size_t g = CifValueColumn::group_size;
    const Words words(4 * g + 10);
    const CifValueRef added = ref_of(0, 1 | CifValueRef::added_flag);
    CifValueColumn column(words.text.c_str());
    for (const CifValueRef& ref : words.refs) column.push_plain(ref);
    std::vector<CifValueRef> refs = words.refs;

    // A full reference in a short group, then a plain one back.
    column.set(g + 3, added);
    refs[g + 3] = added;
    column.set(g + 4, words.refs[1]);
    refs[g + 4] = words.refs[1];
    expect_same(column, refs);
    // The last group turned full keeps taking values.
    column.set(refs.size() - 1, added);
    refs.back() = added;
    column.push_plain(words.refs[2]);
    refs.push_back(words.refs[2]);
    expect_same(column, refs);

    column.insert(2 * g, added);
    refs.insert(refs.begin() + static_cast<std::ptrdiff_t>(2 * g), added);
    column.erase(5);
    refs.erase(refs.begin() + 5);
    expect_same(column, refs);

    // Popping across group boundaries, then growing again.
    while (column.size() > g - 2) {
        column.pop_back();
        refs.pop_back();
    }
    expect_same(column, refs);
    for (std::size_t n = 0; n < 2 * g; ++n) {
        column.push_plain(words.refs[n]);
        refs.push_back(words.refs[n]);
    }
    expect_same(column, refs);

    // Copies and moves keep the text; a column without text keeps values in full.
    CifValueColumn copy = column;
    expect_same(copy, refs);
    CifValueColumn bare;
    for (const CifValueRef& ref : refs) bare.push_back(ref);
    CifValueColumn target(words.text.c_str());
    target = std::move(bare);
    EXPECT_EQ(target.text(), words.text.c_str());
    expect_same(target, refs);
    target.push_plain(words.refs[9]);
    EXPECT_EQ(target[target.size() - 1].length(), words.refs[9].length());
    target.clear();
    EXPECT_TRUE(target.empty());
}

TEST(CifValueColumn, ShortColumnsKeepEveryValueThroughEditsAndGrowth) {
    // Columns of a few values keep them in one small array; past
    // small_limit they move into a store. Edits at every size on the way.
    const std::size_t limit = CifValueColumn::small_limit;
    const Words words(3 * limit);
    const CifValueRef added = ref_of(0, 1 | CifValueRef::added_flag);
    for (std::size_t count : {std::size_t(2), std::size_t(3), std::size_t(4), limit - 1, limit, limit + 1}) {
        SCOPED_TRACE(count);
        CifValueColumn column(words.text.c_str());
        std::vector<CifValueRef> refs;
        for (std::size_t n = 0; n < count; ++n) {
            column.push_plain(words.refs[n]);
            refs.push_back(words.refs[n]);
        }
        expect_same(column, refs);
        column.set(count - 1, added);
        refs[count - 1] = added;
        column.insert(1, words.refs[2 * limit]);
        refs.insert(refs.begin() + 1, words.refs[2 * limit]);
        column.erase(0);
        refs.erase(refs.begin());
        expect_same(column, refs);

        // A copy, and a move onto a column that holds a small array of its own.
        CifValueColumn copy = column;
        expect_same(copy, refs);
        CifValueColumn target(words.text.c_str());
        for (std::size_t n = 0; n < 3; ++n) target.push_back(words.refs[n]);
        target = std::move(copy);
        expect_same(target, refs);

        // Down to one value, none, and up past the small array again.
        while (column.size() > 1) {
            column.pop_back();
            refs.pop_back();
            expect_same(column, refs);
        }
        column.pop_back();
        refs.pop_back();
        EXPECT_TRUE(column.empty());
        for (std::size_t n = 0; n < limit + 5; ++n) {
            column.push_back(n % 5 == 0 ? added : words.refs[n]);
            refs.push_back(n % 5 == 0 ? added : words.refs[n]);
        }
        expect_same(column, refs);
        column.clear();
        EXPECT_EQ(column.size(), 0u);
        EXPECT_EQ(column.heap_bytes(), 0u);
    }
}

TEST(CifValueColumn, WordEndsAreFoundAlikeWithTheTextsEnd) {
    // Words shorter and longer than the sixteen bytes read at once, ended by
    // each kind of white space, the last one by the text's end.
    const std::size_t g = CifValueColumn::group_size;
    for (std::size_t length :
         {std::size_t(1), std::size_t(15), std::size_t(16), std::size_t(17), std::size_t(40)}) {
        std::string text;
        std::vector<CifValueRef> refs;
        for (std::size_t n = 0; n < 2 * g + 9; ++n) {
            std::string word = std::to_string(n);
            word.resize(std::max(length, word.size()), 'x');
            refs.push_back(
                ref_of(static_cast<std::uint32_t>(text.size()), static_cast<std::uint32_t>(word.size())));
            text += word;
            if (n + 1 < 2 * g + 9) text += " \t\n"[n % 3];
        }
        CifValueColumn column(text.c_str());
        for (const CifValueRef& ref : refs) column.push_plain(ref);
        SCOPED_TRACE(length);
        expect_same(column, refs);
        // A last value that lies before others in the text (an edit) bounds
        // the quick reads of a copy without the text's end.
        const std::size_t last_group = (refs.size() - 1) / g * g;
        column.set(refs.size() - 1, refs[last_group]);
        refs.back() = refs[last_group];
        expect_same(column, refs);
    }
}

}  // namespace
