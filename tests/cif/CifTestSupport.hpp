#pragma once

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
