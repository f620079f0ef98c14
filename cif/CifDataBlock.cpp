// SPDX-License-Identifier: MIT
// One data block: its items, loops, comments, save frames and the order items print in.
#include "cif/CifDataBlock.hpp"

#include <algorithm>
#include <limits>
#include <mutex>
#include <unordered_set>

#include "cif/CifNames.hpp"
#include "cif/CifPrinter.hpp"

namespace {

bool is_unknown(std::string_view value, bool quoted) {
    return value.empty() || (!quoted && (value == "?" || value == "."));
}

// Guards the making of records' items from const accesses (once per block;
// items are made in the store's arena, which threads do not share otherwise).
std::mutex& making_items() {
    static std::mutex mutex;
    return mutex;
}

}  // namespace

CifDataBlock::CifDataBlock(THandle<CifDictionary> dictionary, const std::string& name, int line,
                           THandle<CifTextStore> store)
    : name_(cif_block_code(name)),
      dictionary_(dictionary),
      store_(store.is_null() ? THandle<CifTextStore>(new CifTextStore()) : store),
      line_(line),
      last_line_(line),
      end_line_(line) {}

void CifDataBlock::set_name(const std::string& name) { name_ = cif_block_code(name); }

CifDataBlock::Contents& CifDataBlock::make_contents() {
    if (contents_ == nullptr) {
        contents_ = std::make_unique<Contents>();
    } else if (has_records()) {
        make_items();
    }
    return *contents_;
}

const CifDataBlock::Contents& CifDataBlock::made_contents() const {
    if (has_records()) make_items();
    return held();
}

const CifDataBlock::Contents& CifDataBlock::held() const {
    static const Contents nothing;
    return contents_ == nullptr ? nothing : *contents_;
}

void CifDataBlock::make_items() const {
    std::lock_guard<std::mutex> lock(making_items());
    Contents& c = *contents_;
    if (!c.has_records.load(std::memory_order_relaxed)) return;
    ItemList order;
    order.reserve(c.records.size());
    for (Record& record : c.records) {
        if (record.is_column()) {
            order.push_back(c.loops[record.value.offset][record.value.bits]);
            continue;
        }
        THandle<CifDataItem> item =
            store_->make<CifDataItem>(record_name(record), store_, dictionary_, record.line);
        static_cast<CifCommentable&>(*item) = std::move(record.comments);
        if (record.has_value()) item->values().push_back(record.value);
        order.push_back(std::move(item));
    }
    // Same places, same names: an index stands.
    c.order = std::move(order);
    if (c.index.empty() && c.order.size() > small_block) c.index.build(c.order);
    std::vector<Record>().swap(c.records);
    c.has_records.store(false, std::memory_order_release);
}

std::string_view CifDataBlock::record_name(const Record& record) const {
    if (record.is_column()) return contents_->loops[record.value.offset][record.value.bits]->name();
    const char* name = store_->text().data() + record.name_offset;
    return std::string_view(name, CifValueColumn::word_length(name));
}

bool CifDataBlock::record_is(const Record& record, std::string_view tag) const {
    if (record.is_column()) return cif_iequals(record_name(record), tag);
    // The name in the text ends at white space or the text's NUL: names
    // of other lengths are told apart by the byte after tag's length first.
    const std::string& text = store_->text();
    if (tag.empty() || record.name_offset + tag.size() > text.size()) return false;
    const char* p = text.data() + record.name_offset;
    if (!CifValueColumn::word_stop(p[tag.size()]) || cif_lower(p[tag.size() - 1]) != cif_lower(tag.back()))
        return false;
    for (const char c : tag) {
        if (CifValueColumn::word_stop(*p) || cif_lower(*p) != cif_lower(c)) return false;
        ++p;
    }
    return CifValueColumn::word_stop(*p);
}

std::size_t CifDataBlock::position_of(std::string_view tag) const {
    if (contents_ == nullptr) return CifNameIndex::npos;
    const Contents& c = *contents_;
    auto search = [&](std::size_t count, const auto& name_at) {
        if (!c.index.empty()) return c.index.find(tag, name_at);
        for (std::size_t i = 0; i < count; ++i) {
            if (cif_iequals(name_at(i), tag)) return i;
        }
        return CifNameIndex::npos;
    };
    if (c.has_records.load(std::memory_order_relaxed)) {
        if (!c.index.empty())
            return c.index.find(tag, [&](std::size_t n) { return record_name(c.records[n]); });
        for (std::size_t i = 0; i < c.records.size(); ++i) {
            if (record_is(c.records[i], tag)) return i;
        }
        return CifNameIndex::npos;
    }
    return search(c.order.size(), [&](std::size_t n) -> std::string_view { return c.order[n]->name(); });
}

