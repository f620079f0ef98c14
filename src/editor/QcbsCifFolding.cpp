// SPDX-License-Identifier: GPL-3.0-or-later
// Where loops, save frames and text fields begin and end, line by line, for folding.
#include "editor/QcbsCifFolding.hpp"

namespace {

bool isBlank(QChar q) {
    const char16_t c = q.unicode();
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\f' || c == u'\v';
}

// Whether the word starts with the keyword, ignoring ASCII case.
bool startsWithKeyword(QStringView word, QStringView keyword) {
    return word.size() >= keyword.size() &&
           word.first(keyword.size()).compare(keyword, Qt::CaseInsensitive) == 0;
}

}  // namespace

QcbsCifFolding::Line QcbsCifFolding::fold(QStringView line, int context, bool inTextField,
                                          bool endsInTextField) {
    int loop = context & LoopMask;
    bool frame = (context & FrameFlag) != 0;
    const auto depth = [&] { return (frame ? 1 : 0) + (loop != NoLoop ? 1 : 0); };
    const auto pack = [&] { return loop | (frame ? FrameFlag : 0); };

    Line result;
    if (inTextField) {
        // The body of a text field, its closing line included.
        result.depth = depth() + 1;
        result.context = pack();
        return result;
    }

    qsizetype first = 0;
    while (first < line.size() && isBlank(line[first])) ++first;
    if (first == line.size()) {
        result.blank = true;
        result.depth = depth();
        result.context = pack();
        return result;
    }
    qsizetype end = first;
    while (end < line.size() && !isBlank(line[end])) ++end;
    const QStringView word = line.sliced(first, end - first);

    if (word.front() == u'#') {
        result.depth = depth();
    } else if (startsWithKeyword(word, u"save_")) {
        loop = NoLoop;
        if (word.size() > 5) {  // a frame opens
            result.header = true;
            frame = true;
        } else {  // the frame closes on this line
            result.depth = depth();
            frame = false;
        }
    } else if (startsWithKeyword(word, u"data_") || startsWithKeyword(word, u"global_")) {
        loop = NoLoop;
        frame = false;
        result.depth = 0;
    } else if (word.size() == 5 && startsWithKeyword(word, u"loop_")) {
        // The loop_ line stands outside its loop, as the heading of its fold.
        loop = NoLoop;
        result.depth = depth();
        result.header = true;
        loop = LoopNames;
    } else if (word.front() == u'_') {
        if (loop == LoopValues) loop = NoLoop;  // a data name after the values ends the loop
        result.depth = depth();
    } else {
        // A value (a text field's opening line too).
        if (loop == LoopNames) loop = LoopValues;
        result.depth = depth();
        if (word.front() == u';' && endsInTextField) result.header = true;
    }
    result.context = pack();
    return result;
}
