#pragma once
// Bytes as upper-case hexadecimal text, two digits a byte: the one encoder
// of the record writers and the dump. On x86-64 the widest vector code the
// processor runs is chosen once, at the first call.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace kestrum {

// The two digits of every byte value, value v at 2 * v.
inline constexpr std::array<char, 512> kHexPairs = [] {
  constexpr char digits[] = "0123456789ABCDEF";
  std::array<char, 512> pairs{};
  for (int v = 0; v < 256; ++v) {
    pairs[2 * v] = digits[v >> 4];
    pairs[2 * v + 1] = digits[v & 0xF];
  }
  return pairs;
}();

// Writes the low byte of value as two digits and gives the position behind them.
inline char* PutHexByte(char* out, unsigned value) {
  std::memcpy(out, &kHexPairs[2 * (value & 0xFF)], 2);
  return out + 2;
}

// Writes count bytes as 2 * count digits at out and gives the sum of the bytes.
unsigned EncodeHex(const std::uint8_t* bytes, std::size_t count, char* out);

// Every encoder this processor can run, by name, the chosen one first: for
// the tests, which hold each to the same text.
using HexEncoder = unsigned (*)(const std::uint8_t*, std::size_t, char*);
struct NamedHexEncoder {
  std::string_view name;
  HexEncoder encode;
};
std::vector<NamedHexEncoder> HexEncoders();

}  // namespace kestrum
