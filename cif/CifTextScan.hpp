// SPDX-License-Identifier: MIT
// Scans of CIF text sixteen bytes at a time: past spaces, to a word's end, to a closing quote.
#pragma once

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Each function reads sixteen bytes at a time while sixteen remain before
// end and returns where it stopped; where fewer remain it returns that
// place unchanged, and the caller goes on a byte at a time.

// The first byte from p on that is not a space (names and values aligned in
// columns leave long runs of them).
inline const char* cif_skip_spaces(const char* p, const char* end) {
#if defined(__SSE2__)
    const __m128i space = _mm_set1_epi8(' ');
    for (; end - p >= 16; p += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const auto same = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, space)));
        if (same != 0xFFFF) return p + std::countr_one(same);
    }
#else
    (void)end;
#endif
    return p;
}

// The first byte from p on that may end a CIF 1.1 word: white space or a NUL.
inline const char* cif_to_word_stop(const char* p, const char* end) {
#if defined(__SSE2__)
    const __m128i space = _mm_set1_epi8(' '), tab = _mm_set1_epi8('\t'), newline = _mm_set1_epi8('\n');
    const __m128i nul = _mm_setzero_si128();
    for (; end - p >= 16; p += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i stops =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, space), _mm_cmpeq_epi8(bytes, tab)),
                         _mm_or_si128(_mm_cmpeq_epi8(bytes, newline), _mm_cmpeq_epi8(bytes, nul)));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(stops));
        if (found != 0) return p + std::countr_zero(found);
    }
#else
    (void)end;
#endif
    return p;
}

// The first byte from p on that is the quote or a line end.
inline const char* cif_to_quote_or_line_end(const char* p, const char* end, char quote) {
#if defined(__SSE2__)
    const __m128i quotes = _mm_set1_epi8(quote), newline = _mm_set1_epi8('\n');
    for (; end - p >= 16; p += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const auto found = static_cast<unsigned>(
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(bytes, quotes), _mm_cmpeq_epi8(bytes, newline))));
        if (found != 0) return p + std::countr_zero(found);
    }
#else
    (void)end;
    (void)quote;
#endif
    return p;
}
