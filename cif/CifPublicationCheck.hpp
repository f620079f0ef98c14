// SPDX-License-Identifier: MIT
// The items a journal submission needs, listed once per document when missing.
#pragma once

#include <string>

#include "cif/Cif.hpp"

class CifCheckFindings;

// For a document meant for publication (one that gives any _publ_ or
// _journal_ item): its title and authors, and, when a journal is requested
// (_publ_requested_journal), the contact author (_publ_contact_author_name,
// or the older _publ_contact_author, and _email), the requested category
// and, for a journal of the IUCr, _journal_coeditor_code. A value of ? or .,
// in a text field too, is missing. Each missing item is a remark (384) once per
// document on the first block's line, unless the mandatory items already
// report it (347).
class CifPublicationCheck {
public:
    CifPublicationCheck(const Cif& cif, CifCheckFindings& findings) : cif_(cif), findings_(findings) {}
    // note() for every filled block, then report().
    void check();
    // Notes what one block gives: called for the filled blocks in order
    // (those without items may be left out), each while its name filter
    // answers, if any (CifBlockNameFilter).
    void note(const CifDataBlock& block);
    // Adds the findings of the blocks noted.
    void report();

private:
    const Cif& cif_;
    CifCheckFindings& findings_;
    bool for_publication_ = false;
    unsigned given_ = 0;  // a bit for each name asked, set by the first block that gives it
    std::string journal_, journal_name_;
};
