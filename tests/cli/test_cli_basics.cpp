// What the command line adds to the core: the parsing of the call, the exit
// statuses, the words on standard output and standard error, and FILE:LINE.
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace kestrum {
namespace {

using test::WriteFile;

// A folder of files to load, where the calls run.
struct Files {
  test::TempDir dir;
  Files() {
    WriteFile(dir / "app.hex", ":0410000001020304E2\r\n:00000001FF\r\n");
    WriteFile(dir / "app.s", "S00600004844521B\r\nS107100001020304DE\r\nS9030000FC\r\n");
    WriteFile(dir / "image.bin", "\x11\x22\x33\x44");
    WriteFile(dir / "sum.hex", ":0410000001020304E2\r\n:0410000001020304E3\r\n");
    WriteFile(dir / "format.s", "S107100001020304DE\r\nS9030000FC\r\nS4030000FC\r\n");
    std::filesystem::create_directory(dir / "folder");
  }
  test::RunResult Run(std::vector<std::string> args) const {
    args.insert(args.begin(), KESTRUM_CLI);
    return test::RunProgram(args, dir.path());
  }
};

TEST(Cli, HelpAndVersion) {
  const Files files;
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"--help"}, "Usage: kestrum-cli [--area FIRST:LAST]"},
      {{"--version"}, "kestrum-cli " KESTRUM_VERSION},
      {{"load", "--help"}, "Usage: kestrum-cli load FILE"},
  };
  for (const auto& [args, out] : cases) {
    const auto r = files.Run(args);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out.rfind(out, 0), 0u) << r.out;
  }
  const std::string help = files.Run({"--help"}).out;
  for (const char* step :
       {"load FILE", "fill FIRST:LAST BYTE", "clear", "sum", "dump ADDRESS", "save FILE", "ysm FILE"})
    EXPECT_NE(help.find(step), std::string::npos) << step;
}

std::string Row(const char* address, const std::string& bytes, int total = 16) {
  return std::string(address) + "  " + bytes + std::string(2 * total - bytes.size(), 'F') + "\n";
}

TEST(Cli, StepsPrintOrStopWithStatusAndWords) {
  const Files files;
  const struct {
    std::vector<std::string> args;
    int status;
    std::string out;  // all of standard output
    const char* err;  // what standard error holds
  } cases[] = {
      {{"clear"}, 0, "", ""},
      {{"sum"}, 0, "8-8bit=00 8-16bit=0000 16-16bit=0000\n", ""},
      {{"--area", "1000:1FFF", "fill", "1FF0:100F", "0", "sum"},
       0,
       "8-8bit=20 8-16bit=D020 16-16bit=F810\n",
       ""},
      {{"dump", "7FFFF", "fill", "7FFFF:7FFFF", "A", "dump", "7FFF0"},
       0,
       Row("0007FFFF", "", 1) + "0007FFF0  " + std::string(30, 'F') + "0A\n",
       ""},
      {{"--area", "1000:100F", "load", "app.hex", "dump", "1000"}, 0, Row("00001000", "01020304"), ""},
      {{"load", "app.s", "sum", "1000:1003"}, 0, "8-8bit=0A 8-16bit=000A 16-16bit=0406\n", ""},
      {{"--area", "1000:100F", "load", "image.bin", "--range", "1002:1005", "--offset", "+1", "dump", "1000"},
       0,
       Row("00001000", "FFFFFF112233"),
       ""},
      {{"--area", "0:F", "load", "app.hex", "--offset", "-1000", "dump", "0"},
       0,
       Row("00000000", "01020304"),
       ""},
      // Usage errors, found before any step runs.
      {{}, 2, "", "no step"},
      {{"frobnicate"}, 2, "", "unknown step 'frobnicate'"},
      {{"sum", "0:0", "bogus"}, 2, "", "unknown step 'bogus'"},
      {{"--colour"}, 2, "", "unknown option"},
      {{"--area"}, 2, "", "--area needs"},
      {{"--area", "0:7XFFF", "clear"}, 2, "", "--area"},
      {{"--area", "7FFFF", "clear"}, 2, "", "FIRST:LAST"},
      {{"clear", "--range", "0:1"}, 2, "", "clear has no option '--range'"},
      // Values the dialog would refuse: its words, and no later step runs.
      {{"--area", "100:FF", "clear"}, 2, "", "kestrum-cli: Address Error\n"},
      {{"--area", "0:FFFFFFFF", "clear"}, 1, "", "kestrum-cli: Out of Memory\n"},
      {{"fill", "80000:80001", "0", "sum"}, 2, "", "kestrum-cli: Address Error\n"},
      {{"fill", "0:1", "100", "sum"}, 2, "", "kestrum-cli: Data Error!\n"},
      {{"fill", "0", "1", "sum"}, 2, "", "kestrum-cli: '0' is no range FIRST:LAST\n"},
      {{"sum", "0:0", "sum", "1:0", "sum", "0:0"},
       2,
       "8-8bit=FF 8-16bit=00FF 16-16bit=FF00\n",
       "kestrum-cli: Address Error!\n"},
      {{"dump", "80000", "sum"}, 2, "", "kestrum-cli: Dump Address Error!\n"},
      {{"dump", "12G", "sum"}, 2, "", "kestrum-cli: Dump Address Error!\n"},
      {{"load", "app.hex", "--range", "0:80000", "sum"}, 2, "", "kestrum-cli: Last Address Error!\n"},
      {{"load", "app.hex", "--offset", "12-34", "sum"}, 2, "", "kestrum-cli: OffsetAddress Error!\n"},
      {{"load", "app.hex", "--offset", "", "sum"}, 2, "", "kestrum-cli: Offset Address Error!\n"},
      {{"load", "app.hex", "--offset", "x1", "sum"},
       2,
       "",
       "kestrum-cli: --offset: 'x1' is no offset [+|-]HEX\n"},
      // Record and file failures.
      {{"load", "sum.hex", "sum"}, 1, "", "sum.hex:2: SUM Error\n"},
      {{"load", "format.s", "sum"}, 1, "", "format.s:3: Format Error\n"},
      {{"load", "missing.hex", "sum"},
       1,
       "",
       "kestrum-cli: Cannot read missing.hex: No such file or directory\n"},
      {{"load", "folder/", "sum"}, 1, "", "kestrum-cli: Cannot read folder/: Is a directory\n"},
  };
  for (const auto& c : cases) {
    std::string call;
    for (const auto& a : c.args) call += a + " ";
    SCOPED_TRACE(call);
    const auto r = files.Run(c.args);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    if (c.status == 0) {
      EXPECT_EQ(r.err, "");
    }
  }
}

}  // namespace
}  // namespace kestrum
