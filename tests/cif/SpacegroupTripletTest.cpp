// SPDX-License-Identifier: MIT
// The common triplet forms read on their own give the library's operation; all else is left to it.
#include <gtest/gtest.h>

#include <gemmi/symmetry.hpp>
#include <optional>
#include <random>
#include <string>

#include "cif/SpacegroupOperators.hpp"
#include "cif/SpacegroupTriplet.hpp"

namespace {

// The library's reading of the text, wrapped; nothing when it refuses it.
std::optional<gemmi::Op> library(const std::string& text) {
    try {
        return gemmi::parse_triplet(text).wrap();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::optional<gemmi::Op> common(const std::string& text) {
    gemmi::Op op;
    if (!spacegroup_read_common_triplet(text, op)) return std::nullopt;
    return op;
}

TEST(SpacegroupTriplet, CommonFormsAreReadAsTheLibraryReadsThem) {
    const char* const texts[] = {
        "x,y,z",
        "-x,-y,-z",
        "x, -y, z+1/2",
        "1/2+x,1/2-y,-z",
        "-X+1/2, Y, -Z+3/4",
        " x , y , z ",
        "y,x,-z+1/3",
        "x-y,x,z+1/6",
        "-x+y,y,-z+5/6",
        "x+1/2,y+1/2,z+1",
        "x,y,z+0",
        "x,y,z+3/2",
        "x,y,z-1/2",
        "x+1/1,y+2/4,z",
        "x + 1/8, y - 3/8, z + 5/8",
        "2/3+x,1/3+y,1/3+z",
        "z,x,y",
        "-y,-z,-x",
        "x,y,z+1/24",
        "x+x-x,y,z",
    };
    for (const char* text : texts) {
        const std::optional<gemmi::Op> read = common(text);
        const std::optional<gemmi::Op> expected = library(text);
        ASSERT_TRUE(read.has_value()) << text;
        ASSERT_TRUE(expected.has_value()) << text;
        EXPECT_EQ(*read, *expected) << text;
        EXPECT_EQ(SpacegroupOperators::read_triplet(text), *expected) << text;
    }
}

TEST(SpacegroupTriplet, OtherFormsAreLeftToTheGeneralReadingWhichReadsOrRefusesThemAsBefore) {
    struct Case {
        const char* text;
        bool readable;
    };
    const Case cases[] = {
        {"a,b,c", true},        {"x,y,z+0.5", false},   {"x/2+x/2,y,z", true}, {"2*x-x,y,z", true},
        {"x\t,y,z", true},      {"x,_y,z", true},       {"x+1/ 2,y,z", true},  {"x,y,z+1/5", false},
        {"x,y,z+1/0", false},   {"x y,y,z", false},     {"x,y,z+", false},     {"x,y,,z", false},
        {"x,y", false},         {"x,,z", false},        {"x,x,z", false},      {"--x,y,z", false},
        {"x,y,z+1000/2", true}, {"x,y,z+1/0024", true}, {"x,y,z\n", false},    {"x,y,z 1/2", false},
    };
    for (const Case& c : cases) {
        const std::optional<gemmi::Op> read = common(c.text);
        const std::optional<gemmi::Op> expected = library(c.text);
        if (read) {
            // Taken on the fast path only when the library agrees.
            ASSERT_TRUE(expected.has_value()) << c.text;
            EXPECT_EQ(*read, *expected) << c.text;
        }
        bool readable = true;
        try {
            const gemmi::Op op = SpacegroupOperators::read_triplet(c.text);
            ASSERT_TRUE(expected.has_value()) << c.text;
            EXPECT_EQ(op, *expected) << c.text;
        } catch (const std::exception&) {
            readable = false;
        }
        EXPECT_EQ(readable, c.readable) << c.text;
    }
}

TEST(SpacegroupTriplet, RandomTextsTakenOnTheFastPathAreReadAsTheLibraryReadsThem) {
    // Pieces of triplets, common and not, strung together at random into
    // three parts (and now and then a comma more).
    const char* const pieces[] = {"x", "y", "z", "X",    "-y",   "+z", "a",  "+",    "-",
                                  "1", "2", "3", "12",   "/",    "/2", "/3", "/8",   "/5",
                                  "*", " ", "_", "+1/2", "-3/4", "0",  ".",  "1000", ","};
    std::mt19937 random(26);
    int taken = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string text;
        for (int part = 0; part < 3; ++part) {
            if (part > 0) text += ',';
            // Around the letter of the part's axis (mostly a sound operation).
            for (std::size_t i = random() % 3; i > 0; --i) text += pieces[random() % std::size(pieces)];
            text += (random() % 2 ? "-" : "+") + std::string(1, "xyz"[(part + round) % 3]);
            for (std::size_t i = random() % 3; i > 0; --i) text += pieces[random() % std::size(pieces)];
        }
        const std::optional<gemmi::Op> read = common(text);
        if (!read) continue;
        ++taken;
        const std::optional<gemmi::Op> expected = library(text);
        ASSERT_TRUE(expected.has_value()) << text;
        EXPECT_EQ(*read, *expected) << text;
    }
    EXPECT_GT(taken, 500);
}

}  // namespace
