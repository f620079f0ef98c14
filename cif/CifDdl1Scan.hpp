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
    // Where things are in the text, in offsets: the scan of a large
    // dictionary holds tens of thousands of them.
    struct Value {
        std::uint32_t at = 0;
        std::uint32_t size : 31 = 0;
        std::uint32_t quoted : 1 = 0;  // quoted or a text field
    };
    struct Item {
        std::uint32_t name_at = 0;
        std::uint32_t name_size = 0;
        int line = 0;  // of its name
        std::uint32_t first_value = 0;
        std::uint32_t value_count = 0;
    };
    struct Block {
        const CifDdl1Scan* scan = nullptr;
        std::string_view name;
        int line = 0;  // of its heading
        std::uint32_t first_item = 0;
        std::uint32_t item_count = 0;
        // The sizes of its items' names, modulo 64, one bit each: most
        // attributes asked for are absent, and so told at once.
        std::uint64_t name_sizes = 0;

        std::span<const Item> items() const { return {scan->items_.data() + first_item, item_count}; }
        std::string_view name_of(const Item& item) const {
            return {scan->text_.data() + item.name_at, item.name_size};
        }
        std::span<const Value> values(const Item& item) const {
            return {scan->values_.data() + item.first_value, item.value_count};
        }
        std::string_view text(const Value& value) const {
            return {scan->text_.data() + value.at, value.size};
        }
        // The item of that name, compared without case; null when absent.
        const Item* find(std::string_view name) const {
            if ((name_sizes >> (name.size() & 63) & 1) == 0) return nullptr;
            for (const Item& item : items()) {
                if (item.name_size == name.size() && cif_iequals(name_of(item), name)) return &item;
            }
            return nullptr;
        }
    };

    CifDdl1Scan() = default;
    CifDdl1Scan(const CifDdl1Scan&) = delete;  // its blocks point to it
    CifDdl1Scan& operator=(const CifDdl1Scan&) = delete;

    // Scans text, which must outlive the scan. Returns false (and keeps no
    // blocks) when the text is not plain enough to be read this way.
    bool scan(std::string_view text);
    const std::vector<Block>& blocks() const { return blocks_; }

private:
    bool scan_tokens(std::string_view text);
    static bool plain_bytes(std::string_view text);
    void fail();

    std::string_view text_;
    std::vector<Block> blocks_;
    std::vector<Item> items_;
    std::vector<Value> values_;
};
