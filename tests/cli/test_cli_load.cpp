#include <gtest/gtest.h>

#include "TestSupport.h"

namespace kestrum {
namespace {

using test::RunProgram;
using test::TempDir;
using test::WriteFile;

// Files of every kind the cases load, in one folder the calls run in.
struct Files {
  TempDir dir;
  Files() {
    WriteFile(dir / "app.hex", ":0410000001020304E2\r\n:00000001FF\r\n");
    WriteFile(dir / "app.s", "S00600004844521B\r\nS107100001020304DE\r\nS9030000FC\r\n");
    WriteFile(dir / "patch.s", "S1051002AABB83\r\n");
    WriteFile(dir / "image.bin", std::string("\x11\x22\x33\x44", 4));
    WriteFile(dir / "sum.hex", ":0410000001020304E2\r\n:0410000001020304E3\r\n");
    WriteFile(dir / "format.s", "S107100001020304DE\r\nS9030000FC\r\nS4030000FC\r\n");
    WriteFile(dir / "lf.hex", ":0410000001020304E2\n:00000001FF\n");
    std::filesystem::create_directory(dir / "folder");
  }
  test::RunResult Run(std::vector<std::string> args) const {
    args.insert(args.begin(), KESTRUM_CLI);
    return RunProgram(args, dir.path());
  }
};

std::string Row(const char* address, const std::string& bytes, int total = 16) {
  return std::string(address) + "  " + bytes + std::string(2 * total - bytes.size(), 'F') + "\n";
}

TEST(CliLoad, LoadedBytesShowInDumpAndSum) {
  const Files files;
  const struct {
    const char* name;
    std::vector<std::string> args;
    std::string out;
  } cases[] = {
      {"HEX", {"--area", "1000:100F", "load", "app.hex", "dump", "1000"}, Row("00001000", "01020304")},
      {"S", {"load", "app.s", "sum", "1000:1003"}, "8-8bit=0A 8-16bit=000A 16-16bit=0406\n"},
      {"BIN from the range's start, cut at its end",
       {"--area", "1000:100F", "load", "image.bin", "--range", "1002:1003", "dump", "1000"},
       Row("00001000", "FFFF1122")},
      {"BIN with an offset", {"--area", "1000:100F", "load", "image.bin", "--offset", "+2", "dump", "1000"},
       Row("00001000", "FFFF11223344")},
      {"HEX with a negative offset", {"--area", "0:F", "load", "app.hex", "--offset", "-1000", "dump", "0"},
       Row("00000000", "01020304")},
      {"range clips", {"--area", "1000:100F", "load", "app.hex", "--range", "1001:1002", "dump", "1000"},
       Row("00001000", "FF0203")},
      {"second load overlays", {"--area", "1000:100F", "load", "app.hex", "load", "patch.s", "dump", "1000"},
       Row("00001000", "0102AABB")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto r = files.Run(c.args);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, "");
  }
}

TEST(CliLoad, FailuresStopWithTheirWordsAndStatus) {
  const Files files;
  const struct {
    const char* name;
    std::vector<std::string> args;
    int status;
    std::string err;
  } cases[] = {
      {"checksum", {"load", "sum.hex", "sum"}, 1, "sum.hex:2: SUM Error\n"},
      {"format", {"load", "format.s", "sum"}, 1, "format.s:3: Format Error\n"},
      {"lone LF", {"load", "lf.hex", "sum"}, 1, "lf.hex:1: Format Error\n"},
      {"missing", {"load", "missing.hex", "sum"}, 1, "kestrum-cli: Cannot read missing.hex: No such file or directory\n"},
      {"folder with separator", {"load", "folder/", "sum"}, 1, "kestrum-cli: Cannot read folder/: Is a directory\n"},
      {"first outside", {"--area", "1000:1FFF", "load", "app.hex", "--range", "0:1FFF", "sum"}, 2,
       "kestrum-cli: First Address Error!\n"},
      {"last outside", {"load", "app.hex", "--range", "0:80000"}, 2, "kestrum-cli: Last Address Error!\n"},
      {"sign in the middle", {"load", "app.hex", "--offset", "12-34"}, 2, "kestrum-cli: OffsetAddress Error!\n"},
      {"empty offset", {"load", "app.hex", "--offset", ""}, 2, "kestrum-cli: Offset Address Error!\n"},
      {"no offset text", {"load", "app.hex", "--offset", "x1"}, 2,
       "kestrum-cli: --offset: 'x1' is no offset [+|-]HEX\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto r = files.Run(c.args);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(r.out, "");  // no later step ran
  }
}

}  // namespace
}  // namespace kestrum
