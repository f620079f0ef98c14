// SPDX-License-Identifier: MIT
// Numbers and texts of a block as the cross-checks read them, and how they compare and print.
#include "cif/CifCheckValues.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "cif/CifBlockNameFilter.hpp"

bool cif_check_unknown(std::string_view value) { return value.empty() || value == "?" || value == "."; }

THandle<CifDataItem> cif_check_find(const CifDataBlock& block, const CifCheckName& name) {
    const CifBlockNameFilter* names = CifBlockNameFilter::of(block);
    if (names == nullptr || names->asks_block()) return block.find(name.text());
    const THandle<CifDataItem>* item = names->find(name);
    return item == nullptr ? THandle<CifDataItem>() : *item;
}

CifReading cif_check_reading(const CifDataItem& item) {
    CifReading reading;
    reading.name = CifReadingName(item.name());
    std::string_view text = item.value_view(0);
    if (cif_check_unknown(text)) return reading;
    reading.number = CifNumber::parse(text);
    reading.ok = reading.number.ok();
    return reading;
}

std::pair<CifReadingName, std::string> cif_check_text_of(const CifDataItem& item) {
    std::string value(item.value_view(0));
    if (cif_check_unknown(value) && !item.is_quoted(0)) return {CifReadingName(item.name()), std::string()};
    return {CifReadingName(item.name()), value};
}

void cif_check_read_cell(const CifDataBlock& block, CifReading cell[6]) {
    cell[0] = cif_check_read(block, {"_cell_length_a", "_cell.length_a"});
    cell[1] = cif_check_read(block, {"_cell_length_b", "_cell.length_b"});
    cell[2] = cif_check_read(block, {"_cell_length_c", "_cell.length_c"});
    cell[3] = cif_check_read(block, {"_cell_angle_alpha", "_cell.angle_alpha"});
    cell[4] = cif_check_read(block, {"_cell_angle_beta", "_cell.angle_beta"});
    cell[5] = cif_check_read(block, {"_cell_angle_gamma", "_cell.angle_gamma"});
}

bool cif_check_agree(double a, double sigma_a, double b, double sigma_b, double slack) {
    return std::fabs(a - b) <= 3.0 * std::sqrt(sigma_a * sigma_a + sigma_b * sigma_b) + slack;
}

std::string cif_check_format(double value, double unit) {
    int decimals = unit >= 1.0 ? 0 : std::min(6, static_cast<int>(std::lround(-std::log10(unit))));
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string cif_check_significant(double value, int digits) {
    if (value == 0.0 || !std::isfinite(value)) return cif_check_format(value, 1.0);
    int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(value))));
    return cif_check_format(value, std::pow(10.0, std::min(0, magnitude - digits + 1)));
}

std::string cif_check_written(const CifDataBlock& block, const CifReading& reading) {
    THandle<CifDataItem> item = block.find(reading.name.text());
    if (item.is_null() || !item->has_value()) return "?";
    return std::string(item->value_view(0));
}

bool cif_check_level(double measure, double remark, double warning, double error,
                     CifError::ErrorType& level) {
    if (!(measure > remark)) return false;
    level = measure > error ? CifError::error : measure > warning ? CifError::warning : CifError::remark;
    return true;
}

double cif_check_cell_volume(const double p[6]) {
    constexpr double radians = std::numbers::pi / 180.0;
    double ca = std::cos(p[3] * radians), cb = std::cos(p[4] * radians), cg = std::cos(p[5] * radians);
    double root = 1.0 - ca * ca - cb * cb - cg * cg + 2.0 * ca * cb * cg;
    return root <= 0.0 ? 0.0 : p[0] * p[1] * p[2] * std::sqrt(root);
}
