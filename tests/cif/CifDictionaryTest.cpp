// SPDX-License-Identifier: MIT
// Reading DDL1 dictionaries, their queries, and pools of several.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>

#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

using cif_test::dictionary_from_text;
using cif_test::test_dictionary;
using Names = std::vector<std::string>;

TEST(CifConcreteDictionary, ReadsTheDescriptorAndEveryDefinitionOfALoopedName) {
    THandle<CifConcreteDictionary> dictionary = test_dictionary();
    EXPECT_EQ(dictionary->descriptor().name, "tessary_test.dic");
    EXPECT_EQ(dictionary->descriptor().version, "1.2");
    EXPECT_EQ(dictionary->descriptor().date, "2024-05-17");
    EXPECT_EQ(dictionary->descriptor().text(), "tessary_test.dic 1.2 (2024-05-17)");
    EXPECT_EQ(dictionary->descriptor().key(), "tessary_test.dic1.2");
    EXPECT_EQ(dictionary->name(), "tessary_test.dic");

    // One definition per name of a looped _name, each with the block's attributes.
    for (const char* name : {"_cell_length_a", "_CELL_LENGTH_B", "_cell_length_c"}) {
        const CifItemDefinition* definition = dictionary->definition(name);
        ASSERT_NE(definition, nullptr) << name;
        EXPECT_EQ(definition->type, CifItemDefinition::Type::numb);
        EXPECT_EQ(definition->uncertainty, CifItemDefinition::Uncertainty::allowed);
        EXPECT_TRUE(definition->has_minimum && !definition->has_maximum);
        EXPECT_EQ(definition->notes().units, "A");
        EXPECT_EQ(definition->notes().units_detail, "angstroms");
        EXPECT_EQ(definition->list, CifItemDefinition::List::no);  // DDL1 reads an absent _list as no
    }
    EXPECT_FALSE(dictionary->is_defined("_cell_length_d"));
    EXPECT_EQ(dictionary->definition("_cell_length_a")->line, 19);  // its data_ line
}

TEST(CifConcreteDictionary, KeepsEveryAttributeTheChecksAndTheHelpNeed) {
    THandle<CifConcreteDictionary> dictionary = test_dictionary();
    const CifItemDefinition& angle = *dictionary->definition("_cell_angle_beta");
    EXPECT_DOUBLE_EQ(angle.minimum, 0.0);
    EXPECT_DOUBLE_EQ(angle.maximum, 180.0);
    EXPECT_EQ(angle.range_text, "0.0:180.0");
    EXPECT_EQ(angle.notes().enumeration_default, "90.0");
    EXPECT_EQ(dictionary->definition("_cell_formula_units_Z")->uncertainty,
              CifItemDefinition::Uncertainty::none);
    EXPECT_EQ(dictionary->definition("_cell_formula_units_Z")->notes().examples.size(), 2u);

    std::vector<CifEnumeration> values = dictionary->enumerations("_exptl_absorpt_correction_type");
    ASSERT_EQ(values.size(), 3u);
    EXPECT_EQ(values[1].value, "multi-scan");
    EXPECT_EQ(values[1].detail, "symmetry-related measurements");
    EXPECT_TRUE(dictionary->enumerations("_cell_length_a").empty());

    const CifItemDefinition& fract = *dictionary->definition("_atom_site_fract_y");
    EXPECT_EQ(fract.list, CifItemDefinition::List::yes);
    EXPECT_EQ(fract.list_reference, Names{"_atom_site_label"});
    ASSERT_EQ(fract.related.size(), 1u);
    EXPECT_EQ(fract.related[0].name, "_atom_site_Cartn_");
    EXPECT_EQ(fract.related[0].function, "alternate");
    EXPECT_TRUE(dictionary->definition("_atom_site_label")->list_mandatory);
    EXPECT_EQ(dictionary->definition("_atom_site_label")->notes().list_link_child,
              Names{"_atom_site_aniso_label"});
    EXPECT_EQ(dictionary->definition("_atom_site_type_symbol")->list_link_parent, Names{"_atom_type_symbol"});
    EXPECT_EQ(dictionary->definition("_publ_author_name")->list, CifItemDefinition::List::both);
    EXPECT_TRUE(dictionary->definition("_atom_site_refinement_flags")->enumeration_concatenated);
    EXPECT_EQ(dictionary->definition_text("_atom_site_label"), "   The label of an atom site.");
    EXPECT_EQ(dictionary->category_of("_refln_index_k"), "refln");
}

