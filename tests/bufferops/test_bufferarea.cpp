#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/BufferArea.h"

namespace kestrum {
namespace {

// The default area with a loaded file, a page on show and a changed byte.
Module1 BusyImage() {
  Module1 m = test::MakeImage();
  m.At(0x10) = 0x42;
  m.frmsumtool.Text1 = "app.hex";
  m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  return m;
}

TEST(BufferArea, NewAreaIsClearedShownAndStored) {
  struct Case {
    const char *text1, *text2, *shown1, *shown2;
    Address first, last;
  };
  const Case cases[] = {
      {"FF", "FFFF", "000000FF", "0000FFFF", 0xFF, 0xFFFF},
      {"00001000", "00001000", "00001000", "00001000", 0x1000, 0x1000},
      {"123456789", "12346FFF", "123456789", "12346FFF", 0x12346789, 0x12346FFF},  // 9 characters stay
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text1);
    Module1 m = BusyImage();
    test::ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f{c.text1, c.text2};
    ASSERT_TRUE(Cmdok_Click(f, m, platform, store));
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
    EXPECT_EQ(f, (BufAddrFields{c.shown1, c.shown2}));
    EXPECT_EQ(m.BufFirst, c.first);
    EXPECT_EQ(m.BufSize, c.last - c.first + 1);
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) ASSERT_EQ(m.At(a), 0xFF);
    SumToolFields shown;
    shown.txtbuffaddr = shown.txteditaddr = c.shown1;
    shown.txtbufladdr = c.shown2;
    EXPECT_EQ(m.frmsumtool, shown);  // no file, no dump, step buttons off

    MemorySettings expected;
    for (const char* key : {"SUMfaddr", "storefaddr", "SaveFirst", "LoadFirst"})
      expected.Write(kAddress, key, c.shown1);
    for (const char* key : {"SUMladdr", "storeladdr", "SaveLast", "LoadLast"})
      expected.Write(kAddress, key, c.shown2);
    expected.Write(kAddress, "storedata", "10");
    EXPECT_EQ(store.values, expected.values);
  }
}

TEST(BufferArea, RefusalsLeaveEverythingAsItWas) {
  struct Case {
    const char *text1, *text2, *message, *shown1, *shown2;
    bool busy;  // the pointer went to the hourglass and back
  };
  const Case cases[] = {
      {"", "", "FirstAddress Error!", "", "", false},
      {"100", "", "LastAddress Error!", "100", "", false},
      {"00000100", "FF", "Address Error", "00000100", "000000FF", false},
      {"0", "FFFFFFFF", "Out of Memory", "00000000", "FFFFFFFF", true},
      {"80000000", "FFFFFFFF", "Out of Memory", "80000000", "FFFFFFFF", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    Module1 m = BusyImage();
    const SumToolFields window = m.frmsumtool;
    test::ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f{c.text1, c.text2};
    EXPECT_FALSE(Cmdok_Click(f, m, platform, store));
    EXPECT_EQ(platform.Texts(), std::vector<std::string>{c.message});
    EXPECT_EQ(platform.pointers.size(), c.busy ? 2u : 0u);
    EXPECT_EQ(f, (BufAddrFields{c.shown1, c.shown2}));
    EXPECT_EQ(m.BufSize, 0x80000);
    EXPECT_EQ(m.At(0x10), 0x42);
    EXPECT_EQ(m.frmsumtool, window);
    EXPECT_TRUE(store.values.empty());
  }
}

}  // namespace
}  // namespace kestrum
