// SPDX-License-Identifier: MIT
// The journals crystal structures are submitted to and published in: names, abbreviations, codes.
#include "cif/Journal.hpp"

#include <array>
#include <cassert>

namespace {

struct Entry {
    std::string_view name;
    std::string_view abbreviation;
    std::string_view code;
    bool current;
};

// New journals go at the end with a new code; a code is never reused.
// Names are ASCII, with the CIF escapes for accented letters, so that a
// chosen name can go into any CIF as it stands.
constexpr std::array kJournals = {
    // The journals of the International Union of Crystallography.
    Entry{"Acta Crystallographica Section A: Foundations and Advances", "Acta Cryst. A", "ACTA", true},
    Entry{"Acta Crystallographica Section B: Structural Science, Crystal Engineering and Materials",
          "Acta Cryst. B", "ACTB", true},
    Entry{"Acta Crystallographica Section C: Structural Chemistry", "Acta Cryst. C", "ACTC", true},
    Entry{"Acta Crystallographica Section D: Structural Biology", "Acta Cryst. D", "ACTD", true},
    Entry{"Acta Crystallographica Section E: Crystallographic Communications", "Acta Cryst. E", "ACTE", true},
    Entry{"Acta Crystallographica Section F: Structural Biology Communications", "Acta Cryst. F", "ACTF",
          true},
    Entry{"Journal of Applied Crystallography", "J. Appl. Cryst.", "JAPC", true},
    Entry{"Journal of Synchrotron Radiation", "J. Synchrotron Rad.", "JSYR", true},
    Entry{"IUCrJ", "IUCrJ", "IUCJ", true},
    Entry{"IUCrData", "IUCrData", "IUCD", true},
    Entry{"Acta Crystallographica", "Acta Cryst.", "ACCR", false},
    // Chemistry journals that publish many crystal structures.
    Entry{"Journal of the American Chemical Society", "J. Am. Chem. Soc.", "JACS", true},
    Entry{"Angewandte Chemie International Edition", "Angew. Chem. Int. Ed.", "ANIE", true},
    Entry{"Angewandte Chemie", "Angew. Chem.", "ANGC", true},
    Entry{"Inorganic Chemistry", "Inorg. Chem.", "INOC", true},
    Entry{"Organometallics", "Organometallics", "ORGN", true},
    Entry{"Dalton Transactions", "Dalton Trans.", "DALT", true},
    Entry{"Chemical Communications", "Chem. Commun.", "CHCO", true},
    Entry{"Chemistry - A European Journal", "Chem. Eur. J.", "CEUJ", true},
    Entry{"European Journal of Inorganic Chemistry", "Eur. J. Inorg. Chem.", "EJIC", true},
    Entry{"European Journal of Organic Chemistry", "Eur. J. Org. Chem.", "EJOC", true},
    Entry{"Crystal Growth & Design", "Cryst. Growth Des.", "CGDE", true},
    Entry{"CrystEngComm", "CrystEngComm", "CECO", true},
    Entry{"New Journal of Chemistry", "New J. Chem.", "NJCH", true},
    Entry{"Polyhedron", "Polyhedron", "POLY", true},
    Entry{"Inorganica Chimica Acta", "Inorg. Chim. Acta", "ICAC", true},
    Entry{"Journal of Organometallic Chemistry", "J. Organomet. Chem.", "JORC", true},
    Entry{"Journal of Molecular Structure", "J. Mol. Struct.", "JMST", true},
    Entry{"Zeitschrift f\\\"ur Kristallographie - Crystalline Materials", "Z. Kristallogr. Cryst. Mater.",
          "ZKRI", true},
    Entry{"Zeitschrift f\\\"ur Kristallographie - New Crystal Structures",
          "Z. Kristallogr. New Cryst. Struct.", "ZKNC", true},
    Entry{"Zeitschrift f\\\"ur anorganische und allgemeine Chemie", "Z. Anorg. Allg. Chem.", "ZAAC", true},
    Entry{"Zeitschrift f\\\"ur Naturforschung B", "Z. Naturforsch. B", "ZNAB", true},
    Entry{"Journal of Chemical Crystallography", "J. Chem. Crystallogr.", "JCCR", true},
    Entry{"Journal of Coordination Chemistry", "J. Coord. Chem.", "JCOC", true},
    Entry{"The Journal of Organic Chemistry", "J. Org. Chem.", "JOCH", true},
    Entry{"Organic Letters", "Org. Lett.", "ORLE", true},
    Entry{"Organic & Biomolecular Chemistry", "Org. Biomol. Chem.", "OBCH", true},
    Entry{"Tetrahedron", "Tetrahedron", "TETR", true},
    Entry{"Tetrahedron Letters", "Tetrahedron Lett.", "TELE", true},
    Entry{"Tetrahedron: Asymmetry", "Tetrahedron: Asymmetry", "TEAS", false},
    Entry{"Journal of Medicinal Chemistry", "J. Med. Chem.", "JMCH", true},
    Entry{"Chemical Science", "Chem. Sci.", "CHSC", true},
    Entry{"Nature Chemistry", "Nat. Chem.", "NACH", true},
    Entry{"Nature", "Nature", "NATU", true},
    Entry{"Science", "Science", "SCIE", true},
    Entry{"Nature Communications", "Nat. Commun.", "NACO", true},
    Entry{"Inorganic Chemistry Communications", "Inorg. Chem. Commun.", "ICCO", true},
    Entry{"Journal of Solid State Chemistry", "J. Solid State Chem.", "JSSC", true},
    Entry{"Chemistry of Materials", "Chem. Mater.", "CHMA", true},
    Entry{"Journal of Materials Chemistry C", "J. Mater. Chem. C", "JMCC", true},
    Entry{"Acta Chemica Scandinavica", "Acta Chem. Scand.", "ACSC", false},
    Entry{"Australian Journal of Chemistry", "Aust. J. Chem.", "AJCH", true},
    Entry{"Canadian Journal of Chemistry", "Can. J. Chem.", "CJCH", true},
    Entry{"Helvetica Chimica Acta", "Helv. Chim. Acta", "HCAC", true},
    Entry{"Bulletin of the Chemical Society of Japan", "Bull. Chem. Soc. Jpn.", "BCSJ", true},
    Entry{"Chemistry Letters", "Chem. Lett.", "CHLE", true},
    Entry{"Chemistry - An Asian Journal", "Chem. Asian J.", "CAJ", true},
    Entry{"ChemPlusChem", "ChemPlusChem", "CPCH", true},
    Entry{"ChemistrySelect", "ChemistrySelect", "CSEL", true},
    Entry{"RSC Advances", "RSC Adv.", "RSCA", true},
    Entry{"Molecules", "Molecules", "MOLE", true},
    Entry{"Crystals", "Crystals", "CRYS", true},
    Entry{"Journal of Fluorine Chemistry", "J. Fluorine Chem.", "JFCH", true},
    Entry{"The Journal of Physical Chemistry A", "J. Phys. Chem. A", "JPCA", true},
    Entry{"The Journal of Physical Chemistry C", "J. Phys. Chem. C", "JPCC", true},
    Entry{"Physical Chemistry Chemical Physics", "Phys. Chem. Chem. Phys.", "PCCP", true},
    Entry{"Journal of the Chemical Society, Dalton Transactions", "J. Chem. Soc. Dalton Trans.", "JCSD",
          false},
    Entry{"Journal of the Chemical Society, Chemical Communications", "J. Chem. Soc. Chem. Commun.", "JCCC",
          false},
    Entry{"Journal of the Chemical Society, Perkin Transactions 1", "J. Chem. Soc. Perkin Trans. 1", "JCP1",
          false},
    Entry{"Journal of the Chemical Society, Perkin Transactions 2", "J. Chem. Soc. Perkin Trans. 2", "JCP2",
          false},
    Entry{"Structural Chemistry", "Struct. Chem.", "STCH", true},
    Entry{"Journal of Structural Chemistry", "J. Struct. Chem.", "JSTC", true},
    Entry{"Supramolecular Chemistry", "Supramol. Chem.", "SUPC", true},
    Entry{"Journal of Inclusion Phenomena and Macrocyclic Chemistry", "J. Incl. Phenom. Macrocycl. Chem.",
          "JIPM", true},
    Entry{"ACS Omega", "ACS Omega", "ACSO", true},
    Entry{"Inorganic Chemistry Frontiers", "Inorg. Chem. Front.", "ICFR", true},
    Entry{"Journal of Chemical Research", "J. Chem. Res.", "JCRE", true},
    Entry{"Synthesis", "Synthesis", "SYNT", true},
    Entry{"Synlett", "Synlett", "SYNL", true},
    Entry{"Phosphorus, Sulfur, and Silicon and the Related Elements",
          "Phosphorus Sulfur Silicon Relat. Elem.", "PSSR", true},
    Entry{"Transition Metal Chemistry", "Transition Met. Chem.", "TMCH", true},
    Entry{"Molecular Crystals and Liquid Crystals", "Mol. Cryst. Liq. Cryst.", "MCLC", true},
    Entry{"Crystallography Reports", "Crystallogr. Rep.", "CRRE", true},
    Entry{"Monatshefte f\\\"ur Chemie", "Monatsh. Chem.", "MOCH", true},
    Entry{"Chemische Berichte", "Chem. Ber.", "CHBE", false},
    Entry{"Journal of Heterocyclic Chemistry", "J. Heterocycl. Chem.", "JHCH", true},
    Entry{"Acta Crystallographica Section E: Structure Reports Online", "Acta Cryst. E", "ACEO", false},
};

const Entry& entry(int number) {
    assert(number >= 0 && std::size_t(number) < kJournals.size());
    return kJournals[std::size_t(number)];
}

}  // namespace

