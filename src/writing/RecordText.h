#pragma once
// The pieces every text record is made of: bytes as two upper-case digits
// and the CR LF that ends each line.
#include <array>
#include <cstdint>
#include <cstring>

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
  char* p = out;
  for (unsigned i = 0; i < count; ++i) {
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
