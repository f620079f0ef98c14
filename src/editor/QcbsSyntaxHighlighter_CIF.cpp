// SPDX-License-Identifier: GPL-3.0-or-later
// Colours the CIF text of an editor line by line through the line classifier.
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <vector>

#include "base/ORMALogQString.hpp"
#include "cif/CifDictionary.hpp"
#include "editor/QcbsHighlightScheduler.hpp"
#include "support/ORMALog.hpp"

QcbsSyntaxHighlighter_CIF::QcbsSyntaxHighlighter_CIF(THandle<CifDictionary> dictionary,
                                                     THandle<QcbsFontStyleSettings> styles,
                                                     QPlainTextEdit* editor)
    : QSyntaxHighlighter(static_cast<QObject*>(editor)),
      dictionary_(dictionary),
      styles_(styles),
      classifier_(dictionary.get()) {
    updateStyles();
    if (editor != nullptr) {
        new QcbsHighlightScheduler(this, editor);
        setDocument(editor->document());
    }
}

QcbsSyntaxHighlighter_CIF::QcbsSyntaxHighlighter_CIF(THandle<CifDictionary> dictionary,
                                                     THandle<QcbsFontStyleSettings> styles,
                                                     QTextDocument* document)
    : QSyntaxHighlighter(static_cast<QObject*>(document)),
      dictionary_(dictionary),
      styles_(styles),
      classifier_(dictionary.get()) {
    updateStyles();
    setDocument(document);
}

// The scheduler is a child; it goes first so that it never sees a half
// destroyed highlighter.
QcbsSyntaxHighlighter_CIF::~QcbsSyntaxHighlighter_CIF() { delete scheduler_; }

void QcbsSyntaxHighlighter_CIF::updateStyles() {
    styleCache_.clear();
    std::vector<SyntaxStyle> members;
    QcbsFontStyleSettings::syntaxStyleMapping().all_members(members);
    for (const SyntaxStyle style : members) styleCache_[style] = styles_->textFormat(style);
}

void QcbsSyntaxHighlighter_CIF::setDictionary(THandle<CifDictionary> dictionary) {
    dictionary_ = dictionary;
    classifier_.setDictionary(dictionary_.get());
}

void QcbsSyntaxHighlighter_CIF::highlightBlock(const QString& text) {
    if (scheduler_ != nullptr && !scheduler_->admit(currentBlock())) {
        keepCurrentFormats();  // the scheduler comes back to this block
        return;
    }
    setCurrentBlockState(highlightParagraph(text, previousBlockState()));
    if (scheduler_ != nullptr) scheduler_->highlighted(currentBlock());
}

int QcbsSyntaxHighlighter_CIF::highlightParagraph(const QString& text, int endStateOfLastPara) {
    const int state = classifier_.classify(text, endStateOfLastPara);
    applyLineStyles();
    return state;
}

void QcbsSyntaxHighlighter_CIF::applyLineStyles() {
    classifier_.forEachRun([this](int start, int count, SyntaxStyle style) {
        applyStyle(static_cast<unsigned>(start), static_cast<unsigned>(count), style);
    });
}

void QcbsSyntaxHighlighter_CIF::applyStyle(unsigned start, unsigned count, SyntaxStyle style) {
    const auto found = styleCache_.find(style);
    if (found == styleCache_.end()) return;
    const QTextCharFormat& format = found->second;
    if (ORMALog::wants(3)) {
        ORMALog::start_debug_line(3) << "QcbsSyntaxHighlighter_CIF::applyStyle - Set format: start " << start
                                     << " count " << count << " bold "
                                     << (format.fontWeight() > QFont::Normal) << " color "
                                     << format.foreground().color().name();
        ORMALog::end_debug_line();
    }
    setFormat(static_cast<int>(start), static_cast<int>(count), format);
}

std::pair<QFont, QColor> QcbsSyntaxHighlighter_CIF::format(SyntaxStyle style) const {
    return styles_->highlightStyle(style);
}

void QcbsSyntaxHighlighter_CIF::rehighlightInSlices() {
    if (scheduler_ != nullptr) {
        scheduler_->rehighlightAll();
    } else {
        rehighlight();
    }
}

// QSyntaxHighlighter replaces a block's formats by whatever highlightBlock
// set; a block left for later keeps the formats it had.
void QcbsSyntaxHighlighter_CIF::keepCurrentFormats() {
    const QTextLayout* layout = currentBlock().layout();
    if (layout == nullptr) return;
    for (const QTextLayout::FormatRange& range : layout->formats())
        setFormat(range.start, range.length, range.format);
}
