// SPDX-License-Identifier: GPL-3.0-or-later
// The table of special characters: every code offered once; a click asks for the code.
#include <gtest/gtest.h>

#include <QSet>
#include <QSignalSpy>
#include <QToolButton>

#include "GuiTestSupport.hpp"
#include "editor/QcbsUnicode.hpp"
#include "find/QcbsSpecialCharacterTable.hpp"

namespace {

TEST(QcbsSpecialCharacterTable, OffersEveryCodeOnceWithItsGlyphAndTip) {
    QcbsSpecialCharacterTable table;
    QSet<QString> offered;
    for (const QToolButton* button : table.buttons()) {
        EXPECT_FALSE(offered.contains(button->objectName())) << button->objectName().toStdString();
        offered.insert(button->objectName());
        EXPECT_TRUE(button->toolTip().startsWith(button->objectName() + ": "));
        EXPECT_FALSE(button->text().isEmpty());
    }
    for (const QcbsUnicode::Entry& entry : QcbsUnicode::table())
        EXPECT_TRUE(offered.contains(QString::fromLatin1(entry.code))) << entry.code;
    EXPECT_TRUE(offered.contains("^") && offered.contains("~"));
    // The glyph shown turns into the code it is offered for.
    for (const QToolButton* button : table.buttons()) {
        const QString glyph = button->text();
        if (glyph.size() == 1 && glyph[0].unicode() >= 128) {
            EXPECT_EQ(QcbsUnicode::markupText(glyph), button->objectName()) << glyph.toStdString();
        }
    }
}

TEST(QcbsSpecialCharacterTable, AClickAsksForTheCodeAndTheTableStaysOpen) {
    QcbsSpecialCharacterTable table;
    table.show();
    ASSERT_TRUE(waitUntil([&] { return table.isVisible(); }));
    QSignalSpy chosen(&table, &QcbsSpecialCharacterTable::codeChosen);
    for (QToolButton* button : table.buttons())
        if (button->objectName() == "\\a" || button->objectName() == "\\%A") button->click();
    ASSERT_EQ(chosen.count(), 2);
    EXPECT_EQ(chosen.at(0).at(0).toString(), "\\a");
    EXPECT_EQ(chosen.at(1).at(0).toString(), "\\%A");
    EXPECT_TRUE(table.isVisible());
}

}  // namespace
