// The save dialog's Save button: its refusals in their order, the files it
// names and writes, its prompts before a listed file, the settings it stores
// only after a success, and what a failed save leaves. The Load button over a
// file it can't read. The naming fuzz target tries many more names and lists.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "TestSupport.h"
#include "reading/LoadDialog.h"
#include "writing/SaveFlow.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;

const char* const kObject = "Object File Only";
const char* const kYsm = "YSM File Only";
const char* const kPair = "Object and YSM File";

// Also notes the pointer each message box was shown under.
class Platform : public test::ScriptedPlatform {
 public:
  int MsgBox(const std::string& text, int style, const std::string& title) override {
    pointersAtMessages.push_back(pointer);
    return ScriptedPlatform::MsgBox(text, style, title);
  }
  std::vector<int> pointersAtMessages;
};

// The fields a case changes; the others keep World's.
struct Change {
  const char *text7 = "0", *text6 = "FF", *text4 = "10", *combo1 = kObject, *combo2 = "BIN", *combo3 = "8-8SUM",
             *text5 = "prog";
};

// A save dialog over a 0..7FFFF image whose bytes differ from FF, in a folder of its own.
struct World {
  test::TempDir dir;
  Module1 m = test::MakeImage();
  Platform platform;
  MemorySettings store;
  SaveFields f;

  explicit World(const Change& c = {}) {
    for (Address a = 0; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a ^ (a >> 8));
    f = {.Drive2 = "/", .Dir2 = dir.path().string(), .File2 = {}, .Text5 = c.text5, .Text7 = c.text7, .Text6 = c.text6,
         .Text4 = c.text4, .Combo1 = c.combo1, .Combo2 = c.combo2, .Combo3 = c.combo3};
  }
  bool Save() { return Command5_Click(f, m, platform, store); }
  std::string Files() const {  // in order, one blank between
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(dir.path())) names.insert(e.path().filename().string());
    std::string list;
    for (const auto& name : names) list += (list.empty() ? "" : " ") + name;
    return list;
  }
  // Pointer and buttons are back, whatever the way out was.
  void ExpectReady() const { EXPECT_TRUE(platform.pointer == vbDefault && f.Command5Enabled && f.Command2Enabled); }
};

