#pragma once
// The pieces every text record is made of: bytes as two upper-case digits
// and the CR LF that ends each line.
#include <cstdint>

#include "image/HexCodec.h"

namespace kestrum::records {

// Writes the byte value as two digits and gives the position behind them.
inline char* PutByte(char* out, unsigned value) { return PutHexByte(out, value); }

inline char* PutWord(char* out, unsigned value) { return PutByte(PutByte(out, value >> 8), value); }

inline char* PutLineEnd(char* out) {
  out[0] = '\r';
  out[1] = '\n';
  return out + 2;
}

// Writes count bytes as digits, moves out behind them and gives their sum.
inline unsigned PutBytes(char*& out, const std::uint8_t* bytes, unsigned count) {
  const unsigned sum = EncodeHex(bytes, count, out);
  out += 2 * count;
  return sum;
}

// Longest line of any record, line end included.
inline constexpr std::size_t kMaxLine = 1 + 2 + 8 + 2 + 2 * 255 + 2 + 2;

}  // namespace kestrum::records
