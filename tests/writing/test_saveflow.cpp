#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "writing/SaveFlow.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using test::WriteFile;

// Also notes the pointer each message box was shown under.
class Platform : public test::ScriptedPlatform {
 public:
  int MsgBox(const std::string& text, int style, const std::string& title) override {
    pointersAtMessages.push_back(pointer);
    return ScriptedPlatform::MsgBox(text, style, title);
  }
  std::vector<int> pointersAtMessages;
};

// A save dialog over a 0..7FFFF image whose bytes differ from FF.
struct World {
  TempDir dir;
  Module1 m = test::MakeImage();
  Platform platform;
  MemorySettings store;
  SaveFields f;

  World() {
    for (Address a = 0; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a ^ (a >> 8));
    f.Drive2 = "/";
    f.Dir2 = dir.path().string();
    f.Text5 = "prog";
    f.Text7 = "0";
    f.Text6 = "FF";
    f.Text4 = "10";
    f.Combo1 = "Object File Only";
    f.Combo2 = "BIN";
    f.Combo3 = "8-8SUM";
  }
  bool Save() { return Command5_Click(f, m, platform, store); }
  std::set<std::string> Files() const {
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(dir.path())) names.insert(e.path().filename().string());
    return names;
  }
  std::string Bytes(Address first, Address last) const {
    return std::string(reinterpret_cast<const char*>(m.Buffer.data() + (first - m.BufFirst)),
                       static_cast<std::size_t>(last - first + 1));
  }
  // Pointer and buttons are back, whatever the way out was.
  void ExpectReady() const {
    EXPECT_EQ(platform.pointer, vbDefault);
    EXPECT_TRUE(f.Command5Enabled);
    EXPECT_TRUE(f.Command2Enabled);
  }
};

using Change = std::function<void(SaveFields&)>;

struct RefusalCase {
  const char* name;
  Change change;
  const char* notice;
  const char* text7;  // Text7 after the refusal
};

