#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

using test::ReadFile;
using test::RunProgram;
using test::TempDir;
using test::WriteFile;

struct Fill {
  Address first, last;
  std::uint8_t byte;
};

// The fills as CLI steps, and the same image made in this process.
std::vector<std::string> FillSteps(const std::vector<Fill>& fills) {
  std::vector<std::string> steps;
  for (const auto& f : fills) {
    steps.insert(steps.end(), {"fill", AddressToText(f.first) + ":" + AddressToText(f.last), HexByteText(f.byte)});
  }
  return steps;
}

Module1 FilledImage(Address first, Address last, const std::vector<Fill>& fills) {
  Module1 m = test::MakeImage(first, last);
  for (const auto& f : fills)
    std::memset(&m.At(f.first), f.byte, static_cast<std::size_t>(f.last - f.first + 1));
  return m;
}

struct SameCase {
  const char* name;
  Address areaFirst, areaLast;
  std::vector<Fill> fills;
  const char* format;  // bin, hex, s, or a sum for ysm
  Address first, last;
  int recordLength;
};

TEST(CliSave, FilesAreTheWindowWritersOwn) {
  const std::vector<Fill> fills = {{0x10, 0x3F, 0x12}, {0xFFF0, 0x1000F, 0xA5}, {0x10008, 0x10008, 0x00}};
  const SameCase cases[] = {
      {"BIN", 0, 0x3FFFF, fills, "bin", 0x8, 0x10010, 0x10},
      {"HEX across 64 K with length 0B", 0, 0x3FFFF, fills, "hex", 0xFFF1, 0x2000A, 0x0B},
      {"HEX records cut at the end of the area", 0, 0x1000F, fills, "hex", 0xFFF3, 0x1000C, 0x10},
      {"S1 and S2, last record cut", 0, 0x3FFFF, fills, "s", 0xFF00, 0x10101, 0x20},
      {"HEX at the top of the space", 0xFFFF0000, 0xFFFFFFFF, {{0xFFFFFF00, 0xFFFFFFF0, 0x5A}}, "hex",
       0xFFFFFF00, 0xFFFFFFFF, 0xFF},
      {"YSM 8-8", 0, 0x3FFFF, fills, "8-8", 0x11, 0x10008, 0},
      {"YSM 8-16", 0, 0x3FFFF, fills, "8-16", 0x11, 0x10008, 0},
      {"YSM 16-16 from an odd address", 0, 0x3FFFF, fills, "16-16", 0x11, 0x10008, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    const std::string cliFile = (dir / "cli.out").string(), coreFile = (dir / "core.out").string();
    const std::string area = AddressToText(c.areaFirst) + ":" + AddressToText(c.areaLast);
    const std::string range = AddressToText(c.first) + ":" + AddressToText(c.last);
    std::vector<std::string> argv{KESTRUM_CLI, "--area", area};
    for (const auto& word : FillSteps(c.fills)) argv.push_back(word);
    const std::string format = c.format;
    const bool ysm = format != "bin" && format != "hex" && format != "s";
    if (ysm) {
      argv.insert(argv.end(), {"ysm", cliFile, "--sum", format, "--range", range});
    } else {
      argv.insert(argv.end(), {"save", cliFile, "--format", format, "--range", range, "--record-length",
                               HexByteText(c.recordLength)});
    }
    const auto r = RunProgram(argv);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "");

    Module1 m = FilledImage(c.areaFirst, c.areaLast, c.fills);
    m.SaveFirst = c.first;
    m.SaveLast = c.last;
    m.RecordLength = static_cast<std::int16_t>(c.recordLength);
    test::ScriptedPlatform platform;
    const SaveOutcome outcome = ysm               ? SaveYsmFile(m, platform, coreFile, format + "SUM")
                                : format == "bin" ? SaveBinFile(m, platform, coreFile)
                                : format == "hex" ? SaveHexFile(m, platform, coreFile)
                                                  : SaveSFile(m, platform, coreFile);
    ASSERT_EQ(outcome, SaveOutcome::Done);
    const std::string cli = ReadFile(cliFile), core = ReadFile(coreFile);
    EXPECT_FALSE(cli.empty());
    EXPECT_TRUE(cli == core) << "the command line wrote other bytes than the window's writer";
  }
}

