// SPDX-License-Identifier: MIT
// Finds the blocks, items and values of a plain DDL1 dictionary text in one pass.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "cif/CifNames.hpp"

// The blocks of a dictionary text written in the plain subset of CIF 1.1
// that dictionaries use (headings, names, values, loops, text fields and
// comments; printable ASCII, tabs and LF line ends, a final line end), found
// in one pass with views into the text. scan() gives up on anything the
// document reader would report or read otherwise (a save frame, a stray
// value, a duplicate name, an unterminated field, a long line, ...): such a
// text is read as a document, for its messages.
class CifDdl1Scan {
public:
    struct Value {
        std::string_view text;
        bool quoted = false;  // quoted or a text field
    };
    struct Item {
        std::string_view name;
        int line = 0;  // of its name
        std::span<const Value> values;
    };
    struct Block {
        std::string_view name;
        int line = 0;  // of its heading
        std::span<const Item> items;
        // The item of that name, compared without case; null when absent.
        const Item* find(std::string_view name) const {
            for (const Item& item : items) {
                if (item.name.size() == name.size() && cif_iequals(item.name, name)) return &item;
            }
            return nullptr;
        }
    };

    // Scans text, which must outlive the scan. Returns false (and keeps no
    // blocks) when the text is not plain enough to be read this way.
    bool scan(std::string_view text);
    const std::vector<Block>& blocks() const { return blocks_; }

private:
    bool scan_tokens(std::string_view text);
    static bool plain_bytes(std::string_view text);
    void fail();

    std::vector<Block> blocks_;
    std::vector<Item> items_;
    std::vector<Value> values_;
    // While scanning: where each item's values and each block's items begin.
    std::vector<std::uint32_t> value_starts_;
    std::vector<std::uint32_t> item_starts_;
};
