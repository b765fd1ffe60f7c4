#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

using test::ReadFile;
using test::RunProgram;
using test::TempDir;

TEST(CliSave, FilesAreTheWindowWritersOwn) {
  struct Fill {
    Address first, last;
    std::uint8_t byte;
  };
  const std::vector<Fill> fills = {{0x10, 0x3F, 0x12}, {0xFFF0, 0x1000F, 0xA5}, {0x10008, 0x10008, 0x00}};
  const struct {
    Address areaLast;
    const char* format;  // bin, hex, s, or a sum for ysm
    Address first, last;
    int recordLength;
  } cases[] = {
      {0x3FFFF, "bin", 0x8, 0x10010, 0x10},    {0x3FFFF, "hex", 0xFFF1, 0x2000A, 0x0B},
      {0x1000F, "hex", 0xFFF3, 0x1000C, 0x10},  // records cut at the end of the area
      {0x3FFFF, "s", 0xFF00, 0x10101, 0x20},   {0x3FFFF, "8-8", 0x11, 0x10008, 0},
      {0x3FFFF, "8-16", 0x11, 0x10008, 0},     {0x3FFFF, "16-16", 0x11, 0x10008, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.format) + " " + AddressToText(c.first) + ".." + AddressToText(c.last));
    TempDir dir;
    const std::string cliFile = (dir / "cli.out").string(), coreFile = (dir / "core.out").string();
    const std::string format = c.format, range = AddressToText(c.first) + ":" + AddressToText(c.last);
    const bool ysm = format != "bin" && format != "hex" && format != "s";
    Module1 m = test::MakeImage(0, c.areaLast);
    std::vector<std::string> argv{KESTRUM_CLI, "--area", "0:" + AddressToText(c.areaLast)};
    for (const auto& f : fills) {
      argv.insert(argv.end(),
                  {"fill", AddressToText(f.first) + ":" + AddressToText(f.last), HexByteText(f.byte)});
      std::memset(&m.At(f.first), f.byte, static_cast<std::size_t>(f.last - f.first + 1));
    }
    if (ysm) {
      argv.insert(argv.end(), {"ysm", cliFile, "--sum", format, "--range", range});
    } else {
      argv.insert(argv.end(), {"save", cliFile, "--format", format, "--range", range, "--record-length",
                               HexByteText(c.recordLength)});
    }
    const auto r = RunProgram(argv);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out + r.err, "");

    m.SaveFirst = c.first;
    m.SaveLast = c.last;
    m.RecordLength = static_cast<std::int16_t>(c.recordLength);
    test::ScriptedPlatform platform;
    const SaveOutcome outcome = ysm               ? SaveYsmFile(m, platform, coreFile, format + "SUM")
                                : format == "bin" ? SaveBinFile(m, platform, coreFile)
                                : format == "hex" ? SaveHexFile(m, platform, coreFile)
                                                  : SaveSFile(m, platform, coreFile);
    ASSERT_EQ(outcome, SaveOutcome::Done);
    EXPECT_TRUE(ReadFile(cliFile) == ReadFile(coreFile))
        << "the command line wrote other bytes than the window";
  }
}

TEST(CliSave, DefaultsAreTheAreaAndLength10AndAnOldFileIsReplacedWhole) {
  TempDir dir;
  test::WriteFile(dir / "a.bin", std::string(100, 'x'));
  const auto r = RunProgram({KESTRUM_CLI, "--area", "0:1F", "save", "a.hex", "--format", "HEX", "ysm",
                             "a.ysm", "--sum", "8-16", "save", "a.bin", "--format", "bin", "--range", "0:3"},
                            dir.path());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(dir / "a.hex"),
            ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:10001000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF0\r\n"
            ":00000001FF\r\n");
  EXPECT_EQ(ReadFile(dir / "a.ysm"), "S307000000001FE0F9\r\nS3060000000001F8\r\nS70500000000FA\r\n");
  EXPECT_EQ(ReadFile(dir / "a.bin"), std::string(4, '\xFF'));
}

TEST(CliSave, RefusalsLeaveTheOldFile) {
  const struct {
    std::vector<std::string> step;
    const char* words;
  } cases[] = {
      {{"save", "old", "--format", "hex", "--range", "90000:80000"}, "Address Error!"},
      {{"save", "old", "--format", "s", "--range", "0:80000", "--record-length", "0"}, "RecordLength Error!"},
      {{"save", "old", "--format", "hex", "--record-length", "100"}, "RecordLength Error!"},
      {{"save", "old", "--format", "hex", "--record-length", "1G"}, "RecordLength Error!"},
      {{"save", "old", "--format", "bin", "--range", "80000:90000"}, "FirstAddress Error!"},
      {{"save", "old", "--format", "bin", "--range", "0:80000"}, "LastAddress Error!"},
      {{"save", "old", "--format", "elf"}, "Format Error!"},
      {{"save", "old"}, "save needs --format"},
      {{"ysm", "old", "--sum", "32"}, "YSM File Format Error!"},
      {{"ysm", "old", "--range", "0:1"}, "ysm needs --sum"},
      {{"ysm", "old", "--sum", "8-8", "--range", "0-1"}, "--range"},
      {{"save", "old", "--format", "s", "--range", "0:1FF", "--record-length", "FD"}, "Record Length Error!"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.words);
    TempDir dir;
    test::WriteFile(dir / "old", "the old file");
    std::vector<std::string> argv{KESTRUM_CLI};
    argv.insert(argv.end(), c.step.begin(), c.step.end());
    argv.insert(argv.end(), {"save", "after", "--format", "bin"});
    const auto r = RunProgram(argv, dir.path());
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find(c.words), std::string::npos) << r.err;
    EXPECT_EQ(ReadFile(dir / "old"), "the old file");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1)
        << "a later step ran or a working file stayed";
  }
}

}  // namespace
}  // namespace kestrum
