// SPDX-License-Identifier: MIT
// One data block: its items, loops, comments, save frames and the order items print in.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cif/CifCommentable.hpp"
#include "cif/CifDataItem.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifNameIndex.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifTextStore.hpp"
#include "cif/CifValueRef.hpp"
#include "cif/CifWriteSettings.hpp"
#include "support/THandle.hpp"

// One data block: its name (the block code, without "data_"), its data
// items keyed by data name (compared without regard to case), its loops,
// comments, save frames (dictionaries only) and the order items print in.
//
// Unlooped items the reader adds (add_read_item) are kept as records of 24
// bytes (where the name stands in the store's text, the line, the value,
// the comments) until an item is first handed out: then every record of the
// block becomes its object at once, in its place. Const accesses may do
// that from several threads: it happens once, under a lock.
class CifDataBlock : public CifCommentable {
public:
    using ItemList = std::vector<THandle<CifDataItem>>;

    // What copy_loop and merge do with a data name present in both blocks.
    enum OverwriteMode {
        keep_existing = 0,       // this block's item stays as it is; the other's is not taken
        overwrite_existing = 1,  // the other block's item (or loop) replaces this block's
        fill_unknown = 2,        // values here that are ?, . or missing are taken from the other block
        append_rows = 3,  // loops: the other's rows are added after these; single values: as keep_existing
    };

    // Where set_write_order puts the named items (always together, in the given order).
    enum OrderingMode {
        order_at_front = 0,  // before every other item
        order_at_end = 1,    // after every other item
        order_at_last = 2,   // where the last of them stood
        order_in_place = 3,  // where the first of them stood
    };

    // name may be given with or without "data_"; line is the 1-based line of
    // the block's "data_" heading in the text read, -1 for a new block.
    CifDataBlock(THandle<CifDictionary> dictionary, const std::string& name, int line = -1,
                 THandle<CifTextStore> store = THandle<CifTextStore>());

    const std::string& name() const { return name_; }
    void set_name(const std::string& name);
    THandle<CifDictionary> dictionary() const { return dictionary_; }
    const THandle<CifTextStore>& store() const { return store_; }

    // The line of the "data_" heading (-1 when the block was not read), the
    // last line that holds any of the block's text, and the last line before
    // the next block's heading (or the end of the text).
    int line() const { return line_; }
    int last_line() const { return last_line_; }
    int end_line() const { return end_line_; }
    void set_lines(int first, int last, int end) {
        line_ = first;
        last_line_ = last;
        end_line_ = end;
    }

    THandle<CifDataItem> find(std::string_view tag) const;
    THandle<CifDataItem> obtain(const std::string& tag);
    void obtain(const std::vector<std::string>& tags, std::vector<THandle<CifDataItem>>& out);

    std::string value(const std::string& tag) const;
    bool has_value(const std::string& tag) const;
    // The item holds exactly this value afterwards; a looped item leaves its loop.
    void set_value(const std::string& tag, const std::string& value);

    void remove(const std::string& tag);
    void remove(const std::vector<std::string>& tags);

    // Whether an item of the category is present: "cell" or "_cell" matches
    // _cell, _cell_length_a and _cell.length_a (case ignored).
    bool has_item_with_category(const std::string& category) const;

    // The data names of the loop that holds tag, in column order (empty when
    // tag is absent or not looped).
    void loop_columns(const std::string& tag, std::vector<std::string>& out) const;
    // Makes the items one loop, in this column order, where the first of
    // them stood: absent items are created, items of other loops leave them,
    // a single value becomes the first row, short columns are filled with "?".
    void create_loop(const std::vector<std::string>& tags);
    // Copies the source's items of these names into this block as one loop.
    void copy_loop(const std::vector<std::string>& tags, const CifDataBlock& source, OverwriteMode mode);
    // Makes this block a copy of the other: name, comments, items, loops,
    // save frames and write order (this block keeps its dictionary).
    void copy(const CifDataBlock& other);
    // Brings the other block's items, loops and save frames into this one.
    void merge(const CifDataBlock& other, OverwriteMode mode);

    void set_write_order(const std::vector<std::string>& tags, OrderingMode mode);
    ItemList::const_iterator begin_write_order() const { return contents().order.begin(); }
    ItemList::const_iterator end_write_order() const { return contents().order.end(); }
    // These make no item of a record.
    std::size_t item_count() const;
    const std::vector<ItemList>& loops() const { return held().loops; }
    // The number of values of all items (one for an unlooped item with a value).
    std::size_t value_count() const;
    // Whether the block holds no items, loops, save frames or comments.
    bool holds_nothing() const;

