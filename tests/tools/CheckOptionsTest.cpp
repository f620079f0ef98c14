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

TEST(CheckOptions, DictionariesMandatoryItemsAndConsistencyChecks) {
    CheckOptions options = CheckOptions::parse(
        {"-d", "core.dic", "-dlocal.dic", "--dictionary=third.dic", "--dictionary", "fourth.dic", "a.cif"});
    EXPECT_TRUE(options.problem.empty());
    EXPECT_EQ(options.dictionaries,
              (std::vector<std::string>{"core.dic", "local.dic", "third.dic", "fourth.dic"}));
    EXPECT_TRUE(options.consistency);
    EXPECT_TRUE(options.mandatory_file.empty());
    options = CheckOptions::parse({"--mandatory", "items.txt", "--no-consistency", "a.cif"});
    EXPECT_EQ(options.mandatory_file, "items.txt");
    EXPECT_FALSE(options.consistency);
    EXPECT_TRUE(options.dictionaries.empty());
    EXPECT_FALSE(CheckOptions::parse({"a.cif", "-d"}).problem.empty());
    EXPECT_FALSE(CheckOptions::parse({"--dictionary=", "a.cif"}).problem.empty());
    EXPECT_FALSE(CheckOptions::parse({"a.cif", "--mandatory"}).problem.empty());
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
