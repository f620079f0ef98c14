// SPDX-License-Identifier: MIT
// Mass attenuation coefficients of the elements for Cu, Mo and Ag K-alpha radiation.
#pragma once

#include <string>
#include <string_view>

// The characteristic radiations the table covers.
enum class CifRadiation { unknown, cu, mo, ag };

// The radiation of a wavelength in Angstrom (Cu K-alpha 1.5404-1.5446, Mo
// 0.7093-0.7136, Ag 0.5594-0.5638), unknown for any other.
CifRadiation cif_radiation_of_wavelength(double wavelength);
// The radiation a _diffrn_radiation_type text names ("Mo K\a", "CuKa",
// "'Ag K-alpha'"), unknown for any other.
CifRadiation cif_radiation_of_type(std::string_view text);
// "Cu K-alpha", "Mo K-alpha", "Ag K-alpha".
const char* cif_radiation_name(CifRadiation radiation);

// The mass attenuation coefficient mu/rho of an element (its symbol) for a
// radiation in cm^2/g; 0 when the table has no value for it.
double cif_mass_attenuation(const std::string& element, CifRadiation radiation);
