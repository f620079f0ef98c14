// SPDX-License-Identifier: MIT
// The mandatory-data-items file: which data names a document and its crystal blocks need.
#pragma once

#include <functional>
#include <istream>
#include <string>
#include <vector>

// The two lists of a mandatory-data-items file: lines with "#" comments,
// section headers data_all (both lists), data_publication and data_crystal
// (compared exactly), and data names (the first word of a line beginning
// with "_"). Lines are trimmed of blanks and tabs and may end in LF, CRLF or
// CR. Items under another header or before any header are dropped;
// duplicates are kept.
struct CifMandatoryItems {
    std::vector<std::string> publication;  // required somewhere in the document
    std::vector<std::string> crystal;      // required in every block with crystal data

    // What a line of the file was taken for, for a caller that traces the
    // reading; the text is the trimmed line (the data name for an item).
    enum class Line { comment, section, item, unrecognised };
    using Trace = std::function<void(Line kind, const std::string& text)>;

    static CifMandatoryItems read(std::istream& stream, const Trace& trace = Trace());
};
