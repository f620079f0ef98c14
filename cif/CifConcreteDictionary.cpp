// SPDX-License-Identifier: MIT
// One dictionary file (DDL1, DDLm or DDL2) read into memory: its descriptor and definitions.
#include "cif/CifConcreteDictionary.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>

#include "cif/CifDdl1Reader.hpp"
#include "cif/CifDdl2Reader.hpp"
#include "cif/CifDdlmImports.hpp"
#include "cif/CifDdlmReader.hpp"
#include "cif/CifEditDistance.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifStreamText.hpp"

bool CifConcreteDictionary::read(std::istream& stream, THandle<CifErrorContainer> errors, std::ostream* log) {
    std::string text;
    const bool readable = cif_read_stream(stream, text);
    if (!readable && !errors.is_null())
        errors->add(CifError(CifError::input_unreadable, 1, std::string(), "read error"));
    return read_text(std::move(text), std::string(), errors, log) && readable;
}

bool CifConcreteDictionary::read_file(const std::string& path, THandle<CifErrorContainer> errors,
                                      std::ostream* log) {
    std::ifstream stream(path, std::ios::binary);
    std::string text;
    if (!stream || !cif_read_stream(stream, text)) {
        if (!errors.is_null()) errors->add(CifError(CifError::input_unreadable, 1, path, "read error"));
        return false;
    }
    return read_text(std::move(text), CifDdlmImports::directory_of(path), errors, log);
}

CifConcreteDictionary::Language CifConcreteDictionary::language_of(std::string_view text) {
    // Attributes only the one language uses, searched in the leading part
    // of the text where the first definitions stand. Each has a full stop,
    // rare enough in the text to look only around those.
    const std::string_view head = text.substr(0, 1 << 16);
    bool ddl2 = false;
    for (std::size_t dot = head.find('.'); dot != std::string_view::npos; dot = head.find('.', dot + 1)) {
        const std::string_view before = head.substr(0, dot);
        const std::string_view after = head.substr(dot + 1);
        if ((before.ends_with("_definition") && after.starts_with("id")) ||
            (before.ends_with("_dictionary") && after.starts_with("ddl_conformance")))
            return Language::ddlm;
        ddl2 = ddl2 || (before.ends_with("_item") && after.starts_with("name")) ||
               (before.ends_with("_datablock") && after.starts_with("id")) ||
               (before.ends_with("_dictionary") && after.starts_with("datablock_id"));
    }
    if (ddl2) return Language::ddl2;
    return Language::ddl1;
}

bool CifConcreteDictionary::read_text(std::string text, const std::string& directory,
                                      THandle<CifErrorContainer> errors, std::ostream* log) {
    descriptor_ = CifDictionaryDescriptor();
    definitions_.clear();
    store_.reset();
    categories_.clear();
    index_.clear();
    lookup_.clear();
    members_.clear();
    by_length_.clear();
    facts_.clear();
    facts_lookup_.clear();
    similar_memo_ = std::make_unique<SimilarMemo>();
    renew_serial();
    std::size_t before = errors.is_null() ? 0 : errors->size();
    language_ = language_of(text);
    switch (language_) {
        case Language::ddl1:
            CifDdl1Reader(*this, errors, log).read(std::move(text));
            break;
        case Language::ddlm:
            CifDdlmReader(*this, errors, log, import_directories_).read(std::move(text), directory);
            break;
        case Language::ddl2:
            CifDdl2Reader(*this, errors, log).read(std::move(text));
            break;
    }
    gather_facts();
    has_aliases_ =
        std::any_of(definitions_.begin(), definitions_.end(),
                    [](const CifItemDefinition& definition) { return !definition.aliases.empty(); });
    store_ = std::make_unique<CifDictionaryStore>(std::move(definitions_));
    std::vector<CifItemDefinition>().swap(definitions_);
    build_lookup();
    return errors.is_null() || errors->size() == before;
}

void CifConcreteDictionary::add_definition(CifItemDefinition definition,
                                           const THandle<CifErrorContainer>& errors) {
    auto [found, inserted] = index_.emplace(cif_lowercase(definition.name), definitions_.size());
    if (!inserted) {
        if (!errors.is_null())
            errors->add(CifError(CifError::dictionary_duplicate_definition, definition.line, definition.name,
                                 std::to_string(definitions_[found->second].line)));
        return;
    }
    if (!explanations_kept_) definition.drop_explanations();
    definitions_.push_back(std::move(definition));
}

void CifConcreteDictionary::add_aliases() {
    for (std::size_t i = 0; i < definitions_.size(); ++i) {
        for (const std::string& alias : definitions_[i].aliases) index_.emplace(cif_lowercase(alias), i);
    }
}

