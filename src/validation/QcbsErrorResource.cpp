// SPDX-License-Identifier: GPL-3.0-or-later
// Which help page explains which kind of problem.
#include "validation/QcbsErrorResource.hpp"

#include "cif/CifErrorCatalogue.hpp"

namespace {

constexpr int kFirstKind = CifErrorCatalogue::first_code;
constexpr int kLastKind = CifErrorCatalogue::last_code;

struct KindPage {
    int kind;
    int page;
};

// Kinds of the catalogue that have a page. Several kinds share one (327 and 328,
// 348 and 349, 351 and 352, 354 and 355): the page explains them together.
constexpr KindPage kPages[] = {
    {302, 69},  {303, 97},  {304, 98},  {305, 79},  {306, 66},  {307, 65},  {308, 67},  {309, 78},
    {310, 68},  {311, 81},  {312, 80},  {313, 82},  {318, 62},  {319, 84},  {320, 88},  {321, 63},
    {322, 64},  {324, 89},  {325, 91},  {326, 90},  {327, 92},  {328, 92},  {329, 93},  {343, 96},
    {346, 73},  {347, 83},  {348, 74},  {349, 74},  {350, 70},  {351, 71},  {352, 71},  {353, 72},
    {354, 85},  {355, 85},  {356, 75},  {357, 86},  {358, 100}, {359, 101}, {360, 102}, {361, 103},
    {362, 104}, {330, 105}, {338, 106}, {367, 107}, {368, 108}, {369, 109}, {370, 110}, {371, 111},
    {372, 112}, {373, 113}, {374, 114}, {375, 115}, {376, 116}, {377, 117}, {378, 118}, {379, 119},
    {380, 120}, {381, 121}, {382, 122}, {383, 123}, {384, 124},
};

// The page number of a kind, or 0 when it has none.
int helpPage(int kind) {
    if (kind < kFirstKind || kind > kLastKind) return 0;
    for (const KindPage& entry : kPages)
        if (entry.kind == kind) return entry.page;
    return 0;
}

}  // namespace

QString QcbsErrorResource::get_help_file(CifError::ErrorID id) {
    const int page = helpPage(static_cast<int>(id));
    if (page == 0) return QString("");
    return QString("tessary/PortableHTML/tessary_portable-3-%1.html").arg(page, 3, 10, QChar('0'));
}
