#include "reading/SReader.h"

#include <cstring>
#include <string>

namespace kestrum {

namespace {

constexpr std::size_t kCountColumn = 3;
constexpr std::size_t kAddressColumn = 5;
constexpr std::uint64_t kFrameLength = 4;  // type and count
constexpr int kMaxCount = 255;

// The address field, 2 * K + 2 characters from column 5, read as the
// 8 digits of address text it gives with zeros in front.
Address RecordAddress(std::string_view text, int K) {
  const std::size_t width = 2 * static_cast<std::size_t>(K) + 2;
  const std::string_view field =
      text.size() > kAddressColumn - 1 ? text.substr(kAddressColumn - 1, width) : std::string_view();
  Address value = 0;
  bool plain = field.size() == width;
  for (std::size_t i = 0; plain && i < width; i += 2) {
    const int pair = HexPairValue(field.data() + i);
    plain = pair >= 0;
    value = value * 256 + pair;
  }
  if (plain) return value;
  std::string padded = "000000" + std::string(field);
  return AddressFromText(std::string_view(padded).substr(padded.size() > 8 ? padded.size() - 8 : 0));
}

}  // namespace

RecordStatus ReadSLine(RecordTarget& target, const Line& line, Address LoadFirst, Address LoadLast) {
  const std::string_view text = line.text;
  if (text.size() < 2 || (text[0] != 'S' && text[0] != 's')) return RecordStatus::FormatError;
  switch (text[1]) {
    case '1':
    case '2':
    case '3':
      return LoadSRecord(target, text[1] - '0', line, LoadFirst, LoadLast);
    case '0':
    case '5':
    case '7':
    case '8':
    case '9':
      return RecordStatus::Ok;
    default:
      return RecordStatus::FormatError;
  }
}

RecordStatus LoadSRecord(RecordTarget& target, int K, const Line& line, Address LoadFirst, Address LoadLast) {
  const std::string_view text = line.text;
  const int count = HexPairAt(text, kCountColumn);
  if (count < 0) return RecordStatus::FormatError;
  // Reading the address and clipping come before the length test, yet
  // neither leaves a trace when the test fails.
  if (line.length != kFrameLength + 2 * static_cast<std::uint64_t>(count) || !line.Whole())
    return RecordStatus::FormatError;
  ++target.dataRecords;

  // The count and the address, then the data: all summed by the checksum test.
  const char* pairs = text.data() + kCountColumn - 1;
  const int headerPairs = K + 2;
  std::uint8_t header[5];
  const int headerSum =
      count >= headerPairs ? DecodePairs(pairs, static_cast<std::size_t>(headerPairs), header) : -1;
  Address address = 0;
  if (headerSum >= 0) {
    for (int i = 1; i < headerPairs; ++i) address = address * 256 + header[i];
  } else {
    address = RecordAddress(text, K);
  }
  const Address record = address + target.m.LoadOffset;
  const Address n = count - headerPairs;
  const RecordClip clip = ClipRecord(record, n, LoadFirst, LoadLast);
  if (clip.passedOver) return RecordStatus::Ok;

  int sum = -1;
  if (headerSum >= 0) {
    const int dataSum = StoreData(target, pairs + 2 * headerPairs, static_cast<std::size_t>(n), record, clip);
    if (dataSum < 0) return RecordStatus::FormatError;
    sum = headerSum + dataSum;
  } else {
    // A record too short for its address, or a bad digit in the count or
    // address: that one is met by the checksum test, after the stores.
    std::uint8_t bytes[kMaxCount];
    sum = DecodePairs(pairs, static_cast<std::size_t>(count), bytes);
    if (sum < 0) {
      if (n > 0 && !target.observer)
        StoreData(target, pairs + 2 * headerPairs, static_cast<std::size_t>(n), record, clip);
      return RecordStatus::FormatError;
    }
  }
  const int checksum = HexPairAt(text, text.size() - 1);
  if (checksum < 0) return RecordStatus::FormatError;
  return SChecksum(sum) == checksum ? RecordStatus::Ok : RecordStatus::SumError;
}

}  // namespace kestrum
