// SPDX-License-Identifier: MIT
// Fills a concrete dictionary from DDL1 text: its descriptor and one definition per name.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "cif/CifErrorContainer.hpp"
#include "cif/CifParserSettings.hpp"
#include "support/THandle.hpp"

class Cif;
class CifConcreteDictionary;
class CifDataBlock;
struct CifItemDefinition;

// Fills a CifConcreteDictionary from DDL1 text: the text is read as CIF,
// data_on_this_dictionary gives the descriptor and every other block is one
// definition (a single or looped _name with the attributes _category,
// _type, _type_conditions, _enumeration(_detail), _enumeration_default,
// _enumeration_range, _list, _list_reference, _list_mandatory,
// _list_link_parent, _list_link_child, _units, _units_detail,
// _example(_detail), _related_item, _related_function, _definition).
class CifDdl1Reader {
public:
    CifDdl1Reader(CifConcreteDictionary& dictionary, THandle<CifErrorContainer> errors, std::ostream* log);

    // A text of several pieces of piece_size bytes or more is read a piece
    // (whole data blocks) at a time, so that the definitions are made without
    // the document of the whole text: a third of the memory. When a piece
    // has any problem, or two pieces name the same block, the text is read
    // again as one for its messages; a piece_size of 0 reads it as one.
    // Before either, a text plain enough is scanned without a document
    // (not with a piece_size of 0).
    void read(std::string text, std::size_t piece_size = std::size_t(1) << 16);

private:
    static CifParserSettings settings();
    void read_whole(std::string text);
    bool read_in_pieces(const std::string& text, std::size_t piece_size);
    void read_blocks(const Cif& cif);
    // A text plain enough is scanned (CifDdl1Scan) instead of read as a
    // document: the same definitions and messages in a fraction of the time.
    bool read_scanned(const std::string& text);
    // Of a document's block or a scanned one.
    template <typename Block>
    void read_descriptor(const Block& block);
    template <typename Block>
    void read_definition(const Block& block);
    template <typename Block>
    bool read_attributes(const Block& block, CifItemDefinition& definition);
    void add_definition(CifItemDefinition&& definition, int line);
    void build_categories();
    void error(int code, int line, std::string text = {}, std::string detail = {});

    CifConcreteDictionary& dictionary_;
    THandle<CifErrorContainer> errors_;
    std::ostream* log_;
    // Lines before the piece being read, added to the lines it reports.
    int line_offset_ = 0;
};
