// SPDX-License-Identifier: MIT
// Fills a concrete dictionary from DDLm text, with the definitions it imports.
#pragma once

#include <ostream>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cif/CifDdlmImports.hpp"
#include "cif/CifErrorContainer.hpp"
#include "support/THandle.hpp"

class CifConcreteDictionary;
class CifDataBlock;
class CifDataItem;
struct CifItemDefinition;

// Fills a CifConcreteDictionary from DDLm text (the IUCr core dictionary 3.x):
// the data block gives the descriptor (_dictionary.title, version, date),
// each save frame one definition of a category or a data item. A frame's
// _import.get brings in the attributes of a frame of another file (mode
// Contents) or every definition of that file (mode Full); own attributes
// win over imported ones unless the import says 'dupl':Replace, and an
// import that cannot be found is a warning unless it says 'miss':Ignore.
// Names resolve through _alias.definition_id too. Items of a Loop category
// may be looped (or given once), those of a Set category must not be; the
// category's _category_key.name are the keys of its loops.
class CifDdlmReader {
public:
    CifDdlmReader(CifConcreteDictionary& dictionary, THandle<CifErrorContainer> errors, std::ostream* log,
                  std::vector<std::string> directories);

    // text: the dictionary; directory: where its imports are looked for first.
    void read(std::string text, const std::string& directory);

private:
    // A definition frame with the frames it imports, looked through in order.
    using Layers = std::vector<const CifDataBlock*>;
    struct Category {
        std::string name;  // as written
        std::string parent;
        std::string definition_class;
        std::vector<std::string> keys;
    };

    void read_frames(const CifDataBlock& block, const std::string& directory);
    void read_frame(const CifDataBlock& frame, const std::string& directory);
    void gather(const CifDataBlock& frame, const std::string& directory, Layers& layers, int depth);
    void import_full(CifDdlmImports::File& file);
    void read_item(const Layers& layers, const std::string& name, int line);
    void finish();
    // The lower-case name of the outermost Loop category the category lies in (itself at least).
    std::string outermost_loop(std::size_t category) const;
    void error(int code, int line, std::string text = {}, std::string detail = {});

    CifConcreteDictionary& dictionary_;
    THandle<CifErrorContainer> errors_;
    std::ostream* log_;
    CifDdlmImports imports_;
    std::vector<Category> categories_;
    std::unordered_map<std::string, std::size_t> category_index_;  // lower-case name -> categories_
    // Lower-case names of items whose values a program may supply (a default
    // or an evaluation method): a loop may leave them out even as keys.
    std::unordered_set<std::string> derivable_;
};
