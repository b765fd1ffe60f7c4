// What every writer does when its file can't be written; the save flow's
// faults have tests of their own.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "TestSupport.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using test::WriteFile;

Module1 SmallImage() {
  Module1 m = test::MakeImage(0, 0xFFFF);
  m.SaveFirst = 0;
  m.SaveLast = 0xFFFF;
  m.RecordLength = 0x10;
  return m;
}

TEST(FileFailures, NamedWithTheReasonAndTheOldFileWhole) {
  using Writer = SaveOutcome (*)(Module1&, Platform&, const std::string&);
  const std::pair<const char*, Writer> writers[] = {
      {"BIN", [](Module1& m, Platform& p, const std::string& f) { return SaveBinFile(m, p, f); }},
      {"HEX", [](Module1& m, Platform& p, const std::string& f) { return SaveHexFile(m, p, f); }},
      {"S", [](Module1& m, Platform& p, const std::string& f) { return SaveSFile(m, p, f); }},
      {"YSM", [](Module1& m, Platform& p, const std::string& f) { return SaveYsmFile(m, p, f, "8-16SUM"); }},
  };
  const std::pair<const char*, const char*> cases[] = {
      // The target, in the test's folder but for /dev/full, and the reason.
      {"/dev/full", "No space left on device"},
      {"missing/a.out", "No such file or directory"},
      {"folder", "Is a directory"},
      {"old", "File too large"},  // a write that fails half-way
  };
  for (const auto& [writer, write] : writers) {
    for (const auto& [name, reason] : cases) {
      const bool fills = std::string(name) == "old";
      if (fills && std::string(writer) == "YSM") continue;  // too short to reach any limit
      SCOPED_TRACE(std::string(writer) + ": " + name);
      TempDir dir;
      fs::create_directory(dir / "folder");
      WriteFile(dir / "old", "the old image");
      const std::string target = name[0] == '/' ? name : (dir / name).string();
      Module1 m = SmallImage();
      test::ScriptedPlatform platform;
      SaveOutcome outcome;
      {
        std::unique_ptr<test::FileSizeLimit> limit(fills ? new test::FileSizeLimit(4096) : nullptr);
        outcome = write(m, platform, target);
      }
      EXPECT_EQ(outcome, SaveOutcome::FileFailure);
      EXPECT_EQ(m.FileError, -1);
      ASSERT_EQ(platform.messages.size(), 1u);
      EXPECT_EQ(platform.messages[0].style, vbOKOnly);
      EXPECT_NE(platform.messages[0].text.find(target + ": " + reason), std::string::npos)
          << platform.messages[0].text;
      EXPECT_EQ(ReadFile(dir / "old"), "the old image");
      EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 2) << "a working file stayed";
    }
  }
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
