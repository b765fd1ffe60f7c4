#pragma once
// The text of HEX and S records, one rule each: hexadecimal digits, bytes as
// pairs of them both ways, the two checksums and the CR LF that ends every
// line written. The readers, the writers and the dump all go through here.
// On x86-64 the encoder is the widest vector code the processor runs,
// chosen once, at the first call.
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace kestrum {

inline constexpr char kHexDigits[] = "0123456789ABCDEF";

// Value of a hexadecimal digit, or -1 for any other character.
constexpr int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The checksum pair of a HEX record whose other pairs add up to sum: all its
// pairs then add up to 00 in their low byte. A record is sound when this of
// the sum of all its pairs is 0.
template <std::integral T>
constexpr T HexChecksum(T sum) {
  return static_cast<T>((0x100 - (sum & 0xFF)) & 0xFF);
}

// The same for an S record, whose pairs add up to FF.
template <std::integral T>
constexpr T SChecksum(T sum) {
  return static_cast<T>(0xFF - (sum & 0xFF));
}

namespace codec {
// Digit values by character; -1 marks a character that is no hexadecimal digit.
inline constexpr std::array<std::int8_t, 256> kDigitValues = [] {
  std::array<std::int8_t, 256> table{};
  for (std::size_t c = 0; c < table.size(); ++c)
    table[c] = static_cast<std::int8_t>(HexDigitValue(static_cast<char>(c)));
  return table;
}();

// The two digits of every byte value, value v at 2 * v.
inline constexpr std::array<char, 512> kPairs = [] {
  std::array<char, 512> pairs{};
  for (std::size_t v = 0; v < 256; ++v) {
    pairs[2 * v] = kHexDigits[v >> 4];
    pairs[2 * v + 1] = kHexDigits[v & 0xF];
  }
  return pairs;
}();

// Eight characters at once: their four bytes in the low 32 bits, and false
// when one of the characters is no hexadecimal digit.
inline bool DecodeEight(const char* text, std::uint32_t& bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kHigh = 0x80 * kOnes;
  std::uint64_t x;
  std::memcpy(&x, text, 8);
  const std::uint64_t y = x | 0x20 * kOnes;  // "A".."F" to "a".."f"
  // Bytes below 0x80 add these without a carry into the next byte.
  const std::uint64_t digit = (x + (0x80 - '0') * kOnes) & ~(x + (0x7F - '9') * kOnes);
  const std::uint64_t letter = (y + (0x80 - 'a') * kOnes) & ~(y + (0x7F - 'f') * kOnes);
  if (((digit | letter) & ~x & kHigh) != kHigh) return false;
  const std::uint64_t nibbles = (y & 0x0F * kOnes) + ((letter & kHigh) >> 7) * 9;
  // The first character of a pair is the high nibble.
  std::uint64_t pairs = ((nibbles << 4) | (nibbles >> 8)) & 0x00FF00FF00FF00FF;
  pairs = (pairs | (pairs >> 8)) & 0x0000FFFF0000FFFF;
  bytes = static_cast<std::uint32_t>(pairs | (pairs >> 16));
  return true;
}
}  // namespace codec

// The byte written by the two characters at p; -1 unless both are hex digits.
inline int HexPairValue(const char* p) {
  const int high = codec::kDigitValues[static_cast<unsigned char>(p[0])];
  const int low = codec::kDigitValues[static_cast<unsigned char>(p[1])];
  return (high | low) < 0 ? -1 : high * 16 + low;
}

// Reads count pairs from text into out and gives the sum of their values,
// or -1 when one of them is not a pair of hexadecimal digits. Pairs are
// written in order, so that out then holds no byte of the bad pair or
// behind it.
inline int DecodePairs(const char* text, std::size_t count, std::uint8_t* out) {
  int sum = 0;
  std::size_t i = 0;
  if constexpr (std::endian::native == std::endian::little) {
    for (; i + 4 <= count; i += 4) {
      std::uint32_t bytes;
      if (!codec::DecodeEight(text + 2 * i, bytes)) return -1;
      std::memcpy(out + i, &bytes, 4);
      sum +=
          static_cast<int>((bytes & 0xFF) + ((bytes >> 8) & 0xFF) + ((bytes >> 16) & 0xFF) + (bytes >> 24));
    }
  }
  for (; i < count; ++i) {
    const int value = HexPairValue(text + 2 * i);
    if (value < 0) return -1;
    out[i] = static_cast<std::uint8_t>(value);
    sum += value;
  }
  return sum;
}

// Writes the low byte of value as two digits and gives the position behind them.
inline char* PutHexByte(char* out, unsigned value) {
  std::memcpy(out, &codec::kPairs[2 * (value & 0xFF)], 2);
  return out + 2;
}

// The low 16 bits of value as four digits, high byte first.
inline char* PutHexWord(char* out, unsigned value) { return PutHexByte(PutHexByte(out, value >> 8), value); }

// Writes count bytes as 2 * count digits at out and gives the sum of the bytes.
unsigned EncodeHex(const std::uint8_t* bytes, std::size_t count, char* out);

// Writes count bytes as digits, moves out behind them and gives their sum.
inline unsigned PutHexBytes(char*& out, const std::uint8_t* bytes, std::size_t count) {
  const unsigned sum = EncodeHex(bytes, count, out);
  out += 2 * count;
  return sum;
}

inline char* PutLineEnd(char* out) {
  out[0] = '\r';
  out[1] = '\n';
  return out + 2;
}

// Longest line of any record written, line end included.
inline constexpr std::size_t kMaxRecordLine = 1 + 2 + 8 + 2 + 2 * 255 + 2 + 2;

// Every encoder this processor can run, by name, the chosen one first: for
// the tests, which hold each to the same text.
using HexEncoder = unsigned (*)(const std::uint8_t*, std::size_t, char*);
struct NamedHexEncoder {
  std::string_view name;
  HexEncoder encode;
};
std::vector<NamedHexEncoder> HexEncoders();

}  // namespace kestrum
