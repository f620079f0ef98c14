// SPDX-License-Identifier: MIT
// DDLm and DDL2 dictionaries: imports, aliases, keys, and checking files against them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cif/CifCompoundValue.hpp"
#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

using cif_test::Messages;
using cif_test::messages;
using Contents = CifItemDefinition::Contents;

std::string data_path(const std::string& name) {
    return std::string(TESSARY_SOURCE_DIR) + "/tests/data/" + name;
}

THandle<CifConcreteDictionary> read_dictionary(const std::string& path, THandle<CifErrorContainer> errors) {
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    dictionary->read_file(path, errors);
    return dictionary;
}

THandle<CifConcreteDictionary> ddlm() {
    static THandle<CifConcreteDictionary> dictionary = [] {
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        THandle<CifConcreteDictionary> read = read_dictionary(data_path("ddlm/tessary_ddlm.dic"), errors);
        EXPECT_TRUE(errors->empty()) << errors->begin()->complete_message();
        return read;
    }();
    return dictionary;
}

THandle<CifConcreteDictionary> ddl2() {
    static THandle<CifConcreteDictionary> dictionary = [] {
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        THandle<CifConcreteDictionary> read = read_dictionary(data_path("ddl2/tessary_ddl2.dic"), errors);
        EXPECT_TRUE(errors->empty()) << errors->begin()->complete_message();
        return read;
    }();
    return dictionary;
}

THandle<Cif> check(const THandle<CifConcreteDictionary>& dictionary, const std::string& text) {
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(dictionary);
    THandle<Cif> cif(new Cif(pool));
    cif->read_text(text, CifParserSettings());
    return cif;
}

TEST(CifCompoundValue, ReadsNestedListsAndTablesAndRefusesBrokenText) {
    CifCompoundValue value;
    ASSERT_TRUE(
        CifCompoundValue::parse("[{'file':templ_attr.cif  'save':\"a b\"} [1 '2' '''x]y''']]", value));
    ASSERT_EQ(value.entries.size(), 2u);
    const CifCompoundValue& table = value.entries[0];
    ASSERT_EQ(table.kind, CifCompoundValue::Kind::table);
    ASSERT_NE(table.find("file"), nullptr);
    EXPECT_EQ(table.find("file")->text, "templ_attr.cif");
    EXPECT_EQ(table.find("save")->text, "a b");
    EXPECT_EQ(table.find("mode"), nullptr);
    const CifCompoundValue& list = value.entries[1];
    ASSERT_EQ(list.entries.size(), 3u);
    EXPECT_FALSE(list.entries[0].quoted);
    EXPECT_TRUE(list.entries[1].quoted);
    EXPECT_EQ(list.entries[2].text, "x]y");
    for (const char* broken : {"[1 2", "{'a' 1}", "{a:1}", "[1]]", "['x]", ""})
        EXPECT_FALSE(CifCompoundValue::parse(broken, value)) << broken;
}

TEST(CifDdlmDictionary, ImportsFillDefinitionsAndOwnAttributesWin) {
    THandle<CifConcreteDictionary> dictionary = ddlm();
    EXPECT_EQ(dictionary->language(), CifConcreteDictionary::Language::ddlm);
    EXPECT_EQ(dictionary->descriptor().text(), "TESSARY_DDLM 1.0.0 (2026-11-24)");
    const CifItemDefinition* length = dictionary->definition("_cell.length_a");
    ASSERT_NE(length, nullptr);
    EXPECT_EQ(length->notes().units, "angstroms");
    EXPECT_NE(length->notes().definition.find("A length of the unit cell."), std::string::npos);
    EXPECT_EQ(length->uncertainty, CifItemDefinition::Uncertainty::allowed);
    EXPECT_EQ(length->type, CifItemDefinition::Type::numb);
    EXPECT_TRUE(length->has_minimum && !length->has_maximum);
    // The frame's own range, not the template's 0.0:180.0.
    const CifItemDefinition* alpha = dictionary->definition("_cell.angle_alpha");
    ASSERT_NE(alpha, nullptr);
    EXPECT_EQ(alpha->range_text, "10.0:170.0");
    EXPECT_EQ(alpha->notes().units, "degrees");
    // A template that imports the permitted values in turn.
    const CifItemDefinition* flag = dictionary->definition("_atom_site.calc_flag");
    ASSERT_NE(flag, nullptr);
    ASSERT_EQ(flag->enumerations.size(), 3u);
    EXPECT_EQ(flag->enumerations[1].value, "calc");
    EXPECT_EQ(flag->notes().enumeration_default, "d");
    EXPECT_EQ(flag->contents, Contents::code);
}

