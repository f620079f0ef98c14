#pragma once

#include <string>

#include "tools/FileCheckResult.hpp"

// Reads one file (or standard input for "-") into a document and collects
// its messages.
class FileCheck {
public:
    explicit FileCheck(int line_length) : line_length_(line_length) {}

    FileCheckResult check(const std::string& file) const;

private:
    int line_length_;
};
