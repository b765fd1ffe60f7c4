#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <string>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::ScriptedPlatform;
using test::TempDir;
using test::WriteFile;

using Writer = std::function<SaveOutcome(Module1&, Platform&, const std::string&)>;

struct NamedWriter {
  const char* name;
  Writer write;
};

const NamedWriter kWriters[] = {
    {"BIN", [](Module1& m, Platform& p, const std::string& f) { return SaveBinFile(m, p, f); }},
    {"HEX", [](Module1& m, Platform& p, const std::string& f) { return SaveHexFile(m, p, f); }},
    {"S", [](Module1& m, Platform& p, const std::string& f) { return SaveSFile(m, p, f); }},
    {"YSM", [](Module1& m, Platform& p, const std::string& f) { return SaveYsmFile(m, p, f, "8-16SUM"); }},
};

Module1 SmallImage() {
  Module1 m = test::MakeImage(0, 0xFFFF);
  m.SaveFirst = 0;
  m.SaveLast = 0xFFFF;
  m.RecordLength = 0x10;
  return m;
}

struct FailureCase {
  const char* name;
  std::function<std::string(const TempDir&)> target;  // prepares and names the file
  const char* reason;
};

TEST(FileFailures, NamedWithTheReasonAndNothingLeftBehind) {
  const FailureCase cases[] = {
      {"a full disk", [](const TempDir&) { return std::string("/dev/full"); }, "No space left on device"},
      {"a folder that doesn't exist", [](const TempDir& d) { return (d / "missing" / "a.out").string(); },
       "No such file or directory"},
      {"a folder in the file's place",
       [](const TempDir& d) {
         fs::create_directory(d / "taken");
         return (d / "taken").string();
       },
       "Is a directory"},
      {"a name the file system refuses", [](const TempDir& d) { return (d / std::string(300, 'n')).string(); },
       "File name too long"},
      {"a file in a folder's place",
       [](const TempDir& d) {
         WriteFile(d / "plain", "x");
         return (d / "plain" / "a.out").string();
       },
       "Not a directory"},
  };
  for (const auto& writer : kWriters) {
    for (const auto& c : cases) {
      SCOPED_TRACE(std::string(writer.name) + ": " + c.name);
      TempDir dir;
      const std::string target = c.target(dir);
      const auto before = std::distance(fs::directory_iterator(dir.path()), {});
      Module1 m = SmallImage();
      ScriptedPlatform platform;
      EXPECT_EQ(writer.write(m, platform, target), SaveOutcome::FileFailure);
      EXPECT_EQ(m.FileError, -1);
      ASSERT_EQ(platform.messages.size(), 1u);
      const std::string& text = platform.messages[0].text;
      EXPECT_NE(text.find(target), std::string::npos) << text;
      EXPECT_NE(text.find(c.reason), std::string::npos) << text;
      EXPECT_EQ(platform.messages[0].style, vbOKOnly);
      EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), before) << "a working file stayed";
    }
  }
}

// Lets files grow to limit bytes at most while it lives; a longer write fails
// with "File too large" instead of a signal.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t limit) {
    oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &old_);
    rlimit lower = old_;
    lower.rlim_cur = limit;
    setrlimit(RLIMIT_FSIZE, &lower);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, oldHandler_);
  }

 private:
  rlimit old_{};
  void (*oldHandler_)(int) = nullptr;
};

TEST(FileFailures, AWriteThatFailsHalfWayLeavesTheOldFileWhole) {
  for (const auto& writer : kWriters) {
    if (std::string(writer.name) == "YSM") continue;  // too short to reach any limit
    SCOPED_TRACE(writer.name);
    TempDir dir;
    const auto path = dir / "image.out";
    WriteFile(path, "the old image");
    Module1 m = SmallImage();
    ScriptedPlatform platform;
    SaveOutcome outcome;
    {
      FileSizeLimit limit(4096);
      outcome = writer.write(m, platform, path.string());
    }
    EXPECT_EQ(outcome, SaveOutcome::FileFailure);
    EXPECT_EQ(ReadFile(path), "the old image");
    ASSERT_EQ(platform.messages.size(), 1u);
    EXPECT_NE(platform.messages[0].text.find("File too large"), std::string::npos) << platform.messages[0].text;
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 1);
  }
}

TEST(FileFailures, ReadOnlyFilesAndFoldersAreNamed) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser writes into read-only files and folders";
  TempDir dir;
  WriteFile(dir / "locked.HEX", "old");
  fs::permissions(dir / "locked.HEX", fs::perms::owner_read);
  fs::create_directory(dir / "closed");
  fs::permissions(dir / "closed", fs::perms::owner_read | fs::perms::owner_exec);
  for (const auto& path : {dir / "locked.HEX", dir / "closed" / "a.HEX"}) {
    SCOPED_TRACE(path.string());
    Module1 m = SmallImage();
    ScriptedPlatform platform;
    EXPECT_EQ(SaveHexFile(m, platform, path.string()), SaveOutcome::FileFailure);
    ASSERT_EQ(platform.messages.size(), 1u);
    EXPECT_NE(platform.messages[0].text.find("Permission denied"), std::string::npos);
  }
  EXPECT_EQ(ReadFile(dir / "locked.HEX"), "old");
}

TEST(FileFailures, ReplacingKeepsLinksAndPermissions) {
  TempDir dir;
  const auto real = dir / "real.HEX";
  const auto link = dir / "link.HEX";
  WriteFile(real, "old");
  fs::permissions(real, fs::perms::owner_all | fs::perms::group_read);
  fs::create_symlink(real, link);
  Module1 m = SmallImage();
  m.SaveLast = 0;
  ScriptedPlatform platform;
  ASSERT_EQ(SaveHexFile(m, platform, link.string()), SaveOutcome::Done);
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status(link)));
  EXPECT_EQ(ReadFile(real), ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n");
  EXPECT_EQ(fs::status(real).permissions() & fs::perms::mask, fs::perms::owner_all | fs::perms::group_read);
}

}  // namespace
}  // namespace kestrum
