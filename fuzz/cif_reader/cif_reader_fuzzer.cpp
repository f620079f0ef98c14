// SPDX-License-Identifier: MIT
// Fuzz target of the CIF reader: arbitrary bytes read as CIF and printed.
// When the text had no errors, the printed text is read back and must give the same blocks,
// items and values.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "cif/Cif.hpp"

namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "round trip failed: %s\n", what);
        std::abort();
    }
}

void compare(const CifDataBlock& a, const CifDataBlock& b) {
    require(a.name() == b.name(), "block name");
    require(a.item_count() == b.item_count(), "item count");
    for (auto it = a.begin_write_order(); it != a.end_write_order(); ++it) {
        const CifDataItem& item = **it;
        THandle<CifDataItem> other = b.find(item.name());
        require(!other.is_null(), "item present");
        require(item.is_looped() == other->is_looped(), "looped");
        std::size_t size = item.has_value() ? item.size() : 1;  // an item without value prints as ?
        require(size == other->size(), "value count");
        for (std::size_t n = 0; n < item.size(); ++n)
            require(item.value_view(n) == other->value_view(n), "value");
    }
    require(a.save_frames().size() == b.save_frames().size(), "save frames");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    CifParserSettings settings;
    settings.max_nesting = 16;
    settings.max_messages = 200;
    settings.allow_save_frames = size > 0 && (data[0] & 1) != 0;
    Cif cif;
    cif.read_text(text, settings);

    CifWriteSettings write;
    write.cif_version = cif.version();
    write.line_length = size > 1 ? 20 + data[1] % 100 : 80;
    std::ostringstream printed;
    cif.print(printed, write);
    if (cif.errors()->errors_of_type(CifError::error) > 0) return 0;

    Cif again;
    again.read_text(printed.str(), settings);
    require(again.errors()->errors_of_type(CifError::error) == 0, "printed text reads without errors");
    require(again.blocks().size() == cif.blocks().size(), "block count");
    for (std::size_t i = 0; i < cif.blocks().size(); ++i) compare(*cif.block(i), *again.block(i));
    return 0;
}
