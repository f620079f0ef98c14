// SPDX-License-Identifier: MIT
// Space groups over the table of International Tables settings, by symbol and by operators.
#include "cif/Spacegroup.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gemmi/symmetry.hpp>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

#include "cif/SpacegroupCache.hpp"
#include "cif/SpacegroupOperators.hpp"

namespace {

const char* const unknown_symbol = "Unknown";

const char* const system_names[] = {"?",          "triclinic",    "monoclinic", "orthorhombic",
                                    "tetragonal", "rhombohedral", "trigonal",   "hexagonal",
                                    "cubic"};

std::string trimmed(const std::string& text) {
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return std::string();
    std::size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

// Symbols as older files write them: full symbols of the orthorhombic and
// higher groups ("P 21/b 21/c 21/a", "I 4/m 2/m 2/m") give their short
// form by dropping the 2/ and 21/ parts.
std::string short_form(const std::string& text) {
    std::string result;
    int dropped = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool part_start = i == 0 || text[i - 1] == ' ';
        if (part_start && text.compare(i, 2, "2/") == 0 && i + 2 < text.size()) {
            i += 1;
            ++dropped;
            continue;
        }
        if (part_start && text.compare(i, 3, "21/") == 0 && i + 3 < text.size()) {
            i += 2;
            ++dropped;
            continue;
        }
        result += text[i];
    }
    return dropped >= 2 ? result : std::string();
}

// Cubic symbols written before the bar of -3 was required ("F d 3 m",
// "I m 3", "P a 3"): the 3 after a lattice or glide part becomes -3.
std::string barred_three(const std::string& text) {
    std::string compact;
    for (char c : text) {
        if (c != ' ') compact += c;
    }
    std::size_t three = compact.find('3');
    if (three == std::string::npos || three < 2 || compact[three - 1] == '-' ||
        (three + 1 < compact.size() && compact[three + 1] == '1') ||
        (three + 1 < compact.size() && compact[three + 1] == '2'))
        return std::string();
    return compact.substr(0, three) + "-" + compact.substr(three);
}

const gemmi::SpaceGroup* find_name(const std::string& text) {
    if (const gemmi::SpaceGroup* found = gemmi::find_spacegroup_by_name(text)) return found;
    std::string reduced = short_form(text);
    if (!reduced.empty()) {
        if (const gemmi::SpaceGroup* found = gemmi::find_spacegroup_by_name(reduced)) return found;
    }
    std::string barred = barred_three(reduced.empty() ? text : reduced);
    if (!barred.empty()) {
        const gemmi::SpaceGroup* found = gemmi::find_spacegroup_by_name(barred);
        if (found != nullptr && found->number >= 195) return found;
    }
    return nullptr;
}

const gemmi::SpaceGroup* find(const std::string& symbol) {
    std::string text = trimmed(symbol);
    if (text.empty()) return nullptr;
    // gemmi reads a bare number as a CCP4 number; only 1-230 are wanted here.
    if (text.find_first_not_of("0123456789") == std::string::npos) {
        if (text.size() > 3) return nullptr;
        int number = std::stoi(text);
        if (number < 1 || number > 230) return nullptr;
        return &gemmi::get_spacegroup_reference_setting(number);
    }
    if (const gemmi::SpaceGroup* found = gemmi::find_spacegroup_by_name(text)) return found;
    // Subscripts written as 6(3), or with the CIF markup 6~3~, read as 63.
    std::string plain;
    for (char c : text) {
        if (c != '(' && c != ')' && c != '~' && c != '^') plain += c;
    }
    return find_name(plain);
}

// Operators' numbers as one text, kept for the process: a byte each while
// all fit in one (rotations are multiples of 24 from -24 to 24, wrapped
// translations 0 to 23), four bytes each otherwise; the first byte tells
// which. Equal texts, equal operators.
std::string packed(const std::vector<gemmi::Op>& ops) {
    bool small = true;
    for (const gemmi::Op& op : ops) {
        for (const auto& row : op.rot)
            for (int value : row) small = small && value >= -128 && value <= 127;
        for (int value : op.tran) small = small && value >= -128 && value <= 127;
    }
    // Written in place: a list of 192 operations has 2,304 numbers.
    const std::size_t width = small ? 1 : sizeof(int);
    std::string text(1 + ops.size() * 12 * width, '\0');
    text[0] = small ? 's' : 'w';
    char* at = text.data() + 1;
    auto put = [&at, small](int value) {
        if (small) {
            *at++ = static_cast<char>(static_cast<signed char>(value));
        } else {
            std::memcpy(at, &value, sizeof value);
            at += sizeof value;
        }
    };
    for (const gemmi::Op& op : ops) {
        for (const auto& row : op.rot)
            for (int value : row) put(value);
        for (int value : op.tran) put(value);
    }
    return text;
}

// A tabulated setting's operations, counted, and sorted and packed as a
// comparison of groups needs them, made once per process (thread-safe;
// never dropped). Only a fingerprint of the packed text is kept (a few
// hundred settings' texts would add half a megabyte to a run's peak): a
// setting whose fingerprint matches has its text made again to be sure.
struct SettingOps {
    std::size_t sym = 0, cen = 0;
    std::uint64_t fingerprint = 0;  // of packed()
};

std::uint64_t fingerprint_of(std::string_view text) { return std::hash<std::string_view>()(text); }

// A setting's counts and fingerprint; made (once per process) when fresh is
// given, which then holds the packed operations made for them.
const SettingOps& setting_ops(const gemmi::SpaceGroup& setting, std::string* fresh) {
    static std::mutex mutex;
    static std::unordered_map<const gemmi::SpaceGroup*, std::unique_ptr<SettingOps>> kept;
    std::lock_guard<std::mutex> lock(mutex);
    std::unique_ptr<SettingOps>& slot = kept[&setting];
    if (!slot) {
        const gemmi::GroupOps ops = setting.operations();
        *fresh = packed(ops.all_ops_sorted());
        slot = std::make_unique<SettingOps>(
            SettingOps{ops.sym_ops.size(), ops.cen_ops.size(), fingerprint_of(*fresh)});
    }
    return *slot;
}

// Whether the setting's operations, sorted and packed, are the text. The
// text of a setting met for the first time is compared as just made.
bool setting_is(const gemmi::SpaceGroup& setting, std::size_t sym, std::size_t cen, const std::string& sorted,
                std::uint64_t fingerprint) {
    std::string fresh;
    const SettingOps& tabulated = setting_ops(setting, &fresh);
    if (tabulated.sym != sym || tabulated.cen != cen || tabulated.fingerprint != fingerprint) return false;
    return (fresh.empty() ? packed(setting.operations().all_ops_sorted()) : fresh) == sorted;
}

}  // namespace

