// SPDX-License-Identifier: GPL-3.0-or-later
// Searching and replacing in an editor's bytes: literal find, regular-expression replace all.
#pragma once

#include <QString>
#include <string_view>
#include <utility>

class QcbsRichTextEdit;

// What a search looks for and how.
struct QcbsSearchOptions {
    QString text;
    bool caseSensitive = false;
    bool wholeWords = false;
    bool forward = true;
};

namespace QcbsTextSearch {

// The bytes [begin, end) of the first match of `needle` (bytes in the
// text's encoding) whose begin is at or after `from` (forward), or of the
// last match that ends at or before `from` (backward); {-1, -1} when there
// is none. Case is folded for ASCII letters only. A whole word is bounded by
// bytes that are no letter, digit, "_" or byte above 127.
std::pair<int, int> findBytes(std::string_view text, std::string_view needle, int from,
                              const QcbsSearchOptions& options);

// The bytes [begin, end) of the options' text found literally in the
// editor from the byte position `from`, or {-1, -1}.
std::pair<int, int> locate(QcbsRichTextEdit& editor, const QcbsSearchOptions& options, int from);

// Finds the options' text literally in the editor, from the byte position
// `from`, and selects the match (cursor at its end, its line in view).
// False, with the selection left alone, when there is none.
bool findInEditor(QcbsRichTextEdit& editor, const QcbsSearchOptions& options, int from);

// Where a search of the editor starts: the cursor; one character to the
// left for a backward search whose cursor ends the selection, one to the
// right for a forward search whose cursor starts it (so the match selected
// is not found again); with `fromBeginning` the start of the text (the end
// for a backward search).
int searchStart(const QcbsRichTextEdit& editor, bool forward, bool fromBeginning);

// Replaces every match of the regular expression `pattern` in the whole
// text by `replacement` ("\1" refers to a captured group) as one undo step
// that changes only the stretch between the first and the last change, so
// that Undo gives back every byte. Returns 1 when the text changed, 0 when
// it did not, -1 for a pattern that is no valid regular expression.
int replaceAll(QcbsRichTextEdit& editor, const QString& pattern, const QString& replacement,
               bool caseSensitive);

}  // namespace QcbsTextSearch
