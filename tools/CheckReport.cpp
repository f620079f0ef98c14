// SPDX-License-Identifier: MIT
// Writes tessary-check's results as text lines or as one JSON document.
#include "tools/CheckReport.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "cif/CifErrorCatalogue.hpp"

namespace {

// The writers below put text where they are told and return its end; the
// caller has made room for it.
char* put(char* at, std::string_view text) {
    std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

// The number in decimal. The numbers printed are ints (at most 11
// characters, as the room made allows); the usual small ones are written
// without a general conversion.
char* put_number(char* at, long number) {
    if (number < 0 || number >= 100000) {
        char digits[24];
        const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        return put(at, std::string_view(digits, static_cast<std::size_t>(end - digits)));
    }
    const int count = number < 10 ? 1 : number < 100 ? 2 : number < 1000 ? 3 : number < 10000 ? 4 : 5;
    // Two digits at a time from a table of the pairs "00" to "99".
    static constexpr char pairs[] =
        "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
        "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
        "8081828384858687888990919293949596979899";
    char* const end = at + count;
    char* digit = end;
    for (; number >= 100; number /= 100) {
        digit -= 2;
        std::memcpy(digit, pairs + 2 * (number % 100), 2);
    }
    if (number >= 10) {
        std::memcpy(digit - 2, pairs + 2 * number, 2);
    } else {
        digit[-1] = static_cast<char>('0' + number);
    }
    return end;
}

char* put_counted(char* at, long count, std::string_view singular, std::string_view plural) {
    at = put_number(at, count);
    *at++ = ' ';
    return put(at, count == 1 ? singular : plural);
}

std::string_view kind_text(CifError::ErrorType type) {
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

// Whether the text is printable ASCII throughout (0x20 to 0x7E), which
// terminal_text keeps as it is: eight bytes at a time, each byte's high bit
// set in a mask where it is 0x80 or above, below 0x20, or 0x7F.
bool plain_word(std::uint64_t x) {
    constexpr std::uint64_t ones = 0x0101010101010101ull, highs = 0x8080808080808080ull;
    const std::uint64_t below_space = (x - 0x20 * ones) & ~x;
    const std::uint64_t del = x ^ (0x7F * ones);
    const std::uint64_t is_del = (del - ones) & ~del;
    return ((x | below_space | is_del) & highs) == 0;
}

bool plain(std::string_view text) {
    const char* p = text.data();
    const std::size_t size = text.size();
    if (size < 8) {
        for (std::size_t i = 0; i < size; ++i) {
            if (p[i] < 0x20 || p[i] == 0x7F) return false;  // char is signed: bytes from 0x80 are negative
        }
        return true;
    }
#if defined(__SSE2__)
    if (size >= 16) {
        // Sixteen bytes at a time: as signed bytes, those from 0x80 are below 0x20 too.
        const __m128i space = _mm_set1_epi8(0x20), del = _mm_set1_epi8(0x7F);
        auto plain16 = [&](const char* at) {
            const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
            return _mm_movemask_epi8(_mm_or_si128(_mm_cmplt_epi8(x, space), _mm_cmpeq_epi8(x, del))) == 0;
        };
        for (std::size_t at = 0; at + 16 < size; at += 16) {
            if (!plain16(p + at)) return false;
        }
        // The last sixteen bytes, which may overlap bytes already looked at.
        return plain16(p + size - 16);
    }
#endif
    std::uint64_t x;
    for (std::size_t at = 0; at + 8 < size; at += 8) {
        std::memcpy(&x, p + at, 8);
        if (!plain_word(x)) return false;
    }
    // The last eight bytes, which may overlap bytes already looked at.
    std::memcpy(&x, p + size - 8, 8);
    return plain_word(x);
}

}  // namespace

std::string CheckReport::kind_name(CifError::ErrorType type) { return std::string(kind_text(type)); }

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
    std::string escaped_file;
    std::string_view file = result.file;
    if (!plain(file)) file = escaped_file = terminal_text(result.file);
    std::size_t used = 0;
    for (const CifError& message : result.messages) {
        const CifErrorMessageRuns* runs = CifErrorCatalogue::runs(message.id());
        // The file, two numbers of at most 11 characters, the kind and the punctuation.
        constexpr std::size_t frame = 2 * 11 + 11 + 8 + 1;
        const std::size_t most = file.size() + frame + (runs != nullptr ? runs->size : 20) +
                                 message.text().size() + message.detail().size();
        // put_message may move the lines to make room for an escaped message.
        const char* const end = put_message(room(used, most), file, message, runs);
        used = static_cast<std::size_t>(end - lines_.get());
    }
    char* at = room(used, file.size() + 3 * (11 + 10) + 2 * 2 + 3);
    at = put(at, file);
    at = put(at, ": ");
    at = put_counted(at, result.errors, "error", "errors");
    at = put(at, ", ");
    at = put_counted(at, result.warnings, "warning", "warnings");
    at = put(at, ", ");
    at = put_counted(at, result.remarks, "remark", "remarks");
    *at++ = '\n';
    used = static_cast<std::size_t>(at - lines_.get());
    out_.write(lines_.get(), static_cast<std::streamsize>(used));
    // A file of very many messages does not keep its room for the rest.
    if (capacity_ > (std::size_t(1) << 20)) {
        lines_.reset();
        capacity_ = 0;
    }
}

char* CheckReport::room(std::size_t used, std::size_t n) {
    if (used + n > capacity_) {
        const std::size_t capacity = std::max({std::size_t(4096), 2 * capacity_, used + n});
        std::unique_ptr<char[]> grown(new char[capacity]);
        if (used > 0) std::memcpy(grown.get(), lines_.get(), used);
        lines_ = std::move(grown);
        capacity_ = capacity;
    }
    return lines_.get() + used;
}

char* CheckReport::put_message(char* at, std::string_view file, const CifError& message,
                               const CifErrorMessageRuns* runs) {
    at = put(at, file);
    *at++ = ':';
    at = put_number(at, message.line());
    at = put(at, ": ");
    at = put(at, kind_text(message.type()));
    at = put(at, " [");
    at = put_number(at, message.id());
    at = put(at, "]: ");
    const std::string& text = message.text();
    const std::string& detail = message.detail();
    if (runs == nullptr || !plain(text) || !plain(detail)) {
        // The rare message: made as a text, escaped where it needs it.
        const std::string formatted = terminal_text(CifErrorCatalogue::format(message.id(), text, detail));
        const std::size_t used = static_cast<std::size_t>(at - lines_.get());
        at = put(room(used, formatted.size() + 1), formatted);
    } else {
        // The catalogue's messages are printable ASCII: with a plain text
        // and detail the whole line is, and needs no escapes.
        at = put(at, runs->runs[0]);
        for (int gap = 0; gap < 2 && runs->fills[gap] != 0; ++gap) {
            at = put(at, runs->fills[gap] == 1 ? text : detail);
            at = put(at, runs->runs[gap + 1]);
        }
    }
    *at++ = '\n';
    return at;
}

void CheckReport::end() {
    if (json_) {
        out_ << (first_ ? "]" : "\n]") << ", \"errors\": " << errors_ << ", \"warnings\": " << warnings_
             << ", \"remarks\": " << remarks_ << ", \"unreadable\": " << unreadable_ << "}\n";
    }
    out_.flush();
}
