// SPDX-License-Identifier: MIT
// The start of every line of a text, so that a value's line is found from its offset.
#include "cif/CifLineIndex.hpp"

#include <algorithm>
#include <cstring>

int CifLineIndex::line_at(std::uint32_t offset) const {
    if (!built_) {
        starts_.push_back(0);
        const char* begin = text_.data();
        const char* end = begin + text_.size();
        for (const char* p = begin; p < end;) {
            const void* found = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
            if (found == nullptr) break;
            p = static_cast<const char*>(found) + 1;
            starts_.push_back(static_cast<std::uint32_t>(p - begin));
        }
        built_ = true;
    }
    auto after = std::upper_bound(starts_.begin(), starts_.end(), offset);
    return static_cast<int>(after - starts_.begin());
}
