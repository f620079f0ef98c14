// SPDX-License-Identifier: MIT
// Numbers and texts of a block as the cross-checks read them, and how they compare and print.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "cif/CifBlockNameFilter.hpp"
#include "cif/CifCheckName.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifError.hpp"
#include "cif/CifNumber.hpp"
#include "cif/CifReadingName.hpp"

// One numeric value of a block, under the first of several names given.
struct CifReading {
    CifReadingName name;
    CifNumber number;
    bool ok = false;

    double value() const { return number.value; }
    double sigma() const { return number.effective_uncertainty(); }
    // The uncertainty as written; 0 for a value given without one.
    double stated_sigma() const { return number.has_uncertainty ? number.uncertainty : 0.0; }
};

// The item of that name, or null. While check_block() checks the block, its
// name index answers instead of the block.
THandle<CifDataItem> cif_check_find(const CifDataBlock& block, const CifCheckName& name);
// The same without a handle of its own (the block keeps the item).
// The same with the block's filter (CifBlockNameFilter::of()) found already:
// a check asking for several names asks for it once.
inline const CifDataItem* cif_check_item(const CifDataBlock& block, const CifBlockNameFilter* names,
                                         const CifCheckName& name) {
    if (names == nullptr || names->asks_block()) return block.find(name.text()).get();
    const THandle<CifDataItem>* item = names->find(name);
    return item == nullptr ? nullptr : item->get();
}
inline const CifDataItem* cif_check_item(const CifDataBlock& block, const CifCheckName& name) {
    return cif_check_item(block, CifBlockNameFilter::of(block), name);
}

// ?, . and nothing.
bool cif_check_unknown(std::string_view value);

// The reading of an item's first value; not ok when it is unknown or no number.
CifReading cif_check_reading(const CifDataItem& item);

// The first of the names the block holds; not ok when it is unknown or no
// number. (Inline: most names asked are missing, and then nothing is read.)
inline CifReading cif_check_read(const CifDataBlock& block, const CifBlockNameFilter* filter,
                                 std::initializer_list<CifCheckName> names) {
    for (const CifCheckName& name : names) {
        const CifDataItem* item = cif_check_item(block, filter, name);
        if (item != nullptr && item->has_value()) return cif_check_reading(*item);
    }
    return CifReading();
}
// The same with the block's filter found already (CifBlockNameFilter::of()).
inline CifReading cif_check_read(const CifDataBlock& block, std::initializer_list<CifCheckName> names) {
    return cif_check_read(block, CifBlockNameFilter::of(block), names);
}

// The name and text of an item's first value; the text is empty for an
// unknown value (a quoted ? stays).
std::pair<CifReadingName, std::string> cif_check_text_of(const CifDataItem& item);

// The same of the first of the names the block holds.
inline std::pair<CifReadingName, std::string> cif_check_text(const CifDataBlock& block,
                                                             const CifBlockNameFilter* filter,
                                                             std::initializer_list<CifCheckName> names) {
    for (const CifCheckName& name : names) {
        const CifDataItem* item = cif_check_item(block, filter, name);
        if (item != nullptr && item->has_value()) return cif_check_text_of(*item);
    }
    return {};
}
// The same with the block's filter found already (CifBlockNameFilter::of()).
inline std::pair<CifReadingName, std::string> cif_check_text(const CifDataBlock& block,
                                                             std::initializer_list<CifCheckName> names) {
    return cif_check_text(block, CifBlockNameFilter::of(block), names);
}

// The six cell parameters a, b, c, alpha, beta, gamma under either spelling.
void cif_check_read_cell(const CifDataBlock& block, CifReading cell[6]);

// Whether two values agree within three combined uncertainties and a slack.
bool cif_check_agree(double a, double sigma_a, double b, double sigma_b, double slack = 0.0);

// A value with as many decimals as a unit of the last digit shows.
std::string cif_check_format(double value, double unit);
// A value with the given number of significant digits, no exponent.
std::string cif_check_significant(double value, int digits = 3);
// The value as written in the file (with its uncertainty).
std::string cif_check_written(const CifDataBlock& block, const CifReading& reading);

// The level of a finding whose measure rose above three thresholds
// (remark, warning, error, in rising order); false below all three.
bool cif_check_level(double measure, double remark, double warning, double error, CifError::ErrorType& level);

// The cell's volume from its six parameters (degrees); 0 when the angles form no cell.
double cif_check_cell_volume(const double p[6]);