void CifConcreteDictionary::index_members() {
    for (std::size_t i = 0; i < definitions_.size(); ++i) {
        const std::string& category = definitions_[i].category;
        if (!category.empty()) members_[category].push_back(i);
    }
}

namespace {

// Whether two texts of the same size hold the same bytes: eight at a time,
// the last eight overlapping those before when the size is not a multiple.
bool same_bytes(std::string_view a, std::string_view b) {
    const std::size_t size = a.size();
    if (size < 8) return a == b;
    std::uint64_t x, y;
    for (std::size_t at = 0; at + 8 < size; at += 8) {
        std::memcpy(&x, a.data() + at, 8);
        std::memcpy(&y, b.data() + at, 8);
        if (x != y) return false;
    }
    std::memcpy(&x, a.data() + size - 8, 8);
    std::memcpy(&y, b.data() + size - 8, 8);
    return x == y;
}

}  // namespace

bool CifConcreteDictionary::is_defined(const std::string& data_name) const {
    return definition(data_name) != nullptr;
}

void CifConcreteDictionary::build_lookup() {
    std::size_t size = 16;
    while (size < 2 * index_.size()) size *= 2;
    lookup_.assign(size, Slot());
    for (const auto& [key, index] : index_) {
        // The slot keeps the store's own spelling of the name or alias
        // (compared without case), so the reading's table can go.
        std::string_view name = store_->name(index);
        if (!cif_iequals(name, key)) {
            for (std::string_view spelling : store_->names(index))
                if (cif_iequals(spelling, key)) name = spelling;
        }
        const std::uint64_t hash = cif_name_hash(key);
        std::size_t at = hash & (size - 1);
        while (lookup_[at].index != Slot::free) at = (at + 1) & (size - 1);
        lookup_[at] = Slot{static_cast<std::uint32_t>(hash >> 32), static_cast<std::uint32_t>(index),
                           static_cast<std::uint32_t>(name.data() - store_->packed().data()),
                           static_cast<std::uint32_t>(name.size())};
    }
    decltype(index_)().swap(index_);
}

const CifItemDefinition* CifConcreteDictionary::definition(const std::string& data_name) const {
    return definition_hashed(data_name, lookup_.empty() ? 0 : cif_name_hash(data_name));
}

const CifItemDefinition* CifConcreteDictionary::definition_hashed(const std::string& data_name,
                                                                  std::uint64_t hash) const {
    if (!lookup_.empty()) {
        const Slot* const slots = lookup_.data();
        const std::size_t mask = lookup_.size() - 1;
        const auto high = static_cast<std::uint32_t>(hash >> 32);
        const char* const packed = store_->packed().data();
        const std::size_t size = data_name.size();
        for (std::size_t at = hash & mask; slots[at].index != Slot::free; at = (at + 1) & mask) {
            const Slot& slot = slots[at];
            if (slot.high != high || slot.size != size) continue;
            // Files mostly spell a name as the dictionary does: the same bytes
            // are told first, other cases only then.
            const std::string_view name(packed + slot.at, size);
            if (same_bytes(name, data_name) || cif_iequals(name, data_name)) return &(*store_)[slot.index];
        }
        return nullptr;
    }
    auto found = index_.find(data_name);
    return found == index_.end() ? nullptr : &definitions_[found->second];
}

std::vector<std::string> CifConcreteDictionary::data_names() const {
    // The reader keeps no second definition of a name, so each comes once.
    std::vector<std::string> result;
    result.reserve(definition_count());
    for (std::size_t i = 0; i < definition_count(); ++i) {
        const std::string_view category = store_ ? store_->category(i) : definitions_[i].category;
        if (category != "category_overview") result.emplace_back(name_at(i));
    }
    return result;
}

std::vector<std::string> CifConcreteDictionary::category_items(const std::string& category) const {
    std::vector<std::string> result;
    auto found = members_.find(plain_category_name(category));
    if (found == members_.end()) return result;
    for (std::size_t index : found->second) result.emplace_back(name_at(index));
    return result;
}

std::vector<std::string> CifConcreteDictionary::mandatory_items(const std::string& category) const {
    std::vector<std::string> result;
    auto found = members_.find(plain_category_name(category));
    if (found == members_.end()) return result;
    for (std::size_t index : found->second) {
        if (definition_at(index).list_mandatory) result.emplace_back(name_at(index));
    }
    return result;
}

void CifConcreteDictionary::index_by_length() const {
    for (std::size_t i = 0; i < definition_count(); ++i) {
        const std::string_view name = name_at(i);
        if (name.find('[') != std::string::npos) continue;  // a category overview
        if (by_length_.size() <= name.size()) by_length_.resize(name.size() + 1);
        by_length_[name.size()].push_back({i, cif_letter_set(name)});
    }
}