// Files of a run mostly name a few groups.
SpacegroupCache::Group Spacegroup::named(const std::string& symbol) {
    return SpacegroupCache::by_name().lookup(symbol, [&symbol]() {
        const gemmi::SpaceGroup* found = find(symbol);
        return found == nullptr ? SpacegroupCache::Group{std::string(), 0, true}
                                : SpacegroupCache::Group{found->xhm(), found->number, true};
    });
}

Spacegroup::Spacegroup(const std::vector<std::string>& operators, int number, const std::string& hint)
    : Spacegroup(SpacegroupOperators::of(std::vector<std::string_view>(operators.begin(), operators.end()))
                     ->group(number),
                 number, hint) {}

Spacegroup::Spacegroup(const SpacegroupCache::Group& group, int number, const std::string& hint)
    : symbol_(group.symbol),
      number_(group.number),
      given_number_(number),
      given_symbol_(hint),
      readable_(group.readable) {}

SpacegroupCache::Group Spacegroup::unreadable() { return SpacegroupCache::Group{unknown_symbol, 0, false}; }

SpacegroupCache::Group Spacegroup::from_operators(const std::vector<std::string>& operators, int number) {
    std::vector<gemmi::Op> ops;
    try {
        for (const std::string& text : operators) {
            std::string triplet = trimmed(text);
            if (triplet.size() >= 2 && (triplet.front() == '\'' || triplet.front() == '"') &&
                triplet.back() == triplet.front())
                triplet = triplet.substr(1, triplet.size() - 2);
            ops.push_back(SpacegroupOperators::read_triplet(triplet));
        }
    } catch (const std::exception&) {
        return unreadable();
    }
    return from_operations(std::move(ops), number);
}

