#pragma once
// The pieces every text record is made of: bytes as two upper-case digits
// and the CR LF that ends each line.
#include <array>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrum::records {

inline constexpr std::array<char, 512> kHexPairs = [] {
  constexpr char digits[] = "0123456789ABCDEF";
  std::array<char, 512> pairs{};
  for (int v = 0; v < 256; ++v) {
    pairs[2 * v] = digits[v >> 4];
    pairs[2 * v + 1] = digits[v & 0xF];
  }
  return pairs;
}();

// Writes the byte value as two digits and gives the position behind them.
inline char* PutByte(char* out, unsigned value) {
  std::memcpy(out, &kHexPairs[2 * (value & 0xFF)], 2);
  return out + 2;
}

inline char* PutWord(char* out, unsigned value) { return PutByte(PutByte(out, value >> 8), value); }

inline char* PutLineEnd(char* out) {
  out[0] = '\r';
  out[1] = '\n';
  return out + 2;
}

// Writes count bytes as digits and gives their sum.
inline unsigned PutBytes(char*& out, const std::uint8_t* bytes, unsigned count) {
  unsigned sum = 0;
  unsigned i = 0;
  char* p = out;
#if defined(__SSE2__)
  // Sixteen bytes at a time: split into nibbles, interleave high and low,
  // and turn each nibble into its digit without a table.
  const __m128i zero = _mm_setzero_si128();
  const __m128i lowNibble = _mm_set1_epi8(0x0F);
  const __m128i nine = _mm_set1_epi8(9);
  const __m128i digitZero = _mm_set1_epi8('0');
  const __m128i letterGap = _mm_set1_epi8('A' - '0' - 10);
  auto digits = [&](__m128i nibbles) {
    const __m128i letters = _mm_and_si128(_mm_cmpgt_epi8(nibbles, nine), letterGap);
    return _mm_add_epi8(_mm_add_epi8(nibbles, digitZero), letters);
  };
  __m128i sums = zero;
  for (; i + 16 <= count; i += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    sums = _mm_add_epi64(sums, _mm_sad_epu8(v, zero));
    const __m128i high = _mm_and_si128(_mm_srli_epi16(v, 4), lowNibble);
    const __m128i low = _mm_and_si128(v, lowNibble);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), digits(_mm_unpacklo_epi8(high, low)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 16), digits(_mm_unpackhi_epi8(high, low)));
    p += 32;
  }
  sum = static_cast<unsigned>(_mm_cvtsi128_si32(sums)) +
        static_cast<unsigned>(_mm_cvtsi128_si32(_mm_unpackhi_epi64(sums, sums)));
#endif
  for (; i < count; ++i) {
    std::memcpy(p, &kHexPairs[2 * bytes[i]], 2);
    p += 2;
    sum += bytes[i];
  }
  out = p;
  return sum;
}

// Longest line of any record, line end included.
inline constexpr std::size_t kMaxLine = 1 + 2 + 8 + 2 + 2 * 255 + 2 + 2;

}  // namespace kestrum::records
