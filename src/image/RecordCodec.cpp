#include "image/RecordCodec.h"

#if defined(__x86_64__) || defined(_M_X64)
#define KESTRUM_X86_64 1
#include <immintrin.h>
#endif

namespace kestrum {

namespace {

unsigned EncodeByTable(const std::uint8_t* bytes, std::size_t count, char* out) {
  unsigned sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    out = PutHexByte(out, bytes[i]);
    sum += bytes[i];
  }
  return sum;
}

#ifdef KESTRUM_X86_64

// The sum of the 16 bytes counted in each 64-bit half of sums.
unsigned Total(__m128i sums) {
  return static_cast<unsigned>(_mm_cvtsi128_si32(sums)) +
         static_cast<unsigned>(_mm_cvtsi128_si32(_mm_unpackhi_epi64(sums, sums)));
}

// Sixteen bytes at a time, then eight for what is left of a record: split
// into nibbles, high before low, and turn each into its digit by Digits.
template <typename Digits>
inline __attribute__((always_inline)) unsigned EncodeBy128(const std::uint8_t* bytes, std::size_t count,
                                                           char* out) {
  const __m128i zero = _mm_setzero_si128(), lowNibble = _mm_set1_epi8(0x0F);
  __m128i sums = zero;
  std::size_t i = 0;
  for (; i + 16 <= count; i += 16, out += 32) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    sums = _mm_add_epi64(sums, _mm_sad_epu8(v, zero));
    const __m128i high = _mm_and_si128(_mm_srli_epi16(v, 4), lowNibble), low = _mm_and_si128(v, lowNibble);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), Digits::Of(_mm_unpacklo_epi8(high, low)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 16), Digits::Of(_mm_unpackhi_epi8(high, low)));
  }
  if (i + 8 <= count) {
    const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes + i));
    sums = _mm_add_epi64(sums, _mm_sad_epu8(v, zero));
    const __m128i high = _mm_and_si128(_mm_srli_epi16(v, 4), lowNibble), low = _mm_and_si128(v, lowNibble);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), Digits::Of(_mm_unpacklo_epi8(high, low)));
    i += 8;
    out += 16;
  }
  return Total(sums) + EncodeByTable(bytes + i, count - i, out);
}

// A digit by comparing the nibble with 9.
struct CompareDigits {
  static inline __attribute__((always_inline)) __m128i Of(__m128i nibbles) {
    const __m128i letters =
        _mm_and_si128(_mm_cmpgt_epi8(nibbles, _mm_set1_epi8(9)), _mm_set1_epi8('A' - '0' - 10));
    return _mm_add_epi8(_mm_add_epi8(nibbles, _mm_set1_epi8('0')), letters);
  }
};

// A digit looked up by a byte shuffle.
struct ShuffleDigits {
  static inline __attribute__((target("ssse3"))) __m128i Of(__m128i nibbles) {
    const __m128i table = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kHexDigits));
    return _mm_shuffle_epi8(table, nibbles);
  }
};

unsigned EncodeSse2(const std::uint8_t* bytes, std::size_t count, char* out) {
  return EncodeBy128<CompareDigits>(bytes, count, out);
}

__attribute__((target("ssse3"), flatten)) unsigned EncodeSsse3(const std::uint8_t* bytes, std::size_t count,
                                                               char* out) {
  return EncodeBy128<ShuffleDigits>(bytes, count, out);
}

// Thirty-two bytes at a time; the 16-byte lanes keep their bytes apart, so
// the two halves of each lane's digits are put back in order when stored.
__attribute__((target("avx2"))) unsigned EncodeAvx2(const std::uint8_t* bytes, std::size_t count, char* out) {
  const __m256i zero = _mm256_setzero_si256(), lowNibble = _mm256_set1_epi8(0x0F);
  const __m256i table =
      _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kHexDigits)));
  __m256i sums = zero;
  std::size_t i = 0;
  for (; i + 32 <= count; i += 32, out += 64) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes + i));
    sums = _mm256_add_epi64(sums, _mm256_sad_epu8(v, zero));
    const __m256i high = _mm256_and_si256(_mm256_srli_epi16(v, 4), lowNibble);
    const __m256i low = _mm256_and_si256(v, lowNibble);
    const __m256i first = _mm256_shuffle_epi8(table, _mm256_unpacklo_epi8(high, low));
    const __m256i second = _mm256_shuffle_epi8(table, _mm256_unpackhi_epi8(high, low));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_permute2x128_si256(first, second, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 32), _mm256_permute2x128_si256(first, second, 0x31));
  }
  const __m128i half = _mm_add_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
  return Total(half) + EncodeSsse3(bytes + i, count - i, out);
}

#endif

HexEncoder Chosen() {
#ifdef KESTRUM_X86_64
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx2")) return EncodeAvx2;
  if (__builtin_cpu_supports("ssse3")) return EncodeSsse3;
  return EncodeSse2;
#else
  return EncodeByTable;
#endif
}

}  // namespace

unsigned EncodeHex(const std::uint8_t* bytes, std::size_t count, char* out) {
  static const HexEncoder encode = Chosen();
  return encode(bytes, count, out);
}

std::vector<NamedHexEncoder> HexEncoders() {
  std::vector<NamedHexEncoder> all;
#ifdef KESTRUM_X86_64
  if (__builtin_cpu_supports("avx2")) all.push_back({"avx2", EncodeAvx2});
  if (__builtin_cpu_supports("ssse3")) all.push_back({"ssse3", EncodeSsse3});
  all.push_back({"sse2", EncodeSse2});
#endif
  all.push_back({"table", EncodeByTable});
  return all;
}

}  // namespace kestrum
