#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

using test::ReadFile;
using test::ScriptedPlatform;
using test::TempDir;
using test::WriteFile;

enum class Fill { kFF, kZeros, kElevens, kSumSample };
enum class Format { kHex, kS, kYsm88, kYsm816, kYsm1616 };

// The image of a case: its area and what stands in it.
Module1 Image(Address first, Address last, Fill fill) {
  Module1 m = test::MakeImage(first, last);
  if (fill == Fill::kZeros) {
    std::memset(m.Buffer.data(), 0, m.Buffer.size());
  } else if (fill == Fill::kElevens) {
    // 00 11 22 ... FF from the first address on.
    for (Address a = first; a <= last; ++a) m.At(a) = static_cast<std::uint8_t>(((a - first) * 0x11) & 0xFF);
  } else if (fill == Fill::kSumSample) {
    const std::uint8_t sample[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
    for (Address i = 0; i < 8; ++i) m.At(0x1000 + i) = sample[i];
  }
  return m;
}

std::string Lines(std::initializer_list<const char*> lines) {
  std::string text;
  for (const char* line : lines) text += std::string(line) + "\r\n";
  return text;
}

struct WriterCase {
  const char* name;
  Address areaFirst, areaLast;
  Fill fill;
  Address saveFirst, saveLast;
  int recordLength;
  Format format;
  std::string expected;
};

SaveOutcome Write(Module1& m, Platform& platform, Format format, const std::string& path) {
  switch (format) {
    case Format::kHex: return SaveHexFile(m, platform, path);
    case Format::kS: return SaveSFile(m, platform, path);
    case Format::kYsm88: return SaveYsmFile(m, platform, path, "8-8SUM");
    case Format::kYsm816: return SaveYsmFile(m, platform, path, "8-16sum");
    case Format::kYsm1616: return SaveYsmFile(m, platform, path, "16-16SUM");
  }
  return SaveOutcome::FileFailure;
}

TEST(Writers, WrittenTextByteForByte) {
  const WriterCase cases[] = {
      {"HEX worked example 1: last record cut at BufLast", 0, 0xF, Fill::kElevens, 3, 0xF, 8, Format::kHex,
       Lines({":0800030033445566778899AA81", ":05000B00BBCCDDEEFF9F", ":00000001FF"})},
      {"HEX worked example 2: no split at 64 K, last record whole past SaveLast", 0, 0x7FFFF, Fill::kFF,
       0xFFF8, 0x1000F, 0x10, Format::kHex,
       Lines({":10FFF800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF09", ":020000021000EC",
              ":10000800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF8", ":00000001FF"})},
      {"HEX worked example 3: linear base first", 0x12340000, 0x1234FFFF, Fill::kFF, 0x12340000, 0x12340007, 4,
       Format::kHex,
       Lines({":020000041234B4", ":04000000FFFFFFFF00", ":04000400FFFFFFFFFC", ":00000001FF"})},
      {"HEX one byte gives a whole record", 0, 0xFF, Fill::kFF, 0x20, 0x20, 4, Format::kHex,
       Lines({":04002000FFFFFFFFE0", ":00000001FF"})},
      {"HEX one byte cut by BufLast", 0, 0x7, Fill::kFF, 5, 5, 0x10, Format::kHex,
       Lines({":03000500FFFFFFFB", ":00000001FF"})},
      {"HEX range ending on a record's end adds no empty record", 0, 0xFF, Fill::kFF, 0, 7, 4, Format::kHex,
       Lines({":04000000FFFFFFFF00", ":04000400FFFFFFFFFC", ":00000001FF"})},
      {"HEX last address on a record's first byte still gets it", 0, 0xFF, Fill::kFF, 0, 4, 4, Format::kHex,
       Lines({":04000000FFFFFFFF00", ":04000400FFFFFFFFFC", ":00000001FF"})},
      {"HEX checksum 00", 0, 0xFF, Fill::kFF, 0, 0, 1, Format::kHex, Lines({":01000000FF00", ":00000001FF"})},
      {"HEX segment base 5 at the start", 0x50000, 0x5000F, Fill::kFF, 0x50000, 0x50000, 1, Format::kHex,
       Lines({":020000025000AC", ":01000000FF00", ":00000001FF"})},
      {"HEX segment base F", 0xF0000, 0xF000F, Fill::kFF, 0xF0000, 0xF0000, 1, Format::kHex,
       Lines({":02000002F0000C", ":01000000FF00", ":00000001FF"})},
      {"HEX linear base 10 with no segment base before it", 0x100000, 0x10000F, Fill::kFF, 0x100000, 0x100000,
       1, Format::kHex, Lines({":020000040010EA", ":01000000FF00", ":00000001FF"})},
      {"HEX linear base 12", 0x120000, 0x12000F, Fill::kFF, 0x120000, 0x120000, 1, Format::kHex,
       Lines({":020000040012E8", ":01000000FF00", ":00000001FF"})},
      {"HEX linear base FFFF at the top of the space", 0xFFFFFFF0, 0xFFFFFFFF, Fill::kFF, 0xFFFFFFFF,
       0xFFFFFFFF, 1, Format::kHex, Lines({":02000004FFFFFC", ":01FFFF00FF02", ":00000001FF"})},
      {"HEX segment bases give way to linear ones at 00100000", 0xF0000, 0x10000F, Fill::kFF, 0xFFFF8,
       0x100007, 8, Format::kHex,
       Lines({":02000002F0000C", ":08FFF800FFFFFFFFFFFFFFFF09", ":020000040010EA",
              ":08000000FFFFFFFFFFFFFFFF00", ":00000001FF"})},
      {"HEX a record length that doesn't divide 65536 picks up at offset 0008", 0, 0x1FFFF, Fill::kFF, 0xFFF0,
       0x10014, 0xC, Format::kHex,
       Lines({":0CFFF000FFFFFFFFFFFFFFFFFFFFFFFF11", ":0CFFFC00FFFFFFFFFFFFFFFFFFFFFFFF05",
              ":020000021000EC", ":0C000800FFFFFFFFFFFFFFFFFFFFFFFFF8", ":0C001400FFFFFFFFFFFFFFFFFFFFFFFFEC",
              ":00000001FF"})},
      {"S worked example 1: last record cut at SaveLast", 0, 0xF, Fill::kElevens, 3, 0xF, 8, Format::kS,
       Lines({"S10B000333445566778899AA7D", "S108000BBBCCDDEEFF9B", "S9030000FC"})},
      {"S worked example 2: S1 runs past 0000FFFF, then S2", 0, 0x7FFFF, Fill::kFF, 0xFFF8, 0x1000F, 0x10,
       Format::kS,
       Lines({"S113FFF8FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF05", "S20C010008FFFFFFFFFFFFFFFFF2", "S9030000FC"})},
      {"S worked example 3: S3", 0x12340000, 0x1234FFFF, Fill::kFF, 0x12340000, 0x12340007, 4, Format::kS,
       Lines({"S30912340000FFFFFFFFB4", "S30912340004FFFFFFFFB0", "S9030000FC"})},
      {"S one byte", 0, 0x7FFFF, Fill::kFF, 0x100, 0x100, 0x10, Format::kS, Lines({"S1040100FFFB", "S9030000FC"})},
      {"S 0000FFFF starts an S1 record", 0, 0x1FFFF, Fill::kFF, 0xFFFF, 0xFFFF, 1, Format::kS,
       Lines({"S104FFFFFFFE", "S9030000FC"})},
      {"S 00010000 starts an S2 record", 0, 0x1FFFF, Fill::kFF, 0x10000, 0x10000, 1, Format::kS,
       Lines({"S205010000FFFA", "S9030000FC"})},
      {"S 00FFFFFF starts an S2 record", 0xFFFF00, 0x10000FF, Fill::kFF, 0xFFFFFF, 0xFFFFFF, 1, Format::kS,
       Lines({"S205FFFFFFFFFE", "S9030000FC"})},
      {"S 01000000 starts an S3 record", 0xFFFF00, 0x10000FF, Fill::kFF, 0x1000000, 0x1000000, 1, Format::kS,
       Lines({"S30601000000FFF9", "S9030000FC"})},
      {"S record length FF cut to FA bytes gives count FD", 0, 0xFFFF, Fill::kFF, 0, 0xF9, 0xFF, Format::kS,
       Lines({("S1FD0000" + std::string(0xFA * 2, 'F') + "FC").c_str(), "S9030000FC"})},
      {"S largest whole S1 record: FC", 0, 0x10000FF, Fill::kFF, 0, 0xFB, 0xFC, Format::kS,
       Lines({("S1FF0000" + std::string(0xFC * 2, 'F') + "FC").c_str(), "S9030000FC"})},
      {"S largest whole S2 record: FB", 0, 0x10000FF, Fill::kFF, 0x10000, 0x100FA, 0xFB, Format::kS,
       Lines({("S2FF010000" + std::string(0xFB * 2, 'F') + "FA").c_str(), "S9030000FC"})},
      {"S largest whole S3 record: FA", 0, 0x10000FF, Fill::kFF, 0x1000000, 0x10000F9, 0xFA, Format::kS,
       Lines({("S3FF01000000" + std::string(0xFA * 2, 'F') + "F9").c_str(), "S9030000FC"})},
      {"YSM worked example 1: 8-8", 0, 0x1FFF, Fill::kSumSample, 0x1000, 0x1005, 0x10, Format::kYsm88,
       Lines({"S306000000006A8F", "S3060000000001F8", "S70500000000FA"})},
      {"YSM worked example 2: 8-16", 0, 0x1FFF, Fill::kSumSample, 0x1000, 0x1005, 0x10, Format::kYsm816,
       Lines({"S30700000000026A8C", "S3060000000001F8", "S70500000000FA"})},
      {"YSM worked example 3: 16-16, odd last address", 0, 0x1FFF, Fill::kSumSample, 0x1000, 0x1005, 0x10,
       Format::kYsm1616, Lines({"S3070000000003688D", "S3060000000001F8", "S70500000000FA"})},
      {"YSM worked example 4: 16-16, odd first, even last", 0, 0x1FFF, Fill::kSumSample, 0x1001, 0x1006, 0x10,
       Format::kYsm1616, Lines({"S30700000000CF68C1", "S3060000000001F8", "S70500000000FA"})},
      {"YSM worked example 5: one byte at an even address", 0, 0x1FFF, Fill::kSumSample, 0x1002, 0x1002, 0x10,
       Format::kYsm1616, Lines({"S307000000005600A2", "S3060000000001F8", "S70500000000FA"})},
      {"YSM worked example 5: one byte at an odd address", 0, 0x1FFF, Fill::kSumSample, 0x1001, 0x1001, 0x10,
       Format::kYsm1616, Lines({"S307000000000034C4", "S3060000000001F8", "S70500000000FA"})},
      {"YSM zero sum, 8-8", 0, 0x1FFF, Fill::kZeros, 0, 0, 0x10, Format::kYsm88,
       Lines({"S3060000000000F9", "S3060000000001F8", "S70500000000FA"})},
      {"YSM zero sum, 16-16", 0, 0x1FFF, Fill::kZeros, 0, 0, 0x10, Format::kYsm1616,
       Lines({"S307000000000000F8", "S3060000000001F8", "S70500000000FA"})},
      {"YSM 8-16 sum FFFF: x passes 255", 0, 0x1FFF, Fill::kFF, 0, 0x100, 0x10, Format::kYsm816,
       Lines({"S30700000000FFFFFA", "S3060000000001F8", "S70500000000FA"})},
      {"YSM odd first address at or above 80000000", 0x80000001, 0x80000004, Fill::kFF, 0x80000001, 0x80000004,
       0x10, Format::kYsm1616, Lines({"S30700000000FFFEFB", "S3060000000001F8", "S70500000000FA"})},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    Module1 m = Image(c.areaFirst, c.areaLast, c.fill);
    m.SaveFirst = c.saveFirst;
    m.SaveLast = c.saveLast;
    m.RecordLength = static_cast<std::int16_t>(c.recordLength);
    ScriptedPlatform platform;
    const std::string path = (dir / "out").string();
    EXPECT_EQ(Write(m, platform, c.format, path), SaveOutcome::Done);
    EXPECT_EQ(ReadFile(path), c.expected);
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(m.FileError, 0);
  }
}

TEST(Writers, YsmSumsOfOneByteAroundTheWrap) {
  struct Case {
    std::uint8_t byte;
    const char* line;
  } cases[] = {{0xF9, "S30600000000F900"}, {0xFA, "S30600000000FAFF"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    TempDir dir;
    Module1 m = test::MakeImage(0, 0xF);
    m.At(4) = c.byte;
    m.SaveFirst = m.SaveLast = 4;
    ScriptedPlatform platform;
    ASSERT_EQ(SaveYsmFile(m, platform, (dir / "a.YSM").string(), "8-8SUM"), SaveOutcome::Done);
    const std::string text = ReadFile(dir / "a.YSM");
    EXPECT_EQ(text.substr(0, text.find("\r\n")), c.line);
    EXPECT_EQ(text.size(), 52u);
  }
}

TEST(Writers, YsmWithAnUnknownSumNameIsEmpty) {
  TempDir dir;
  Module1 m = test::MakeImage(0, 0xF);
  ScriptedPlatform platform;
  EXPECT_EQ(SaveYsmFile(m, platform, (dir / "a.YSM").string(), "32SUM"), SaveOutcome::Done);
  EXPECT_EQ(ReadFile(dir / "a.YSM"), "");
}

struct CountCase {
  const char* name;
  Address first, last;
  int recordLength;
  std::vector<std::string> linesKept;  // what the cut-short file holds
};

TEST(Writers, SCountAbove255FailsBeforeTheRecord) {
  const std::string ff252(0xFC * 2, 'F');
  const CountCase cases[] = {
      {"FD fails at once in S1", 0, 0x1FF, 0xFD, {}},
      {"FC fails at once in S2", 0x10000, 0x101FF, 0xFC, {}},
      {"FB fails at once in S3", 0x1000000, 0x10001FF, 0xFB, {}},
      {"FF cut to FD bytes fails with count 256", 0, 0xFC, 0xFF, {}},
      {"FC writes two S1 records, then fails where S2 begins", 0xFF00, 0x101FF, 0xFC,
       {"S1FFFF00" + ff252 + "FD", "S1FFFFFC" + ff252 + "01"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    Module1 m = test::MakeImage(0, 0x10001FF);
    m.SaveFirst = c.first;
    m.SaveLast = c.last;
    m.RecordLength = static_cast<std::int16_t>(c.recordLength);
    ScriptedPlatform platform;
    const auto path = dir / "out.S";
    EXPECT_EQ(SaveSFile(m, platform, path.string()), SaveOutcome::RecordLengthError);
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{"Record Length Error!", vbOKOnly, ""}}));
    EXPECT_EQ(m.FileError, -1);
    std::string kept;
    for (const auto& line : c.linesKept) kept += line + "\r\n";
    EXPECT_EQ(ReadFile(path), kept);

    // Without keeping the cut-short file, the old one stays whole.
    WriteFile(path, "old content");
    platform.messages.clear();
    WriteOptions options;
    options.keepPartial = false;
    EXPECT_EQ(SaveSFile(m, platform, path.string(), options), SaveOutcome::RecordLengthError);
    EXPECT_EQ(ReadFile(path), "old content");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
  }
}

TEST(Writers, SClearsAnEarlierFileError) {
  TempDir dir;
  Module1 m = test::MakeImage(0, 0xFF);
  m.FileError = -1;
  m.SaveFirst = 0;
  m.SaveLast = 0xF;
  m.RecordLength = 0x10;
  ScriptedPlatform platform;
  EXPECT_EQ(SaveSFile(m, platform, (dir / "a.S").string()), SaveOutcome::Done);
  EXPECT_EQ(m.FileError, 0);
}

struct BinCase {
  const char* name;
  Address first, last;
  std::string old;  // the file there before; empty for none
  bool replaceWhole;
  std::size_t size;
};

TEST(Writers, BinWritesTheRangeFromItsFirstByte) {
  const BinCase cases[] = {
      {"one byte", 0x80, 0x80, "", false, 1},
      {"256 bytes from 00000100", 0x100, 0x1FF, "", false, 256},
      {"a shorter old file is overwritten", 0x100, 0x1FF, std::string(10, 'x'), false, 256},
      {"a longer old file keeps its end", 0x100, 0x1FF, std::string(300, 'x'), false, 300},
      {"a longer old file replaced whole", 0x100, 0x1FF, std::string(300, 'x'), true, 256},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    Module1 m = test::MakeImage(0, 0x7FFFF);
    for (Address a = 0; a < 0x400; ++a) m.At(a) = static_cast<std::uint8_t>(a * 7 + (a >> 8));
    m.SaveFirst = c.first;
    m.SaveLast = c.last;
    const auto path = dir / "a.BIN";
    if (!c.old.empty()) WriteFile(path, c.old);
    WriteOptions options;
    options.replaceWhole = c.replaceWhole;
    ScriptedPlatform platform;
    EXPECT_EQ(SaveBinFile(m, platform, path.string(), options), SaveOutcome::Done);
    const std::string bytes = ReadFile(path);
    ASSERT_EQ(bytes.size(), c.size);
    const std::size_t n = static_cast<std::size_t>(c.last - c.first + 1);
    EXPECT_EQ(bytes.substr(0, n), std::string(reinterpret_cast<const char*>(&m.At(c.first)), n));
    if (c.size > n) {
      EXPECT_EQ(bytes.substr(n), c.old.substr(n));
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1) << "a working file stayed";
  }
}

}  // namespace
}  // namespace kestrum
