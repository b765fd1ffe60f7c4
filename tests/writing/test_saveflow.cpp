// The save dialog: the Save button's refusals in their order, the files it
// names and writes, its prompts before a listed file, the settings it stores
// only after a success, what a failed save leaves, and what the dialog opens with.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "TestSupport.h"
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
  std::set<std::string> Files() const {
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(dir.path())) names.insert(e.path().filename().string());
    return names;
  }
  std::string Bytes(Address first, Address last) const {
    return std::string(reinterpret_cast<const char*>(m.Buffer.data() + (first - m.BufFirst)), static_cast<std::size_t>(last - first + 1));
  }
  // Pointer and buttons are back, whatever the way out was.
  void ExpectReady() const {
    EXPECT_EQ(platform.pointer, vbDefault);
    EXPECT_TRUE(f.Command5Enabled && f.Command2Enabled);
  }
};

// The words of text between blanks.
std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream s(text);
  for (std::string word; s >> word;) words.push_back(word);
  return words;
}

TEST(SaveFlow, RefusalsInTheirOrder) {
  const struct {
    Change change;  // each holds the faults of the later rows as well
    const char *notice, *text7;  // Text7 after the refusal
  } cases[] = {
      {{.text7 = "", .text6 = ""}, "FirstAddress Error!", ""},
      {{.text7 = "1", .text6 = "", .text4 = ""}, "LastAddress Error!", "1"},  // not padded yet
      {{.text7 = "90000", .text6 = "80000", .text4 = "", .combo2 = "HEX"}, "Address Error!", "00090000"},
      {{.text7 = "80000", .text6 = "90000", .text4 = "0", .combo2 = "S"}, "RecordLength Error!", "00080000"},
      {{.text7 = "80000", .text6 = "90000"}, "FirstAddress Error!", "00080000"},
      {{.text7 = "1", .text6 = "80000", .text5 = ""}, "LastAddress Error!", "00000001"},
      {{.text4 = "100", .combo2 = "HEX"}, "RecordLength Error!", "00000000"},  // only stored text has 3 digits
      {{.text4 = "", .combo1 = kYsm, .combo2 = "HEX"}, "RecordLength Error!", "00000000"},
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
  // The range and record length are taken before they are judged.
  World w({.text7 = "90000", .text6 = "80000", .text4 = "2A"});
  EXPECT_FALSE(w.Save());
  EXPECT_EQ(std::tuple(w.m.SaveFirst, w.m.SaveLast, w.m.RecordLength, w.f.Text6), std::tuple(0x90000, 0x80000, 0x2A, "00080000"));
}

TEST(SaveFlow, NamesAndContentOfTheFiles) {
  const struct {
    Change change;
    const char *object, *ysm, *text5, *notice;  // the files written, "" for none; notice less " File Save Complete!"
  } cases[] = {
      {{.combo2 = "HEX"}, "prog.HEX", "", "prog.HEX", "HEX"},
      {{.combo2 = "S", .text5 = "prog.txt"}, "prog.txt", "", "prog.txt", "S"},
      {{.text5 = "prog.bin"}, "prog.bin", "", "prog.bin", "BIN"},
      {{.text5 = "abc."}, "abc..BIN", "", "abc..BIN", "BIN"},
      {{.text4 = ""}, "prog.BIN", "", "prog.BIN", "BIN"},  // BIN takes any record length
      {{.text7 = "80", .text6 = "80"}, "prog.BIN", "", "prog.BIN", "BIN"},  // one byte
      {{.combo1 = kYsm, .combo2 = "HEX", .text5 = "prog.hex"}, "", "prog.hex", "prog.hex", "YSM"},
      {{.combo1 = kYsm}, "", "prog.YSM", "prog.YSM", "YSM"},
      {{.combo1 = kPair, .combo2 = "S"}, "prog.S", "prog.YSM", "prog.S", "S and YSM"},
      {{.combo1 = kPair, .combo3 = "16-16sum"}, "prog.BIN", "prog.YSM", "prog.BIN", "BIN and YSM"},
      {{.combo1 = kPair, .text5 = "a.b.c"}, "a.b.c", "a.YSM", "a.b.c", "BIN and YSM"},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.ysm"}, "prog.HEX", "prog.ysm", "prog.ysm", "HEX and YSM"},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(w.f.Combo1 + " " + w.f.Combo2 + " " + w.f.Text5);
    std::set<std::string> files{c.object, c.ysm};
    files.erase("");
    for (int press = 0; press < 2; ++press) {  // again with the name as it now stands: the same files
      w.platform.messages.clear();
      w.platform.pointersAtMessages.clear();
      EXPECT_TRUE(w.Save());
      EXPECT_EQ(w.Files(), files);
      EXPECT_EQ(w.f.Text5, c.text5);
      EXPECT_EQ(w.platform.Texts(), std::vector<std::string>{c.notice + std::string(" File Save Complete!")});
      EXPECT_EQ(w.platform.pointersAtMessages, std::vector<int>{vbHourglass});
      w.ExpectReady();
    }
    const std::string object = *c.object ? ReadFile(w.dir / c.object) : "";
    const std::string start = w.f.Combo2 == "HEX" ? ":1" : "S1";
    EXPECT_TRUE(!*c.object || (w.f.Combo2 == "BIN" ? object == w.Bytes(w.m.SaveFirst, w.m.SaveLast) : object.substr(0, 2) == start));
    EXPECT_EQ(*c.ysm ? ReadFile(w.dir / c.ysm).size() : 0u, !*c.ysm ? 0u : w.f.Combo3 == "8-8SUM" ? 52u : 54u);
  }
}

TEST(SaveFlow, PromptsBeforeAListedFile) {
  const struct {
    Change change;
    const char *listed, *answers;  // Y or N for each prompt
    const char *asked, *notice;  // the names a pair's prompts name; "" when the dialog stays open
    std::size_t binSize;  // of prog.BIN afterwards; the old one is 300 bytes
  } cases[] = {
      {{}, "other.BIN", "", "", "BIN", 300},  // not listed: the old file keeps its end
      {{}, "a PROG.bin", "Y", "", "BIN", 256},
      {{}, "prog.BIN", "N", "", "", 300},
      {{.combo1 = kPair}, "prog.BIN prog.YSM", "YY", "prog.BIN prog.YSM", "BIN and YSM", 256},
      {{.combo1 = kPair}, "prog.BIN prog.YSM", "YN", "prog.BIN prog.YSM", "", 300},
      {{.combo1 = kPair}, "prog.BIN prog.YSM", "N", "prog.BIN", "", 300},
      {{.combo1 = kPair}, "prog.YSM", "Y", "prog.YSM", "BIN and YSM", 300},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.YSM"}, "prog.HEX prog.ysm", "YN", "prog.HEX prog.YSM", "", 300},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.txt"}, "PROG.TXT prog.YSM", "YN", "prog.txt prog.YSM", "", 300},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(w.f.Combo1 + " " + w.f.Text5 + " " + c.answers);
    test::WriteFile(w.dir / "prog.BIN", std::string(300, 'x'));
    w.f.File2 = Words(c.listed);
    for (const char* a = c.answers; *a; ++a) w.platform.answers.push_back(*a == 'Y' ? vbYes : vbNo);
    const bool closes = *c.notice != '\0';
    EXPECT_EQ(w.Save(), closes);
    std::vector<test::Message> expected;
    if (w.f.Combo1 == kObject && *c.answers) expected.push_back({"Over Write?", vbExclamationYesNo, "Save"});
    for (const auto& name : Words(c.asked)) expected.push_back({name + " File Over Write?", vbExclamationYesNo, "Save"});
    std::vector<int> pointers(expected.size(), vbDefault);  // the prompts' pointer, then the notice's
    if (closes) expected.push_back({c.notice + std::string(" File Save Complete!"), vbOKOnly, ""});
    if (closes) pointers.push_back(vbHourglass);
    EXPECT_EQ(w.platform.messages, expected);
    EXPECT_EQ(w.platform.pointersAtMessages, pointers);
    w.ExpectReady();
    const std::string bin = ReadFile(w.dir / "prog.BIN");
    EXPECT_EQ(bin.size(), c.binSize);
    EXPECT_EQ(bin.substr(0, 256), closes ? w.Bytes(0, 0xFF) : std::string(256, 'x'));
    EXPECT_TRUE(closes || w.Files() == std::set<std::string>{"prog.BIN"}) << "nothing written after a No";
    EXPECT_EQ(w.store.values.empty(), !closes);
  }
}

