#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/StoreBlock.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

// A byte at a per address of 1000..1FFF, so that every change shows.
Module1 Patterned() {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  for (Address a = m.BufFirst; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a * 7);
  return m;
}

TEST(StoreBlock, FillsTheRangeAndWrapsPastTheEnd) {
  struct Case {
    const char* name;
    Address first, last;
    // Stored stretches, inclusive; the rest keeps its pattern.
    std::vector<std::pair<Address, Address>> stored;
  };
  const Case cases[] = {
      {"one byte", 0x1234, 0x1234, {{0x1234, 0x1234}}},
      {"a range", 0x1010, 0x101F, {{0x1010, 0x101F}}},
      {"the whole area", 0x1000, 0x1FFF, {{0x1000, 0x1FFF}}},
      {"wrap", 0x1FF0, 0x100F, {{0x1FF0, 0x1FFF}, {0x1000, 0x100F}}},
      {"wrap from the last byte to the first", 0x1FFF, 0x1000, {{0x1FFF, 0x1FFF}, {0x1000, 0x1000}}},
      {"first = last + 1 fills everything", 0x1801, 0x1800, {{0x1000, 0x1FFF}}},
      {"an end outside the area stores nothing", 0x0FFF, 0x1001, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = Patterned();
    StoreBlock(m, c.first, c.last, 0x1A5);  // only the low byte counts
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) {
      bool stored = false;
      for (const auto& [from, to] : c.stored) stored = stored || (a >= from && a <= to);
      const auto expected = stored ? std::uint8_t{0xA5} : static_cast<std::uint8_t>(a * 7);
      ASSERT_EQ(m.At(a), expected) << AddressToText(a);
    }
    EXPECT_EQ(m.Buffer[static_cast<std::size_t>(m.BufSize)], 0) << "the spare element";
  }
}

TEST(StoreDataValue, ReadsLeadingDigitsOfAByte) {
  struct Case {
    const char* text;
    int value;
  };
  const Case cases[] = {
      {"00", 0x00}, {"A", 0x0A},  {"0A", 0x0A},  {"FF", 0xFF}, {"ff", 0xFF},
      {"A.", 0x0A}, {"1%", 0x01}, {"7'5", 0x07}, {"%", -1},    {".5", -1},
      {"'", -1},    {"", -1},     {"123", -1},   {"100.", -1}, {"0FF", 0xFF},
  };
  for (const auto& c : cases) EXPECT_EQ(StoreDataValue(c.text), c.value) << '"' << c.text << '"';
}

TEST(StoreDialog, OpensFromTheStoreOrTheAreaAnd00) {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  MemorySettings store;
  StoreFields f{"x", "y", "z", false, false};
  cmdblstore_Click(f, m, store);
  EXPECT_EQ(f, (StoreFields{"00001000", "00001FFF", "00"}));
  store.Write(kAddress, "storefaddr", "1F");
  store.Write(kAddress, "storeladdr", "00001FFE");
  store.Write(kAddress, "storedata", "A");
  cmdblstore_Click(f, m, store);
  EXPECT_EQ(f, (StoreFields{"1F", "00001FFE", "A"}));
}

TEST(StoreButton, RefusesWithTheFirstBadFieldAndChangesNothing) {
  struct Case {
    const char* name;
    StoreFields in;
    const char* message;
    const char* shown1;
    const char* shown2;
  };
  // Area 00001000..00001FFF.
  const Case cases[] = {
      {"all empty", {"", "", ""}, "First Address Error!", "", ""},
      {"last empty", {"1000", "", ""}, "Last Address Error!", "1000", ""},
      {"data empty", {"1000", "1FFF", ""}, "Data Error!", "1000", "1FFF"},
      {"first below the area, padded all the same",
       {"FFF", "1FFF", "00"},
       "Address Error",
       "00000FFF",
       "00001FFF"},
      {"last above the area", {"1000", "2000", "00"}, "Address Error", "00001000", "00002000"},
      {"data with no digit", {"1000", "1FFF", "%"}, "Data Error!", "00001000", "00001FFF"},
      {"data beyond a byte", {"1000", "1FFF", "1FF"}, "Data Error!", "00001000", "00001FFF"},
      {"bad data is named before a bad range", {"0", "1FFF", "."}, "Data Error!", "00000000", "00001FFF"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = Patterned();
    m.frmsumtool.List1 = {"row"};
    m.frmsumtool.cmdeditplusEnabled = true;
    const SumToolFields window = m.frmsumtool;
    ScriptedPlatform platform;
    MemorySettings store;
    StoreFields f = c.in;
    EXPECT_FALSE(Command2_Click(f, m, platform, store));
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{c.message, vbOKOnly, ""}}));
    EXPECT_EQ(f.Text1, c.shown1);
    EXPECT_EQ(f.Text2, c.shown2);
    EXPECT_EQ(f.Text3, c.in.Text3);
    EXPECT_EQ(m.frmsumtool, window);
    EXPECT_TRUE(store.values.empty());
    EXPECT_TRUE(platform.pointers.empty());
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) ASSERT_EQ(m.At(a), static_cast<std::uint8_t>(a * 7));
  }
}

TEST(StoreButton, StoresReportsResetsTheDumpAndKeepsTheFields) {
  Module1 m = Patterned();
  m.frmsumtool.Text1 = "app.hex";
  m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  m.frmsumtool.txteditaddr = "00001234";
  ScriptedPlatform platform;
  MemorySettings store;
  StoreFields f{"1FF0", "100F", "A"};  // one digit stays one digit
  ASSERT_TRUE(Command2_Click(f, m, platform, store));
  EXPECT_EQ(platform.Texts(), (std::vector<std::string>{"Block Store Complete!"}));
  EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
  EXPECT_EQ(m.At(0x1FF0), 0x0A);
  EXPECT_EQ(m.At(0x1000), 0x0A);
  EXPECT_EQ(m.At(0x100F), 0x0A);
  EXPECT_EQ(m.At(0x1010), static_cast<std::uint8_t>(0x1010 * 7));
  EXPECT_EQ(m.frmsumtool.Text1, "app.hex");
  EXPECT_TRUE(m.frmsumtool.List1.empty());
  EXPECT_FALSE(m.frmsumtool.cmdeditplusEnabled || m.frmsumtool.cmdeditminusEnabled);
  EXPECT_EQ(m.frmsumtool.txteditaddr, "00001234");
  EXPECT_EQ(f, (StoreFields{"00001FF0", "0000100F", "A"}));
  EXPECT_EQ(store.Read(kAddress, "storefaddr", "?"), "00001FF0");
  EXPECT_EQ(store.Read(kAddress, "storeladdr", "?"), "0000100F");
  EXPECT_EQ(store.Read(kAddress, "storedata", "?"), "A");
}

}  // namespace
}  // namespace kestrum