SpacegroupCache::Group Spacegroup::from_operations(std::vector<gemmi::Op> ops, int number) {
    SpacegroupCache::Group unknown{unknown_symbol, 0, true};
    if (ops.empty()) return unknown;
    // The same operators in any order or written form give the same key
    // (translations are wrapped into [0, 1) above).
    std::sort(ops.begin(), ops.end());
    const std::string key = packed(ops);
    return SpacegroupCache::by_operators().lookup(key, [&ops, &unknown, number]() {
        SpacegroupCache::Group result = unknown;
        gemmi::GroupOps group_ops = gemmi::split_centering_vectors(ops);
        if (group_ops.cen_ops.empty()) group_ops.cen_ops.push_back({0, 0, 0});
        // The settings of the number given are tried first: operators that
        // form a setting form it under its own number, and the first such
        // setting in table order is the one the whole search would find.
        // (As GroupOps::is_same_as compares them, the settings' side kept.)
        const gemmi::SpaceGroup* found = nullptr;
        char centring = group_ops.find_centering();
        const std::string sorted = packed(group_ops.all_ops_sorted());
        const std::uint64_t fingerprint = fingerprint_of(sorted);
        const std::size_t sym = group_ops.sym_ops.size(), cen = group_ops.cen_ops.size();
        const int order = static_cast<int>(group_ops.sym_ops.size());
        for (const gemmi::SpaceGroup& setting : gemmi::spacegroup_tables::main) {
            if (number < 1 || number > 230) break;
            if (setting.number != number || (centring != setting.hall[0] && centring != setting.hall[1]) ||
                point_group_order(setting.number) != order)
                continue;
            if (setting_is(setting, sym, cen, sorted, fingerprint)) {
                found = &setting;
                break;
            }
        }
        // Then every setting in table order, as the library's search by
        // operations goes, each setting's operations made once per process.
        for (const gemmi::SpaceGroup& setting : gemmi::spacegroup_tables::main) {
            if (found != nullptr) break;
            // Settings of another order are passed over without making their operations.
            if ((centring != setting.hall[0] && centring != setting.hall[1]) ||
                point_group_order(setting.number) != order)
                continue;
            if (setting_is(setting, sym, cen, sorted, fingerprint)) found = &setting;
        }
        if (found != nullptr) {
            result.symbol = found->xhm();
            result.number = found->number;
        }
        return result;
    });
}

int Spacegroup::nsettings(int number) {
    if (number < 1 || number > 230) return 0;
    int count = 0;
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) count += group.number == number;
    return count;
}

std::string Spacegroup::orma_symbol(int number, int setting) {
    if (number < 1 || number > 230 || setting < 1) return std::string();
    int seen = 0;
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) {
        if (group.number == number && ++seen == setting) return group.xhm();
    }
    return std::string();
}

std::string Spacegroup::derive_orma_symbol(const std::string& symbol) {
    SpacegroupCache::Group found = named(symbol);
    return found.number == 0 ? std::string(unknown_symbol) : found.symbol;
}

std::string Spacegroup::name_space_separated(const std::string& symbol) {
    SpacegroupCache::Group found = named(symbol);
    return found.number == 0 ? trimmed(symbol) : found.symbol;
}

int Spacegroup::number_of(const std::string& symbol) { return named(symbol).number; }

int Spacegroup::crystal_system(int number) {
    if (number < 1 || number > 230) return unknown_system;
    if (number <= 2) return triclinic;
    if (number <= 15) return monoclinic;
    if (number <= 74) return orthorhombic;
    if (number <= 142) return tetragonal;
    if (number <= 167) {
        switch (number) {
            case 146:
            case 148:
            case 155:
            case 160:
            case 161:
            case 166:
            case 167:
                return rhombohedral;
            default:
                return trigonal;
        }
    }
    if (number <= 194) return hexagonal;
    return cubic;
}

int Spacegroup::point_group_order(int number) {
    // The last number of each crystal class and its order.
    static constexpr int classes[][2] = {
        {1, 1},    {2, 2},    {5, 2},    {9, 2},    {15, 4},   {24, 4},   {46, 4},   {74, 8},
        {80, 4},   {82, 4},   {88, 8},   {98, 8},   {110, 8},  {122, 8},  {142, 16}, {146, 3},
        {148, 6},  {155, 6},  {161, 6},  {167, 12}, {173, 6},  {174, 6},  {176, 12}, {182, 12},
        {186, 12}, {190, 12}, {194, 24}, {199, 12}, {206, 24}, {214, 24}, {220, 24}, {230, 48},
    };
    if (number < 1 || number > 230) return 0;
    for (const auto& [last, order] : classes)
        if (number <= last) return order;
    return 0;
}

const char* Spacegroup::crystal_system_name(int index) {
    if (index < 0 || index > cubic) return system_names[0];
    return system_names[index];
}