TEST(CifConcreteDictionary, ListsCategoriesInItsOwnOrderAndTheirDataNames) {
    THandle<CifConcreteDictionary> dictionary = test_dictionary();
    // The overviews in file order; a category used without an overview follows.
    EXPECT_EQ(dictionary->categories(),
              (Names{"_cell_[]", "_atom_site_[]", "_atom_type_[]", "_exptl_[]", "_refln_[]", "_geom_bond_[]",
                     "_space_group_[]", "_symmetry_[]", "_publ_author_[]"}));
    Names cell{"_cell_length_a",   "_cell_length_b",    "_cell_length_c",       "_cell_angle_alpha",
               "_cell_angle_beta", "_cell_angle_gamma", "_cell_formula_units_Z"};
    EXPECT_EQ(dictionary->category_items("_cell_[]"), cell);
    EXPECT_EQ(dictionary->category_items("cell"), cell);
    EXPECT_EQ(dictionary->category_items("_CELL"), cell);
    EXPECT_EQ(dictionary->category_items("_category_overview_[]"),
              (Names{"_cell_[]", "_atom_site_[]", "_atom_type_[]", "_exptl_[]", "_refln_[]", "_geom_bond_[]",
                     "_space_group_[]", "_symmetry_[]"}));
    EXPECT_TRUE(dictionary->category_items("_nothing_[]").empty());
    EXPECT_EQ(dictionary->mandatory_items("_refln_[]"),
              (Names{"_refln_index_h", "_refln_index_k", "_refln_index_l"}));
    EXPECT_TRUE(dictionary->mandatory_items("cell").empty());
}

TEST(CifDictionaryNames, EveryDefinedDataNameOnceInOrderWithoutOverviews) {
    THandle<CifConcreteDictionary> test = test_dictionary();
    const Names names = test->data_names();
    // A looped _name gives each of its names, in order.
    ASSERT_GE(names.size(), 4u);
    EXPECT_EQ(Names(names.begin(), names.begin() + 4),
              (Names{"_cell_length_a", "_cell_length_b", "_cell_length_c", "_cell_angle_alpha"}));
    std::size_t overviews = 0;
    for (std::size_t i = 0; i < test->definition_count(); ++i)
        overviews += test->definition_at(i).is_category_overview() ? 1 : 0;
    EXPECT_EQ(names.size(), test->definition_count() - overviews);
    for (const std::string& name : names) {
        EXPECT_TRUE(test->is_defined(name)) << name;
        EXPECT_EQ(name.find("[]"), std::string::npos) << name;
    }

    // A pool lists its members' names in member order, a shared name once
    // (compared without case), and an empty pool nothing.
    CifDictionaryPool pool;
    EXPECT_TRUE(pool.data_names().empty());
    pool.insert(test_dictionary("tessary_extra.dic"));
    pool.insert(test);
    const Names pooled = pool.data_names();
    EXPECT_EQ(pooled.front(), "_cell_formula_units_Z");
    EXPECT_EQ(std::count(pooled.begin(), pooled.end(), "_cell_formula_units_Z"), 1);
    EXPECT_EQ(std::count(pooled.begin(), pooled.end(), "_tessary_colour"), 1);
    EXPECT_EQ(pooled.size(), names.size() + 1);
}

TEST(CifConcreteDictionary, ReportsProblemsOfADictionaryWithTheirLines) {
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    THandle<CifConcreteDictionary> dictionary = dictionary_from_text(
        "data_on_this_dictionary\n"      // 1
        "_dictionary_name broken.dic\n"  // 2
        "data_a\n"                       // 3
        "_name '_a'\n"                   // 4
        "_type numb\n"                   // 5
        "_enumeration_range 5:1\n"       // 6
        "data_b\n"                       // 7
        "_type char\n"                   // 8
        "data_c\n"                       // 9
        "_name '_c'\n"                   // 10
        "_type text\n"                   // 11
        "_list perhaps\n"                // 12
        "data_a_again\n"                 // 13
        "_name '_A'\n"                   // 14
        "data_d\n"                       // 15
        "_name '_d' '_e'\n",             // 16: two values for one name
        errors);
    std::vector<std::pair<int, int>> found;
    for (const CifError& error : *errors) found.emplace_back(error.id(), error.line());
    EXPECT_EQ(found, (cif_test::Messages{{310, 16}, {349, 6}, {346, 7}, {348, 11}, {349, 12}, {350, 13}}));
    EXPECT_EQ((*errors)[5].message(), "Dictionary defines _A twice, first at line: 3");
    // The first definition of a name stays; usable definitions are kept.
    EXPECT_TRUE(dictionary->is_defined("_a"));
    EXPECT_TRUE(dictionary->is_defined("_c"));
    EXPECT_FALSE(dictionary->definition("_a")->has_range);
}

