// SPDX-License-Identifier: MIT
// Packed dictionaries and ones read a piece at a time answer as those read whole, as objects.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDdl1Reader.hpp"
#include "cif/CifDdl2Reader.hpp"
#include "cif/CifDdlmImports.hpp"
#include "cif/CifDdlmReader.hpp"
#include "cif/CifEditDistance.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

std::string file_text(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

// The dictionary as its reader leaves it: every definition an object, read
// from the whole text, never packed.
std::unique_ptr<CifConcreteDictionary> read_unpacked(const std::string& path,
                                                     THandle<CifErrorContainer> errors) {
    auto dictionary = std::make_unique<CifConcreteDictionary>();
    const std::string text = file_text(path);
    const std::string directory = CifDdlmImports::directory_of(path);
    switch (CifConcreteDictionary::language_of(text)) {
        case CifConcreteDictionary::Language::ddl1:
            CifDdl1Reader(*dictionary, errors, nullptr).read(text, 0);
            break;
        case CifConcreteDictionary::Language::ddlm:
            CifDdlmReader(*dictionary, errors, nullptr, {}).read(text, directory);
            break;
        case CifConcreteDictionary::Language::ddl2:
            CifDdl2Reader(*dictionary, errors, nullptr).read(text);
            break;
    }
    return dictionary;
}

std::vector<std::string> enumeration_texts(const CifItemDefinition& definition, bool details) {
    std::vector<std::string> texts;
    for (const CifEnumeration& entry : definition.enumerations) {
        texts.push_back(entry.value);
        texts.push_back(details ? entry.detail : std::string());
    }
    return texts;
}

void expect_same(const CifItemDefinition& a, const CifItemDefinition& b, bool explained) {
    const std::string& where = b.name;
    EXPECT_EQ(a.name, b.name);
    EXPECT_EQ(a.category, b.category) << where;
    EXPECT_EQ(a.type_text, b.type_text) << where;
    EXPECT_EQ(enumeration_texts(a, explained), enumeration_texts(b, explained)) << where;
    EXPECT_EQ(a.range_text, b.range_text) << where;
    EXPECT_EQ(a.minimum, b.minimum) << where;
    EXPECT_EQ(a.maximum, b.maximum) << where;
    EXPECT_EQ(a.list_reference, b.list_reference) << where;
    EXPECT_EQ(a.list_link_parent, b.list_link_parent) << where;
    EXPECT_EQ(a.dimension, b.dimension) << where;
    EXPECT_EQ(a.category_keys, b.category_keys) << where;
    EXPECT_EQ(a.loop_category, b.loop_category) << where;
    ASSERT_EQ(a.related.size(), b.related.size()) << where;
    for (std::size_t i = 0; i < a.related.size(); ++i) {
        EXPECT_EQ(a.related[i].name, b.related[i].name) << where;
        EXPECT_EQ(a.related[i].function, b.related[i].function) << where;
    }
    EXPECT_EQ(a.aliases, b.aliases) << where;
    EXPECT_EQ(a.line, b.line) << where;
    EXPECT_EQ(a.type, b.type) << where;
    EXPECT_EQ(a.uncertainty, b.uncertainty) << where;
    EXPECT_EQ(a.enumeration_concatenated, b.enumeration_concatenated) << where;
    EXPECT_EQ(a.has_range, b.has_range) << where;
    EXPECT_EQ(a.has_minimum, b.has_minimum) << where;
    EXPECT_EQ(a.has_maximum, b.has_maximum) << where;
    EXPECT_EQ(a.list, b.list) << where;
    EXPECT_EQ(a.list_mandatory, b.list_mandatory) << where;
    EXPECT_EQ(a.contents, b.contents) << where;
    EXPECT_EQ(a.container, b.container) << where;
    if (!explained) {
        EXPECT_TRUE(a.notes().empty()) << where;
        return;
    }
    EXPECT_EQ(a.notes().definition, b.notes().definition) << where;
    EXPECT_EQ(a.notes().units, b.notes().units) << where;
    EXPECT_EQ(a.notes().units_detail, b.notes().units_detail) << where;
    EXPECT_EQ(a.notes().enumeration_default, b.notes().enumeration_default) << where;
    EXPECT_EQ(a.notes().list_link_child, b.notes().list_link_child) << where;
    ASSERT_EQ(a.notes().examples.size(), b.notes().examples.size()) << where;
    for (std::size_t i = 0; i < a.notes().examples.size(); ++i) {
        EXPECT_EQ(a.notes().examples[i].text, b.notes().examples[i].text) << where;
        EXPECT_EQ(a.notes().examples[i].detail, b.notes().examples[i].detail) << where;
    }
}

// Every definition, name, alias and category of `read` as `unpacked` gives them.
void expect_same(const CifConcreteDictionary& read, const CifConcreteDictionary& unpacked, bool explained) {
    EXPECT_EQ(read.descriptor().text(), unpacked.descriptor().text());
    ASSERT_EQ(read.definition_count(), unpacked.definition_count());
    EXPECT_EQ(read.definitions_made(), 0u);  // reading made none
    for (std::size_t i = 0; i < read.definition_count(); ++i) {
        expect_same(read.definition_at(i), unpacked.definition_at(i), explained);
        std::vector<std::string> names = unpacked.definition_at(i).aliases;
        names.push_back(unpacked.definition_at(i).name);
        for (std::string name : names) {
            for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            const CifItemDefinition* found = read.definition(name);
            const CifItemDefinition* wanted = unpacked.definition(name);
            ASSERT_EQ(found == nullptr, wanted == nullptr) << name;
            if (found != nullptr) {
                EXPECT_EQ(found->line, wanted->line) << name;
            }
        }
    }
    EXPECT_EQ(read.data_names(), unpacked.data_names());
    EXPECT_EQ(read.categories(), unpacked.categories());
    for (const std::string& category : unpacked.categories()) {
        EXPECT_EQ(read.category_items(category), unpacked.category_items(category)) << category;
        EXPECT_EQ(read.mandatory_items(category), unpacked.mandatory_items(category)) << category;
    }
}

TEST(CifDictionaryStore, PackedDictionariesGiveWhatTheirReadersMade) {
    const std::vector<std::string> paths = {
        cif_test::core_dictionary_path(),
        std::string(TESSARY_SHARED_DIR) + "/dictionaries/ddlm/cif_core.dic",
        "/usr/share/libcifpp/mmcif_pdbx.dic",
        std::string(TESSARY_SOURCE_DIR) + "/tests/data/tessary_test.dic",
        std::string(TESSARY_SOURCE_DIR) + "/tests/data/ddlm/tessary_ddlm.dic",
        std::string(TESSARY_SOURCE_DIR) + "/tests/data/ddl2/tessary_ddl2.dic"};
    for (const std::string& path : paths) {
        if (!std::filesystem::exists(path)) {
            std::cout << "skipped, absent: " << path << '\n';
            continue;
        }
        SCOPED_TRACE(path);
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        const std::unique_ptr<CifConcreteDictionary> unpacked = read_unpacked(path, errors);
        ASSERT_TRUE(errors->empty()) << errors->begin()->complete_message();
        for (bool explained : {true, false}) {
            CifConcreteDictionary read;
            read.set_explanations_kept(explained);
            ASSERT_TRUE(read.read_file(path, errors));
            expect_same(read, *unpacked, explained);
        }
    }
}

TEST(CifDictionaryStore, ADefinitionIsMadeOnceWhenThreadsAskTogether) {
    THandle<CifConcreteDictionary> core = cif_test::core_dictionary();
    if (core.is_null()) GTEST_SKIP() << "absent: " << cif_test::core_dictionary_path();
    CifConcreteDictionary dictionary;
    ASSERT_TRUE(dictionary.read_file(cif_test::core_dictionary_path(), THandle<CifErrorContainer>()));
    std::vector<std::string> names = dictionary.data_names();
    names.resize(200);
    std::vector<std::vector<const CifItemDefinition*>> found(8);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < found.size(); ++t) {
        threads.emplace_back([&, t] {
            // Each thread asks in an order of its own, every name twice.
            for (std::size_t n = 0; n < 2 * names.size(); ++n)
                found[t].push_back(dictionary.definition(names[(n * (2 * t + 1)) % names.size()]));
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::set<const CifItemDefinition*> distinct;
    for (std::size_t t = 0; t < found.size(); ++t) {
        for (std::size_t n = 0; n < found[t].size(); ++n) {
            const std::string& name = names[(n * (2 * t + 1)) % names.size()];
            ASSERT_NE(found[t][n], nullptr) << name;
            EXPECT_EQ(found[t][n], dictionary.definition(name)) << name;
            EXPECT_EQ(found[t][n]->name, name);
            distinct.insert(found[t][n]);
        }
    }
    EXPECT_EQ(distinct.size(), names.size());
    EXPECT_EQ(dictionary.definitions_made(), names.size());
}

// The language is told from attributes only it uses, in the text's first 64 KiB.
TEST(CifConcreteDictionary, TellsTheLanguageFromItsOwnAttributes) {
    using Language = CifConcreteDictionary::Language;
    const std::string far(1 << 16, ' ');
    struct Case {
        std::string text;
        Language language;
    };
    const std::vector<Case> cases = {
        {"data_a\n_name '_a.b'\n_definition\n; Ends. In. Full stops.\n;\n", Language::ddl1},
        {"data_a\nsave_x\n_definition.id '_a.b'\nsave_\n", Language::ddlm},
        {"data_a\n_dictionary.ddl_conformance 3.11\n", Language::ddlm},
        {"data_a\nsave_x\n_item.name '_a.b'\nsave_\n", Language::ddl2},
        {"data_a\n_datablock.id x\n", Language::ddl2},
        {"data_a\n_dictionary.datablock_id x\n", Language::ddl2},
        {"data_a\n_item.name x\n_definition.id y\n", Language::ddlm},  // DDLm's own come first
        {"data_a\n_item.nam x\n_definition.i\n_xdictionary.ddl\n", Language::ddl1},
        {".id _definition. _item .name", Language::ddl1},
        {"_definition.id", Language::ddlm},
        {far.substr(0, far.size() - 14) + "_definition.id", Language::ddlm},
        {far.substr(0, far.size() - 13) + "_definition.id", Language::ddl1},  // past the first 64 KiB
        {far + "_item.name", Language::ddl1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CifConcreteDictionary::language_of(c.text), c.language) << c.text.substr(0, 60);
}

// A category's facts are worked out when first asked for, once even when
// threads ask together, from its own definitions only, and come out the
// same whichever categories were asked for before.
TEST(CifConcreteDictionary, CategoryFactsAreWorkedOutOnceWhenFirstAskedFor) {
    THandle<CifConcreteDictionary> core = cif_test::core_dictionary();
    if (core.is_null()) GTEST_SKIP() << "absent: " << cif_test::core_dictionary_path();
    CifConcreteDictionary forward;
    CifConcreteDictionary backward;
    ASSERT_TRUE(forward.read_file(cif_test::core_dictionary_path(), THandle<CifErrorContainer>()));
    ASSERT_TRUE(backward.read_file(cif_test::core_dictionary_path(), THandle<CifErrorContainer>()));
    std::vector<std::string> categories = forward.categories();
    ASSERT_GT(categories.size(), 20u);
    EXPECT_EQ(forward.definitions_made(), 0u);

    // One category first: only its members' definitions are made.
    const std::string& first = categories[categories.size() / 2];
    const CifCategoryFacts* alone = forward.category_facts(first);
    ASSERT_FALSE(alone->items.empty()) << first;
    EXPECT_LE(forward.definitions_made(), alone->items.size() + 1) << first;

    std::vector<std::vector<const CifCategoryFacts*>> found(6);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < found.size(); ++t) {
        threads.emplace_back([&, t] {
            for (std::size_t n = 0; n < categories.size(); ++n)
                found[t].push_back(forward.category_facts(categories[(n * (2 * t + 1)) % categories.size()]));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (std::size_t t = 0; t < found.size(); ++t) {
        for (std::size_t n = 0; n < categories.size(); ++n)
            EXPECT_EQ(found[t][n], forward.category_facts(categories[(n * (2 * t + 1)) % categories.size()]));
    }
    EXPECT_EQ(forward.category_facts(first), alone);

    for (auto category = categories.rbegin(); category != categories.rend(); ++category) {
        const CifCategoryFacts* a = forward.category_facts(*category);
        const CifCategoryFacts* b = backward.category_facts(*category);
        EXPECT_EQ(a->items, b->items) << *category;
        EXPECT_EQ(a->references, b->references) << *category;
        EXPECT_EQ(a->mandatory, b->mandatory) << *category;
        const CifCategoryFacts fresh = CifCategoryFacts::of(forward, *category);
        EXPECT_EQ(a->items, fresh.items) << *category;
        EXPECT_EQ(a->references, fresh.references) << *category;
        EXPECT_EQ(a->mandatory, fresh.mandatory) << *category;
    }
}

// Similar names come from an index made at the first question; it holds
// every name but category overviews, whichever name is asked about first.
TEST(CifConcreteDictionary, SimilarNamesFindEveryNameWithinTheEdits) {
    THandle<CifConcreteDictionary> core = cif_test::core_dictionary();
    if (core.is_null()) GTEST_SKIP() << "absent: " << cif_test::core_dictionary_path();
    CifConcreteDictionary dictionary;
    ASSERT_TRUE(dictionary.read_file(cif_test::core_dictionary_path(), THandle<CifErrorContainer>()));
    const std::vector<std::string> names = dictionary.data_names();
    for (const char* asked : {"_cell_length_q", "_atom_site_fract", "_symmetry_space_group_name_h-n", "_x"}) {
        std::vector<std::string> wanted;
        for (const std::string& name : names) {
            if (name.find('[') == std::string::npos && cif_edit_distance(asked, name, 2) <= 2)
                wanted.push_back(name);
        }
        std::vector<std::string> found;
        for (const CifDictionary::SimilarName& similar : dictionary.similar_names(asked, 2))
            found.push_back(similar.name);
        std::sort(wanted.begin(), wanted.end());
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, wanted) << asked;
    }
    EXPECT_FALSE(dictionary.similar_names("_cell_length_q", 2).empty());
}

// A DDL1 text of many small blocks, read as a document whole and (a piece
// size given) scanned or a piece of a few blocks at a time, with the
// problems of its definitions and those that send it back to a whole read.
TEST(CifDdl1Reader, PiecesGiveTheDefinitionsAndMessagesOfTheWholeText) {
    auto block = [](int n, const std::string& extra = {}) {
        return "data_item_" + std::to_string(n) + "\n_name '_item_" + std::to_string(n) +
               "'\n_category item\n_type numb\n_enumeration_range 0:\n" + extra + "_definition\n;\n  Item " +
               std::to_string(n) + ", a text field holding\ndata_not_a_block\n;\n";
    };
    auto text_with = [&](int at, const std::string& replacement) {
        std::string text =
            "#\\#CIF_1.1\ndata_on_this_dictionary\n_dictionary_name pieces.dic\n"
            "_dictionary_version 1.0\n";
        for (int n = 0; n < 40; ++n) text += n == at ? replacement : block(n);
        return text;
    };
    struct Case {
        const char* what;
        std::string text;
    };
    const std::vector<Case> cases = {
        {"clean", text_with(-1, "")},
        {"a bad _list late", text_with(33, block(33, "_type_conditions esd\n_list maybe\n"))},
        {"a block named again in a later piece", text_with(35, block(2))},
        {"a name defined again in a later piece", text_with(36, "data_again\n_name '_item_3'\n_type char\n")},
        {"an unterminated text field",
         text_with(20, "data_open\n_name '_open'\n_definition\n;\nnever closed\n")},
        {"a stray value", text_with(25, block(25, "stray\n"))},
        {"an unknown type and a bad range",
         text_with(12, block(12, "_type_conditions none\n") + "data_odd\n_name '_odd'\n_type text\n"
                                                              "_enumeration_range 9:1\n")},
        {"a definition without a name", text_with(7, "data_nameless\n_category item\n")},
        {"looped names sharing attributes",
         text_with(8,
                   "data_pair\nloop_ _name '_pair_a' '_pair_b'\n_category pair\n_list yes\n"
                   "_list_reference '_pair_a'\n_enumeration_range 1:2\n_type numb\n")},
        {"a long line", text_with(5, block(5, "_units_detail '" + std::string(2100, 'u') + "'\n"))},
        {"CR LF line ends",
         [&] {
             std::string crlf;
             for (char c : text_with(-1, "")) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
             return crlf;
         }()},
        {"no final line end", text_with(-1, "").substr(0, text_with(-1, "").size() - 1)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<std::string> messages[2];
        std::vector<std::string> definitions[2];
        for (std::size_t piece : {std::size_t(0), std::size_t(300)}) {
            const int k = piece == 0 ? 0 : 1;
            CifConcreteDictionary dictionary;
            THandle<CifErrorContainer> errors(new CifErrorContainer());
            std::ostringstream log;
            CifDdl1Reader(dictionary, errors, &log).read(c.text, piece);
            for (const CifError& error : *errors)
                messages[k].push_back(std::to_string(error.line()) + " " + error.complete_message());
            messages[k].push_back(log.str());
            for (std::size_t i = 0; i < dictionary.definition_count(); ++i) {
                const CifItemDefinition& definition = dictionary.definition_at(i);
                definitions[k].push_back(definition.name + "@" + std::to_string(definition.line) + " " +
                                         definition.type_text + " " + definition.range_text + " " +
                                         definition.notes().definition);
            }
            definitions[k].push_back(dictionary.descriptor().text());
        }
        EXPECT_EQ(messages[1], messages[0]);
        EXPECT_EQ(definitions[1], definitions[0]);
        EXPECT_GT(definitions[0].size(), 10u);
    }
}

}  // namespace