void CifConcreteDictionary::gather_facts() {
    for (const auto& [category, members] : members_) facts_.try_emplace(category);
    std::size_t size = 16;
    while (size < 2 * facts_.size()) size *= 2;
    facts_lookup_.assign(size, FactsSlot());
    for (auto& [category, entry] : facts_) {
        const std::uint64_t hash = cif_name_hash(category);
        std::size_t at = hash & (size - 1);
        while (facts_lookup_[at].facts != nullptr) at = (at + 1) & (size - 1);
        facts_lookup_[at] = FactsSlot{hash, &category, &entry};
    }
}

const CifCategoryFacts* CifConcreteDictionary::category_facts(const std::string& category) const {
    // A definition's own category is usually a plain name already, found
    // without a lower-case copy (the tables' comparisons ignore case).
    const bool plain =
        !category.empty() && category.front() != '_' && category.find('[') == std::string::npos;
    std::string plain_name;
    if (!plain) plain_name = plain_category_name(category);
    const std::string& name = plain ? category : plain_name;
    const std::string* key = nullptr;
    LazyFacts* entry = nullptr;
    if (!facts_lookup_.empty()) {
        const std::uint64_t hash = cif_name_hash(name);
        const std::size_t mask = facts_lookup_.size() - 1;
        for (std::size_t at = hash & mask; facts_lookup_[at].facts != nullptr; at = (at + 1) & mask) {
            const FactsSlot& slot = facts_lookup_[at];
            if (slot.hash == hash && cif_iequals(*slot.name, name)) {
                key = slot.name;
                entry = slot.facts;
                break;
            }
        }
    } else if (auto found = facts_.find(name); found != facts_.end()) {
        key = &found->first;
        entry = &found->second;
    }
    static const CifCategoryFacts none;  // a category without members
    if (entry == nullptr) return &none;
    if (!entry->ready.load(std::memory_order_acquire)) {
        std::call_once(entry->worked_out, [&] {
            entry->facts = CifCategoryFacts::of(*this, *key);
            entry->ready.store(true, std::memory_order_release);
        });
    }
    return &entry->facts;
}

std::vector<CifDictionary::SimilarName> CifConcreteDictionary::similar_names(std::string_view data_name,
                                                                             int max_edits) const {
    // The bound, a space and the lower-case name, made in one piece.
    char bound[16];
    const std::size_t bound_size =
        static_cast<std::size_t>(std::to_chars(bound, bound + 16, max_edits).ptr - bound);
    std::string key(bound_size + 1 + data_name.size(), ' ');
    std::memcpy(key.data(), bound, bound_size);
    char* const lower = key.data() + bound_size + 1;
    std::size_t i = 0;
    for (; i + 8 <= data_name.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, data_name.data() + i, 8);
        word = cif_lower_word(word);
        std::memcpy(lower + i, &word, 8);
    }
    for (; i < data_name.size(); ++i) lower[i] = cif_lower(data_name[i]);
    {
        std::lock_guard<std::mutex> lock(similar_memo_->mutex);
        auto found = similar_memo_->answers.find(key);
        if (found != similar_memo_->answers.end()) return found->second;
    }
    std::vector<SimilarName> result = find_similar_names(data_name, max_edits);
    std::lock_guard<std::mutex> lock(similar_memo_->mutex);
    if (similar_memo_->answers.size() >= 4096) similar_memo_->answers.clear();
    similar_memo_->answers.emplace(std::move(key), result);
    return result;
}

std::vector<CifDictionary::SimilarName> CifConcreteDictionary::find_similar_names(std::string_view data_name,
                                                                                  int max_edits) const {
    std::vector<SimilarName> result;
    if (max_edits < 0) return result;
    const std::size_t edits = static_cast<std::size_t>(max_edits);
    std::call_once(similar_memo_->indexed, [this] { index_by_length(); });
    const std::size_t shortest = data_name.size() > edits ? data_name.size() - edits : 0;
    const std::size_t longest = std::min(data_name.size() + edits + 1, by_length_.size());
    const std::uint64_t letters = cif_letter_set(data_name);
    std::vector<std::pair<std::size_t, int>> found;  // definition index, edits
    for (std::size_t length = shortest; length < longest; ++length) {
        for (const auto& [index, other] : by_length_[length]) {
            if (cif_edit_distance_floor(letters, other) > max_edits) continue;
            const int distance = cif_edit_distance(data_name, name_at(index), max_edits);
            if (distance <= max_edits) found.emplace_back(index, distance);
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return a.second != b.second ? a.second < b.second : a.first < b.first;
    });
    for (const auto& [index, distance] : found) result.push_back({std::string(name_at(index)), distance});
    return result;
}