TEST(SaveFlow, RefusalsInTheirOrder) {
  // Each row holds the faults of the later rows as well; text7 is Text7 after the refusal.
  const struct { Change change; const char *notice, *text7; } cases[] = {
      {{.text7 = "", .text6 = ""}, "FirstAddress Error!", ""},
      {{.text7 = "1", .text6 = "", .text4 = ""}, "LastAddress Error!", "1"},  // not padded yet
      {{.text7 = "90000", .text6 = "80000", .text4 = "", .combo2 = "HEX"}, "Address Error!", "00090000"},
      {{.text7 = "80000", .text6 = "90000", .text4 = "0", .combo2 = "S"}, "RecordLength Error!", "00080000"},
      {{.text7 = "80000", .text6 = "90000"}, "FirstAddress Error!", "00080000"},
      {{.text7 = "1", .text6 = "80000", .text5 = ""}, "LastAddress Error!", "00000001"},
      {{.text4 = "100", .combo2 = "HEX"}, "RecordLength Error!", "00000000"},  // only stored text has 3 digits
      {{.combo1 = "", .combo2 = "", .combo3 = "", .text5 = ""}, "Enter or Select File Name!", "00000000"},
      {{.combo1 = "", .combo2 = "", .combo3 = ""}, "Format Error!", "00000000"},
      {{.combo1 = "", .combo3 = "", .text5 = "prog.S"}, "File Type Error!", "00000000"},
      {{.combo3 = "", .text5 = "prog.S"}, "YSM File Format Error!", "00000000"},  // though no YSM file is made
      {{.text5 = "prog.hEx"}, "Extension Error!", "00000000"},
      {{.combo1 = kPair, .combo2 = "S", .text5 = "prog.hex"}, "Extension Error!", "00000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.notice);
    World w(c.change);
    EXPECT_FALSE(w.Save());
    EXPECT_EQ(w.platform.messages, (std::vector<test::Message>{{c.notice, vbOKOnly, ""}}));
    EXPECT_EQ(w.platform.pointersAtMessages, std::vector<int>{vbDefault});
    EXPECT_EQ(w.f.Text7, c.text7);
    w.ExpectReady();
    EXPECT_TRUE(w.Files().empty() && w.store.values.empty());
  }
  // The range and length are taken before they are judged.
  World w({.text7 = "90000", .text6 = "80000", .text4 = "2A"});
  EXPECT_FALSE(w.Save());
  EXPECT_EQ(std::tuple(w.m.SaveFirst, w.m.SaveLast, w.m.RecordLength, w.f.Text6),
            std::tuple(0x90000, 0x80000, 0x2A, "00080000"));
}

TEST(SaveFlow, NamesPromptsAndFiles) {
  const struct {
    Change change;
    std::vector<std::string> listed;  // when names are listed, prog.BIN holds 300 old bytes
    const char* answers;  // Y or N for each prompt
    const char* messages;  // "?" for "Over Write?", "name?" for "name File Over Write?", else the notice's start
    const char *files, *text5;  // the folder and Text5 afterwards
    std::size_t binSize;  // of prog.BIN afterwards, 0 for none
  } cases[] = {
      {{.combo2 = "S", .text5 = "prog.txt"}, {}, "", "S", "prog.txt", "prog.txt", 0},
      {{.text5 = "abc."}, {}, "", "BIN", "abc..BIN", "abc..BIN", 0},
      {{.text4 = ""}, {}, "", "BIN", "prog.BIN", "prog.BIN", 256},  // BIN takes any record length
      {{.text7 = "80", .text6 = "80"}, {}, "", "BIN", "prog.BIN", "prog.BIN", 1},
      {{.combo1 = kYsm, .combo2 = "HEX", .text5 = "prog.hex"}, {}, "", "YSM", "prog.hex", "prog.hex", 0},
      {{.combo1 = kPair, .combo3 = "16-16sum"}, {}, "", "BIN and YSM", "prog.BIN prog.YSM", "prog.BIN", 256},
      {{.combo1 = kPair, .text5 = "a.b.c"}, {}, "", "BIN and YSM", "a.YSM a.b.c", "a.b.c", 0},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.ysm"}, {}, "", "HEX and YSM", "prog.HEX prog.ysm", "prog.ysm",
       0},
      {{}, {"other.BIN"}, "", "BIN", "prog.BIN", "prog.BIN", 300},  // not listed: the old file keeps its end
      {{}, {"a", "PROG.bin"}, "Y", "?|BIN", "prog.BIN", "prog.BIN", 256},
      {{}, {"prog.BIN"}, "N", "?", "prog.BIN", "prog.BIN", 300},
      {{.combo1 = kPair}, {"prog.BIN", "prog.YSM"}, "YY", "prog.BIN?|prog.YSM?|BIN and YSM", "prog.BIN prog.YSM",
       "prog.BIN", 256},
      {{.combo1 = kPair}, {"prog.BIN", "prog.YSM"}, "N", "prog.BIN?", "prog.BIN", "prog.BIN", 300},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.YSM"}, {"prog.HEX", "prog.ysm"}, "YN", "prog.HEX?|prog.YSM?",
       "prog.BIN", "prog.YSM", 300},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(w.f.Combo1 + " " + w.f.Text5 + " " + testing::PrintToString(c.listed) + " " + c.answers);
    if (!c.listed.empty()) test::WriteFile(w.dir / "prog.BIN", std::string(300, 'x'));
    w.f.File2 = c.listed;
    const bool closes = !std::string(c.messages).ends_with('?');
    // Again with the name as it now stands: the same files.
    for (int press = 0; press < (c.listed.empty() ? 2 : 1); ++press) {
      w.platform.messages.clear();
      w.platform.pointersAtMessages.clear();
      for (const char* a = c.answers; *a; ++a) w.platform.answers.push_back(*a == 'Y' ? vbYes : vbNo);
      EXPECT_EQ(w.Save(), closes);
      std::string texts;
      for (std::size_t i = 0; i < w.platform.messages.size(); ++i) {
        const test::Message& m = w.platform.messages[i];
        const bool prompt = m.text.ends_with('?');
        EXPECT_EQ(std::tuple(m.style, m.title, w.platform.pointersAtMessages[i]),
                  prompt ? std::tuple(vbExclamationYesNo, "Save", vbDefault) : std::tuple(vbOKOnly, "", vbHourglass));
        texts += (i ? "|" : "");
        texts += std::regex_replace(m.text, std::regex("^Over Write| File Over Write| File Save Complete!"), "");
      }
      EXPECT_EQ(texts, c.messages);
      EXPECT_EQ(w.Files(), c.files);
      EXPECT_EQ(w.f.Text5, c.text5);
      w.ExpectReady();
      EXPECT_EQ(w.store.values.empty(), !closes);
    }
    EXPECT_EQ(fs::exists(w.dir / "prog.BIN") ? ReadFile(w.dir / "prog.BIN").size() : 0u, c.binSize);
    for (const auto& entry : fs::directory_iterator(w.dir.path())) {  // each file from its writer
      const std::string name = entry.path().filename().string(), text = ReadFile(entry.path());
      const bool ysm = w.f.Combo1 == kYsm ||
                       (w.f.Combo1 == kPair && EqualsIgnoreCase(name.substr(name.size() - 3), "YSM"));
      const std::string start = !closes ? std::string(300, 'x') : ysm ? (w.f.Combo3 == "8-8SUM" ? "S306" : "S307")
                                : w.f.Combo2 == "BIN" ? std::string(1, static_cast<char>(w.m.At(w.m.SaveFirst)))
                                : w.f.Combo2 == "HEX" ? ":1" : "S1";
      EXPECT_TRUE(text.starts_with(start)) << name;
    }
  }
}

