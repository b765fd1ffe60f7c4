#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

using test::ReadFile;
using test::ScriptedPlatform;
using test::TempDir;

constexpr int kElevens = -1;    // 00 11 22 ... FF from the first address on
constexpr int kSumSample = -2;  // FF, but 12 34 56 78 9A BC DE F0 at 00001000

// An image with SaveFirst, SaveLast and RecordLength set; fill is a byte or
// one of the patterns above.
Module1 Image(Address first, Address last, int fill, Address saveFirst, Address saveLast, int recordLength) {
  Module1 m = test::MakeImage(first, last);
  if (fill >= 0) std::memset(m.Buffer.data(), fill, static_cast<std::size_t>(m.BufSize));
  if (fill == kElevens)
    for (Address a = first; a <= last; ++a) m.At(a) = static_cast<std::uint8_t>(((a - first) * 0x11) & 0xFF);
  const std::uint8_t sample[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  if (fill == kSumSample)
    for (Address i = 0; i < 8; ++i) m.At(0x1000 + i) = sample[i];
  m.SaveFirst = saveFirst;
  m.SaveLast = saveLast;
  m.RecordLength = static_cast<std::int16_t>(recordLength);
  return m;
}

std::string Lines(std::initializer_list<std::string> lines) {
  std::string text;
  for (const auto& line : lines) text += line + "\r\n";
  return text;
}

TEST(Writers, WrittenTextByteForByte) {
  const std::string kYsmTail = Lines({"S3060000000001F8", "S70500000000FA"});
  const struct {
    const char* name;
    Address areaFirst, areaLast;
    int fill;
    Address saveFirst, saveLast;
    int recordLength;
    const char* format;  // HEX, S, or the sum of a YSM file
    std::string expected;
  } cases[] = {
      {"HEX example 1: last record cut at BufLast", 0, 0xF, kElevens, 3, 0xF, 8, "HEX",
       Lines({":0800030033445566778899AA81", ":05000B00BBCCDDEEFF9F", ":00000001FF"})},
      {"HEX example 2: no split at 64 K, last record whole past SaveLast", 0, 0x7FFFF, 0xFF, 0xFFF8, 0x1000F,
       0x10, "HEX",
       Lines({":10FFF800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF09", ":020000021000EC",
              ":10000800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF8", ":00000001FF"})},
      {"HEX example 3: linear base first", 0x12340000, 0x1234FFFF, 0xFF, 0x12340000, 0x12340007, 4, "HEX",
       Lines({":020000041234B4", ":04000000FFFFFFFF00", ":04000400FFFFFFFFFC", ":00000001FF"})},
      {"HEX one byte gives a whole record", 0, 0xFF, 0xFF, 0x20, 0x20, 4, "HEX",
       Lines({":04002000FFFFFFFFE0", ":00000001FF"})},
      {"HEX one byte cut by BufLast", 0, 0x7, 0xFF, 5, 5, 0x10, "HEX",
       Lines({":03000500FFFFFFFB", ":00000001FF"})},
      {"HEX ending on a record's end: no empty record", 0, 0xFF, 0xFF, 0, 7, 4, "HEX",
       Lines({":04000000FFFFFFFF00", ":04000400FFFFFFFFFC", ":00000001FF"})},
      {"HEX ending on a record's first byte: that record", 0, 0xFF, 0xFF, 0, 4, 4, "HEX",
       Lines({":04000000FFFFFFFF00", ":04000400FFFFFFFFFC", ":00000001FF"})},
      {"HEX checksum 00", 0, 0xFF, 0xFF, 0, 0, 1, "HEX", Lines({":01000000FF00", ":00000001FF"})},
      {"HEX segment base F at the start", 0xF0000, 0xF000F, 0xFF, 0xF0000, 0xF0000, 1, "HEX",
       Lines({":02000002F0000C", ":01000000FF00", ":00000001FF"})},
      {"HEX linear base 10 at once", 0x100000, 0x10000F, 0xFF, 0x100000, 0x100000, 1, "HEX",
       Lines({":020000040010EA", ":01000000FF00", ":00000001FF"})},
      {"HEX linear base FFFF", 0xFFFFFFF0, 0xFFFFFFFF, 0xFF, 0xFFFFFFFF, 0xFFFFFFFF, 1, "HEX",
       Lines({":02000004FFFFFC", ":01FFFF00FF02", ":00000001FF"})},
      {"HEX segment bases give way to linear ones at 00100000", 0xF0000, 0x10000F, 0xFF, 0xFFFF8, 0x100007, 8,
       "HEX",
       Lines({":02000002F0000C", ":08FFF800FFFFFFFFFFFFFFFF09", ":020000040010EA",
              ":08000000FFFFFFFFFFFFFFFF00", ":00000001FF"})},
      {"HEX a length that doesn't divide 65536 picks up at 0008", 0, 0x1FFFF, 0xFF, 0xFFF0, 0x10014, 0xC,
       "HEX",
       Lines({":0CFFF000FFFFFFFFFFFFFFFFFFFFFFFF11", ":0CFFFC00FFFFFFFFFFFFFFFFFFFFFFFF05", ":020000021000EC",
              ":0C000800FFFFFFFFFFFFFFFFFFFFFFFFF8", ":0C001400FFFFFFFFFFFFFFFFFFFFFFFFEC", ":00000001FF"})},
      {"S example 1: last record cut at SaveLast", 0, 0xF, kElevens, 3, 0xF, 8, "S",
       Lines({"S10B000333445566778899AA7D", "S108000BBBCCDDEEFF9B", "S9030000FC"})},
      {"S example 2: S1 runs past 0000FFFF, then S2", 0, 0x7FFFF, 0xFF, 0xFFF8, 0x1000F, 0x10, "S",
       Lines({"S113FFF8FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF05", "S20C010008FFFFFFFFFFFFFFFFF2", "S9030000FC"})},
      {"S example 3: S3", 0x12340000, 0x1234FFFF, 0xFF, 0x12340000, 0x12340007, 4, "S",
       Lines({"S30912340000FFFFFFFFB4", "S30912340004FFFFFFFFB0", "S9030000FC"})},
      {"S one byte", 0, 0x7FFFF, 0xFF, 0x100, 0x100, 0x10, "S", Lines({"S1040100FFFB", "S9030000FC"})},
      {"S 0000FFFF starts S1, 00010000 S2", 0, 0x1FFFF, 0xFF, 0xFFFF, 0x10000, 1, "S",
       Lines({"S104FFFFFFFE", "S205010000FFFA", "S9030000FC"})},
      {"S 00FFFFFF starts S2, 01000000 S3", 0xFFFF00, 0x10000FF, 0xFF, 0xFFFFFF, 0x1000000, 1, "S",
       Lines({"S205FFFFFFFFFE", "S30601000000FFF9", "S9030000FC"})},
      {"YSM example 1: 8-8", 0, 0x1FFF, kSumSample, 0x1000, 0x1005, 0x10, "8-8SUM",
       Lines({"S306000000006A8F"}) + kYsmTail},
      {"YSM example 2: 8-16, any case", 0, 0x1FFF, kSumSample, 0x1000, 0x1005, 0x10, "8-16sum",
       Lines({"S30700000000026A8C"}) + kYsmTail},
      {"YSM example 3: 16-16, odd last address", 0, 0x1FFF, kSumSample, 0x1000, 0x1005, 0x10, "16-16SUM",
       Lines({"S3070000000003688D"}) + kYsmTail},
      {"YSM example 4: 16-16, odd first, even last", 0, 0x1FFF, kSumSample, 0x1001, 0x1006, 0x10, "16-16SUM",
       Lines({"S30700000000CF68C1"}) + kYsmTail},
      {"YSM example 5: one byte at an even address", 0, 0x1FFF, kSumSample, 0x1002, 0x1002, 0x10, "16-16SUM",
       Lines({"S307000000005600A2"}) + kYsmTail},
      {"YSM example 5: one byte at an odd address", 0, 0x1FFF, kSumSample, 0x1001, 0x1001, 0x10, "16-16SUM",
       Lines({"S307000000000034C4"}) + kYsmTail},
      {"YSM zero sum, 8-8", 0, 0x1FFF, 0, 0, 0, 0x10, "8-8SUM", Lines({"S3060000000000F9"}) + kYsmTail},
      {"YSM zero sum, 16-16", 0, 0x1FFF, 0, 0, 0, 0x10, "16-16SUM", Lines({"S307000000000000F8"}) + kYsmTail},
      {"YSM 8-16 sum FFFF: x passes 255", 0, 0x1FFF, 0xFF, 0, 0x100, 0x10, "8-16SUM",
       Lines({"S30700000000FFFFFA"}) + kYsmTail},
      {"YSM 8-8 sum F9: x is FF", 0, 0xF, 0xF9, 4, 4, 0x10, "8-8SUM", Lines({"S30600000000F900"}) + kYsmTail},
      {"YSM 8-8 sum FA: x wraps to 00", 0, 0xF, 0xFA, 4, 4, 0x10, "8-8SUM",
       Lines({"S30600000000FAFF"}) + kYsmTail},
      {"YSM of an unknown sum is empty", 0, 0xF, 0xFF, 0, 0xF, 0x10, "32SUM", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    Module1 m = Image(c.areaFirst, c.areaLast, c.fill, c.saveFirst, c.saveLast, c.recordLength);
    const std::string format = c.format, path = (dir / "out").string();
    ScriptedPlatform platform;
    SaveOutcome outcome;
    if (format == "HEX") {
      outcome = SaveHexFile(m, platform, path);
    } else if (format == "S") {
      m.FileError = -1;  // an earlier failure is forgotten
      outcome = SaveSFile(m, platform, path);
    } else {
      outcome = SaveYsmFile(m, platform, path, format);
    }
    EXPECT_EQ(outcome, SaveOutcome::Done);
    EXPECT_EQ(ReadFile(path), c.expected);
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(m.FileError, 0);
  }
}

TEST(Writers, SCountAbove255FailsBeforeTheRecord) {
  const std::string ff252(0xFC * 2, 'F');
  const struct {
    Address first, last;
    int recordLength;
    std::string kept;  // the first line, or the lines before the failure
    bool fails;
  } cases[] = {
      {0, 0xFB, 0xFC, "S1FF0000", false},  // the largest whole records
      {0x10000, 0x100FA, 0xFB, "S2FF010000", false},
      {0x1000000, 0x10000F9, 0xFA, "S3FF01000000", false},
      {0, 0xF9, 0xFF, "S1FD0000", false},  // FF cut to FA bytes
      {0, 0x1FF, 0xFD, "", true},
      {0x10000, 0x101FF, 0xFC, "", true},
      {0x1000000, 0x10001FF, 0xFB, "", true},
      {0, 0xFC, 0xFF, "", true},  // FF cut to FD bytes: count 256
      {0xFF00, 0x101FF, 0xFC, Lines({"S1FFFF00" + ff252 + "FD", "S1FFFFFC" + ff252 + "01"}), true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.first) + " length " + HexByteText(c.recordLength));
    TempDir dir;
    Module1 m = Image(0, 0x10001FF, 0xFF, c.first, c.last, c.recordLength);
    ScriptedPlatform platform;
    const auto path = dir / "out.S";
    EXPECT_EQ(SaveSFile(m, platform, path.string()),
              c.fails ? SaveOutcome::RecordLengthError : SaveOutcome::Done);
    const std::string text = ReadFile(path);
    if (!c.fails) {
      EXPECT_TRUE(platform.messages.empty());
      EXPECT_EQ(text.substr(0, c.kept.size()), c.kept);
      EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
      continue;
    }
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{"Record Length Error!", vbOKOnly, ""}}));
    EXPECT_EQ(m.FileError, -1);
    EXPECT_EQ(text, c.kept);

    // Without keeping the cut-short file, the old one stays whole.
    test::WriteFile(path, "old content");
    WriteOptions options;
    options.keepPartial = false;
    EXPECT_EQ(SaveSFile(m, platform, path.string(), options), SaveOutcome::RecordLengthError);
    EXPECT_EQ(ReadFile(path), "old content");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
  }
}

