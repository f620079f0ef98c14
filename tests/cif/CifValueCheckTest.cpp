// SPDX-License-Identifier: MIT
// The quick answers of the value check agree with its full check.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cif/CifValueCheck.hpp"

namespace {

using Type = CifItemDefinition::Type;
using Contents = CifItemDefinition::Contents;
using Container = CifItemDefinition::Container;

CifItemDefinition numb(const char* range, double minimum, bool has_minimum, double maximum, bool has_maximum,
                       bool uncertainty) {
    CifItemDefinition definition;
    definition.type = Type::numb;
    definition.type_text = "numb";
    definition.range_text = range;
    definition.has_range = has_minimum || has_maximum;
    definition.minimum = minimum;
    definition.has_minimum = has_minimum;
    definition.maximum = maximum;
    definition.has_maximum = has_maximum;
    definition.uncertainty =
        uncertainty ? CifItemDefinition::Uncertainty::allowed : CifItemDefinition::Uncertainty::none;
    return definition;
}

CifItemDefinition text(std::vector<std::string> permitted = {}, Contents contents = Contents::any) {
    CifItemDefinition definition;
    definition.type_text = "char";
    definition.contents = contents;
    for (std::string& value : permitted) definition.enumerations.push_back({std::move(value), {}});
    return definition;
}

std::vector<CifItemDefinition> definitions() {
    std::vector<CifItemDefinition> all{
        numb("", 0, false, 0, false, true),           // any number
        numb("0.0:", 0, true, 0, false, true),        // not negative
        numb("0.0:180.0", 0, true, 180, true, true),  // both ends
        numb("1.0:", 1, true, 0, false, false),       // above zero, no uncertainty
        numb(":10", 0, false, 10, true, true),        // a maximum only
        text(),
        text({"yes", "no"}),
        text({"Cu", "Mo"}, Contents::code),
        text({}, Contents::word),
        text({}, Contents::date),
    };
    CifItemDefinition codes = text({"S", "G", "P"});
    codes.enumeration_concatenated = true;
    all.push_back(codes);
    CifItemDefinition ranged = text();
    ranged.has_range = true;
    ranged.range_text = "b:y";
    all.push_back(ranged);
    CifItemDefinition real = numb("0.0:", 0, true, 0, false, true);
    real.contents = Contents::real;
    all.push_back(real);
    CifItemDefinition integer = numb("", 0, false, 0, false, false);
    integer.contents = Contents::integer;
    all.push_back(integer);
    CifItemDefinition list = numb("", 0, false, 0, false, true);
    list.container = Container::list;
    all.push_back(list);
    CifItemDefinition empty;
    empty.type = Type::null;
    all.push_back(empty);
    return all;
}

const std::vector<std::string> values{
    "1.234(5)", "-1.5",      "0",          "180.0",      "180.1(1)", "180.4(1)", "1e3",   "+2.",
    ".5",       "10,234",    "1.2(x)",     "1.2(3",      "abc",      "?",        ".",     "yes",
    "Yes",      "no ",       "cu",         "Mo",         "SG",       "SX",       "a",     "c",
    "z",        "two words", "2026-11-25", "2026-13-01", "",         "12(3)",    "[1 2]", "-0.0(1)",
    "0.99",     "1",         "1(1)",       "9.99(1)",    "10.02(1)", "11",       "-"};

}  // namespace

// A value that passes quickly has no problem in the full check, quoted or not;
// and the common values pass quickly, so that the quick way is taken at all.
TEST(CifValueCheck, AQuickPassIsNeverAProblemTheFullCheckFinds) {
    for (const CifItemDefinition& definition : definitions()) {
        for (const std::string& value : values) {
            for (const bool quoted : {false, true}) {
                if (!CifValueCheck::passes(definition, value, quoted)) continue;
                const CifValueCheck::Result result = CifValueCheck::check(definition, value, quoted);
                EXPECT_EQ(result.code, 0) << definition.range_text << " " << definition.type_text << " '"
                                          << value << "' quoted " << quoted;
            }
            if (CifValueCheck::accepts_every_value(definition)) {
                EXPECT_FALSE(CifValueCheck::check(definition, value, false)) << value;
                EXPECT_TRUE(CifValueCheck::passes(definition, value, false)) << value;
            }
        }
    }
    const std::vector<CifItemDefinition> all = definitions();
    struct Case {
        std::size_t definition;
        const char* value;
    };
    for (const Case& c : {Case{0, "1.234(5)"}, Case{1, "0.5"}, Case{2, "180.1(1)"}, Case{4, "10.02(1)"},
                          Case{5, "two words"}, Case{6, "yes"}, Case{12, "1.5"}, Case{15, "x"}})
        EXPECT_TRUE(CifValueCheck::passes(all[c.definition], c.value)) << c.definition << " " << c.value;
    for (const std::size_t plain : {5, 15}) EXPECT_TRUE(CifValueCheck::accepts_every_value(all[plain]));
    for (const std::size_t other : {0, 6, 9, 11, 14})
        EXPECT_FALSE(CifValueCheck::accepts_every_value(all[other]));
}
