#include <gtest/gtest.h>

#include "TestSupport.h"
#include "image/Settings.h"
#include "reading/LoadDialog.h"

namespace kestrum::test {
namespace {

// A dialog with a HEX file picked in a temporary folder; the image is the
// default area, the dump shows a page.
struct Dialog {
  TempDir dir;
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  MemorySettings store;
  LoadFields f;
  LoadReport report;

  explicit Dialog(const std::string& file = ":0410000001020304E2\r\n") {
    WriteFile(dir / "app.hex", file);
    f.Text1 = f.File1 = "app.hex";
    f.Dir1 = dir.path().string();
    f.Drive1 = "/";
    f.Text4 = "00000000";
    f.Text3 = "0007FFFF";
    m.frmsumtool.Text1 = "before.bin";
    m.frmsumtool.List1 = {"00000000  FF"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  }
  bool Load() { return Command1_Click(f, m, platform, store, &report); }
};

TEST(LoadDialog, RefusesTheFirstBadFieldOrTakesTheSignedOffset) {
  const struct {
    const char *text1, *text4, *text3;
    const char* text2;  // the offset, ticked; nullptr for unticked with 5 typed before
    const char* message;
    const char* shown4;  // Text4 afterwards
    Address offset;      // LoadOffset of a load that goes through
  } cases[] = {
      {"", "", "", nullptr, "Select File Name!", "", 0},
      {"app.hex", "", "", nullptr, "First Address Error!", "", 0},
      {"app.hex", "100", "", nullptr, "Last Address Error!", "100", 0},
      {"app.hex", "1", "7FFFF", "", "Offset Address Error!", "1", 0},
      {"app.hex", "1", "7FFFF", "12-34", "OffsetAddress Error!", "1", 0},  // judged before the padding
      {"app.hex", "0", "7FFFF", "--5", "OffsetAddress Error!", "0", 0},
      {"app.hex", "0", "7FFFF", "+-5", "OffsetAddress Error!", "0", 0},
      {"app.hex", "0", "7FFFF", "5+", "OffsetAddress Error!", "0", 0},
      {"app.hex", "0", "7FFFF", "123456789", "OffsetAddress Error!", "0", 0},
      {"app.hex", "80000", "90000", nullptr, "First Address Error!", "00080000", 0},
      {"app.hex", "100", "80000", nullptr, "Last Address Error!", "00000100", 0},
      {"app.hex", "2000", "1FFF", nullptr, "Address Error!", "00002000", 0},
      {"app.hex", "0", "7FFFF", "-12345678", "Load Complete!", "00000000", -305419896},
      {"app.hex", "0", "7FFFF", "12345678", "Load Complete!", "00000000", 305419896},
      {"app.hex", "0", "7FFFF", "+12345678", "Load Complete!", "00000000", 305419896},
      {"app.hex", "0", "7FFFF", "-FFFFFFFF", "Load Complete!", "00000000", -4294967295},
      {"app.hex", "0", "7FFFF", "-", "Load Complete!", "00000000", 0},
      {"app.hex", "0", "7FFFF", "+", "Load Complete!", "00000000", 0},
      {"app.hex", "0", "7FFFF", "0", "Load Complete!", "00000000", 0},
      {"app.hex", "0", "7FFFF", nullptr, "Load Complete!", "00000000", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.message) + " " + c.text4 + ".." + c.text3 + " " +
                 (c.text2 ? c.text2 : "unticked"));
    Dialog d("");  // an empty file loads as well
    d.f.Text1 = c.text1;
    d.f.Text4 = c.text4;
    d.f.Text3 = c.text3;
    d.f.Check1 = d.f.Text2Visible = c.text2 != nullptr;
    d.f.Text2 = c.text2 ? c.text2 : "5";
    const bool loads = std::string(c.message) == "Load Complete!";
    EXPECT_EQ(d.Load(), loads);
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{c.message});
    EXPECT_EQ(d.f.Text4, c.shown4);
    if (loads) {
      EXPECT_EQ(d.m.LoadOffset, c.offset);
      continue;
    }
    EXPECT_EQ(d.report.outcome, LoadReport::Outcome::Refused);
    EXPECT_EQ(d.report.message, c.message);
    EXPECT_TRUE(d.platform.pointers.empty());
    EXPECT_TRUE(d.store.values.empty());
    EXPECT_EQ(d.m.frmsumtool.List1.size(), 1u);  // a refusal does not touch the dump
  }
}

TEST(LoadDialog, ALoadThatGoesThroughOrNotEmptiesTheDump) {
  for (bool good : {true, false}) {
    SCOPED_TRACE(good);
    Dialog d(good ? ":0410000001020304E2\r\n" : ":0410000001020304E2\r\n:0410000001020304E3\r\n");
    d.f.Text4 = "1000";
    d.f.Text3 = "1002";
    EXPECT_EQ(d.Load(), good);
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{good ? "Load Complete!" : "SUM Error"});
    EXPECT_EQ(d.platform.pointer, vbDefault);
    EXPECT_EQ(d.report.line, good ? 0u : 2u);
    EXPECT_EQ(d.m.FileError, 0);
    EXPECT_EQ(d.m.LoadFileName, (d.dir / "app.hex").string());
    EXPECT_EQ(d.f.Text4, "00001000");
    EXPECT_EQ(d.m.Buffer[0x1002], 3);  // what was stored stays
    EXPECT_EQ(d.m.Buffer[0x1003], 0xFF);
    EXPECT_EQ(d.m.frmsumtool.Text1, good ? "app.hex" : "before.bin");
    EXPECT_TRUE(d.m.frmsumtool.List1.empty());
    EXPECT_FALSE(d.m.frmsumtool.cmdeditplusEnabled || d.m.frmsumtool.cmdeditminusEnabled);
    EXPECT_TRUE(d.f.Command1Enabled && d.f.Command2Enabled);
    MemorySettings stored;
    if (good) {
      stored.Write(kAddress, "LoadFirst", "00001000");
      stored.Write(kAddress, "LoadLast", "00001002");
      stored.Write(kFilePath, "LoadDrive", "/");
      stored.Write(kFilePath, "LoadDir", d.dir.path().string());
    }
    EXPECT_EQ(d.store.values, stored.values);
  }
}

TEST(LoadDialog, OpeningReadsTheStore) {
  const struct {
    std::vector<std::tuple<const char*, const char*, const char*>> stored;  // section, key, text
    const char *text4, *text3, *drive, *dir;
  } cases[] = {
      {{}, "00000000", "0007FFFF", "/old", "/old/dir"},
      {{{kFilePath, "LoadDir", "/work"}}, "00000000", "0007FFFF", "/old", "/old/dir"},  // no drive: no folder
      {{{kAddress, "LoadFirst", "00001000"},
        {kAddress, "LoadLast", "1FFF"},
        {kFilePath, "LoadDrive", "/"},
        {kFilePath, "LoadDir", "/work"}},
       "00001000",
       "1FFF",
       "/",
       "/work"},
  };
  for (const auto& c : cases) {
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
