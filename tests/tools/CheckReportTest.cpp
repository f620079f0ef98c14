#include <gtest/gtest.h>

#include <sstream>

#include "tools/CheckReport.hpp"

namespace {

FileCheckResult sample() {
    FileCheckResult result;
    result.file = "dir/broken.cif";
    result.messages.emplace_back(CifError::line_too_long, 2, "", "80");
    result.messages.emplace_back(CifError::unterminated_quoted_string, 3, "'it \"x\"");
    result.warnings = 1;
    result.errors = 1;
    return result;
}

TEST(CheckReport, TextHasOneLinePerMessageAndASummary) {
    std::ostringstream out, problems;
    CheckReport report(out, problems, false);
    report.begin();
    report.add(sample());
    FileCheckResult unreadable;
    unreadable.file = "missing.cif";
    unreadable.io_problem = "No such file or directory";
    report.add(unreadable);
    report.end();
    EXPECT_EQ(out.str(),
              "dir/broken.cif:2: warning [318]: Line is longer than 80 characters\n"
              "dir/broken.cif:3: error [305]: Quoted string not terminated: 'it \"x\"\n"
              "dir/broken.cif: 1 error, 1 warning, 0 remarks\n");
    EXPECT_EQ(problems.str(), "missing.cif: cannot read: No such file or directory\n");
}

TEST(CheckReport, JsonCarriesTheSameMessagesEscaped) {
    std::ostringstream out, problems;
    CheckReport report(out, problems, true);
    report.begin();
    report.add(sample());
    report.end();
    std::string json = out.str();
    EXPECT_NE(json.find("{\"file\": \"dir/broken.cif\", \"errors\": 1, \"warnings\": 1, \"remarks\": 0"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("{\"line\": 3, \"kind\": \"error\", \"code\": 305, \"message\": \"Quoted string not "
                        "terminated: 'it \\\"x\\\"\"}"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("\"errors\": 1, \"warnings\": 1, \"remarks\": 0, \"unreadable\": 0}"),
              std::string::npos);
    EXPECT_TRUE(problems.str().empty());
    EXPECT_EQ(CheckReport::json_string(std::string("a\tb\xE9\\")), "\"a\\u0009b\\u00e9\\\\\"");
}

}  // namespace
