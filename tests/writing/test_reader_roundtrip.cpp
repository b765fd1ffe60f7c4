// srec_cat, a peer tool, reads what the HEX and S writers write into the
// bytes of the image; our own loader's round trips are the property tests'.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <regex>
#include <sstream>
#include <string>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

constexpr const char* kSrecCat = "/usr/bin/srec_cat";

std::string Hex(Address value) {
  std::ostringstream s;
  s << "0x" << std::hex << std::uppercase << value;
  return s.str();
}

TEST(PeerRoundTrip, SrecCatReadsTheSameBytes) {
  if (!std::filesystem::exists(kSrecCat)) GTEST_SKIP() << "srec_cat is not installed";
  // Under a segment base (02) srec_cat folds a record that runs past a 64 K
  // boundary back into its segment, as Intel defines that record; our files
  // keep such a record's bytes in one line at rising addresses, so no case
  // here has such a record.
  const struct {
    const char* name;
    Address areaFirst, areaLast, saveFirst, saveLast;
    int recordLength;
  } cases[] = {
      {"one byte", 0, 0xFFFF, 0x1234, 0x1234, 0x10},
      {"a range ending inside the last record", 0, 0xFFF, 0x10, 0x7FF, 0x30},
      {"a record across 00010000 before any base", 0, 0x1FFFF, 0xFFF8, 0x1000F, 0x10},
      {"segment bases, 64 K boundaries between records", 0, 0x3FFFF, 0xFFF0, 0x3000F, 0x10},
      {"segment bases giving way to linear ones", 0xF0000, 0x10FFFF, 0xFFF00, 0x1000FF, 0x80},
      {"linear bases, records across 64 K boundaries", 0x100000, 0x13FFFF, 0x10FFF0, 0x13000F, 0x0B},
      {"S1 to S2", 0xFF00, 0x200FF, 0xFF00, 0x100FF, 0x21},
      {"S2 to S3", 0xFFFF00, 0x10000FF, 0xFFFF03, 0x10000FF, 0x07},
      {"the top of the address space", 0xFFFF0000, 0xFFFFFFFF, 0xFFFFFF00, 0xFFFFFFFF, 0x0D},
  };
  std::mt19937 random(7);
  for (const auto& c : cases) {
    Module1 m = test::MakeImage(c.areaFirst, c.areaLast);
    for (Address a = c.areaFirst; a <= c.areaLast; ++a) m.At(a) = static_cast<std::uint8_t>(random());
    m.SaveFirst = c.saveFirst;
    m.SaveLast = c.saveLast;
    m.RecordLength = static_cast<std::int16_t>(c.recordLength);
    const std::string expected(reinterpret_cast<const char*>(&m.At(c.saveFirst)),
                               static_cast<std::size_t>(c.saveLast - c.saveFirst + 1));
    for (const std::string format : {"-intel", "-motorola"}) {
      SCOPED_TRACE(std::string(c.name) + " " + format);
      test::TempDir dir;
      const std::string file = (dir / "image.txt").string(), out = (dir / "image.bin").string();
      test::ScriptedPlatform platform;
      ASSERT_EQ(format == "-intel" ? SaveHexFile(m, platform, file) : SaveSFile(m, platform, file),
                SaveOutcome::Done);
      std::vector<std::string> argv{kSrecCat, file, format};
      // srec_cat can't take a crop that ends at 2 to the power 32; at the
      // top of the space nothing lies past the range anyway.
      if (c.saveLast < kAddressMax) argv.insert(argv.end(), {"-crop", Hex(c.saveFirst), Hex(c.saveLast + 1)});
      argv.insert(argv.end(), {"-offset", "-" + Hex(c.saveFirst), "-o", out, "-binary"});
      const auto r = test::RunProgram(argv);
      EXPECT_EQ(r.status, 0) << r.err;
      // Our S files have no S0 header, on purpose; any other word is a complaint.
      EXPECT_FALSE(
          std::regex_search(std::regex_replace(r.err, std::regex("warning: no header\\s+record"), ""),
                            std::regex("warning|error")))
          << r.err;
      EXPECT_TRUE(test::ReadFile(out) == expected) << "srec_cat read other bytes";
    }
  }
}

}  // namespace
}  // namespace kestrum
