#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/BufferArea.h"

namespace kestrum {
namespace {

TEST(BufferArea, NewAreaIsClearedShownAndStoredOrNothingChanges) {
  const struct {
    const char *text1, *text2, *shown1, *shown2;
    const char* message;  // "" when the area changes
    bool busy;            // the pointer went to the hourglass and back
  } cases[] = {
      {"FF", "FFFF", "000000FF", "0000FFFF", "", true},
      {"00001000", "00001000", "00001000", "00001000", "", true},
      {"123456789", "12346FFF", "123456789", "12346FFF", "", true},  // 9 characters stay
      {"", "", "", "", "FirstAddress Error!", false},
      {"100", "", "100", "", "LastAddress Error!", false},
      {"00000100", "FF", "00000100", "000000FF", "Address Error", false},
      {"0", "FFFFFFFF", "00000000", "FFFFFFFF", "Out of Memory", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text1) + ".." + c.text2);
    Module1 m = test::MakeImage();
    m.At(0x10) = 0x42;
    m.frmsumtool.Text1 = "app.hex";
    m.frmsumtool.List1 = {"row"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
    const SumToolFields window = m.frmsumtool;
    test::ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f{c.text1, c.text2};
    const bool changed = *c.message == '\0';
    EXPECT_EQ(Cmdok_Click(f, m, platform, store), changed);
    EXPECT_EQ(platform.Texts(), changed ? std::vector<std::string>{} : std::vector<std::string>{c.message});
    EXPECT_EQ(platform.pointers, (c.busy ? std::vector<int>{vbHourglass, vbDefault} : std::vector<int>{}));
    EXPECT_EQ(f, (BufAddrFields{c.shown1, c.shown2}));
    if (!changed) {
      EXPECT_EQ(m.BufSize, 0x80000);
      EXPECT_EQ(m.At(0x10), 0x42);
      EXPECT_EQ(m.frmsumtool, window);
      EXPECT_TRUE(store.values.empty());
      continue;
    }
    EXPECT_EQ(m.BufFirst, AddressFromText(c.shown1));
    EXPECT_EQ(m.BufLast, AddressFromText(c.shown2));
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) ASSERT_EQ(m.At(a), 0xFF);
    SumToolFields shown;  // no file, no dump, step buttons off
    shown.txtbuffaddr = shown.txteditaddr = c.shown1;
    shown.txtbufladdr = c.shown2;
    EXPECT_EQ(m.frmsumtool, shown);
    MemorySettings expected;
    for (const char* key : {"SUMfaddr", "storefaddr", "SaveFirst", "LoadFirst"})
      expected.Write(kAddress, key, c.shown1);
    for (const char* key : {"SUMladdr", "storeladdr", "SaveLast", "LoadLast"})
      expected.Write(kAddress, key, c.shown2);
    expected.Write(kAddress, "storedata", "10");
    EXPECT_EQ(store.values, expected.values);
  }
}

}  // namespace
}  // namespace kestrum
