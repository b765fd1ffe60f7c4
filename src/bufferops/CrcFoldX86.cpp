// The carry-less fold on x86-64 processors with PCLMULQDQ, chosen at run
// time, so that the program still runs where the instruction is missing.
#if defined(__x86_64__) || defined(_M_X64)

#include <immintrin.h>

#include "bufferops/CrcFold.h"

namespace kestrum::crcfold {

namespace {

#define KESTRUM_CLMUL __attribute__((target("pclmul,ssse3")))

// acc times x^distance, modulo the generator up to congruence, plus next.
KESTRUM_CLMUL inline __m128i FoldInto(__m128i acc, __m128i k, __m128i next) {
  const __m128i low = _mm_clmulepi64_si128(acc, k, 0x00);
  const __m128i high = _mm_clmulepi64_si128(acc, k, 0x11);
  return _mm_xor_si128(_mm_xor_si128(low, high), next);
}

// 16 bytes as a polynomial: as they lie for a reflected CRC, byte-reversed
// for a normal one so that the first byte holds the highest terms.
template <bool kReflected>
KESTRUM_CLMUL inline __m128i Load(const std::uint8_t* p) {
  const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
  if constexpr (kReflected)
    return v;
  else
    return _mm_shuffle_epi8(v, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}

template <bool kReflected>
KESTRUM_CLMUL void FoldBlocks(const Crc::FoldConstants& k, std::uint64_t reg, const std::uint8_t* p,
                              std::size_t n, std::uint8_t rest[16]) {
  const __m128i by4 = _mm_set_epi64x(static_cast<long long>(k.by4High), static_cast<long long>(k.by4Low));
  const __m128i by1 = _mm_set_epi64x(static_cast<long long>(k.by1High), static_cast<long long>(k.by1Low));
  const long long r = static_cast<long long>(reg);
  __m128i x0 = _mm_xor_si128(Load<kReflected>(p), kReflected ? _mm_set_epi64x(0, r) : _mm_set_epi64x(r, 0));
  __m128i x1 = Load<kReflected>(p + 16), x2 = Load<kReflected>(p + 32), x3 = Load<kReflected>(p + 48);
  for (std::size_t at = 64; at < n; at += 64) {
    x0 = FoldInto(x0, by4, Load<kReflected>(p + at));
    x1 = FoldInto(x1, by4, Load<kReflected>(p + at + 16));
    x2 = FoldInto(x2, by4, Load<kReflected>(p + at + 32));
    x3 = FoldInto(x3, by4, Load<kReflected>(p + at + 48));
  }
  x3 = FoldInto(FoldInto(FoldInto(x0, by1, x1), by1, x2), by1, x3);
  if constexpr (!kReflected)
    x3 = _mm_shuffle_epi8(x3, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(rest), x3);
}

}  // namespace

bool Available() { return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3"); }

void Fold(const Crc::FoldConstants& k, bool reflected, std::uint64_t reg, const std::uint8_t* p,
          std::size_t n, std::uint8_t rest[16]) {
  if (reflected)
    FoldBlocks<true>(k, reg, p, n, rest);
  else
    FoldBlocks<false>(k, reg, p, n, rest);
}

}  // namespace kestrum::crcfold

#endif
