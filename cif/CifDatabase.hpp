// SPDX-License-Identifier: MIT
// A document seen as a list of crystal structures, one per block that describes one.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifStructure.hpp"
#include "support/THandle.hpp"

// A block is an entry when it holds cell parameters or atom coordinates;
// its structure is built when first asked for and kept. An entry whose
// structure cannot be built still counts: its structure says why.
class CifDatabase {
public:
    explicit CifDatabase(THandle<Cif> cif);
    ~CifDatabase();
    CifDatabase(const CifDatabase&) = delete;
    CifDatabase& operator=(const CifDatabase&) = delete;

    int size() const { return static_cast<int>(entries_.size()); }
    // The n-th structure (0-based); a null handle outside the list.
    THandle<CifStructure> entry(int n);
    // The name of the n-th entry's block; empty outside the list.
    std::string block_name(int n) const;
    // The entry of a block (name with or without "data_", case ignored), -1 when none.
    int index_of(const std::string& block_name) const;
    // The entry whose block holds the 1-based line, -1 when none.
    int index_at_line(int line) const;

    // Problems met while building the structures asked for so far, one text
    // each, as "block name: problem".
    const std::vector<std::string>& errors() const { return errors_; }
    void clear_errors() { errors_.clear(); }

    THandle<Cif> cif() const { return cif_; }

private:
    THandle<Cif> cif_;
    std::vector<THandle<CifDataBlock>> entries_;
    std::vector<THandle<CifStructure>> built_;
    std::unique_ptr<CifLineIndex> lines_;
    std::vector<std::string> errors_;
};
