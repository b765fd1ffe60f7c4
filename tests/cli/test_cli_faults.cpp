// Faults of the file system, of memory and of hostile or huge files met by the
// command line: a fault stops with the file and the reason on standard error
// and status 1, runs no later step and leaves every file that was there as it
// was; the program never holds more than the image and a few MiB, whatever
// the size of the file or of its lines.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "image/Memory.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::RunProgram;
using test::TempDir;
using test::WriteFile;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr long kSlackKiB = 8 << 10;  // what a load may hold beyond the image and the program itself

const std::string kTooLong = [] {
  std::string path = "deep";
  while (path.size() <= 4096) path += "/" + std::string(250, 'd');
  return path;
}();

// An Intel HEX data record of bytes at address.
std::string Record(unsigned address, const std::vector<unsigned>& bytes) {
  std::string line = ":";
  unsigned sum = 0;
  const auto put = [&](unsigned byte) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02X", byte & 0xFF);
    line += pair;
    sum += byte & 0xFF;
  };
  put(static_cast<unsigned>(bytes.size()));
  put(address >> 8);
  put(address);
  put(0);
  for (const unsigned byte : bytes) put(byte);
  put(256 - (sum & 0xFF));
  return line + "\r\n";
}

// The peak memory of a run that loads nothing: the program and its image.
long BaselineKiB(const std::string& area) { return RunProgram({KESTRUM_CLI, "--area", area, "sum"}).peakKiB; }

std::function<void(const TempDir&)> Put(const char* name, std::string bytes) {
  return [=](const TempDir& d) { WriteFile(d / name, bytes); };
}

struct CliCase {
  const char* name;
  std::function<void(const TempDir&)> prepare;  // beside the file old
  std::vector<std::string> args;                // between the area and a last save
  int status;
  const char* out;
  std::string err;
  bool unprivileged = false;
  bool fills = false;  // files take no more than 4 KiB
};

TEST(CliFaults, StopWithTheFileAndTheReasonInBoundedMemory) {
  const auto readOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
  const std::string crs(4 * kMiB, '\r'), nuls(4 * kMiB, '\0'), longLine(8 * kMiB, '7');
  std::string outside = ":020000040001F9\r\n";  // every record above the area 0000..FFFF
  while (outside.size() < 16 * kMiB) outside += ":10000000000102030405060708090A0B0C0D0E0F78\r\n";
  const std::string sum00 = "8-8bit=00 8-16bit=0000 16-16bit=8000\n";
  const CliCase cases[] = {
      {"load of a file nobody may read", [](const TempDir& d) { fs::permissions(d / "old", fs::perms::none); },
       {"load", "old"}, 1, "", "kestrum-cli: Cannot read old: Permission denied\n", true},
      {"load of a pipe", [](const TempDir& d) { ASSERT_EQ(mkfifo((d / "pipe.hex").c_str(), 0600), 0); },
       {"load", "pipe.hex"}, 1, "", "kestrum-cli: Cannot read pipe.hex: not a regular file\n"},
      {"load of a path longer than the system takes", nullptr, {"load", kTooLong + "/a.hex"}, 1, "",
       "kestrum-cli: Cannot read " + kTooLong + "/a.hex: File name too long\n"},
      {"save into a read-only folder",
       [&](const TempDir& d) { fs::permissions(d.path(), readOnly | fs::perms::owner_exec | fs::perms::others_exec); },
       {"save", "a.s", "--format", "s"}, 1, "", "kestrum-cli: Can't create a.s: Permission denied\n", true},
      {"save over a read-only file",
       [&](const TempDir& d) {
         fs::permissions(d.path(), fs::perms::all);
         fs::permissions(d / "old", readOnly);
       },
       {"save", "old", "--format", "bin"}, 1, "", "kestrum-cli: Can't create old: Permission denied\n", true},
      {"ysm onto a full device", nullptr, {"ysm", "/dev/full", "--sum", "8-8"}, 1, "",
       "kestrum-cli: Can't write /dev/full: No space left on device\n"},
      {"save over a file when the disk fills halfway", nullptr, {"save", "old", "--format", "hex"}, 1, "",
       "kestrum-cli: Can't write old: File too large\n", false, true},
      {"save to a path longer than the system takes", nullptr, {"save", kTooLong + "/a.hex", "--format", "hex"}, 1,
       "", "kestrum-cli: Can't create " + kTooLong + "/a.hex: File name too long\n"},
      {"only CR characters", Put("cr.hex", crs), {"load", "cr.hex", "sum"}, 1, "", "cr.hex:1: Format Error\n"},
      {"only CR characters, decided by content", Put("cr.dat", crs), {"load", "cr.dat", "sum"}, 0, sum00.c_str(), ""},
      {"NUL bytes", Put("nul.s", nuls), {"load", "nul.s", "sum"}, 1, "", "nul.s:1: Format Error\n"},
      {"NUL bytes, decided by content", Put("nul.dat", nuls), {"load", "nul.dat", "sum"}, 0,
       "8-8bit=00 8-16bit=0000 16-16bit=0000\n", ""},
      {"a header line of megabytes passed over", Put("long.s", "S0" + longLine + "\r\nS104000012E9\r\n"),
       {"load", "long.s", "sum"}, 0, "8-8bit=13 8-16bit=FF13 16-16bit=9300\n", ""},
      {"a record of megabytes", Put("long.hex", Record(0, {0x12}) + ":" + longLine + "\r\n" + Record(1, {0x34})),
       {"load", "long.hex", "sum"}, 1, "", "long.hex:2: Format Error\n"},
      {"a line of megabytes ended by lone LFs", Put("lf.hex", std::string(4 * kMiB, '\n')),
       {"load", "lf.hex", "sum"}, 1, "", "lf.hex:1: Format Error\n"},
      {"every record outside the range", Put("outside.hex", outside), {"load", "outside.hex", "sum"}, 0,
       sum00.c_str(), ""},
  };
  const long baseline = BaselineKiB("0:FFFF");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    WriteFile(dir / "old", "the old file");
    if (c.prepare) c.prepare(dir);
    const auto entries = [&] { return std::distance(fs::directory_iterator(dir.path()), {}); };
    const auto before = entries();
    std::vector<std::string> argv{KESTRUM_CLI, "--area", "0:FFFF"};
    argv.insert(argv.end(), c.args.begin(), c.args.end());
    argv.insert(argv.end(), {"save", "after", "--format", "bin"});
    test::RunOptions options;
    options.unprivileged = c.unprivileged;
    test::RunResult r;
    {
      std::optional<test::FileSizeLimit> limit;
      if (c.fills) limit.emplace(4096);
      r = RunProgram(argv, dir.path(), options);
    }
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
    if (!test::kSanitized) {
      EXPECT_LE(r.peakKiB, baseline + kSlackKiB);
    }
    fs::permissions(dir.path(), fs::perms::owner_all, fs::perm_options::add);
    fs::permissions(dir / "old", fs::perms::owner_all, fs::perm_options::add);
    EXPECT_EQ(ReadFile(dir / "old"), "the old file");
    EXPECT_EQ(fs::exists(dir / "after"), c.status == 0) << "the later step ran only after a success";
    EXPECT_EQ(entries(), before + (c.status == 0)) << "a working file stayed";
  }
}