TEST(CliSave, DefaultsAreTheAreaAndLength10) {
  TempDir dir;
  const auto r = RunProgram({KESTRUM_CLI, "--area", "0:1F", "save", "a.hex", "--format", "HEX", "ysm", "a.ysm",
                             "--sum", "8-16"},
                            dir.path());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(dir / "a.hex"),
            ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:10001000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF0\r\n"
            ":00000001FF\r\n");
  EXPECT_EQ(ReadFile(dir / "a.ysm"), "S307000000001FE0F9\r\nS3060000000001F8\r\nS70500000000FA\r\n");
}

TEST(CliSave, AnExistingFileIsReplacedWhole) {
  TempDir dir;
  WriteFile(dir / "a.bin", std::string(100, 'x'));
  const auto r = RunProgram({KESTRUM_CLI, "save", "a.bin", "--format", "bin", "--range", "0:3"}, dir.path());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(dir / "a.bin"), std::string(4, '\xFF'));
}

struct RefusalCase {
  const char* name;
  std::vector<std::string> step;
  int status;
  const char* words;
};

TEST(CliSave, RefusalsAndFailuresLeaveTheOldFile) {
  const RefusalCase cases[] = {
      {"first above last", {"save", "old", "--format", "hex", "--range", "90000:80000"}, 2, "Address Error!"},
      {"record length 0 before the bounds",
       {"save", "old", "--format", "s", "--range", "0:80000", "--record-length", "0"}, 2, "RecordLength Error!"},
      {"record length of three digits", {"save", "old", "--format", "hex", "--record-length", "100"}, 2,
       "RecordLength Error!"},
      {"record length not hexadecimal", {"save", "old", "--format", "hex", "--record-length", "1G"}, 2,
       "RecordLength Error!"},
      {"first outside", {"save", "old", "--format", "bin", "--range", "80000:90000"}, 2, "FirstAddress Error!"},
      {"last outside", {"save", "old", "--format", "bin", "--range", "0:80000"}, 2, "LastAddress Error!"},
      {"unknown format", {"save", "old", "--format", "elf"}, 2, "Format Error!"},
      {"no format", {"save", "old"}, 2, "save needs --format"},
      {"unknown sum", {"ysm", "old", "--sum", "32"}, 2, "YSM File Format Error!"},
      {"no sum", {"ysm", "old", "--range", "0:1"}, 2, "ysm needs --sum"},
      {"bad range text", {"ysm", "old", "--sum", "8-8", "--range", "0-1"}, 2, "--range"},
      {"an S count above 255", {"save", "old", "--format", "s", "--range", "0:1FF", "--record-length", "FD"}, 2,
       "Record Length Error!"},
      {"a folder that doesn't exist", {"save", "gone/a.hex", "--format", "hex"}, 1,
       "gone/a.hex: No such file or directory"},
      {"a full disk", {"save", "/dev/full", "--format", "s"}, 1, "/dev/full: No space left on device"},
      {"a folder in the file's place", {"ysm", ".", "--sum", "8-8"}, 1, "Is a directory"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    WriteFile(dir / "old", "the old file");
    std::vector<std::string> argv{KESTRUM_CLI};
    argv.insert(argv.end(), c.step.begin(), c.step.end());
    argv.insert(argv.end(), {"save", "after", "--format", "bin"});
    const auto r = RunProgram(argv, dir.path());
    EXPECT_EQ(r.status, c.status);
    EXPECT_NE(r.err.find(c.words), std::string::npos) << r.err;
    EXPECT_EQ(ReadFile(dir / "old"), "the old file");
    EXPECT_FALSE(std::filesystem::exists(dir / "after")) << "a later step ran";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1) << "a working file stayed";
  }
}

}  // namespace
}  // namespace kestrum