TEST(SaveFlow, SettingsStoredOnlyAfterSuccess) {
  World w({.text4 = "2", .combo1 = kPair, .combo2 = "HEX", .combo3 = "8-16SUM"});
  w.f.Drive2 = "/home";
  ASSERT_TRUE(w.Save());
  MemorySettings expected;
  const std::array<std::string, 3> values[] = {
      {kAddress, "SaveFirst", "00000000"}, {kAddress, "SaveLast", "000000FF"}, {kAddress, "RecordLength", "2"},
      {kFormat, "FileType", kPair}, {kFormat, "ObjectFileFormat", "HEX"}, {kFormat, "YSMFileFormat", "8-16SUM"},
      {kFilePath, "SaveDrive", "/home"}, {kFilePath, "SaveDir", w.dir.path().string()}};
  for (const auto& [section, key, value] : values) expected.Write(section, key, value);
  EXPECT_EQ(w.store.values, expected.values);
}

// The writers' faults are theirs; the Save button shows them, stays open, stores nothing and writes a pair's YSM
// file all the same.
TEST(SaveFlow, FailuresNameTheFileAndStoreNothing) {
  const struct {
    Change change;
    const char *dir2, *message, *files;  // dir2 is added to the test's folder (@ in message); full.S stands for a full device
  } cases[] = {
      {{.combo1 = kPair, .combo2 = "S", .text5 = "full"}, "", "@/full.S: No space left on device", "full.S full.YSM sub"},
      {{.text6 = "1FF", .text4 = "FD", .combo2 = "S"}, "", "Record Length Error!", "full.S prog.S sub"},  // what came before
      {{.text6 = "1FF", .text4 = "FD", .combo1 = kPair, .combo2 = "S"}, "", "Record Length Error!", "full.S prog.S prog.YSM sub"},
      {{}, "/gone", "@/gone/prog.BIN: No such file or directory", "full.S sub"},
      {{.combo1 = kPair}, "/gone", "@/gone/prog.YSM: No such file or directory", "full.S sub"},  // each file says it
      {{.text5 = "sub/prog"}, "", "Can't save @/sub/prog: a file name can't hold a folder.", "full.S sub"},
      {{.text5 = "x/y"}, "/", "@/x/y: a file name can't hold a folder.", "full.S sub"},  // a root gets no second separator
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(c.message);
    fs::create_directory(w.dir / "sub");
    fs::create_symlink("/dev/full", w.dir / "full.S");
    w.f.Dir2 += c.dir2;
    EXPECT_FALSE(w.Save());
    ASSERT_FALSE(w.platform.messages.empty());
    const std::string message = std::regex_replace(c.message, std::regex("@"), w.dir.path().string());
    EXPECT_NE(w.platform.messages.back().text.find(message), std::string::npos) << w.platform.messages.back().text;
    for (const auto& m : w.platform.messages) EXPECT_EQ(m.text.find("Complete"), std::string::npos);
    w.ExpectReady();
    EXPECT_TRUE(w.m.FileError == 0 && w.store.values.empty());
    const std::vector<std::string> files = Words(c.files);
    EXPECT_EQ(w.Files(), std::set<std::string>(files.begin(), files.end()));
  }
}

