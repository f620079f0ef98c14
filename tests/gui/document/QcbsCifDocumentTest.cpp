// SPDX-License-Identifier: GPL-3.0-or-later
// The document of a window: the edits views and wizards ask for land as one
// undo step each, change only their own bytes and are checked at once; jumps
// land on the right line in the middle of the view.
#include <gtest/gtest.h>

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <fstream>
#include <functional>

#include "GuiTestSupport.hpp"
#include "application/ApplicationTestSupport.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "cif/CifErrorContainer.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsWorkerDictionary.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

const QByteArray kTwoBlocks =
    "data_first\r\n"
    "_cell_length_a 5.1\r\n"
    "_title 'old'\r\n"
    "loop_\r\n"
    "_atom_site_label\r\n"
    "_atom_site_fract_x\r\n"
    "C1 0.1\r\n"
    "C2 0.2\r\n"
    "\r\n"
    "data_second\r\n"
    "_cell_length_a 7.2\r\n";

class CifDocument : public ::testing::Test, protected EditorDocument {
protected:
    CifDocument() {
        editor.resize(600, 200);
        EXPECT_TRUE(load(kTwoBlocks, "/data/two.cif"));
    }
};

TEST_F(CifDocument, EachEditChangesOnlyItsOwnBytesIsOneUndoStepAndIsCheckedAtOnce) {
    using Edit = std::function<bool(QcbsCifDocument&)>;
    const struct {
        const char* what;
        Edit edit;
        QByteArray expected;
    } cases[] = {
        {"a value given quotes by the printer",
         [](QcbsCifDocument& d) { return d.setItemValue("first", "_title", "_title 'a new title'"); },
         QByteArray(kTwoBlocks).replace("_title 'old'", "_title 'a new title'")},
        {"an item the block lacks",
         [](QcbsCifDocument& d) { return d.setItemValue("second", "_cell_volume", "_cell_volume 100\n"); },
         kTwoBlocks + "_cell_volume 100\r\n"},
        {"a loop",
         [](QcbsCifDocument& d) {
             return d.replaceLoop("first", "_atom_site_label", "loop_\n_atom_site_label\nC9\n");
         },
         QByteArray(kTwoBlocks).replace("_atom_site_fract_x\r\nC1 0.1\r\nC2 0.2", "C9")},
        {"a new loop", [](QcbsCifDocument& d) { return d.addLoop("first", "loop_\n_a\n1\n"); },
         QByteArray(kTwoBlocks).replace("C2 0.2\r\n", "C2 0.2\r\nloop_\r\n_a\r\n1\r\n")},
        {"a block", [](QcbsCifDocument& d) { return d.replaceBlock("second", "data_second\n_x 1\n"); },
         QByteArray(kTwoBlocks).replace("_cell_length_a 7.2", "_x 1")},
        {"a new block before the first",
         [](QcbsCifDocument& d) { return d.addBlock("data_new\n_y 2\n", "first"); },
         "data_new\r\n_y 2\r\n\r\n" + kTwoBlocks},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QSignalSpy checks(&document, &QcbsCifDocument::checked);
        ASSERT_TRUE(c.edit(document));
        EXPECT_EQ(document.fileBytes(), c.expected);
        EXPECT_TRUE(document.isModified());
        ASSERT_EQ(checks.count(), 1);
        EXPECT_TRUE(document.lastCheck()->errors()->empty());
        editor.undo();
        EXPECT_EQ(document.fileBytes(), kTwoBlocks);
        EXPECT_FALSE(document.isModified());
    }
    // What is not there is not invented.
    EXPECT_FALSE(document.setItemValue("third", "_a", "_a 1"));
    EXPECT_FALSE(document.replaceLoop("first", "_no_such_column", "loop_\n_x\n1\n"));
    EXPECT_FALSE(document.setItemValue("first", "_atom_site_label", "_atom_site_label X"));
    EXPECT_EQ(document.fileBytes(), kTwoBlocks);
}

