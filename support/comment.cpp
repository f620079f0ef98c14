// SPDX-License-Identifier: MIT
// Turning text into comment lines and back.
#include "support/comment.hpp"

void comment(const std::string& text, std::vector<std::string>& out, const std::string& first_prefix,
             const std::string& next_prefix, const std::string& suffix, const std::string& marker,
             std::size_t width, const std::string& break_chars) {
    std::size_t start = 0;
    bool first = true;
    do {
        const std::string head = marker + (first ? first_prefix : next_prefix);
        const std::size_t fixed = head.size() + suffix.size();
        // At least one character of text per line, whatever the width.
        const std::size_t room = width > fixed ? width - fixed : 1;
        std::size_t length = text.size() - start;
        if (length > room) {
            // Break after the last break character that keeps the line within the width.
            const std::size_t found = text.find_last_of(break_chars, start + room - 1);
            length = (found != std::string::npos && found >= start) ? found - start + 1 : room;
        }
        out.push_back(head + text.substr(start, length) + suffix);
        start += length;
        first = false;
    } while (start < text.size());
}

void uncomment(const std::string& line, std::vector<std::string>& out, const std::string& marker,
               const std::string& prefix) {
    const std::size_t at = line.find_first_not_of(" \t");
    if (marker.empty() || at == std::string::npos || line.compare(at, marker.size(), marker) != 0) {
        out.push_back(line);
        return;
    }
    std::size_t rest = at + marker.size();
    if (!prefix.empty() && line.compare(rest, prefix.size(), prefix) == 0) rest += prefix.size();
    out.push_back(line.substr(0, at) + line.substr(rest));
}
