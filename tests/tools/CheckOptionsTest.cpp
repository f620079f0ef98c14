#include <gtest/gtest.h>

#include "tools/CheckOptions.hpp"

namespace {

TEST(CheckOptions, ReadsOptionsInBothFormsAndKeepsFilesInOrder) {
    CheckOptions options =
        CheckOptions::parse({"a.cif", "--json", "--line-length", "100", "-j4", "b.cif", "-"});
    EXPECT_TRUE(options.problem.empty());
    EXPECT_TRUE(options.json);
    EXPECT_EQ(options.line_length, 100);
    EXPECT_EQ(options.jobs, 4);
    EXPECT_EQ(options.files, (std::vector<std::string>{"a.cif", "b.cif", "-"}));
    options = CheckOptions::parse({"--line-length=0", "--jobs", "2", "--", "-odd.cif"});
    EXPECT_TRUE(options.problem.empty());
    EXPECT_EQ(options.line_length, 0);
    EXPECT_EQ(options.jobs, 2);
    EXPECT_EQ(options.files, std::vector<std::string>{"-odd.cif"});
}

TEST(CheckOptions, UnusableCommandLinesNameTheProblem) {
    EXPECT_EQ(CheckOptions::parse({}).problem, "no file named");
    EXPECT_EQ(CheckOptions::parse({"--frobnicate", "a.cif"}).problem, "unknown option --frobnicate");
    EXPECT_FALSE(CheckOptions::parse({"-j", "0", "a.cif"}).problem.empty());
    EXPECT_FALSE(CheckOptions::parse({"--line-length", "eighty", "a.cif"}).problem.empty());
    EXPECT_FALSE(CheckOptions::parse({"a.cif", "--line-length"}).problem.empty());
    EXPECT_TRUE(CheckOptions::parse({"--help"}).problem.empty());
    EXPECT_TRUE(CheckOptions::parse({"--help"}).help);
}

}  // namespace
