// What each writer writes, our loader and srec_cat, a peer tool, read back
// into the same bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <random>
#include <regex>
#include <sstream>
#include <string>

#include "TestSupport.h"
#include "reading/LoadObjectFile.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

constexpr const char* kSrecCat = "/usr/bin/srec_cat";

std::string Hex(Address value) {
  std::ostringstream s;
  s << "0x" << std::hex << std::uppercase << value;
  return s.str();
}

TEST(RoundTrip, SameBytesBack) {
  // Under a segment base (02) srec_cat folds a record that runs past a 64 K
  // boundary back into its segment, as Intel defines that record; our files
  // keep such a record's bytes in one line at rising addresses, so the peer
  // reads only the rows without such a record.
  const struct {
    const char* name;
    Address areaFirst, areaLast, saveFirst, saveLast;
    int recordLength;
    bool peer;
  } cases[] = {
      {"one byte", 0, 0xFFFF, 0x1234, 0x1234, 0x10, true},
      {"a range ending inside the last record", 0, 0xFFF, 0x10, 0x7FF, 0x30, true},
      {"a record across 00010000 before any base", 0, 0x1FFFF, 0xFFF8, 0x1000F, 0x10, true},
      {"segment bases, 64 K boundaries between records", 0, 0x3FFFF, 0xFFF0, 0x3000F, 0x10, true},
      {"segment bases, records across 64 K boundaries", 0, 0x3FFFF, 0xFFF5, 0x3000A, 0x0B, false},
      {"segment bases giving way to linear ones", 0xF0000, 0x10FFFF, 0xFFF00, 0x1000FF, 0x80, true},
      {"a record across 00100000 under a segment base", 0xF0000, 0x10FFFF, 0xFFF00, 0x1000FF, 0xF0, false},
      {"linear bases, records across 64 K boundaries", 0x100000, 0x13FFFF, 0x10FFF0, 0x13000F, 0x0B, true},
      {"S1 to S2", 0xFF00, 0x200FF, 0xFF00, 0x100FF, 0x21, true},
      {"S2 to S3", 0xFFFF00, 0x10000FF, 0xFFFF03, 0x10000FF, 0x07, true},
      {"S1, S2 and S3 in one file", 0xFF00, 0x10000FF, 0xFFF0, 0x1000020, 0xFA, false},
      {"the top of the address space", 0xFFFF0000, 0xFFFFFFFF, 0xFFFFFF00, 0xFFFFFFFF, 0x0D, true},
  };
  const bool havePeer = std::filesystem::exists(kSrecCat);
  std::mt19937 random(7);
  for (const auto& c : cases) {
    Module1 source = test::MakeImage(c.areaFirst, c.areaLast);
    for (Address a = c.areaFirst; a <= c.areaLast; ++a) source.At(a) = static_cast<std::uint8_t>(random());
    source.SaveFirst = c.saveFirst;
    source.SaveLast = c.saveLast;
    source.RecordLength = static_cast<std::int16_t>(c.recordLength);
    const auto n = static_cast<std::size_t>(c.saveLast - c.saveFirst + 1);
    const std::string expected(reinterpret_cast<const char*>(&source.At(c.saveFirst)), n);
    for (const std::string name : {"image.BIN", "image.HEX", "image.S"}) {
      SCOPED_TRACE(std::string(c.name) + ", " + name);
      test::TempDir dir;
      const std::string path = (dir / name).string();
      test::ScriptedPlatform platform;
      const SaveOutcome saved = name == "image.BIN"   ? SaveBinFile(source, platform, path)
                                : name == "image.HEX" ? SaveHexFile(source, platform, path)
                                                      : SaveSFile(source, platform, path);
      ASSERT_EQ(saved, SaveOutcome::Done);

      Module1 back = test::MakeImage(c.areaFirst, c.areaLast);
      std::memset(back.Buffer.data(), 0, static_cast<std::size_t>(back.BufSize));
      back.LoadFileName = path;
      const Address loadFirst = name == "image.BIN" ? c.saveFirst : c.areaFirst;
      const LoadReport report = LoadObjectFile(back, platform, loadFirst, c.areaLast, name);
      ASSERT_TRUE(report.Loaded()) << report.message;
      EXPECT_TRUE(std::string(reinterpret_cast<const char*>(&back.At(c.saveFirst)), n) == expected);
      // Nothing lands below the range; above it only the rest of the last
      // HEX record, which holds the image's own bytes.
      for (Address a = c.areaFirst; a < c.saveFirst; ++a) ASSERT_EQ(back.At(a), 0) << a;
      for (Address a = c.saveLast + 1; a <= c.areaLast && a < c.saveLast + 0x100; ++a)
        ASSERT_TRUE(back.At(a) == 0 || (name == "image.HEX" && back.At(a) == source.At(a))) << a;

      if (!c.peer || !havePeer || name == "image.BIN") continue;
      const std::string out = (dir / "peer.bin").string();
      std::vector<std::string> argv{kSrecCat, path, name == "image.HEX" ? "-intel" : "-motorola"};
      // srec_cat can't take a crop that ends at 2 to the power 32; at the
      // top of the space nothing lies past the range anyway.
      if (c.saveLast < kAddressMax) argv.insert(argv.end(), {"-crop", Hex(c.saveFirst), Hex(c.saveLast + 1)});
      argv.insert(argv.end(), {"-offset", "-" + Hex(c.saveFirst), "-o", out, "-binary"});
      const auto r = test::RunProgram(argv);
      EXPECT_EQ(r.status, 0) << r.err;
      // Our S files have no S0 header, on purpose; any other word is a complaint.
      EXPECT_FALSE(std::regex_search(std::regex_replace(r.err, std::regex("warning: no header\\s+record"), ""),
                                     std::regex("warning|error")))
          << r.err;
      EXPECT_TRUE(test::ReadFile(out) == expected) << "srec_cat read other bytes";
    }
  }
}

}  // namespace
}  // namespace kestrum