std::size_t CifDataBlock::item_count() const {
    if (has_records()) {
        std::lock_guard<std::mutex> lock(making_items());
        if (contents_->has_records.load(std::memory_order_relaxed)) return contents_->records.size();
    }
    return held().order.size();
}

std::size_t CifDataBlock::value_count() const {
    std::size_t values = 0;
    if (has_records()) {
        std::lock_guard<std::mutex> lock(making_items());
        const Contents& c = *contents_;
        if (c.has_records.load(std::memory_order_relaxed)) {
            for (const Record& record : c.records) {
                if (record.is_column()) {
                    values += c.loops[record.value.offset][record.value.bits]->size();
                } else if (record.has_value()) {
                    ++values;
                }
            }
            return values;
        }
    }
    for (const THandle<CifDataItem>& item : held().order) values += item->size();
    return values;
}

bool CifDataBlock::holds_nothing() const {
    return item_count() == 0 && held().loops.empty() && held().frames.empty() && !has_comments();
}

std::size_t CifDataBlock::add_read_item(std::size_t name_offset, std::size_t name_length, int line,
                                        const CifValueRef* value, CifCommentable&& comments) {
    if (contents_ == nullptr) contents_ = std::make_unique<Contents>();
    Contents& c = *contents_;
    // A record's name is found again as the word at its place.
    const bool as_record = (c.has_records.load(std::memory_order_relaxed) || c.order.empty()) &&
                           name_offset < Record::none &&
                           CifValueColumn::word_length(store_->text().data() + name_offset) == name_length;
    if (!as_record) {
        THandle<CifDataItem> item = store_->make<CifDataItem>(
            std::string_view(store_->text()).substr(name_offset, name_length), store_, dictionary_, line);
        static_cast<CifCommentable&>(*item) = std::move(comments);
        if (value != nullptr) item->values().push_back(*value);
        return add_item(item) ? contents_->order.size() - 1 : npos;
    }
    if (position_of(std::string_view(store_->text().data() + name_offset, name_length)) != CifNameIndex::npos)
        return npos;
    // Room for a small block's items at once, as add_item makes.
    if (c.records.empty()) c.records.reserve(small_block);
    Record& record = c.records.emplace_back();
    record.comments = std::move(comments);
    if (value != nullptr) {
        record.value = *value;
    } else {
        record.value.offset = Record::none;
        record.value.bits = 0;
    }
    record.name_offset = static_cast<std::uint32_t>(name_offset);
    record.line = line;
    c.has_records.store(true, std::memory_order_release);
    auto names = [&](std::size_t n) { return record_name(c.records[n]); };
    if (!c.index.empty()) {
        c.index.add(c.records.size(), c.records.size() - 1, names);
    } else if (c.records.size() > small_record_block) {
        c.index.build(c.records.size(), names);
    }
    return c.records.size() - 1;
}

void CifDataBlock::add_save_frame(THandle<CifDataBlock> frame) {
    if (contents_ == nullptr) contents_ = std::make_unique<Contents>();
    contents_->frames.push_back(frame);
}

void CifDataBlock::shrink_to_fit() {
    if (has_records()) contents_->records.shrink_to_fit();
}

std::optional<int> CifDataBlock::item_line(std::string_view tag) const {
    std::unique_lock<std::mutex> lock;
    if (has_records()) lock = std::unique_lock<std::mutex>(making_items());
    const std::size_t found = position_of(tag);
    if (found == CifNameIndex::npos) return std::nullopt;
    const Contents& c = *contents_;
    if (c.has_records.load(std::memory_order_relaxed)) {
        const Record& record = c.records[found];
        return record.line;
    }
    return c.order[found]->line();
}

void CifDataBlock::append_item_comments(std::size_t n, std::string_view text, CommentType type) {
    if (has_records()) {
        Record& record = contents_->records[n];
        if (!record.is_column()) {
            record.comments.append_comments(text, type);
            return;
        }
        contents_->loops[record.value.offset][record.value.bits]->append_comments(text, type);
        return;
    }
    contents().order[n]->append_comments(text, type);
}

THandle<CifDataItem> CifDataBlock::find(std::string_view tag) const { return lookup(tag); }

