// SPDX-License-Identifier: MIT
// Items kept as records until handed out: the items made from them, their lifetime, threads.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "CifTestSupport.hpp"
#include "cif/Cif.hpp"

namespace {

using cif_test::ListDictionary;

// Reads the text with a dictionary: checked against it (the reader makes
// every item at once) or not (unlooped items stay records unless the
// settings ask for objects).
THandle<Cif> read_with(const std::string& text, const THandle<CifDictionary>& dictionary, bool checked,
                       bool records = true) {
    CifParserSettings settings;
    settings.allow_save_frames = true;
    settings.check_data_names = checked;
    settings.check_values = checked;
    settings.items_as_records = records;
    return cif_test::read(text, settings, dictionary);
}

std::size_t values_of(const CifDataBlock& block) {
    std::size_t values = block.value_count();
    for (const THandle<CifDataBlock>& frame : block.save_frames()) values += values_of(*frame);
    return values;
}

// Every item of a and b alike: name, line, loop, values as written, the
// four kinds of comment and the dictionary; the same for save frames.
void expect_same_items(const CifDataBlock& a, const CifDataBlock& b, const CifDictionary* dictionary) {
    SCOPED_TRACE(a.name());
    ASSERT_EQ(a.item_count(), b.item_count());
    EXPECT_EQ(a.comments(), b.comments());
    EXPECT_EQ(a.comments(CifCommentable::following_comment), b.comments(CifCommentable::following_comment));
    auto x = a.begin_write_order();
    for (auto y = b.begin_write_order(); y != b.end_write_order(); ++x, ++y) {
        const CifDataItem& p = **x;
        const CifDataItem& q = **y;
        SCOPED_TRACE(p.name());
        EXPECT_EQ(p.name(), q.name());
        EXPECT_EQ(p.line(), q.line());
        EXPECT_EQ(p.is_looped(), q.is_looped());
        EXPECT_EQ(q.dictionary().get(), dictionary);
        ASSERT_EQ(p.size(), q.size());
        for (std::size_t n = 0; n < p.size(); ++n) {
            EXPECT_EQ(p.value_view(n), q.value_view(n)) << n;
            EXPECT_EQ(p.is_quoted(n), q.is_quoted(n)) << n;
            EXPECT_EQ(p.is_compound(n), q.is_compound(n)) << n;
        }
        for (auto kind : {CifCommentable::preceding_comment, CifCommentable::inner_comment,
                          CifCommentable::following_comment, CifCommentable::trailing_comment}) {
            EXPECT_EQ(p.comments(kind), q.comments(kind)) << kind;
        }
        EXPECT_EQ(b.find(p.name()).get(), &q);
    }
    ASSERT_EQ(a.loops().size(), b.loops().size());
    for (std::size_t l = 0; l < a.loops().size(); ++l) {
        ASSERT_EQ(a.loops()[l].size(), b.loops()[l].size());
        for (std::size_t c = 0; c < a.loops()[l].size(); ++c)
            EXPECT_EQ(a.loops()[l][c]->name(), b.loops()[l][c]->name());
    }
    ASSERT_EQ(a.save_frames().size(), b.save_frames().size());
    for (std::size_t f = 0; f < a.save_frames().size(); ++f)
        expect_same_items(*a.save_frames()[f], *b.save_frames()[f], dictionary);
}

std::string many_items() {
    std::string text = "data_many\n";
    for (int n = 0; n < 40; ++n) text += "_m.item_" + std::to_string(n) + " " + std::to_string(n) + "\n";
    text += "loop_\n_m.x\n_m.y\n1 2\n3 4\n_M.ITEM_3 again\n_m.item_39b last\n_m.X twice\n";
    return text;
}

TEST(CifItemRecords, ItemsMadeFromRecordsAreThoseReadAsObjects) {
    struct Case {
        const char* what;
        std::string text;
        bool records;  // whether the reader keeps records at all
    };
    const std::vector<Case> cases = {
        {"comments of every kind, a name without value, a duplicate, a loop between",
         "# before\ndata_a\n#\n_a.one 1   # trails one\n_a.two 'two words'\n# two\n# lines\n_a.three\n;\n"
         "text field\n;\n_a.none\n_A.ONE 5 # trails the duplicate\nloop_\n# before the loop\n_l.x _l.y\n"
         "1 2 # a row's\n# among rows\n3 4\n_a.after x # last\n# following\n",
         true},
        {"save frames, a loop inside one, items of the block around them",
         "data_dic\n_dic.title d\nsave_one\n_f.a 1\n_f.b \"2\"\nloop_ _f.c 1 2\n_f.d 3 # t\nsave_\n"
         "save_two\n# c\n_f.a x\n_F.A y\nsave_\n_dic.end e\n",
         true},
        {"more names than a record list is searched through one by one", many_items(), true},
        {"lists and tables of CIF 2.0",
         "#\\#CIF_2.0\ndata_c\n_c.list [1 2 'x']\n_c.table {'a':1}\n_c.plain p\n", true},
        {"a name the text does not end where its token does (a NUL in it)",
         std::string("data_n\n_n.a 1\n_n.b\0c 2\n_n.d 3\n", 27), false},
        {"several blocks, one empty", "data_e\ndata_f\n_f.a 1\ndata_g\n_g.a 2\n_g.b 3\n", true},
    };
    const THandle<CifDictionary> dictionary(new ListDictionary({"_a.one", "_f.a"}));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        THandle<Cif> objects = read_with(c.text, dictionary, true);
        THandle<Cif> records = read_with(c.text, dictionary, false);
        THandle<Cif> asked = read_with(c.text, dictionary, false, false);
        // Records are no items in the store's arena until handed out; asked
        // for, the objects are there at once.
        if (c.records) {
            EXPECT_LT(records->store()->arena().used(), objects->store()->arena().used());
            EXPECT_LT(records->store()->arena().used(), asked->store()->arena().used());
        }
        ASSERT_EQ(objects->blocks().size(), asked->blocks().size());
        for (std::size_t i = 0; i < objects->blocks().size(); ++i)
            expect_same_items(*objects->blocks()[i], *asked->blocks()[i], dictionary.get());
        ASSERT_EQ(objects->blocks().size(), records->blocks().size());
        for (std::size_t i = 0; i < objects->blocks().size(); ++i) {
            const CifDataBlock& block = *records->blocks()[i];
            // Counted before the items are made, as after.
            const std::size_t count = block.item_count();
            const std::size_t values = values_of(block);
            expect_same_items(*objects->blocks()[i], block, dictionary.get());
            EXPECT_EQ(block.item_count(), count);
            EXPECT_EQ(values_of(block), values);
        }
    }
}

