// Faults of the file system met by the writers and through the Load and Save
// buttons: each ends with a message naming the file and the reason, FileError,
// the pointer and the buttons back, nothing stored, the image untouched and no
// file that was there before lost or cut short.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "TestSupport.h"
#include "reading/LoadDialog.h"
#include "writing/SaveFlow.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using test::WriteFile;

// Collected by hand, so that a check can run in an unprivileged child.
struct Problems {
  std::ostringstream text;
  void Expect(bool ok, const std::string& what) {
    if (!ok) text << what << "; ";
  }
  template <typename T>
  void Equal(const T& got, const T& want, const std::string& what) {
    if (!(got == want)) text << what << ": got " << testing::PrintToString(got) << "; ";
  }
};

// A folder deeper than the system's limit for a whole path.
std::string TooLongPath(const TempDir& dir) {
  std::string path = dir.path().string();
  while (path.size() <= 4096) path += "/" + std::string(250, 'd');
  return path;
}

using Listing = std::map<std::string, std::string>;
Listing List(const fs::path& dir) {
  Listing files;
  for (const auto& e : fs::directory_iterator(dir))
    files[e.path().filename().string()] = fs::is_regular_file(e.path()) ? ReadFile(e.path()) : "<other>";
  return files;
}

// Runs body with files limited to 4 KiB when fills: a write fails half-way.
template <typename Body>
auto Filling(bool fills, Body body) {
  std::optional<test::FileSizeLimit> limit;
  if (fills) limit.emplace(4096);
  return body();
}

Module1 SaveImage(Address last) {
  Module1 m = test::MakeImage(0, 0xFFFF);
  m.SaveFirst = 0;
  m.SaveLast = last;
  m.RecordLength = 0x10;
  return m;
}

TEST(FileFaults, EveryWriterNamesTheReasonAndKeepsTheOldFile) {
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
      Module1 m = SaveImage(0xFFFF);
      test::ScriptedPlatform platform;
      EXPECT_EQ(Filling(fills, [&] { return write(m, platform, target); }), SaveOutcome::FileFailure);
      EXPECT_EQ(m.FileError, -1);
      ASSERT_EQ(platform.messages.size(), 1u);
      EXPECT_EQ(platform.messages[0].style, vbOKOnly);
      EXPECT_NE(platform.messages[0].text.find(target + ": " + reason), std::string::npos)
          << platform.messages[0].text;
      EXPECT_EQ(List(dir.path()), (Listing{{"folder", "<other>"}, {"old", "the old image"}}))
          << "the old file whole, no working file left";
    }
  }
}

TEST(FileFaults, ReplacingKeepsLinksAndPermissions) {
  TempDir dir;
  const auto real = dir / "real.HEX", link = dir / "link.HEX";
  WriteFile(real, "old");
  fs::permissions(real, fs::perms::owner_all | fs::perms::group_read);
  fs::create_symlink(real, link);
  Module1 m = SaveImage(0);
  test::ScriptedPlatform platform;
  ASSERT_EQ(SaveHexFile(m, platform, link.string()), SaveOutcome::Done);
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status(link)));
  EXPECT_EQ(ReadFile(real), ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n");
  EXPECT_EQ(fs::status(real).permissions() & fs::perms::mask, fs::perms::owner_all | fs::perms::group_read);
}

struct LoadFault {
  const char* name;
  std::function<void(const TempDir&, LoadFields&)> prepare;  // sets Dir1 and File1
  const char* reason;
  bool unprivileged = false;
};

