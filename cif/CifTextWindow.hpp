// SPDX-License-Identifier: MIT
// 64 bytes of text classified at once, a bit per byte, for the reader's fast paths.
#pragma once

#include <cstdint>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The number of set bits. The base instruction set has no popcount: a
// library call would cost more than these few operations.
inline int cif_count_bits(std::uint64_t bits) {
    bits -= (bits >> 1) & 0x5555555555555555ull;
    bits = (bits & 0x3333333333333333ull) + ((bits >> 2) & 0x3333333333333333ull);
    bits = (bits + (bits >> 4)) & 0x0f0f0f0f0f0f0f0full;
    return static_cast<int>((bits * 0x0101010101010101ull) >> 56);
}

#if defined(__SSE2__)
// 64 bytes of text seen at once, bit n for byte n: white space, line ends,
// the bytes that end an unquoted word (white space, NUL, and in CIF 2.0 the
// brackets), and the usual bytes (printable ASCII, TAB and LF), for the
// check of characters and line lengths.
struct CifTextWindow {
    std::uint64_t space = 0;
    std::uint64_t newline = 0;
    std::uint64_t stop = 0;
    std::uint64_t usual = 0;

    static std::uint64_t bits(__m128i mask, int k) {
        return static_cast<std::uint64_t>(static_cast<std::uint16_t>(_mm_movemask_epi8(mask))) << (16 * k);
    }

    CifTextWindow() = default;
    CifTextWindow(const char* p, bool cif2) {
        const __m128i blank = _mm_set1_epi8(' ');
        const __m128i tab = _mm_set1_epi8('\t');
        const __m128i line_end = _mm_set1_epi8('\n');
        const __m128i nul = _mm_setzero_si128();
        for (int k = 0; k < 4; ++k) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * k));
            const __m128i line = _mm_cmpeq_epi8(bytes, line_end);
            const __m128i white =
                _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(bytes, blank), _mm_cmpeq_epi8(bytes, tab)), line);
            __m128i ends = _mm_or_si128(white, _mm_cmpeq_epi8(bytes, nul));
            if (cif2) {
                ends = _mm_or_si128(ends, _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('[')),
                                                       _mm_cmpeq_epi8(bytes, _mm_set1_epi8(']'))));
                ends = _mm_or_si128(ends, _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('{')),
                                                       _mm_cmpeq_epi8(bytes, _mm_set1_epi8('}'))));
            }
            // Printable ASCII (32-126) is what stays above a blank, signed,
            // once one is added: 127 and the bytes from 0x80 turn negative.
            const __m128i printable = _mm_cmpgt_epi8(_mm_add_epi8(bytes, _mm_set1_epi8(1)), blank);
            space |= bits(white, k);
            usual |= bits(_mm_or_si128(printable, white), k);
            newline |= bits(line, k);
            stop |= bits(ends, k);
        }
    }
};
#endif
