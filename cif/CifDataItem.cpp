// SPDX-License-Identifier: MIT
// One data name with its value or its column of loop values.
#include "cif/CifDataItem.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "cif/CifColumnCheck.hpp"
#include "cif/CifValueCheck.hpp"

namespace {

const std::string unknown_value = "?";

}  // namespace

CifDataItem::CifDataItem(std::string_view name, THandle<CifTextStore> store,
                         THandle<CifDictionary> dictionary, int line)
    : store_(store.is_null() ? THandle<CifTextStore>(new CifTextStore()) : store),
      name_(&store_->intern(name)),
      dictionary_(store_->keep(dictionary)),
      line_(line) {
    values_.set_text(store_->text().c_str());
}

std::string CifDataItem::value(unsigned int n) const { return std::string(value_view(n)); }

std::string_view CifDataItem::value_view(std::size_t n) const {
    if (n >= values_.size()) return std::string_view();
    return store_->view(values_[n]);
}

void CifDataItem::set_value(unsigned int n, const std::string& value) {
    while (values_.size() < n) values_.push_back(store_->add(unknown_value));
    if (n == values_.size()) {
        values_.push_back(store_->add(value));
    } else {
        values_.set(n, store_->add(value));
    }
}

void CifDataItem::set_single_value(const std::string& value) {
    values_.clear();
    values_.push_back(store_->add(value));
}

void CifDataItem::add_value(const std::string& value) { values_.push_back(store_->add(value)); }

void CifDataItem::insert_value(unsigned int n, const std::string& value) {
    values_.insert(n, store_->add(value));
}

void CifDataItem::remove_value(unsigned int n) { values_.erase(n); }

void CifDataItem::clear_values() { values_.clear(); }

void CifDataItem::copy_value_from(std::size_t n, const CifDataItem& other, std::size_t m) {
    if (m >= other.size() || n > values_.size()) return;
    CifValueRef ref = other.values_[m];
    if (other.store_ != store_) ref = store_->add(other.store_->view(ref), ref.flags());
    if (n == values_.size()) {
        values_.push_back(ref);
    } else {
        values_.set(n, ref);
    }
}

int CifDataItem::validate(const std::string& value) const {
    if (dictionary_ == nullptr || !(*dictionary_)->has_definitions()) return 0;
    return (*dictionary_)->check_value(name_->text, value, looped_);
}

int CifDataItem::validate_values() const {
    if (dictionary_ == nullptr || !(*dictionary_)->has_definitions()) return 0;
    const CifDictionary& dictionary = **dictionary_;
    const CifItemDefinition* definition = dictionary.definition(name());
    if (definition == nullptr) {
        // A dictionary that answers only check_value: every value gets asked.
        for (std::size_t n = 0; n < values_.size(); ++n)
            if (const int code = dictionary.check_value(name(), std::string(value_view(n)), looped_))
                return code;
        return 0;
    }
    if (const CifValueCheck::Result list = CifValueCheck::check_list(*definition, looped_)) return list.code;
    const CifColumnCheck quick(*definition);
    if (quick.accepts_everything()) return 0;
    const std::string& text = store_->text();
    // A batch of references at a time, as the quick look takes them.
    constexpr std::size_t batch = 4096;
    std::vector<CifValueRef> refs(std::min(values_.size(), batch));
    for (std::size_t begin = 0; begin < values_.size(); begin += batch) {
        const std::size_t count = std::min(values_.size() - begin, batch);
        values_.copy_refs(begin, count, refs.data());
        for (std::size_t i = 0; i < count; ++i) {
            i += quick.first_doubtful(refs.data() + i, count - i, text.data(), text.size());
            if (i == count) break;
            const CifValueRef ref = refs[i];
            if (const CifValueCheck::Result result =
                    CifValueCheck::check(*definition, store_->view(ref), ref.quoted()))
                return result.code;
        }
    }
    return 0;
}

THandle<CifDataItem> CifDataItem::clone() const {
    THandle<CifDataItem> copy = store_->make<CifDataItem>(name_->text, store_, dictionary(), line_);
    static_cast<CifCommentable&>(*copy) = *this;
    copy->values_ = values_;
    return copy;
}