TEST(CifDdlmDictionary, ImportsThatCannotBeFoundAreErrorsUnlessIgnored) {
    const std::string directory = std::filesystem::temp_directory_path() / "tessary_ddlm_imports";
    std::filesystem::create_directories(directory);
    const std::string head =
        "#\\#CIF_2.0\ndata_D\n_dictionary.title D\n_dictionary.ddl_conformance 4.2.0\n"
        "save_x\n_definition.id '_x.y'\n_name.category_id x\n_type.contents Real\n";
    struct Case {
        const char* import;
        int errors;
    };
    const Case cases[] = {
        {"[{'file':nowhere.cif 'save':a}]", 1},
        {"[{'file':nowhere.cif 'save':a 'miss':Ignore}]", 0},
        {"[{'file':templ.cif 'save':absent}]", 1},
        {"[{'file':templ.cif 'save':Units}]", 0},  // frame names compared without case
        {"[{'file'}]", 1},
    };
    std::ofstream(directory + "/templ.cif") << "data_T\nsave_units\n_units.code metres\nsave_\n";
    for (const Case& c : cases) {
        std::ofstream(directory + "/d.dic") << head << "_import.get " << c.import << "\nsave_\n";
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        THandle<CifConcreteDictionary> dictionary = read_dictionary(directory + "/d.dic", errors);
        EXPECT_EQ(errors->empty(), c.errors == 0) << c.import;
        ASSERT_NE(dictionary->definition("_x.y"), nullptr) << c.import;
    }
    std::filesystem::remove_all(directory);
}

TEST(CifDdlmDictionary, OlderNamesFindTheSameDefinitionAndCategoriesKeepTheirOrder) {
    THandle<CifConcreteDictionary> dictionary = ddlm();
    EXPECT_EQ(dictionary->definition("_cell_length_a"), dictionary->definition("_cell.length_a"));
    EXPECT_EQ(dictionary->definition("_ATOM_SITE_LABEL"), dictionary->definition("_atom_site.label"));
    EXPECT_EQ(dictionary->categories(),
              (std::vector<std::string>{"CELL", "ATOM_TYPE", "ATOM_TYPE_SCAT", "ATOM_SITE"}));
    EXPECT_EQ(dictionary->category_items("_atom_site_[]"),
              (std::vector<std::string>{"_atom_site.label", "_atom_site.part", "_atom_site.type_symbol",
                                        "_atom_site.calc_flag", "_atom_site.symop", "_atom_site.extra"}));
    const CifItemDefinition* category = dictionary->definition("ATOM_SITE");
    ASSERT_NE(category, nullptr);
    EXPECT_TRUE(category->is_category_overview());
    EXPECT_EQ(dictionary->definition("_cell.volume")->list, CifItemDefinition::List::no);
    EXPECT_EQ(dictionary->definition("_atom_site.part")->list, CifItemDefinition::List::both);
    EXPECT_EQ(dictionary->definition("_atom_site.type_symbol")->list_link_parent,
              (std::vector<std::string>{"_atom_type.symbol", "_atom_type_symbol"}));
}

TEST(CifDictionary, AliasesAreToldWhereSomeDefinitionGivesThem) {
    THandle<CifConcreteDictionary> ddl1 = cif_test::test_dictionary();
    auto pool = [](std::vector<THandle<CifConcreteDictionary>> members) {
        THandle<CifDictionaryPool> result(new CifDictionaryPool());
        for (const THandle<CifConcreteDictionary>& member : members) result->insert(member);
        return result;
    };
    struct Case {
        const char* what;
        const CifDictionary& dictionary;
        bool aliases;
    };
    THandle<CifDictionaryPool> empty = pool({}), ddl1_only = pool({ddl1}), mixed = pool({ddl1, ddlm()});
    const CifConcreteDictionary unread;
    const Case cases[] = {
        {"DDL1", *ddl1, false},
        {"DDLm", *ddlm(), true},
        {"DDL2", *ddl2(), true},
        {"nothing read", unread, false},
        {"empty pool", *empty, false},
        {"pool of DDL1", *ddl1_only, false},
        {"pool of DDL1 and DDLm", *mixed, true},
    };
    for (const Case& c : cases) EXPECT_EQ(c.dictionary.has_aliases(), c.aliases) << c.what;
}

