// What each writer writes, the loader reads back into the same bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "SaveCase.h"
#include "TestSupport.h"
#include "bufferops/Sum.h"
#include "reading/LoadObjectFile.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

enum class Kind { kBin, kHex, kS };

TEST(ReaderRoundTrip, SameBytesBack) {
  const test::SaveCase cases[] = {
      {"one byte", 0, 0xFFFF, 0x100, 0x100, 0x10},
      {"records across 64 K boundaries under segment bases", 0, 0x3FFFF, 0xFFF5, 0x3000A, 0x0B},
      {"segment bases giving way to linear ones", 0xF0000, 0x10FFFF, 0xFFF00, 0x1000FF, 0xF0},
      {"S1, S2 and S3 in one file", 0xFF00, 0x10000FF, 0xFFF0, 0x1000020, 0xFA},
      {"the top of the address space", 0xFFFF0000, 0xFFFFFFFF, 0xFFFFFF00, 0xFFFFFFFF, 0x0D},
      {"a range ending inside the last record", 0, 0xFFF, 0x10, 0x7FF, 0x30},
  };
  std::mt19937 random(7);
  for (const auto& c : cases) {
    Module1 source = c.Image(random);
    for (Kind kind : {Kind::kBin, Kind::kHex, Kind::kS}) {
      const char* names[] = {"image.BIN", "image.HEX", "image.S"};
      const std::string bare = names[static_cast<int>(kind)];
      SCOPED_TRACE(std::string(c.name) + ", " + bare);
      test::TempDir dir;
      const std::string path = (dir / bare).string();
      test::ScriptedPlatform platform;
      SaveOutcome saved = kind == Kind::kBin   ? SaveBinFile(source, platform, path)
                          : kind == Kind::kHex ? SaveHexFile(source, platform, path)
                                               : SaveSFile(source, platform, path);
      ASSERT_EQ(saved, SaveOutcome::Done);

      Module1 back = test::MakeImage(c.areaFirst, c.areaLast);
      std::memset(back.Buffer.data(), 0, static_cast<std::size_t>(back.BufSize));
      back.LoadFileName = path;
      back.LoadOffset = 0;
      const Address loadFirst = kind == Kind::kBin ? c.saveFirst : c.areaFirst;
      const LoadReport report = LoadObjectFile(back, platform, loadFirst, c.areaLast, bare);
      ASSERT_TRUE(report.Loaded()) << report.message;
      EXPECT_TRUE(platform.messages.empty());
      const auto n = static_cast<std::size_t>(c.saveLast - c.saveFirst + 1);
      EXPECT_EQ(std::memcmp(&back.At(c.saveFirst), &source.At(c.saveFirst), n), 0);
      // Nothing lands below the range; above it only the rest of the last
      // HEX record, which holds the image's own bytes.
      for (Address a = c.areaFirst; a < c.saveFirst; ++a) ASSERT_EQ(back.At(a), 0) << a;
      for (Address a = c.saveLast + 1; a <= c.areaLast && a < c.saveLast + 0x100; ++a)
        ASSERT_TRUE(back.At(a) == 0 || (kind == Kind::kHex && back.At(a) == source.At(a))) << a;
    }
  }
}

TEST(ReaderRoundTrip, YsmFilesLoadAsSRecords) {
  struct Case {
    const char* format;
    bool twoBytes;
  } cases[] = {{"8-8SUM", false}, {"8-16SUM", true}, {"16-16SUM", true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    test::TempDir dir;
    Module1 source = test::MakeImage(0, 0xFFF);
    for (Address a = 0; a <= 0xFFF; ++a) source.At(a) = static_cast<std::uint8_t>(a * 13);
    source.SaveFirst = 0x11;
    source.SaveLast = 0xABC;
    test::ScriptedPlatform platform;
    const std::string path = (dir / "sum.YSM").string();
    ASSERT_EQ(SaveYsmFile(source, platform, path, c.format), SaveOutcome::Done);

    Module1 back = test::MakeImage(0, 0xF);
    back.LoadFileName = path;
    const LoadReport report = LoadObjectFile(back, platform, 0, 0xF, "sum.YSM");
    ASSERT_TRUE(report.Loaded()) << report.message;
    // Line 2 puts 01 over the sum's first byte; a 16-bit sum keeps its low byte at 1.
    EXPECT_EQ(back.At(0), 0x01);
    const Sums sums = SumRange(source, 0x11, 0xABC);
    const int low = std::string(c.format) == "8-16SUM" ? sums.sum8_16 & 0xFF : sums.sum16_16 & 0xFF;
    EXPECT_EQ(back.At(1), c.twoBytes ? low : 0xFF);
  }
}

}  // namespace
}  // namespace kestrum
