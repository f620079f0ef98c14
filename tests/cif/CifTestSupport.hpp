// SPDX-License-Identifier: MIT
// Helpers of the CIF library's tests: text read into a document, its messages, a dictionary.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifNames.hpp"

namespace cif_test {

// Reads text into a fresh document.
inline THandle<Cif> read(const std::string& text, CifParserSettings settings = CifParserSettings(),
                         THandle<CifDictionary> dictionary = THandle<CifDictionary>()) {
    THandle<Cif> cif(new Cif(dictionary));
    cif->read_text(text, settings);
    return cif;
}

// The (code, line) of every message, in order.
inline std::vector<std::pair<int, int>> messages(const Cif& cif) {
    std::vector<std::pair<int, int>> result;
    for (const CifError& error : *cif.errors()) result.emplace_back(error.id(), error.line());
    return result;
}

using Messages = std::vector<std::pair<int, int>>;

// A dictionary that defines a fixed list of names and rejects values that
// are not numbers for names ending in "_number".
class ListDictionary : public CifDictionary {
public:
    explicit ListDictionary(std::vector<std::string> names) : names_(std::move(names)) {}
    bool is_defined(const std::string& data_name) const override {
        for (const std::string& name : names_) {
            if (cif_iequals(name, data_name)) return true;
        }
        return false;
    }
    int check_value(const std::string& data_name, const std::string& value, bool) const override {
        if (data_name.size() < 7 || data_name.compare(data_name.size() - 7, 7, "_number") != 0) return 0;
        if (value.empty() || value.find_first_not_of("0123456789.-") != std::string::npos) return 324;
        return 0;
    }

private:
    std::vector<std::string> names_;
};

}  // namespace cif_test

namespace cif_test {

// Whether two documents hold the same blocks, items, loops and values
// (an item without values counts as one "?", as the printer writes it).
inline ::testing::AssertionResult same_document(const Cif& a, const Cif& b) {
    if (a.blocks().size() != b.blocks().size()) return ::testing::AssertionFailure() << "block count differs";
    for (std::size_t i = 0; i < a.blocks().size(); ++i) {
        const CifDataBlock& x = *a.blocks()[i];
        const CifDataBlock& y = *b.blocks()[i];
        if (x.name() != y.name()) return ::testing::AssertionFailure() << "block name " << x.name();
        if (x.item_count() != y.item_count())
            return ::testing::AssertionFailure() << "item count in " << x.name();
        for (auto it = x.begin_write_order(); it != x.end_write_order(); ++it) {
            const CifDataItem& item = **it;
            THandle<CifDataItem> other = y.find(item.name());
            if (other.is_null()) return ::testing::AssertionFailure() << "missing " << item.name();
            if (item.is_looped() != other->is_looped())
                return ::testing::AssertionFailure() << "looped " << item.name();
            if (!item.has_value()) {
                if (other->size() != 1 || other->value() != "?")
                    return ::testing::AssertionFailure() << item.name();
                continue;
            }
            if (item.size() != other->size())
                return ::testing::AssertionFailure() << "size of " << item.name();
            for (std::size_t n = 0; n < item.size(); ++n) {
                if (item.value_view(n) != other->value_view(n)) {
                    return ::testing::AssertionFailure()
                           << item.name() << "[" << n << "]: '" << item.value_view(n) << "' became '"
                           << other->value_view(n) << "'";
                }
            }
        }
    }
    return ::testing::AssertionSuccess();
}

}  // namespace cif_test
