// The buffer operations and their dialogs: the dump and its steps, the three
// sums, Block Store with its wrap, and a new buffer area.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/BufferArea.h"
#include "bufferops/Dump.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/SumDialog.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

// Area 1000..1FFF with a byte per address, so that every change shows.
Module1 Patterned() {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  for (Address a = m.BufFirst; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a * 7);
  m.frmsumtool.Text1 = "app.hex";
  m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  return m;
}

using Button = void (*)(Module1&, Platform&);
const Button kDump = cmdedit_Click, kPlus = cmdeditplus_Click, kMinus = cmdeditminus_Click;

TEST(Dump, PagesMovesAndRefusals) {
  // shown: txteditaddr afterwards, the first row's address; lastRow: the bytes in the last row;
  // 0 rows: "Dump Address Error!" and the old dump stays.
  const struct {
    Address bufFirst, bufLast;
    const char* typed;
    Button button;
    const char* shown;
    int rows, lastRow;
  } cases[] = {
      {0, 0x7FFFF, "5", kDump, "00000005", 7, 16},
      {0, 0x7FFFF, "7FFFF", kDump, "0007FFFF", 1, 1},
      {0, 0x7FFFF, "7FF9F", kDump, "0007FF9F", 7, 1},     // start + 96 = BufLast
      {0x1000, 0x1000, "1000", kDump, "00001000", 1, 1},  // one-byte area
      {0x1000, 0x1000, "1000", kPlus, "00001000", 1, 1},
      {0, 0x7FFFF, "8", kMinus, "00000000", 7, 16},
      {0x100, 0x7FFFF, "110", kMinus, "00000100", 7, 16},
      {0, 0x7FFFF, "7FF80", kPlus, "0007FF90", 7, 16},
      {0, 0x7FFFF, "7FF8F", kPlus, "0007FF9F", 7, 1},   // start + 112 = BufLast still moves
      {0, 0x7FFFF, "7FF90", kPlus, "0007FF90", 7, 16},  // a full last page stops
      {0, 0x7FFFF, "7FF95", kPlus, "0007FF95", 7, 11},  // a short last row stops
      {0x100, 0x1FF, "F0", kPlus, "00000100", 7, 16},   // from 16 below the area
      {0xFFFFFF00, 0xFFFFFFFF, "FFFFFF80", kPlus, "FFFFFF90", 7, 16},
      {0, 0x7FFFF, "", kDump, "", 0, 0},
      {0, 0x7FFFF, "80000", kPlus, "00080000", 0, 0},
      {0x100, 0x1FF, "F0", kDump, "000000F0", 0, 0},
      {0x100, 0x15F, "F0", kPlus, "000000F0", 0, 0},  // the area is under 97 bytes
      {0x11, 0x10, "11", kDump, "00000011", 0, 0},    // empty area
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.bufFirst) + ".." + AddressToText(c.bufLast) + " '" + c.typed + "'");
    // Each byte is the low byte of its address, so a row tells where its bytes come from.
    Module1 m = MakeImage(c.bufFirst, c.bufLast);
    for (Address a = c.bufFirst; a <= c.bufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a);
    m.frmsumtool.List1 = {"old row"};
    m.frmsumtool.txteditaddr = c.typed;
    ScriptedPlatform platform;
    c.button(m, platform);
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.shown);
    EXPECT_EQ(m.frmsumtool.cmdeditplusEnabled && m.frmsumtool.cmdeditminusEnabled,
              c.button == kDump && c.rows > 0);
    if (c.rows == 0) {
      EXPECT_EQ(platform.messages, (std::vector<test::Message>{{"Dump Address Error!", vbOKOnly, ""}}));
      EXPECT_EQ(m.frmsumtool.List1, std::vector<std::string>{"old row"});
      continue;
    }
    EXPECT_TRUE(platform.messages.empty());
    std::vector<std::string> expected;
    for (int r = 0; r < c.rows; ++r) {
      const Address start = AddressFromText(c.shown) + 16 * r;
      std::string row = AddressToText(start) + "  ";
      for (int k = 0; k < (r + 1 < c.rows ? 16 : c.lastRow); ++k) row += HexByteText((start + k) & 0xFF);
      expected.push_back(row);
    }
    EXPECT_EQ(m.frmsumtool.List1, expected);
  }
}

