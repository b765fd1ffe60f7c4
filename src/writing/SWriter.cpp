// Motorola S: S1, S2 or S3 data records by the address of each record's
// first byte, then the fixed closing line.
#include <cstdint>

#include "image/RecordCodec.h"
#include "writing/OutputFile.h"
#include "writing/WriterSupport.h"
#include "writing/Writers.h"

namespace kestrum {

namespace {

constexpr char kClosing[] = "S9030000FC\r\n";
constexpr int kMaxCount = 255;

struct RecordType {
  char digit;        // '1', '2' or '3'
  int addressBytes;  // 2, 3 or 4
};

RecordType TypeFor(Address address) {
  if (address <= 0xFFFF) return {'1', 2};
  if (address <= 0xFFFFFF) return {'2', 3};
  return {'3', 4};
}

}  // namespace

Outcome SaveSFile(Module1& m, const std::string& FileName, const WriteOptions& options) {
  if (!RecordLengthFits(m)) return Outcome::Refuse(kRecordLengthOutside);
  OutputFile file = OutputFile::Create(FileName);
  if (!file.ok()) return FileFailure(file);
  TextOutput text(file);

  const Address length = m.RecordLength;
  RangeProgress progress(m, options);
  for (Address address = m.SaveFirst; address <= m.SaveLast; address += length) {
    progress.At(address);
    const RecordType type = TypeFor(address);
    const unsigned n =
        static_cast<unsigned>(address + length - 1 <= m.SaveLast ? length : m.SaveLast - address + 1);
    const unsigned count = n + static_cast<unsigned>(type.addressBytes) + 1;
    if (count > kMaxCount) {
      if (options.keepPartial && (!text.Flush() || !file.Commit())) return FileFailure(file);
      return Outcome::Refuse(kRecordLengthError);
    }
    char* out = text.Room(kMaxRecordLine);
    if (!out) return FileFailure(file);
    *out++ = 'S';
    *out++ = type.digit;
    out = PutHexByte(out, count);
    unsigned sum = count;
    for (int shift = 8 * (type.addressBytes - 1); shift >= 0; shift -= 8) {
      const unsigned part = static_cast<unsigned>(address >> shift) & 0xFF;
      out = PutHexByte(out, part);
      sum += part;
    }
    sum += PutHexBytes(out, &m.At(address), n);
    out = PutHexByte(out, SChecksum(sum));
    text.Used(PutLineEnd(out));
  }
  if (!text.Put(kClosing, sizeof kClosing - 1) || !text.Flush()) return FileFailure(file);
  return Finish(file);
}

}  // namespace kestrum
