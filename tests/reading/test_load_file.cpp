// Loads of real files: the failures of the file itself, and files written
// by peer tools, which must give the bytes of the binary they were made from.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <sstream>

#include "LoadCase.h"
#include "reading/LoadObjectFile.h"

namespace kestrum::test {
namespace {

namespace fs = std::filesystem;

struct FileLoad {
  Module1 m = MakeImage(0, kImageLast);
  ScriptedPlatform platform;
  LoadReport report;

  void Load(const fs::path& path, Address first = 0, Address last = kImageLast) {
    m.LoadFileName = path.string();
    report = LoadObjectFile(m, platform, first, last, path.filename().string());
  }
  bool Untouched() const {
    for (Address i = 0; i <= kImageLast; ++i)
      if (m.Buffer[static_cast<std::size_t>(i)] != 0xFF) return false;
    return true;
  }
};

TEST(LoadObjectFile, FileThatCannotBeReadStopsWithItsNameAndReason) {
  TempDir dir;
  fs::create_directory(dir / "folder.hex");
  const struct {
    fs::path path;
    std::string reason;
  } cases[] = {
      {dir / "missing.hex", "No such file or directory"},
      {dir / "folder.hex", "Is a directory"},
      {dir.path().string() + "/", "Is a directory"},  // a name that is no pick of the file list
      {dir / "missing" / "a.bin", "No such file or directory"},
  };
  for (const auto& c : cases) {
    FileLoad load;
    load.Load(c.path);
    const std::string message = "Cannot read " + c.path.string() + ": " + c.reason;
    EXPECT_EQ(load.platform.Texts(), std::vector<std::string>{message});
    EXPECT_EQ(load.m.FileError, -1);
    EXPECT_EQ(load.report.outcome, LoadReport::Outcome::FileFailure);
    EXPECT_EQ(load.report.message, message);
    EXPECT_TRUE(load.Untouched());
  }
}

fs::path FindTool(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::stringstream dirs(path ? path : "");
  std::string dir;
  while (std::getline(dirs, dir, ':')) {
    const fs::path candidate = fs::path(dir) / name;
    if (!dir.empty() && fs::exists(candidate)) return candidate;
  }
  return {};
}

std::string RandomBytes(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(n, '\0');
  for (auto& b : bytes) b = static_cast<char>(random() & 0xFF);
  return bytes;
}

struct PeerCase {
  const char* tool;
  std::vector<std::string> args;  // behind the tool, with IN and OUT as placeholders
  Address base;
  std::size_t size;
  const char* message;  // "" when the load must go through
  std::uint64_t line;   // the line of the message
  bool bytesLoaded;     // the image holds the binary afterwards; else it is untouched
};

TEST(LoadObjectFile, FilesWrittenByPeerToolsGiveTheBinaryBack) {
  const PeerCase cases[] = {
      {"srec_cat", {"IN", "-binary", "-offset", "0x10000", "-o", "OUT.hex", "-intel", "-crlf"}, 0x10000, 0x30000, "",
       0, true},
      {"srec_cat", {"IN", "-binary", "-o", "OUT.s", "-motorola", "-address-length=2", "-crlf"}, 0, 0xF000, "", 0,
       true},
      {"srec_cat", {"IN", "-binary", "-offset", "0x10000", "-o", "OUT.s", "-motorola", "-address-length=3", "-crlf"},
       0x10000, 0x30000, "", 0, true},
      {"srec_cat", {"IN", "-binary", "-offset", "0x10000", "-o", "OUT.s", "-motorola", "-address-length=4", "-crlf"},
       0x10000, 0x30000, "", 0, true},
      {"objcopy", {"-I", "binary", "-O", "ihex", "--change-addresses", "0x10000", "IN", "OUT.hex"}, 0x10000, 0x30000,
       "", 0, true},
      {"objcopy", {"-I", "binary", "-O", "srec", "--change-addresses", "0x10000", "IN", "OUT.s"}, 0x10000, 0x30000,
       "", 0, true},
      {"objcopy", {"-I", "binary", "-O", "srec", "--srec-forceS3", "IN", "OUT.mot"}, 0, 0x20000, "", 0, true},
      {"objcopy", {"-I", "binary", "-O", "srec", "--srec-len=64", "IN", "OUT.s"}, 0, 0xF000, "", 0, true},
      // Past 65535 data records srec_cat counts them in an S6 record, a type
      // the reader refuses: every byte is in by then. One byte a record
      // makes a file of several reading blocks.
      {"srec_cat", {"IN", "-binary", "-o", "OUT.s", "-motorola", "-obs=1", "-crlf"}, 0, 0x20000, "Format Error",
       0x20002, true},
      // Without -crlf srec_cat ends its lines with a lone LF, which ends no
      // line here: a HEX file is one line too long; an S file is one line
      // that begins with its S0 header and is passed over whole.
      {"srec_cat", {"IN", "-binary", "-o", "OUT.hex", "-intel"}, 0, 0x1000, "Format Error", 1, false},
      {"srec_cat", {"IN", "-binary", "-o", "OUT.s", "-motorola"}, 0, 0x1000, "", 0, false},
  };
  unsigned seed = 1;
  for (const auto& c : cases) {
    const fs::path tool = FindTool(c.tool);
    if (tool.empty()) GTEST_SKIP() << c.tool << " is not installed";
    TempDir dir;
    const std::string binary = RandomBytes(c.size, seed++);
    WriteFile(dir / "image.bin", binary);
    std::vector<std::string> argv{tool.string()};
    std::string out;
    for (const auto& a : c.args) {
      if (a == "IN") {
        argv.push_back((dir / "image.bin").string());
      } else if (a.rfind("OUT", 0) == 0) {
        out = (dir / ("peer" + a.substr(3))).string();
        argv.push_back(out);
      } else {
        argv.push_back(a);
      }
    }
    const RunResult made = RunProgram(argv, dir.path());
    ASSERT_EQ(made.status, 0) << c.tool << ": " << made.err;
    SCOPED_TRACE(std::string(c.tool) + " " + fs::path(out).filename().string());

    FileLoad load;
    load.Load(out);
    const std::string message = c.message;
    EXPECT_EQ(load.platform.Texts(), message.empty() ? std::vector<std::string>{} : std::vector<std::string>{message});
    EXPECT_EQ(load.report.line, c.line);
    if (!c.bytesLoaded) {
      EXPECT_TRUE(load.Untouched());
      continue;
    }
    std::size_t wrong = 0;
    for (Address a = 0; a <= kImageLast; ++a) {
      const bool inside = a >= c.base && a < c.base + static_cast<Address>(c.size);
      const auto want = inside ? static_cast<std::uint8_t>(binary[static_cast<std::size_t>(a - c.base)]) : 0xFF;
      if (load.m.Buffer[static_cast<std::size_t>(a)] != want && wrong++ < 4) ADD_FAILURE() << "at " << std::hex << a;
    }
  }
}

}  // namespace
}  // namespace kestrum::test
