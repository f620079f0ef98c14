// SPDX-License-Identifier: GPL-3.0-or-later
// Texts of loops for the loop table: the category of names, value order, tab-separated cells.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <string>
#include <string_view>
#include <vector>

// The longest common leading part of the names, compared character by
// character and case-sensitively; it is not cut back to an underscore
// (_atom_site_fract_x and _atom_site_fract_y give _atom_site_fract_).
// Empty for fewer than two names.
QString loop_category(const QStringList& names);

// The order rows are sorted in by a column: numbers by their value (a
// standard uncertainty "(5)" does not count), before every other value;
// the others as text. Stable sorts keep equal values in their order.
bool loop_value_less(std::string_view a, std::string_view b);

// The words of a value, split at blanks and tabs (empty for a blank value).
std::vector<std::string> loop_value_words(std::string_view value);

// A rectangle of cells as spreadsheets copy it: rows on lines, cells
// separated by tabs. Line ends may be LF or CRLF; a final line end does
// not add an empty row.
QList<QStringList> loop_cells_from_tab_text(const QString& text);
QString loop_cells_to_tab_text(const QList<QStringList>& rows);
