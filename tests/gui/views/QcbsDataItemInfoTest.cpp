// SPDX-License-Identifier: GPL-3.0-or-later
// The data-item information panel: a definition as rich text, links, Back and Close.
#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QTextDocument>
#include <QUrl>

#include "ViewsTestSupport.hpp"
#include "views/QcbsDataItemInfo.hpp"

namespace {

using namespace views_test;

QString plainText(const QString& html) {
    QTextDocument document;
    document.setHtml(html);
    return document.toPlainText().simplified();
}

QString page(const QString& name, THandle<CifDictionary> dictionary = testDictionary()) {
    return plainText(QcbsDataItemInfo::definitionHtml(dictionary, name, QcbsFontStyleSettings()));
}

TEST(DataItemInfo, ADefinitionGivesTypeUnitsRangePermittedValuesLoopRulesAndItsText) {
    const struct {
        const char* name;
        QStringList parts;
    } cases[] = {
        {"_cell_length_a",
         {"Category _cell_[]", "Type number (numb)", "Standard uncertainty allowed", "Units A (angstroms)",
          "Range at least 0", "Loop must not be looped", "Unit-cell lengths in angstroms."}},
        {"_cell_angle_beta", {"Range from 0 to 180", "Default 90.0", "Units deg"}},
        {"_cell_formula_units_Z", {"Standard uncertainty not allowed", "Examples 4 8"}},
        {"_exptl_absorpt_correction_type",
         {"Type text (char)", "Permitted values analytical analytical from crystal shape",
          "multi-scan symmetry-related measurements", "none no correction"}},
        {"_atom_site_label",
         {"Loop must be looped; every loop of its category must hold it", "Children _atom_site_aniso_label"}},
        {"_atom_site_type_symbol", {"Loop must hold _atom_site_label", "Parent _atom_type_symbol"}},
        {"_atom_site_refinement_flags", {". no constraints", "S special position"}},
        {"_publ_author_name", {"Category publ_author", "may be looped or not"}},
        // A name prefix stands for the names of the category it begins.
        {"_refln_F_squared_meas", {"Loop must hold _refln_index_h, _refln_index_k, _refln_index_l"}},
        {"_atom_site_[]", {"Category atom_site", "Data names _atom_site_label,", "Atom sites."}},
    };
    for (const auto& c : cases) {
        const QString text = page(c.name);
        EXPECT_TRUE(text.startsWith(c.name)) << text.toStdString();
        for (const QString& part : c.parts)
            EXPECT_TRUE(text.contains(part))
                << c.name << ": " << part.toStdString() << " in " << text.toStdString();
    }
    // Names without a definition say why.
    EXPECT_TRUE(page("_shelx_res_file").contains("does not define this name"));
    EXPECT_TRUE(page("_shelx_res_file").contains("SHELX"));
    EXPECT_TRUE(page("_vrf_PLAT001_x").contains("validation alert"));
    EXPECT_TRUE(page("_cell_length_a", THandle<CifDictionary>()).contains("No dictionary is enabled"));
}

TEST(DataItemInfo, LinksShowTheDefinitionOfTheNameTheyNameAndBackReturns) {
    QcbsDataItemInfo info("_atom_site_type_symbol", testDictionary(), THandle<QcbsFontStyleSettings>());
    QPushButton* back = info.findChild<QPushButton*>("back");
    ASSERT_NE(back, nullptr);
    EXPECT_FALSE(back->isEnabled());
    const QString html = info.browser()->toHtml();
    // Every defined name the page mentions is a link; the parent and the category among them.
    EXPECT_TRUE(html.contains("href=\"INFO_atom_type_symbol\"")) << html.toStdString();
    EXPECT_TRUE(html.contains("INFO_atom_site_[]")) << html.toStdString();

    emit info.browser()->anchorClicked(QUrl("INFO_atom_type_symbol"));
    EXPECT_EQ(info.dataName(), "_atom_type_symbol");
    EXPECT_TRUE(info.browser()->toPlainText().startsWith("_atom_type_symbol"));
    EXPECT_TRUE(back->isEnabled());
    emit info.browser()->anchorClicked(QUrl("INFO_atom_site_[]"));
    EXPECT_EQ(info.dataName(), "_atom_site_[]");
    // Links of other kinds are not followed.
    emit info.browser()->anchorClicked(QUrl("https://www.iucr.org/"));
    EXPECT_EQ(info.dataName(), "_atom_site_[]");

    back->click();
    EXPECT_EQ(info.dataName(), "_atom_type_symbol");
    back->click();
    EXPECT_EQ(info.dataName(), "_atom_site_type_symbol");
    EXPECT_FALSE(back->isEnabled());

    QSignalSpy closed(&info, &QcbsDataItemInfo::userDidClose);
    info.findChild<QPushButton*>("close")->click();
    EXPECT_EQ(closed.count(), 1);
}

}  // namespace
