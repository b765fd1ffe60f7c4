#include <gtest/gtest.h>

#include <random>

#include "TestSupport.h"
#include "bufferops/SumDialog.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

// The sums the way a byte-by-byte walk over the words gives them: an odd
// first byte is the low half of a word, an even last byte the high half.
Sums ReferenceSums(const Module1& m, Address first, Address last) {
  int acc8 = 0, acc16 = 0;
  Address a = first;
  if (a % 2 == 1) {
    acc8 = acc16 = m.At(a);
    ++a;
  }
  for (; a <= last; a += 2) {
    const int b0 = m.At(a);
    const int b1 = a == last ? 0 : m.At(a + 1);
    acc8 = (acc8 + b0 + b1) % 65536;
    acc16 = (acc16 + b0 * 256 + b1) % 65536;
  }
  return Sums{acc8 % 256, acc8, acc16};
}

Module1 WorkedImage() {
  Module1 m = MakeImage();
  const std::uint8_t bytes[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  for (int i = 0; i < 8; ++i) m.At(0x1000 + i) = bytes[i];
  return m;
}

struct SumCase {
  const char* first;
  const char* last;
  const char* sum8_8;
  const char* sum8_16;
  const char* sum16_16;
};

TEST(Calculate, WorkedNumbers) {
  const SumCase cases[] = {
      {"00001000", "00001005", "6A", "026A", "0368"}, {"00001001", "00001006", "36", "0336", "CF68"},
      {"00001001", "00001001", "34", "0034", "0034"}, {"00001002", "00001002", "56", "0056", "5600"},
      {"00001003", "00001004", "12", "0112", "9A78"}, {"1000", "1007", "38", "0438", "E258"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.first) + ".." + c.last);
    Module1 m = WorkedImage();
    ScriptedPlatform platform;
    SumFields f;
    f.Text6 = c.first;
    f.Text7 = c.last;
    ASSERT_TRUE(Command1_Click(f, m, platform));
    EXPECT_EQ(f.Text1, c.sum8_8);
    EXPECT_EQ(f.Text2, c.sum8_16);
    EXPECT_EQ(f.Text3, c.sum16_16);
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
    EXPECT_TRUE(f.Command1Enabled && f.Command2Enabled);
  }
}

TEST(SumRange, WrapsWithoutNotice) {
  struct Case {
    const char* name;
    Address first, last;
    Sums sums;
  };
  // The image is all FF.
  const Case cases[] = {
      {"256 bytes from an even address", 0x1000, 0x10FF, {0x00, 0xFF00, 0xFF80}},
      {"256 bytes from an odd address", 0x1001, 0x1100, {0x00, 0xFF00, 0xFF80}},
      {"whole default area", 0, 0x7FFFF, {0x00, 0x0000, 0x0000}},
      {"one byte short of the area", 0, 0x7FFFE, {0x01, 0xFF01, 0xFF01}},
      {"odd first, even last at the area's ends", 1, 0x7FFFE, {0x02, 0xFE02, 0x0001}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = MakeImage();
    EXPECT_EQ(SumRange(m, c.first, c.last), c.sums);
  }
}

TEST(SumRange, NeverReadsOutsideTheRange) {
  // Neighbours that would change every sum if they were read.
  Module1 m = MakeImage(0x2001, 0x2100);
  m.Buffer[static_cast<std::size_t>(m.BufSize)] = 0x77;
  m.At(0x2001) = 0x11;
  m.At(0x2002) = 0x22;
  m.At(0x20FF) = 0x33;
  m.At(0x2100) = 0x44;
  const Sums inner = SumRange(m, 0x2003, 0x20FE);
  EXPECT_EQ(inner, ReferenceSums(m, 0x2003, 0x20FE));
  // Odd first at BufFirst, even last at BufLast: half words at both ends.
  Sums whole = SumRange(m, 0x2001, 0x2100);
  const int bytes = 0x11 + 0x22 + 0x33 + 0x44 + 0xFC * 0xFF;
  EXPECT_EQ(whole.sum8_16, bytes % 65536);
  EXPECT_EQ(whole.sum16_16, (0x11 + 0x22 * 256 + 0x33 + 0x44 * 256 + 0x7E * 0xFF * 257) % 65536);
}

TEST(SumRange, AgreesWithAWalkOverRandomRanges) {
  Module1 m = MakeImage(0x7FFFF000, 0x80007FFF);
  std::mt19937 random(12345);
  for (Address i = 0; i < m.BufSize; ++i)
    m.Buffer[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(random());
  std::uniform_int_distribution<Address> offset(0, m.BufSize - 1);
  for (int round = 0; round < 300; ++round) {
    Address a = m.BufFirst + offset(random), b = m.BufFirst + offset(random);
    if (a > b) std::swap(a, b);
    if (round % 3 == 0) b = std::min(m.BufLast, a + static_cast<Address>(random() % 40));
    SCOPED_TRACE(AddressToText(a) + ".." + AddressToText(b));
    ASSERT_EQ(SumRange(m, a, b), ReferenceSums(m, a, b));
  }
}

TEST(SumRange, LongRunsOfFFAcrossBlockEnds) {
  // Long runs of the largest byte are where partial totals would spill first.
  Module1 m = MakeImage(0, 0x3FFFF);
  for (Address last : {Address{0x7FF}, Address{0xFFF}, Address{0x1000}, Address{0x2000}, Address{0x3FFFF}}) {
    for (Address first : {Address{0}, Address{1}, Address{7}}) {
      SCOPED_TRACE(last);
      ASSERT_EQ(SumRange(m, first, last), ReferenceSums(m, first, last));
    }
  }
}

TEST(Calculate, ChecksInOrderAndKeepsTheLastResults) {
  struct Case {
    const char* name;
    const char* text6;
    const char* text7;
    const char* message;
    const char* shown6;
    const char* shown7;
  };
  // Area 00001000..00001FFF.
  const Case cases[] = {
      {"empty first", "", "", "First Address Error!", "", ""},
      {"empty last", "1000", "", "Last Address Error!", "1000", ""},
      {"first below the area", "FFF", "1FFF", "First Address Error!", "00000FFF", "00001FFF"},
      {"first above the area", "2000", "1FFF", "First Address Error!", "00002000", "00001FFF"},
      {"both outside: the first is named", "0", "2000", "First Address Error!", "00000000", "00002000"},
      {"last above the area", "1000", "2000", "Last Address Error!", "00001000", "00002000"},
      {"first above last", "1001", "1000", "Address Error!", "00001001", "00001000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = MakeImage(0x1000, 0x1FFF);
    ScriptedPlatform platform;
    SumFields f;
    f.Text1 = "AA";
    f.Text2 = "BBBB";
    f.Text3 = "CCCC";
    f.Text6 = c.text6;
    f.Text7 = c.text7;
    EXPECT_FALSE(Command1_Click(f, m, platform));
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{c.message, vbOKOnly, ""}}));
    EXPECT_EQ(f.Text6, c.shown6);
    EXPECT_EQ(f.Text7, c.shown7);
    EXPECT_EQ(f.Text1 + f.Text2 + f.Text3, "AABBBBCCCC");
    EXPECT_TRUE(platform.pointers.empty());
  }
}

