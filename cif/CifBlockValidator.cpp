// SPDX-License-Identifier: MIT
// Checks a block's items and loops against a dictionary, each finding on its own line.
#include "cif/CifBlockValidator.hpp"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "cif/CifLoopChecker.hpp"
#include "cif/CifNamePool.hpp"
#include "cif/CifNames.hpp"

namespace {

// Whether a loop column satisfies a _list_reference: the name itself, or
// for a reference ending in "_" (a family such as _refln_index_) any name
// that begins with it.
bool satisfies(std::string_view column, std::string_view reference) {
    if (!reference.empty() && reference.back() == '_') return cif_istarts_with(column, reference);
    return cif_iequals(column, reference);
}

bool loop_has(const CifDataBlock::ItemList& loop, std::string_view reference) {
    return std::any_of(loop.begin(), loop.end(),
                       [&](const THandle<CifDataItem>& item) { return satisfies(item->name(), reference); });
}

// The category whose loops may hold the item's column.
const std::string& loop_category(const CifItemDefinition& definition) {
    return definition.loop_category.empty() ? definition.category : definition.loop_category;
}

bool is_replacement(const CifItemDefinition::Related& related) {
    return cif_iequals(related.function, "replace");
}

std::string joined(const std::vector<std::string>& names) {
    std::string result;
    for (const std::string& name : names) result += (result.empty() ? "" : ", ") + name;
    return result;
}

}  // namespace

CifBlockValidator::CifBlockValidator(CifValueReporter& reporter, bool names, bool values,
                                     const std::unordered_set<const CifDataItem*>* checked,
                                     const Notes* notes, CifLoopKeys* keys)
    : reporter_(reporter),
      dictionary_(reporter.dictionary()),
      sink_(reporter.sink()),
      names_(names),
      values_(values),
      checked_(checked),
      notes_(notes),
      own_keys_(dictionary_),
      keys_(keys != nullptr ? *keys : own_keys_) {}

void CifBlockValidator::validate(const CifDataBlock& block) {
    linked_.clear();
    block_ = &block;
    // Most blocks give a few messages (names the dictionary replaces or
    // lacks): room for them at once rather than moving them as they come.
    std::vector<CifError>& messages = sink_.errors();
    if (messages.capacity() - messages.size() < 8) messages.reserve(messages.size() + 16);
    for (auto it = block.begin_write_order(); it != block.end_write_order(); ++it) {
        if (!(*it)->is_looped()) validate_single(**it);
    }
    for (const CifDataBlock::ItemList& loop : block.loops()) validate_loop(loop);
    if (values_) check_parents(block);
}

void CifBlockValidator::check_parents(const CifDataBlock& block) {
    for (const auto& [item, definition, rows] : linked_) {
        THandle<CifDataItem> parent;
        for (const std::string& name : definition->list_link_parent) {
            parent = block.find(name);
            if (!parent.is_null()) break;
        }
        if (parent.is_null()) {
            sink_.add(CifError::required_item_missing, item->line(), item->name(),
                      definition->list_link_parent[0]);
            continue;
        }
        // A parent whose rows a syntax problem damaged may lack any value.
        if (sound_rows(*parent) < parent->size()) continue;
        std::unordered_set<std::string_view> known;
        for (std::size_t n = 0; n < parent->size(); ++n) known.insert(parent->value_view(n));
        std::unordered_set<std::string_view> reported;
        for (std::size_t n = 0; n < rows; ++n) {
            std::string_view value = item->value_view(n);
            if (CifValueCheck::is_null_value(value, item->is_quoted(n)) || known.count(value) != 0 ||
                !reported.insert(value).second)
                continue;
            if (sink_.full()) return;
            sink_.add(CifError::parent_value_missing, reporter_.value_line(*item, n), item->name(),
                      std::string(value));
        }
    }
}

