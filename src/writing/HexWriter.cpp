// Intel HEX: data records (00) of RecordLength bytes, a segment (02) or
// linear (04) base record where the upper half of the address changes, and
// the end record.
#include <cstdint>

#include "image/RecordCodec.h"
#include "writing/OutputFile.h"
#include "writing/WriterSupport.h"
#include "writing/Writers.h"

namespace kestrum {

namespace {

constexpr char kEndOfFile[] = ":00000001FF\r\n";
constexpr Address kSegmentLimit = 16;  // upper halves below it fit a segment base

// The base record for upper half u. Below 00100000 a segment base: u * 1000
// hexadecimal, the same base u * 65536.
char* PutBase(char* out, unsigned upper) {
  std::memcpy(out, ":020000", 7);
  out += 7;
  unsigned sum;
  if (upper < kSegmentLimit) {
    out = PutHexByte(out, 0x02);
    out = PutHexWord(out, upper << 12);
    sum = 2 + 2 + (upper << 4);
  } else {
    out = PutHexByte(out, 0x04);
    out = PutHexWord(out, upper);
    sum = 2 + 4 + (upper >> 8) + (upper & 0xFF);
  }
  out = PutHexByte(out, HexChecksum(sum));
  return PutLineEnd(out);
}

}  // namespace

Outcome SaveHexFile(Module1& m, const std::string& FileName, const WriteOptions& options) {
  if (!RecordLengthFits(m)) return Outcome::Refuse(kRecordLengthOutside);
  OutputFile file = OutputFile::Create(FileName);
  if (!file.ok()) return FileFailure(file);
  TextOutput text(file);

  const Address length = m.RecordLength;
  Address address = m.SaveFirst;
  unsigned upper = static_cast<unsigned>(address >> 16);
  if (upper != 0) {
    char* room = text.Room(kMaxRecordLine);
    if (!room) return FileFailure(file);
    text.Used(PutBase(room, upper));
  }
  RangeProgress progress(m, options);
  while (address <= m.SaveLast) {
    progress.At(address);
    char* out = text.Room(2 * kMaxRecordLine);
    if (!out) return FileFailure(file);
    // A record never exceeds 255 bytes, so it passes at most one boundary.
    if (static_cast<unsigned>(address >> 16) == upper + 1) {
      ++upper;
      out = PutBase(out, upper);
    }
    const unsigned offset = static_cast<unsigned>(address - (Address{upper} << 16));
    const unsigned n =
        static_cast<unsigned>(address + length - 1 <= m.BufLast ? length : m.BufLast - address + 1);
    *out++ = ':';
    out = PutHexByte(out, n);
    out = PutHexWord(out, offset);
    out = PutHexByte(out, 0x00);
    unsigned sum = PutHexBytes(out, &m.At(address), n);
    sum += (offset >> 8) + (offset & 0xFF) + n;
    out = PutHexByte(out, HexChecksum(sum));
    text.Used(PutLineEnd(out));
    address += length;
  }
  if (!text.Put(kEndOfFile, sizeof kEndOfFile - 1) || !text.Flush()) return FileFailure(file);
  return Finish(file);
}

}  // namespace kestrum
