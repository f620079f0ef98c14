// SPDX-License-Identifier: MIT
// The items a journal submission needs, listed once per document when missing.
#pragma once

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

    void check();

private:
    const Cif& cif_;
    CifCheckFindings& findings_;
};