std::string CifBlockValidator::suggestion(const CifDataItem& item) const {
    // The suggestions made on this thread, by dictionary and name, in a
    // fixed number of places (the name's hash picks one): files checked one
    // after another lack the same few names.
    struct Remembered {
        std::uint64_t serial = 0;
        std::string name;
        std::string text;
    };
    thread_local std::array<Remembered, 128> remembered;
    const std::uint64_t serial = dictionary_.serial();
    if (serial == 0) return find_suggestion(item.name());
    Remembered& place = remembered[(item.name_hash() >> 7) % remembered.size()];
    if (place.serial == serial && place.name == item.name()) return place.text;
    std::string text = find_suggestion(item.name());
    place.serial = serial;
    place.name = item.name();
    place.text = text;
    return text;
}

std::string CifBlockValidator::find_suggestion(const std::string& name) const {
    // Short names are near too many others: one edit for them, two for the rest.
    const std::size_t letters = name.size() > 0 ? name.size() - 1 : 0;
    const int edits = letters >= 8 ? 2 : letters >= 4 ? 1 : 0;
    // Validation replies (_vrf_...) are meant to be undefined.
    if (edits == 0) return {};
    for (std::size_t at = name.find('_'); at != std::string::npos && at + 4 <= name.size();
         at = name.find('_', at + 1)) {
        if (cif_lower(name[at + 1]) == 'v' && cif_lower(name[at + 2]) == 'r' &&
            cif_lower(name[at + 3]) == 'f')
            return {};
    }
    const std::vector<CifDictionary::SimilarName> similar = dictionary_.similar_names(name, edits);
    if (similar.empty()) return {};
    // The nearest names only, at most three of them.
    std::vector<std::string> names;
    for (const CifDictionary::SimilarName& candidate : similar) {
        if (candidate.edits != similar.front().edits || names.size() == 3) break;
        names.push_back(candidate.name);
    }
    std::string text = "; did you mean ";
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) text += i + 1 == names.size() ? " or " : ", ";
        text += names[i];
    }
    return text + "?";
}

// Inline in both callers: it runs for every defined item.
[[gnu::always_inline]] inline void CifBlockValidator::check_replaced(const CifDataItem& item,
                                                                     const CifItemDefinition& definition) {
    // Most definitions replace nothing: told before anything is made.
    if (std::any_of(definition.related.begin(), definition.related.end(),
                    [](const CifItemDefinition::Related& related) { return is_replacement(related); }))
        report_replaced(item, definition);
}

void CifBlockValidator::validate_single(const CifDataItem& item) {
    const CifItemDefinition* definition = dictionary_.definition_hashed(item.name(), item.name_hash());
    if (definition == nullptr) {
        if (dictionary_.defines_by_definitions() || !dictionary_.is_defined(item.name())) {
            if (names_) add(CifError::undefined_data_name, item.line(), item, suggestion(item));
            return;
        }
    } else {
        if (names_) check_replaced(item, *definition);
        if (values_) {
            // Only an item that must be looped breaks the loop rule here.
            if (definition->list == CifItemDefinition::List::yes)
                if (CifValueCheck::Result result = CifValueCheck::check_list(*definition, false))
                    reporter_.report(result, item.line(), item.name());
            if (!definition->list_link_parent.empty()) linked_.push_back({&item, definition, item.size()});
        }
    }
    if (values_) reporter_.check_all(item, definition);
}

void CifBlockValidator::report_replaced(const CifDataItem& item, const CifItemDefinition& definition) {
    // Both lists are put together as they are found, without a list of names.
    std::string replacements, present;
    bool replaced = false;
    const bool aliases = dictionary_.has_aliases();
    auto append = [](std::string& list, const std::string& name) {
        if (!list.empty()) list += ", ";
        list += name;
    };
    for (const CifItemDefinition::Related& related : definition.related) {
        if (!is_replacement(related)) continue;
        replaced = true;
        append(replacements, related.name);
        // The replacement may stand in the block under another of its names.
        if (!block_->find(related.name).is_null()) {
            append(present, related.name);
            continue;
        }
        if (!aliases) continue;
        const CifItemDefinition* replacement = dictionary_.definition(related.name);
        if (replacement == nullptr) continue;
        for (const std::string& alias : replacement->aliases) {
            if (block_->find(alias).is_null()) continue;
            append(present, alias);
            break;
        }
    }
    if (!replaced) return;
    add(CifError::obsolete_data_name, item.line(), item, std::move(replacements));
    if (!present.empty()) add(CifError::obsolete_beside_replacement, item.line(), item, std::move(present));
}