TEST(SaveFlow, SettingsStoredOnlyAfterSuccess) {
  World w({.text4 = "2", .combo1 = kPair, .combo2 = "HEX", .combo3 = "8-16SUM"});
  w.f.Drive2 = "/home";
  ASSERT_TRUE(w.Save());
  MemorySettings expected;
  for (const auto& [section, key, value] : std::initializer_list<std::tuple<const char*, const char*, std::string>>{
           {kAddress, "SaveFirst", "00000000"}, {kAddress, "SaveLast", "000000FF"}, {kAddress, "RecordLength", "2"},
           {kFormat, "FileType", kPair}, {kFormat, "ObjectFileFormat", "HEX"}, {kFormat, "YSMFileFormat", "8-16SUM"},
           {kFilePath, "SaveDrive", "/home"}, {kFilePath, "SaveDir", w.dir.path().string()}})
    expected.Write(section, key, value);
  EXPECT_EQ(w.store.values, expected.values);
}

// The writers' faults are theirs; the Save button shows them, stays open, stores nothing and writes a pair's YSM
// file all the same.
TEST(SaveFlow, FailuresNameTheFileAndStoreNothing) {
  const struct {
    Change change;
    // dir2 is added to the test's folder (@ in message); full.S stands for a full device.
    const char *dir2, *message, *files;
  } cases[] = {
      {{.combo1 = kPair, .combo2 = "S", .text5 = "full"}, "", "@/full.S: No space left on device",
       "full.S full.YSM sub"},
      {{.text6 = "1FF", .text4 = "FD", .combo1 = kPair, .combo2 = "S"}, "", "Record Length Error!",
       "full.S prog.S prog.YSM sub"},  // what came before stays
      {{.text5 = "sub/prog"}, "", "Can't save @/sub/prog: a file name can't hold a folder.", "full.S sub"},
      // No second separator after a root.
      {{.text5 = "x/y"}, "/", "@/x/y: a file name can't hold a folder.", "full.S sub"},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(c.message);
    fs::create_directory(w.dir / "sub");
    fs::create_symlink("/dev/full", w.dir / "full.S");
    w.f.Dir2 += c.dir2;
    EXPECT_FALSE(w.Save());
    const std::string message = std::regex_replace(c.message, std::regex("@"), w.dir.path().string());
    EXPECT_NE(w.platform.Texts().back().find(message), std::string::npos) << testing::PrintToString(w.platform.Texts());
    for (const auto& m : w.platform.messages) EXPECT_EQ(m.text.find("Complete"), std::string::npos);
    w.ExpectReady();
    EXPECT_TRUE(w.m.FileError == 0 && w.store.values.empty());
    EXPECT_EQ(w.Files(), c.files);
  }
}

// The message names the file and the reason, the dialog stays open with FileError, the pointer and the
// buttons back, nothing is stored, the dump is emptied and the image untouched.
TEST(FileFaults, LoadStopsAtAFileItCannotRead) {
  const struct { const char* name; std::string file1; const char* reason; } cases[] = {
      {"a listed file that vanished", "gone.hex", "No such file or directory"},
      {"a pick the file list lost with a change of folder, the name box keeping it", "", "Is a directory"},
      {"a pipe", "pipe.hex", "not a regular file"},
      {"a name holding a NUL character", std::string("x.hex\0.s", 8), "the name holds a NUL character"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TempDir dir;
    test::WriteFile(dir / "x.hex", ":0410000001020304E2\r\n");
    ASSERT_EQ(mkfifo((dir / "pipe.hex").c_str(), 0600), 0);
    LoadFields f;
    f.Text1 = c.file1.empty() ? "x.hex" : c.file1, f.File1 = c.file1, f.Dir1 = dir.path().string();
    f.Text4 = "0", f.Text3 = "FFFF";
    Module1 m = test::MakeImage(0, 0xFFFF);
    m.frmsumtool.Text1 = "before.bin", m.frmsumtool.List1 = {"a row"};
    test::ScriptedPlatform platform;
    MemorySettings store;
    EXPECT_FALSE(Command1_Click(f, m, platform, store)) << "the dialog stays open";
    EXPECT_EQ(platform.Texts(), std::vector<std::string>{"Cannot read " + f.Dir1 + "/" + f.File1 + ": " + c.reason});
    EXPECT_TRUE(m.FileError == 0 && platform.pointer == vbDefault && f.Command1Enabled && f.Command2Enabled);
    EXPECT_TRUE(store.values.empty() && m.frmsumtool.Text1 == "before.bin" && m.frmsumtool.List1.empty());
    EXPECT_EQ(std::count(m.Buffer.data(), m.Buffer.data() + m.BufSize, 0xFF), m.BufSize) << "the image untouched";
  }
}

}  // namespace
}  // namespace kestrum