TEST(SaveFlow, RefusalsInTheirOrder) {
  auto hex = [](SaveFields& f) { f.Combo2 = "HEX"; };
  const RefusalCase cases[] = {
      {"empty first address", [](SaveFields& f) { f.Text7 = ""; }, "FirstAddress Error!", ""},
      {"empty last address, first not yet padded", [](SaveFields& f) { f.Text7 = "1", f.Text6 = ""; },
       "LastAddress Error!", "1"},
      {"first above last before any bound",
       [](SaveFields& f) { f.Text7 = "90000", f.Text6 = "80000"; }, "Address Error!", "00090000"},
      {"first outside even with last outside", [](SaveFields& f) { f.Text7 = "80000", f.Text6 = "90000"; },
       "FirstAddress Error!", "00080000"},
      {"last outside", [](SaveFields& f) { f.Text7 = "1", f.Text6 = "80000"; }, "LastAddress Error!",
       "00000001"},
      {"HEX with an empty record length", [&](SaveFields& f) { hex(f), f.Text4 = ""; }, "RecordLength Error!",
       "00000000"},
      {"S with record length 0", [](SaveFields& f) { f.Combo2 = "S", f.Text4 = "0"; }, "RecordLength Error!",
       "00000000"},
      {"HEX with record length 00", [&](SaveFields& f) { hex(f), f.Text4 = "00"; }, "RecordLength Error!",
       "00000000"},
      {"HEX with a record length that starts with a full stop", [&](SaveFields& f) { hex(f), f.Text4 = ".5"; },
       "RecordLength Error!", "00000000"},
      {"HEX with a stored record length of three digits", [&](SaveFields& f) { hex(f), f.Text4 = "100"; },
       "RecordLength Error!", "00000000"},
      {"YSM only still looks at the record length of HEX",
       [&](SaveFields& f) { hex(f), f.Combo1 = "YSM File Only", f.Text4 = ""; }, "RecordLength Error!",
       "00000000"},
      {"no name", [](SaveFields& f) { f.Text5 = ""; }, "Enter or Select File Name!", "00000000"},
      {"no format", [](SaveFields& f) { f.Combo2 = ""; }, "Format Error!", "00000000"},
      {"no file type", [](SaveFields& f) { f.Combo1 = ""; }, "File Type Error!", "00000000"},
      {"no sum format, though no YSM file is made", [](SaveFields& f) { f.Combo3 = ""; },
       "YSM File Format Error!", "00000000"},
      {"BIN named .S", [](SaveFields& f) { f.Text5 = "prog.S"; }, "Extension Error!", "00000000"},
      {"BIN named .hex in any case", [](SaveFields& f) { f.Text5 = "prog.hEx"; }, "Extension Error!",
       "00000000"},
      {"pair of S named .hex",
       [](SaveFields& f) { f.Combo1 = "Object and YSM File", f.Combo2 = "S", f.Text5 = "prog.hex"; },
       "Extension Error!", "00000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    World w;
    c.change(w.f);
    EXPECT_FALSE(w.Save());
    EXPECT_EQ(w.platform.messages, (std::vector<test::Message>{{c.notice, vbOKOnly, ""}}));
    EXPECT_EQ(w.platform.pointersAtMessages, std::vector<int>{vbDefault});
    EXPECT_EQ(w.f.Text7, c.text7);
    w.ExpectReady();
    EXPECT_TRUE(w.Files().empty());
    EXPECT_TRUE(w.store.values.empty());
  }
}

TEST(SaveFlow, RangeAndRecordLengthAreSetBeforeTheTests) {
  World w;
  w.f.Text7 = "90000";
  w.f.Text6 = "80000";
  w.f.Text4 = "2A";
  EXPECT_FALSE(w.Save());
  EXPECT_EQ(w.m.SaveFirst, 0x90000);
  EXPECT_EQ(w.m.SaveLast, 0x80000);
  EXPECT_EQ(w.m.RecordLength, 0x2A);
  EXPECT_EQ(w.f.Text6, "00080000");
}

TEST(SaveFlow, BinTakesAnyRecordLength) {
  for (const char* text4 : {"", "0", "00", ".5"}) {
    SCOPED_TRACE(text4);
    World w;
    w.f.Text4 = text4;
    EXPECT_TRUE(w.Save());
    EXPECT_EQ(w.platform.Texts(), std::vector<std::string>{"BIN File Save Complete!"});
  }
}

struct NamingCase {
  const char* name;
  const char* type;
  const char* format;
  const char* text5;
  std::set<std::string> files;
  const char* text5After;
  const char* notice;
};

TEST(SaveFlow, NamesOfTheFiles) {
  const char* object = "Object File Only";
  const char* ysm = "YSM File Only";
  const char* pair = "Object and YSM File";
  const NamingCase cases[] = {
      {"no extension gets the format's", object, "HEX", "prog", {"prog.HEX"}, "prog.HEX",
       "HEX File Save Complete!"},
      {"a typed extension wins", object, "S", "prog.txt", {"prog.txt"}, "prog.txt", "S File Save Complete!"},
      {"YSM as the name of an S file", object, "S", "prog.YSM", {"prog.YSM"}, "prog.YSM",
       "S File Save Complete!"},
      {"dat as BIN", object, "BIN", "prog.dat", {"prog.dat"}, "prog.dat", "BIN File Save Complete!"},
      {"the format's own extension in another case", object, "BIN", "prog.bin", {"prog.bin"}, "prog.bin",
       "BIN File Save Complete!"},
      {"a name ending in its first full stop has no extension", object, "BIN", "abc.", {"abc..BIN"},
       "abc..BIN", "BIN File Save Complete!"},
      {"YSM only takes any extension", ysm, "HEX", "prog.hex", {"prog.hex"}, "prog.hex",
       "YSM File Save Complete!"},
      {"YSM only adds .YSM", ysm, "BIN", "prog", {"prog.YSM"}, "prog.YSM", "YSM File Save Complete!"},
      {"pair from a bare name", pair, "S", "prog", {"prog.S", "prog.YSM"}, "prog.S",
       "S and YSM File Save Complete!"},
      {"pair from the YSM name", pair, "S", "prog.YSM", {"prog.S", "prog.YSM"}, "prog.YSM",
       "S and YSM File Save Complete!"},
      {"pair of BIN from a bare name", pair, "BIN", "prog", {"prog.BIN", "prog.YSM"}, "prog.BIN",
       "BIN and YSM File Save Complete!"},
      {"pair keeps a typed object extension", pair, "BIN", "prog.bin", {"prog.bin", "prog.YSM"}, "prog.bin",
       "BIN and YSM File Save Complete!"},
      {"pair cuts at the first full stop", pair, "BIN", "a.b.c", {"a.b.c", "a.YSM"}, "a.b.c",
       "BIN and YSM File Save Complete!"},
      {"pair of HEX from a lower-case ysm name", pair, "HEX", "prog.ysm", {"prog.HEX", "prog.ysm"}, "prog.ysm",
       "HEX and YSM File Save Complete!"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    World w;
    w.f.Combo1 = c.type;
    w.f.Combo2 = c.format;
    w.f.Text5 = c.text5;
    EXPECT_TRUE(w.Save());
    EXPECT_EQ(w.Files(), c.files);
    EXPECT_EQ(w.f.Text5, c.text5After);
    EXPECT_EQ(w.platform.Texts(), std::vector<std::string>{c.notice});
    EXPECT_EQ(w.platform.pointersAtMessages, std::vector<int>{vbHourglass});
    w.ExpectReady();

    // Pressed again with the name as it now stands, the same files come.
    w.platform.messages.clear();
    EXPECT_TRUE(w.Save());
    EXPECT_EQ(w.Files(), c.files);
    EXPECT_EQ(w.f.Text5, c.text5After);
  }
}

TEST(SaveFlow, OneAddressGivesABinFileOfOneByte) {
  World w;
  w.f.Text7 = "80";
  w.f.Text6 = "80";
  ASSERT_TRUE(w.Save());
  EXPECT_EQ(ReadFile(w.dir / "prog.BIN"), w.Bytes(0x80, 0x80));
}

TEST(SaveFlow, WritersGetTheRangeAndTheSum) {
  World w;
  w.f.Combo1 = "Object and YSM File";
  w.f.Combo3 = "16-16sum";
  w.f.Text7 = "100";
  w.f.Text6 = "1FF";
  ASSERT_TRUE(w.Save());
  EXPECT_EQ(ReadFile(w.dir / "prog.BIN"), w.Bytes(0x100, 0x1FF));
  EXPECT_EQ(ReadFile(w.dir / "prog.YSM").size(), 54u);
  EXPECT_EQ(w.f.Text7, "00000100");
}

struct PromptCase {
  const char* name;
  const char* type;
  const char* format;
  std::vector<std::string> listed;
  std::vector<int> answers;
  std::vector<std::string> prompts;
  bool closes;
  std::size_t binSize;     // size of prog.BIN afterwards, the old one is 300 bytes
  bool ysmWritten;
};

TEST(SaveFlow, PromptsBeforeAListedFile) {
  const char* object = "Object File Only";
  const char* pair = "Object and YSM File";
  const PromptCase cases[] = {
      {"not listed: no prompt, the old file keeps its end", object, "BIN", {"other.BIN"}, {}, {}, true, 300,
       false},
      {"listed in another case, Yes replaces it whole", object, "BIN", {"a", "PROG.bin"}, {vbYes},
       {"Over Write?"}, true, 256, false},
      {"listed, No leaves it", object, "BIN", {"prog.BIN"}, {vbNo}, {"Over Write?"}, false, 300, false},
      {"pair, Yes and Yes", pair, "BIN", {"prog.BIN", "prog.YSM"}, {vbYes, vbYes},
       {"prog.BIN File Over Write?", "prog.YSM File Over Write?"}, true, 256, true},
      {"pair, Yes then No leaves the old BIN", pair, "BIN", {"prog.BIN", "prog.YSM"}, {vbYes, vbNo},
       {"prog.BIN File Over Write?", "prog.YSM File Over Write?"}, false, 300, false},
      {"pair, No at the object stops before the YSM prompt", pair, "BIN", {"prog.BIN", "prog.YSM"}, {vbNo},
       {"prog.BIN File Over Write?"}, false, 300, false},
      {"pair, only the YSM file listed", pair, "BIN", {"prog.YSM"}, {vbYes}, {"prog.YSM File Over Write?"},
       true, 300, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    World w;
    WriteFile(w.dir / "prog.BIN", std::string(300, 'x'));
    w.f.Combo1 = c.type;
    w.f.Combo2 = c.format;
    w.f.File2 = c.listed;
    w.platform.answers.assign(c.answers.begin(), c.answers.end());
    EXPECT_EQ(w.Save(), c.closes);
    std::vector<test::Message> expected;
    for (const auto& p : c.prompts) expected.push_back({p, vbExclamationYesNo, "Save"});
    const std::string done = std::string(c.type == pair ? "BIN and YSM" : "BIN") + " File Save Complete!";
    if (c.closes) expected.push_back({done, vbOKOnly, ""});
    EXPECT_EQ(w.platform.messages, expected);
    for (std::size_t i = 0; i < c.prompts.size(); ++i) EXPECT_EQ(w.platform.pointersAtMessages[i], vbDefault);
    w.ExpectReady();
    const std::string bin = ReadFile(w.dir / "prog.BIN");
    EXPECT_EQ(bin.size(), c.binSize);
    if (c.closes) {
      EXPECT_EQ(bin.substr(0, 256), w.Bytes(0, 0xFF));
    } else {
      EXPECT_EQ(bin, std::string(300, 'x'));
    }
    EXPECT_EQ(fs::exists(w.dir / "prog.YSM"), c.ysmWritten);
    EXPECT_EQ(w.store.values.empty(), !c.closes);
    EXPECT_EQ(w.f.Text5, "prog.BIN");
  }
}

TEST(SaveFlow, PromptNamesForTheOtherNamingRows) {
  struct Case {
    const char* text5;
    std::vector<std::string> listed;
    std::vector<std::string> prompts;
  } cases[] = {
      {"prog.YSM", {"prog.HEX", "prog.ysm"}, {"prog.HEX File Over Write?", "prog.YSM File Over Write?"}},
      {"prog.txt", {"PROG.TXT", "prog.YSM"}, {"prog.txt File Over Write?", "prog.YSM File Over Write?"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text5);
    World w;
    w.f.Combo1 = "Object and YSM File";
    w.f.Combo2 = "HEX";
    w.f.Text5 = c.text5;
    w.f.File2 = c.listed;
    w.platform.answers = {vbYes, vbNo};
    EXPECT_FALSE(w.Save());
    EXPECT_EQ(w.platform.Texts(), c.prompts);
    EXPECT_TRUE(w.Files().empty());
  }
}

TEST(SaveFlow, SettingsStoredOnlyAfterSuccess) {
  World w;
  w.f.Combo1 = "Object and YSM File";
  w.f.Combo2 = "HEX";
  w.f.Combo3 = "8-16SUM";
  w.f.Text4 = "2";
  w.f.Drive2 = "/home";
  ASSERT_TRUE(w.Save());
  const MemorySettings::Key keys[] = {
      {kApp, kAddress, "SaveFirst"},  {kApp, kAddress, "SaveLast"},       {kApp, kAddress, "RecordLength"},
      {kApp, kFormat, "FileType"},    {kApp, kFormat, "ObjectFileFormat"}, {kApp, kFormat, "YSMFileFormat"},
      {kApp, kFilePath, "SaveDrive"}, {kApp, kFilePath, "SaveDir"}};
  const std::string values[] = {"00000000", "000000FF", "2", "Object and YSM File", "HEX", "8-16SUM",
                                "/home", w.dir.path().string()};
  EXPECT_EQ(w.store.values.size(), std::size(keys));
  for (std::size_t i = 0; i < std::size(keys); ++i) EXPECT_EQ(w.store.values[keys[i]], values[i]);
}

TEST(SaveFlow, AFailedSFileThenAHexSave) {
  for (const char* type : {"Object File Only", "Object and YSM File"}) {
    SCOPED_TRACE(type);
    World w;
    w.f.Combo1 = type;
    w.f.Combo2 = "S";
    w.f.Text4 = "FD";
    w.f.Text6 = "1FF";
    EXPECT_FALSE(w.Save());
    EXPECT_EQ(w.platform.Texts(), std::vector<std::string>{"Record Length Error!"});
    EXPECT_EQ(w.m.FileError, 0);
    EXPECT_TRUE(w.store.values.empty());
    w.ExpectReady();
    EXPECT_EQ(ReadFile(w.dir / "prog.S"), "");
    const bool pair = std::string(type) == "Object and YSM File";
    EXPECT_EQ(fs::exists(w.dir / "prog.YSM"), pair);
    if (pair) {
      EXPECT_EQ(ReadFile(w.dir / "prog.YSM").size(), 52u);
    }

    w.platform.messages.clear();
    w.f.Combo2 = "HEX";
    w.f.Text5 = "prog";
    EXPECT_TRUE(w.Save());
    EXPECT_EQ(w.platform.Texts(),
              std::vector<std::string>{pair ? "HEX and YSM File Save Complete!" : "HEX File Save Complete!"});
  }
}

TEST(SaveFlow, FileSystemFailures) {
  struct Case {
    const char* name;
    Change change;
    const char* inMessage;
  } cases[] = {
      {"a folder that is gone", [](SaveFields& f) { f.Dir2 += "/gone"; }, "No such file or directory"},
      {"a name holding a path", [](SaveFields& f) { f.Text5 = "sub/prog"; }, "sub/prog: a file name can't hold"},
      {"a pair into a gone folder says it for each file",
       [](SaveFields& f) { f.Dir2 += "/gone", f.Combo1 = "Object and YSM File"; }, "prog.YSM: No such file"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    World w;
    fs::create_directory(w.dir / "sub");
    c.change(w.f);
    EXPECT_FALSE(w.Save());
    ASSERT_FALSE(w.platform.messages.empty());
    const std::string& last = w.platform.messages.back().text;
    EXPECT_NE(last.find(c.inMessage), std::string::npos) << last;
    EXPECT_NE(last.find(w.f.Dir2), std::string::npos) << last;
    EXPECT_EQ(last.find("//"), std::string::npos) << last;
    for (const auto& m : w.platform.messages) EXPECT_EQ(m.text.find("Complete"), std::string::npos);
    w.ExpectReady();
    EXPECT_EQ(w.m.FileError, 0);
    EXPECT_TRUE(w.store.values.empty());
    EXPECT_EQ(w.Files(), std::set<std::string>{"sub"});
  }
}

TEST(SaveFlow, ARootFolderIsJoinedWithOneSeparator) {
  World w;
  w.f.Dir2 += "/";
  w.f.Text5 = "x/y";
  EXPECT_FALSE(w.Save());
  EXPECT_EQ(w.platform.Texts(),
            std::vector<std::string>{"Can't save " + w.dir.path().string() + "/x/y: a file name can't hold a folder."});
}

struct OpeningCase {
  const char* name;
  std::vector<std::array<const char*, 3>> stored;  // section, key, value
  SaveFields expected;
  SavePlaces places;
};

TEST(SaveFlow, Opening) {
  auto fields = [](const char* text7, const char* text6, const char* text4, const char* combo1,
                   const char* combo2, const char* combo3, bool combo2On, bool combo3On, bool text4On) {
    SaveFields f;
    f.Text7 = text7, f.Text6 = text6, f.Text4 = text4, f.Combo1 = combo1, f.Combo2 = combo2, f.Combo3 = combo3;
    f.Combo2Enabled = combo2On, f.Combo3Enabled = combo3On, f.Text4Enabled = text4On;
    return f;
  };
  const OpeningCase cases[] = {
      {"first opening", {}, fields("00001000", "0001FFFF", "10", "Object File Only", "BIN", "8-8SUM", true, false, false), {}},
      {"stored values, combos matched ignoring case",
       {{kAddress, "SaveFirst", "00000010"},
        {kAddress, "SaveLast", "20"},
        {kAddress, "RecordLength", "8"},
        {kFormat, "FileType", "ysm file only"},
        {kFormat, "ObjectFileFormat", "hex"},
        {kFormat, "YSMFileFormat", "16-16SUM"}},
       fields("00000010", "20", "8", "YSM File Only", "HEX", "16-16SUM", false, true, true), {}},
      {"a type that is no item leaves the combo empty and every list enabled",
       {{kFormat, "FileType", "Everything"}, {kFormat, "ObjectFileFormat", "ELF"}, {kFormat, "YSMFileFormat", "CRC"}},
       fields("00001000", "0001FFFF", "10", "", "", "", true, true, true), {}},
      {"a directory without a drive is not applied", {{kFilePath, "SaveDir", "/tmp"}},
       fields("00001000", "0001FFFF", "10", "Object File Only", "BIN", "8-8SUM", true, false, false), {}},
      {"drive and directory", {{kFilePath, "SaveDrive", "/"}, {kFilePath, "SaveDir", "/tmp"}},
       fields("00001000", "0001FFFF", "10", "Object File Only", "BIN", "8-8SUM", true, false, false),
       {"/", "/tmp"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = test::MakeImage(0x1000, 0x1FFFF);
    MemorySettings store;
    for (const auto& [section, key, value] : c.stored) store.Write(section, key, value);
    SaveFields f;
    f.Text5 = "left from before";
    const SavePlaces places = cmdsave_Click(f, m, store);
    EXPECT_EQ(f, c.expected);
    EXPECT_EQ(places.drive, c.places.drive);
    EXPECT_EQ(places.dir, c.places.dir);
  }
}

}  // namespace
}  // namespace kestrum
