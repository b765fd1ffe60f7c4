// Files written by peer tools load into the bytes of the binary they were
// made from.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "LoadCase.h"

namespace kestrum::test {
namespace {

namespace fs = std::filesystem;

TEST(LoadObjectFile, FilesWrittenByPeerToolsGiveTheBinaryBack) {
  const struct {
    const char* command;  // IN is the binary, OUT.ext the file to load
    Address base;
    std::size_t size;
    const char* message;  // "" when the load must go through
    std::uint64_t line;   // the line of the message
    bool bytesLoaded;     // the image holds the binary afterwards; else it is untouched
  } cases[] = {
      {"srec_cat IN -binary -offset 0x10000 -o OUT.hex -intel -crlf", 0x10000, 0x30000, "", 0, true},
      {"srec_cat IN -binary -o OUT.s -motorola -address-length=2 -crlf", 0, 0xF000, "", 0, true},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=3 -crlf", 0x10000, 0x30000, "",
       0, true},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=4 -crlf", 0x10000, 0x30000, "",
       0, true},
      // objcopy writes extended segment records below 1 MiB.
      {"objcopy -I binary -O ihex --change-addresses 0x10000 IN OUT.hex", 0x10000, 0x30000, "", 0, true},
      {"objcopy -I binary -O srec --change-addresses 0x10000 IN OUT.s", 0x10000, 0x30000, "", 0, true},
      {"objcopy -I binary -O srec --srec-forceS3 IN OUT.mot", 0, 0x20000, "", 0, true},
      // Past 65535 data records srec_cat counts them in an S6 record, a type
      // the reader refuses: every byte is in by then. One byte a record
      // makes a file of several reading blocks.
      {"srec_cat IN -binary -o OUT.s -motorola -obs=1 -crlf", 0, 0x20000, "Format Error", 0x20002, true},
      // Without -crlf srec_cat ends its lines with a lone LF, which ends no
      // line here: a HEX file is one line too long; an S file is one line
      // that begins with its S0 header and is passed over whole.
      {"srec_cat IN -binary -o OUT.hex -intel", 0, 0x1000, "Format Error", 1, false},
      {"srec_cat IN -binary -o OUT.s -motorola", 0, 0x1000, "", 0, false},
  };
  std::mt19937 random(1);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    std::istringstream words(c.command);
    std::vector<std::string> argv;
    for (std::string word; words >> word;) argv.push_back(word);
    const fs::path tool = fs::path("/usr/bin") / argv[0];
    if (!fs::exists(tool)) GTEST_SKIP() << tool << " is not installed";
    argv[0] = tool.string();
    TempDir dir;
    std::string binary(c.size, '\0');
    for (auto& b : binary) b = static_cast<char>(random());
    WriteFile(dir / "IN", binary);
    std::string out;
    for (auto& word : argv)
      if (word.rfind("OUT", 0) == 0) word = out = (dir / word).string();
    const RunResult made = RunProgram(argv, dir.path());
    ASSERT_EQ(made.status, 0) << made.err;

    Module1 m = MakeImage(0, kImageLast);
    ScriptedPlatform platform;
    m.LoadFileName = out;
    const LoadReport report = LoadObjectFile(m, platform, 0, kImageLast, fs::path(out).filename().string());
    EXPECT_EQ(platform.Texts(),
              *c.message ? std::vector<std::string>{c.message} : std::vector<std::string>{});
    EXPECT_EQ(report.line, c.line);
    std::string expected(static_cast<std::size_t>(m.BufSize), '\xFF');
    if (c.bytesLoaded) expected.replace(static_cast<std::size_t>(c.base), c.size, binary);
    EXPECT_TRUE(std::string(reinterpret_cast<const char*>(m.Buffer.data()), expected.size()) == expected);
  }
}

}  // namespace
}  // namespace kestrum::test