THandle<CifDataItem> CifDataBlock::find_same_name(const CifDataItem& other) const {
    const std::uint64_t hash = other.name_hash();
    return lookup(other.name(), &hash);
}

THandle<CifDataItem> CifDataBlock::obtain(const std::string& tag) {
    THandle<CifDataItem> item = find(tag);
    if (item.is_null()) {
        item = store_->make<CifDataItem>(tag, store_, dictionary_);
        insert_item(item);
    }
    return item;
}

void CifDataBlock::obtain(const std::vector<std::string>& tags, std::vector<THandle<CifDataItem>>& out) {
    out.clear();
    for (const std::string& tag : tags) out.push_back(obtain(tag));
}

std::string CifDataBlock::value(const std::string& tag) const {
    THandle<CifDataItem> item = find(tag);
    return item.is_null() ? std::string() : item->value();
}

bool CifDataBlock::has_value(const std::string& tag) const {
    THandle<CifDataItem> item = find(tag);
    return !item.is_null() && item->has_value();
}

void CifDataBlock::set_value(const std::string& tag, const std::string& value) {
    THandle<CifDataItem> item = obtain(tag);
    if (item->is_looped()) take_out_of_loop(item);
    item->set_single_value(value);
}

void CifDataBlock::remove(const std::string& tag) {
    THandle<CifDataItem> item = lookup(tag);
    if (item.is_null()) return;
    if (item->is_looped()) take_out_of_loop(item);
    contents().order.erase(std::find(contents().order.begin(), contents().order.end(), item));
    // The index holds positions in the list: the items after it moved.
    if (!contents().index.empty()) build_index();
}

void CifDataBlock::remove(const std::vector<std::string>& tags) {
    for (const std::string& tag : tags) remove(tag);
}

bool CifDataBlock::has_item_with_category(const std::string& category) const {
    std::string prefix = cif_lowercase(category);
    if (prefix.empty() || prefix[0] != '_') prefix.insert(prefix.begin(), '_');
    for (const THandle<CifDataItem>& item : contents().order) {
        const std::string& name = item->name();
        if (!cif_istarts_with(name, prefix)) continue;
        if (name.size() == prefix.size() || name[prefix.size()] == '_' || name[prefix.size()] == '.')
            return true;
    }
    return false;
}

void CifDataBlock::loop_columns(const std::string& tag, std::vector<std::string>& out) const {
    out.clear();
    THandle<CifDataItem> item = find(tag);
    if (item.is_null()) return;
    int loop = loop_of(item.get());
    if (loop < 0) return;
    for (const THandle<CifDataItem>& column : contents().loops[loop]) out.push_back(column->name());
}

void CifDataBlock::create_loop(const std::vector<std::string>& tags) {
    ItemList columns;
    std::vector<std::string> names;
    for (const std::string& tag : tags) {
        THandle<CifDataItem> item = obtain(tag);
        if (std::find(columns.begin(), columns.end(), item) != columns.end()) continue;
        if (item->is_looped()) take_out_of_loop(item);
        columns.push_back(item);
        names.push_back(item->name());
    }
    if (columns.empty()) return;
    std::size_t rows = 0;
    for (const THandle<CifDataItem>& item : columns) rows = std::max(rows, item->size());
    for (const THandle<CifDataItem>& item : columns) {
        while (item->size() < rows) item->add_value("?");
        item->set_looped(true);
    }
    contents().loops.push_back(columns);
    set_write_order(names, order_in_place);
}

void CifDataBlock::copy_loop(const std::vector<std::string>& tags, const CifDataBlock& source,
                             OverwriteMode mode) {
    std::vector<THandle<CifDataItem>> sources;
    for (const std::string& tag : tags) {
        THandle<CifDataItem> item = source.find(tag);
        if (!item.is_null() && std::find(sources.begin(), sources.end(), item) == sources.end())
            sources.push_back(item);
    }
    if (sources.empty()) return;
    bool any_present = false;
    for (const THandle<CifDataItem>& item : sources)
        any_present = any_present || !find(item->name()).is_null();
    if (!any_present) {
        copy_loop_as_new(sources);
        return;
    }
    switch (mode) {
        case keep_existing:
            break;
        case overwrite_existing:
            for (const THandle<CifDataItem>& item : sources) remove(item->name());
            copy_loop_as_new(sources);
            break;
        case fill_unknown:
            fill_unknown_loop(sources);
            break;
        case append_rows:
            append_loop_rows(sources);
            break;
    }
}

