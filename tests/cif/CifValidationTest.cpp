// SPDX-License-Identifier: MIT
// Checking a document against a dictionary while it is read.
// Each finding comes with its code, kind and the line of what it is about.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cif/CifEditDistance.hpp"
#include "cif/CifLoopKeys.hpp"
#include "cif/CifNumber.hpp"
#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

using cif_test::Messages;
using cif_test::messages;
using cif_test::read_checked;

TEST(CifValidation, DataNamesTheDictionaryLacksAreWarnedOnTheirOwnLines) {
    THandle<Cif> cif = read_checked(
        "data_a\n"              // 1
        "_cell_length_a 5.0\n"  // 2
        "_cell_lenght_b 5.0\n"  // 3
        "_vrf_PLAT029_a\n"      // 4
        ";\nanswer\n;\n"        // 5-7
        "loop_\n"               // 8
        "_atom_site_label\n"    // 9
        "_atom_site_colour\n"   // 10
        "C1 red\n");            // 11
    EXPECT_EQ(messages(*cif), (Messages{{320, 3}, {320, 4}, {320, 10}}));
    EXPECT_EQ((*cif->errors())[0].type(), CifError::warning);
    EXPECT_EQ((*cif->errors())[1].text(), "_vrf_PLAT029_a");  // the editor drops these, the library does not
    EXPECT_EQ((*cif->errors())[2].message(), "Created non-standard data item _atom_site_colour");
}

TEST(CifValidation, AMisspeltNameIsOfferedTheNearestDefinedNames) {
    struct Case {
        const char* name;
        const char* suggestion;  // what follows the warning's data name
    };
    const Case cases[] = {
        {"_cell_lenght_b", "; did you mean _cell_length_b?"},  // two letters swapped: one edit
        {"_CELL_LENGHT_B", "; did you mean _cell_length_b?"},  // case aside, spelt as defined
        {"_cell_lngth_bb", "; did you mean _cell_length_b?"},  // two edits
        {"_cell_length_x", "; did you mean _cell_length_a, _cell_length_b or _cell_length_c?"},
        {"_atom_site_fract_xx", "; did you mean _atom_site_fract_x?"},  // the nearest only, not _y
        {"_cell_lnghtt_b", ""},                                         // three edits
        {"_made_up_item", ""},
        {"_vrf_cell_length_a", ""},  // validation replies are meant to be undefined
        {"_refln_xF_squared_meas", "; did you mean _refln_F_squared_meas?"},
        {"_refln_vrF_squared_meas", ""},  // two edits away, but "_vrf" within, in any case
        {"_refln_VRF_squared_meas", ""},
        {"_celx", ""},  // too short to guess at
    };
    for (const Case& c : cases) {
        THandle<Cif> cif = read_checked(std::string("data_a\n") + c.name + " 5.0\n");
        ASSERT_EQ(cif->errors()->size(), 1u) << c.name;
        EXPECT_EQ((*cif->errors())[0].message(),
                  std::string("Created non-standard data item ") + c.name + c.suggestion)
            << c.name;
    }
    // A loop's column gets the same help.
    THandle<Cif> looped = read_checked("data_a\nloop_\n_atom_site_label\n_atom_site_ocupancy\nC1 1.0\n");
    ASSERT_EQ(looped->errors()->size(), 1u);
    EXPECT_EQ((*looped->errors())[0].message(),
              "Created non-standard data item _atom_site_ocupancy; did you mean _atom_site_occupancy?");
}

TEST(CifValidation, SuggestionsFollowTheDictionaryAskedAlsoForANameAskedBefore) {
    // Suggestions are remembered per thread under the dictionary: the same
    // misspelt name, asked of dictionaries in turn, gets each one's answer.
    auto definitions = [](std::vector<std::string> names) {
        std::string text;
        for (const std::string& name : names) text += "data" + name + "\n_name '" + name + "'\n_type numb\n";
        return text;
    };
    THandle<CifErrorContainer> errors(new CifErrorContainer());
    THandle<CifConcreteDictionary> b =
        cif_test::dictionary_from_text(definitions({"_cell_length_b"}), errors);
    THandle<CifConcreteDictionary> c =
        cif_test::dictionary_from_text(definitions({"_cell_length_c"}), errors);
    THandle<CifConcreteDictionary> again =
        cif_test::dictionary_from_text(definitions({"_cell_length_b"}), errors);
    ASSERT_TRUE(errors->empty());
    THandle<CifDictionaryPool> both(new CifDictionaryPool());
    both->insert(b);
    both->insert(c);
    auto suggestion = [](THandle<CifDictionary> dictionary) {
        THandle<Cif> cif(new Cif(dictionary));
        cif->read_text("data_a\n_cell_length_x 5.0\n", CifParserSettings());
        return cif->errors()->size() == 1 ? (*cif->errors())[0].detail() : std::string("?");
    };
    struct Case {
        const char* what;
        std::function<void()> before;  // a change to the dictionaries, if any
        THandle<CifDictionary> dictionary;
        const char* expected;
    };
    const Case cases[] = {
        {"first dictionary", {}, b, "; did you mean _cell_length_b?"},
        {"second dictionary", {}, c, "; did you mean _cell_length_c?"},
        {"first again", {}, b, "; did you mean _cell_length_b?"},
        {"a pool of both", {}, both, "; did you mean _cell_length_b or _cell_length_c?"},
        {"another dictionary read from the same text", {}, again, "; did you mean _cell_length_b?"},
        {"first once more", {}, b, "; did you mean _cell_length_b?"},
        {"the first read again with other names",
         [&] {
             std::istringstream stream(definitions({"_cell_length_a", "_cell_length_d"}));
             b->read(stream, errors, nullptr);
         },
         b, "; did you mean _cell_length_a or _cell_length_d?"},
        {"the pool after its member changed",
         {},
         both,
         "; did you mean _cell_length_a, _cell_length_d or _cell_length_c?"},
        {"a dictionary without the name's neighbours",
         {},
         cif_test::dictionary_from_text(definitions({"_made_up"}), errors),
         ""},
    };
    for (const Case& step : cases) {
        if (step.before) step.before();
        EXPECT_EQ(suggestion(step.dictionary), step.expected) << step.what;
    }
}

