// SPDX-License-Identifier: GPL-3.0-or-later
// The edit data dialogue: help and editing forms, permitted values, the item text it sends.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

#include "GuiTestSupport.hpp"
#include "ViewsTestSupport.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "views/QcbsDataItemInfo.hpp"
#include "views/QcbsEditDataDialogue.hpp"

namespace {

using namespace views_test;

QStringList comboItems(const QComboBox* combo) {
    QStringList items;
    for (int i = 0; i < combo->count(); ++i) items << combo->itemText(i);
    return items;
}

QStringList buttonTexts(const QWidget& dialogue) {
    QStringList texts;
    for (const QPushButton* button : dialogue.findChildren<QPushButton*>()) texts << button->text();
    texts.sort();
    return texts;
}

TEST(EditDataDialogue, PermittedValuesComeAfterUnknownAndInapplicableAndTheCurrentOneIsChosenIgnoringCase) {
    const struct {
        const char* current;
        const char* shown;
        int index;
    } cases[] = {
        {"none", "none", 4}, {"NONE", "none", 4}, {"Multi-Scan", "multi-scan", 3},
        {"?", "?", 0},       {".", ".", 1},       {"gaussian", "gaussian", -1},
        {"", "", -1},
    };
    for (const auto& c : cases) {
        QcbsEditDataDialogue dialogue("_exptl_absorpt_correction_type", testDictionary(), nullptr, true,
                                      "first", c.current);
        QComboBox* choice = dialogue.valueChoice();
        ASSERT_NE(choice, nullptr);
        EXPECT_EQ(dialogue.valueEditor(), nullptr);
        EXPECT_EQ(comboItems(choice), (QStringList{"?", ".", "analytical", "multi-scan", "none"}));
        EXPECT_TRUE(choice->isEditable());
        EXPECT_EQ(choice->currentText(), c.shown) << c.current;
        if (c.index >= 0) {
            EXPECT_EQ(choice->currentIndex(), c.index) << c.current;
        }
        EXPECT_EQ(dialogue.value(), c.shown);
    }
}

TEST(EditDataDialogue, FreeEntryHoldsTheCurrentValueAndLosesOnlyTheFirstLeadingLineBreak) {
    QcbsEditDataDialogue dialogue("_cell_length_a", testDictionary(), nullptr, true, "first", "5.0(1)");
    ASSERT_NE(dialogue.valueEditor(), nullptr);
    EXPECT_EQ(dialogue.valueChoice(), nullptr);
    EXPECT_EQ(dialogue.valueEditor()->toolTip(), "Enter a value");
    EXPECT_EQ(dialogue.value(), "5.0(1)");
    for (const auto& [typed, value] :
         {std::pair{"\n\nabc", "\nabc"}, {"\nabc\ndef", "abc\ndef"}, {"abc\n", "abc\n"}}) {
        dialogue.valueEditor()->loadText(typed);
        ASSERT_TRUE(waitUntil([&] { return !dialogue.valueEditor()->isLoading(); }));
        EXPECT_EQ(dialogue.value(), value) << typed;
    }
}

TEST(EditDataDialogue, OkSendsTheItemAsTheLibraryPrintsItSoThatItReadsBackAsTyped) {
    for (const QString value :
         {"5.0(1)", "a value with blanks", "it's here", "two\nlines", "'quoted'", "?"}) {
        QcbsEditDataDialogue dialogue("_cell_length_a", testDictionary(), nullptr, true, "first", "1");
        QSignalSpy sent(&dialogue, &QcbsEditDataDialogue::setDataItemTextRequest);
        QSignalSpy finished(&dialogue, &QDialog::finished);
        dialogue.valueEditor()->loadText(value);
        dialogue.ok();
        ASSERT_EQ(sent.count(), 1);
        EXPECT_EQ(sent[0][0].toString(), "_cell_length_a");
        EXPECT_EQ(sent[0][1].toString(), "first");
        const QString text = sent[0][2].toString();
        EXPECT_TRUE(text.startsWith("_cell_length_a")) << text.toStdString();
        EXPECT_FALSE(text.contains("data_"));
        // The text read back in a block gives the value typed, without a message.
        const THandle<Cif> cif = checked("data_x\n" + text.toStdString() + "\n", THandle<CifDictionary>());
        ASSERT_EQ(cif->block_count(), 1u);
        EXPECT_EQ(cif->block(0)->value("_cell_length_a"), value.toStdString()) << text.toStdString();
        EXPECT_TRUE(cif->errors()->empty()) << text.toStdString();
        EXPECT_EQ(finished.count(), 1);
    }
    EXPECT_TRUE(QcbsEditDataDialogue::itemText(testDictionary(), "_cell_length_a", "a value with blanks")
                    .endsWith("'a value with blanks'"));
}

TEST(EditDataDialogue, TheHelpFormHasOnlyTheDefinitionAndCloseAndThePanelsCloseClosesIt) {
    QcbsEditDataDialogue help("_cell_length_a", testDictionary(), nullptr, false, QString(), QString());
    EXPECT_FALSE(help.isEditing());
    EXPECT_EQ(help.valueChoice(), nullptr);
    EXPECT_EQ(help.valueEditor(), nullptr);
    ASSERT_NE(help.info(), nullptr);
    EXPECT_EQ(help.info()->dataName(), "_cell_length_a");
    // The dialogue's Close and the panel's Back and Close.
    EXPECT_EQ(buttonTexts(help), (QStringList{"Back", "Close", "Close"}));
    const QLabel* heading = help.findChild<QLabel*>("heading");
    ASSERT_NE(heading, nullptr);
    EXPECT_EQ(heading->text(), "Data item:  <b>_cell_length_a</b><p>Dictionary:  <b>tessary_test.dic</b>");

    QcbsEditDataDialogue editing("_cell_length_a", testDictionary(), nullptr, true, "first", "5");
    EXPECT_EQ(buttonTexts(editing), (QStringList{"Back", "Cancel", "Close", "OK"}));

    help.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&help));
    QSignalSpy finished(&help, &QDialog::finished);
    emit help.info()->userDidClose();
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(help.isVisible());
}

}  // namespace
