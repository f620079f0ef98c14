// SPDX-License-Identifier: MIT
// How blocks are printed: the line length limit that printing keeps to.
#pragma once

// How blocks are printed. The first field is the line length limit that
// printing keeps to wherever CIF allows (a single value longer than the
// limit still takes a line of its own).
struct CifWriteSettings {
    int line_length = 80;
    // Unlooped values start in this column when the name is shorter.
    int value_column = 34;
    // 1 writes CIF 1.1 quoting; 2 writes CIF 2.0 quoting (triple quotes).
    int cif_version = 1;
    bool write_comments = true;
};
