// SPDX-License-Identifier: GPL-3.0-or-later
// The options that hold for the whole program, with their defaults.
#pragma once

#include <QString>

#include "base/QcbsContactAuthor.hpp"

// The options that hold for the whole program, with their defaults: one
// value read from the settings at start-up and shared by every window.
struct QcbsOptions {
    bool text_buttons = false;    // tool buttons show their texts
    int initial_app_width = 800;  // size of a new window (of the window saved last)
    int initial_app_height = 650;
    int max_consec_error = 4;          // limit on messages on consecutive lines
    bool reuse_window = false;         // opening a file replaces this window's document
    bool start_with_template = false;  // a new document starts as a copy of template_file
    QString template_file;
    bool check_mandatory_items = false;  // check every document against mandatory_items_file
    QString mandatory_items_file;
    bool line_numbers = false;
    bool save_backup = false;    // saving keeps the previous file as a backup
    bool keep_recovery = true;   // unsaved text is kept in a recovery file until saved
    int line_length_limit = 80;  // the reader's long-line warning and the printer's width
    bool consistency_checks = true;
    QcbsContactAuthor contact_author;
    // The editor: loops, save frames and text fields fold; "_" offers the
    // dictionaries' data names; the partner of a quote, bracket or text-field
    // ";" is shown; typing reaches every line of a rectangular selection;
    // blanks, tabs and line ends are shown.
    bool folding = true;
    bool data_name_completion = true;
    bool matching_delimiters = true;
    bool rectangular_selection = true;
    bool show_white_space = false;

    bool operator==(const QcbsOptions& other) const = default;
};
