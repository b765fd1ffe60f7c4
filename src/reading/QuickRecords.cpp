#include "reading/QuickRecords.h"

#include <cstring>

#include "image/RecordCodec.h"

#if defined(__x86_64__) || defined(_M_X64)
#define KESTRUM_X86_64 1
#include <immintrin.h>
#endif

namespace kestrum {

namespace {

// A record's pairs may be decoded a vector at a time past its end: the road
// stops this far before the end of the text, and leaves the rest to the
// exact reader.
constexpr std::size_t kSlack = 64;

// The length of the line end at p, if it is one this road takes, else 0.
inline std::size_t LineEndAt(const char* p, QuickLineEnd ends) {
  if (p[0] == '\r') return p[1] == '\n' ? 2 : 0;
  return ends == QuickLineEnd::CrLfOrLf && p[0] == '\n' ? 1 : 0;
}

// Copies n (1 to 255) bytes in fixed pieces, the last one overlapping the
// one before: a copy of unknown length would start the string instructions,
// whose start-up costs more than a whole record of 16 bytes.
inline void CopyShort(std::uint8_t* to, const std::uint8_t* from, std::size_t n) {
  if (n >= 16) {
    for (std::size_t i = 0; i + 16 < n; i += 16) std::memcpy(to + i, from + i, 16);
    std::memcpy(to + n - 16, from + n - 16, 16);
  } else if (n >= 8) {
    std::memcpy(to, from, 8);
    std::memcpy(to + n - 8, from + n - 8, 8);
  } else {
    for (std::size_t i = 0; i < n; ++i) to[i] = from[i];
  }
}

// Stores the n bytes of a record from address record when they lie whole in
// LoadFirst..LoadLast; false for a record the range clips or passes over.
inline bool StoreWhole(Module1& m, const std::uint8_t* data, int n, Address record, Address LoadFirst,
                       Address LoadLast, QuickRun& run) {
  if (n <= 0 || record < LoadFirst || record + n - 1 > LoadLast) return false;
  CopyShort(&m.At(record), data, static_cast<std::size_t>(n));
  run.stored += static_cast<std::uint64_t>(n);
  return true;
}

// The portable decoder; it reads nothing past the pairs.
struct Pairs {
  static int Decode(const char* text, std::size_t count, std::uint8_t* out) {
    return DecodePairs(text, count, out);
  }
};

// Where a record's pairs begin and where its data lie among them: HEX data
// records ("00"), and S1, S2 and S3 records. PairCount gives the number of
// pairs of a line this road takes, count to checksum, else -1.
struct HexRecords {
  static constexpr std::size_t kPairsAt = 1;
  static int PairCount(const char* line) {
    if (line[0] != ':' || line[7] != '0' || line[8] != '0') return -1;
    const int n = HexPairValue(line + 1);
    return n < 0 ? -1 : n + 5;
  }
  static bool Sound(int sum) { return HexChecksum(sum) == 0; }
  static int DataAt(const char*) { return 4; }
  static Address AddressOf(const std::uint8_t* pairs, const char*) { return pairs[1] * 256 + pairs[2]; }
};

struct SRecords {
  static constexpr std::size_t kPairsAt = 2;
  static int PairCount(const char* line) {
    const int K = line[1] - '0';
    if (line[0] != 'S' || K < 1 || K > 3) return -1;
    const int count = HexPairValue(line + 2);
    return count < 0 ? -1 : count + 1;
  }
  static bool Sound(int sum) { return SChecksum(sum) == 0; }
  static int DataAt(const char* line) { return line[1] - '0' + 2; }
  static Address AddressOf(const std::uint8_t* pairs, const char* line) {
    Address address = 0;
    for (int i = 1; i < DataAt(line); ++i) address = address * 256 + pairs[i];
    return address;
  }
};

// The records of one format from text while the road takes them, their
// addresses + shift, their digits decoded by Code.
template <typename Records, typename Code>
inline __attribute__((always_inline)) QuickRun Loop(Module1& m, std::string_view text, Address shift,
                                                    Address LoadFirst, Address LoadLast, QuickLineEnd ends) {
  QuickRun run;
  alignas(32) std::uint8_t pairs[4 + 255 + 1 + 32];
  for (std::size_t at = 0; at + kSlack < text.size();) {
    const char* line = text.data() + at;
    const int count = Records::PairCount(line);
    if (count < 0) break;
    const std::size_t length = Records::kPairsAt + 2 * static_cast<std::size_t>(count);
    if (at + length + kSlack > text.size()) break;
    const std::size_t end = LineEndAt(line + length, ends);
    if (end == 0) break;
    const int sum = Code::Decode(line + Records::kPairsAt, static_cast<std::size_t>(count), pairs);
    if (sum < 0 || !Records::Sound(sum)) break;
    const int data = Records::DataAt(line);
    const Address record = Records::AddressOf(pairs, line) + shift;
    if (!StoreWhole(m, pairs + data, count - data - 1, record, LoadFirst, LoadLast, run)) break;
    at += length + end;
    run.chars = at;
    ++run.lines;
  }
  return run;
}

#ifdef KESTRUM_X86_64

// Whole vectors of digits, the last one read past the pairs with the
// characters beyond them counted as sound and as 0. out takes whole vectors
// of bytes as well.
struct Sse2 {
  static inline __attribute__((always_inline)) int Decode(const char* text, std::size_t count,
                                                          std::uint8_t* out) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i index = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    __m128i sums = zero;
    const std::size_t chars = 2 * count;
    for (std::size_t i = 0; i < chars; i += 16) {
      const std::size_t left = chars - i < 16 ? chars - i : 16;
      const __m128i inside = _mm_cmplt_epi8(index, _mm_set1_epi8(static_cast<char>(left)));
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
      const __m128i digit = _mm_sub_epi8(v, _mm_set1_epi8('0'));
      const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(digit, _mm_set1_epi8(9)), digit);
      const __m128i letter = _mm_sub_epi8(_mm_or_si128(v, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
      const __m128i isLetter = _mm_cmpeq_epi8(_mm_min_epu8(letter, _mm_set1_epi8(5)), letter);
      const __m128i sound =
          _mm_or_si128(_mm_or_si128(isDigit, isLetter), _mm_andnot_si128(inside, _mm_set1_epi8(-1)));
      if (_mm_movemask_epi8(sound) != 0xFFFF) return -1;
      const __m128i nibbles = _mm_and_si128(
          inside, _mm_or_si128(_mm_and_si128(isDigit, digit),
                               _mm_and_si128(isLetter, _mm_add_epi8(letter, _mm_set1_epi8(10)))));
      const __m128i words = _mm_or_si128(_mm_slli_epi16(_mm_and_si128(nibbles, _mm_set1_epi16(0x00FF)), 4),
                                         _mm_srli_epi16(nibbles, 8));
      const __m128i bytes = _mm_packus_epi16(words, zero);
      _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i / 2), bytes);
      sums = _mm_add_epi64(sums, _mm_sad_epu8(bytes, zero));
    }
    return _mm_cvtsi128_si32(sums) + _mm_cvtsi128_si32(_mm_unpackhi_epi64(sums, sums));
  }
};

