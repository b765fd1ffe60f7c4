// The quick road through whole records against the exact reader alone:
// files that leave the road anywhere give the same image, outcome, line and
// message either way.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

#include "TestSupport.h"
#include "reading/LoadObjectFile.h"
#include "reading/QuickRecords.h"

namespace kestrum {
namespace {

std::string Pairs(std::initializer_list<unsigned> bytes, unsigned& sum) {
  std::string text;
  for (const unsigned b : bytes) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02X", b & 0xFF);
    text += pair;
    sum += b;
  }
  return text;
}

// count records of 16 bytes from address, each line ended by end.
std::string HexLines(unsigned address, int count, const char* end = "\r\n") {
  std::string text;
  for (int r = 0; r < count; ++r, address += 16) {
    unsigned sum = 0;
    text += ":" + Pairs({16, address >> 8, address, 0}, sum);
    for (unsigned i = 0; i < 16; ++i) text += Pairs({address * 7 + i * 13}, sum);
    text += Pairs({256 - (sum & 0xFF)}, sum) + end;
  }
  return text;
}

std::string SLines(unsigned address, int count, const char* end = "\r\n") {
  std::string text;
  for (int r = 0; r < count; ++r, address += 16) {
    unsigned sum = 0;
    text += "S3" + Pairs({21, address >> 24, address >> 16, address >> 8, address}, sum);
    for (unsigned i = 0; i < 16; ++i) text += Pairs({address * 5 + i * 11}, sum);
    text += Pairs({255 - (sum & 0xFF)}, sum) + end;
  }
  return text;
}

// The text with the character at position at replaced by c, or by another
// digit when c is 0.
std::string With(std::string text, std::size_t at, char c = 0) {
  text[at] = c ? c : text[at] == '0' ? '1' : '0';
  return text;
}

TEST(QuickRecords, GiveTheExactReadersResultWhereverAFileLeavesTheRoad) {
  const std::string hex = HexLines(0x100, 20), s = SLines(0x100, 20);
  const std::size_t line = 45, sLine = 48;  // characters of a line, its end included
  std::string lower = hex;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  // Each code takes the sound lines (all but those within its reach of the
  // end) and stores what the exact reader stores.
  for (const auto& [file, name] : {std::pair{hex, "a.hex"}, {s, "a.s"}}) {
    Module1 exact = test::MakeImage(0, 0xFFF);
    LoadOptions exactOnly;
    exactOnly.quick = false;
    LoadObjectBytes(exact, 0, 0xFFF, name, file, exactOnly);
    for (const QuickCode code : {QuickCode::Widest, QuickCode::Sse2, QuickCode::Pairs}) {
      Module1 m = test::MakeImage(0, 0xFFF);
      const QuickRun run = name[2] == 'h' ? QuickHexRecords(m, file, 0, 0, 0xFFF, QuickLineEnd::CrLf, code)
                                          : QuickSRecords(m, file, 0, 0xFFF, QuickLineEnd::CrLf, code);
      EXPECT_GT(run.lines, 15u) << name;
      EXPECT_EQ(std::memcmp(m.Buffer.data() + 0x100, exact.Buffer.data() + 0x100, run.lines * 16), 0) << name;
    }
  }
  const struct {
    const char* what;
    std::string name, file;
    Address loadFirst = 0, loadLast = 0xFFF;
    ReadingMode mode = ReadingMode::Window;
  } rows[] = {
      {"sound HEX", "a.hex", hex},
      {"HEX checksum", "a.hex", With(hex, 9 * line + 42)},
      {"HEX data digit", "a.hex", With(hex, 9 * line + 20, 'G')},
      {"HEX lower case", "a.hex", lower},
      {"HEX one digit more", "a.hex", hex.substr(0, 9 * line + 43) + "0" + hex.substr(9 * line + 43)},
      {"HEX count one low", "a.hex", With(hex, 9 * line + 1)},
      {"HEX clipped at both ends", "a.hex", hex, 0x108, 0x237},
      {"HEX passed over", "a.hex", hex, 0x200, 0x2FF},
      {"HEX base record between", "a.hex",
       hex.substr(0, 9 * line) + ":020000040001F9\r\n" + hex.substr(9 * line)},
      {"HEX end record between", "a.hex", hex.substr(0, 9 * line) + ":00000001FF\r\n" + hex.substr(9 * line)},
      {"HEX CR alone", "a.hex", With(hex, 9 * line + 44, '0')},
      {"HEX LF alone", "a.hex", HexLines(0x100, 20, "\n")},
      {"HEX LF alone, tolerant", "a.hex", HexLines(0x100, 20, "\n"), 0, 0xFFF, ReadingMode::Tolerant},
      {"HEX blank line, tolerant", "a.hex", hex.substr(0, 9 * line) + " \r\n" + hex.substr(9 * line), 0,
       0xFFF, ReadingMode::Tolerant},
      {"sound S", "a.s", s},
      {"S checksum", "a.s", With(s, 9 * sLine + 45)},
      {"S data digit", "a.s", With(s, 9 * sLine + 30, ':')},
      {"S header between", "a.s", s.substr(0, 9 * sLine) + "S00600004844521B\r\n" + s.substr(9 * sLine)},
      {"S type 4", "a.s", With(s, 9 * sLine + 1, '4')},
      {"S clipped", "a.s", s, 0x105, 0x1F0},
      {"S LF alone, tolerant", "a.s", SLines(0x100, 20, "\n"), 0, 0xFFF, ReadingMode::Tolerant},
  };
  for (const auto& row : rows) {
    Module1 quick = test::MakeImage(0, 0xFFF), exact = test::MakeImage(0, 0xFFF);
    LoadOptions withQuick, exactOnly;
    withQuick.mode = exactOnly.mode = row.mode;
    exactOnly.quick = false;
    const LoadReport a = LoadObjectBytes(quick, row.loadFirst, row.loadLast, row.name, row.file, withQuick);
    const LoadReport b = LoadObjectBytes(exact, row.loadFirst, row.loadLast, row.name, row.file, exactOnly);
    EXPECT_EQ(std::memcmp(quick.Buffer.data(), exact.Buffer.data(), 0x1000), 0) << row.what;
    EXPECT_EQ(a.outcome, b.outcome) << row.what;
    EXPECT_EQ(a.lines, b.lines) << row.what;
    EXPECT_EQ(a.stored, b.stored) << row.what;
    EXPECT_EQ(a.dataRecords, b.dataRecords) << row.what;
  }
}

}  // namespace
}  // namespace kestrum
