// SPDX-License-Identifier: MIT
// Reads a DDLm or DDL2 dictionary's text into a CIF, its reading problems passed on.
#include "cif/CifDictionaryText.hpp"

#include <ostream>

#include "cif/Cif.hpp"

void cif_read_dictionary_text(Cif& cif, std::string text, const THandle<CifErrorContainer>& errors,
                              std::ostream* log) {
    CifParserSettings settings;
    settings.line_length = 0;
    settings.check_data_names = false;
    settings.check_values = false;
    settings.allow_save_frames = true;
    settings.max_name_length = 0;  // dictionaries define names of any length
    settings.items_as_records = false;  // the dictionary's reader walks every item
    cif.read_text(std::move(text), settings);
    for (const CifError& problem : *cif.errors()) {
        if (problem.type() == CifError::error && !errors.is_null()) {
            errors->add(problem);
        } else if (log != nullptr) {
            *log << problem.complete_message() << '\n';
        }
    }
}
