// SPDX-License-Identifier: MIT
// The attributes of one dictionary definition, looked up through the frames it is made of.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cif/CifDataBlock.hpp"

struct CifItemDefinition;

// The attributes of one definition of a DDLm or DDL2 dictionary: its save
// frame, followed by the frames it imports, looked through in order (the
// first frame that has an attribute gives it). "?" and "." written without
// quotes count as absent.
class CifDictionaryAttributes {
public:
    explicit CifDictionaryAttributes(const CifDataBlock& frame) : frames_{&frame} {}
    explicit CifDictionaryAttributes(std::vector<const CifDataBlock*> frames) : frames_(std::move(frames)) {}

    THandle<CifDataItem> find(std::string_view tag) const;
    // The single (first) value, or empty.
    std::string value(std::string_view tag) const;
    // Every value of a looped attribute (one for an unlooped one).
    std::vector<std::string> values(std::string_view tag) const;

    // Reads "min:max" (either end may be open) into the definition's range
    // fields; numeric ranges must have numbers at both given ends, in order.
    // False when the text is not a range.
    static bool read_range(std::string_view text, bool numeric, CifItemDefinition& definition);

private:
    std::vector<const CifDataBlock*> frames_;
};
