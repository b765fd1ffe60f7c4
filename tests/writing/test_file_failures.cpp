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
using test::TempDir;
using test::WriteFile;

using Writer = SaveOutcome (*)(Module1&, Platform&, const std::string&);
const std::pair<const char*, Writer> kWriters[] = {
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

TEST(FileFailures, NamedWithTheReasonAndTheOldFileWhole) {
  const struct {
    const char* target;  // in the test's folder, but for /dev/full
    const char* reason;
  } cases[] = {
      {"/dev/full", "No space left on device"},
      {"missing/a.out", "No such file or directory"},
      {"folder", "Is a directory"},
      {"old", "File too large"},  // a write that fails half-way
  };
  for (const auto& [writer, write] : kWriters) {
    for (const auto& c : cases) {
      const std::string name = c.target;
      if (std::string(writer) == "YSM" && name == "old") continue;  // too short to reach any limit
      SCOPED_TRACE(std::string(writer) + ": " + name);
      TempDir dir;
      fs::create_directory(dir / "folder");
      WriteFile(dir / "old", "the old image");
      const std::string target = name[0] == '/' ? name : (dir / name).string();
      Module1 m = SmallImage();
      test::ScriptedPlatform platform;
      SaveOutcome outcome;
      {
        FileSizeLimit limit(4096);
        outcome = write(m, platform, target);
      }
      EXPECT_EQ(outcome, SaveOutcome::FileFailure);
      EXPECT_EQ(m.FileError, -1);
      ASSERT_EQ(platform.messages.size(), 1u);
      EXPECT_EQ(platform.messages[0].style, vbOKOnly);
      const std::string& text = platform.messages[0].text;
      EXPECT_NE(text.find(target + ": " + c.reason), std::string::npos) << text;
      EXPECT_EQ(ReadFile(dir / "old"), "the old image");
      EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 2) << "a working file stayed";
    }
  }
}

TEST(FileFailures, AReadOnlyFileIsNotReplaced) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser writes into read-only files and folders";
  TempDir dir;
  WriteFile(dir / "locked.HEX", "old");
  fs::permissions(dir / "locked.HEX", fs::perms::owner_read);
  Module1 m = SmallImage();
  test::ScriptedPlatform platform;
  EXPECT_EQ(SaveHexFile(m, platform, (dir / "locked.HEX").string()), SaveOutcome::FileFailure);
  EXPECT_NE(platform.Texts().at(0).find("Permission denied"), std::string::npos);
  EXPECT_EQ(ReadFile(dir / "locked.HEX"), "old");
}

TEST(FileFailures, ReplacingKeepsLinksAndPermissions) {
  TempDir dir;
  const auto real = dir / "real.HEX", link = dir / "link.HEX";
  WriteFile(real, "old");
  fs::permissions(real, fs::perms::owner_all | fs::perms::group_read);
  fs::create_symlink(real, link);
  Module1 m = SmallImage();
  m.SaveLast = 0;
  test::ScriptedPlatform platform;
  ASSERT_EQ(SaveHexFile(m, platform, link.string()), SaveOutcome::Done);
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status(link)));
  EXPECT_EQ(ReadFile(real), ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n");
  EXPECT_EQ(fs::status(real).permissions() & fs::perms::mask, fs::perms::owner_all | fs::perms::group_read);
}

}  // namespace
}  // namespace kestrum
