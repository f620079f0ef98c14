// SPDX-License-Identifier: MIT
// How a text is read: the line length above which a line is reported as too long.
#pragma once

#include <cstddef>

// How a text is read. The first field is the line length above which a
// line is reported as too long (code 318); 0 leaves only CIF 1.1's own
// limit of 2048 characters.
struct CifParserSettings {
    int line_length = 80;
    // Save frames are read (into the block's save_frames()) only in dictionaries.
    bool allow_save_frames = false;
    // Report data names the dictionary does not define (code 320).
    bool check_data_names = true;
    // Check values and loops against the dictionary's definitions (types,
    // enumerations, ranges, loop rules and keys).
    bool check_values = true;
    // CIF 1.1 limits data names and block names to 75 characters.
    int max_name_length = 75;
    // Deepest nesting of CIF 2.0 lists and tables read.
    int max_nesting = 64;
    // Largest single value, data name or text field, in bytes.
    std::size_t max_token_size = std::size_t(256) << 20;
    // Messages recorded before the rest are dropped (code 366).
    std::size_t max_messages = 10000;
    // Unlooped items nothing checks while reading may stay small records
    // until something asks for them; a reader that then walks every item
    // (a dictionary's) saves the second step by asking for objects at once.
    bool items_as_records = true;
};
