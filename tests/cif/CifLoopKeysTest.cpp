// SPDX-License-Identifier: MIT
// Repeated key values found alike by the quick look at small loops and the full check.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/cif/CifTestSupport.hpp"
#include "tests/cif/DictionaryTestSupport.hpp"

namespace {

using cif_test::Messages;
using cif_test::read_checked;

// The repeated key values (359) and combinations (369) found in the text.
Messages repetitions(const std::string& text) {
    Messages found;
    for (const auto& message : cif_test::messages(*read_checked(text)))
        if (message.first == 359 || message.first == 369) found.push_back(message);
    return found;
}

// A loop of atom types, one a row from line 4 on, whose row `repeated`
// (when not npos) repeats row `original`; each symbol is `width` bytes.
std::string type_loop(std::size_t rows, std::size_t width, std::size_t original, std::size_t repeated) {
    std::string text = "data_a\nloop_\n_atom_type_symbol\n";
    for (std::size_t row = 0; row < rows; ++row) {
        std::string symbol = "T" + std::to_string(row == repeated ? original : row);
        symbol.resize(std::max(width, symbol.size()), 'x');
        text += symbol;
        if (row + 1 < rows) text += row % 2 == 0 ? "\n" : "\t\n";
    }
    return text;  // no line end after the last symbol: the text ends with it
}

TEST(CifLoopKeys, RepeatedSymbolsAreFoundWhateverTheLoopsSizeAndTheValuesWidth) {
    // Sizes about the pairwise comparison (16 rows), the table and the
    // limit of the quick look (256 rows); widths about the sixteen bytes
    // read at once; the repetition first, in the middle or last, where the
    // text ends.
    constexpr std::size_t none = std::string::npos;
    for (std::size_t rows : {2, 16, 17, 33, 256, 257}) {
        for (std::size_t width : {1, 15, 16, 17, 30}) {
            for (std::size_t repeated : {std::size_t(1), rows / 2, rows - 1, none}) {
                const std::size_t original = repeated == none || repeated == 0 ? 0 : repeated - 1;
                const std::string text = type_loop(rows, width, original / 2, repeated);
                const Messages expected =
                    repeated == none ? Messages{} : Messages{{359, static_cast<int>(4 + repeated)}};
                EXPECT_EQ(repetitions(text), expected)
                    << rows << " rows, width " << width << ", row " << repeated;
            }
        }
    }
}

TEST(CifLoopKeys, ValuesTheQuickLookCannotTellApartByTheirBytesGoToTheFullCheck) {
    // Reflection indices are compared as numbers, so other spellings of the
    // same integer repeat a reflection; unknown values identify nothing,
    // quoted they are values; a site-symmetry "." is the identity.
    std::string filler;
    for (int h = 10; h < 40; ++h) filler += std::to_string(h) + " 5 5\n";  // rows 6 to 35
    const std::string reflections = "data_a\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n";
    const std::string bonds =
        "data_a\nloop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
        "_geom_bond_site_symmetry_2\n";
    struct Case {
        const char* what;
        std::string text;
        Messages expected;
    };
    const Case cases[] = {
        {"a leading zero", reflections + filler + "1 0 0\n01 0 0\n", {{369, 37}}},
        {"a plus sign", reflections + "1 0 0\n+1 0 0\n", {{369, 7}}},
        {"a plus sign, many rows", reflections + filler + "+1 0 0\n1 0 0\n", {{369, 37}}},
        {"minus zero", reflections + filler + "0 -0 0\n0 0 0\n", {{369, 37}}},
        {"minus one and one differ", reflections + filler + "-1 0 0\n1 0 0\n", {}},
        {"a zero alone", reflections + filler + "0 0 0\n0 0 0\n", {{369, 37}}},
        {"unknown indices", reflections + filler + "? 0 0\n? 0 0\n. 0 0\n. 0 0\n", {}},
        {"unknown labels", "data_a\nloop_\n_atom_type_symbol\n?\n?\n.\n.\n", {}},
        {"quoted unknown labels",
         "data_a\nloop_\n_atom_type_symbol\n'?'\n'?'\n'.'\n'.'\n",
         {{359, 5}, {359, 7}}},
        {"identity symmetry", bonds + "C1 C2 .\nC1 C2 .\nC1 C2 ?\nC1 C2 ?\n", {{369, 7}}},
        {"a zero-padded label is another label", "data_a\nloop_\n_atom_type_symbol\nC01\nC1\n", {}},
    };
    for (const Case& c : cases) EXPECT_EQ(repetitions(c.text), c.expected) << c.what;
}

}  // namespace