TEST(FileFaults, LoadStopsInOrder) {
  const LoadFault faults[] = {
      {"a listed file that vanished", [](const TempDir& d, LoadFields&) { fs::remove(d / "x.hex"); },
       "No such file or directory"},
      {"a folder given as the file",
       [](const TempDir& d, LoadFields& f) {
         fs::create_directory(d / "sub.hex");
         f.File1 = "sub.hex";
       },
       "Is a directory"},
      {"a pick the file list lost with a change of folder, the name box keeping it",
       [](const TempDir&, LoadFields& f) {
         f.Text1 = f.File1;
         f.File1.clear();
       },
       "Is a directory"},
      {"a file nobody may read",
       [](const TempDir& d, LoadFields&) { fs::permissions(d / "x.hex", fs::perms::none); },
       "Permission denied", true},
      {"a pipe",
       [](const TempDir& d, LoadFields& f) {
         ASSERT_EQ(mkfifo((d / "pipe.hex").c_str(), 0600), 0);
         f.File1 = "pipe.hex";
       },
       "not a regular file"},
      {"a path longer than the system takes",
       [](const TempDir& d, LoadFields& f) { f.Dir1 = TooLongPath(d); }, "File name too long"},
      {"a name holding a NUL character",
       [](const TempDir&, LoadFields& f) { f.File1 = std::string("x.hex\0.s", 8); },
       "the name holds a NUL character"},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.name);
    TempDir dir;
    WriteFile(dir / "x.hex", ":0410000001020304E2\r\n");
    LoadFields f;
    f.Dir1 = dir.path().string();
    f.File1 = "x.hex";
    f.Drive1 = "/";
    f.Text4 = "0";
    f.Text3 = "FFFF";
    fault.prepare(dir, f);
    if (f.Text1.empty()) f.Text1 = f.File1;
    const std::string path = f.Dir1 + "/" + f.File1;
    auto check = [&] {
      Problems p;
      Module1 m = test::MakeImage(0, 0xFFFF);
      m.frmsumtool.Text1 = "before.bin";
      m.frmsumtool.List1 = {"a row"};
      test::ScriptedPlatform platform;
      MemorySettings store;
      LoadFields fields = f;
      p.Expect(!Command1_Click(fields, m, platform, store), "the dialog stays open");
      p.Equal(platform.Texts(), {"Cannot read " + path + ": " + fault.reason}, "message");
      p.Expect(m.FileError == 0 && platform.pointer == vbDefault && fields.Command1Enabled &&
                   fields.Command2Enabled,
               "FileError, pointer and buttons back");
      p.Expect(store.values.empty() && m.frmsumtool.Text1 == "before.bin", "nothing stored or named");
      p.Expect(m.frmsumtool.List1.empty(), "the dump emptied");
      p.Expect(
          std::all_of(m.Buffer.data(), m.Buffer.data() + m.BufSize, [](std::uint8_t b) { return b == 0xFF; }),
          "the image untouched");
      return p.text.str();
    };
    EXPECT_EQ(fault.unprivileged ? test::Unprivileged(check) : check(), "");
  }
}

// The Save button's fields for the BIN file prog of 0..last in dir.
SaveFields BinSave(const fs::path& dir, const char* last) {
  SaveFields f;
  f.Drive2 = "/";
  f.Dir2 = dir.string();
  f.Text5 = "prog";
  f.Text7 = "0";
  f.Text6 = last;
  f.Text4 = "10";
  f.Combo1 = "Object File Only";
  f.Combo2 = "BIN";
  f.Combo3 = "8-8SUM";
  return f;
}

struct SaveFault {
  const char* name;
  std::function<void(const TempDir&, SaveFields&)> prepare;
  const char* reason;             // in the last message; empty when the save goes through
  std::vector<std::string> made;  // new names in the folder afterwards
  bool unprivileged = false;
};

