// SPDX-License-Identifier: GPL-3.0-or-later
// Texts of loops for the loop table: the category of names, value order, tab-separated cells.
#include "views/QcbsLoopValues.hpp"

#include "cif/CifNumber.hpp"

QString loop_category(const QStringList& names) {
    if (names.size() < 2) return QString();
    QString common = names.front();
    for (const QString& name : names) {
        qsizetype same = 0;
        while (same < common.size() && same < name.size() && common[same] == name[same]) ++same;
        common.truncate(same);
    }
    return common;
}

bool loop_value_less(std::string_view a, std::string_view b) {
    const CifNumber x = CifNumber::parse(a);
    const CifNumber y = CifNumber::parse(b);
    if (x.ok() != y.ok()) return x.ok();
    if (x.ok()) return x.value < y.value;
    return a < b;
}

std::vector<std::string> loop_value_words(std::string_view value) {
    std::vector<std::string> words;
    std::size_t at = 0;
    while (at < value.size()) {
        while (at < value.size() && (value[at] == ' ' || value[at] == '\t')) ++at;
        std::size_t end = at;
        while (end < value.size() && value[end] != ' ' && value[end] != '\t') ++end;
        if (end > at) words.emplace_back(value.substr(at, end - at));
        at = end;
    }
    return words;
}

QList<QStringList> loop_cells_from_tab_text(const QString& text) {
    QList<QStringList> rows;
    QStringList lines = text.split('\n');
    if (!lines.isEmpty() && lines.back().isEmpty()) lines.removeLast();
    for (QString line : lines) {
        if (line.endsWith('\r')) line.chop(1);
        rows.append(line.split('\t'));
    }
    return rows;
}

QString loop_cells_to_tab_text(const QList<QStringList>& rows) {
    QString text;
    for (const QStringList& row : rows) text += row.join('\t') + '\n';
    return text;
}
