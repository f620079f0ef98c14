// SPDX-License-Identifier: MIT
// The diagnostic log: which debug lines are wanted, and lines written whole.
#include <gtest/gtest.h>

#include <sstream>

#include "support/ORMALog.hpp"

namespace {

class ORMALogTest : public ::testing::Test {
protected:
    void SetUp() override {
        savedLevel_ = ORMALog::level_;
        savedMinimum_ = ORMALog::minimum_level_;
        ORMALog::set_sink(&out_);
    }
    void TearDown() override {
        ORMALog::set_sink(nullptr);
        ORMALog::level_ = savedLevel_;
        ORMALog::minimum_level_ = savedMinimum_;
    }
    std::ostringstream out_;
    int savedLevel_ = 0;
    int savedMinimum_ = 0;
};

TEST_F(ORMALogTest, DebugLineWantedOnlyBetweenMinimumAndLevel) {
    ORMALog::level_ = 2;
    ORMALog::minimum_level_ = 2;
    EXPECT_FALSE(ORMALog::wants(1));  // below the minimum
    EXPECT_TRUE(ORMALog::wants(2));
    EXPECT_FALSE(ORMALog::wants(3));  // above the level
    ORMALog::level_ = 0;
    ORMALog::minimum_level_ = 0;
    EXPECT_FALSE(ORMALog::wants(1));
}

TEST_F(ORMALogTest, LinesAreWrittenWholeWithTheirKind) {
    ORMALog::start_debug_line(3) << "QcbsApplication::showSplash " << 42;
    ORMALog::end_debug_line();
    ORMALog::start_error_line() << "broken";
    ORMALog::end_error_line();
    ORMALog::start_warning_line() << "odd";
    ORMALog::end_warning_line();
    EXPECT_EQ(out_.str(), "Debug(3): QcbsApplication::showSplash 42\nError: broken\nWarning: odd\n");
}

TEST_F(ORMALogTest, StartingALineDiscardsAnUnfinishedOne) {
    ORMALog::start_debug_line(1) << "never ended";
    ORMALog::start_error_line() << "second";
    ORMALog::end_error_line();
    EXPECT_EQ(out_.str(), "Error: second\n");
}

}  // namespace
