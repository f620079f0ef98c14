// SPDX-License-Identifier: GPL-3.0-or-later
// The fonts and colours dialog: a live sample, OK reaches every editor, Cancel nothing.
#include <gtest/gtest.h>

#include <QFontComboBox>
#include <QSpinBox>

#include "GuiTestSupport.hpp"
#include "application/ApplicationTestSupport.hpp"
#include "base/ORMAApplicationSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "preferences/QcbsFontStyleDialog.hpp"
#include "preferences/QcbsFontStyleList.hpp"

namespace {

using Style = QcbsFontStyleSettings::SyntaxStyle;

long foreground(const QcbsRichTextEdit* editor, Style style) {
    return editor->SendScintilla(QsciScintillaBase::SCI_STYLEGETFORE, static_cast<unsigned long>(style));
}
long bgr(const QColor& color) { return color.red() | (color.green() << 8) | (color.blue() << 16); }

class FontStyleDialog : public ::testing::Test {
protected:
    void SetUp() override {
        window_.currentEditor()->setPlainText("# a remark\ndata_a\n");
        window_.editFonts();
        dialog_ = window_.findChild<QcbsFontStyleDialog*>();
        ASSERT_NE(dialog_, nullptr);
        ASSERT_TRUE(waitUntil([&] { return dialog_->isVisible(); }));
    }
    QcbsFontStyleSettings& shared() const { return *window_.sharedData()->fontStyles(); }

    ScopedPrefsDir prefs_;
    QcbsMainWindow window_{buildTreeSharedData()};
    QcbsFontStyleDialog* dialog_ = nullptr;
};

TEST_F(FontStyleDialog, TheSampleFollowsEachChoiceAndCancelLeavesTheProgramsStyles) {
    const QColor before = shared().styleSettings(QcbsFontStyleSettings::Comment).color;
    const QColor chosen(10, 160, 200);
    dialog_->styleList()->setStyleColor(QcbsFontStyleSettings::Comment, chosen);
    EXPECT_TRUE(waitUntil(
        [&] { return foreground(dialog_->sample(), QcbsFontStyleSettings::Comment) == bgr(chosen); }));
    EXPECT_EQ(foreground(window_.currentEditor(), QcbsFontStyleSettings::Comment), bgr(before));
    dialog_->size()->setValue(17);
    EXPECT_EQ(dialog_->shownStyles().baseFont().pointSize(), 17);
    EXPECT_TRUE(waitUntil(
        [&] { return dialog_->sample()->SendScintilla(QsciScintillaBase::SCI_STYLEGETSIZE, 0UL) == 17; }));
    dialog_->reject();
    EXPECT_EQ(shared().styleSettings(QcbsFontStyleSettings::Comment).color, before);
    EXPECT_NE(shared().baseFont().pointSize(), 17);
    EXPECT_EQ(foreground(window_.currentEditor(), QcbsFontStyleSettings::Comment), bgr(before));
}

TEST_F(FontStyleDialog, OkMakesTheStylesTheProgramsSavesThemAndEveryEditorRedraws) {
    const QColor chosen(200, 30, 40);
    dialog_->styleList()->setStyleColor(QcbsFontStyleSettings::Type, chosen);
    dialog_->size()->setValue(15);
    dialog_->accept();
    EXPECT_EQ(shared().styleSettings(QcbsFontStyleSettings::Type).color, chosen);
    EXPECT_EQ(shared().baseFont().pointSize(), 15);
    {
        ORMAApplicationSettings settings;
        EXPECT_EQ(settings.readNumEntry("styles/Type/red", -1), 200);
        EXPECT_EQ(settings.readNumEntry("styles/Standard/size", -1), 15);
    }
    EXPECT_TRUE(waitUntil(
        [&] { return foreground(window_.currentEditor(), QcbsFontStyleSettings::Type) == bgr(chosen); }));
}

TEST_F(FontStyleDialog, DefaultsShowTheStylesOfANewProgram) {
    dialog_->styleList()->setStyleColor(QcbsFontStyleSettings::Comment, Qt::red);
    dialog_->size()->setValue(30);
    dialog_->restoreDefaults();
    const QcbsFontStyleSettings fresh(QcbsFontStyleSettings::FixedWidth);
    EXPECT_EQ(dialog_->shownStyles().styleSettings(QcbsFontStyleSettings::Comment).color,
              fresh.styleSettings(QcbsFontStyleSettings::Comment).color);
    EXPECT_EQ(dialog_->size()->value(), fresh.baseFont().pointSize());
}

}  // namespace
