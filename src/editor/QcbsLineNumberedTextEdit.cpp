// SPDX-License-Identifier: GPL-3.0-or-later
// The document area of a main window: the CIF editor with its line-number margin.
#include "editor/QcbsLineNumberedTextEdit.hpp"

#include <QHBoxLayout>
#include <algorithm>

#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsLineNumberView.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

constexpr int kSmallestPointSize = 4;

}  // namespace

QcbsLineNumberedTextEdit::QcbsLineNumberedTextEdit(THandle<CifDictionary> dictionary, const char* name,
                                                   THandle<QcbsFontStyleSettings> styles,
                                                   bool showLineNumbers, QWidget* parent)
    : QWidget(parent), styles_(styles) {
    editor_ = new QcbsRichTextEdit(dictionary, styles, this, name);
    margin_ = new QcbsLineNumberView(editor_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(editor_);
    setFocusProxy(editor_);

    connect(editor_, &QcbsRichTextEdit::numberOfLinesChanged, margin_, &QcbsLineNumberView::setNumberOfLines);
    connect(editor_, &QcbsRichTextEdit::zoomRequested, this, &QcbsLineNumberedTextEdit::zoom);

    if (styles_) margin_->setFont(styles_->editorFont());
    margin_->setNumberOfLines(editor_->paragraphs());
    showLineNumbers_ = !showLineNumbers;
    setShowLineNumbers(showLineNumbers);
}

void QcbsLineNumberedTextEdit::setShowLineNumbers(bool show) {
    if (show == showLineNumbers_) return;
    showLineNumbers_ = show;
    margin_->setVisible(show);
}

void QcbsLineNumberedTextEdit::zoomIn() { zoom(1); }

void QcbsLineNumberedTextEdit::zoomOut() { zoom(-1); }

void QcbsLineNumberedTextEdit::zoom(int steps) {
    QFont font = editor_->font();
    font.setPointSize(std::max(kSmallestPointSize, font.pointSize() + steps));
    editor_->QWidget::setFont(font);
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
