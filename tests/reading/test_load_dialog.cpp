// The Load button: its tests of the fields in order, the offset it takes,
// and what a load leaves in the image, the dump, the fields and the store.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "image/Settings.h"
#include "reading/LoadDialog.h"

namespace kestrum::test {
namespace {

// A dialog with the HEX file app.hex in a temporary folder picked; the image
// is the default area, the dump shows a page.
struct Dialog {
  TempDir dir;
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  MemorySettings store;
  LoadFields f;
  LoadReport report;

  explicit Dialog(const std::string& file) {
    WriteFile(dir / "app.hex", file);
    f.Text1 = f.File1 = "app.hex";
    f.Dir1 = dir.path().string();
    f.Drive1 = "/";
    m.frmsumtool.Text1 = "before.bin";
    m.frmsumtool.List1 = {"00000000  FF"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  }
  bool Load() { return Command1_Click(f, m, platform, store, &report); }
};

TEST(LoadDialog, RefusesTheFirstBadFieldOrTakesTheSignedOffset) {
  const struct {
    const char *text1, *text4, *text3, *text2;  // text2 the offset, ticked; nullptr: unticked, 5 typed
    const char *message, *shown4;               // shown4: Text4 afterwards
    Address offset;                             // LoadOffset afterwards
  } cases[] = {
      {"", "", "", nullptr, "Select File Name!", "", 0},
      {"app.hex", "", "", nullptr, "First Address Error!", "", 0},
      {"app.hex", "100", "", nullptr, "Last Address Error!", "100", 0},
      {"app.hex", "1", "7FFFF", "", "Offset Address Error!", "1", 0},
      {"app.hex", "1", "7FFFF", "12-34", "OffsetAddress Error!", "1", 0},  // judged before the padding
      {"app.hex", "0", "7FFFF", "123456789", "OffsetAddress Error!", "0", 0},
      {"app.hex", "80000", "90000", nullptr, "First Address Error!", "00080000", 0},
      {"app.hex", "2000", "1FFF", nullptr, "Address Error!", "00002000", 0},
      {"app.hex", "0", "7FFFF", "-FFFFFFFF", "Load Complete!", "00000000", -4294967295},
      {"app.hex", "0", "7FFFF", "-", "Load Complete!", "00000000", 0},
      {"app.hex", "0", "7FFFF", nullptr, "Load Complete!", "00000000", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.message) + " " + c.text4 + ".." + c.text3 + " " + (c.text2 ? c.text2 : "unticked"));
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
    EXPECT_EQ(d.m.LoadOffset, c.offset);
    EXPECT_EQ(d.report.outcome, loads ? LoadReport::Outcome::Loaded : LoadReport::Outcome::Refused);
    EXPECT_EQ(d.store.values.empty(), !loads);
    EXPECT_EQ(d.m.frmsumtool.List1.empty(), loads);  // a refusal does not touch the dump
  }
}

// A load that ran empties the dump and keeps what it stored, a bad record
// too; only a load to the end names the file and stores the fields.
TEST(LoadDialog, AfterALoadThatRan) {
  for (bool good : {true, false}) {
    SCOPED_TRACE(good);
    Dialog d(good ? ":0410000001020304E2\r\n" : ":0410000001020304E2\r\n:0410000001020304E3\r\n");
    d.f.Text4 = "1000";
    d.f.Text3 = "1002";
    EXPECT_EQ(d.Load(), good);
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{good ? "Load Complete!" : "SUM Error"});
    EXPECT_EQ(d.report.line, good ? 0u : 2u);
    EXPECT_EQ(d.m.FileError, 0);
    EXPECT_EQ(d.m.LoadFileName, (d.dir / "app.hex").string());
    EXPECT_EQ(std::vector<std::uint8_t>(&d.m.At(0x1001), &d.m.At(0x1004)), (std::vector<std::uint8_t>{2, 3, 0xFF}));
    EXPECT_EQ(d.m.frmsumtool.Text1, good ? "app.hex" : "before.bin");
    EXPECT_FALSE(d.m.frmsumtool.cmdeditplusEnabled || d.m.frmsumtool.cmdeditminusEnabled);
    EXPECT_TRUE(d.f.Command1Enabled && d.f.Command2Enabled && d.platform.pointer == vbDefault);
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

}  // namespace
}  // namespace kestrum::test
