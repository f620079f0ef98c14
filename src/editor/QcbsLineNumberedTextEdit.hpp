// SPDX-License-Identifier: GPL-3.0-or-later
// The document area of a main window: the CIF editor with its line-number margin.
#pragma once

#include <QWidget>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QcbsLineNumberView;
class QcbsRichTextEdit;

// The document area of a main window: a CIF editor with its line-number
// margin on the left, kept as wide as the line count needs. Zooming the
// editor (the zoom actions, Ctrl and the wheel) changes the shared base font
// of all editors.
class QcbsLineNumberedTextEdit : public QWidget {
    Q_OBJECT
public:
    QcbsLineNumberedTextEdit(THandle<CifDictionary> dictionary, const char* name,
                             THandle<QcbsFontStyleSettings> styles, bool showLineNumbers,
                             QWidget* parent = nullptr);

    QcbsRichTextEdit* editor() const { return editor_; }
    QcbsLineNumberView* lineNumberView() const { return margin_; }
    bool showLineNumbers() const { return showLineNumbers_; }

    void setShowLineNumbers(bool show);
    // Makes the editor's font the shared base font, so that it holds for
    // every editor and is saved with the text styles.
    void updateStoredFont();

public slots:
    // One zoom step; the new size becomes the shared base font and this
    // editor, its highlighting and its margin take it at once.
    void zoomIn();
    void zoomOut();
    // The editor re-reads the text styles; the margin takes the editor font.
    void styleUpdate();

private:
    void zoom(int steps);

    bool showLineNumbers_ = true;
    QcbsRichTextEdit* editor_;
    QcbsLineNumberView* margin_;
    THandle<QcbsFontStyleSettings> styles_;
};
