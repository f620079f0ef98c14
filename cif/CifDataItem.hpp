// SPDX-License-Identifier: MIT
// One data name with its value or its column of loop values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "cif/CifCommentable.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifTextStore.hpp"
#include "cif/CifValueColumn.hpp"
#include "support/THandle.hpp"

// One data name with its value (unlooped) or its column of values (a loop
// column). Values are kept as references into a CifTextStore shared with
// the document it was read from; new values are added to that store.
class CifDataItem : public CifCommentable {
public:
    // An item without values. A null store gets a fresh one of its own.
    explicit CifDataItem(std::string_view name, THandle<CifTextStore> store = THandle<CifTextStore>(),
                         THandle<CifDictionary> dictionary = THandle<CifDictionary>(), int line = -1);

    const std::string& name() const { return name_->text; }
    // cif_name_hash(name()), kept with the name.
    std::uint64_t name_hash() const { return name_->hash; }
    // The 1-based line of the data name in the text read, -1 for new items.
    int line() const { return line_; }
    void set_line(int line) { line_ = line; }

    bool is_looped() const { return looped_; }
    std::size_t size() const { return values_.size(); }
    bool has_value() const { return !values_.empty(); }

    // The single value (the first of a column); empty when there is none.
    std::string value() const { return value(0); }
    // The n-th value (0-based); empty when n is out of range.
    std::string value(unsigned int n) const;
    // The same without a copy; valid while the store lives.
    std::string_view value_view(std::size_t n) const;
    // Whether the n-th value was read quoted (so "?" is a question mark, not unknown).
    bool is_quoted(std::size_t n) const { return n < values_.size() && values_[n].quoted(); }
    // Whether the n-th value is a CIF 2.0 list or table, kept as its text.
    bool is_compound(std::size_t n) const { return n < values_.size() && values_[n].compound(); }

    // Replaces the n-th value; a position past the end first fills the gap with "?".
    void set_value(unsigned int n, const std::string& value);
    // Makes the item hold exactly this one value.
    void set_single_value(const std::string& value);
    void add_value(const std::string& value);
    // Inserts before position n (at the end when n >= size()).
    void insert_value(unsigned int n, const std::string& value);
    void remove_value(unsigned int n);
    void clear_values();
    // Sets (or, at n == size(), appends) the n-th value to the other item's
    // m-th value, keeping how it was written (quoted, list or table).
    void copy_value_from(std::size_t n, const CifDataItem& other, std::size_t m);

    // 0 when the dictionary accepts the candidate value for this data name,
    // otherwise the code (CifError::ErrorID) of the first problem.
    int validate(const std::string& value) const;
    // The same for the item's own values, all of them (every row of a loop
    // column) and the loop rule: 0 when the dictionary accepts the item as
    // it stands, otherwise the code of the first problem found. Plain
    // numbers and listed codes pass a quick look, so a long column costs a
    // few instructions a value.
    int validate_values() const;

    THandle<CifDictionary> dictionary() const {
        return dictionary_ == nullptr ? THandle<CifDictionary>() : *dictionary_;
    }
    const THandle<CifTextStore>& store() const { return store_; }
    const CifValueColumn& values() const { return values_; }
    CifValueColumn& values() { return values_; }

    // A copy with the same name, values, comments and line, sharing the store;
    // it is not looped until a block puts it into a loop.
    THandle<CifDataItem> clone() const;

private:
    friend class CifDataBlock;
    void set_looped(bool looped) { looped_ = looped; }

    THandle<CifTextStore> store_;
    const CifKeptName* name_;                   // kept by the store or the process
    const THandle<CifDictionary>* dictionary_;  // kept by the store; null for none
    CifValueColumn values_;
    int line_;
    bool looped_ = false;
};
