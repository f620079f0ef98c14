// SPDX-License-Identifier: MIT
// The whole check of a document, shared by the editor and tessary-check.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifParserSettings.hpp"
#include "support/THandle.hpp"

// What a document is checked against besides its dictionary.
struct CifCheckSettings {
    CifParserSettings parser;
    std::vector<std::string> publication_items;  // mandatory somewhere in the document
    std::vector<std::string> crystal_items;      // mandatory in every block with crystal data
    bool consistency = true;                     // the cross-checks of ORMACifConsistencyChecker
};

// The whole check of a document, the same for the editor and for
// tessary-check: the text read into a new Cif bound to the dictionary (a
// null dictionary checks the syntax only), then the mandatory items, then
// the consistency checks. Every message lands in the document's error
// container. A value: copies may run on other threads as long as the
// dictionary behind the handle is only read.
class CifDocumentCheck {
public:
    CifDocumentCheck() = default;
    CifDocumentCheck(THandle<CifDictionary> dictionary, CifCheckSettings settings)
        : dictionary_(std::move(dictionary)), settings_(std::move(settings)) {}

    THandle<Cif> run(std::string text) const;
    // Reads the stream to its end first; a read error is one more message.
    THandle<Cif> run(std::istream& stream) const;

    const THandle<CifDictionary>& dictionary() const { return dictionary_; }
    const CifCheckSettings& settings() const { return settings_; }

private:
    THandle<Cif> finish(THandle<Cif> cif) const;

    THandle<CifDictionary> dictionary_;
    CifCheckSettings settings_;
};