TEST(CifConcreteDictionary, TextWithoutDefinitionsIsNoDictionaryAndReadingAgainStartsAfresh) {
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    THandle<CifConcreteDictionary> dictionary = dictionary_from_text("data_x\n_cell_length_a 5\n", errors);
    EXPECT_FALSE(errors->empty());
    errors = THandle<CifErrorContainer>(new CifErrorContainer());
    dictionary_from_text("", errors);
    ASSERT_EQ(errors->size(), 1u);  // the warning that there is no block goes to the log only
    EXPECT_EQ(errors->begin()->id(), CifError::not_a_dictionary);

    std::istringstream first("data_a\n_name '_abcdefgh'\n");
    THandle<CifErrorContainer> clean(new CifErrorContainer());
    CifConcreteDictionary reread;
    EXPECT_TRUE(reread.read(first, clean, nullptr));
    // Similar names are kept once found, whatever the case of the question,
    // and forgotten with the definitions they came from.
    auto similar = [&](const char* name) {
        std::vector<CifDictionary::SimilarName> found = reread.similar_names(name, 2);
        return found.empty() ? std::string() : found.front().name + " " + std::to_string(found.front().edits);
    };
    EXPECT_EQ(similar("_abcdefg"), "_abcdefgh 1");
    EXPECT_EQ(similar("_ABCDEFG"), "_abcdefgh 1");
    EXPECT_EQ(reread.similar_names("_ABCDEFG", 0).size(), 0u);
    std::istringstream second("data_b\n_name '_abcdefgx'\n");
    EXPECT_TRUE(reread.read(second, clean, nullptr));
    EXPECT_FALSE(reread.is_defined("_abcdefgh"));
    EXPECT_TRUE(reread.is_defined("_abcdefgx"));
    EXPECT_EQ(similar("_ABCDEFG"), "_abcdefgx 1");
    EXPECT_TRUE(clean->empty());
}

TEST(CifConcreteDictionary, TheCoreDictionaryLoadsCleanly) {
    std::ifstream stream(cif_test::core_dictionary_path(), std::ios::binary);
    if (!stream) GTEST_SKIP() << "the IUCr core dictionary is not at " << cif_test::core_dictionary_path();
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    CifConcreteDictionary core;
    std::ostringstream log;
    EXPECT_TRUE(core.read(stream, errors, &log));
    EXPECT_TRUE(errors->empty()) << errors->begin()->complete_message();
    EXPECT_EQ(core.descriptor().text(), "cif_core.dic 2.4.5 (2014-11-21)");
    EXPECT_EQ(core.definition_count(), 796u);  // 563 definition blocks, some naming several data names
    EXPECT_EQ(core.categories().size(), 62u);
    EXPECT_EQ(core.categories().front(), "_atom_site_[]");
    EXPECT_NE(log.str().find("796 data names in 62 categories"), std::string::npos);
    EXPECT_EQ(core.category_items("_cell_[]").size(), 22u);
    const CifItemDefinition* flags = core.definition("_atom_site_refinement_flags");
    ASSERT_NE(flags, nullptr);
    EXPECT_TRUE(flags->enumeration_concatenated);
}

TEST(CifDictionaryPool, SearchesItsMembersInInsertionOrder) {
    THandle<CifConcreteDictionary> test = test_dictionary();
    THandle<CifConcreteDictionary> extra = test_dictionary("tessary_extra.dic");
    CifDictionaryPool pool;
    EXPECT_FALSE(pool.has_definitions());
    pool.insert(test);
    pool.insert(extra);
    pool.insert(test);                              // already a member
    pool.insert(THandle<CifConcreteDictionary>());  // null
    ASSERT_EQ(pool.size(), 2u);
    EXPECT_TRUE(*pool.begin() == test);
    EXPECT_TRUE(pool.has_definitions());
    EXPECT_EQ(pool.name(), "tessary_test.dic, tessary_extra.dic");

    // The member inserted first answers for a name both define.
    EXPECT_EQ(pool.definition("_cell_formula_units_Z")->type, CifItemDefinition::Type::numb);
    EXPECT_TRUE(pool.is_defined("_tessary_colour"));
    EXPECT_EQ(pool.categories().back(), "_tessary_[]");
    EXPECT_EQ(pool.category_items("cell").size(), 7u);  // the shared name once
    EXPECT_EQ(pool.check_value("_tessary_colour", "blue", false), CifError::value_not_enumerated);

    pool.erase(test);
    EXPECT_EQ(pool.definition("_cell_formula_units_Z")->type, CifItemDefinition::Type::char_text);
    EXPECT_FALSE(pool.is_defined("_cell_length_a"));
    pool.erase(test);  // absent
    pool.erase(extra);
    EXPECT_TRUE(pool.empty());
    EXPECT_FALSE(pool.has_definitions());
}

