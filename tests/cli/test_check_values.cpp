// Check values stored into the image: the bytes of a CRC or a sum in each
// order and complement, and the bytes srec_cat's filters store over the
// same random image.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "RunCli.h"

namespace kestrum {
namespace {

using test::ReadFile, test::RunCli, test::RunProgram, test::TempDir, test::Words, test::WriteFile;

// The two dump rows of the area 0:1F: the nine digits at 0 and what follows
// them, then the second row (both padded with FF).
std::string Rows(const std::string& after9, const std::string& second) {
  return test::Row("00000000", "313233343536373839" + after9) + test::Row("00000010", second);
}

TEST(CheckValues, StoredBytesForEachOrderAndComplement) {
  TempDir dir;
  WriteFile(dir / "digits.bin", "123456789");
  const std::string crc32 = "CRC-32/ISO-HDLC=CBF43926\n", sums = "8-8bit=DD 8-16bit=01DD 16-16bit=09D4\n";
  const struct {
    std::string steps, out;
  } cases[] = {
      {"crc 0:8 --store 10 --order be dump 0", crc32 + Rows("", "CBF43926")},
      {"crc 0:8 --store 10 --order le dump 0", crc32 + Rows("", "2639F4CB")},
      // Just above the range, and the area's last byte.
      {"crc 0:8 --model CRC-16/XMODEM --store 9 --order le dump 0",
       "CRC-16/XMODEM=31C3\n" + Rows("C331", "")},
      {"crc 0:8 --model CRC-8/SMBUS --store 1F --order be dump 0",
       "CRC-8/SMBUS=F4\n" + Rows("", std::string(30, 'F') + "F4")},
      {"sum 0:8 --store 10 --kind 8-8 --order be dump 0", sums + Rows("", "DD")},
      {"sum 0:8 --store 10 --kind 8-8 --order le --complement ones dump 0", sums + Rows("", "22")},
      {"sum 0:8 --store 10 --kind 8-16 --order le --complement twos dump 0", sums + Rows("", "23FE")},
      {"sum 0:8 --store 10 --kind 16-16 --order be --complement ones dump 0", sums + Rows("", "F62B")},
      // The twos' complement of a 16-16 sum at an even address makes the words sum to zero.
      {"sum 0:9 --store A --kind 16-16 --order be --complement twos sum 0:B",
       "8-8bit=DC 8-16bit=02DC 16-16bit=0AD3\n8-8bit=FE 8-16bit=03FE 16-16bit=0000\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.steps);
    const auto r = RunCli(Words("--area 0:1F load digits.bin " + c.steps), dir.path());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, c.out);
  }
}

// srec_cat covers the bytes it holds: cropped to the range, they are ours.
TEST(CheckValues, SrecCatStoresTheSameBytes) {
  if (!std::filesystem::exists("/usr/bin/srec_cat")) GTEST_SKIP() << "srec_cat is not installed";
  TempDir dir;
  std::string image(0x20000, '\0');
  std::mt19937 random(3);
  for (auto& b : image) b = static_cast<char>(random());
  WriteFile(dir / "image.bin", image);
  const std::string negative = "-checksum-negative-big-endian 0x10000 ";
  const struct {
    std::string filter, step;  // srec_cat's filter, and our step storing its bytes at 10000
    int bytes;
  } cases[] = {
      {"-crc32-l-e 0x10000", "crc 11:FFFE --order le", 4},
      {"-crc16-b-e 0x10000", "crc 11:FFFE --model CRC-16/SPI-FUJITSU --order be", 2},
      {negative + "1 1", "sum 11:FFFE --kind 8-8 --order be --complement twos", 1},
      {negative + "2 1", "sum 11:FFFE --kind 8-16 --order be --complement twos", 2},
      {negative + "2 2", "sum 11:FFFE --kind 16-16 --order be --complement twos", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.filter);
    const auto made = RunProgram(
        Words("/usr/bin/srec_cat image.bin -binary -crop 0x11 0xFFFF " + c.filter + " -crop 0x10000 " +
              std::to_string(0x10000 + c.bytes) + " -offset -0x10000 -o theirs.bin -binary"),
        dir.path());
    ASSERT_EQ(made.status, 0) << made.err;
    const auto r = RunCli(Words("--area 0:1FFFF load image.bin " + c.step +
                                " --store 10000 save ours.bin --format bin --range 10000:" +
                                AddressToText(0x10000 + c.bytes - 1)),
                          dir.path());
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(ReadFile(dir / "ours.bin"), ReadFile(dir / "theirs.bin"));
  }
}

}  // namespace
}  // namespace kestrum