TEST(CifItemRecords, AnItemHandedOutOutlivesItsDocumentAndKeepsItsDictionary) {
    THandle<CifDataItem> found;
    THandle<CifDataItem> iterated;
    const CifDictionary* kept = nullptr;
    {
        THandle<CifDictionary> dictionary(new ListDictionary({"_a.one"}));
        kept = dictionary.get();
        THandle<Cif> cif =
            read_with("data_a\n# about one\n_a.one 1 # one\n_a.two 'two words'\n", dictionary, false);
        found = cif->blocks()[0]->find("_A.TWO");
        iterated = *cif->blocks()[0]->begin_write_order();
    }
    ASSERT_FALSE(found.is_null());
    EXPECT_EQ(found->name(), "_a.two");
    EXPECT_EQ(found->value(), "two words");
    EXPECT_TRUE(found->is_quoted(0));
    EXPECT_EQ(found->line(), 4);
    EXPECT_EQ(iterated->value(), "1");
    EXPECT_EQ(iterated->comments(), "# about one");
    EXPECT_EQ(iterated->comments(CifCommentable::trailing_comment), "# one");
    EXPECT_EQ(iterated->dictionary().get(), kept);
    EXPECT_EQ(iterated->validate("1"), 0);
    iterated->set_single_value("changed");
    EXPECT_EQ(iterated->value(), "changed");
}

TEST(CifItemRecords, ThreadsMakingTheSameItemsGetOneObjectEach) {
    std::string text = many_items();
    text += "save_frame\n_s.a 1\n_s.b 2\nsave_\n";
    struct Seen {
        std::vector<const CifDataItem*> order;
        std::vector<const CifDataItem*> frame;
        std::size_t count = 0;
    };
    for (int round = 0; round < 20; ++round) {
        THandle<Cif> cif = read_with(text, THandle<CifDictionary>(), false);
        const CifDataBlock& block = *cif->blocks()[0];
        const CifDataBlock& frame = *block.save_frames()[0];
        constexpr int thread_count = 4;
        std::vector<Seen> seen(thread_count);
        std::atomic<int> ready{0};
        std::vector<std::thread> threads;
        // The threads see items by reference only: copying one handle on
        // several threads at once is no more allowed than before.
        for (int t = 0; t < thread_count; ++t) {
            threads.emplace_back([&, t] {
                ++ready;
                while (ready.load() < thread_count) {
                }
                Seen& mine = seen[static_cast<std::size_t>(t)];
                mine.count = block.item_count();
                auto walk = [](const CifDataBlock& b, std::vector<const CifDataItem*>& out, bool backwards) {
                    out.assign(static_cast<std::size_t>(b.end_write_order() - b.begin_write_order()),
                               nullptr);
                    for (std::size_t n = 0; n < out.size(); ++n) {
                        const std::size_t k = backwards ? out.size() - 1 - n : n;
                        out[k] = b.begin_write_order()[static_cast<std::ptrdiff_t>(k)].get();
                    }
                };
                // Half the threads start with the frame and walk backwards.
                if (t % 2 == 1) walk(frame, mine.frame, true);
                walk(block, mine.order, t % 2 == 1);
                if (t % 2 == 0) walk(frame, mine.frame, false);
            });
        }
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(seen[0].order.size(), 43u);  // 41 items and 2 columns; the two repeated names left out
        EXPECT_EQ(block.find("_M.Item_20").get(), seen[0].order[20]);
        EXPECT_EQ(frame.find("_s.b").get(), seen[0].frame.at(1));
        for (const Seen& other : seen) {
            EXPECT_EQ(other.count, 43u);
            EXPECT_EQ(other.order, seen[0].order);
            EXPECT_EQ(other.frame, seen[0].frame);
        }
    }
}

}  // namespace