TEST(CliFaults, AnAreaTheMachineCannotBackIsOutOfMemory) {
  const struct {
    const char* name;
    const char* meminfo;
    std::uint64_t addressSpace;
    const char* area;
    int status;
  } cases[] = {
      {"memory for the area", "MemAvailable: 1024 kB\nSwapFree: 0 kB\n", 0, "0:7FFFF", 0},
      {"memory and swap for the area", "MemAvailable: 512 kB\nSwapFree: 512 kB\n", 0, "0:7FFFF", 0},
      {"an area the pages can't back, though the allocation would succeed", "MemAvailable: 1024 kB\n", 0,
       "0:FFFFF", 1},
      {"an allocation that fails", "", 256 << 20, "0:3FFFFFFF", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.addressSpace != 0 && test::kSanitized) continue;  // the sanitizer needs more address space than that
    test::RunOptions options;
    options.meminfo = c.meminfo;
    options.addressSpace = c.addressSpace;
    const auto r = RunProgram({KESTRUM_CLI, "--area", c.area, "clear"}, {}, options);
    if (r.status == test::kNoMeminfo) GTEST_SKIP() << "no mount namespace to show the program another /proc/meminfo";
    EXPECT_EQ(r.status, c.status) << r.err;
    EXPECT_EQ(r.err, c.status == 0 ? "" : "kestrum-cli: Out of Memory\n");
  }
}

TEST(CliFaults, AnAreaOfTwoGibibytesWhereMemoryAllows) {
  const auto available = AvailableMemory();
  if (!available || *available < (std::uint64_t{3} << 30)) GTEST_SKIP() << "less than 3 GiB of memory free";
  const auto r = RunProgram(
      {KESTRUM_CLI, "--area", "0:7FFFFFFE", "fill", "7FFFFFF0:7FFFFFFD", "5A", "sum", "7FFFFFF0:7FFFFFFE"});
  ASSERT_EQ(r.status, 0) << r.err;
  // 14 bytes of 5A and the top byte FF: 7 words 5A5A and the word FF00.
  EXPECT_EQ(r.out, "8-8bit=EB 8-16bit=05EB 16-16bit=7776\n");
  EXPECT_GE(r.peakKiB, 2L << 20) << "every page of the image was filled";
  if (!test::kSanitized) {
    EXPECT_LE(r.peakKiB, (2L << 20) + (16L << 10));
  }
}

TEST(CliFaults, AHexFileOfOneGibibyte) {
  if (test::kSanitized) GTEST_SKIP() << "a gibibyte of text takes too long under the sanitizers";
  // 64 KiB of records, each byte its address's low byte, repeated under the
  // bases 0000, 0001 and 0002 until the file passes 1 GiB; the area takes
  // the first two of them.
  std::string block;
  for (unsigned a = 0; a < 0x10000; a += 16) {
    std::vector<unsigned> bytes(16);
    for (unsigned i = 0; i < 16; ++i) bytes[i] = a + i;
    block += Record(a, bytes);
  }
  const std::string bases[] = {":020000040000FA\r\n", ":020000040001F9\r\n", ":020000040002F8\r\n"};
  TempDir dir;
  std::uint64_t size = 0;
  {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen((dir / "big.hex").c_str(), "wb"), std::fclose);
    ASSERT_TRUE(file);
    for (unsigned i = 0; size < (std::uint64_t{1} << 30); ++i) {
      const std::string& base = bases[i % 3];
      ASSERT_EQ(std::fwrite(base.data(), 1, base.size(), file.get()), base.size());
      ASSERT_EQ(std::fwrite(block.data(), 1, block.size(), file.get()), block.size());
      size += base.size() + block.size();
    }
  }
  const auto r = RunProgram({KESTRUM_CLI, "--area", "0:1FFFF", "load", "big.hex", "sum"}, dir.path());
  ASSERT_EQ(r.status, 0) << r.err;
  // 512 times the bytes 00..FF, whose sums all wrap to 0.
  EXPECT_EQ(r.out, "8-8bit=00 8-16bit=0000 16-16bit=0000\n");
  EXPECT_LE(r.peakKiB, BaselineKiB("0:1FFFF") + kSlackKiB);
}

}  // namespace
}  // namespace kestrum
