// SPDX-License-Identifier: MIT
// The process-wide diagnostic log: debug, warning and error lines written whole to stderr.
#include "support/ORMALog.hpp"

#include <cstdlib>
#include <iostream>
#include <mutex>
#include <sstream>

namespace {

int levelFromEnvironment() {
    const char* text = std::getenv("TESSARY_LOG_LEVEL");
    if (text == nullptr || *text == '\0') return 0;
    return std::atoi(text);
}

std::mutex& sinkMutex() {
    static std::mutex mutex;
    return mutex;
}

std::ostream*& sink() {
    static std::ostream* stream = &std::cerr;
    return stream;
}

// The line being composed by this thread.
std::ostringstream& pendingLine() {
    thread_local std::ostringstream line;
    return line;
}

std::ostream& startLine(const char* prefix) {
    std::ostringstream& line = pendingLine();
    line.str(std::string());
    line.clear();
    line << prefix;
    return line;
}

void endLine() {
    std::ostringstream& line = pendingLine();
    line << '\n';
    const std::string text = line.str();
    line.str(std::string());
    std::lock_guard<std::mutex> lock(sinkMutex());
    *sink() << text << std::flush;
}

}  // namespace

int ORMALog::level_ = levelFromEnvironment();
int ORMALog::minimum_level_ = 0;

std::ostream& ORMALog::start_debug_line(int n) {
    std::ostream& line = startLine("Debug");
    return line << '(' << n << "): ";
}

void ORMALog::end_debug_line() { endLine(); }

std::ostream& ORMALog::start_warning_line() { return startLine("Warning: "); }

void ORMALog::end_warning_line() { endLine(); }

std::ostream& ORMALog::start_error_line() { return startLine("Error: "); }

void ORMALog::end_error_line() { endLine(); }

void ORMALog::set_sink(std::ostream* stream) {
    std::lock_guard<std::mutex> lock(sinkMutex());
    sink() = stream != nullptr ? stream : &std::cerr;
}
