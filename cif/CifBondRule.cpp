// SPDX-License-Identifier: MIT
// Decides which two atoms of a structure are bonded.
#include "cif/CifBondRule.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

// Listed distances are rounded to their last digit; images of one bond are
// equally long, so anything farther off is another contact of the pair.
constexpr double listed_distance_tolerance = 0.05;
// Closer than this, two sites are one place (mixed occupancy), not a bond.
constexpr double shortest_bond = 0.1;

bool negative_group(const std::string& group) { return !group.empty() && group[0] == '-'; }

}  // namespace

CifBondRule::CifBondRule(const CifStructure& structure) : structure_(structure) {
    const std::size_t count = structure.sites().size();
    radius_.resize(count);
    hydrogen_.resize(count);
    listed_site_.assign(count, false);
    for (std::size_t i = 0; i < count; ++i) {
        const gemmi::Element element = structure.sites()[i].element;
        radius_[i] = element.covalent_r();
        hydrogen_[i] = element.is_hydrogen();
        longest_radius_ = std::max(longest_radius_, radius_[i]);
    }
    for (const CifListedBond& bond : structure.listed_bonds()) {
        listed_.emplace(std::minmax(bond.first_site, bond.second_site), bond.distance);
        listed_site_[static_cast<std::size_t>(bond.first_site)] = true;
        listed_site_[static_cast<std::size_t>(bond.second_site)] = true;
        // A listed bond may be longer than radii allow (a long metal bond).
        if (bond.distance > 0)
            slack_ = std::max(slack_, bond.distance + listed_distance_tolerance - 2 * longest_radius_);
    }
}

bool CifBondRule::by_radii(int site_a, int site_b, double distance) const {
    return distance <= radius_[static_cast<std::size_t>(site_a)] + radius_[static_cast<std::size_t>(site_b)] +
                           CifStructure::bond_tolerance;
}

bool CifBondRule::bonded(const CifBuiltAtom& a, const CifBuiltAtom& b, double distance) const {
    if (distance < shortest_bond) return false;
    const std::size_t sa = static_cast<std::size_t>(a.site), sb = static_cast<std::size_t>(b.site);
    if (hydrogen_[sa] && hydrogen_[sb]) return false;
    const CifSiteSource& source_a = structure_.source(a.site);
    const CifSiteSource& source_b = structure_.source(b.site);
    const std::string& group_a = source_a.disorder_group;
    const std::string& group_b = source_b.disorder_group;
    if (!group_a.empty() && !group_b.empty()) {
        const bool same_assembly = source_a.disorder_assembly.empty() || source_b.disorder_assembly.empty() ||
                                   source_a.disorder_assembly == source_b.disorder_assembly;
        if (same_assembly && group_a != group_b) return false;
        if (group_a == group_b && negative_group(group_a) && a.op != b.op) return false;
    }
    if (listed_.empty() || !listed_site_[sa] || !listed_site_[sb]) return by_radii(a.site, b.site, distance);
    auto [first, last] = listed_.equal_range(std::minmax(a.site, b.site));
    for (auto it = first; it != last; ++it) {
        if (it->second <= 0 ? by_radii(a.site, b.site, distance)
                            : std::fabs(distance - it->second) <= listed_distance_tolerance)
            return true;
    }
    return false;
}
