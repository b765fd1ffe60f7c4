// The quick road through whole records against the exact reader alone:
// files that leave the road anywhere give the same image, outcome, line and
// message either way.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <numeric>
#include <string>

#include "TestSupport.h"
#include "image/Address.h"
#include "reading/LoadObjectFile.h"
#include "reading/QuickRecords.h"

namespace kestrum {
namespace {

// count records of 16 bytes from address, each line ended by end: HEX
// records (":" 10 aaaa 00 ...), else S3 records ("S3" 15 aaaaaaaa ...).
std::string Records(bool hex, unsigned address, int count, const char* end = "\r\n") {
  std::string text;
  for (int r = 0; r < count; ++r, address += 16) {
    std::vector<unsigned> bytes = hex ? std::vector<unsigned>{16, address >> 8, address, 0}
                                      : std::vector{21u, address >> 24, address >> 16, address >> 8, address};
    for (unsigned i = 0; i < 16; ++i) bytes.push_back(address * 7 + i * 13);
    const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0u);
    bytes.push_back((hex ? 0x100 : 0xFF) - (sum & 0xFF));  // the two's or the ones' complement
    text += hex ? ":" : "S3";
    for (const unsigned b : bytes) text += HexByteText(static_cast<int>(b & 0xFF));
    text += end;
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
  const std::string hex = Records(true, 0x100, 20), s = Records(false, 0x100, 20);
  const std::size_t line = 45, sLine = 48;  // characters of a line, its end included
  std::string lower = hex;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const auto T = ReadingMode::Tolerant;
  const struct {
    const char* what;
    std::string name, file;
    Address loadFirst = 0, loadLast = 0xFFF;
    ReadingMode mode = ReadingMode::Window;
    std::uint64_t quickLines = 0;  // at least, by each code alone
  } rows[] = {
      {"sound HEX", "a.hex", hex, 0, 0xFFF, ReadingMode::Window, 16},
      {"HEX checksum", "a.hex", With(hex, 9 * line + 42)},
      {"HEX data digit", "a.hex", With(hex, 9 * line + 20, 'G')},
      {"HEX lower case", "a.hex", lower},
      {"HEX one digit more", "a.hex", hex.substr(0, 9 * line + 43) + "0" + hex.substr(9 * line + 43)},
      {"HEX count one low", "a.hex", With(hex, 9 * line + 1)},
      {"HEX clipped at both ends", "a.hex", hex, 0x108, 0x237},
      {"HEX passed over", "a.hex", hex, 0x200, 0x2FF},
      {"HEX base record", "a.hex", hex.substr(0, 9 * line) + ":020000040001F9\r\n" + hex.substr(9 * line)},
      {"HEX end record", "a.hex", hex.substr(0, 9 * line) + ":00000001FF\r\n" + hex.substr(9 * line)},
      {"HEX CR alone", "a.hex", With(hex, 9 * line + 44, '0')},
      {"HEX LF alone", "a.hex", Records(true, 0x100, 20, "\n")},
      {"HEX LF alone, tolerant", "a.hex", Records(true, 0x100, 20, "\n"), 0, 0xFFF, T},
      {"HEX blank line", "a.hex", hex.substr(0, 9 * line) + " \r\n" + hex.substr(9 * line), 0, 0xFFF, T},
      {"sound S", "a.s", s, 0, 0xFFF, ReadingMode::Window, 16},
      {"S checksum", "a.s", With(s, 9 * sLine + 45)},
      {"S data digit", "a.s", With(s, 9 * sLine + 30, ':')},
      {"S header", "a.s", s.substr(0, 9 * sLine) + "S00600004844521B\r\n" + s.substr(9 * sLine)},
      {"S type 4", "a.s", With(s, 9 * sLine + 1, '4')},
      {"S clipped", "a.s", s, 0x105, 0x1F0},
      {"S LF alone, tolerant", "a.s", Records(false, 0x100, 20, "\n"), 0, 0xFFF, T},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Module1 quick = test::MakeImage(0, 0xFFF), exact = test::MakeImage(0, 0xFFF);
    const LoadOptions withQuick{.mode = row.mode}, exactOnly{.mode = row.mode, .quick = false};
    const LoadReport a = LoadObjectBytes(quick, row.loadFirst, row.loadLast, row.name, row.file, withQuick);
    const LoadReport b = LoadObjectBytes(exact, row.loadFirst, row.loadLast, row.name, row.file, exactOnly);
    EXPECT_EQ(std::memcmp(quick.Buffer.data(), exact.Buffer.data(), 0x1000), 0);
    EXPECT_EQ(a.outcome, b.outcome);
    EXPECT_EQ(a.lines, b.lines);
    EXPECT_EQ(a.stored, b.stored);
    EXPECT_EQ(a.dataRecords, b.dataRecords);
    // Each code alone takes the lines up to where the file leaves the road (all but those within its
    // reach of the end of a sound file) and stores what the exact reader stores.
    const QuickLineEnd ends = row.mode == T ? QuickLineEnd::CrLfOrLf : QuickLineEnd::CrLf;
    for (const QuickCode code : {QuickCode::Widest, QuickCode::Sse2, QuickCode::Pairs}) {
      Module1 m = test::MakeImage(0, 0xFFF);
      const QuickRun run = row.name == "a.hex"
                               ? QuickHexRecords(m, row.file, 0, row.loadFirst, row.loadLast, ends, code)
                               : QuickSRecords(m, row.file, row.loadFirst, row.loadLast, ends, code);
      EXPECT_GE(run.lines, row.quickLines);
      EXPECT_EQ(std::memcmp(m.Buffer.data(), exact.Buffer.data(), 0x100 + run.lines * 16), 0);
    }
  }
}

}  // namespace
}  // namespace kestrum
