// SPDX-License-Identifier: MIT
// Proof in one pass that the integer keys of a sorted loop never repeat.
#include "cif/CifKeyOrder.hpp"

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t field_bits = 21;  // a six-digit integer and its sign

}  // namespace

CifKeyOrder::CifKeyOrder(std::vector<const CifDataItem*> columns)
    : columns_(std::move(columns)), exact_(!columns_.empty() && columns_.size() * field_bits <= 64) {}

void CifKeyOrder::add_rows(std::size_t first, std::size_t last, const char* text, const char* text_end) {
    const std::size_t width = columns_.size();
    // A batch of rows at a time, each column's references side by side; the
    // first batches are small, as most keys that are no integers show it in
    // their first row.
    constexpr std::size_t batch = 1024;
    const std::size_t stride = std::min(last - first, batch);
    // On the stack, left unset, where they fit (most keys are short).
    constexpr std::size_t small_size = 256;
    union Small {
        Small() {}
        CifValueRef refs[small_size];
    } small;
    std::vector<CifValueRef> large(width * stride > small_size ? width * stride : 0);
    CifValueRef* const refs = large.empty() ? small.refs : large.data();
    std::size_t size = 8;
    while (first < last && exact_) {
        const std::size_t stop = std::min(last, first + size);
        size = std::min(2 * size, batch);
        for (std::size_t c = 0; c < width; ++c)
            columns_[c]->values().copy_refs(first, stop - first, refs + c * stride, text_end);
        for (std::size_t row = first; row < stop; ++row) {
            std::uint64_t packed[2] = {0, 0};
            for (std::size_t c = 0; c < width; ++c) {
                const CifValueRef ref = refs[c * stride + (row - first)];
                // A row without a key identifies nothing; "." may be a value
                // (the site-symmetry code of the identity): either way no proof.
                std::int64_t number = 0;
                if (ref.added() ||
                    !small_integer(std::string_view(text + ref.offset, ref.length()), number)) {
                    exact_ = false;
                    return;
                }
                const auto field = static_cast<std::uint64_t>(number + (std::int64_t(1) << (field_bits - 1)));
                packed[0] = (packed[0] << field_bits) | field;
                packed[1] |= field << (c * field_bits);
            }
            for (int order = 0; order < 2; ++order) {
                if (!first_) {
                    rising_[order] = rising_[order] && packed[order] > previous_[order];
                    falling_[order] = falling_[order] && packed[order] < previous_[order];
                }
                previous_[order] = packed[order];
            }
            first_ = false;
            if (!rising_[0] && !falling_[0] && !rising_[1] && !falling_[1]) {
                exact_ = false;
                return;
            }
        }
        first = stop;
    }
}