TEST(Writers, BinWritesTheRangeFromItsFirstByte) {
  const struct {
    Address first, last;
    std::string old;  // the file there before; empty for none
    bool replaceWhole;
    std::size_t size;
  } cases[] = {
      {0x80, 0x80, "", false, 1},
      {0x100, 0x1FF, "", false, 256},
      {0x100, 0x1FF, std::string(10, 'x'), false, 256},
      {0x100, 0x1FF, std::string(300, 'x'), false, 300},  // a longer old file keeps its end
      {0x100, 0x1FF, std::string(300, 'x'), true, 256},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    TempDir dir;
    Module1 m = Image(0, 0x3FF, 0, c.first, c.last, 0);
    for (Address a = 0; a <= 0x3FF; ++a) m.At(a) = static_cast<std::uint8_t>(a * 7 + (a >> 8));
    const auto path = dir / "a.BIN";
    if (!c.old.empty()) test::WriteFile(path, c.old);
    WriteOptions options;
    options.replaceWhole = c.replaceWhole;
    ScriptedPlatform platform;
    EXPECT_EQ(SaveBinFile(m, platform, path.string(), options), SaveOutcome::Done);
    const auto n = static_cast<std::size_t>(c.last - c.first + 1);
    const std::string expected = std::string(reinterpret_cast<const char*>(&m.At(c.first)), n) +
                                 (c.size > n ? c.old.substr(n) : std::string());
    EXPECT_TRUE(ReadFile(path) == expected);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1)
        << "a working file stayed";
  }
}

}  // namespace
}  // namespace kestrum