void CifDataBlock::copy_loop_as_new(const std::vector<THandle<CifDataItem>>& sources) {
    ItemList columns;
    for (const THandle<CifDataItem>& item : sources) columns.push_back(adopt(*item));
    add_loop(columns);
    // Columns of unequal length (a source built by hand) are evened out.
    std::size_t rows = 0;
    for (const THandle<CifDataItem>& item : columns) rows = std::max(rows, item->size());
    for (const THandle<CifDataItem>& item : columns) {
        while (item->size() < rows) item->add_value("?");
    }
}

void CifDataBlock::fill_unknown_loop(const std::vector<THandle<CifDataItem>>& sources) {
    // Only a loop that all present names share, with as many rows as the
    // source, can be filled row by row; anything else stays as it is.
    int loop = -1;
    for (const THandle<CifDataItem>& source : sources) {
        THandle<CifDataItem> mine = find(source->name());
        if (mine.is_null()) continue;
        int its_loop = loop_of(mine.get());
        if (its_loop < 0 || (loop >= 0 && its_loop != loop)) return;
        loop = its_loop;
    }
    std::size_t rows = contents().loops[loop].front()->size();
    if (sources.front()->size() != rows) return;
    std::vector<std::string> names;
    for (const THandle<CifDataItem>& column : contents().loops[loop]) names.push_back(column->name());
    for (const THandle<CifDataItem>& source : sources) {
        THandle<CifDataItem> mine = find(source->name());
        if (mine.is_null()) {
            mine = adopt(*source);
            insert_item(mine);
            names.push_back(mine->name());
            continue;
        }
        for (std::size_t row = 0; row < rows && row < source->size(); ++row) {
            if (is_unknown(mine->value_view(row), mine->is_quoted(row)))
                mine->copy_value_from(row, *source, row);
        }
    }
    create_loop(names);
}

void CifDataBlock::append_loop_rows(const std::vector<THandle<CifDataItem>>& sources) {
    std::vector<std::string> names;
    THandle<CifDataItem> anchor;
    for (const THandle<CifDataItem>& source : sources) {
        THandle<CifDataItem> mine = find(source->name());
        if (mine.is_null() || !anchor.is_null()) continue;
        anchor = mine;
    }
    // The loop the rows go into: the present items' loop (or the present
    // items themselves), widened by the source's new names.
    int loop = loop_of(anchor.get());
    if (loop >= 0) {
        for (const THandle<CifDataItem>& column : contents().loops[loop]) names.push_back(column->name());
    }
    for (const THandle<CifDataItem>& source : sources) {
        if (std::find_if(names.begin(), names.end(), [&](const std::string& n) {
                return cif_iequals(n, source->name());
            }) == names.end()) {
            names.push_back(source->name());
        }
    }
    create_loop(names);
    std::size_t rows = 0;
    for (const THandle<CifDataItem>& source : sources) rows = std::max(rows, source->size());
    ItemList columns;
    obtain(names, columns);
    for (const THandle<CifDataItem>& column : columns) {
        THandle<CifDataItem> source;
        for (const THandle<CifDataItem>& candidate : sources) {
            if (cif_iequals(candidate->name(), column->name())) source = candidate;
        }
        for (std::size_t row = 0; row < rows; ++row) {
            if (source.is_null() || row >= source->size()) {
                column->add_value("?");
            } else {
                column->copy_value_from(column->size(), *source, row);
            }
        }
    }
}

void CifDataBlock::copy(const CifDataBlock& other) {
    if (this == &other) return;
    static_cast<CifCommentable&>(*this) = other;
    name_ = other.name_;
    line_ = other.line_;
    last_line_ = other.last_line_;
    end_line_ = other.end_line_;
    contents().order.clear();
    contents().index.clear();
    contents().loops.clear();
    contents().frames.clear();
    std::unordered_map<const CifDataItem*, THandle<CifDataItem>> copies;
    for (const THandle<CifDataItem>& item : other.contents().order) {
        THandle<CifDataItem> copy = adopt(*item);
        copy->set_looped(item->is_looped());
        copies[item.get()] = copy;
        contents().order.push_back(copy);
    }
    if (contents().order.size() > small_block) build_index();
    for (const ItemList& loop : other.contents().loops) {
        ItemList columns;
        for (const THandle<CifDataItem>& item : loop) columns.push_back(copies[item.get()]);
        contents().loops.push_back(columns);
    }
    for (const THandle<CifDataBlock>& frame : other.contents().frames) {
        THandle<CifDataBlock> copy(new CifDataBlock(dictionary_, frame->name(), frame->line(), store_));
        copy->copy(*frame);
        contents().frames.push_back(copy);
    }
}

