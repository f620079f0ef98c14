// SPDX-License-Identifier: MIT
// The keys of loops as a dictionary names them, and key values that repeat.
#include "cif/CifLoopKeys.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "cif/CifKeyOrder.hpp"
#include "cif/CifLoopKeysMemo.hpp"
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

// A hash of a value, eight bytes at a time (equal values, equal hashes).
std::uint64_t quick_hash(std::string_view value) {
    std::uint64_t hash = value.size() * 0x9E3779B97F4A7C15ull;
    const char* p = value.data();
    std::size_t left = value.size();
    for (; left >= 8; p += 8, left -= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        hash = (hash ^ word) * 0xFF51AFD7ED558CCDull;
        hash ^= hash >> 32;
    }
    if (left > 0) {
        std::uint64_t word = 0;
        std::memcpy(&word, p, left);
        hash = (hash ^ word) * 0xFF51AFD7ED558CCDull;
    }
    hash ^= hash >> 29;
    hash *= 0xC4CEB9FE1A85EC53ull;
    return hash ^ (hash >> 32);
}

// The hash of a value of up to sixteen bytes, zero beyond its size: the
// value's two words each multiplied, which tells values of one size apart
// (a row's hash and the table below mix the bits further).
std::uint64_t hash_short(std::uint64_t low, std::uint64_t high, std::size_t size) {
    return low * 0xFF51AFD7ED558CCDull + (high + size) * 0xC4CEB9FE1A85EC53ull;
}

// The first bytes of values that need a closer look in a key: an unknown
// or inapplicable value, an integer maybe written otherwise than plainly.
struct ValueLookouts {
    bool look[256] = {};
    constexpr ValueLookouts() {
        for (unsigned char c : {'?', '.', '+', '-', '0'}) look[c] = true;
    }
};
constexpr ValueLookouts value_lookouts{};

#if defined(__SSE2__)
// Sixteen bytes kept from value_masks + 16 - size: the first size of them.
alignas(16) constexpr unsigned char value_masks[32] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                                       0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

// hash_short() of the first size (at most sixteen) of the bytes.
std::uint64_t hash_masked(__m128i bytes, std::size_t size) {
    const __m128i kept =
        _mm_and_si128(bytes, _mm_loadu_si128(reinterpret_cast<const __m128i*>(value_masks + 16 - size)));
    return hash_short(static_cast<std::uint64_t>(_mm_cvtsi128_si64(kept)),
                      static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(kept, kept))), size);
}
#endif

// A hash of a value (equal values, equal hashes), quicker than
// quick_hash() for values of up to sixteen bytes, which are read whole
// where sixteen bytes are readable from them, up to end, and masked.
std::uint64_t short_hash(std::string_view value, const char* end) {
    const std::size_t size = value.size();
    if (size > 16) return quick_hash(value);
#if defined(__SSE2__)
    if (end != nullptr && end - value.data() >= 16)
        return hash_masked(_mm_loadu_si128(reinterpret_cast<const __m128i*>(value.data())), size);
#endif
    (void)end;
    char bytes[16] = {};
    std::memcpy(bytes, value.data(), size);
    std::uint64_t low = 0, high = 0;
    std::memcpy(&low, bytes, 8);
    std::memcpy(&high, bytes + 8, 8);
    return hash_short(low, high, size);
}

// Whether the hashes (none 0) are all different, in a table of the
// caller's of at least twice as many slots, a power of two.
bool all_distinct(const std::uint64_t* hashes, std::size_t count, std::uint64_t* slots, std::size_t size) {
    std::fill(slots, slots + size, 0);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t hash = hashes[i];
        std::size_t at = (hash ^ (hash >> 29)) & (size - 1);
        for (; slots[at] != 0; at = (at + 1) & (size - 1)) {
            if (slots[at] == hash) return false;
        }
        slots[at] = hash;
    }
    return true;
}

// Whether no two rows share a quick hash: a table of at least twice as
// many slots as rows, probed in turn (a hash of 0 counts as 1, which at
// worst sends a loop to the full search). The table is the caller's, kept
// between loops.
bool all_distinct(std::vector<std::uint64_t>& hashes, std::vector<std::uint64_t>& slots) {
    std::size_t size = 16;
    while (size < 2 * hashes.size()) size *= 2;
    slots.resize(size);
    for (std::uint64_t& hash : hashes) hash += hash == 0;
    return all_distinct(hashes.data(), hashes.size(), slots.data(), size);
}

}  // namespace