TEST(CifDdlmDictionary, ValuesAreCheckedByContentsPurposeRangeAndState) {
    struct Case {
        const char* text;
        Messages expected;
    };
    const Case cases[] = {
        {"_cell_length_a 5.0(1)", {}},  // a measurand takes an uncertainty
        {"_cell.volume 100(2)", {{343, 2}}},
        {"_cell_length_a 0.5", {{325, 2}}},
        {"_cell_angle_alpha 175", {{325, 2}}},
        {"_cell_angle_alpha abc", {{324, 2}}},
        {"_cell_formula_units_Z 2.5", {{324, 2}}},
        {"_cell_formula_units_Z -1", {{325, 2}}},
        {"_cell_formula_units_Z 4", {}},
        {"_cell.measured 2026-11-24", {}},
        {"_cell.measured 2026-11", {{324, 2}}},
        {"_cell.measured 2005-28-12", {{324, 2}}},  // no 28th month
        {"_cell.measured 'next week'", {{324, 2}}},
        {"_atom_site_calc_flag CALC", {}},  // codes in any case
        {"_atom_site_calc_flag x", {{326, 2}}},
        {"_atom_site.symop 2_565", {}},
        {"_atom_site.symop 2_1_-1_0", {}},
        {"_atom_site.symop -1_656", {}},  // an inverse, as some programs write it
        {"_atom_site.symop 2_5x5", {{324, 2}}},
        {"_atom_site.label 'C 1'", {{324, 2}}},
        {"_cell_lenght_a 5", {{320, 2}}},
        {"_cell_old_volume 5", {{356, 2}}},
        {"_cell_old_volume 5\n_cell_volume 5", {{356, 2}, {367, 2}}},
        {"loop_\n_cell_length_a\n1\n2", {{328, 3}}},  // a Set is never looped
        {"_atom_site_label C1", {}},                  // a Loop category may stand alone
    };
    for (const Case& c : cases) {
        THandle<Cif> cif = check(ddlm(), std::string("data_a\n") + c.text + "\n");
        EXPECT_EQ(messages(*cif), c.expected) << c.text;
    }
}

TEST(CifDdlmDictionary, ContainersTakeListsOfTheirSize) {
    struct Case {
        const char* value;
        bool accepted;
    };
    const Case cases[] = {
        {"[[1 0] [0 1.5(2)]]", true},
        {"[[1 0] [0 1] [0 0]]", false},
        {"[[1 0] [0 x]]", false},
        {"[1 0]", false},
        {"1", false},
        {"'[[1 0] [0 1]]'", false},
        {"?", true},
    };
    for (const Case& c : cases) {
        THandle<Cif> cif =
            check(ddlm(), std::string("#\\#CIF_2.0\ndata_a\n_cell.orientation ") + c.value + "\n");
        EXPECT_EQ(messages(*cif).empty(), c.accepted) << c.value;
    }
}

TEST(CifDdlmDictionary, LoopsAreKeyedByTheirCategoryKeyAndLinkedToTheirParents) {
    struct Case {
        const char* text;
        Messages expected;
    };
    const Case cases[] = {
        // A composite key repeats only when all of its columns do, old names or new.
        {"loop_\n_atom_site_label\n_atom_site_part\nC1 1\nC1 2\n", {}},
        {"loop_\n_atom_site_label\n_atom_site.part\nC1 1\nC1 1\n", {{369, 6}}},
        // A key not all there is not checked, and its missing part is remarked on.
        {"loop_\n_atom_site_label\nC1\nC1\n", {{358, 3}}},
        // An inner Loop category joins its outer one's loop.
        {"loop_\n_atom_type_symbol\n_atom_type_scat_source\nC x\n", {{358, 4}}},
        {"loop_\n_atom_type_symbol\n_atom_site_label\nC x\n", {{329, 4}, {358, 4}}},
        // Parents are found under either name.
        {"loop_\n_atom_site_label\n_atom_site_part\n_atom_site_type_symbol\nC1 1 C\n", {{357, 5}}},
        {"loop_\n_atom_type.symbol\nC\nloop_\n_atom_site_label\n_atom_site_type_symbol\nC1 C\nO1 O\n",
         {{358, 6}, {360, 9}}},
    };
    for (const Case& c : cases) {
        THandle<Cif> cif = check(ddlm(), std::string("data_a\n") + c.text);
        EXPECT_EQ(messages(*cif), c.expected) << c.text;
    }
}

