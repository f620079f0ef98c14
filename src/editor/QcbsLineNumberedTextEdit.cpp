// SPDX-License-Identifier: GPL-3.0-or-later
// The document area of a main window: the CIF editor with its line-number margin.
#include "editor/QcbsLineNumberedTextEdit.hpp"

#include <QHBoxLayout>

#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsLineNumberView.hpp"
#include "editor/QcbsRichTextEdit.hpp"

QcbsLineNumberedTextEdit::QcbsLineNumberedTextEdit(THandle<CifDictionary> dictionary, const char* name,
                                                   THandle<QcbsFontStyleSettings> styles,
                                                   bool showLineNumbers, QWidget* parent)
    : QWidget(parent), styles_(styles) {
    editor_ = new QcbsRichTextEdit(dictionary, styles, this, name);
    margin_ = new QcbsLineNumberView(this, editor_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(margin_);
    layout->addWidget(editor_);
    setFocusProxy(editor_);

    connect(editor_, &QcbsRichTextEdit::contentsMoving, margin_, &QcbsLineNumberView::setContentsPos);
    connect(editor_, &QcbsRichTextEdit::numberOfLinesChanged, margin_, &QcbsLineNumberView::setNumberOfLines);
    // Lines that move without a scroll (a line inserted above, a new
    // layout) repaint their band of the margin.
    connect(editor_, &QPlainTextEdit::updateRequest, margin_, [this](const QRect& rect, int dy) {
        if (dy == 0) margin_->update(0, rect.y(), margin_->width(), rect.height());
    });

    if (styles_) margin_->setFont(styles_->editorFont());
    margin_->setNumberOfLines(editor_->paragraphs());
    setShowLineNumbers(showLineNumbers);
}

void QcbsLineNumberedTextEdit::setShowLineNumbers(bool show) {
    if (show == showLineNumbers_) return;
    showLineNumbers_ = show;
    if (show) {
        margin_->setContentsPos(editor_->contentsX(), editor_->contentsY());
        margin_->show();
    } else {
        margin_->hide();
    }
}

void QcbsLineNumberedTextEdit::zoomIn() {
    editor_->zoomIn(1);
    updateStoredFont();
    styleUpdate();
}

void QcbsLineNumberedTextEdit::zoomOut() {
    editor_->zoomOut(1);
    updateStoredFont();
    styleUpdate();
}

void QcbsLineNumberedTextEdit::updateStoredFont() {
    if (styles_) styles_->setBaseFont(editor_->font());
}

void QcbsLineNumberedTextEdit::styleUpdate() {
    editor_->styleUpdate();
    if (styles_) margin_->setFont(styles_->editorFont());
}