TEST(CifEditDistance, CountsInsertionsRemovalsReplacementsAndSwapsUpToTheBound) {
    struct Case {
        const char* a;
        const char* b;
        int bound;
        int distance;
    };
    const Case cases[] = {
        {"length", "length", 2, 0},
        {"Length", "lENGTH", 2, 0},
        {"length", "lenght", 2, 1},
        {"length", "lengths", 2, 1},
        {"length", "lenth", 2, 1},
        {"length", "lemgth", 2, 1},
        {"abcdef", "badcfe", 3, 3},
        {"kitten", "sitting", 5, 3},
        {"kitten", "sitting", 2, 3},
        {"abc", "", 2, 3},
        {"", "ab", 2, 2},
        {"ca", "abc", 3, 3},
        {"abc", "abc", 0, 0},
        {"abc", "abd", 0, 1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(cif_edit_distance(c.a, c.b, c.bound), c.distance) << c.a << " " << c.b << " " << c.bound;
        EXPECT_EQ(cif_edit_distance(c.b, c.a, c.bound), c.distance) << c.b << " " << c.a << " " << c.bound;
    }
    // The banded count agrees with the whole table on many short names of
    // few letters, where edits overlap most.
    const auto whole = [](const std::string& a, const std::string& b) {
        std::vector<std::vector<int>> d(a.size() + 1, std::vector<int>(b.size() + 1));
        for (std::size_t i = 0; i <= a.size(); ++i)
            for (std::size_t j = 0; j <= b.size(); ++j) {
                if (i == 0 || j == 0) {
                    d[i][j] = static_cast<int>(i + j);
                    continue;
                }
                d[i][j] =
                    std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
                if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                    d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
            }
        return d[a.size()][b.size()];
    };
    std::mt19937 random(19);
    const auto word = [&random] {
        std::string text(random() % 9, ' ');
        for (char& c : text) c = "ab_c"[random() % 4];
        return text;
    };
    for (int n = 0; n < 3000; ++n) {
        const std::string a = word(), b = word();
        const int bound = static_cast<int>(random() % 4);
        EXPECT_EQ(cif_edit_distance(a, b, bound), std::min(whole(a, b), bound + 1))
            << a << " " << b << " " << bound;
    }
    // The letter sets never rule out a name that is near: their floor stays
    // at or under the count, also over more letters than sets have classes.
    const auto long_word = [&random] {
        std::string text(random() % 12, ' ');
        for (char& c : text) c = "aB_9.-~zQ\x80"[random() % 10];
        return text;
    };
    for (int n = 0; n < 3000; ++n) {
        const std::string a = long_word(), b = n % 2 == 0 ? long_word() : a.substr(0, a.size() / 2) + "xY";
        EXPECT_LE(cif_edit_distance_floor(cif_letter_set(a), cif_letter_set(b)), whole(a, b))
            << a << " " << b;
    }
}

TEST(CifDictionaryPool, SimilarNamesOfSeveralMembersAreMergedNearestFirstEachOnce) {
    THandle<CifDictionaryPool> pool = cif_test::test_pool();
    pool->insert(cif_test::test_dictionary("tessary_extra.dic"));
    pool->insert(cif_test::test_dictionary());  // the same object again is not a second member
    std::vector<std::string> names;
    for (const CifDictionary::SimilarName& similar : pool->similar_names("_cell_formula_units_z", 2))
        names.push_back(similar.name + " " + std::to_string(similar.edits));
    // Both dictionaries define _cell_formula_units_Z; it is named once.
    EXPECT_EQ(names, std::vector<std::string>{"_cell_formula_units_Z 0"});
    EXPECT_TRUE(pool->similar_names("_tessary_colour", 1).front().name == "_tessary_colour");
    EXPECT_TRUE(pool->similar_names("_tessary_[]", 2).empty());  // overviews are no suggestion
}

TEST(CifValidation, NumbersAreCheckedForTheirFormAndUncertainty) {
    THandle<Cif> cif = read_checked(
        "data_a\n"
        "_cell_length_a 10.234(2)\n"     // 2: fine
        "_cell_length_b four\n"          // 3: text where a number belongs
        "_cell_length_c 10,234(2)\n"     // 4: a malformed number
        "_cell_angle_alpha 90.0(0.3)\n"  // 5: uncertainty not in digits of the last place
        "_cell_angle_beta 101.2(3\n"     // 6: unclosed uncertainty
        "_cell_angle_gamma ?\n"          // 7: unknown is always fine
        "_cell_formula_units_Z 4(1)\n"   // 8: Z carries no uncertainty
        "_atom_site_fract_x .\n");       // 9: so is inapplicable (but _list yes: 327)
    EXPECT_EQ(messages(*cif), (Messages{{324, 3}, {354, 4}, {355, 5}, {355, 6}, {343, 8}, {327, 9}}));
    EXPECT_EQ((*cif->errors())[0].message(),
              "Value of _cell_length_b is not of the type the dictionary gives (numb)");
    for (const char* good : {"1.5e3(2)", "+2", ".5", "5.", "1E-2", "0.0012(3)", "12.5e+01"}) {
        THandle<Cif> fine = read_checked(std::string("data_a\n_cell_length_a ") + good + "\n");
        EXPECT_TRUE(fine->errors()->empty()) << good;
    }
    for (const char* bad : {"1e", "--1", "1.2.3", "1(2)3", "'?'", "1.5()", "(3)", "1 .5x"}) {
        THandle<Cif> wrong = read_checked(std::string("data_a\n_cell_angle_beta ") + bad + "\n");
        EXPECT_FALSE(wrong->errors()->empty()) << bad;
        EXPECT_EQ(wrong->errors()->begin()->line(), 2) << bad;
    }
}

TEST(CifValidation, EnumeratedValuesMatchExactlyAndACaseDifferenceIsOnlyAWarning) {
    THandle<Cif> cif = read_checked(
        "data_a\n_exptl_absorpt_correction_type multi-scan\n"
        "data_b\n_exptl_absorpt_correction_type Multi-Scan\n"
        "data_c\n_exptl_absorpt_correction_type multiscan\n");
    EXPECT_EQ(messages(*cif), (Messages{{326, 4}, {326, 6}}));
    const CifError& near = (*cif->errors())[0];
    const CifError& wrong = (*cif->errors())[1];
    EXPECT_EQ(near.type(), CifError::warning);
    EXPECT_EQ(near.message(),
              "Value of _exptl_absorpt_correction_type is not one of the permitted values (differs in case "
              "from multi-scan)");
    EXPECT_EQ(wrong.type(), CifError::error);
    EXPECT_EQ(wrong.detail(), " (analytical, multi-scan, none)");

    // Codes of a concatenated series may be combined.
    THandle<Cif> flags =
        read_checked("data_a\nloop_\n_atom_site_label\n_atom_site_refinement_flags\nC1 SP\nC2 .\nC3 SX\n");
    EXPECT_EQ(messages(*flags), (Messages{{326, 7}}));
}

TEST(CifValidation, RangesAllowThreeUncertaintiesBeyondTheirEnds) {
    THandle<Cif> cif = read_checked(
        "data_a\n"
        "_cell_angle_alpha 180.2(1)\n"  // 2: within 3u of 180
        "_cell_angle_beta 180.5(1)\n"   // 3: beyond
        "_cell_angle_gamma -0.1\n"      // 4: no uncertainty, no slack
        "_cell_length_a -0.0002(1)\n"   // 5: within 3u of 0
        "_cell_formula_units_Z 0\n"     // 6: at least 1
        "loop_\n_atom_site_label\n_atom_site_occupancy\n"
        "C1 1.02(1)\n"    // 10
        "C2 1.05(1)\n");  // 11
    EXPECT_EQ(messages(*cif), (Messages{{325, 3}, {325, 4}, {325, 6}, {325, 11}}));
    EXPECT_EQ((*cif->errors())[0].message(),
              "Value of _cell_angle_beta is outside the permitted range 0.0:180.0");
}

TEST(CifValidation, LoopRulesOfTheDictionaryHold) {
    THandle<Cif> cif = read_checked(
        "data_a\n"
        "_atom_site_label C1\n"  // 2: must be looped (warning)
        "loop_\n"                // 3
        "_cell_length_a\n"       // 4: must not be looped
        "5.0\n"                  // 5
        "data_b\n"               // 6
        "loop_\n"                // 7
        "_atom_site_label\n"     // 8
        "_atom_site_fract_x\n"   // 9
        "_atom_type_symbol\n"    // 10: another category
        "C1 0.5 C\n");           // 11
    EXPECT_EQ(messages(*cif), (Messages{{327, 2}, {328, 4}, {329, 10}}));
    EXPECT_EQ((*cif->errors())[0].type(), CifError::warning);
    EXPECT_EQ((*cif->errors())[1].type(), CifError::error);
    EXPECT_EQ((*cif->errors())[2].text(), "_atom_site_label, _atom_type_symbol");

    // One category, but rows of two lists: atom sites and their anisotropic parameters.
    THandle<Cif> mixed = read_checked(
        "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_aniso_U_11\nC1 0.1 0.02\n");
    EXPECT_EQ(messages(*mixed), (Messages{{329, 5}, {358, 5}}));
}

TEST(CifValidation, LoopsNeedTheItemsTheirColumnsReferToAndTheMandatoryOnes) {
    THandle<Cif> cif = read_checked(
        "data_a\n"
        "loop_\n"                  // 2
        "_atom_site_aniso_U_11\n"  // 3: refers to _atom_site_aniso_label
        "_atom_site_aniso_U_22\n"  // 4
        "0.02 0.03\n"              // 5
        "loop_\n"                  // 6
        "_refln_index_h\n"         // 7: _refln_index_l is mandatory too
        "_refln_index_k\n"         // 8
        "1 2\n"                    // 9
        "loop_\n"                  // 10
        "_refln_F_squared_meas\n"  // 11: refers to the whole _refln_index_ family
        "12.5\n");                 // 12
    EXPECT_EQ(messages(*cif), (Messages{{358, 3}, {358, 7}, {358, 11}}));
    EXPECT_EQ((*cif->errors())[0].message(),
              "Loop of _atom_site_aniso_U_11 lacks its key data item _atom_site_aniso_label");
    EXPECT_EQ((*cif->errors())[1].detail(), "_refln_index_l");
    EXPECT_EQ((*cif->errors())[2].detail(), "_refln_index_h, _refln_index_k, _refln_index_l");

    // Complete loops, and items that may stand alone, pass.
    THandle<Cif> fine = read_checked(
        "data_a\n_publ_author_name 'A. Author'\n_publ_author_address 'Somewhere'\n"
        "loop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n_refln_observed_"
        "status\n"
        "1 2 3 12.5 o\n-1 0 2 3.25 <\n");
    EXPECT_TRUE(fine->errors()->empty()) << fine->errors()->begin()->complete_message();
}

TEST(CifValidation, ChildItemsNeedTheirParentAndItsValues) {
    THandle<Cif> cif = read_checked(
        "data_a\n"
        "loop_\n"                   // 2
        "_atom_site_label\n"        // 3
        "_atom_site_type_symbol\n"  // 4: no _atom_type_symbol in the block
        "C1 C\n"                    // 5
        "loop_\n"                   // 6
        "_atom_site_aniso_label\n"  // 7
        "_atom_site_aniso_U_11\n"   // 8
        "C1 0.02\n"                 // 9
        "N9 0.03\n"                 // 10: no such site
        "N9 0.04\n");               // 11: reported once; a repeated key, too
    EXPECT_EQ(messages(*cif), (Messages{{357, 4}, {360, 10}, {359, 11}}));
    EXPECT_EQ((*cif->errors())[0].type(), CifError::remark);   // a missing parent item is a note
    EXPECT_EQ((*cif->errors())[1].type(), CifError::warning);  // a value missing from a parent is not
    EXPECT_EQ((*cif->errors())[0].message(),
              "Data item _atom_site_type_symbol requires _atom_type_symbol, which is missing");
    EXPECT_EQ((*cif->errors())[1].message(),
              "Value N9 of _atom_site_aniso_label has no matching row in its parent item");

    THandle<Cif> typed = read_checked(
        "data_a\nloop_\n_atom_type_symbol\nC\nloop_\n_atom_site_label\n_atom_site_type_symbol\nC1 C\nN1 N\n");
    EXPECT_EQ(messages(*typed), (Messages{{360, 9}}));
}

TEST(CifValidation, LoopedValuesAreReportedOnTheirOwnLinesAlsoDeepInALargeLoop) {
    std::string text =
        "data_a\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_observed_status\n";
    const int rows = 40000;  // more rows than one batch of checked values
    for (int r = 0; r < rows; ++r) {
        const std::string h = std::to_string(r);  // the indices are the loop's key
        if (r == 3) {
            text += h + " 2\n3 o\n";  // a row over two lines
        } else if (r == rows - 2) {
            text += h + " 2 3 z\n";  // a bad code
        } else if (r == rows - 1) {
            text += h + " 2 x7 o\n";  // a bad number
        } else {
            text += h + " 2 3 o\n";
        }
    }
    text += "_cell_length_a 'x'\n";
    THandle<Cif> cif = read_checked(text);
    const int last_row_line = 6 + rows + 1;  // the split row adds one line
    EXPECT_EQ(messages(*cif),
              (Messages{{326, last_row_line - 1}, {324, last_row_line}, {324, last_row_line + 1}}));

    THandle<Cif> split =
        read_checked("data_a\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n1 2\n3.5e\n");
    EXPECT_EQ(messages(*split), (Messages{{354, 7}}));
}

TEST(CifValidation, ValidateAnswersWithTheCodeOfTheFirstProblem) {
    THandle<Cif> cif = read_checked(
        "data_a\n_cell_length_a 5\n_exptl_absorpt_correction_type none\n_local_thing 3\n"
        "loop_\n_atom_site_label\n_atom_site_occupancy\nC1 1\n");
    THandle<CifDataBlock> block = cif->block(0);
    THandle<CifDataItem> length = block->find("_cell_length_a");
    EXPECT_EQ(length->validate("5.1(2)"), 0);
    EXPECT_EQ(length->validate("?"), 0);
    EXPECT_EQ(length->validate("-1"), CifError::value_out_of_range);
    // A negative number within three uncertainties of the minimum meets it.
    EXPECT_EQ(length->validate("-0.1(1)"), 0);
    EXPECT_EQ(length->validate("-5(1)"), CifError::value_out_of_range);
    EXPECT_EQ(length->validate("+.5e2"), 0);
    EXPECT_EQ(length->validate("five"), CifError::wrong_value_type);
    EXPECT_EQ(block->find("_exptl_absorpt_correction_type")->validate("numerical"),
              CifError::value_not_enumerated);
    EXPECT_EQ(block->find("_exptl_absorpt_correction_type")->validate("None"),
              CifError::value_not_enumerated);
    EXPECT_EQ(block->find("_local_thing")->validate("anything"), 0);
    EXPECT_EQ(block->find("_atom_site_occupancy")->validate("0.5(1)"), 0);
    EXPECT_EQ(block->find("_atom_site_occupancy")->validate("2"), CifError::value_out_of_range);
    // An item that must not be looped is refused in a loop whatever its value.
    cif->block(0)->create_loop({"_cell_length_a", "_atom_site_label"});
    EXPECT_EQ(block->find("_cell_length_a")->validate("5"), CifError::item_must_not_be_looped);
}

TEST(CifValidation, ValidateValuesLooksAtEveryRowOfAColumnAndAtTheLoopRule) {
    // 70,000 rows fill more than one chunk of a column; the bad value sits
    // in the second chunk or in the first row.
    const auto atoms = [](int rows, int bad_row, const std::string& bad) {
        std::string text =
            "data_a\n_cell_length_a 5\n_local_thing x\nloop_\n_atom_site_label\n"
            "_atom_site_occupancy\n_atom_site_refinement_flags\n";
        for (int r = 0; r < rows; ++r) {
            // Piece by piece: GCC 12 at -O3 takes "C" + std::string for an
            // overlapping copy (-Wrestrict, a known false alarm).
            text += 'C';
            text += std::to_string(r);
            text += r == bad_row ? bad : std::string(" 0.5(1) S");
            text += '\n';
        }
        return text;
    };
    const struct {
        std::string text;
        std::string name;
        int code;
    } cases[] = {
        {atoms(70000, -1, ""), "_atom_site_occupancy", 0},
        {atoms(70000, 69000, " 1.5 S"), "_atom_site_occupancy", CifError::value_out_of_range},
        {atoms(70000, 69000, " 1.5 S"), "_atom_site_refinement_flags", 0},
        {atoms(3, 0, " 0.5 Q"), "_atom_site_refinement_flags", CifError::value_not_enumerated},
        {atoms(3, 2, " half ."), "_atom_site_occupancy", CifError::wrong_value_type},
        {atoms(3, -1, ""), "_atom_site_label", 0},
        {atoms(3, -1, ""), "_local_thing", 0},
        {atoms(3, -1, ""), "_cell_length_a", 0},
        {"data_a\n_cell_length_a -5\n", "_cell_length_a", CifError::value_out_of_range},
        {"data_a\nloop_\n_cell_length_a\n5\n6\n", "_cell_length_a", CifError::item_must_not_be_looped},
    };
    for (const auto& c : cases) {
        THandle<Cif> cif = read_checked(c.text);
        EXPECT_EQ(cif->block(0)->find(c.name)->validate_values(), c.code)
            << c.name << " in " << c.text.substr(0, 80);
    }
}

TEST(CifValidation, SettingsSwitchTheNameAndValueChecksApart) {
    const std::string text = "data_a\n_cell_length_a x\n_unknown 1\n";
    CifParserSettings names_only;
    names_only.check_values = false;
    THandle<Cif> cif(new Cif(cif_test::test_pool()));
    cif->read_text(text, names_only);
    EXPECT_EQ(messages(*cif), (Messages{{320, 3}}));
    CifParserSettings values_only;
    values_only.check_data_names = false;
    THandle<Cif> other(new Cif(cif_test::test_pool()));
    other->read_text(text, values_only);
    EXPECT_EQ(messages(*other), (Messages{{324, 2}}));
}

TEST(CifNumber, ReadsValueUncertaintyAndLastDigit) {
    CifNumber n = CifNumber::parse("10.234(5)");
    ASSERT_TRUE(n.ok());
    EXPECT_DOUBLE_EQ(n.value, 10.234);
    EXPECT_NEAR(n.uncertainty, 0.005, 1e-12);
    EXPECT_NEAR(n.unit, 0.001, 1e-12);
    CifNumber e = CifNumber::parse("-12.3e2(4)");
    EXPECT_DOUBLE_EQ(e.value, -1230.0);
    EXPECT_NEAR(e.uncertainty, 40.0, 1e-9);
    CifNumber plain = CifNumber::parse("90");
    EXPECT_FALSE(plain.has_uncertainty);
    EXPECT_DOUBLE_EQ(plain.effective_uncertainty(), 0.5);
    EXPECT_EQ(CifNumber::parse("1.2(").status, CifNumber::Status::bad_uncertainty);
    EXPECT_EQ(CifNumber::parse("x1").status, CifNumber::Status::not_a_number);
    EXPECT_EQ(CifNumber::parse("").status, CifNumber::Status::not_a_number);
}

TEST(CifNumber, OddFormsAreToldAlikeByClassifyAndParse) {
    using Status = CifNumber::Status;
    struct Case {
        const char* text;
        Status status;
        bool uncertainty;
        double value;  // for a number
    };
    const Case cases[] = {
        {"+.5", Status::ok, false, 0.5},
        {"-.5e1", Status::ok, false, -5.0},
        {"5.", Status::ok, false, 5.0},
        {"5.E-1", Status::ok, false, 0.5},
        {"007", Status::ok, false, 7.0},
        {"1e+2(3)", Status::ok, true, 100.0},
        {"-0(1)", Status::ok, true, -0.0},
        {".", Status::not_a_number, false, 0},
        {"+", Status::not_a_number, false, 0},
        {"-.", Status::not_a_number, false, 0},
        {"1e", Status::not_a_number, false, 0},
        {"1e-", Status::not_a_number, false, 0},
        {"1e(2)", Status::not_a_number, false, 0},
        {"1.2.3", Status::not_a_number, false, 0},
        {"1 ", Status::not_a_number, false, 0},
        {"1(", Status::bad_uncertainty, false, 0},
        {"1()", Status::bad_uncertainty, false, 0},
        {"1(2", Status::bad_uncertainty, false, 0},
        {"1(2))", Status::bad_uncertainty, false, 0},
        {"1(2)3", Status::bad_uncertainty, false, 0},
        {"1(-2)", Status::bad_uncertainty, false, 0},
        {"1(2.0)", Status::bad_uncertainty, false, 0},
    };
    for (const Case& c : cases) {
        bool classified_uncertainty = !c.uncertainty;
        EXPECT_EQ(CifNumber::classify(c.text, classified_uncertainty), c.status) << c.text;
        const CifNumber number = CifNumber::parse(c.text);
        EXPECT_EQ(number.status, c.status) << c.text;
        if (c.status != Status::ok) continue;
        EXPECT_EQ(classified_uncertainty, c.uncertainty) << c.text;
        EXPECT_EQ(number.has_uncertainty, c.uncertainty) << c.text;
        EXPECT_EQ(number.value, c.value) << c.text;
        EXPECT_EQ(std::signbit(number.value), std::signbit(c.value)) << c.text;
    }
}

TEST(CifNumber, TheUnitOfTheLastDigitIsThePowerOfTenTheMathLibraryGives) {
    // Written as 1eK, 0.00...1 and 1.0eK, within and beyond the tabulated range.
    for (int k = -40; k <= 40; ++k) {
        SCOPED_TRACE(k);
        EXPECT_EQ(CifNumber::parse("1e" + std::to_string(k)).unit, std::pow(10.0, k));
        if (k > 0) {
            EXPECT_EQ(CifNumber::parse("0." + std::string(k - 1, '0') + "1").unit, std::pow(10.0, -k));
        }
        EXPECT_EQ(CifNumber::parse("1.0e" + std::to_string(k)).unit, std::pow(10.0, k - 1));
    }
}

TEST(CifNumber, ValuesAreTheNearestDoubleAsTheCLibraryReadsThem) {
    // Signs, bare points, halfway cases, more digits than a double holds,
    // and values beyond its range (infinity, zero or the smallest).
    const char* texts[] = {"+1.5",
                           "-0",
                           "+.5",
                           "5.",
                           "0.1",
                           "2.675",
                           "9007199254740993",
                           "0.1000000000000000055511151231257827021181583404541015625",
                           "123456789012345678901234567890e-5",
                           "1e308",
                           "1.8e308",
                           "-1e400",
                           "1e-320",
                           "4.9e-324",
                           "2e-324",
                           "1e-400",
                           "+7E+02",
                           "3.14159(2)"};
    for (const char* text : texts) {
        const CifNumber number = CifNumber::parse(text);
        ASSERT_TRUE(number.ok()) << text;
        const std::string written(text);
        const double expected = std::strtod(written.substr(0, written.find('(')).c_str(), nullptr);
        EXPECT_EQ(std::memcmp(&number.value, &expected, sizeof expected), 0) << text << " " << number.value;
    }
}

TEST(CifNumber, ShortMantissasAndPowersAreTheCLibrarysBitsToo) {
    // Around where a mantissa or a power of ten stops being an exact double:
    // 2^53 and the integers next to it, 19 and 20 digits, exponents to 10^±23,
    // with the point anywhere and either sign.
    const std::string mantissas[] = {"9007199254740991",
                                     "9007199254740992",
                                     "9007199254740993",
                                     "1234567890123456789",
                                     "12345678901234567890",
                                     "7",
                                     "0",
                                     "3333333333333333",
                                     "18446744073709551617"};
    for (const std::string& digits : mantissas) {
        for (std::size_t point = 0; point <= digits.size(); point += 3) {
            for (int exponent = -24; exponent <= 24; ++exponent) {
                for (const char* sign : {"", "-", "+"}) {
                    std::string text(sign);
                    text.append(digits, 0, point);
                    text += '.';
                    text.append(digits, point);
                    if (exponent != 0) text.append(1, 'e').append(std::to_string(exponent));
                    const CifNumber number = CifNumber::parse(text);
                    ASSERT_TRUE(number.ok()) << text;
                    const double expected = std::strtod(text.c_str(), nullptr);
                    EXPECT_EQ(std::memcmp(&number.value, &expected, sizeof expected), 0)
                        << text << " " << number.value;
                }
            }
        }
    }
}

}  // namespace

