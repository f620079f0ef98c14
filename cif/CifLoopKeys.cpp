// SPDX-License-Identifier: MIT
// The keys of loops as a dictionary names them, and key values that repeat.
#include "cif/CifLoopKeys.hpp"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_set>

#include "cif/CifNames.hpp"
#include "cif/CifValueCheck.hpp"

namespace {

using Key = std::vector<std::size_t>;

bool is_family(std::string_view reference) { return !reference.empty() && reference.back() == '_'; }

// The column index of a name in the loop, or the loop's size.
std::size_t column_of(const CifDataBlock::ItemList& loop, std::string_view name) {
    for (std::size_t i = 0; i < loop.size(); ++i) {
        if (cif_iequals(loop[i]->name(), name)) return i;
    }
    return loop.size();
}

bool ends_with(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && cif_iequals(text.substr(text.size() - suffix.size()), suffix);
}

bool contains(const Key& outer, const Key& inner) {
    return std::includes(outer.begin(), outer.end(), inner.begin(), inner.end());
}

std::string joined(const std::vector<std::string>& parts) {
    std::string result;
    for (const std::string& part : parts) result += (result.empty() ? "" : ", ") + part;
    return result;
}

}  // namespace

const std::vector<std::string>& CifLoopKeys::targets(const std::string& category) {
    auto found = targets_.find(category);
    if (found != targets_.end()) return found->second;
    std::vector<std::string> result;
    for (const std::string& name : dictionary_.category_items(category)) {
        const CifItemDefinition* definition = dictionary_.definition(name);
        if (definition == nullptr) continue;
        for (const std::string& reference : definition->list_reference) {
            bool known = std::any_of(result.begin(), result.end(),
                                     [&](const std::string& other) { return cif_iequals(other, reference); });
            if (!known) result.push_back(reference);
        }
    }
    return targets_.emplace(category, std::move(result)).first->second;
}

std::vector<Key> CifLoopKeys::keys(const CifDataBlock::ItemList& loop,
                                   const std::vector<const CifItemDefinition*>& definitions) {
    std::vector<std::string> categories;
    for (const CifItemDefinition* definition : definitions) {
        if (definition == nullptr || definition->category.empty()) continue;
        if (std::find(categories.begin(), categories.end(), definition->category) == categories.end())
            categories.push_back(definition->category);
    }
    std::vector<Key> result;
    auto add = [&result](Key key) {
        std::sort(key.begin(), key.end());
        if (!key.empty() && std::find(result.begin(), result.end(), key) == result.end())
            result.push_back(std::move(key));
    };
    for (const std::string& category : categories) {
        for (const std::string& target : targets(category)) {
            Key key;
            if (!is_family(target)) {
                std::size_t column = column_of(loop, target);
                if (column < loop.size()) key.push_back(column);
                add(std::move(key));
                continue;
            }
            // A family is a key only with all of its members.
            bool complete = true;
            for (const std::string& member : dictionary_.category_items(category)) {
                if (!cif_istarts_with(member, target)) continue;
                std::size_t column = column_of(loop, member);
                complete = complete && column < loop.size();
                key.push_back(column);
            }
            if (!complete || key.empty()) continue;
            if (ends_with(target, "atom_site_label_")) {
                const std::string symmetry = "_" + category + "_site_symmetry_";
                for (std::size_t i = 0; i < loop.size(); ++i) {
                    if (cif_istarts_with(loop[i]->name(), symmetry)) key.push_back(i);
                }
            }
            add(std::move(key));
        }
        auto found = mandatory_.find(category);
        if (found == mandatory_.end())
            found = mandatory_.emplace(category, dictionary_.mandatory_items(category)).first;
        Key mandatory;
        for (const std::string& name : found->second) mandatory.push_back(column_of(loop, name));
        std::sort(mandatory.begin(), mandatory.end());
        if (mandatory.empty() || mandatory.back() >= loop.size()) continue;
        bool covered = std::any_of(result.begin(), result.end(), [&](const Key& key) {
            return contains(key, mandatory) || contains(mandatory, key);
        });
        if (!covered) add(std::move(mandatory));
    }
    return result;
}

void CifLoopKeys::check(const CifDataBlock::ItemList& loop,
                        const std::vector<const CifItemDefinition*>& definitions, std::size_t rows,
                        CifValueReporter& reporter) {
    for (const Key& key : keys(loop, definitions)) {
        bool whole =
            std::all_of(key.begin(), key.end(), [&](std::size_t i) { return loop[i]->size() >= rows; });
        if (whole) check_key(loop, key, rows, reporter);
    }
}

void CifLoopKeys::check_key(const CifDataBlock::ItemList& loop, const Key& key, std::size_t rows,
                            CifValueReporter& reporter) const {
    // A site-symmetry code "." means the identity, a value like any other;
    // elsewhere an unknown or inapplicable value identifies nothing.
    std::vector<bool> symmetry(key.size());
    for (std::size_t k = 0; k < key.size(); ++k)
        symmetry[k] = loop[key[k]]->name().find("_site_symmetry_") != std::string::npos;
    auto skipped = [&](std::size_t row) {
        for (std::size_t k = 0; k < key.size(); ++k) {
            const CifDataItem& item = *loop[key[k]];
            std::string_view value = item.value_view(row);
            if (CifValueCheck::is_null_value(value, item.is_quoted(row)) && !(symmetry[k] && value == "."))
                return true;
        }
        return false;
    };
    auto same = [&](std::size_t a, std::size_t b) {
        return std::all_of(key.begin(), key.end(),
                           [&](std::size_t i) { return loop[i]->value_view(a) == loop[i]->value_view(b); });
    };
    // Rows by a hash of their key values; equal hashes are compared in full.
    std::unordered_map<std::uint64_t, std::uint32_t> first_row;
    std::vector<std::uint32_t> collided;         // rows whose hash another combination holds
    std::unordered_set<std::uint32_t> reported;  // first rows of the combinations reported
    first_row.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        if (skipped(row)) continue;
        std::uint64_t hash = 1469598103934665603ull;
        for (std::size_t i : key)
            hash = (hash ^ std::hash<std::string_view>()(loop[i]->value_view(row))) * 1099511628211ull;
        auto [found, inserted] = first_row.emplace(hash, static_cast<std::uint32_t>(row));
        if (inserted) continue;
        std::uint32_t earlier = found->second;
        if (!same(earlier, row)) {
            auto match =
                std::find_if(collided.begin(), collided.end(), [&](std::uint32_t r) { return same(r, row); });
            if (match == collided.end()) {
                collided.push_back(static_cast<std::uint32_t>(row));
                continue;
            }
            earlier = *match;
        }
        if (!reported.insert(earlier).second) continue;
        if (reporter.sink().full()) return;
        const CifDataItem& lead = *loop[key.front()];
        const int line = reporter.value_line(lead, row);
        if (key.size() == 1) {
            reporter.sink().add(CifError::duplicate_key_value, line, lead.name(),
                                std::string(lead.value_view(row)));
            continue;
        }
        std::vector<std::string> names, values;
        for (std::size_t i : key) {
            names.push_back(loop[i]->name());
            values.emplace_back(loop[i]->value_view(row));
        }
        reporter.sink().add(CifError::composite_key_not_unique, line, joined(names), joined(values));
    }
}
