#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/StoreBlock.h"

namespace kestrum {
namespace {

// Area 1000..1FFF with a byte per address, so that every change shows.
Module1 Patterned() {
  Module1 m = test::MakeImage(0x1000, 0x1FFF);
  for (Address a = m.BufFirst; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a * 7);
  m.frmsumtool.Text1 = "app.hex";
  m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  return m;
}

TEST(StoreBlock, FillsTheRangeAndWrapsPastTheEnd) {
  const struct {
    Address first, last;
    std::vector<std::pair<Address, Address>> stored;  // inclusive stretches
  } cases[] = {
      {0x1234, 0x1234, {{0x1234, 0x1234}}},
      {0x1000, 0x1FFF, {{0x1000, 0x1FFF}}},
      {0x1FF0, 0x100F, {{0x1FF0, 0x1FFF}, {0x1000, 0x100F}}},
      {0x1FFF, 0x1000, {{0x1FFF, 0x1FFF}, {0x1000, 0x1000}}},
      {0x1801, 0x1800, {{0x1000, 0x1FFF}}},
      {0x0FFF, 0x1001, {}},  // an end outside the area: nothing
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.first) + ".." + AddressToText(c.last));
    Module1 m = Patterned();
    StoreBlock(m, c.first, c.last, 0x1A5);  // only the low byte counts
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) {
      bool stored = false;
      for (const auto& [from, to] : c.stored) stored = stored || (a >= from && a <= to);
      ASSERT_EQ(m.At(a), stored ? 0xA5 : static_cast<std::uint8_t>(a * 7)) << AddressToText(a);
    }
    EXPECT_EQ(m.Buffer[static_cast<std::size_t>(m.BufSize)], 0) << "the spare element";
  }
}

TEST(StoreDataValue, ReadsTheLeadingDigitsOfAByte) {
  const std::pair<const char*, int> cases[] = {{"00", 0},   {"A", 0x0A},  {"ff", 0xFF}, {"A.", 0x0A},
                                               {"7'5", 7},  {"%", -1},    {".5", -1},   {"", -1},
                                               {"123", -1}, {"0FF", 0xFF}};
  for (const auto& [text, value] : cases) EXPECT_EQ(StoreDataValue(text), value) << '"' << text << '"';
}

TEST(StoreButton, StoresOrRefusesWithTheFirstBadField) {
  const struct {
    StoreFields in;
    const char *message, *shown1, *shown2;
  } cases[] = {
      {{"1000", "1FFF", "A."}, "Block Store Complete!", "00001000", "00001FFF"},
      {{"", "", ""}, "First Address Error!", "", ""},
      {{"1000", "", ""}, "Last Address Error!", "1000", ""},
      {{"1000", "1FFF", ""}, "Data Error!", "1000", "1FFF"},
      {{"FFF", "1FFF", "00"}, "Address Error", "00000FFF", "00001FFF"},
      {{"1000", "2000", "00"}, "Address Error", "00001000", "00002000"},
      {{"1000", "1FFF", "%"}, "Data Error!", "00001000", "00001FFF"},
      {{"0", "1FFF", "1FF"}, "Data Error!", "00000000", "00001FFF"},  // the data is judged first
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.in.Text1 + ".." + c.in.Text2 + " " + c.in.Text3);
    Module1 m = Patterned();
    SumToolFields window = m.frmsumtool;
    test::ScriptedPlatform platform;
    MemorySettings store;
    StoreFields f = c.in;
    const bool stored = std::string(c.message) == "Block Store Complete!";
    EXPECT_EQ(Command2_Click(f, m, platform, store), stored);
    EXPECT_EQ(f, (StoreFields{c.shown1, c.shown2, c.in.Text3}));
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{c.message, vbOKOnly, ""}}));
    if (stored) {
      window.List1.clear();  // the file name stays, the dump goes
      window.cmdeditplusEnabled = window.cmdeditminusEnabled = false;
      EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
      EXPECT_EQ(m.At(0x1ABC), 0x0A);
      EXPECT_EQ(store.Read(kAddress, "storedata", "?"), c.in.Text3);
    } else {
      EXPECT_TRUE(platform.pointers.empty());
      EXPECT_TRUE(store.values.empty());
      EXPECT_EQ(m.At(0x1001), 0x07);
    }
    EXPECT_EQ(m.frmsumtool, window);
  }
}

}  // namespace
}  // namespace kestrum