namespace {

struct Case {
    const char* what;
    std::string text;
    Messages expected;
};

void expect_messages(const Case& c) {
    THandle<Cif> cif = read_checked(c.text);
    EXPECT_EQ(messages(*cif), c.expected) << c.what;
}

TEST(CifValidation, ReplacedNamesAreRemarksNamingTheReplacementAndAWarningBesideIt) {
    THandle<Cif> alone = read_checked("data_a\n_symmetry_cell_setting monoclinic\n");
    ASSERT_EQ(messages(*alone), (Messages{{356, 2}}));
    EXPECT_EQ((*alone->errors())[0].type(), CifError::remark);
    EXPECT_EQ((*alone->errors())[0].message(),
              "Data name _symmetry_cell_setting is obsolete; use _space_group_crystal_system");

    THandle<Cif> both =
        read_checked("data_a\n_space_group_crystal_system monoclinic\n_symmetry_cell_setting monoclinic\n");
    ASSERT_EQ(messages(*both), (Messages{{356, 3}, {367, 3}}));
    EXPECT_EQ((*both->errors())[1].type(), CifError::warning);
    EXPECT_EQ((*both->errors())[1].detail(), "_space_group_crystal_system");

    // The replacement in another block does not count; a check of values only reports neither.
    EXPECT_EQ(messages(*read_checked("data_a\n_symmetry_cell_setting cubic\ndata_b\n"
                                     "_space_group_crystal_system cubic\n")),
              (Messages{{356, 2}}));
    CifParserSettings values_only;
    values_only.check_data_names = false;
    THandle<Cif> quiet(new Cif(cif_test::test_pool()));
    quiet->read_text("data_a\n_symmetry_cell_setting cubic\n_space_group_crystal_system cubic\n",
                     values_only);
    EXPECT_TRUE(quiet->errors()->empty());
}

TEST(CifValidation, EveryKeyTheDictionaryNamesIsUniqueOnceReportedPerRepeatedValue) {
    const std::string sites = "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\nC2 0.2\nO1 0.3\n";
    const std::string bonds = sites + "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n";
    const Case cases[] = {
        {"a type three times: once, on the first repetition",
         "data_a\nloop_\n_atom_type_symbol\nC\nO\nC\nC\n",
         {{359, 6}}},
        {"unknown and inapplicable values identify nothing",
         "data_a\nloop_\n_atom_type_symbol\n?\n?\n.\n.\n",
         {}},
        {"a reflection twice: the three indices are one key",
         "data_a\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n"
         "1 0 0 2.5\n0 1 0 2.5\n1 0 0 3.5\n",
         {{369, 9}}},
        {"an incomplete family is no key: only the missing index is reported",
         "data_a\nloop_\n_refln_index_h\n_refln_index_k\n1 0\n1 0\n",
         {{358, 3}}},
        {"a bond twice between the same sites",
         bonds + "_geom_bond_distance\nC1 C2 1.5\nC1 C2 1.5\n",
         {{369, 13}}},
        {"the same sites under other symmetry are other bonds",
         bonds + "_geom_bond_site_symmetry_2\nC1 C2 .\nC1 C2 2_655\nC1 O1 .\nC1 O1 .\n",
         {{369, 15}}},
        {"an anisotropic label twice",
         sites + "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\nC1 0.01\nC1 0.02\n",
         {{359, 12}}},
    };
    for (const Case& c : cases) expect_messages(c);
    const THandle<Cif> symmetry = read_checked(cases[5].text);
    const CifError& bond = *symmetry->errors()->begin();
    EXPECT_EQ(bond.text(),
              "_geom_bond_atom_site_label_1, _geom_bond_atom_site_label_2, _geom_bond_site_symmetry_2");
    EXPECT_EQ(bond.detail(), "C1, O1, .");
}

TEST(CifValidation, RowsASyntaxErrorDamagedGiveNoKeyOrParentFindings) {
    const Case cases[] = {
        {"an unclosed quote swallows the rest of its line and shifts the rows after it",
         "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\n"
         "C1 0.1\n"   // 5
         "'C2 0.2\n"  // 6: the label takes the whole line
         "C3 0.3\n"   // 7: C3 lands in fract_x
         "C1 0.4\n"   // 8: C1 again, but only through the shift
         "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\nC3 0.01\n",
         {{307, 2}, {305, 6}, {368, 6}}},
        {"a repetition before the damage is reported, one after it is not",
         "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\nC1 0.2\nC2 'x\nC2 0.3\n",
         {{359, 6}, {305, 7}, {324, 7}}},
        {"a short loop that shows no shift leaves every row in doubt",
         "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\nC1 0.2\nC3\n"
         "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\nN9 0.01\n",
         {{307, 2}}},
        {"a damaged parent loop gives no missing-value findings to its children",
         "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\nC2 'open 0.2\n"
         "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\nN9 0.01\n",
         {{305, 6}, {324, 6}}},
        {"a sound loop keeps its findings",
         "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\nC1 0.2\n"
         "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\nN9 0.01\n",
         {{359, 6}, {360, 10}}},
    };
    for (const Case& c : cases) expect_messages(c);
}

TEST(CifValidation, AShortLoopNamesTheRowWhereTheShiftShowsAndCountsTheValuesAfterIt) {
    THandle<Cif> cif = read_checked(
        "data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n"
        "C1 0.1 0.2\n"    // 6
        "C2 0.2\n"        // 7: y missing
        "C3 0.3 0.4\n"    // 8: C3 lands in y, the row begins on line 7
        "C4 0.4 0.5\n"    // 9
        "C5 0.5 0.6\n");  // 10
    ASSERT_EQ(messages(*cif), (Messages{{307, 2}, {368, 7}}));
    const CifError& shift = (*cif->errors())[1];
    EXPECT_EQ(shift.text(), "_atom_site_fract_y");
    // C4 and C5 land in x further on: two type errors become part of the message.
    EXPECT_EQ(shift.detail(), " (C3 in row 2; and 2 further values of the following rows)");
    // A loop of the right length reports its type errors one by one.
    EXPECT_EQ(messages(*read_checked("data_a\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 x\nC2 y\n")),
              (Messages{{324, 5}, {324, 6}}));
}

}  // namespace

