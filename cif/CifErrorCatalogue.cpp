// SPDX-License-Identifier: MIT
// The error catalogue's table: every code with its kind, message and explanation.
#include "cif/CifErrorCatalogue.hpp"

#include <array>
#include <iterator>
#include <string>

namespace {

// Messages use %1 for the error's text (a data name or token) and %2 for
// its detail. docs/errors.md lists the same table for readers.
constexpr CifErrorCatalogueEntry table[] = {
    {300, 1, "warnings_omitted", "(warnings omitted)",
     "Shown by the editor in place of the further warnings of a run on consecutive lines that is longer than "
     "the limit; the library never produces it."},
    {301, 2, "input_unreadable", "Cannot read the input: %2",
     "The file or stream failed before its end; the text read up to that point is kept and checked."},
    {302, 2, "invalid_character", "Character %2 is not allowed in CIF",
     "CIF 1.1 allows only printable ASCII, tab and line ends; control characters, DEL and bytes above 126 "
     "are errors (CIF 2.0 allows Unicode text except controls and non-characters)."},
    {303, 0, "calculated_value_differs", "Value of %1 differs from the value calculated from related items%2",
     "A consistency check found that the value of the named data item disagrees, beyond three combined"
     " standard uncertainties, with what related items give (the cell volume from the cell, the "
     "density from Z, formula weight and volume, the formula weight and F(000) from the formula sum, "
     "the crystal system from the cell or the space group, a maximum below its minimum); the line is "
     "that of the item."},
    {304, 0, "count_mismatch", "Value of %1 does not agree with the number of entries it counts%2",
     "A consistency check found that a count disagrees with what it counts (the rows of the loop it "
     "describes) or with a larger count (observed reflections above the total, unique above measured);"
     " the line is that of the item."},
    {305, 2, "unterminated_quoted_string", "Quoted string not terminated: %1",
     "A value opened with a quote has no closing quote (followed by white space) on the same line; the value "
     "is taken to the end of the line. Triple-quoted strings of CIF 2.0 run to the end of the file."},
    {306, 2, "unterminated_text_field", "Text field not terminated; taken to end at line: %2",
     "A text field opened with a semicolon at the start of a line has no closing line beginning with a "
     "semicolon; it is closed before the next data_ heading or at the end of the file."},
    {307, 2, "loop_values_incomplete",
     "Number of values in the loop of %1 is not a multiple of its %2 data names",
     "The values of a loop are read row by row, one per data name; the last row is short, so some values are "
     "missing or misplaced. The missing values are read as ?."},
    {308, 2, "loop_without_values", "Loop of %1 has no values",
     "A loop_ header lists data names but no values follow before the next data name, loop_ or data_ "
     "heading."},
    {309, 2, "data_name_without_value", "Data name %1 has no value",
     "A data name outside a loop must be followed by exactly one value; the next token is another data name, "
     "a reserved word or the end of the file."},
    {310, 2, "value_without_data_name", "Value %1 has no data name",
     "A value appears where a data name, loop_ or data_ was expected, for example a second value after a "
     "data name or a value with spaces left unquoted."},
    {311, 2, "data_outside_block", "Data %1 is outside any data block",
     "Data names, values and loops must follow a data_ heading; this text comes before the first one and is "
     "not kept."},
    {312, 2, "duplicate_data_name", "Duplicate data name %1, first at line: %2",
     "A data name may occur only once in a data block, in or out of a loop, regardless of case; the later "
     "occurrence is ignored."},
    {313, 2, "duplicate_block_name", "Duplicate data block name %1, first at line: %2",
     "Block names must be unique in a file, regardless of case; the later block is still read and kept."},
    {314, 2, "reserved_word_global", "Reserved word global_ is not allowed",
     "global_ is reserved in CIF and may not appear in a CIF file (not even as an unquoted value); quote it "
     "if it is meant as a value."},
    {315, 2, "reserved_word_stop", "Reserved word stop_ is not allowed",
     "stop_ is reserved in CIF (nested loops are not part of CIF); quote it if it is meant as a value."},
    {316, 2, "save_frame_not_allowed", "Save frame %1 is not allowed outside a dictionary",
     "save_ headings belong to dictionaries; in a data file they are reserved words. Quote the text if it is "
     "meant as a value."},
    {317, 2, "loop_without_names", "Loop has no data names",
     "loop_ must be followed by at least one data name before its values."},
    {318, 1, "line_too_long", "Line is longer than %2 characters",
     "The line exceeds the line length limit of the preferences (CIF 1.1 allows at most 2048 characters; "
     "many programs and journals expect 80)."},
    {319, 2, "data_name_too_long", "Data name %1 is longer than %2 characters",
     "CIF 1.1 limits data names, including the leading underscore, to 75 characters."},
    {320, 1, "undefined_data_name", "Created non-standard data item %1%2",
     "The data name is not defined by any enabled dictionary; it may be misspelt (a defined name one or two "
     "edits away is suggested), or it is local to a program. The editor leaves out names that contain _vrf "
     "(answers to validation alerts)."},
    {321, 2, "block_name_too_long", "Data block name %1 is longer than %2 characters",
     "CIF 1.1 limits block codes (the name after data_) to 75 characters."},
    {322, 2, "block_without_name", "Data block heading data_ has no name",
     "A data_ heading must be followed directly by the block's name; the block is read with an empty name."},
    {323, 1, "no_data_blocks", "The file holds no data block",
     "The text is empty or holds only comments and white space."},
    {324, 2, "wrong_value_type", "Value of %1 is not of the type the dictionary gives (%2)",
     "The dictionary defines the data item as numeric and the value is text (it does not begin like a "
     "number), or a CIF 2.0 list or table is given for a number. ? and . are accepted for every type "
     "unless quoted."},
    {325, 2, "value_out_of_range", "Value of %1 is outside the permitted range %2",
     "The dictionary limits the data item's value to a range and the value lies outside it."},
    {326, 2, "value_not_enumerated", "Value of %1 is not one of the permitted values%2",
     "The dictionary lists the values the data item may take and the value is not among them (an "
     "error), or matches one only when case is ignored (a warning). Items whose definition speaks of a"
     " concatenated series of single-letter codes accept any run of the listed codes."},
    {327, 2, "item_must_be_looped", "Data item %1 must be in a loop",
     "The dictionary says that the data item is always given as a loop column (_list yes). A single "
     "value given outside a loop is reported as a warning."},
    {328, 2, "item_must_not_be_looped", "Data item %1 must not be in a loop",
     "The dictionary says that the data item is given once per block and never in a loop."},
    {329, 1, "loop_mixes_categories", "Loop mixes data names of different categories: %1",
     "All data names of one loop should belong to the same category (or to categories the dictionary allows "
     "together)."},
    {330, 2, "reserved_first_character", "Unquoted value %1 begins with a reserved character",
     "In CIF 1.1 an unquoted value may not begin with [ or ] (reserved for CIF 2.0 lists) and in every "
     "version not with $ (reserved for save-frame references); quote the value. The value is read as "
     "written."},
    {331, 2, "nesting_too_deep", "Lists and tables are nested more than %2 deep",
     "CIF 2.0 lists and tables may nest, but not deeper than the reader allows; the deeper part is skipped."},
    {332, 2, "token_too_long", "Value or name longer than %2 bytes",
     "A single value, data name or text field is larger than the reader accepts; it is cut short."},
    {333, 2, "invalid_utf8", "Invalid UTF-8 byte sequence %2",
     "A CIF 2.0 file must be valid UTF-8; the bytes shown do not form a character."},
    {334, 2, "unterminated_list", "List not terminated",
     "A CIF 2.0 list opened with [ has no closing ] before the next data name, block heading or end of "
     "file."},
    {335, 2, "unterminated_table", "Table not terminated",
     "A CIF 2.0 table opened with { has no closing } before the next data name, block heading or end of "
     "file."},
    {336, 2, "table_key_not_quoted", "Table key %1 is not a quoted string followed by a colon",
     "Each entry of a CIF 2.0 table is a quoted key, a colon and a value, as in {'a':1 'b':2}."},
    {337, 2, "unexpected_closing_bracket", "Unexpected %1 outside a list or table",
     "A ] or } closes no open list or table; CIF 2.0 requires brackets to be quoted in values."},
    {338, 2, "missing_white_space", "Missing white space after %1",
     "The semicolon that closes a text field, and in CIF 2.0 a quoted value, list or table, must be "
     "followed by white space (or, inside a list or table, by a closing bracket). The text after it is "
     "read as the next token, as if the white space were there."},
    {339, 1, "unknown_cif_version", "Unknown CIF version code %1; the text is read as CIF 1.1",
     "The first line is a #\\#CIF_ version code other than 1.1 or 2.0."},
    {340, 0, "no_final_line_end", "The last line has no line end",
     "CIF expects every line, the last one included, to end with a line end; the text is read as if it had "
     "one."},
    {341, 0, "end_of_file_marker", "End-of-file character (Ctrl-Z) ignored",
     "A Ctrl-Z character at the end of a file, left by old DOS programs, is ignored with everything after "
     "it."},
    {342, 0, "byte_order_mark", "Byte-order mark ignored",
     "The file begins with a Unicode byte-order mark, which CIF 1.1 does not allow; it is skipped."},
    {343, 2, "uncertainty_not_allowed", "Data item %1 may not carry a standard uncertainty",
     "The dictionary does not allow a standard uncertainty in parentheses on this data item's values."},
    {344, 2, "table_entry_without_value", "Table key %1 has no value",
     "A key of a CIF 2.0 table and its colon must be followed by a value."},
    {345, 2, "unterminated_save_frame", "Save frame %1 is not closed by save_",
     "A save frame of a dictionary must end with a save_ line before the next save frame, data block or the "
     "end of the file."},
    {346, 2, "definition_without_name", "Dictionary definition has no data name",
     "A definition block of a dictionary does not say which data name it defines (_name or _definition.id); "
     "it is skipped."},
    {347, 1, "mandatory_item_missing", "Mandatory data item %1 is missing",
     "A data item named in the mandatory-items file is missing: publication items from the whole "
     "document (on the first block's line), crystal items from each block that holds crystal data (on "
     "that block's line)."},
    {348, 2, "dictionary_unknown_type", "Dictionary definition of %1 has an unknown type %2",
     "The dictionary gives a type code the library does not know; values of the data item are not "
     "type-checked."},
    {349, 2, "dictionary_bad_range", "Dictionary definition of %1 has an invalid range or enumeration %2",
     "The dictionary's range (min:max) or list of permitted values for the data item cannot be read; it is "
     "not used."},
    {350, 2, "dictionary_duplicate_definition", "Dictionary defines %1 twice, first at line: %2",
     "A dictionary has two definitions for the same data name; the first is used."},
    {351, 1, "dictionary_undefined_related_item",
     "Dictionary definition of %1 refers to %2, which is not defined",
     "A related, replaced or linked data name named in a definition is not defined in the dictionaries."},
    {352, 1, "dictionary_undefined_category",
     "Dictionary definition of %1 names category %2, which is not defined",
     "The category a definition belongs to has no definition of its own in the dictionaries."},
    {353, 2, "not_a_dictionary", "The file is not a CIF dictionary",
     "The file reads as CIF but holds no definitions of data names; it is not used as a dictionary."},
    {354, 2, "number_unreadable", "Value of %1 is not a number",
     "The data item is numeric and its value begins like a number but cannot be read as one (digits, "
     "point, exponent), as in 10,234."},
    {355, 2, "uncertainty_unreadable", "Standard uncertainty of %1 cannot be read",
     "A numeric value's standard uncertainty must be digits in parentheses directly after the number, as in "
     "1.234(5)."},
    {356, 0, "obsolete_data_name", "Data name %1 is obsolete; use %2",
     "The dictionary marks the data name as replaced by a newer one (_related_function replace); "
     "programs may ignore the old name. The message names the replacement."},
    {357, 0, "required_item_missing", "Data item %1 requires %2, which is missing",
     "The dictionary links the data item to a parent item (_list_link_parent), and the block lacks the"
     " parent, for example atom-site type symbols without the atom-type loop. A value missing from a "
     "parent that is there is a warning (360)."},
    {358, 1, "loop_key_missing", "Loop of %1 lacks its key data item %2",
     "A loop lacks an item that its columns refer to (_list_reference, such as the atom label of "
     "anisotropic parameters) or that its category makes mandatory (_list_mandatory), or an item of the key a"
     " DDLm or DDL2 dictionary names for the category (_category_key.name; a remark, since programs may "
     "supply"
     " such keys); the line is that"
     " of the first column concerned."},
    {359, 1, "duplicate_key_value", "Value %2 of %1 occurs in more than one row",
     "The key data item of a loop (one that other items of its category refer to, _list_reference, such "
     "as atom-site labels or atom-type symbols) must have a different value in each row; each repeated "
     "value is reported once, on the line of its first repetition."},
    {360, 1, "parent_value_missing", "Value %2 of %1 has no matching row in its parent item",
     "The data item refers to rows of another loop (for example an atom site label) and no row there "
     "has this value; each missing value is reported once, on the line of its first use."},
    {361, 0, "space_group_unknown", "Space-group symbol %1 not recognised",
     "The space-group name cannot be found in the symmetry tables; symmetry checks are skipped."},
    {362, 0, "symmetry_disagrees", "Symmetry operators do not agree with the space group %1",
     "The listed symmetry operators generate another space group, or another setting of it, than the "
     "space-group symbol names (a symbol without an origin choice agrees with either)."},
    {363, 2, "nested_save_frame", "Save frame %1 inside another save frame",
     "Save frames may not be nested; the outer frame is closed before the new one."},
    {364, 0, "defined_by_several_dictionaries",
     "Data name %1 is defined by several dictionaries; the first is used",
     "Two enabled dictionaries define the same data name; the definition of the dictionary listed first "
     "takes precedence."},
    {365, 2, "internal_error", "Internal error: %2",
     "The library met a condition it did not expect; the document is read as far as possible. Please report "
     "the file."},
    {366, 0, "too_many_messages", "Too many messages; later ones are not recorded",
     "The text produced more messages than are kept (the text may not be CIF at all); reading went on to the "
     "end."},
    {367, 1, "obsolete_beside_replacement", "Data name %1 stands in the same block as its replacement %2",
     "The block gives both an obsolete data name and the name that replaces it; programs may read either, "
     "and the two may disagree. Keep the new name only."},
    {368, 2, "loop_values_shifted",
     "Values of the loop are shifted from here: %1 gets a value of the wrong kind%2",
     "The loop's value count is not a multiple of its data names (307), and this is the first row where a "
     "value lands in a column of another kind, such as text where the column takes numbers: a value is "
     "missing, or one too many, at or before this row. The type problems of the values after it are "
     "counted in this message instead of being reported one by one, and the rows from here on are left out "
     "of the key and parent checks."},
    {369, 1, "composite_key_not_unique", "Values %2 of %1 occur together in more than one row",
     "The key of the loop is several columns together (the three indices of a reflection; the atom labels "
     "and site symmetry codes of a bond, angle or torsion) and this combination repeats; it is reported "
     "once, on the line of its first repetition. Bonds between the same atoms under different symmetry "
     "are different rows."},
    {370, 2, "cell_volume_differs", "Value of %1 does not follow from the cell%2",
     "The volume calculated from the cell lengths and angles and the stated volume differ by a ratio outside "
     "0.999-1.001 (an error), or the volume's standard uncertainty differs from the one the cell's "
     "uncertainties give by more than 8 times (an error), 4 times (a warning) or 2 times (a remark); lengths "
     "that are equal take each other's uncertainty, and equal lengths may be fully correlated. A smaller "
     "difference beyond three standard uncertainties is remark 303."},
    {371, 1, "cell_contents_differ", "Value of %1 times Z does not match the atom sites%2",
     "Z times the sum formula does not give, element by element, what the atom sites put into the cell "
     "(occupancy times site multiplicity, the multiplicity from the space group, or without one from "
     "_atom_site_symmetry_multiplicity; without hydrogen sites, hydrogen atoms from "
     "_atom_site_attached_hydrogens), or _atom_type_number_in_cell disagrees with Z times the formula; a "
     "count may be off by "
     "0.1 plus 3 %. A remark when the only difference is that no hydrogen atom is among the sites."},
    {372, 2, "formula_weight_differs", "Value of %1 is off the weight of the formula%2",
     "_chemical_formula_weight differs from the weight of _chemical_formula_sum (or, without a sum formula, "
     "from the atom sites' contents divided by Z) by more than 10 % (an error), 5 % (a warning) or 1 % (a "
     "remark). A smaller difference beyond rounding is remark 303."},
    {373, 1, "density_differs", "Value of %1 is off the density of the cell's contents%2",
     "The density from Z, the formula weight and the cell volume differs from _exptl_crystal_density_diffrn "
     "by more than 5 % (an error), 2 % (a warning) or 1 % (a remark; smaller differences beyond the "
     "uncertainties are remark 303), or from the measured density _exptl_crystal_density_meas by more than "
     "10 % (a warning) or 5 % (a remark)."},
    {374, 1, "moiety_formula_differs", "Value of %1 does not add up to the sum formula%2",
     "The parts of _chemical_formula_moiety, each times its multiplier, do not add up to "
     "_chemical_formula_sum element by element (a count may be off by 0.01 plus 1 %), or a part cannot be "
     "read (warnings); the parts' charges do not add up to zero (a remark)."},
    {375, 1, "absorption_coefficient_differs", "Value of %1 is off the absorption of the cell's contents%2",
     "_exptl_absorpt_coefficient_mu differs from the linear absorption coefficient of Z times the sum "
     "formula in the cell volume, for Cu, Mo or Ag K-alpha radiation (from the wavelength or the radiation "
     "type) and the mass attenuation coefficients of International Tables Vol. C Table 4.2.4.3, by more than "
     "15 % (a remark), 30 % (a warning) or a factor 2 (an error)."},
    {376, 2, "transmission_inconsistent", "Value of %1 does not fit the absorption correction%2",
     "An absorption correction is named (_exptl_absorpt_correction_type other than none) but T_min or T_max "
     "is missing (an error); mu times the crystal's middle size is above 3 with a multi-scan correction (an "
     "error); or T_min/T_max is below 0.75 times exp(-mu (t_max - t_min)) from the crystal's sizes "
     "(a remark)."},
    {377, 2, "reflections_incomplete", "Value of %1 does not fit the cell and theta max%2",
     "The unique reflections (_reflns_number_total) or all measured ones (_diffrn_reflns_number) are fewer "
     "than 85 % of the unique reflections the cell, the Laue class and _diffrn_reflns_theta_max give (an "
     "error); or an index limit goes beyond what theta max allows by more than one (a warning) or stays "
     "below 90 % of it less one (a remark)."},
    {378, 1, "data_to_parameter_ratio_low", "Value of %1 gives too few reflections per parameter%2",
     "_refine_ls_number_reflns divided by _refine_ls_number_parameters is below 10 for a centrosymmetric "
     "structure or below 8 for a non-centrosymmetric one."},
    {379, 2, "shift_too_large", "Value of %1 shows that the refinement had not converged%2",
     "The largest shift over its standard uncertainty in the last refinement cycle (_refine_ls_shift/su_max) "
     "is above 0.20 (an error), 0.10 (a warning) or 0.05 (a remark)."},
    {380, 2, "r_factor_high", "Value of %1 is high or does not fit the other R factor%2",
     "_refine_ls_wR_factor_ref is above 0.45 (an error), 0.35 (a warning) or 0.25 (a remark); or, for a "
     "refinement on F squared, R1 (_refine_ls_R_factor_gt, else _all) is above wR2 (a remark)."},
    {381, 2, "residual_density_implausible", "Value of %1 is implausible for the residual density%2",
     "_refine_diff_density_min is positive or _refine_diff_density_max negative (errors), or the largest "
     "peak or hole is above 0.1 times the atomic number of the heaviest atom of the formula, in electrons "
     "per cubic Angstrom (a warning)."},
    {382, 1, "absolute_structure_unsettled", "Value of %1 leaves the absolute structure unsettled%2",
     "A Flack parameter is given without _refine_ls_abs_structure_details saying how it was found (a "
     "warning), or its standard uncertainty is above 0.3 in a non-centrosymmetric structure (a remark)."},
    {383, 1, "space_group_items_disagree", "Value of %1 does not agree with the other space-group items%2",
     "The Hall symbol cannot be read, or gives other operations than the listed operators, another setting "
     "than the Hermann-Mauguin symbol (which without an origin or axes choice agrees with any), or another "
     "number than the space-group number; or the operators form a group of another number. The symbol "
     "against the number and the operators is 303 and 362."},
    {384, 0, "publication_item_missing", "Publication item %1 is missing%2",
     "A document meant for publication (one that gives any _publ_ or _journal_ item) lacks its title "
     "(_publ_section_title) or authors (_publ_author_name), or a journal is requested "
     "(_publ_requested_journal) "
     "and it lacks the contact author's name (or the older _publ_contact_author) or e-mail address, the "
     "requested category or, for a journal of the IUCr, _journal_coeditor_code; a value of ? counts as "
     "missing. "
     "Each is listed once per document, on the first block's line, unless the mandatory items already report "
     "it "
     "(347)."},
};

// A message split where %1 and %2 stand.
constexpr CifErrorMessageRuns split(const char* message) {
    CifErrorMessageRuns split{};
    const char* run = message;
    int gap = 0;
    const char* p = message;
    for (; *p != '\0'; ++p) {
        if (p[0] == '%' && (p[1] == '1' || p[1] == '2')) {
            split.runs[gap] = std::string_view(run, static_cast<std::size_t>(p - run));
            split.fills[gap] = p[1] - '0';
            ++gap;
            ++p;
            run = p + 1;
        }
    }
    split.runs[gap] = std::string_view(run, static_cast<std::size_t>(p - run));
    split.size = split.runs[0].size() + split.runs[1].size() + split.runs[2].size();
    return split;
}

constexpr bool printable(const char* text) {
    for (; *text != '\0'; ++text)
        if (*text < 0x20 || *text > 0x7E) return false;
    return true;
}

constexpr int gaps(const char* text) {
    int count = 0;
    for (; *text != '\0'; ++text)
        if (text[0] == '%' && (text[1] == '1' || text[1] == '2')) ++count;
    return count;
}

constexpr bool fits() {
    for (const CifErrorCatalogueEntry& entry : table)
        if (!printable(entry.message) || gaps(entry.message) > 2) return false;
    return true;
}
// The printer leaves messages unescaped unless their text or detail needs it.
static_assert(fits(), "catalogue messages are printable ASCII with at most two placeholders");

constexpr std::array<CifErrorMessageRuns, std::size(table)> split_table = [] {
    std::array<CifErrorMessageRuns, std::size(table)> result{};
    for (std::size_t i = 0; i < std::size(table); ++i) result[i] = split(table[i].message);
    return result;
}();

}  // namespace

const CifErrorCatalogueEntry* CifErrorCatalogue::find(int code) {
    if (code < first_code || code > last_code) return nullptr;
    const CifErrorCatalogueEntry& entry = table[code - first_code];
    return entry.code == code ? &entry : nullptr;
}

const CifErrorMessageRuns* CifErrorCatalogue::runs(int code) {
    const CifErrorCatalogueEntry* entry = find(code);
    return entry == nullptr ? nullptr : &split_table[static_cast<std::size_t>(entry - table)];
}

std::span<const CifErrorCatalogueEntry> CifErrorCatalogue::entries() { return table; }

std::string CifErrorCatalogue::format(int code, const std::string& text, const std::string& detail) {
    std::string result;
    append_format(result, code, text, detail);
    return result;
}

void CifErrorCatalogue::append_format(std::string& out, int code, const std::string& text,
                                      const std::string& detail) {
    const CifErrorMessageRuns* split = runs(code);
    if (split == nullptr) {
        out += "Message " + std::to_string(code) + ": " + text;
        return;
    }
    out += split->runs[0];
    for (int gap = 0; gap < 2 && split->fills[gap] != 0; ++gap) {
        out += split->fills[gap] == 1 ? text : detail;
        out += split->runs[gap + 1];
    }
}