const CifCategoryFacts& CifLoopKeys::facts(const std::string& category) {
    if (const CifCategoryFacts* kept = dictionary_.category_facts(category)) return *kept;
    auto found = gathered_.find(category);
    if (found == gathered_.end())
        found = gathered_.emplace(category, CifCategoryFacts::of(dictionary_, category)).first;
    return found->second;
}

std::vector<std::size_t> CifLoopKeys::named_key(const CifDataBlock::ItemList& loop,
                                                const std::vector<const CifItemDefinition*>& definitions,
                                                const std::string& category) const {
    // The category's last member in the loop names the key (from the back:
    // a loop's columns are mostly of one category).
    const CifItemDefinition* member = nullptr;
    for (auto at = definitions.rbegin(); at != definitions.rend() && member == nullptr; ++at) {
        if (*at != nullptr && (*at)->category == category) member = *at;
    }
    Key key;
    if (member == nullptr) return key;
    for (const std::string& name : member->category_keys) {
        // A column may give the key under another name of the same item.
        const CifItemDefinition* wanted = dictionary_.definition(name);
        std::size_t column = 0;
        while (column < loop.size() &&
               !(wanted != nullptr ? definitions[column] == wanted : cif_iequals(loop[column]->name(), name)))
            ++column;
        if (column == loop.size()) return Key();  // a key not given is not checked
        key.push_back(column);
    }
    return key;
}