TEST(FileFaults, SaveStopsWithNothingLost) {
  const SaveFault faults[] = {
      {"a listed file that vanished before Yes",
       [](const TempDir& d, SaveFields& f) {
         f.File2 = {"prog.BIN"};
         fs::remove(d / "prog.BIN");
       },
       "",
       {}},
      {"a folder in the file's place",
       [](const TempDir& d, SaveFields& f) {
         fs::create_directory(d / "prog.HEX");
         f.Combo2 = "HEX";
       },
       "Is a directory",
       {}},
      {"a read-only folder",
       [](const TempDir& d, SaveFields& f) {
         fs::permissions(d.path(), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                         fs::perm_options::remove);
         f.Combo2 = "S";
       },
       "Permission denied",
       {},
       true},
      {"a read-only listed file in a writable folder, Yes",
       [](const TempDir& d, SaveFields& f) {
         fs::permissions(d.path(), fs::perms::all);
         fs::permissions(d / "prog.BIN",
                         fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
         f.File2 = {"prog.BIN"};
       },
       "Permission denied",
       {},
       true},
      {"a full device for the object file of a pair: the YSM file is written all the same",
       [](const TempDir& d, SaveFields& f) {
         fs::create_symlink("/dev/full", d / "prog.S");
         f.Combo2 = "S";
         f.Combo1 = "Object and YSM File";
       },
       "No space left on device",
       {"prog.YSM"}},
      {"a disk that fills halfway through a listed BIN file, Yes",
       [](const TempDir&, SaveFields& f) {
         f.File2 = {"prog.BIN"};
         f.Text6 = "FFFF";
       },
       "File too large",
       {}},
      {"a path longer than the system takes",
       [](const TempDir& d, SaveFields& f) { f.Dir2 = TooLongPath(d); },
       "File name too long",
       {}},
      {"a name holding a NUL character",
       [](const TempDir&, SaveFields& f) { f.Text5 = std::string("pr\0og.BIN", 9); },
       "the name holds a NUL character",
       {}},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.name);
    TempDir dir;
    WriteFile(dir / "prog.BIN", "the old image");
    SaveFields f = BinSave(dir.path(), "FF");
    fault.prepare(dir, f);
    const Listing before = List(dir.path());
    auto check = [&] {
      Problems p;
      Module1 m = test::MakeImage(0, 0xFFFF);
      test::ScriptedPlatform platform;
      MemorySettings store;
      SaveFields fields = f;
      const bool closed = Filling(std::string(fault.reason) == "File too large",
                                  [&] { return Command5_Click(fields, m, platform, store); });
      p.Expect(m.FileError == 0 && platform.pointer == vbDefault && fields.Command5Enabled &&
                   fields.Command2Enabled,
               "FileError, pointer and buttons back");
      Listing after = List(dir.path());
      if (*fault.reason == '\0') {
        p.Expect(closed && !store.values.empty(), "the save went through");
        p.Equal(after["prog.BIN"].size(), std::size_t{256}, "the new file, whole");
        return p.text.str();
      }
      p.Expect(!closed && store.values.empty(), "the dialog stays open, nothing stored");
      const std::string last = platform.messages.empty() ? "" : platform.messages.back().text;
      p.Expect(
          last.find(fields.Dir2 + "/") != std::string::npos && last.find(fault.reason) != std::string::npos,
          "the message names the file and the reason: " + last);
      for (const auto& message : platform.messages)
        p.Expect(message.text.find("Complete") == std::string::npos, "no completion notice");
      for (const auto& name : fault.made) p.Expect(after.erase(name) == 1, name + " made");
      p.Expect(after == before, "the folder as it was");
      return p.text.str();
    };
    EXPECT_EQ(fault.unprivileged ? test::Unprivileged(check) : check(), "");
    fs::permissions(dir.path(), fs::perms::owner_all, fs::perm_options::add);
  }
}

TEST(FileFaults, ADiskThatFillsUpKeepsTheOldFile) {
  TempDir dir;
  const fs::path disk = dir / "disk";
  fs::create_directory(disk);
  const std::string old(40 << 10, 'o');
  const std::string result = test::OnSmallDisk(disk, 64 << 10, [&] {
    Problems p;
    WriteFile(disk / "prog.BIN", old);
    // Through the Save button, replacing a listed file with 64 KiB.
    SaveFields f = BinSave(disk, "FFFF");
    f.File2 = {"prog.BIN"};
    Module1 m = test::MakeImage(0, 0xFFFF);
    test::ScriptedPlatform platform;
    MemorySettings store;
    p.Expect(!Command5_Click(f, m, platform, store), "the dialog stays open");
    p.Equal(platform.Texts(),
            {"Over Write?", "Can't write " + (disk / "prog.BIN").string() + ": No space left on device"},
            "messages");
    p.Expect(m.FileError == 0 && platform.pointer == vbDefault && f.Command5Enabled,
             "FileError, pointer, buttons");
    // Through the command line, as HEX.
    const auto r =
        test::RunProgram({KESTRUM_CLI, "--area", "0:FFFF", "save", "prog.BIN", "--format", "hex"}, disk);
    p.Equal(r.status, 1, "status");
    p.Equal(r.err, std::string("kestrum-cli: Can't write prog.BIN: No space left on device\n"), "words");
    p.Expect(List(disk) == Listing{{"prog.BIN", old}}, "the old file alone, whole");
    return p.text.str();
  });
  if (result == test::kNoSmallDisk) GTEST_SKIP() << result;
  EXPECT_EQ(result, "");
}

}  // namespace
}  // namespace kestrum
