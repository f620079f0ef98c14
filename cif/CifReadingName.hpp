// SPDX-License-Identifier: MIT
// The data name of a cross-check's reading, as the block's item keeps it.
#pragma once

#include <string>
#include <string_view>
#include <utility>

// The data name of a reading as the block's item keeps it, not copied:
// readings live while the block is checked. Reads as the name's string and
// joins strings as one.
class CifReadingName {
public:
    CifReadingName() = default;
    explicit CifReadingName(const std::string& kept) : kept_(&kept) {}

    const std::string& text() const { return kept_ == nullptr ? none() : *kept_; }
    operator const std::string&() const { return text(); }

private:
    static const std::string& none() {
        static const std::string empty;
        return empty;
    }
    const std::string* kept_ = nullptr;
};

inline std::string operator+(const char* a, const CifReadingName& b) { return a + b.text(); }
inline std::string operator+(const std::string& a, const CifReadingName& b) { return a + b.text(); }
inline std::string operator+(std::string&& a, const CifReadingName& b) { return std::move(a) + b.text(); }
inline std::string operator+(const CifReadingName& a, const char* b) { return a.text() + b; }
inline std::string operator+(const CifReadingName& a, const std::string& b) { return a.text() + b; }
inline bool operator==(const CifReadingName& a, std::string_view b) { return a.text() == b; }