Journal::Journal(int number) : number_(number) { assert(number >= 0 && number < count()); }

int Journal::count() { return int(kJournals.size()); }

std::string_view Journal::name() const { return entry(number_).name; }

std::string_view Journal::abbreviation() const { return entry(number_).abbreviation; }

std::string_view Journal::code() const { return entry(number_).code; }

bool Journal::current() const { return entry(number_).current; }

std::string Journal::cleaned(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 'A' && byte <= 'Z')
            out += char(byte - 'A' + 'a');
        else if ((byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte >= 0x80)
            out += c;
    }
    return out;
}

std::vector<int> Journal::matching(std::string_view typed, bool currentOnly) {
    const std::string key = cleaned(typed);
    std::vector<int> prefixed;
    std::vector<int> containing;
    for (int i = 0; i < count(); ++i) {
        const Entry& journal = entry(i);
        if (currentOnly && !journal.current) continue;
        const std::string name = cleaned(journal.name);
        if (name.starts_with(key) || cleaned(journal.abbreviation).starts_with(key))
            prefixed.push_back(i);
        else if (name.find(key) != std::string::npos)
            containing.push_back(i);
    }
    prefixed.insert(prefixed.end(), containing.begin(), containing.end());
    return prefixed;
}

int Journal::find(std::string_view text) {
    const std::string key = cleaned(text);
    if (key.empty()) return -1;
    // Full names first: "Tetrahedron" is a journal's name and another's prefix.
    for (int i = 0; i < count(); ++i)
        if (cleaned(entry(i).name) == key) return i;
    for (int i = 0; i < count(); ++i)
        if (cleaned(entry(i).abbreviation) == key || cleaned(entry(i).code) == key) return i;
    return -1;
}
