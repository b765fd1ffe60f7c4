#include <gtest/gtest.h>

#include "TestSupport.h"
#include "image/Settings.h"
#include "reading/LoadDialog.h"

namespace kestrum::test {
namespace {

namespace fs = std::filesystem;

// A dialog with a HEX file picked in a temporary folder; the image is the
// default area, the dump shows a page.
struct Dialog {
  TempDir dir;
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  MemorySettings store;
  LoadFields f;

  explicit Dialog(const std::string& file = ":0410000001020304E2\r\n", const std::string& name = "app.hex") {
    WriteFile(dir / name, file);
    f.Text1 = f.File1 = name;
    f.Dir1 = dir.path().string();
    f.Drive1 = "/";
    f.Text4 = "00000000";
    f.Text3 = "0007FFFF";
    m.frmsumtool.Text1 = "before.bin";
    m.frmsumtool.List1 = {"00000000  FF"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  }
  bool Load(LoadReport* report = nullptr) { return Command1_Click(f, m, platform, store, report); }
};

TEST(LoadDialog, RefusesTheFirstBadFieldAndStaysOpen) {
  const struct {
    const char* name;
    void (*set)(LoadFields&);
    const char* message;
    const char* text4;  // as the field shows it afterwards
  } cases[] = {
      {"no file", [](LoadFields& f) { f.Text1 = f.Text4 = f.Text3 = ""; }, "Select File Name!", ""},
      {"first empty", [](LoadFields& f) { f.Text4 = f.Text3 = ""; }, "First Address Error!", ""},
      {"last empty", [](LoadFields& f) { f.Text3 = ""; f.Text4 = "100"; }, "Last Address Error!", "100"},
      {"offset ticked and empty", [](LoadFields& f) { f.Check1 = f.Text2Visible = true; f.Text2 = ""; f.Text4 = "1"; },
       "Offset Address Error!", "1"},
      {"sign in the middle", [](LoadFields& f) { f.Check1 = f.Text2Visible = true; f.Text2 = "12-34"; f.Text4 = "1"; },
       "OffsetAddress Error!", "1"},
      {"two signs", [](LoadFields& f) { f.Check1 = f.Text2Visible = true; f.Text2 = "--5"; }, "OffsetAddress Error!",
       "00000000"},
      {"mixed signs", [](LoadFields& f) { f.Check1 = f.Text2Visible = true; f.Text2 = "+-5"; }, "OffsetAddress Error!",
       "00000000"},
      {"sign behind", [](LoadFields& f) { f.Check1 = f.Text2Visible = true; f.Text2 = "5+"; }, "OffsetAddress Error!",
       "00000000"},
      {"nine digits", [](LoadFields& f) { f.Check1 = f.Text2Visible = true; f.Text2 = "123456789"; },
       "OffsetAddress Error!", "00000000"},
      {"first above the area", [](LoadFields& f) { f.Text4 = "80000"; f.Text3 = "90000"; }, "First Address Error!",
       "00080000"},
      {"last above the area", [](LoadFields& f) { f.Text4 = "100"; f.Text3 = "80000"; }, "Last Address Error!",
       "00000100"},
      {"first above last", [](LoadFields& f) { f.Text4 = "2000"; f.Text3 = "1FFF"; }, "Address Error!", "00002000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Dialog d;
    c.set(d.f);
    LoadReport report;
    EXPECT_FALSE(d.Load(&report));
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{c.message});
    EXPECT_EQ(d.f.Text4, c.text4);
    EXPECT_EQ(report.outcome, LoadReport::Outcome::Refused);
    EXPECT_EQ(report.message, c.message);
    EXPECT_TRUE(d.platform.pointers.empty());
    EXPECT_TRUE(d.store.values.empty());
    EXPECT_EQ(d.m.frmsumtool.List1.size(), 1u);  // a refusal does not touch the dump
    EXPECT_EQ(d.m.Buffer[0x1000], 0xFF);
  }
}

TEST(LoadDialog, OffsetTextGivesTheSignedOffset) {
  const struct {
    bool ticked;
    const char* text;
    Address offset;
  } cases[] = {
      {true, "-12345678", -305419896}, {true, "12345678", 305419896}, {true, "+12345678", 305419896},
      {true, "-", 0},                  {true, "+", 0},                {true, "0", 0},
      {false, "5", 0},  // ticked, typed, unticked: the text is ignored
      {true, "-FFFFFFFF", -4294967295}, {true, "1000", 0x1000},
  };
  for (const auto& c : cases) {
    Dialog d("");
    d.f.Check1 = d.f.Text2Visible = c.ticked;
    d.f.Text2 = c.text;
    EXPECT_TRUE(d.Load()) << c.text;  // an empty file loads as well
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{"Load Complete!"});
    EXPECT_EQ(d.m.LoadOffset, c.offset) << c.text;
  }
}

TEST(LoadDialog, LoadThatGoesThroughReportsStoresAndCloses) {
  Dialog d;
  d.f.Text4 = "1000";
  d.f.Text3 = "1001";
  EXPECT_TRUE(d.Load());
  EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{"Load Complete!"});
  EXPECT_EQ(d.platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
  EXPECT_EQ(d.m.LoadFileName, (d.dir / "app.hex").string());
  EXPECT_EQ(d.m.frmsumtool.Text1, "app.hex");
  EXPECT_EQ(d.f.Text4, "00001000");
  EXPECT_EQ(d.m.Buffer[0x1000], 1);
  EXPECT_EQ(d.m.Buffer[0x1001], 2);
  EXPECT_EQ(d.m.Buffer[0x1002], 0xFF);
  EXPECT_EQ(d.store.Read(kAddress, "LoadFirst", ""), "00001000");
  EXPECT_EQ(d.store.Read(kAddress, "LoadLast", ""), "00001001");
  EXPECT_EQ(d.store.Read(kFilePath, "LoadDrive", ""), "/");
  EXPECT_EQ(d.store.Read(kFilePath, "LoadDir", ""), d.dir.path().string());
  EXPECT_TRUE(d.m.frmsumtool.List1.empty());
  EXPECT_FALSE(d.m.frmsumtool.cmdeditplusEnabled || d.m.frmsumtool.cmdeditminusEnabled);
  EXPECT_TRUE(d.f.Command1Enabled && d.f.Command2Enabled);
}

TEST(LoadDialog, FailedLoadKeepsSettingsAndNameButEmptiesTheDump) {
  const struct {
    const char* name;
    std::string file;
    const char* message;
    std::uint64_t line;
  } cases[] = {
      {"bad checksum", ":0410000001020304E2\r\n:0410000001020304E3\r\n", "SUM Error", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Dialog d(c.file);
    LoadReport report;
    EXPECT_FALSE(d.Load(&report));
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{c.message});
    EXPECT_EQ(report.outcome, LoadReport::Outcome::RecordError);
    EXPECT_EQ(report.line, c.line);
    EXPECT_EQ(d.m.FileError, 0);
    EXPECT_EQ(d.m.Buffer[0x1003], 4);  // what was stored stays
    EXPECT_EQ(d.m.frmsumtool.Text1, "before.bin");
    EXPECT_TRUE(d.store.values.empty());
    EXPECT_TRUE(d.m.frmsumtool.List1.empty());
    EXPECT_FALSE(d.m.frmsumtool.cmdeditplusEnabled);
    EXPECT_EQ(d.platform.pointer, vbDefault);
  }
}

TEST(LoadDialog, OpeningReadsTheStore) {
  const struct {
    const char* name;
    std::vector<std::tuple<const char*, const char*, const char*>> stored;  // section, key, text
    const char *text4, *text3, *drive, *dir;
  } cases[] = {
      {"empty store", {}, "00000000", "0007FFFF", "/old", "/old/dir"},
      {"folder without drive", {{kFilePath, "LoadDir", "/work"}}, "00000000", "0007FFFF", "/old", "/old/dir"},
      {"all stored",
       {{kAddress, "LoadFirst", "00001000"}, {kAddress, "LoadLast", "1FFF"}, {kFilePath, "LoadDrive", "/"},
        {kFilePath, "LoadDir", "/work"}},
       "00001000", "1FFF", "/", "/work"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    MemorySettings store;
    for (const auto& [section, key, value] : c.stored) store.Write(section, key, value);
    LoadFields f;
    f.Check1 = f.Text2Visible = true;
    f.Drive1 = "/old";
    f.Dir1 = "/old/dir";
    cmdload_Click(f, store);
    EXPECT_EQ(f.Text4, c.text4);
    EXPECT_EQ(f.Text3, c.text3);
    EXPECT_EQ(f.Drive1, c.drive);
    EXPECT_EQ(f.Dir1, c.dir);
    EXPECT_FALSE(f.Check1 || f.Text2Visible);
  }
}

}  // namespace
}  // namespace kestrum::test