TEST(Calculate, FirstAddressesAbove80000000TakeTheOddTest) {
  Module1 m = MakeImage(0xFFFFFF00, 0xFFFFFFFF);
  m.At(0xFFFFFFFB) = 0x34;
  m.At(0xFFFFFFFC) = 0x56;
  ScriptedPlatform platform;
  SumFields f{.Text6 = "FFFFFFFB", .Text7 = "FFFFFFFC"};
  ASSERT_TRUE(Command1_Click(f, m, platform));
  EXPECT_EQ(m.SumFirst, 0xFFFFFFFB);
  EXPECT_EQ(m.SumLast, 0xFFFFFFFC);
  EXPECT_EQ(f.Text3, "5634");
  f.Text6 = "FFFFFFFF";
  f.Text7 = "FFFFFFFF";
  ASSERT_TRUE(Command1_Click(f, m, platform));
  EXPECT_EQ(f.Text1 + " " + f.Text2 + " " + f.Text3, "FF 00FF 00FF");
}

TEST(SumDialog, OpensFromTheStoreOrTheArea) {
  struct Case {
    const char* name;
    const char* storedFirst;
    const char* storedLast;
    const char* text6;
    const char* text7;
  };
  const Case cases[] = {
      {"nothing stored", nullptr, nullptr, "00001000", "00001FFF"},
      {"stored empty texts count as unset", "", "", "00001000", "00001FFF"},
      {"stored texts as they are", "12", "zz", "12", "zz"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = MakeImage(0x1000, 0x1FFF);
    MemorySettings store;
    if (c.storedFirst) store.Write(kAddress, "SUMfaddr", c.storedFirst);
    if (c.storedLast) store.Write(kAddress, "SUMladdr", c.storedLast);
    SumFields f;
    f.Text1 = "old";
    cmdbufsum_Click(f, m, store);
    EXPECT_EQ(f, (SumFields{.Text6 = c.text6, .Text7 = c.text7}));
  }
}

TEST(SumDialog, CloseStoresTheFieldsAsTheyStand) {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  ScriptedPlatform platform;
  MemorySettings store;
  SumFields f{.Text6 = "FFF", .Text7 = "1FFF"};
  EXPECT_FALSE(Command1_Click(f, m, platform));
  Command2_Click(f, store);
  EXPECT_EQ(store.Read(kAddress, "SUMfaddr", "?"), "00000FFF");
  EXPECT_EQ(store.Read(kAddress, "SUMladdr", "?"), "00001FFF");
  EXPECT_EQ(store.values.size(), 2u);
}

}  // namespace
}  // namespace kestrum