TEST(Calculate, WorkedNumbersWrapsAndHalfWords) {
  const struct {
    Address bufFirst, bufLast;
    const char *first, *last, *results;
  } cases[] = {
      // 12 34 56 78 9A BC DE F0 at 00001000, and at 80001000 in the area from 80000000.
      {0, 0x7FFFF, "00001000", "00001005", "6A 026A 0368"},
      {0, 0x7FFFF, "00001001", "00001006", "36 0336 CF68"},
      {0, 0x7FFFF, "00001001", "00001001", "34 0034 0034"},
      {0, 0x7FFFF, "00001002", "00001002", "56 0056 5600"},
      {0, 0x7FFFF, "00001003", "00001004", "12 0112 9A78"},
      {0, 0x7FFFF, "1000", "1007", "38 0438 E258"},
      {0x80000000, 0x80001FFF, "80001001", "80001006", "36 0336 CF68"},
      // All FF, and 77 in the spare element above the area.
      {0, 0x7FFFF, "2000", "20FF", "00 FF00 FF80"},
      {0x10000, 0x8FFFF, "10000", "8FFFF", "00 0000 0000"},
      {0x2001, 0x2100, "2001", "2100", "00 FF00 FF80"},  // half words at both ends of the area
      {0x2001, 0x2100, "2100", "2100", "FF 00FF FF00"},  // an even last byte at the end of the area
  };
  const std::uint8_t bytes[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  for (const auto& c : cases) {
    Module1 m = MakeImage(c.bufFirst, c.bufLast);
    m.Buffer[static_cast<std::size_t>(m.BufSize)] = 0x77;
    if (c.bufFirst % 0x80000000 == 0)
      for (int i = 0; i < 8; ++i) m.At(c.bufFirst + 0x1000 + i) = bytes[i];
    ScriptedPlatform platform;
    SumFields f{.Text6 = c.first, .Text7 = c.last};
    ASSERT_TRUE(Command1_Click(f, m, platform));
    EXPECT_EQ(f.Text1 + " " + f.Text2 + " " + f.Text3, c.results) << c.first << ".." << c.last;
    EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
  }
}

TEST(Calculate, ChecksInOrderAndKeepsTheLastResults) {
  const struct {
    const char *text6, *text7, *message, *shown6, *shown7;
  } cases[] = {
      // Area 00001000..00001FFF.
      {"", "", "First Address Error!", "", ""},
      {"1000", "", "Last Address Error!", "1000", ""},
      {"FFF", "1FFF", "First Address Error!", "00000FFF", "00001FFF"},
      {"0", "2000", "First Address Error!", "00000000", "00002000"},
      {"1000", "2000", "Last Address Error!", "00001000", "00002000"},
      {"1001", "1000", "Address Error!", "00001001", "00001000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text6) + ".." + c.text7);
    Module1 m = MakeImage(0x1000, 0x1FFF);
    ScriptedPlatform platform;
    SumFields f{.Text6 = c.text6, .Text7 = c.text7, .Text1 = "AA", .Text2 = "BBBB", .Text3 = "CCCC"};
    EXPECT_FALSE(Command1_Click(f, m, platform));
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{c.message, vbOKOnly, ""}}));
    EXPECT_EQ(f, (SumFields{c.shown6, c.shown7, "AA", "BBBB", "CCCC"}));
    EXPECT_TRUE(platform.pointers.empty());
  }
}

TEST(SumDialog, OpensFromTheStoreOrTheArea) {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  MemorySettings store;
  SumFields f{.Text1 = "old"};
  cmdbufsum_Click(f, m, store);
  EXPECT_EQ(f, (SumFields{.Text6 = "00001000", .Text7 = "00001FFF"}));
  store.Write(kAddress, "SUMfaddr", "12");
  cmdbufsum_Click(f, m, store);
  EXPECT_EQ(f, (SumFields{.Text6 = "12", .Text7 = "00001FFF"}));
}

TEST(StoreBlock, FillsTheRangeAndWrapsPastTheEnd) {
  const struct {
    Address first, last;
    std::vector<std::pair<Address, Address>> stored;
  } cases[] = {
      // inclusive
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
  const std::pair<const char*, int> cases[] = {
      {"ff", 0xFF}, {"7'5", 7}, {".5", -1}, {"123", -1}, {"0FF", 0xFF}};
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
    ScriptedPlatform platform;
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

TEST(BufferArea, NewAreaIsClearedShownAndStoredOrNothingChanges) {
  // message: "" when the area changes; busy: the pointer went to the hourglass and back.
  const struct {
    const char *text1, *text2, *shown1, *shown2, *message;
    bool busy;
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
    Module1 m = Patterned();
    const SumToolFields window = m.frmsumtool;
    ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f{c.text1, c.text2};
    const bool changed = *c.message == '\0';
    EXPECT_EQ(Cmdok_Click(f, m, platform, store), changed);
    EXPECT_EQ(platform.Texts(), changed ? std::vector<std::string>{} : std::vector<std::string>{c.message});
    EXPECT_EQ(platform.pointers, (c.busy ? std::vector<int>{vbHourglass, vbDefault} : std::vector<int>{}));
    EXPECT_EQ(f, (BufAddrFields{c.shown1, c.shown2}));
    if (!changed) {
      EXPECT_EQ(m.BufSize, 0x1000);
      EXPECT_EQ(m.At(0x1001), 0x07);
      EXPECT_EQ(m.frmsumtool, window);
      EXPECT_TRUE(store.values.empty());
      continue;
    }
    EXPECT_EQ(std::pair(m.BufFirst, m.BufLast),
              std::pair(AddressFromText(c.shown1), AddressFromText(c.shown2)));
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
