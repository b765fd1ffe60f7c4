#include "reading/SReader.h"

#include <algorithm>
#include <string>

namespace kestrum {

namespace {

constexpr std::size_t kCountColumn = 3;
constexpr std::size_t kAddressColumn = 5;
constexpr std::uint64_t kFrameLength = 4;  // type and count

// The address field, 2 * K + 2 characters from column 5, read as the
// 8 digits of address text it gives with zeros in front.
Address RecordAddress(std::string_view text, int K) {
  const std::size_t width = 2 * static_cast<std::size_t>(K) + 2;
  const std::string_view field = text.size() > kAddressColumn - 1
                                     ? text.substr(kAddressColumn - 1, width)
                                     : std::string_view();
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

RecordStatus ReadSLine(Module1& m, const Line& line, Address LoadFirst, Address LoadLast) {
  const std::string_view text = line.text;
  if (text.size() < 2 || (text[0] != 'S' && text[0] != 's')) return RecordStatus::FormatError;
  switch (text[1]) {
    case '1':
    case '2':
    case '3':
      return LoadSRecord(m, text[1] - '0', line, LoadFirst, LoadLast);
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

RecordStatus LoadSRecord(Module1& m, int K, const Line& line, Address LoadFirst, Address LoadLast) {
  const std::string_view text = line.text;
  const int count = HexPairAt(text, kCountColumn);
  if (count < 0) return RecordStatus::FormatError;
  const Address record = RecordAddress(text, K) + m.LoadOffset;
  const Address n = count - K - 2;
  const RecordClip clip = ClipRecord(record, n, LoadFirst, LoadLast);
  if (line.length != kFrameLength + 2 * static_cast<std::uint64_t>(count) || !line.Whole())
    return RecordStatus::FormatError;
  if (clip.passedOver) return RecordStatus::Ok;

  const int checksum = HexPairAt(text, text.size() - 1);
  const char* pairs = text.data() + kCountColumn - 1;  // count, address, data
  // The count and address pairs; a bad one among them is found only when
  // the checksum is tested, after the bytes are stored.
  int sum = 0;
  bool headerRead = true;
  for (int i = 0; headerRead && i < std::min(K + 2, count); ++i) {
    const int value = HexPairValue(pairs + 2 * i);
    headerRead = value >= 0;
    sum += value;
  }
  const char* data = pairs + 2 * std::min(K + 2, count);
  if (headerRead && n > 0 && clip.first == record && clip.last == record + n - 1) {
    // The whole record lies in the range: store and add up in one pass.
    std::uint8_t* out = m.Buffer.data() + (record - m.BufFirst);
    for (Address i = 0; i < n; ++i) {
      const int value = HexPairValue(data + 2 * i);
      if (value < 0) return RecordStatus::FormatError;
      out[i] = static_cast<std::uint8_t>(value);
      sum += value;
    }
  } else {
    for (Address a = clip.first; a <= clip.last; ++a) {
      const int value = HexPairValue(data + 2 * (a - record));
      if (value < 0) return RecordStatus::FormatError;
      m.At(a) = static_cast<std::uint8_t>(value);
    }
    sum = 0;
    for (int i = 0; i < count; ++i) {
      const int value = HexPairValue(pairs + 2 * i);
      if (value < 0) return RecordStatus::FormatError;
      sum += value;
    }
  }
  if (checksum < 0) return RecordStatus::FormatError;
  return 255 - (sum & 0xFF) == checksum ? RecordStatus::Ok : RecordStatus::SumError;
}

}  // namespace kestrum
