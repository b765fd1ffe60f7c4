// Hostile and huge files through the command line: each ends as the rules
// say, and the program never holds more than the image and a few MiB,
// whatever the size of the file or of its lines.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "TestSupport.h"

namespace kestrum {
namespace {

using test::RunProgram;
using test::TempDir;
using test::WriteFile;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr long kSlackKiB = 8 << 10;  // what a load may hold beyond the image and the program itself

std::string Record(unsigned address, unsigned char byte) {
  char line[64];
  const unsigned sum = 1 + (address >> 8) + (address & 0xFF) + byte;
  std::snprintf(line, sizeof line, ":01%04X00%02X%02X\r\n", address & 0xFFFF, byte, (256 - (sum & 0xFF)) & 0xFF);
  return line;
}

// The peak memory of a run that loads nothing: the program and its image.
long BaselineKiB(const std::string& area) {
  return RunProgram({KESTRUM_CLI, "--area", area, "sum"}).peakKiB;
}

TEST(CliHostile, FilesThatBreakTheRulesInBulk) {
  const std::string crs(4 * kMiB, '\r'), nuls(4 * kMiB, '\0'), longLine(8 * kMiB, '7');
  const std::string outside = [] {
    std::string text = ":020000040001F9\r\n";  // every record above the area 0000..FFFF
    while (text.size() < 16 * kMiB) text += ":10000000000102030405060708090A0B0C0D0E0F78\r\n";
    return text;
  }();
  const struct {
    const char* name;
    const char* file;
    std::string bytes;
    int status;
    const char* out;
    const char* err;
  } cases[] = {
      {"only CR characters", "cr.hex", crs, 1, "", "cr.hex:1: Format Error\n"},
      {"only CR characters, decided by content", "cr.dat", crs, 0, "8-8bit=00 8-16bit=0000 16-16bit=8000\n", ""},
      {"NUL bytes", "nul.s", nuls, 1, "", "nul.s:1: Format Error\n"},
      {"NUL bytes, decided by content", "nul.dat", nuls, 0, "8-8bit=00 8-16bit=0000 16-16bit=0000\n", ""},
      {"a header line of megabytes passed over", "long.s", "S0" + longLine + "\r\nS104000012E9\r\n", 0,
       "8-8bit=13 8-16bit=FF13 16-16bit=9300\n", ""},
      {"a record of megabytes", "long.hex", Record(0, 0x12) + ":" + longLine + "\r\n" + Record(1, 0x34), 1, "",
       "long.hex:2: Format Error\n"},
      {"a line of megabytes ended by lone LFs", "lf.hex", std::string(4 * kMiB, '\n'), 1, "",
       "lf.hex:1: Format Error\n"},
      {"every record outside the range", "outside.hex", outside, 0, "8-8bit=00 8-16bit=0000 16-16bit=8000\n", ""},
  };
  const long baseline = BaselineKiB("0:FFFF");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    WriteFile(dir / c.file, c.bytes);
    const auto r = RunProgram({KESTRUM_CLI, "--area", "0:FFFF", "load", c.file, "sum"}, dir.path());
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
    if (!test::kSanitized) {
      EXPECT_LE(r.peakKiB, baseline + kSlackKiB);
    }
  }
}

TEST(CliHostile, AHexFileOfOneGibibyte) {
  if (test::kSanitized) GTEST_SKIP() << "a gibibyte of text takes too long under the sanitizers";
  // 64 KiB of records, each byte its address's low byte, repeated under the
  // bases 0000, 0001 and 0002 until the file passes 1 GiB; the area takes
  // the first two of them.
  std::string block;
  for (unsigned a = 0; a < 0x10000; a += 16) {
    char line[64];
    unsigned sum = 16 + (a >> 8) + (a & 0xFF);
    int n = std::snprintf(line, sizeof line, ":10%04X00", a);
    for (unsigned i = 0; i < 16; ++i) {
      n += std::snprintf(line + n, sizeof line - static_cast<std::size_t>(n), "%02X", (a + i) & 0xFF);
      sum += (a + i) & 0xFF;
    }
    std::snprintf(line + n, sizeof line - static_cast<std::size_t>(n), "%02X\r\n", (256 - (sum & 0xFF)) & 0xFF);
    block += line;
  }
  const std::string bases[] = {":020000040000FA\r\n", ":020000040001F9\r\n", ":020000040002F8\r\n"};
  TempDir dir;
  std::uint64_t size = 0;
  {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen((dir / "big.hex").c_str(), "wb"), std::fclose);
    ASSERT_TRUE(file);
    for (unsigned i = 0; size < (std::uint64_t{1} << 30); ++i) {
      const std::string& base = bases[i % 3];
      ASSERT_EQ(std::fwrite(base.data(), 1, base.size(), file.get()), base.size());
      ASSERT_EQ(std::fwrite(block.data(), 1, block.size(), file.get()), block.size());
      size += base.size() + block.size();
    }
  }
  const auto r = RunProgram({KESTRUM_CLI, "--area", "0:1FFFF", "load", "big.hex", "sum"}, dir.path());
  ASSERT_EQ(r.status, 0) << r.err;
  // 512 times the bytes 00..FF, whose sums all wrap to 0.
  EXPECT_EQ(r.out, "8-8bit=00 8-16bit=0000 16-16bit=0000\n");
  EXPECT_LE(r.peakKiB, BaselineKiB("0:1FFFF") + kSlackKiB);
}

}  // namespace
}  // namespace kestrum