void CifBlockValidator::add(CifError::ErrorID id, int line, const CifDataItem& item, std::string detail) {
    if (sink_.full()) {
        sink_.add(id, line);  // records that messages were dropped
        return;
    }
    // An item's name is the process's copy unless the process had no room
    // for it (then it never has), which the pool's answer tells.
    const CifKeptName* kept = CifNamePool::find_shared(item.name(), item.name_hash());
    if (kept != nullptr && &kept->text == &item.name())
        sink_.add(id, line, *kept, std::move(detail));
    else
        sink_.add(id, line, item.name(), std::move(detail));
}

void CifBlockValidator::validate_loop(const CifDataBlock::ItemList& loop) {
    // A loop checked while read came with its definitions.
    const std::vector<const CifItemDefinition*>* known = keys_.remembered_definitions(loop);
    std::vector<const CifItemDefinition*> definitions;
    definitions.reserve(loop.size());
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const THandle<CifDataItem>& item = loop[i];
        const CifItemDefinition* definition =
            known != nullptr ? (*known)[i] : dictionary_.definition_hashed(item->name(), item->name_hash());
        definitions.push_back(definition);
        if (definition == nullptr && names_ &&
            (dictionary_.defines_by_definitions() || !dictionary_.is_defined(item->name())))
            add(CifError::undefined_data_name, item->line(), *item, suggestion(*item));
        if (definition != nullptr && names_) check_replaced(*item, *definition);
    }
    if (!values_) return;
    const LoopNotes* notes = nullptr;
    if (notes_ != nullptr) {
        auto found = notes_->find(loop.front().get());
        if (found != notes_->end()) notes = &found->second;
    }
    // Rows a syntax problem damaged give no key or parent findings.
    const std::size_t rows = loop.front()->size();
    const std::size_t sound = notes == nullptr ? rows : std::min(rows, notes->first_damaged_row);
    for (std::size_t i = 0; i < loop.size(); ++i) {
        if (definitions[i] == nullptr) continue;
        // Only an item that must not be looped breaks the loop rule here.
        if (definitions[i]->list == CifItemDefinition::List::no)
            if (CifValueCheck::Result result = CifValueCheck::check_list(*definitions[i], true))
                reporter_.report(result, loop[i]->line(), loop[i]->name());
        if (!definitions[i]->list_link_parent.empty())
            linked_.push_back({loop[i].get(), definitions[i], std::min(sound, loop[i]->size())});
    }
    static const std::vector<std::string> none;
    check_loop_keys(loop, definitions, notes == nullptr ? none : notes->dropped_names);
    static const std::vector<CifKeyOrder> unsorted;
    keys_.check(loop, definitions, sound, reporter_, notes == nullptr ? unsorted : notes->sorted_keys);
    if (checked_ != nullptr && checked_->count(loop.front().get()) != 0) return;
    const std::string& text = loop.front()->store()->text();
    CifLoopChecker checker(reporter_, text.data(), text.size());
    for (std::size_t i = 0; i < loop.size(); ++i) {
        if (loop[i]->size() == rows) {
            checker.add(*loop[i], definitions[i]);
        } else if (definitions[i] != nullptr || dictionary_.is_defined(loop[i]->name())) {
            reporter_.check_all(*loop[i], definitions[i]);  // not a loop the reader built
        }
    }
    checker.check_rows(0, rows);
}

