// SPDX-License-Identifier: MIT
// Decides which two atoms of a structure are bonded.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "cif/CifStructure.hpp"

// Two atoms are bonded when they lie closer than the sum of their covalent
// radii plus CifStructure::bond_tolerance, unless
// - both are hydrogen atoms;
// - they belong to different disorder groups of one assembly (they are
//   alternatives, never present together);
// - they are images, by different operators, of one negative disorder group
//   (a group disordered about a symmetry element);
// - the block lists its bonds (_geom_bond_*) and the pair is not among them:
//   then a listed pair is bonded at its listed distance, and only sites that
//   the list never names fall back on radii.
class CifBondRule {
public:
    explicit CifBondRule(const CifStructure& structure);

    // The farthest a site may bond to anything.
    double reach(int site) const {
        return radius_[static_cast<std::size_t>(site)] + longest_radius_ + slack_;
    }
    double longest_reach() const { return 2 * longest_radius_ + slack_; }

    bool bonded(const CifBuiltAtom& a, const CifBuiltAtom& b, double distance) const;

private:
    bool by_radii(int site_a, int site_b, double distance) const;

    const CifStructure& structure_;
    std::vector<double> radius_;
    std::vector<bool> hydrogen_;
    std::vector<bool> listed_site_;
    std::multimap<std::pair<int, int>, double> listed_;
    double longest_radius_ = 0.0;
    double slack_ = CifStructure::bond_tolerance;
};
