// SPDX-License-Identifier: MIT
// The whole check of a document: read, mandatory items, consistency.
#include "cif/CifDocumentCheck.hpp"

#include "cif/ORMACifConsistencyChecker.hpp"

THandle<Cif> CifDocumentCheck::run(std::string text) const {
    THandle<Cif> cif(new Cif(dictionary_));
    cif->read_text(std::move(text), settings_.parser);
    return finish(cif);
}

THandle<Cif> CifDocumentCheck::run(std::istream& stream) const {
    THandle<Cif> cif(new Cif(dictionary_));
    cif->read(stream, settings_.parser);
    return finish(cif);
}

THandle<Cif> CifDocumentCheck::finish(THandle<Cif> cif) const {
    cif->check_mandatory(settings_.publication_items, settings_.crystal_items);
    if (settings_.consistency) ORMACifConsistencyChecker(cif).check_cif();
    return cif;
}
