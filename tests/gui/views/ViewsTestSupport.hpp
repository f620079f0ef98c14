// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the view tests: the team's test dictionary, checked documents, menu entries.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QStringList>
#include <fstream>
#include <memory>
#include <sstream>

#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "views/QcbsCifBoxBlockItem.hpp"
#include "views/QcbsCifBoxItem.hpp"
#include "views/QcbsCifBoxView.hpp"

namespace views_test {

// A pool holding a dictionary read from text.
inline THandle<CifDictionary> dictionaryFromText(const std::string& text) {
    THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
    std::istringstream stream(text);
    dictionary->read(stream, THandle<CifErrorContainer>(new CifErrorContainer()));
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(dictionary);
    return pool;
}

// The team's small DDL1 test dictionary, tests/data/tessary_test.dic.
inline THandle<CifDictionary> testDictionary() {
    std::ifstream file(TESSARY_SOURCE_DIR "/tests/data/tessary_test.dic", std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return dictionaryFromText(text.str());
}

// The document read and checked against the dictionary.
inline THandle<Cif> checked(const std::string& text, THandle<CifDictionary> dictionary = testDictionary()) {
    THandle<Cif> cif(new Cif(dictionary));
    cif->read_text(text);
    return cif;
}

// The texts of a row's context menu, in order; empty for a row without one.
inline QStringList menuEntries(QcbsCifBoxItem* row) {
    const std::unique_ptr<QMenu> menu(row->makeContextMenu());
    QStringList texts;
    if (menu != nullptr)
        for (const QAction* action : menu->actions()) texts << action->text();
    return texts;
}

// Chooses the entry of a row's context menu; false when it has none of that text.
inline bool chooseEntry(QcbsCifBoxItem* row, const QString& text) {
    const std::unique_ptr<QMenu> menu(row->makeContextMenu());
    if (menu == nullptr) return false;
    for (QAction* action : menu->actions()) {
        if (action->text() != text) continue;
        action->trigger();
        return true;
    }
    return false;
}

inline QStringList childTexts(const QTreeWidgetItem* item, bool visibleOnly = false) {
    QStringList texts;
    for (int i = 0; i < item->childCount(); ++i)
        if (!visibleOnly || !item->child(i)->isHidden()) texts << item->child(i)->text(0);
    return texts;
}

// The row of a category of a block in the tree, opened; with a name, the name's row.
inline QcbsCifBoxItem* treeRow(QcbsCifBoxView* view, int block, const QString& category,
                               const QString& name = QString()) {
    QcbsCifBoxBlockItem* blockRow = view->blockRow(block);
    blockRow->setOpen(true);
    for (int i = 0; i < blockRow->childCount(); ++i) {
        auto* categoryRow = static_cast<QcbsCifBoxItem*>(blockRow->child(i));
        if (categoryRow->text(0) != category) continue;
        categoryRow->setOpen(true);
        if (name.isEmpty()) return categoryRow;
        for (int j = 0; j < categoryRow->childCount(); ++j)
            if (categoryRow->child(j)->text(0) == name)
                return static_cast<QcbsCifBoxItem*>(categoryRow->child(j));
    }
    ADD_FAILURE() << "no row " << category.toStdString() << " " << name.toStdString();
    return nullptr;
}

}  // namespace views_test
