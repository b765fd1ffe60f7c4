// YSM: one of the three sums of the range as an S3 record at address 0,
// followed by two fixed lines.
#include <string>

#include "bufferops/Sum.h"
#include "image/Address.h"
#include "writing/OutputFile.h"
#include "writing/RecordText.h"
#include "writing/WriterSupport.h"
#include "writing/Writers.h"

namespace kestrum {

namespace {

constexpr char kFixedLines[] = "S3060000000001F8\r\nS70500000000FA\r\n";

// Line 1 for a sum of width bytes: the count is the 4 zero address bytes,
// the sum and the checksum.
std::string SumLine(int sum, int width) {
  const unsigned count = 4 + static_cast<unsigned>(width) + 1;
  char line[32];
  char* out = line;
  *out++ = 'S';
  *out++ = '3';
  out = records::PutByte(out, count);
  for (int i = 0; i < 4; ++i) out = records::PutByte(out, 0);
  unsigned x = count;
  if (width == 2) {
    out = records::PutWord(out, static_cast<unsigned>(sum));
    x += static_cast<unsigned>(sum >> 8) + static_cast<unsigned>(sum & 0xFF);
  } else {
    out = records::PutByte(out, static_cast<unsigned>(sum));
    x += static_cast<unsigned>(sum);
  }
  out = records::PutByte(out, 255 - (x & 0xFF));
  out = records::PutLineEnd(out);
  return std::string(line, out);
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