TEST_F(CifDocument, JumpsLandOnTheNamedItemOfTheRightBlockInTheMiddleOfTheView) {
    // Enough lines that the view must scroll.
    QByteArray many = kTwoBlocks;
    for (int i = 0; i < 200; ++i) many += "_filler_" + QByteArray::number(i) + " 1\r\n";
    many += "data_third\r\n_cell_length_a 9\r\n";
    ASSERT_TRUE(load(many, "/data/many.cif"));
    editor.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));

    const auto cursor = [this] {
        int para = -1, index = -1;
        editor.getCursorPosition(&para, &index);
        return std::pair(para + 1, index);
    };
    const auto cursorLine = [&cursor] { return cursor().first; };
    ASSERT_TRUE(document.goToItem("_cell_length_a", 212));  // from the third block's heading
    EXPECT_EQ(cursor(), std::pair(213, 0));
    // In the middle of the view, not at its edge.
    EXPECT_TRUE(waitUntil([this] { return editor.firstVisibleParagraph() + 1 < 213 - 2; }));
    EXPECT_GT(editor.firstVisibleParagraph() + 1, 150);
    ASSERT_TRUE(document.goToItem("_CELL_LENGTH_A", 10));
    EXPECT_EQ(cursorLine(), 11);
    ASSERT_TRUE(document.goToItem("_atom_site", 1));  // a category: its first item
    EXPECT_EQ(cursorLine(), 5);
    ASSERT_TRUE(document.goToBlock("third"));
    EXPECT_EQ(cursorLine(), 212);
    EXPECT_FALSE(document.goToBlock("fourth"));
    EXPECT_FALSE(document.goToItem("_absent", 1));
    EXPECT_EQ(document.firstLineOf("_CELL_length_a"), 2);
}

// --- large documents: checks and saves on the worker thread ---

// The team's test dictionary, read from the source tree.
struct LargeDocumentDictionary {
    static THandle<CifConcreteDictionary> read() {
        std::ifstream stream(TESSARY_SOURCE_DIR "/tests/data/tessary_test.dic", std::ios::binary);
        THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
        dictionary->read(stream, THandle<CifErrorContainer>(new CifErrorContainer()));
        return dictionary;
    }
};

// A document above the worker threshold, with the team's test dictionary.
class LargeDocument : public ::testing::Test, protected EditorDocument {
protected:
    LargeDocument() {
        bytes = "data_big\r\nloop_\r\n_refln_index_h\r\n_refln_index_k\r\n_refln_index_l\r\n";
        for (int i = 0; bytes.size() <= QcbsCifDocument::WorkerThreshold + 1000; ++i)
            bytes += QByteArray::number(i % 50) + " " + QByteArray::number(i / 50) + " 1\r\n";
        THandle<CifDictionaryPool> pool(new CifDictionaryPool());
        pool->insert(cif_test_dictionary());
        document.setCheckSource([pool] { return CifDocumentCheck(pool, CifCheckSettings()); });
        EXPECT_TRUE(load(bytes, "/data/big.cif"));
        EXPECT_TRUE(document.isLarge());
    }
    static THandle<CifConcreteDictionary> cif_test_dictionary() { return LargeDocumentDictionary::read(); }

    QByteArray bytes;
};

// What a check on the worker remembers of a dictionary's answers is kept
// under the number of the dictionary the worker's view stands for.
TEST(WorkerDictionary, AnswersItsNumberAliasesAndDefinitionsAsTheDictionaryItViews) {
    const THandle<CifConcreteDictionary> core = LargeDocumentDictionary::read();
    const THandle<CifConcreteDictionary> other = LargeDocumentDictionary::read();
    THandle<CifDictionaryPool> one(new CifDictionaryPool()), two(new CifDictionaryPool());
    one->insert(core);
    two->insert(core);
    two->insert(other);
    const struct {
        const char* what;
        THandle<CifDictionary> viewed;
        std::uint64_t serial;
    } cases[] = {
        {"a dictionary", core, core->serial()},
        {"a pool of one", one, core->serial()},
        {"a pool of two, whose answers are not kept", two, 0},
    };
    for (const auto& c : cases) {
        const THandle<CifDictionary> view = QcbsWorkerDictionary::forWorker(c.viewed);
        EXPECT_EQ(view->serial(), c.serial) << c.what;
        EXPECT_EQ(view->has_aliases(), c.viewed->has_aliases()) << c.what;
        EXPECT_FALSE(view->has_aliases()) << c.what;  // the test dictionary is DDL1
        EXPECT_TRUE(view->defines_by_definitions()) << c.what;
    }
}