    // An unlooped item as the reader finds it: its name is name_length
    // bytes at name_offset of the store's text; value is null for a name
    // without a value. Added at the end as add_item does, kept as a record
    // while the block holds records or nothing; comments are taken. The
    // item's place in write order, or npos (and nothing added) when the
    // name is present.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t add_read_item(std::size_t name_offset, std::size_t name_length, int line,
                              const CifValueRef* value, CifCommentable&& comments);
    // Gives back the room kept for records to come (the reader, at the end of a block).
    void shrink_to_fit();
    // The line of the item of that name, made or not; nullopt when absent.
    std::optional<int> item_line(std::string_view tag) const;
    // Adds comment text to the n-th item in write order, made or not.
    void append_item_comments(std::size_t n, std::string_view text, CommentType type);

    // Adds an unlooped item at the end; false (and nothing added) when the
    // name is present.
    bool add_item(THandle<CifDataItem> item);
    // Adds the items as one loop at the end; items whose names are present
    // are left out (false is returned then).
    bool add_loop(const ItemList& columns);
    // The block's item of the other item's name (found by the hash that name
    // keeps), or null.
    THandle<CifDataItem> find_same_name(const CifDataItem& other) const;

    const std::vector<THandle<CifDataBlock>>& save_frames() const { return held().frames; }
    // Makes no item of a record (the reader adds frames among a block's records).
    void add_save_frame(THandle<CifDataBlock> frame);

    // Writes the block as CIF text, starting with its "data_" line.
    void print(std::ostream& stream, const CifWriteSettings& settings) const;
    // The same for a save frame: "save_" + name ... "save_".
    void print_frame(std::ostream& stream, const CifWriteSettings& settings) const;

private:
    THandle<CifDataItem> lookup(std::string_view tag) const;
    // The same with the name's cif_name_hash() when known (null: not known).
    THandle<CifDataItem> lookup(std::string_view tag, const std::uint64_t* hash) const;
    void build_index();
    THandle<CifDataItem> adopt(const CifDataItem& item) const;
    // The index of the loop holding the item, or -1.
    int loop_of(const CifDataItem* item) const;
    void take_out_of_loop(const THandle<CifDataItem>& item);
    void insert_item(const THandle<CifDataItem>& item);
    void copy_loop_as_new(const std::vector<THandle<CifDataItem>>& sources);
    void fill_unknown_loop(const std::vector<THandle<CifDataItem>>& sources);
    void append_loop_rows(const std::vector<THandle<CifDataItem>>& sources);

    std::string name_;
    THandle<CifDictionary> dictionary_;
    THandle<CifTextStore> store_;
    int line_;
    int last_line_;
    int end_line_;
    // An item not made yet: an unlooped item read from text, or the place
    // in write order of a loop column (which is an object from the start).
    struct Record {
        // The name_offset of a loop column's record, and the value's offset
        // (its bits 0) of a name read without a value: no text is that long.
        static constexpr std::uint32_t none = 0xffffffff;
        CifCommentable comments;
        CifValueRef value;  // a loop column: offset = its loop, bits = its column
        // Where the name stands in the store's text (it ends at white space).
        std::uint32_t name_offset = 0;
        std::int32_t line = -1;

        bool is_column() const { return name_offset == none; }
        bool has_value() const { return !(value.offset == none && value.bits == 0); }
    };
    // What a block holds, apart, so that an empty block costs little.
    struct Contents {
        // The items in write order; while records is not empty they are
        // there instead (and order is empty).
        ItemList order;
        std::vector<Record> records;
        std::atomic<bool> has_records{false};
        // The positions in write order by the items' own names, compared
        // without regard to case; built once a block holds more than a few items.
        CifNameIndex index;
        std::vector<ItemList> loops;
        std::vector<THandle<CifDataBlock>> frames;
    };
    static constexpr std::size_t small_block = 8;
    // Records are looked up one by one up to this many (a dictionary's save
    // frames hold about eight); items made get their index at small_block.
    static constexpr std::size_t small_record_block = 32;
    // Made on first use; the non-const one makes the records' items. The
    // usual case, items made and nothing to do, inline.
    Contents& contents() {
        if (contents_ != nullptr && !contents_->has_records.load(std::memory_order_acquire))
            return *contents_;
        return make_contents();
    }
    Contents& make_contents();
    // The items made from records first (under the lock when still needed).
    const Contents& contents() const {
        if (contents_ != nullptr && !contents_->has_records.load(std::memory_order_acquire))
            return *contents_;
        return made_contents();
    }
    const Contents& made_contents() const;
    // Without making anything: loops and frames are never records.
    const Contents& held() const;
    bool has_records() const {
        return contents_ != nullptr && contents_->has_records.load(std::memory_order_acquire);
    }
    void make_items() const;
    std::string_view record_name(const Record& record) const;
    // Whether the record's name is tag, case ignored (without finding its length first).
    bool record_is(const Record& record, std::string_view tag) const;
    // The position in write order of the item of that name, made or not, or npos.
    std::size_t position_of(std::string_view tag) const;

    std::unique_ptr<Contents> contents_;  // null while the block holds nothing
};

// Prints the block with the default write settings.
std::ostream& operator<<(std::ostream& stream, const CifDataBlock& block);
