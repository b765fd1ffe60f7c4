// Faults of the file system and of memory met by the command line: each
// stops with the file and the reason on standard error and status 1, runs no
// later step, and leaves every file that was there as it was.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <cstring>
#include <functional>
#include <memory>

#include "TestSupport.h"
#include "image/Memory.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::RunProgram;
using test::TempDir;
using test::WriteFile;

const std::string kTooLong = [] {
  std::string path = "deep";
  while (path.size() <= 4096) path += "/" + std::string(250, 'd');
  return path;
}();

struct CliFault {
  const char* name;
  std::function<void(const TempDir&)> prepare;
  std::vector<std::string> args;
  const char* err;
  bool unprivileged = false;
  bool fills = false;  // the disk takes no more than 4 KiB
};

TEST(CliFaults, StopWithTheFileAndTheReason) {
  const auto readOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
  const CliFault faults[] = {
      {"load of a file nobody may read", [](const TempDir& d) { fs::permissions(d / "old", fs::perms::none); },
       {"load", "old"}, "kestrum-cli: Cannot read old: Permission denied\n", true},
      {"load of a pipe", [](const TempDir& d) { ASSERT_EQ(mkfifo((d / "pipe.hex").c_str(), 0600), 0); },
       {"load", "pipe.hex"}, "kestrum-cli: Cannot read pipe.hex: not a regular file\n"},
      {"load of a path longer than the system takes", nullptr, {"load", kTooLong + "/a.hex"},
       "File name too long\n"},
      {"save into a read-only folder",
       [&](const TempDir& d) { fs::permissions(d.path(), readOnly | fs::perms::owner_exec | fs::perms::others_exec); },
       {"save", "a.s", "--format", "s"}, "kestrum-cli: Can't create a.s: Permission denied\n", true},
      {"save over a read-only file",
       [&](const TempDir& d) {
         fs::permissions(d.path(), fs::perms::all);
         fs::permissions(d / "old", readOnly);
       },
       {"save", "old", "--format", "bin"}, "kestrum-cli: Can't create old: Permission denied\n", true},
      {"ysm onto a full device", nullptr, {"ysm", "/dev/full", "--sum", "8-8"},
       "kestrum-cli: Can't write /dev/full: No space left on device\n"},
      {"save over a file when the disk fills halfway", nullptr, {"save", "old", "--format", "hex"},
       "kestrum-cli: Can't write old: File too large\n", false, true},
      {"save to a path longer than the system takes", nullptr, {"save", kTooLong + "/a.hex", "--format", "hex"},
       "File name too long\n"},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.name);
    TempDir dir;
    WriteFile(dir / "old", "the old file");
    if (fault.prepare) fault.prepare(dir);
    std::vector<std::string> argv{KESTRUM_CLI};
    argv.insert(argv.end(), fault.args.begin(), fault.args.end());
    argv.insert(argv.end(), {"save", "after", "--format", "bin"});
    test::RunOptions options;
    options.unprivileged = fault.unprivileged;
    test::RunResult r;
    {
      std::unique_ptr<test::FileSizeLimit> limit(fault.fills ? new test::FileSizeLimit(4096) : nullptr);
      r = RunProgram(argv, dir.path(), options);
    }
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.size() >= std::strlen(fault.err) && r.err.compare(r.err.size() - std::strlen(fault.err),
                                                                          std::string::npos, fault.err) == 0)
        << r.err;
    fs::permissions(dir.path(), fs::perms::owner_all, fs::perm_options::add);
    fs::permissions(dir / "old", fs::perms::owner_all, fs::perm_options::add);
    EXPECT_EQ(ReadFile(dir / "old"), "the old file");
    EXPECT_FALSE(fs::exists(dir / "after")) << "a later step ran";
    std::size_t files = 0;
    for (const auto& e : fs::directory_iterator(dir.path())) files += e.path().filename() != "pipe.hex";
    EXPECT_EQ(files, 1u) << "a working file stayed";
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

}  // namespace
}  // namespace kestrum
