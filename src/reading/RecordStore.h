#pragma once
// What the HEX and S readers share: reading a hexadecimal pair at a column,
// clipping a record to the load range, storing its data, and the words of a
// record error.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "image/Address.h"
#include "image/Module1.h"
#include "image/RecordCodec.h"

namespace kestrum {

inline constexpr const char* kFormatError = "Format Error";
inline constexpr const char* kSumError = "SUM Error";

enum class RecordStatus { Ok, FormatError, SumError };

const char* RecordMessage(RecordStatus status);

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
// by pair as far as the bad digit, and gives how many it stored; the load
// stops there with "Format Error". A bad digit outside the clip is met only
// by the checksum test, after all of clip is stored.
std::uint64_t StoreUpToBadDigit(Module1& m, const char* data, Address record, const RecordClip& clip);

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
  const std::uint64_t size =
      clip.last >= clip.first ? static_cast<std::uint64_t>(clip.last - clip.first + 1) : 0;
  if (count > 0 && clip.first == record && clip.last == record + static_cast<Address>(count) - 1) {
    const int sum = DecodePairs(data, count, &m.At(record));
    if (sum >= 0) {
      target.stored += size;
      return sum;
    }
  } else {
    std::uint8_t bytes[255];
    const int sum = DecodePairs(data, count, bytes);
    if (sum >= 0) {
      if (size > 0)
        std::memcpy(&m.At(clip.first), bytes + (clip.first - record), static_cast<std::size_t>(size));
      target.stored += size;
      return sum;
    }
  }
  target.stored += StoreUpToBadDigit(m, data, record, clip);
  return -1;
}

}  // namespace kestrum
