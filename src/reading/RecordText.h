#pragma once
// What the HEX and S readers share: reading hexadecimal pairs at a column,
// clipping a record to the load range, and the words of a record error.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "image/Address.h"

namespace kestrum {

inline constexpr const char* kFormatError = "Format Error";
inline constexpr const char* kSumError = "SUM Error";

enum class RecordStatus { Ok, FormatError, SumError };

const char* RecordMessage(RecordStatus status);

namespace detail {
// Digit values by character; -1 marks a character that is no hexadecimal digit.
constexpr std::array<std::int8_t, 256> kHexDigits = [] {
  std::array<std::int8_t, 256> table{};
  for (int c = 0; c < 256; ++c) table[static_cast<std::size_t>(c)] = static_cast<std::int8_t>(HexDigitValue(static_cast<char>(c)));
  return table;
}();
}  // namespace detail

// The byte written by the two characters at p; -1 unless both are hex digits.
inline int HexPairValue(const char* p) {
  const int high = detail::kHexDigits[static_cast<unsigned char>(p[0])];
  const int low = detail::kHexDigits[static_cast<unsigned char>(p[1])];
  return (high | low) < 0 ? -1 : high * 16 + low;
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

}  // namespace kestrum