TEST_F(LargeDocument, IsCheckedOnTheWorkerAndATypedChangeMarksTheResultStale) {
    QSignalSpy checked(&document, &QcbsCifDocument::checked);
    EXPECT_TRUE(document.check().is_null());  // the result follows
    EXPECT_TRUE(document.isCheckRunning());
    ASSERT_TRUE(checked.wait(30000));
    EXPECT_FALSE(document.isCheckRunning());
    EXPECT_FALSE(document.isLastCheckStale());
    const THandle<Cif> cif = document.lastCheck();
    ASSERT_FALSE(cif.is_null());
    EXPECT_EQ(cif->block_count(), 1u);
    EXPECT_EQ(cif->line_count(), editor.lines() - 1);
    EXPECT_TRUE(cif->errors()->empty()) << cif->errors()->begin()->complete_message();

    // Typed while the check runs: the result comes, out of date.
    document.check();
    editor.setCursorPosition(0, 8);
    editor.insertPlainText("x");
    ASSERT_TRUE(checked.wait(30000));
    EXPECT_TRUE(document.isLastCheckStale());
    EXPECT_EQ(document.lastCheck()->block(0)->name(), "big");

    // Two requests: only the newer one is told.
    const int before = checked.count();
    document.check();
    document.check();
    ASSERT_TRUE(waitUntil([&] { return checked.count() > before && !document.isCheckRunning(); }, 30000));
    EXPECT_EQ(checked.count(), before + 1);
    EXPECT_FALSE(document.isLastCheckStale());
    EXPECT_EQ(document.lastCheck()->block(0)->name(), "bigx");
}

// The worker's check asks the same dictionary as the event loop's: a misspelt name in a large
// document is still met with the names it may have meant.
TEST_F(LargeDocument, AMisspeltNameCheckedOnTheWorkerGetsItsSuggestion) {
    editor.setSelection(4, 10, 4, 11);  // "_refln_index_l" -> "_refln_indx_l"
    editor.removeSelectedText();
    QSignalSpy checked(&document, &QcbsCifDocument::checked);
    document.check();
    ASSERT_TRUE(checked.wait(30000));
    const THandle<Cif> cif = document.lastCheck();
    ASSERT_FALSE(cif.is_null());
    std::string messages;
    for (const CifError& error : *cif->errors()) messages += error.complete_message() + "\n";
    EXPECT_NE(messages.find("did you mean _refln_index_l?"), std::string::npos) << messages;
}

TEST_F(LargeDocument, IsSavedFromTheWorkerTellingItsProgressAndACancelLeavesTheOldFile) {
    QTemporaryDir dir;
    const QString name = dir.filePath("big.cif");
    QSignalSpy progress(&document, &QcbsCifDocument::saveProgress);
    ASSERT_TRUE(document.save(name, false).saved);
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), bytes);
    file.close();
    ASSERT_GE(progress.count(), 2);
    EXPECT_EQ(progress.last().at(0).toLongLong(), bytes.size());
    EXPECT_FALSE(document.isModified());

    editor.insertPlainText("#");
    const auto cancel =
        QObject::connect(&document, &QcbsCifDocument::saveProgress, &document, &QcbsCifDocument::cancelSave);
    const QcbsDocumentSaver::Result result = document.save(name, true);
    QObject::disconnect(cancel);
    EXPECT_FALSE(result.saved);
    EXPECT_TRUE(result.cancelled);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), bytes);  // the old content, at its own name
    EXPECT_TRUE(document.isModified());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"big.cif"});
}

}  // namespace
