// SPDX-License-Identifier: MIT
// Writes tessary-check's results as text lines or as one JSON document.
#include "tools/CheckReport.hpp"

#include <cstdio>

namespace {

std::string counted(long count, const char* singular, const char* plural) {
    return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

}  // namespace

std::string CheckReport::kind_name(CifError::ErrorType type) {
    switch (type) {
        case CifError::remark:
            return "remark";
        case CifError::warning:
            return "warning";
        case CifError::error:
            return "error";
        default:
            return "information";
    }
}

std::string CheckReport::json_string(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c >= 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", c);
            out += escape;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

void CheckReport::begin() {
    if (json_) out_ << "{\"files\": [";
}

void CheckReport::add(const FileCheckResult& result) {
    errors_ += result.errors;
    warnings_ += result.warnings;
    remarks_ += result.remarks;
    if (!result.io_problem.empty()) ++unreadable_;
    if (json_) {
        out_ << (first_ ? "\n" : ",\n") << "  {\"file\": " << json_string(result.file);
        first_ = false;
        if (!result.io_problem.empty()) {
            out_ << ", \"io_error\": " << json_string(result.io_problem) << "}";
            return;
        }
        out_ << ", \"errors\": " << result.errors << ", \"warnings\": " << result.warnings
             << ", \"remarks\": " << result.remarks << ", \"messages\": [";
        bool first_message = true;
        for (const CifError& message : result.messages) {
            out_ << (first_message ? "\n" : ",\n") << "    {\"line\": " << message.line()
                 << ", \"kind\": " << json_string(kind_name(message.type())) << ", \"code\": " << message.id()
                 << ", \"message\": " << json_string(message.message())
                 << ", \"item\": " << json_string(message.text())
                 << ", \"detail\": " << json_string(message.detail()) << "}";
            first_message = false;
        }
        out_ << (first_message ? "]}" : "\n  ]}");
        return;
    }
    if (!result.io_problem.empty()) {
        problems_ << result.file << ": cannot read: " << result.io_problem << '\n';
        return;
    }
    for (const CifError& message : result.messages) {
        out_ << result.file << ':' << message.line() << ": " << kind_name(message.type()) << " ["
             << message.id() << "]: " << message.message() << '\n';
    }
    out_ << result.file << ": " << counted(result.errors, "error", "errors") << ", "
         << counted(result.warnings, "warning", "warnings") << ", "
         << counted(result.remarks, "remark", "remarks") << '\n';
}

void CheckReport::end() {
    if (json_) {
        out_ << (first_ ? "]" : "\n]") << ", \"errors\": " << errors_ << ", \"warnings\": " << warnings_
             << ", \"remarks\": " << remarks_ << ", \"unreadable\": " << unreadable_ << "}\n";
    }
    out_.flush();
}
