// Check values stored into the image: the bytes of a CRC or a sum in each
// order and complement, the refusals, and the bytes srec_cat's filters
// store over the same random image.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "TestSupport.h"

namespace kestrum {
namespace {

using test::ReadFile, test::RunProgram, test::TempDir, test::WriteFile;

test::RunResult RunCli(std::vector<std::string> args, const std::filesystem::path& dir) {
  args.insert(args.begin(), KESTRUM_CLI);
  return RunProgram(args, dir);
}

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
    std::vector<std::string> step;
    std::string out;
  } cases[] = {
      {{"crc", "0:8", "--store", "10", "--order", "be"}, "CRC-32/ISO-HDLC=CBF43926\n" + Rows("", "CBF43926")},
      {{"crc", "0:8", "--store", "10", "--order", "le"}, "CRC-32/ISO-HDLC=CBF43926\n" + Rows("", "2639F4CB")},
      {{"crc", "0:8", "--model", "CRC-16/XMODEM", "--store", "9", "--order", "le"},
       "CRC-16/XMODEM=31C3\n" + Rows("C331", "")},  // just above the range
      {{"crc", "0:8", "--model", "CRC-8/SMBUS", "--store", "1F", "--order", "be"},
       "CRC-8/SMBUS=F4\n" + Rows("", std::string(30, 'F') + "F4")},  // the area's last byte
      {{"sum", "0:8", "--store", "10", "--kind", "8-8", "--order", "be"}, sums + Rows("", "DD")},
      {{"sum", "0:8", "--store", "10", "--kind", "8-8", "--order", "le", "--complement", "ones"},
       sums + Rows("", "22")},
      {{"sum", "0:8", "--store", "10", "--kind", "8-16", "--order", "le", "--complement", "twos"},
       sums + Rows("", "23FE")},
      {{"sum", "0:8", "--store", "10", "--kind", "16-16", "--order", "be", "--complement", "ones"},
       sums + Rows("", "F62B")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.step));
    std::vector<std::string> argv{"--area", "0:1F", "load", "digits.bin"};
    argv.insert(argv.end(), c.step.begin(), c.step.end());
    argv.insert(argv.end(), {"dump", "0"});
    const auto r = RunCli(argv, dir.path());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, c.out);
  }
  // The twos' complement of a 16-16 sum at an even address makes the words sum to zero.
  const auto r = RunCli({"--area", "0:1F", "load", "digits.bin", "sum", "0:9", "--store", "A", "--kind",
                         "16-16", "--order", "be", "--complement", "twos", "sum", "0:B"},
                        dir.path());
  EXPECT_EQ(r.out, "8-8bit=DC 8-16bit=02DC 16-16bit=0AD3\n8-8bit=FE 8-16bit=03FE 16-16bit=0000\n");
}

TEST(CheckValues, RefusalsChangeNothing) {
  TempDir dir;
  const struct {
    std::vector<std::string> step;
    const char* err;
  } cases[] = {
      {{"crc", "0:8", "--store", "1E", "--order", "be"}, "21 lies outside the area 00000000..0000001F"},
      {{"crc", "0:8", "--store", "6", "--order", "le"}, "06..00000009 lies inside the range it checks, 0000"},
      {{"sum", "0:8", "--store", "8", "--kind", "8-8", "--order", "be"}, "08..00000008 lies inside"},
      {{"crc", "0:8", "--store", "10"}, "--store needs --order be|le"},
      {{"crc", "0:8", "--order", "be"}, "--order goes with --store"},
      {{"sum", "0:8", "--store", "10", "--kind", "8-8"}, "--store needs --order be|le"},
      {{"sum", "0:8", "--store", "10", "--order", "be"}, "--store needs --kind 8-8|8-16|16-16"},
      {{"sum", "0:8", "--complement", "twos"}, "--complement goes with --store"},
      {{"sum", "0:8", "--store", "10", "--kind", "8-8", "--order", "be", "--complement", "two"}, "'two'"},
      {{"crc", "0:20"}, "kestrum-cli: Last Address Error!\n"},
      {{"crc", "0:8", "--model", "CRC-99"}, "unknown CRC model 'CRC-99'"},
      {{"crc", "0:8", "--model", "custom:10,1FFFF,0,false,false,0"}, "POLY 1FFFF does not fit in 16 bits"},
      {{"crc", "0:8", "--model", "custom:8,7,100,false,false,0"}, "INIT 100 does not fit in 8 bits"},
      {{"crc", "0:8", "--model", "custom:41,7,0,false,false,0"}, "WIDTH 41 is not 1 to 40"},
      {{"crc", "0:8", "--model", "custom:8,7,0,yes,false,0"}, "REFIN 'yes' is no true or false"},
      {{"crc", "0:8", "--model", "custom:8,7,0"}, "a custom model is custom:WIDTH,POLY,INIT,REFIN"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.step));
    std::vector<std::string> argv{"--area", "0:1F"};
    argv.insert(argv.end(), c.step.begin(), c.step.end());
    argv.insert(argv.end(), {"dump", "0"});
    const auto r = RunCli(argv, dir.path());
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
    const char* filter;
    std::vector<std::string> step;
    int bytes;
  } cases[] = {
      {"-crc32-l-e 0x10000", {"crc", "11:FFFE", "--order", "le"}, 4},
      {"-crc16-b-e 0x10000", {"crc", "11:FFFE", "--model", "CRC-16/SPI-FUJITSU", "--order", "be"}, 2},
      {"-checksum-negative-big-endian 0x10000 1 1", {"sum", "11:FFFE", "--kind", "8-8", "--order", "be"}, 1},
      {"-checksum-negative-big-endian 0x10000 2 1", {"sum", "11:FFFE", "--kind", "8-16", "--order", "be"}, 2},
      {"-checksum-negative-big-endian 0x10000 2 2",
       {"sum", "11:FFFE", "--kind", "16-16", "--order", "be"},
       2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.filter);
    const std::string end = std::to_string(0x10000 + c.bytes);
    const auto made = RunProgram({"/bin/sh", "-c",
                                  "srec_cat image.bin -binary -crop 0x11 0xFFFF " + std::string(c.filter) +
                                      " -crop 0x10000 " + end + " -offset -0x10000 -o theirs.bin -binary"},
                                 dir.path());
    ASSERT_EQ(made.status, 0) << made.err;
    std::vector<std::string> argv{"--area", "0:1FFFF", "load", "image.bin"};
    argv.insert(argv.end(), c.step.begin(), c.step.end());
    if (c.step[0] == "sum") argv.insert(argv.end(), {"--complement", "twos"});
    argv.insert(argv.end(), {"--store", "10000", "save", "ours.bin", "--format", "bin", "--range",
                             "10000:" + AddressToText(0x10000 + c.bytes - 1)});
    const auto r = RunCli(argv, dir.path());
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(ReadFile(dir / "ours.bin"), ReadFile(dir / "theirs.bin"));
  }
}

}  // namespace
}  // namespace kestrum
