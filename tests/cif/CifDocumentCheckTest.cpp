// SPDX-License-Identifier: MIT
// The whole check of a document as the editor and tessary-check run it, and
// the mandatory-items file that feeds it.
#include <gtest/gtest.h>

#include <sstream>

#include "cif/CifDocumentCheck.hpp"
#include "cif/CifMandatoryItems.hpp"
#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

using Strings = std::vector<std::string>;
using cif_test::Messages;

TEST(CifMandatoryItems, SectionsDecideTheListsAnItemGoesToWhateverTheLineEnds) {
    std::istringstream file(
        "# mandatory items\r\n"
        "_dropped_before_any_section\r"
        "data_crystal\n"
        "  _cell_length_a   with a remark\n"
        "data_all\n"
        "\t_publ_section_title\n"
        "data_publication\n"
        "_journal_name_full\n"
        "something else\n"
        "data_other\n"
        "_dropped_under_an_unknown_section\n"
        "data_Crystal\n"  // headers are case-sensitive
        "_dropped_too\n"
        "data_crystal\n"
        "_cell_length_a\n");
    std::vector<std::pair<CifMandatoryItems::Line, std::string>> traced;
    CifMandatoryItems items = CifMandatoryItems::read(
        file,
        [&](CifMandatoryItems::Line kind, const std::string& text) { traced.emplace_back(kind, text); });
    EXPECT_EQ(items.crystal, (Strings{"_cell_length_a", "_publ_section_title", "_cell_length_a"}));
    EXPECT_EQ(items.publication, (Strings{"_publ_section_title", "_journal_name_full"}));
    ASSERT_EQ(traced.size(), 15u);
    EXPECT_EQ(traced[0].first, CifMandatoryItems::Line::comment);
    EXPECT_EQ(traced[3], std::make_pair(CifMandatoryItems::Line::item, std::string("_cell_length_a")));
    EXPECT_EQ(traced[8],
              std::make_pair(CifMandatoryItems::Line::unrecognised, std::string("something else")));
}

// A cell whose volume disagrees with its lengths, lacking a mandatory item
// and holding a name no dictionary defines.
const std::string text =
    "data_x\n"
    "_cell_length_a 10.000(1)\n"
    "_cell_length_b 10.000(1)\n"
    "_cell_length_c 10.000(1)\n"
    "_cell_angle_alpha 90\n"
    "_cell_angle_beta 90\n"
    "_cell_angle_gamma 90\n"
    "_cell_volume 1200.0(1)\n"
    "_no_such_name 1\n"
    "_unclosed 'quote\n";

TEST(CifDocumentCheck, ReadsThenChecksMandatoryItemsThenConsistencyAsAsked) {
    CifCheckSettings settings;
    settings.publication_items = {"_publ_section_title"};
    const Messages syntaxOnly =
        cif_test::messages(*CifDocumentCheck(THandle<CifDictionary>(), settings).run(text));
    // Reading (the unclosed quote), then the missing item on the block's
    // line, then the volume on its own line.
    ASSERT_EQ(syntaxOnly.size(), 3u);
    EXPECT_EQ(syntaxOnly[1], std::make_pair(int(CifError::mandatory_item_missing), 1));
    EXPECT_EQ(syntaxOnly[2], std::make_pair(int(CifError::cell_volume_differs), 8));

    settings.consistency = false;
    settings.publication_items.clear();
    const CifDocumentCheck quiet(THandle<CifDictionary>(), settings);
    EXPECT_EQ(cif_test::messages(*quiet.run(text)), Messages{syntaxOnly[0]});
    std::istringstream stream(text);
    EXPECT_EQ(cif_test::messages(*quiet.run(stream)), Messages{syntaxOnly[0]});

    // With a dictionary the undefined name is reported as well.
    const THandle<Cif> checked = CifDocumentCheck(cif_test::test_pool(), settings).run(text);
    const Messages withDictionary = cif_test::messages(*checked);
    EXPECT_NE(std::find(withDictionary.begin(), withDictionary.end(),
                        std::make_pair(int(CifError::undefined_data_name), 9)),
              withDictionary.end());
    EXPECT_EQ(checked->block_count(), 1u);
}

}  // namespace
