// Check values stored into the image: the bytes of a CRC or a sum in each
// order and complement, the refusals, and the bytes srec_cat's filters
// store over the same random image.
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
  const std::string first = "313233343536373839" + after9;
  return "00000000  " + first + std::string(32 - first.size(), 'F') + "\n00000010  " + second +
         std::string(32 - second.size(), 'F') + "\n";
}

TEST(CheckValues, StoredBytesForEachOrderAndComplement) {
  TempDir dir;
  WriteFile(dir / "digits.bin", "123456789");
  const std::string sums = "8-8bit=DD 8-16bit=01DD 16-16bit=09D4\n";
  const struct {
    std::string step;
    std::string out;
  } cases[] = {
      {.step = "crc 0:8 --store 10 --order be", .out = "CRC-32/ISO-HDLC=CBF43926\n" + Rows("", "CBF43926")},
      {.step = "crc 0:8 --store 10 --order le", .out = "CRC-32/ISO-HDLC=CBF43926\n" + Rows("", "2639F4CB")},
      {.step = "crc 0:8 --model CRC-16/XMODEM --store 9 --order le",
       .out = "CRC-16/XMODEM=31C3\n" + Rows("C331", "")},  // just above the range
      {.step = "crc 0:8 --model CRC-8/SMBUS --store 1F --order be",
       .out = "CRC-8/SMBUS=F4\n" + Rows("", std::string(30, 'F') + "F4")},  // the area's last byte
      {.step = "sum 0:8 --store 10 --kind 8-8 --order be", .out = sums + Rows("", "DD")},
      {.step = "sum 0:8 --store 10 --kind 8-8 --order le --complement ones", .out = sums + Rows("", "22")},
      {.step = "sum 0:8 --store 10 --kind 8-16 --order le --complement twos", .out = sums + Rows("", "23FE")},
      {.step = "sum 0:8 --store 10 --kind 16-16 --order be --complement ones",
       .out = sums + Rows("", "F62B")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.step);
    const auto r = RunCli(Words("--area 0:1F load digits.bin " + c.step + " dump 0"), dir.path());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, c.out);
  }
  // The twos' complement of a 16-16 sum at an even address makes the words sum to zero.
  const auto r = RunCli(
      Words(
          "--area 0:1F load digits.bin sum 0:9 --store A --kind 16-16 --order be --complement twos sum 0:B"),
      dir.path());
  EXPECT_EQ(r.out, "8-8bit=DC 8-16bit=02DC 16-16bit=0AD3\n8-8bit=FE 8-16bit=03FE 16-16bit=0000\n");
}

TEST(CheckValues, RefusalsChangeNothing) {
  TempDir dir;
  const struct {
    std::string step;
    const char* err;
  } cases[] = {
      {.step = "crc 0:8 --store 1E --order be", .err = "21 lies outside the area 00000000..0000001F"},
      {.step = "crc 0:8 --store 6 --order le", .err = "06..00000009 lies inside the range it checks, 0000"},
      {.step = "sum 0:8 --store 8 --kind 8-8 --order be", .err = "08..00000008 lies inside"},
      {.step = "crc 0:8 --store 10", .err = "--store needs --order be|le"},
      {.step = "crc 0:8 --order be", .err = "--order goes with --store"},
      {.step = "sum 0:8 --store 10 --kind 8-8", .err = "--store needs --order be|le"},
      {.step = "sum 0:8 --store 10 --order be", .err = "--store needs --kind 8-8|8-16|16-16"},
      {.step = "sum 0:8 --complement twos", .err = "--complement goes with --store"},
      {.step = "sum 0:8 --store 10 --kind 8-8 --order be --complement two", .err = "'two'"},
      {.step = "crc 0:20", .err = "kestrum-cli: Last Address Error!\n"},
      {.step = "crc 0:8 --model CRC-99", .err = "unknown CRC model 'CRC-99'"},
      {.step = "crc 0:8 --model custom:10,1FFFF,0,false,false,0",
       .err = "POLY 1FFFF does not fit in 16 bits"},
      {.step = "crc 0:8 --model custom:8,7,100,false,false,0", .err = "INIT 100 does not fit in 8 bits"},
      {.step = "crc 0:8 --model custom:41,7,0,false,false,0", .err = "WIDTH 41 is not 1 to 40"},
      {.step = "crc 0:8 --model custom:8,7,0,yes,false,0", .err = "REFIN 'yes' is no true or false"},
      {.step = "crc 0:8 --model custom:8,7,0", .err = "a custom model is custom:WIDTH,POLY,INIT,REFIN"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.step);
    const auto r = RunCli(Words("--area 0:1F " + c.step + " dump 0"), dir.path());
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.out, "") << "no line printed and no later step run";
    EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
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
  const struct {
    std::string filter, step;  // srec_cat's filter, and our step storing its bytes at 10000
    int bytes;
  } cases[] = {
      {.filter = "-crc32-l-e 0x10000", .step = "crc 11:FFFE --order le", .bytes = 4},
      {.filter = "-crc16-b-e 0x10000",
       .step = "crc 11:FFFE --model CRC-16/SPI-FUJITSU --order be",
       .bytes = 2},
      {.filter = "-checksum-negative-big-endian 0x10000 1 1",
       .step = "sum 11:FFFE --kind 8-8 --order be --complement twos",
       .bytes = 1},
      {.filter = "-checksum-negative-big-endian 0x10000 2 1",
       .step = "sum 11:FFFE --kind 8-16 --order be --complement twos",
       .bytes = 2},
      {.filter = "-checksum-negative-big-endian 0x10000 2 2",
       .step = "sum 11:FFFE --kind 16-16 --order be --complement twos",
       .bytes = 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.filter);
    const auto made =
        RunProgram({"/bin/sh", "-c",
                    "srec_cat image.bin -binary -crop 0x11 0xFFFF " + c.filter + " -crop 0x10000 " +
                        std::to_string(0x10000 + c.bytes) + " -offset -0x10000 -o theirs.bin -binary"},
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
