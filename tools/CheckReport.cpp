// SPDX-License-Identifier: MIT
// Writes tessary-check's results as text lines or as one JSON document.
#include "tools/CheckReport.hpp"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "cif/CifErrorCatalogue.hpp"

namespace {

// Appends the number in decimal (no temporary string).
void append_number(std::string& out, long number) {
    char digits[24];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, number);
    (void)error;  // 24 digits hold any long
    out.append(digits, end);
}

void append_counted(std::string& out, long count, const char* singular, const char* plural) {
    append_number(out, count);
    out += ' ';
    out += count == 1 ? singular : plural;
}

// Whether the text is printable ASCII throughout (0x20 to 0x7E), which
// terminal_text keeps as it is: eight bytes at a time, each byte's high bit
// set in a mask where it is 0x80 or above, below 0x20, or 0x7F.
bool plain(std::string_view text) {
    constexpr std::uint64_t ones = 0x0101010101010101ull, highs = 0x8080808080808080ull;
    const char* p = text.data();
    std::size_t left = text.size();
    for (; left >= 8; p += 8, left -= 8) {
        std::uint64_t x;
        std::memcpy(&x, p, 8);
        const std::uint64_t below_space = (x - 0x20 * ones) & ~x;
        const std::uint64_t del = x ^ (0x7F * ones);
        const std::uint64_t is_del = (del - ones) & ~del;
        if (((x | below_space | is_del) & highs) != 0) return false;
    }
    for (; left > 0; ++p, --left) {
        if (*p < 0x20 || *p == 0x7F) return false;  // char is signed: bytes from 0x80 are negative
    }
    return true;
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

std::string CheckReport::terminal_text(const std::string& text) {
    auto escape = [](std::string& out, unsigned code) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\u%04x", code);
        out += escaped;
    };
    std::string out;
    out.reserve(text.size());
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size;) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x80) {
            if (c < 0x20 || c == 0x7F)
                escape(out, c);
            else
                out += static_cast<char>(c);
            ++i;
            continue;
        }
        // A well-formed UTF-8 character is kept whole unless it is a C1
        // control (U+0080..U+009F); overlong forms and surrogates are not
        // well formed.
        const std::size_t length = c >= 0xF8 ? 0 : c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 0;
        unsigned code = c & (0x7Fu >> length);
        bool utf8 = length > 0 && i + length <= size;
        for (std::size_t k = 1; utf8 && k < length; ++k) {
            const auto byte = static_cast<unsigned char>(text[i + k]);
            utf8 = (byte & 0xC0) == 0x80;
            code = (code << 6) | (byte & 0x3Fu);
        }
        static const unsigned smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        utf8 = utf8 && code >= smallest[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
        if (utf8) {
            if (code <= 0x9F)
                escape(out, code);
            else
                out.append(text, i, length);
            i += length;
            continue;
        }
        // Otherwise the byte is read as Latin-1, where 0x80..0x9F are C1 controls.
        if (c <= 0x9F)
            escape(out, c);
        else
            out += static_cast<char>(c);
        ++i;
    }
    return out;
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
        problems_ << terminal_text(result.file) << ": cannot read: " << terminal_text(result.io_problem)
                  << '\n';
        return;
    }
    // Names and values come from the file: printed raw, an escape sequence in
    // a data name would drive the user's terminal. A file's lines are put
    // together first and written at once.
    const std::string file = terminal_text(result.file);
    std::string& lines = lines_;
    lines.clear();
    lines.reserve((file.size() + 96) * (result.messages.size() + 1));
    for (const CifError& message : result.messages) {
        lines += file;
        lines += ':';
        append_number(lines, message.line());
        lines += ": ";
        lines += kind_name(message.type());
        lines += " [";
        append_number(lines, message.id());
        lines += "]: ";
        const std::size_t start = lines.size();
        CifErrorCatalogue::append_format(lines, message.id(), message.text(), message.detail());
        if (!plain(std::string_view(lines).substr(start))) {
            const std::string text = lines.substr(start);
            lines.resize(start);
            lines += terminal_text(text);
        }
        lines += '\n';
    }
    lines += file;
    lines += ": ";
    append_counted(lines, result.errors, "error", "errors");
    lines += ", ";
    append_counted(lines, result.warnings, "warning", "warnings");
    lines += ", ";
    append_counted(lines, result.remarks, "remark", "remarks");
    lines += '\n';
    out_.write(lines.data(), static_cast<std::streamsize>(lines.size()));
    // A file of very many messages does not keep its room for the rest.
    if (lines.capacity() > (std::size_t(1) << 20)) std::string().swap(lines);
}

void CheckReport::end() {
    if (json_) {
        out_ << (first_ ? "]" : "\n]") << ", \"errors\": " << errors_ << ", \"warnings\": " << warnings_
             << ", \"remarks\": " << remarks_ << ", \"unreadable\": " << unreadable_ << "}\n";
    }
    out_.flush();
}