void CifDataBlock::merge(const CifDataBlock& other, OverwriteMode mode) {
    if (this == &other) return;
    std::unordered_set<int> loops_done;
    for (const THandle<CifDataItem>& item : other.contents().order) {
        int loop = other.loop_of(item.get());
        if (loop >= 0) {
            if (!loops_done.insert(loop).second) continue;
            std::vector<std::string> names;
            for (const THandle<CifDataItem>& column : other.contents().loops[loop])
                names.push_back(column->name());
            copy_loop(names, other, mode);
            continue;
        }
        THandle<CifDataItem> mine = find(item->name());
        if (mine.is_null()) {
            insert_item(adopt(*item));
            continue;
        }
        if (mode == overwrite_existing) {
            THandle<CifDataItem> copy = adopt(*item);
            if (mine->is_looped()) take_out_of_loop(mine);
            // In the same place, under a name the same but for case: the index stands.
            *std::find(contents().order.begin(), contents().order.end(), mine) = copy;
        } else if (mode == fill_unknown && !mine->is_looped() &&
                   (!mine->has_value() || is_unknown(mine->value_view(0), mine->is_quoted(0)))) {
            mine->clear_values();
            if (item->has_value()) mine->copy_value_from(0, *item, 0);
        }
    }
    for (const THandle<CifDataBlock>& frame : other.contents().frames) {
        bool present = false;
        for (const THandle<CifDataBlock>& mine : contents().frames)
            present = present || cif_iequals(mine->name(), frame->name());
        if (present) continue;
        THandle<CifDataBlock> copy(new CifDataBlock(dictionary_, frame->name(), frame->line(), store_));
        copy->copy(*frame);
        contents().frames.push_back(copy);
    }
}

void CifDataBlock::set_write_order(const std::vector<std::string>& tags, OrderingMode mode) {
    ItemList moved;
    for (const std::string& tag : tags) {
        THandle<CifDataItem> item = find(tag);
        if (!item.is_null() && std::find(moved.begin(), moved.end(), item) == moved.end())
            moved.push_back(item);
    }
    if (moved.empty()) return;
    auto is_moved = [&](const THandle<CifDataItem>& item) {
        return std::find(moved.begin(), moved.end(), item) != moved.end();
    };

    // Within each loop the named columns take the slots they held, in the given order.
    for (ItemList& loop : contents().loops) {
        std::vector<std::size_t> slots;
        for (std::size_t i = 0; i < loop.size(); ++i) {
            if (is_moved(loop[i])) slots.push_back(i);
        }
        ItemList members;
        for (const THandle<CifDataItem>& item : moved) {
            if (std::find(loop.begin(), loop.end(), item) != loop.end()) members.push_back(item);
        }
        for (std::size_t i = 0; i < slots.size(); ++i) loop[slots[i]] = members[i];
    }

    std::size_t position = 0;
    std::size_t kept_before = 0;
    bool found_first = false;
    for (const THandle<CifDataItem>& item : contents().order) {
        if (is_moved(item)) {
            if (mode == order_in_place && !found_first) position = kept_before;
            if (mode == order_at_last) position = kept_before;
            found_first = true;
        } else {
            ++kept_before;
        }
    }
    ItemList rest;
    for (const THandle<CifDataItem>& item : contents().order) {
        if (!is_moved(item)) rest.push_back(item);
    }
    if (mode == order_at_front) position = 0;
    if (mode == order_at_end) position = rest.size();
    position = std::min(position, rest.size());
    rest.insert(rest.begin() + static_cast<std::ptrdiff_t>(position), moved.begin(), moved.end());
    contents().order.swap(rest);
    if (!contents().index.empty()) build_index();
}

bool CifDataBlock::add_item(THandle<CifDataItem> item) {
    // The item's name comes with its hash, for the search and the index.
    const std::uint64_t hash = item->name_hash();
    if (contents_ != nullptr && !has_records()) {
        // An indexed block: one probe finds the name or the place for it.
        Contents& c = *contents_;
        if (!c.index.empty()) {
            std::size_t slot = 0;
            if (c.index.find_slot(c.order, item->name(), hash, slot) != CifNameIndex::npos) return false;
            c.order.push_back(std::move(item));
            c.index.add_at(c.order, c.order.size() - 1, slot);
            return true;
        }
    }
    if (!lookup(item->name(), &hash).is_null()) return false;
    Contents& c = contents();
    // Room for a small block's items at once (a save frame of a dictionary
    // holds about eight): one allocation instead of four.
    if (c.order.empty()) c.order.reserve(small_block);
    c.order.push_back(std::move(item));
    if (!c.index.empty()) {
        c.index.add(c.order, c.order.size() - 1);
    } else if (c.order.size() > small_block) {
        build_index();
    }
    return true;
}

