#pragma once
// What the HEX and S readers share: reading hexadecimal pairs at a column,
// clipping a record to the load range, and the words of a record error.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "image/Address.h"
#include "image/Module1.h"

namespace kestrum {

inline constexpr const char* kFormatError = "Format Error";
inline constexpr const char* kSumError = "SUM Error";

enum class RecordStatus { Ok, FormatError, SumError };

const char* RecordMessage(RecordStatus status);

namespace detail {
// Digit values by character; -1 marks a character that is no hexadecimal digit.
inline constexpr std::array<std::int8_t, 256> kHexDigits = [] {
  std::array<std::int8_t, 256> table{};
  for (int c = 0; c < 256; ++c)
    table[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(HexDigitValue(static_cast<char>(c)));
  return table;
}();
}  // namespace detail

// The byte written by the two characters at p; -1 unless both are hex digits.
inline int HexPairValue(const char* p) {
  const int high = detail::kHexDigits[static_cast<unsigned char>(p[0])];
  const int low = detail::kHexDigits[static_cast<unsigned char>(p[1])];
  return (high | low) < 0 ? -1 : high * 16 + low;
}

namespace detail {
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
}  // namespace detail

// Is given what a file holds instead of the image taking it: each line as
// it is read, and the address and bytes of each data record. While one
// looks on, a load stores nothing and no range clips a record.
class RecordObserver {
 public:
  virtual ~RecordObserver() = default;
  virtual void Line(std::string_view text, bool hex) = 0;  // hex: a HEX line, else an S line
  virtual void Data(Address first, const std::uint8_t* bytes, std::size_t count) = 0;
};

// Where a reader's data records go, and what they came to.
struct RecordTarget {
  Module1& m;
  RecordObserver* observer = nullptr;
  std::uint64_t dataRecords = 0;
  std::uint64_t stored = 0;  // bytes written into the image
};

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
      if (!detail::DecodeEight(text + 2 * i, bytes)) return -1;
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

// The pair at a column counted from 1; -1 when it is no pair of hex digits
// or runs past the end of the line.
inline int HexPairAt(std::string_view line, std::size_t column) {
  if (column < 1 || column + 1 > line.size()) return -1;
  return HexPairValue(line.data() + column - 1);
}

// The part of a record of n data bytes from address first that lies in
// LoadFirst..LoadLast (both inclusive). A record that is not passed over has
// its checksum tested even when it stores nothing (n of 0 or less).
struct RecordClip {
  bool passedOver = true;
  Address first = 0;  // first address to store
  Address last = -1;  // last address to store; below first when none
};

inline RecordClip ClipRecord(Address first, Address n, Address LoadFirst, Address LoadLast) {
  const Address end = first + n - 1;
  RecordClip clip;
  if (first < LoadFirst) {
    if (end < LoadFirst) return clip;
    clip.first = LoadFirst;
  } else {
    if (first > LoadLast) return clip;
    clip.first = first;
  }
  clip.last = end < LoadLast ? end : LoadLast;
  clip.passedOver = false;
  return clip;
}

// A record with a bad digit among its data: stores the bytes of clip pair
// by pair as far as the bad digit, and gives the "Format Error" that stops
// the load there. A bad digit outside the clip is met only by the checksum
// test, after all of clip is stored.
RecordStatus StoreUpToBadDigit(Module1& m, const char* data, Address record, const RecordClip& clip);

// Stores the data of a record that clip does not pass over and gives the
// sum of all its count data bytes, or -1 for a bad digit, once the bytes
// that lie before it in clip are stored. An observer is given the whole
// record instead, when all its digits are sound.
inline int StoreData(RecordTarget& target, const char* data, std::size_t count, Address record,
                     const RecordClip& clip) {
  Module1& m = target.m;
  if (target.observer) {
    std::uint8_t bytes[255];
    const int sum = DecodePairs(data, count, bytes);
    if (sum >= 0) target.observer->Data(record, bytes, count);
    return sum;
  }
  if (clip.last >= clip.first) target.stored += static_cast<std::uint64_t>(clip.last - clip.first + 1);
  if (count > 0 && clip.first == record && clip.last == record + static_cast<Address>(count) - 1) {
    const int sum = DecodePairs(data, count, &m.At(record));
    if (sum >= 0) return sum;
  } else {
    std::uint8_t bytes[255];
    const int sum = DecodePairs(data, count, bytes);
    if (sum >= 0) {
      if (clip.last >= clip.first)
        std::memcpy(&m.At(clip.first), bytes + (clip.first - record),
                    static_cast<std::size_t>(clip.last - clip.first + 1));
      return sum;
    }
  }
  StoreUpToBadDigit(m, data, record, clip);
  return -1;
}

}  // namespace kestrum
