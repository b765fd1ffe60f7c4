#include "reading/HexReader.h"

namespace kestrum {

namespace {

// Columns, counted from 1, and sizes of a record.
constexpr std::size_t kCountColumn = 2;
constexpr std::size_t kAddressColumn = 4;
constexpr std::size_t kTypeColumn = 8;
constexpr std::size_t kDataColumn = 10;
constexpr std::uint64_t kFrameLength = 11;  // mark, count, address, type, checksum

constexpr int kData = 0x00;
constexpr int kExtendedSegment = 0x02;
constexpr int kExtendedLinear = 0x04;

}  // namespace

RecordStatus HexReader::ReadLine(RecordTarget& target, const Line& line, Address LoadFirst,
                                 Address LoadLast) {
  const std::string_view text = line.text;
  const int count = HexPairAt(text, kCountColumn);
  if (count < 0 || line.length != kFrameLength + 2 * static_cast<std::uint64_t>(count) || !line.Whole())
    return RecordStatus::FormatError;
  const int checksum = HexPairAt(text, text.size() - 1);
  if (checksum < 0) return RecordStatus::FormatError;

  // The type is text: "0A" or "1X" are types the reader passes over.
  const char t0 = text[kTypeColumn - 1], t1 = text[kTypeColumn];
  if (t0 != '0') return RecordStatus::Ok;
  switch (t1) {
    case '0':
      return DataRecord(target, text, count, LoadFirst, LoadLast, checksum);
    case '2':
      return BaseRecord(text, kExtendedSegment, 16, checksum);
    case '4':
      return BaseRecord(text, kExtendedLinear, 65536, checksum);
    default:
      return RecordStatus::Ok;
  }
}

RecordStatus HexReader::DataRecord(RecordTarget& target, std::string_view text, int count, Address LoadFirst,
                                   Address LoadLast, int checksum) {
  const int high = HexPairAt(text, kAddressColumn), low = HexPairAt(text, kAddressColumn + 2);
  if ((high | low) < 0) return RecordStatus::FormatError;
  ++target.dataRecords;
  const Address record = high * 256 + low + base_ + target.m.LoadOffset;
  const RecordClip clip = ClipRecord(record, count, LoadFirst, LoadLast);
  if (clip.passedOver) return RecordStatus::Ok;

  const int dataSum =
      StoreData(target, text.data() + kDataColumn - 1, static_cast<std::size_t>(count), record, clip);
  if (dataSum < 0) return RecordStatus::FormatError;
  const int sum = count + high + low + kData + dataSum;
  return HexChecksum(sum) == checksum ? RecordStatus::Ok : RecordStatus::SumError;
}

RecordStatus HexReader::BaseRecord(std::string_view text, int type, Address scale, int checksum) {
  // The value sits at the data columns whatever the count says; with a
  // count of 0 its second pair lies past the end of the line, a field that
  // cannot be read.
  const int high = HexPairAt(text, kDataColumn), low = HexPairAt(text, kDataColumn + 2);
  if ((high | low) < 0) return RecordStatus::FormatError;
  base_ = (high * 256 + low) * scale;
  const int count = HexPairAt(text, kCountColumn);
  const int addressHigh = HexPairAt(text, kAddressColumn), addressLow = HexPairAt(text, kAddressColumn + 2);
  if ((addressHigh | addressLow) < 0) return RecordStatus::FormatError;
  const int sum = count + addressHigh + addressLow + type + high + low;
  return HexChecksum(sum) == checksum ? RecordStatus::Ok : RecordStatus::SumError;
}

}  // namespace kestrum
