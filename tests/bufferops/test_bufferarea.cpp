#include <gtest/gtest.h>

#include <algorithm>

#include "TestSupport.h"
#include "bufferops/BufferArea.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/SumDialog.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

// The default area with a loaded file, a page on show and a changed byte.
Module1 BusyImage() {
  Module1 m = MakeImage();
  m.At(0x10) = 0x42;
  m.frmsumtool.Text1 = "app.hex";
  m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  m.frmsumtool.txteditaddr = "00000010";
  return m;
}

TEST(BufferArea, PaddingByLeadingZeros) {
  struct Case {
    const char* typed;
    const char* shown;
  };
  const Case cases[] = {
      {"F", "0000000F"},        {"FF", "000000FF"},         {"1234567", "01234567"},
      {"12345678", "12345678"}, {"123456789", "123456789"}, {"1.", "0000001."},
  };
  for (const auto& c : cases) EXPECT_EQ(PadWithLeadingZeros(c.typed), c.shown);
}

TEST(BufferArea, NewAreaIsClearedShownAndStored) {
  struct Case {
    const char* name;
    const char* text1;
    const char* text2;
    const char* shown1;
    const char* shown2;
    Address first, last;
  };
  const Case cases[] = {
      {"short texts", "FF", "FFFF", "000000FF", "0000FFFF", 0xFF, 0xFFFF},
      {"one byte", "00001000", "00001000", "00001000", "00001000", 0x1000, 0x1000},
      {"a text longer than 8 stays whole", "123456789", "12346FFF", "123456789", "12346FFF", 0x12346789,
       0x12346FFF},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = BusyImage();
    ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f{c.text1, c.text2};
    ASSERT_TRUE(Cmdok_Click(f, m, platform, store));
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
    EXPECT_EQ(f, (BufAddrFields{c.shown1, c.shown2}));
    EXPECT_EQ(m.BufFirst, c.first);
    EXPECT_EQ(m.BufLast, c.last);
    EXPECT_EQ(m.BufSize, c.last - c.first + 1);
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) ASSERT_EQ(m.At(a), 0xFF);
    const SumToolFields& w = m.frmsumtool;
    EXPECT_EQ(w.txtbuffaddr, c.shown1);
    EXPECT_EQ(w.txtbufladdr, c.shown2);
    EXPECT_EQ(w.txteditaddr, c.shown1);
    EXPECT_EQ(w.Text1, "");
    EXPECT_TRUE(w.List1.empty());
    EXPECT_FALSE(w.cmdeditplusEnabled || w.cmdeditminusEnabled);

    std::vector<std::pair<std::string, std::string>> written;
    for (const auto& [key, value] : store.values) written.emplace_back(std::get<2>(key), value);
    std::sort(written.begin(), written.end());
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"LoadFirst", c.shown1}, {"LoadLast", c.shown2},   {"SUMfaddr", c.shown1},
        {"SUMladdr", c.shown2},  {"SaveFirst", c.shown1},  {"SaveLast", c.shown2},
        {"storedata", "10"},     {"storefaddr", c.shown1}, {"storeladdr", c.shown2}};
    EXPECT_EQ(written, expected);
  }
}

TEST(BufferArea, RefusalsLeaveEverythingAsItWas) {
  struct Case {
    const char* name;
    const char* text1;
    const char* text2;
    std::vector<int> pointers;
    const char* message;
    const char* shown1;
    const char* shown2;
  };
  const Case cases[] = {
      {"both empty", "", "", {}, "FirstAddress Error!", "", ""},
      {"last empty", "100", "", {}, "LastAddress Error!", "100", ""},
      {"first above last", "00000100", "FF", {}, "Address Error", "00000100", "000000FF"},
      {"more than 2147483647 bytes",
       "0",
       "FFFFFFFF",
       {vbHourglass, vbDefault},
       "Out of Memory",
       "00000000",
       "FFFFFFFF"},
      {"2147483648 bytes",
       "80000000",
       "FFFFFFFF",
       {vbHourglass, vbDefault},
       "Out of Memory",
       "80000000",
       "FFFFFFFF"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = BusyImage();
    const SumToolFields window = m.frmsumtool;
    const std::uint8_t* image = m.Buffer.data();
    ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f{c.text1, c.text2};
    EXPECT_FALSE(Cmdok_Click(f, m, platform, store));
    EXPECT_EQ(platform.Texts(), std::vector<std::string>{c.message});
    EXPECT_EQ(platform.pointers, c.pointers);
    EXPECT_EQ(f, (BufAddrFields{c.shown1, c.shown2}));
    EXPECT_EQ(m.Buffer.data(), image);
    EXPECT_EQ(m.At(0x10), 0x42);
    EXPECT_EQ(m.BufFirst, 0);
    EXPECT_EQ(m.BufLast, 0x7FFFF);
    EXPECT_EQ(m.BufSize, 0x80000);
    EXPECT_EQ(m.frmsumtool, window);
    EXPECT_TRUE(store.values.empty());
  }
}

TEST(BufferArea, EveryRangeDialogOpensWithTheNewArea) {
  Module1 m = BusyImage();
  ScriptedPlatform platform;
  MemorySettings store;
  store.Write(kAddress, "SUMfaddr", "00000004");
  store.Write(kAddress, "storedata", "00");
  BufAddrFields area{"2000", "2FFF"};
  ASSERT_TRUE(Cmdok_Click(area, m, platform, store));
  StoreFields storeFields;
  cmdblstore_Click(storeFields, m, store);
  EXPECT_EQ(storeFields, (StoreFields{"00002000", "00002FFF", "10"}));
  SumFields sumFields;
  cmdbufsum_Click(sumFields, m, store);
  EXPECT_EQ(sumFields, (SumFields{.Text6 = "00002000", .Text7 = "00002FFF"}));
}

}  // namespace
}  // namespace kestrum