std::vector<Key> CifLoopKeys::keys(const CifDataBlock::ItemList& loop,
                                   const std::vector<const CifItemDefinition*>& definitions) {
    // The loop's categories in order of their first column (no copies: the
    // definitions outlive the call).
    std::vector<const std::string*> categories;
    for (const CifItemDefinition* definition : definitions) {
        if (definition == nullptr || definition->category.empty()) continue;
        if (std::none_of(categories.begin(), categories.end(),
                         [&](const std::string* category) { return *category == definition->category; }))
            categories.push_back(&definition->category);
    }
    std::vector<Key> result;
    auto add = [&result](Key key) {
        std::sort(key.begin(), key.end());
        if (!key.empty() && std::find(result.begin(), result.end(), key) == result.end())
            result.push_back(std::move(key));
    };
    for (const std::string* category_name : categories) {
        const std::string& category = *category_name;
        if (Key key = named_key(loop, definitions, category); !key.empty()) {
            add(std::move(key));
            continue;
        }
        const CifCategoryFacts& category_facts = facts(category);
        for (const std::string& target : category_facts.references) {
            Key key;
            if (!is_family(target)) {
                std::size_t column = column_of(loop, target);
                if (column < loop.size()) key.push_back(column);
                add(std::move(key));
                continue;
            }
            // A family is a key only with all of its members.
            bool complete = true;
            for (const std::string& member : category_facts.items) {
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
        Key mandatory;
        for (const std::string& name : category_facts.mandatory) mandatory.push_back(column_of(loop, name));
        std::sort(mandatory.begin(), mandatory.end());
        if (mandatory.empty() || mandatory.back() >= loop.size()) continue;
        bool covered = std::any_of(result.begin(), result.end(), [&](const Key& key) {
            return contains(key, mandatory) || contains(mandatory, key);
        });
        if (!covered) add(std::move(mandatory));
    }
    return result;
}

const CifLoopKeys::Known* CifLoopKeys::known(const CifDataBlock::ItemList& loop) const {
    for (const Known& entry : known_) {
        if (entry.columns.size() == loop.size() &&
            std::equal(loop.begin(), loop.end(), entry.columns.begin(),
                       [](const THandle<CifDataItem>& a, const THandle<CifDataItem>& b) {
                           return a.get() == b.get();
                       }))
            return &entry;
    }
    return nullptr;
}

const std::vector<Key>& CifLoopKeys::remembered_keys(
    const CifDataBlock::ItemList& loop, const std::vector<const CifItemDefinition*>& definitions) {
    if (const Known* entry = known(loop); entry != nullptr && entry->definitions == definitions)
        return entry->keys;
    // A block of very many loops keeps only its last ones.
    if (known_.size() >= 64) known_.erase(known_.begin());
    // Loops of the same names were met in earlier documents of the thread.
    const std::uint64_t serial = dictionary_.serial();
    CifLoopKeysMemo& memo = CifLoopKeysMemo::of_thread();
    if (const CifLoopKeysMemo::Keys* kept = memo.find(serial, loop, definitions)) {
        known_.push_back({loop, definitions, *kept});
    } else {
        known_.push_back({loop, definitions, keys(loop, definitions)});
        memo.keep(serial, loop, definitions, known_.back().keys);
    }
    return known_.back().keys;
}

const std::vector<const CifItemDefinition*>* CifLoopKeys::remembered_definitions(
    const CifDataBlock::ItemList& loop) const {
    const Known* entry = known(loop);
    return entry == nullptr ? nullptr : &entry->definitions;
}

void CifLoopKeys::check(const CifDataBlock::ItemList& loop,
                        const std::vector<const CifItemDefinition*>& definitions, std::size_t rows,
                        CifValueReporter& reporter, const std::vector<CifKeyOrder>& proven) {
    for (const Key& key : remembered_keys(loop, definitions)) {
        bool whole =
            std::all_of(key.begin(), key.end(), [&](std::size_t i) { return loop[i]->size() >= rows; });
        if (whole) check_key(loop, key, rows, proven, reporter);
    }
}

void CifLoopKeys::check_key(const CifDataBlock::ItemList& loop, const Key& key, std::size_t rows,
                            const std::vector<CifKeyOrder>& proven, CifValueReporter& reporter) const {
    if (rows < 2) return;  // nothing can repeat
    if (distinct_small_loop(loop, key, rows)) return;
    // Values straight from the text where they were read.
    const char* text = loop.front()->store()->text().data();
    auto view = [text](const CifDataItem& item, std::size_t row) {
        const CifValueRef ref = item.values()[row];
        return ref.added() ? item.value_view(row) : std::string_view(text + ref.offset, ref.length());
    };
    // A site-symmetry code "." means the identity, a value like any other;
    // elsewhere an unknown or inapplicable value identifies nothing.
    std::vector<bool> symmetry(key.size());
    for (std::size_t k = 0; k < key.size(); ++k)
        symmetry[k] = loop[key[k]]->name().find("_site_symmetry_") != std::string::npos;
    std::vector<std::string_view> values(key.size());
    auto read_row = [&](std::size_t row) {
        for (std::size_t k = 0; k < key.size(); ++k) {
            const CifDataItem& item = *loop[key[k]];
            values[k] = view(item, row);
            bool null = values[k].size() == 1 && (values[k][0] == '?' || values[k][0] == '.') &&
                        !item.values()[row].quoted();
            if (null && !(symmetry[k] && values[k][0] == '.')) return false;
        }
        return true;
    };

    // Keys proven unique by their order need no more.
    std::vector<const CifDataItem*> columns;
    for (std::size_t i : key) columns.push_back(loop[i].get());
    if (std::any_of(proven.begin(), proven.end(), [&](const CifKeyOrder& order) {
            return order.proven_unique() && order.columns() == columns;
        }))
        return;
    CifKeyOrder order(columns);
    order.add_rows(0, rows, text, text + loop.front()->store()->text().size());
    if (order.proven_unique()) return;

    // Small integers over a small range (reflection indices in any order):
    // the rows' values packed in one pass over the text, then one bit per
    // possible combination.
    constexpr std::size_t field_bits = 21;
    constexpr std::uint64_t skipped = ~std::uint64_t(0);
    if (key.size() * field_bits < 64) {
        std::array<std::int64_t, 3> low{}, high{};  // at most three columns fit
        std::vector<std::uint64_t> packed(rows, skipped);
        bool dense = true, any = false;
        for (std::size_t row = 0; row < rows && dense; ++row) {
            if (!read_row(row)) continue;
            std::uint64_t pack = 0;
            for (std::size_t k = 0; k < key.size() && dense; ++k) {
                std::int64_t number = 0;
                dense = CifKeyOrder::small_integer(values[k], number);
                low[k] = any ? std::min(low[k], number) : number;
                high[k] = any ? std::max(high[k], number) : number;
                pack = (pack << field_bits) | static_cast<std::uint64_t>(number + (std::int64_t(1) << 20));
            }
            packed[row] = pack;
            any = true;
        }
        constexpr std::uint64_t most_bits = std::uint64_t(1) << 27;  // 16 MB of bits
        std::uint64_t size = 1;
        for (std::size_t k = 0; k < key.size() && dense; ++k) {
            size *= static_cast<std::uint64_t>(high[k] - low[k] + 1);
            dense = size <= most_bits;
        }
        if (dense && any) {
            std::vector<std::uint64_t> seen((size + 63) / 64), reported((size + 63) / 64);
            const std::uint64_t mask = (std::uint64_t(1) << field_bits) - 1;
            for (std::size_t row = 0; row < rows; ++row) {
                if (packed[row] == skipped) continue;
                std::uint64_t at = 0;
                for (std::size_t k = 0; k < key.size(); ++k) {
                    const auto number = static_cast<std::int64_t>(
                                            (packed[row] >> ((key.size() - 1 - k) * field_bits)) & mask) -
                                        (std::int64_t(1) << 20);
                    at = at * static_cast<std::uint64_t>(high[k] - low[k] + 1) +
                         static_cast<std::uint64_t>(number - low[k]);
                }
                const std::uint64_t bit = std::uint64_t(1) << (at % 64);
                if ((seen[at / 64] & bit) == 0) {
                    seen[at / 64] |= bit;
                } else if ((reported[at / 64] & bit) == 0) {
                    reported[at / 64] |= bit;
                    if (!report(loop, key, row, reporter)) return;
                }
            }
            return;
        }
    }

    // Otherwise a fingerprint per row, sorted, so that equal ones stand side
    // by side; equal rows among them are repetitions, each combination
    // reported once, on its second row.
    // The usual case first, rows all distinct, by a quicker hash; the order
    // of the reports below follows the fingerprints of std::hash.
    hashes_.clear();
    for (std::size_t row = 0; row < rows; ++row) {
        if (!read_row(row)) continue;
        std::uint64_t hash = 1469598103934665603ull;
        for (std::string_view value : values) hash = (hash ^ quick_hash(value)) * 1099511628211ull;
        hashes_.push_back(hash);
    }
    if (all_distinct(hashes_, slots_)) return;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> fingerprints;
    fingerprints.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        if (!read_row(row)) continue;
        std::uint64_t hash = 1469598103934665603ull;
        for (std::string_view value : values)
            hash = (hash ^ std::hash<std::string_view>()(value)) * 1099511628211ull;
        fingerprints.emplace_back(hash, static_cast<std::uint32_t>(row));
    }
    std::sort(fingerprints.begin(), fingerprints.end());
    auto same = [&](std::size_t a, std::size_t b) {
        return std::all_of(key.begin(), key.end(),
                           [&](std::size_t i) { return view(*loop[i], a) == view(*loop[i], b); });
    };
    std::vector<std::uint32_t> group, others;
    for (std::size_t begin = 0; begin < fingerprints.size();) {
        std::size_t end = begin + 1;
        while (end < fingerprints.size() && fingerprints[end].first == fingerprints[begin].first) ++end;
        group.clear();
        for (std::size_t i = begin; i < end; ++i) group.push_back(fingerprints[i].second);
        begin = end;
        // The rows of a group are in order; each combination in it once.
        while (group.size() > 1) {
            others.clear();
            std::size_t repeated = 0;
            for (std::size_t i = 1; i < group.size(); ++i) {
                if (!same(group.front(), group[i])) {
                    others.push_back(group[i]);
                } else if (repeated == 0) {
                    repeated = group[i];
                }
            }
            if (repeated != 0 && !report(loop, key, repeated, reporter)) return;
            group.swap(others);
        }
    }
}

bool CifLoopKeys::distinct_small_loop(const CifDataBlock::ItemList& loop, const Key& key, std::size_t rows) {
    constexpr std::size_t most_rows = 256, most_columns = 4;
    if (rows > most_rows || key.size() > most_columns) return false;
    const std::string& whole = loop.front()->store()->text();
    const char* const text = whole.data();
    const char* const end = text + whole.size();
    // One hash a row over its key values, column by column. Rows the checks
    // below would take as equal, by their texts or (all values being small
    // integers) by their numbers, hash alike: texts alike by their bytes,
    // and an integer written otherwise than plainly ("+1", "01", "-0") sends
    // the loop to the full check instead.
    std::uint64_t hashes[most_rows];
    bool keyed[most_rows];
    std::fill(hashes, hashes + rows, 1469598103934665603ull);
    std::fill(keyed, keyed + rows, true);
    bool doubtful = false;
    for (std::size_t k = 0; k < key.size() && !doubtful; ++k) {
        const CifDataItem& item = *loop[key[k]];
        const bool symmetry = item.name().find("_site_symmetry_") != std::string::npos;
        // A value whose first byte may make it no key value or an integer
        // written otherwise gets a closer look; rows without a key value
        // are left out, as the full check does.
        auto look = [&](std::size_t row, std::string_view value, bool quoted) {
            const char first = value[0];
            if (value.size() == 1 && (first == '?' || first == '.') && !quoted && !(symmetry && first == '.'))
                keyed[row] = false;
            std::int64_t number = 0;
            if ((first == '+' || (first == '0' && value.size() > 1) ||
                 (first == '-' && value.size() > 1 && value[1] == '0')) &&
                CifKeyOrder::small_integer(value, number))
                doubtful = true;
        };
        auto take = [&](std::size_t row, std::string_view value, bool quoted, std::uint64_t hash) {
            if (!value.empty() && value_lookouts.look[static_cast<unsigned char>(value[0])])
                look(row, value, quoted);
            hashes[row] = (hashes[row] ^ hash) * 1099511628211ull;
        };
        auto any = [&](std::size_t row, std::string_view value, bool quoted, const char* readable_end) {
            take(row, value, quoted, short_hash(value, readable_end));
        };
        item.values().visit(
            0, rows,
            [&](std::size_t row, std::uint32_t offset) {
                // A word kept in two bytes is read once: sixteen bytes hold
                // its end and, masked, what short_hash() hashes.
                const char* at = text + offset;
#if defined(__SSE2__)
                if (end - at >= 16) {
                    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
                    const __m128i stops =
                        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(' ')),
                                                  _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\t'))),
                                     _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')),
                                                  _mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
                    const auto found = static_cast<unsigned>(_mm_movemask_epi8(stops));
                    if (found != 0) {
                        const auto size = static_cast<std::size_t>(std::countr_zero(found));
                        take(row, std::string_view(at, size), false, hash_masked(bytes, size));
                        return;
                    }
                }
#endif
                any(row, std::string_view(at, CifValueColumn::word_length(at)), false, end);
            },
            [&](std::size_t row, CifValueRef ref) {
                if (ref.added()) {
                    any(row, item.value_view(row), ref.quoted(), nullptr);
                    return;
                }
                const std::string_view value(text + ref.offset, ref.length());
#if defined(__SSE2__)
                if (value.size() <= 16 && end - value.data() >= 16) {
                    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(value.data()));
                    take(row, value, ref.quoted(), hash_masked(bytes, value.size()));
                    return;
                }
#endif
                any(row, value, ref.quoted(), end);
            });
    }
    if (doubtful) return false;
    // A few rows are compared pair by pair, without a table to clear.
    if (rows <= 16) {
        std::size_t count = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            if (keyed[row]) hashes[count++] = hashes[row];
        }
        for (std::size_t i = 1; i < count; ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                if (hashes[i] == hashes[j]) return false;
            }
        }
        return true;
    }
    // Else a table of twice as many slots as rows, probed in turn (a hash
    // of 0 counts as 1, which at worst sends a loop to the full check).
    std::uint64_t slots[2 * most_rows];
    std::size_t size = 32;
    while (size < 2 * rows) size *= 2;
    std::fill(slots, slots + size, 0);
    for (std::size_t row = 0; row < rows; ++row) {
        if (!keyed[row]) continue;
        const std::uint64_t hash = hashes[row] + (hashes[row] == 0);
        std::size_t at = (hash ^ (hash >> 29)) & (size - 1);
        for (; slots[at] != 0; at = (at + 1) & (size - 1)) {
            if (slots[at] == hash) return false;
        }
        slots[at] = hash;
    }
    return true;
}

bool CifLoopKeys::report(const CifDataBlock::ItemList& loop, const Key& key, std::size_t row,
                         CifValueReporter& reporter) {
    if (reporter.sink().full()) return false;
    const CifDataItem& lead = *loop[key.front()];
    const int line = reporter.value_line(lead, row);
    if (key.size() == 1) {
        reporter.sink().add(CifError::duplicate_key_value, line, lead.name(),
                            std::string(lead.value_view(row)));
        return true;
    }
    std::vector<std::string> names, values;
    for (std::size_t i : key) {
        names.push_back(loop[i]->name());
        values.emplace_back(loop[i]->value_view(row));
    }
    reporter.sink().add(CifError::composite_key_not_unique, line, joined(names), joined(values));
    return true;
}