struct Avx2 {
  static inline __attribute__((target("avx2"))) int Decode(const char* text, std::size_t count,
                                                           std::uint8_t* out) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i index = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18,
                                           19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
    __m256i sums = zero;
    const std::size_t chars = 2 * count;
    for (std::size_t i = 0; i < chars; i += 32) {
      const std::size_t left = chars - i < 32 ? chars - i : 32;
      const __m256i inside = _mm256_cmpgt_epi8(_mm256_set1_epi8(static_cast<char>(left)), index);
      const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + i));
      const __m256i digit = _mm256_sub_epi8(v, _mm256_set1_epi8('0'));
      const __m256i isDigit = _mm256_cmpeq_epi8(_mm256_min_epu8(digit, _mm256_set1_epi8(9)), digit);
      const __m256i letter =
          _mm256_sub_epi8(_mm256_or_si256(v, _mm256_set1_epi8(0x20)), _mm256_set1_epi8('a'));
      const __m256i isLetter = _mm256_cmpeq_epi8(_mm256_min_epu8(letter, _mm256_set1_epi8(5)), letter);
      const __m256i sound =
          _mm256_or_si256(_mm256_or_si256(isDigit, isLetter), _mm256_xor_si256(inside, _mm256_set1_epi8(-1)));
      if (_mm256_movemask_epi8(sound) != -1) return -1;
      const __m256i nibbles = _mm256_and_si256(
          inside, _mm256_or_si256(_mm256_and_si256(isDigit, digit),
                                  _mm256_and_si256(isLetter, _mm256_add_epi8(letter, _mm256_set1_epi8(10)))));
      const __m256i words = _mm256_maddubs_epi16(nibbles, _mm256_set1_epi16(0x0110));
      const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(words, zero), 0xD8);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i / 2), _mm256_castsi256_si128(bytes));
      sums = _mm256_add_epi64(sums, _mm256_sad_epu8(bytes, zero));
    }
    const __m128i half = _mm_add_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
    return _mm_cvtsi128_si32(half) + _mm_cvtsi128_si32(_mm_unpackhi_epi64(half, half));
  }
};

template <typename Records>
__attribute__((target("avx2"), flatten)) QuickRun LoopAvx2(Module1& m, std::string_view text, Address shift,
                                                           Address LoadFirst, Address LoadLast,
                                                           QuickLineEnd ends) {
  return Loop<Records, Avx2>(m, text, shift, LoadFirst, LoadLast, ends);
}

bool HasAvx2() {
  static const bool has = [] {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
  }();
  return has;
}

#endif

template <typename Records>
QuickRun Run(Module1& m, std::string_view text, Address shift, Address LoadFirst, Address LoadLast,
             QuickLineEnd ends, QuickCode code) {
  if (code == QuickCode::Pairs) return Loop<Records, Pairs>(m, text, shift, LoadFirst, LoadLast, ends);
#ifdef KESTRUM_X86_64
  if (code == QuickCode::Widest && HasAvx2())
    return LoopAvx2<Records>(m, text, shift, LoadFirst, LoadLast, ends);
  return Loop<Records, Sse2>(m, text, shift, LoadFirst, LoadLast, ends);
#else
  return Loop<Records, Pairs>(m, text, shift, LoadFirst, LoadLast, ends);
#endif
}

}  // namespace

QuickRun QuickHexRecords(Module1& m, std::string_view text, Address base, Address LoadFirst, Address LoadLast,
                         QuickLineEnd ends, QuickCode code) {
  return Run<HexRecords>(m, text, base + m.LoadOffset, LoadFirst, LoadLast, ends, code);
}

QuickRun QuickSRecords(Module1& m, std::string_view text, Address LoadFirst, Address LoadLast,
                       QuickLineEnd ends, QuickCode code) {
  return Run<SRecords>(m, text, m.LoadOffset, LoadFirst, LoadLast, ends, code);
}

}  // namespace kestrum
