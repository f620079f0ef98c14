// SPDX-License-Identifier: MIT
// The publication and crystal lists of a mandatory-data-items file.
#include "tools/MandatoryItems.hpp"

MandatoryItems MandatoryItems::read(std::istream& stream) {
    constexpr int crystal_bit = 1;
    constexpr int publication_bit = 2;
    MandatoryItems items;
    int mask = 0;
    std::string line;
    while (std::getline(stream, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos) continue;
        std::size_t last = line.find_last_not_of(" \t");
        std::string text = line.substr(first, last - first + 1);
        if (text[0] == '#') continue;
        if (text.rfind("data_", 0) == 0) {
            mask = text == "data_all"           ? crystal_bit | publication_bit
                   : text == "data_publication" ? publication_bit
                   : text == "data_crystal"     ? crystal_bit
                                                : 0;
        } else if (text[0] == '_') {
            std::string name = text.substr(0, text.find_first_of(" \t"));
            if (mask & publication_bit) items.publication.push_back(name);
            if (mask & crystal_bit) items.crystal.push_back(name);
        }
    }
    return items;
}