TEST(CifDictionaryPool, KeepsTwoDictionariesOfTheSameName) {
    CifDictionaryPool pool;
    THandle<CifConcreteDictionary> first = test_dictionary();
    THandle<CifConcreteDictionary> second = test_dictionary();
    pool.insert(first);
    pool.insert(second);
    EXPECT_EQ(pool.size(), 2u);
    EXPECT_EQ(pool.definition("_cell_length_a"), first->definition("_cell_length_a"));
}

TEST(CifDictionaryPool, AnEmptyPoolChecksNothingSoReadingIsASyntaxCheck) {
    THandle<CifDictionary> empty(new CifDictionaryPool());
    THandle<Cif> cif(new Cif(empty));
    cif->read_text("data_a\n_anything 1\nloop_\n_x\n1\n");
    EXPECT_TRUE(cif->errors()->empty());
    EXPECT_EQ(cif->block(0)->find("_anything")->validate("text"), 0);
}

}  // namespace

namespace {

// The facts a dictionary keeps for every category, under every form of
// the category's name, are those its own answers give; a pool of one
// member hands them on, a pool of several keeps none.
void expect_kept_facts_agree(const THandle<CifConcreteDictionary>& dictionary) {
    auto same = [](const CifCategoryFacts& a, const CifCategoryFacts& b) {
        return a.items == b.items && a.references == b.references && a.mandatory == b.mandatory;
    };
    std::size_t with_references = 0;
    for (const std::string& category : dictionary->categories()) {
        const std::string plain = CifDictionary::plain_category_name(category);
        std::string upper = plain;
        for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        for (const std::string& form : {category, plain, "_" + plain, upper, "_" + upper + "_[]"}) {
            const CifCategoryFacts* kept = dictionary->category_facts(form);
            ASSERT_NE(kept, nullptr) << form;
            EXPECT_TRUE(same(*kept, CifCategoryFacts::of(*dictionary, form))) << form;
        }
        with_references += dictionary->category_facts(plain)->references.empty() ? 0 : 1;
    }
    EXPECT_GT(with_references, 0u);
    EXPECT_TRUE(dictionary->category_facts("no_such_category")->items.empty());
    CifDictionaryPool pool;
    pool.insert(dictionary);
    const std::string first = dictionary->categories().front();
    EXPECT_EQ(pool.category_facts(first), dictionary->category_facts(first));
    pool.insert(test_dictionary("tessary_extra.dic"));
    EXPECT_EQ(pool.category_facts(first), nullptr);
}

}  // namespace

TEST(CifConcreteDictionary, CategoryFactsKeptAtReadingAgreeWithItsOwnAnswers) {
    expect_kept_facts_agree(test_dictionary());
    THandle<CifConcreteDictionary> core = cif_test::core_dictionary();
    if (core.is_null())
        GTEST_SKIP() << "the IUCr core dictionary is not at " << cif_test::core_dictionary_path();
    expect_kept_facts_agree(core);
}

TEST(CifConcreteDictionary, EveryNameIsFoundInAnyCaseAndNothingElse) {
    THandle<CifConcreteDictionary> core = cif_test::core_dictionary();
    for (const THandle<CifConcreteDictionary>& dictionary : {test_dictionary(), core}) {
        if (dictionary.is_null()) continue;  // the core dictionary is absent
        for (std::size_t i = 0; i < dictionary->definition_count(); ++i) {
            const CifItemDefinition& definition = dictionary->definition_at(i);
            std::string upper = definition.name;
            for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            EXPECT_EQ(dictionary->definition(upper), &definition) << upper;
            EXPECT_EQ(dictionary->definition(definition.name + "~"), nullptr);
        }
        EXPECT_EQ(dictionary->definition(""), nullptr);
        EXPECT_EQ(dictionary->definition("_no_such_name"), nullptr);
    }
}
