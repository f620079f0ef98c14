// SPDX-License-Identifier: MIT
// The full check of single values, each problem reported on the line of its value.
#pragma once

#include <cstddef>
#include <string>

#include "cif/CifDataItem.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifErrorSink.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifValueCheck.hpp"

// The full check of single values against their definitions, reporting
// each problem on the line of the value (found from its place in the text).
class CifValueReporter {
public:
    CifValueReporter(const CifDictionary& dictionary, const CifLineIndex& lines, CifErrorSink& sink)
        : dictionary_(dictionary), lines_(lines), sink_(sink) {}

    // Checks the n-th value of the item (against definition, or through the
    // dictionary's check_value when it has none) and reports a problem.
    // False once the sink keeps no more messages.
    bool check(const CifDataItem& item, const CifItemDefinition* definition, std::size_t n);
    // Every value of the item.
    void check_all(const CifDataItem& item, const CifItemDefinition* definition);

    void report(const CifValueCheck::Result& result, int line, const std::string& name);
    // The line of the n-th value: from its offset in the text, or the
    // item's line for a value added later.
    int value_line(const CifDataItem& item, std::size_t n) const;

    const CifDictionary& dictionary() const { return dictionary_; }
    CifErrorSink& sink() { return sink_; }

private:
    const CifDictionary& dictionary_;
    const CifLineIndex& lines_;
    CifErrorSink& sink_;
};
