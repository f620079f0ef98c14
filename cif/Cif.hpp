// SPDX-License-Identifier: MIT
// One CIF document: its data blocks in text order, its dictionary and its messages.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "cif/CifBlockList.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifErrorContainer.hpp"
#include "cif/CifParserSettings.hpp"
#include "cif/CifTextStore.hpp"
#include "cif/CifWriteSettings.hpp"
#include "support/THandle.hpp"

// One CIF document: its data blocks in text order, the dictionary it is
// checked against and the messages of reading and checking it.
class Cif {
public:
    using BlockList = CifBlockList;
    using iterator = BlockList::iterator;
    using const_iterator = BlockList::iterator;

    explicit Cif(THandle<CifDictionary> dictionary = THandle<CifDictionary>());
    Cif(const Cif&) = delete;
    Cif& operator=(const Cif&) = delete;
    virtual ~Cif() = default;

    // Reads the whole stream into blocks (CIF 1.1, or CIF 2.0 when the text
    // starts with #\#CIF_2.0). Never throws for bad text and never stops at
    // the first problem: every problem becomes a message in errors(), in
    // line order. Meant for a fresh document; earlier contents are dropped.
    void read(std::istream& stream, const CifParserSettings& settings = CifParserSettings());
    // The same for text already in memory.
    void read_text(std::string text, const CifParserSettings& settings = CifParserSettings());

    // Adds a warning 347 (text: the data name) for every listed data name
    // the document lacks. Names of the first list (publication items) may be
    // in any block: one message each, on the line of the first block's
    // heading. Names of the second list (crystal items) must be in every
    // block that holds crystal data (an item of cell, atom_site, chemical,
    // symmetry, space_group, exptl_crystal, diffrn, refine or refln): one
    // message per such block lacking it, on its heading; when no block holds
    // crystal data they are checked like the first list. A name is reported
    // once per line. Empty lists add nothing.
    void check_mandatory(const std::vector<std::string>& document_names,
                         const std::vector<std::string>& block_names);

    // The blocks, in text order. Blocks read with nothing in them are kept
    // as records and made when handed out; blocks().filled() passes over them.
    const BlockList& blocks() const { return blocks_; }
    std::size_t block_count() const { return blocks_.size(); }
    iterator block_begin() const { return blocks_.begin(); }
    iterator block_end() const { return blocks_.end(); }
    // The n-th block (0-based); a null handle when there is none.
    THandle<CifDataBlock> block(unsigned int n) const;
    // The first block of that name (with or without "data_", case ignored),
    // or block_end(). Blocks passed over are not made.
    iterator block_with_name(const std::string& name) const;
    // The block whose text holds the 1-based line: from its "data_" line to
    // the line before the next block's, the last block to the end of the
    // text. block_end() before the first "data_" line, past the end of the
    // text, and for blocks not read from text. Blocks passed over are not made.
    iterator block_at_line(int line) const;
    // Inserts an empty block before position and returns it.
    iterator new_block(const std::string& name, iterator position);

    THandle<CifDictionary> dictionary() const { return dictionary_; }
    THandle<CifErrorContainer> errors() const { return errors_; }
    // 1 for CIF 1.1 text, 2 for CIF 2.0.
    int version() const { return version_; }
    // The number of lines of the text read.
    int line_count() const { return line_count_; }
    const THandle<CifTextStore>& store() const { return store_; }

    // Writes every block (with the CIF 2.0 code line when settings ask for 2.0).
    void print(std::ostream& stream, const CifWriteSettings& settings = CifWriteSettings()) const;

private:
    friend class CifReader;

    THandle<CifDictionary> dictionary_;
    THandle<CifErrorContainer> errors_;
    THandle<CifTextStore> store_;
    BlockList blocks_;
    int version_ = 1;
    int line_count_ = 0;
};
