// SPDX-License-Identifier: MIT
// Mass attenuation coefficients of the elements for Cu, Mo and Ag K-alpha radiation.
#include "cif/CifMassAttenuation.hpp"

#include <cmath>

namespace {

struct Coefficients {
    int z;
    const char* symbol;
    double cu, mo, ag;  // cm^2/g; 0 where the table gives no value
};

// Written by the team from International Tables for Crystallography,
// Vol. C, Table 4.2.4.3 (mass attenuation coefficients for the
// characteristic wavelengths, Creagh & Hubbell), to three significant
// figures. Values the team could not confirm are left out (0): Cu K-alpha
// for Ga to Lu, whose L edges lie near it, and Ag K-alpha for Zn to Tc; a
// formula with such an element gets no absorption check for that radiation.
// Pm, Po to Ac and the elements after Th but U are left out too.
constexpr Coefficients table[] = {
    {1, "H", 0.391, 0.373, 0.366}, {2, "He", 0.292, 0.202, 0.188}, {3, "Li", 0.554, 0.222, 0.192},
    {4, "Be", 1.20, 0.302, 0.226}, {5, "B", 2.35, 0.419, 0.286},   {6, "C", 4.60, 0.625, 0.399},
    {7, "N", 7.52, 0.916, 0.515},  {8, "O", 11.5, 1.31, 0.674},    {9, "F", 16.4, 1.80, 0.887},
    {10, "Ne", 22.9, 2.47, 1.18},  {11, "Na", 30.1, 3.25, 1.53},   {12, "Mg", 38.6, 4.38, 2.03},
    {13, "Al", 48.6, 5.30, 2.48},  {14, "Si", 60.6, 6.64, 3.10},   {15, "P", 74.1, 7.97, 3.70},
    {16, "S", 89.1, 9.99, 4.64},   {17, "Cl", 106, 11.6, 5.39},    {18, "Ar", 116, 12.6, 5.92},
    {19, "K", 143, 16.2, 7.55},    {20, "Ca", 162, 19.3, 9.00},    {21, "Sc", 184, 21.1, 9.82},
    {22, "Ti", 208, 23.7, 11.1},   {23, "V", 233, 26.5, 12.4},     {24, "Cr", 260, 30.4, 14.2},
    {25, "Mn", 285, 33.5, 15.7},   {26, "Fe", 308, 38.5, 18.0},    {27, "Co", 313, 42.5, 19.9},
    {28, "Ni", 45.7, 48.4, 22.7},  {29, "Cu", 52.9, 50.9, 24.0},   {30, "Zn", 59.5, 55.4, 0},
    {31, "Ga", 0, 57.3, 0},        {32, "Ge", 0, 63.4, 0},         {33, "As", 0, 66.0, 0},
    {34, "Se", 0, 71.7, 0},        {35, "Br", 0, 75.6, 0},         {36, "Kr", 0, 79.1, 0},
    {37, "Rb", 0, 85.6, 0},        {38, "Sr", 0, 90.1, 0},         {39, "Y", 0, 96.6, 0},
    {40, "Zr", 0, 15.9, 0},        {41, "Nb", 0, 17.1, 0},         {42, "Mo", 0, 18.4, 0},
    {43, "Tc", 0, 19.7, 0},        {44, "Ru", 0, 21.1, 11.1},      {45, "Rh", 0, 22.6, 11.9},
    {46, "Pd", 0, 24.1, 12.6},     {47, "Ag", 0, 25.8, 13.5},      {48, "Cd", 0, 27.5, 14.3},
    {49, "In", 0, 29.3, 15.2},     {50, "Sn", 0, 31.1, 16.2},      {51, "Sb", 0, 33.1, 17.2},
    {52, "Te", 0, 33.9, 17.7},     {53, "I", 0, 36.3, 18.9},       {54, "Xe", 0, 38.5, 20.0},
    {55, "Cs", 0, 40.4, 21.0},     {56, "Ba", 0, 42.8, 22.2},      {57, "La", 0, 45.1, 23.4},
    {58, "Ce", 0, 48.1, 24.9},     {59, "Pr", 0, 50.9, 26.3},      {60, "Nd", 0, 53.4, 27.5},
    {62, "Sm", 0, 58.3, 30.2},     {63, "Eu", 0, 61.5, 31.8},      {64, "Gd", 0, 63.1, 32.7},
    {65, "Tb", 0, 66.6, 34.4},     {66, "Dy", 0, 69.0, 35.8},      {67, "Ho", 0, 72.0, 37.4},
    {68, "Er", 0, 75.0, 39.1},     {69, "Tm", 0, 78.4, 41.0},      {70, "Yb", 0, 80.9, 42.3},
    {71, "Lu", 0, 84.4, 44.2},     {72, "Hf", 159, 87.1, 45.8},    {73, "Ta", 166, 90.3, 47.5},
    {74, "W", 172, 93.4, 49.2},    {75, "Re", 179, 96.6, 51.1},    {76, "Os", 186, 99.6, 52.8},
    {77, "Ir", 194, 103, 54.9},    {78, "Pt", 200, 107, 56.8},     {79, "Au", 208, 110, 58.9},
    {80, "Hg", 216, 114, 60.8},    {81, "Tl", 224, 117, 62.6},     {82, "Pb", 232, 120, 64.7},
    {83, "Bi", 240, 125, 67.1},    {90, "Th", 327, 96.8, 83.2},    {92, "U", 352, 102, 87.7},
};

bool near(double value, double centre, double half_width) { return std::fabs(value - centre) <= half_width; }

}  // namespace

CifRadiation cif_radiation_of_wavelength(double wavelength) {
    if (near(wavelength, 1.5425, 0.0021)) return CifRadiation::cu;
    if (near(wavelength, 0.71145, 0.00215)) return CifRadiation::mo;
    if (near(wavelength, 0.5616, 0.0022)) return CifRadiation::ag;
    return CifRadiation::unknown;
}

CifRadiation cif_radiation_of_type(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\'' || text.front() == '"'))
        text.remove_prefix(1);
    if (text.size() < 3) return CifRadiation::unknown;
    std::string_view element = text.substr(0, 2);
    std::string_view rest = text.substr(2);
    while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
    // Only K-alpha lines: "K\\a", "Ka", "K-alpha", "K\\a~1~" ...
    if (rest.empty() || (rest.front() != 'K' && rest.front() != 'k')) return CifRadiation::unknown;
    if (rest.size() > 1 && (rest[1] == 'b' || rest[1] == 'B' || (rest.size() > 2 && rest[2] == 'b')))
        return CifRadiation::unknown;
    if (element == "Cu" || element == "CU") return CifRadiation::cu;
    if (element == "Mo" || element == "MO") return CifRadiation::mo;
    if (element == "Ag" || element == "AG") return CifRadiation::ag;
    return CifRadiation::unknown;
}

const char* cif_radiation_name(CifRadiation radiation) {
    switch (radiation) {
        case CifRadiation::cu:
            return "Cu K-alpha";
        case CifRadiation::mo:
            return "Mo K-alpha";
        case CifRadiation::ag:
            return "Ag K-alpha";
        default:
            return "unknown radiation";
    }
}

double cif_mass_attenuation(const std::string& element, CifRadiation radiation) {
    for (const Coefficients& row : table) {
        if (element != row.symbol) continue;
        switch (radiation) {
            case CifRadiation::cu:
                return row.cu;
            case CifRadiation::mo:
                return row.mo;
            case CifRadiation::ag:
                return row.ag;
            default:
                return 0.0;
        }
    }
    return 0.0;
}