TEST(CifDdl2Dictionary, FramesGiveTypesRangesKeysAndLinks) {
    THandle<CifConcreteDictionary> dictionary = ddl2();
    EXPECT_EQ(dictionary->language(), CifConcreteDictionary::Language::ddl2);
    EXPECT_EQ(dictionary->categories(), (std::vector<std::string>{"entity", "atom_site"}));
    // Defined in the frame of its parent.
    const CifItemDefinition* child = dictionary->definition("_atom_site.entity_id");
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->category, "atom_site");
    EXPECT_EQ(child->list_link_parent, (std::vector<std::string>{"_entity.id"}));
    EXPECT_EQ(dictionary->definition("_atom_site_label"), dictionary->definition("_atom_site.id"));
    const CifItemDefinition* model = dictionary->definition("_atom_site.model");
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->range_text, "1:");
    EXPECT_EQ(model->category_keys, (std::vector<std::string>{"_atom_site.id", "_atom_site.model"}));

    struct Case {
        const char* text;
        Messages expected;
    };
    const Case cases[] = {
        {"_atom_site.model 1.5", {{324, 2}}},
        {"_atom_site.model 0", {{325, 2}}},
        {"_atom_site.occupancy 0.5(1)", {}},
        {"_atom_site.occupancy 1.2", {{325, 2}}},
        {"_atom_site.date 2001-1-02", {}},
        {"_atom_site.date 1.2.2001", {{324, 2}}},
        {"_entity.type POLYMER", {}},
        {"_entity.type other", {{326, 2}}},
        {"_entity.name x", {{320, 2}}},
        {"loop_\n_atom_site.id\n_atom_site.model\na 1\na 2\na 1\n", {{369, 7}}},
        {"loop_\n_atom_site.id\n_atom_site.model\n_atom_site.entity_id\na 1 1\n", {{357, 5}}},
    };
    for (const Case& c : cases) {
        THandle<Cif> cif = check(dictionary, std::string("data_a\n") + c.text + "\n");
        EXPECT_EQ(messages(*cif), c.expected) << c.text;
    }
}

TEST(CifDdlmDictionary, TheCoreDictionaryReadsWithItsImportsAndChecksOldNames) {
    const std::string path = std::string(TESSARY_SHARED_DIR) + "/dictionaries/ddlm/cif_core.dic";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "absent: " << path;
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    THandle<CifConcreteDictionary> core = read_dictionary(path, errors);
    ASSERT_TRUE(errors->empty()) << errors->begin()->complete_message();
    EXPECT_GT(core->definition_count(), 1000u);
    const CifItemDefinition* length = core->definition("_cell_length_a");
    ASSERT_NE(length, nullptr);
    EXPECT_EQ(length->name, "_cell.length_a");
    EXPECT_EQ(length->notes().units, "angstroms");  // from the imported template
    EXPECT_FALSE(core->definition("_space_group_symop.operation_xyz")->category_keys.empty());
    THandle<Cif> cif =
        check(core,
              "data_a\n_cell_length_a 5.0(1)\n_cell.length_b -5\n_symmetry_cell_setting cubic\n"
              "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_type_symbol\nC1 0.1 C\n");
    EXPECT_EQ(messages(*cif), (Messages{{325, 3}, {356, 4}, {357, 8}}));
}

TEST(CifDdl2Dictionary, TheMacromolecularDictionaryReadsWhole) {
    const std::string path = "/usr/share/libcifpp/mmcif_pdbx.dic";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "absent: " << path;
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    THandle<CifConcreteDictionary> pdbx = read_dictionary(path, errors);
    ASSERT_TRUE(errors->empty()) << errors->begin()->complete_message();
    EXPECT_GT(pdbx->definition_count(), 5000u);
    const CifItemDefinition* x = pdbx->definition("_atom_site.Cartn_x");
    ASSERT_NE(x, nullptr);
    EXPECT_EQ(x->type, CifItemDefinition::Type::numb);
    THandle<Cif> cif = check(pdbx,
                             "data_a\nloop_\n_atom_site.group_PDB\n_atom_site.id\n_atom_site.Cartn_x\n"
                             "ATOM 1 1.0\nATOM 1 x\nBAD 2 2.0\n");
    EXPECT_EQ(messages(*cif), (Messages{{324, 7}, {359, 7}, {326, 8}}));
}

}  // namespace