void CifBlockValidator::check_loop_keys(const CifDataBlock::ItemList& loop,
                                        const std::vector<const CifItemDefinition*>& definitions,
                                        const std::vector<std::string>& dropped) {
    auto has = [&](const std::string& reference) {
        if (loop_has(loop, reference) ||
            std::any_of(dropped.begin(), dropped.end(),
                        [&](const std::string& name) { return satisfies(name, reference); }))
            return true;
        // A column may give the item under another of its names.
        const CifItemDefinition* wanted = dictionary_.definition(reference);
        return wanted != nullptr &&
               std::find(definitions.begin(), definitions.end(), wanted) != definitions.end();
    };
    // One category per loop, and within it one key: columns that refer to
    // different keys (_atom_site_label, _atom_site_aniso_label) are rows of
    // different lists even where the dictionary files them under one category.
    std::size_t first = loop.size();
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const CifItemDefinition* definition = definitions[i];
        if (definition == nullptr || definition->category.empty()) continue;
        if (first == loop.size()) {
            first = i;
            continue;
        }
        const CifItemDefinition* head = definitions[first];
        bool mixed =
            definition->category != head->category && loop_category(*definition) != loop_category(*head);
        if (!mixed && !definition->list_reference.empty()) {
            for (std::size_t j = first; j < i && !mixed; ++j) {
                const CifItemDefinition* other = definitions[j];
                mixed = other != nullptr && !other->list_reference.empty() &&
                        other->list_reference != definition->list_reference;
            }
        }
        if (mixed) {
            sink_.add(CifError::loop_mixes_categories, loop[i]->line(),
                      loop[first]->name() + ", " + loop[i]->name());
            break;
        }
    }

    std::unordered_set<std::string> reported;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const CifItemDefinition* definition = definitions[i];
        if (definition == nullptr) continue;
        for (const std::string& reference : definition->list_reference) {
            if (has(reference) || !reported.insert(cif_lowercase(reference)).second) continue;
            std::string key = reference;
            if (!reference.empty() && reference.back() == '_') {
                std::vector<std::string> family;
                for (const std::string& name : dictionary_.category_items(definition->category)) {
                    if (cif_istarts_with(name, reference)) family.push_back(name);
                }
                if (!family.empty()) key = joined(family);
            }
            sink_.add(CifError::loop_key_missing, loop[i]->line(), loop[i]->name(), key);
        }
    }
    // A category that names its key (DDLm, DDL2): a loop of it without one
    // of the key's items that must be given is remarked on (many files
    // leave out _publ_author.id, say); keys with a default or a way to
    // compute them may be left out.
    std::vector<const std::string*> keyed;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const CifItemDefinition* definition = definitions[i];
        if (definition == nullptr || definition->category_keys.empty() ||
            std::find_if(keyed.begin(), keyed.end(), [&](const std::string* category) {
                return *category == definition->category;
            }) != keyed.end())
            continue;
        keyed.push_back(&definition->category);
        for (const std::string& key : definition->category_keys) {
            const CifItemDefinition* wanted = dictionary_.definition(key);
            if (wanted != nullptr && !wanted->list_mandatory) continue;  // a program may supply it
            bool given = has(key);
            for (std::size_t j = 0; j < loop.size() && !given && wanted != nullptr; ++j)
                given = definitions[j] == wanted;
            if (given || !reported.insert(cif_lowercase(key)).second) continue;
            sink_.add(CifError(CifError::loop_key_missing, CifError::remark, loop[i]->line(), loop[i]->name(),
                               key));
        }
    }
    // Columns that neither refer to a key nor link to a parent are keyed by
    // the mandatory items of their category.
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const CifItemDefinition* definition = definitions[i];
        if (definition == nullptr || !definition->list_reference.empty() ||
            !definition->list_link_parent.empty() || definition->category.empty())
            continue;
        for (const std::string& mandatory : mandatory_items(definition->category)) {
            if (has(mandatory)) continue;
            bool covered = std::any_of(reported.begin(), reported.end(), [&](const std::string& reference) {
                return satisfies(mandatory, reference);
            });
            if (covered || !reported.insert(cif_lowercase(mandatory)).second) continue;
            sink_.add(CifError::loop_key_missing, loop[i]->line(), loop[i]->name(), mandatory);
        }
    }
}

std::size_t CifBlockValidator::sound_rows(const CifDataItem& item) const {
    if (notes_ == nullptr || !item.is_looped()) return item.size();
    for (const CifDataBlock::ItemList& loop : block_->loops()) {
        if (std::none_of(loop.begin(), loop.end(),
                         [&](const THandle<CifDataItem>& column) { return column.get() == &item; }))
            continue;
        auto found = notes_->find(loop.front().get());
        return found == notes_->end() ? item.size() : std::min(item.size(), found->second.first_damaged_row);
    }
    return item.size();
}

const std::vector<std::string>& CifBlockValidator::mandatory_items(const std::string& category) {
    return keys_.facts(category).mandatory;
}