namespace {

using Names = std::vector<std::string>;

// The keys CifLoopKeys reads from the core dictionary for a loop of these columns.
std::vector<Names> core_keys(const Names& columns) {
    CifDataBlock::ItemList loop;
    std::vector<const CifItemDefinition*> definitions;
    for (const std::string& name : columns) {
        loop.push_back(THandle<CifDataItem>(new CifDataItem(name)));
        definitions.push_back(cif_test::core_dictionary()->definition(name));
    }
    std::vector<Names> result;
    for (const std::vector<std::size_t>& key :
         CifLoopKeys(*cif_test::core_dictionary()).keys(loop, definitions)) {
        Names names;
        for (std::size_t i : key) names.push_back(columns[i]);
        result.push_back(names);
    }
    return result;
}

TEST(CifLoopKeys, KeysComeFromReferencesFamiliesAndMandatoryItemsOfTheCoreDictionary) {
    if (cif_test::core_dictionary().is_null())
        GTEST_SKIP() << "the IUCr core dictionary is not at " << cif_test::core_dictionary_path();
    const std::pair<Names, std::vector<Names>> cases[] = {
        {{"_atom_site_label", "_atom_site_fract_x"}, {{"_atom_site_label"}}},
        {{"_atom_site_aniso_label", "_atom_site_aniso_U_11"}, {{"_atom_site_aniso_label"}}},
        {{"_atom_site_aniso_U_11"}, {}},
        {{"_refln_index_h", "_refln_index_k", "_refln_index_l", "_refln_F_squared_meas"},
         {{"_refln_index_h", "_refln_index_k", "_refln_index_l"}}},
        {{"_refln_index_h", "_refln_index_k", "_refln_F_squared_meas"}, {}},
        {{"_geom_bond_atom_site_label_1", "_geom_bond_atom_site_label_2", "_geom_bond_distance",
          "_geom_bond_site_symmetry_1", "_geom_bond_site_symmetry_2"},
         {{"_geom_bond_atom_site_label_1", "_geom_bond_atom_site_label_2", "_geom_bond_site_symmetry_1",
           "_geom_bond_site_symmetry_2"}}},
        {{"_geom_angle_atom_site_label_1", "_geom_angle_atom_site_label_2", "_geom_angle_atom_site_label_3",
          "_geom_angle"},
         {{"_geom_angle_atom_site_label_1", "_geom_angle_atom_site_label_2",
           "_geom_angle_atom_site_label_3"}}},
        {{"_symmetry_equiv_pos_as_xyz"}, {{"_symmetry_equiv_pos_as_xyz"}}},
        {{"_symmetry_equiv_pos_site_id", "_symmetry_equiv_pos_as_xyz"}, {{"_symmetry_equiv_pos_as_xyz"}}},
        {{"_space_group_symop_operation_xyz"}, {}},
        {{"_space_group_symop_id", "_space_group_symop_operation_xyz"}, {{"_space_group_symop_id"}}},
        {{"_exptl_crystal_id", "_exptl_crystal_colour"}, {{"_exptl_crystal_id"}}},
        {{"_publ_author_name", "_publ_author_address"}, {{"_publ_author_name"}}},
        {{"_cell_length_a"}, {}},
    };
    for (const auto& [columns, keys] : cases) EXPECT_EQ(core_keys(columns), keys) << columns.front();
}

TEST(CifLoopKeys, RemembersEachLoopByItsOwnColumnsUntilToldToForget) {
    if (cif_test::core_dictionary().is_null())
        GTEST_SKIP() << "the IUCr core dictionary is not at " << cif_test::core_dictionary_path();
    const CifDictionary& dictionary = *cif_test::core_dictionary();
    struct Loop {
        CifDataBlock::ItemList columns;
        std::vector<const CifItemDefinition*> definitions;
    };
    auto loop_of = [&](const Names& names) {
        Loop loop;
        for (const std::string& name : names) {
            loop.columns.push_back(THandle<CifDataItem>(new CifDataItem(name)));
            loop.definitions.push_back(dictionary.definition(name));
        }
        return loop;
    };
    // The same columns in another order, one column more, and the same
    // names again as other items: each is a loop of its own.
    const Loop loops[] = {
        loop_of({"_refln_index_h", "_refln_index_k", "_refln_index_l", "_refln_F_squared_meas"}),
        loop_of({"_refln_F_squared_meas", "_refln_index_l", "_refln_index_k", "_refln_index_h"}),
        loop_of({"_refln_F_squared_calc", "_refln_index_h", "_refln_index_k", "_refln_index_l",
                 "_refln_F_squared_meas"}),
        loop_of({"_refln_index_h", "_refln_index_k", "_refln_index_l", "_refln_F_squared_meas"}),
        loop_of({"_refln_index_h", "_refln_index_k", "_refln_F_squared_meas"}),
    };
    const std::vector<std::vector<std::size_t>> expected[] = {
        {{0, 1, 2}}, {{1, 2, 3}}, {{1, 2, 3}}, {{0, 1, 2}}, {}};
    CifLoopKeys keys(dictionary);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < std::size(loops); ++i) {
            EXPECT_EQ(keys.remembered_keys(loops[i].columns, loops[i].definitions), expected[i])
                << round << i;
            const auto* definitions = keys.remembered_definitions(loops[i].columns);
            ASSERT_NE(definitions, nullptr) << i;
            EXPECT_EQ(*definitions, loops[i].definitions) << i;
        }
    }
    keys.forget();
    EXPECT_EQ(keys.remembered_definitions(loops[0].columns), nullptr);
    EXPECT_EQ(keys.remembered_keys(loops[1].columns, loops[1].definitions), expected[1]);
}

}  // namespace