THandle<CifDataItem> CifDataBlock::lookup(std::string_view tag) const { return lookup(tag, nullptr); }

THandle<CifDataItem> CifDataBlock::lookup(std::string_view tag, const std::uint64_t* hash) const {
    if (contents_ == nullptr) return THandle<CifDataItem>();
    const Contents& c = contents();
    if (!c.index.empty()) {
        const std::size_t found =
            hash != nullptr ? c.index.find(c.order, tag, *hash) : c.index.find(c.order, tag);
        return found == CifNameIndex::npos ? THandle<CifDataItem>() : c.order[found];
    }
    for (const THandle<CifDataItem>& item : c.order) {
        if (cif_iequals(item->name(), tag)) return item;
    }
    return THandle<CifDataItem>();
}

void CifDataBlock::build_index() {
    Contents& c = contents();
    if (c.order.size() > small_block) {
        c.index.build(c.order);
    } else {
        c.index.clear();
    }
}

bool CifDataBlock::add_loop(const ItemList& columns) {
    if (has_records()) {
        // The columns take their places in write order as records of them.
        Contents& c = *contents_;
        const std::size_t loop = c.loops.size();
        c.loops.emplace_back();
        auto names = [&](std::size_t n) { return record_name(c.records[n]); };
        std::size_t added = 0;
        for (const THandle<CifDataItem>& item : columns) {
            if (position_of(item->name()) != CifNameIndex::npos) continue;
            item->set_looped(true);
            Record& record = c.records.emplace_back();
            record.name_offset = Record::none;
            record.value.offset = static_cast<std::uint32_t>(loop);
            record.value.bits = static_cast<std::uint32_t>(c.loops[loop].size());
            record.line = item->line();
            c.loops[loop].push_back(item);
            ++added;
            if (!c.index.empty()) {
                c.index.add(c.records.size(), c.records.size() - 1, names);
            } else if (c.records.size() > small_record_block) {
                c.index.build(c.records.size(), names);
            }
        }
        if (added == 0) c.loops.pop_back();
        return added == columns.size();
    }
    ItemList added;
    added.reserve(columns.size());
    for (const THandle<CifDataItem>& item : columns) {
        if (!add_item(item)) continue;
        item->set_looped(true);
        added.push_back(item);
    }
    const bool all = added.size() == columns.size();
    if (!added.empty()) contents().loops.push_back(std::move(added));
    return all;
}

void CifDataBlock::print(std::ostream& stream, const CifWriteSettings& settings) const {
    CifPrinter(settings).print_block(*this, stream);
}

void CifDataBlock::print_frame(std::ostream& stream, const CifWriteSettings& settings) const {
    CifPrinter(settings).print_frame(*this, stream);
}

THandle<CifDataItem> CifDataBlock::adopt(const CifDataItem& item) const {
    THandle<CifDataItem> copy = item.clone();
    copy->dictionary_ = copy->store_->keep(dictionary_);
    return copy;
}

int CifDataBlock::loop_of(const CifDataItem* item) const {
    if (item == nullptr || !item->is_looped()) return -1;
    for (std::size_t i = 0; i < contents().loops.size(); ++i) {
        for (const THandle<CifDataItem>& column : contents().loops[i]) {
            if (column.get() == item) return static_cast<int>(i);
        }
    }
    return -1;
}

void CifDataBlock::take_out_of_loop(const THandle<CifDataItem>& item) {
    int loop = loop_of(item.get());
    item->set_looped(false);
    if (loop < 0) return;
    ItemList& columns = contents().loops[loop];
    columns.erase(std::find(columns.begin(), columns.end(), item));
    if (columns.empty()) contents().loops.erase(contents().loops.begin() + loop);
}

void CifDataBlock::insert_item(const THandle<CifDataItem>& item) { add_item(item); }

std::ostream& operator<<(std::ostream& stream, const CifDataBlock& block) {
    block.print(stream, CifWriteSettings());
    return stream;
}
