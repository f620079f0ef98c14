// SPDX-License-Identifier: MIT
// Reads a DDLm or DDL2 dictionary's text into a CIF, its reading problems passed on.
#pragma once

#include <iosfwd>
#include <string>

#include "cif/CifErrorContainer.hpp"
#include "support/THandle.hpp"

class Cif;

// Reads a dictionary's text into `cif` with the settings a dictionary needs
// (save frames, names of any length, no checks of names, values or line
// lengths). Errors go to `errors` when there is one; warnings and remarks
// to `log` when there is one.
void cif_read_dictionary_text(Cif& cif, std::string text, const THandle<CifErrorContainer>& errors,
                              std::ostream* log);
