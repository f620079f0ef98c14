// SPDX-License-Identifier: MIT
// Counts in a formula read as the C library reads them, whole or with a point.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "cif/CifChemicalFormula.hpp"

namespace {

TEST(CifChemicalFormula, CountsAreTheCLibrarysDoublesAndMalformedOnesSpoilTheFormula) {
    struct Case {
        std::string count;  // as written after "C", before " H2"
        bool valid;
    };
    const Case cases[] = {
        {"", true},
        {"12", true},
        {"007", true},
        {"999999999999999", true},   // 15 digits
        {"9999999999999999", true},  // 16: beyond the exact whole numbers read directly
        {"12345678901234567890", true},
        {"2.5", true},
        {"0.333333333333333333", true},
        {"3.", true},
        {".5", true},
        {"123456789012345.5", true},
        {"1.2.3", false},
        {"2x", false},
    };
    for (const Case& c : cases) {
        const CifChemicalFormula formula("C" + c.count + " H2");
        ASSERT_EQ(formula.valid(), c.valid) << c.count;
        if (!c.valid) continue;
        ASSERT_EQ(formula.parts().size(), 2u) << c.count;
        const double expected = c.count.empty() ? 1.0 : std::strtod(c.count.c_str(), nullptr);
        const double read = formula.parts()[0].second;
        EXPECT_EQ(std::memcmp(&read, &expected, sizeof read), 0) << c.count << " " << read;
        EXPECT_EQ(formula.parts()[1].second, 2.0) << c.count;
    }
    // A count at the very end, and one before the next element without a blank.
    EXPECT_EQ(CifChemicalFormula("Fe3 O4").parts().back().second, 4.0);
    ASSERT_EQ(CifChemicalFormula("C6H12").parts().size(), 2u);
    EXPECT_EQ(CifChemicalFormula("C6H12").parts()[0].second, 6.0);
}

}  // namespace
