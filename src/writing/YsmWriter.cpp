// YSM: one of the three sums of the range as an S3 record at address 0,
// followed by two fixed lines.
#include <string>

#include "bufferops/Sum.h"
#include "image/Address.h"
#include "image/RecordCodec.h"
#include "writing/OutputFile.h"
#include "writing/WriterSupport.h"
#include "writing/Writers.h"

namespace kestrum {

namespace {

constexpr char kFixedLines[] = "S3060000000001F8\r\nS70500000000FA\r\n";

// Line 1 for a sum of width bytes: the count is the 4 zero address bytes,
// the sum (high byte first) and the checksum.
std::string SumLine(int sum, int width) {
  const std::size_t n = 4 + static_cast<std::size_t>(width);
  std::uint8_t bytes[6] = {};
  bytes[4] = static_cast<std::uint8_t>(sum >> 8);
  bytes[n - 1] = static_cast<std::uint8_t>(sum);
  const unsigned count = static_cast<unsigned>(n) + 1;
  char line[32] = {'S', '3'};
  char* out = PutHexByte(line + 2, count);
  const unsigned total = count + PutHexBytes(out, bytes, n);
  return std::string(line, PutLineEnd(PutHexByte(out, SChecksum(total))));
}

}  // namespace

Outcome SaveYsmFile(Module1& m, const std::string& FileName, SumKind sum) {
  OutputFile file = OutputFile::Create(FileName);
  if (!file.ok()) return FileFailure(file);
  const Sums sums = SumRange(m, m.SaveFirst, m.SaveLast);
  std::string content;
  switch (sum) {
    case SumKind::Sum8_8:
      content = SumLine(sums.sum8_8, 1);
      break;
    case SumKind::Sum8_16:
      content = SumLine(sums.sum8_16, 2);
      break;
    case SumKind::Sum16_16:
      content = SumLine(sums.sum16_16, 2);
      break;
  }
  content += kFixedLines;
  if (!file.Write(content.data(), content.size())) return FileFailure(file);
  return Finish(file);
}

}  // namespace kestrum