namespace {

// A reflection loop of the test dictionary with these index rows.
std::string reflections(const std::vector<std::string>& rows) {
    std::string text =
        "data_a\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n";
    for (const std::string& row : rows) text += row + " 1.5\n";
    return text;
}

TEST(CifValidation, ReflectionKeysInAnyOrderAndOfAnySizeAreFoundRepeatedOnce) {
    const int first_row = 7;  // the line of the first row
    const Case cases[] = {
        {"sorted by h, k, l", reflections({"-1 0 0", "0 0 1", "0 1 -2", "0 1 3", "2 -5 0"}), {}},
        {"sorted by l, k, h", reflections({"1 0 -3", "-2 1 -3", "0 0 0", "5 0 0", "-1 4 2"}), {}},
        {"falling", reflections({"3 3 3", "3 3 2", "1 0 0", "-1 0 0"}), {}},
        {"no order, no repetition", reflections({"1 0 0", "0 0 1", "0 1 0", "-1 0 0", "0 -1 0"}), {}},
        {"no order, one reflection three times: once, on its second row",
         reflections({"1 0 0", "0 0 1", "1 0 0", "0 1 0", "1 0 0"}),
         {{369, first_row + 2}}},
        {"sorted up to a repetition",
         reflections({"0 0 1", "0 0 2", "0 0 2", "0 0 3"}),
         {{369, first_row + 2}}},
        {"indices too far apart for one bit each",
         reflections({"0 0 1", "999999 0 0", "-999999 5 5", "0 0 1"}),
         {{369, first_row + 3}}},
        {"the same number written two ways is the same index",
         reflections({"1 0 0", "0 1 0", "+1 0 0"}),
         {{369, first_row + 2}}},
        {"an unknown index identifies nothing", reflections({"? 0 0", "1 0 0", "? 0 0", "0 1 0"}), {}},
    };
    for (const Case& c : cases) expect_messages(c);
}

TEST(CifValidation, KeysRepeatedOrNotAreToldApartAtEveryLoopSize) {
    // Loops of a few rows are told distinct apart from larger ones: around
    // each size where the way changes, with a repetition on the last row
    // and without, as text and as numbers written two ways.
    for (const int rows : {2, 16, 17, 100, 255, 256, 257, 600}) {
        for (const bool repeated : {false, true}) {
            std::string types = "data_a\nloop_\n_atom_type_symbol\n";
            std::string indices = reflections({});
            for (int row = 0; row < rows; ++row) {
                const bool last = repeated && row == rows - 1;
                types += 'T';
                types += std::to_string(last ? 0 : row);
                types += '\n';
                if (last) {
                    indices += "+0 0 0 1.5\n";
                } else {
                    indices += std::to_string(row);
                    indices += " 0 ";
                    indices += std::to_string(row % 3);
                    indices += " 1.5\n";
                }
            }
            const Messages none;
            EXPECT_EQ(messages(*read_checked(types)), repeated ? (Messages{{359, 3 + rows}}) : none) << rows;
            EXPECT_EQ(messages(*read_checked(indices)), repeated ? (Messages{{369, 6 + rows}}) : none)
                << rows;
        }
    }
}

}  // namespace