TEST(SaveFlow, Opening) {
  const struct {
    std::vector<std::array<const char*, 3>> stored;  // section, key, value
    const char* shown;  // Text7 Text6 Text4 Combo1 Combo2 Combo3, the three lists enabled, drive and folder
  } cases[] = {
      {{{kFilePath, "SaveDrive", "/"}, {kFilePath, "SaveDir", "/tmp"}}, "00001000|0001FFFF|10|Object File Only|BIN|8-8SUM|100|/|/tmp"},
      {{{kAddress, "SaveFirst", "00000010"}, {kAddress, "SaveLast", "20"}, {kAddress, "RecordLength", "8"},
        {kFormat, "FileType", "ysm file only"}, {kFormat, "ObjectFileFormat", "hex"}, {kFormat, "YSMFileFormat", "16-16SUM"}},
       "00000010|20|8|YSM File Only|HEX|16-16SUM|011||"},  // matched ignoring case
      {{{kFormat, "FileType", "Everything"}, {kFormat, "ObjectFileFormat", "ELF"}, {kFormat, "YSMFileFormat", "CRC"}},
       "00001000|0001FFFF|10||||111||"},  // no item: the combo empty and every list enabled
  };
  for (const auto& c : cases) {
    Module1 m = test::MakeImage(0x1000, 0x1FFFF);
    MemorySettings store;
    for (const auto& [section, key, value] : c.stored) store.Write(section, key, value);
    SaveFields f;
    f.Text5 = "left from before";
    const SavePlaces places = cmdsave_Click(f, m, store);
    std::ostringstream shown;
    shown << f.Text7 << '|' << f.Text6 << '|' << f.Text4 << '|' << f.Combo1 << '|' << f.Combo2 << '|' << f.Combo3 << '|'
          << f.Combo2Enabled << f.Combo3Enabled << f.Text4Enabled << '|' << places.drive << '|' << places.dir;
    EXPECT_EQ(shown.str(), c.shown);
    EXPECT_EQ(f.Text5, "");
  }
}

}  // namespace
}  // namespace kestrum
