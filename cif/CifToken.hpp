// SPDX-License-Identifier: MIT
// One token of CIF text as the lexer hands it to the reader.
#pragma once

#include <cstddef>
#include <cstdint>

// One token of CIF text as the lexer hands it to the reader. For values,
// begin/length is the value itself (without quotes or semicolons).
struct CifToken {
    enum Kind : std::uint8_t {
        end,       // no more text
        name,      // _data_name
        value,     // any data value, a CIF 2.0 list or table included
        data,      // data_ heading; the text is the block name
        save,      // save_ heading with a frame name
        save_end,  // save_ alone
        loop,      // loop_
        global,    // global_
        stop,      // stop_
    };

    Kind kind = end;
    std::uint32_t flags = 0;  // CifValueRef flags of a value
    const char* begin = nullptr;
    std::size_t length = 0;
    int line = 0;  // where the token starts
};
