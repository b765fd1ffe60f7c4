#include <gtest/gtest.h>

#include <random>

#include "TestSupport.h"
#include "bufferops/SumDialog.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

// The sums as a walk over the words gives them: an odd first byte is the
// low half of a word, an even last byte the high half.
Sums ReferenceSums(const Module1& m, Address first, Address last) {
  int acc8 = 0, acc16 = 0;
  Address a = first;
  if (a % 2 == 1) acc8 = acc16 = m.At(a++);
  for (; a <= last; a += 2) {
    const int b0 = m.At(a), b1 = a == last ? 0 : m.At(a + 1);
    acc8 = (acc8 + b0 + b1) % 65536;
    acc16 = (acc16 + b0 * 256 + b1) % 65536;
  }
  return Sums{acc8 % 256, acc8, acc16};
}

TEST(Calculate, WorkedNumbers) {
  struct Case {
    const char *first, *last, *results;
  };
  const Case cases[] = {
      {"00001000", "00001005", "6A 026A 0368"}, {"00001001", "00001006", "36 0336 CF68"},
      {"00001001", "00001001", "34 0034 0034"}, {"00001002", "00001002", "56 0056 5600"},
      {"00001003", "00001004", "12 0112 9A78"}, {"1000", "1007", "38 0438 E258"},
  };
  Module1 m = MakeImage();
  const std::uint8_t bytes[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  for (int i = 0; i < 8; ++i) m.At(0x1000 + i) = bytes[i];
  for (const auto& c : cases) {
    ScriptedPlatform platform;
    SumFields f{.Text6 = c.first, .Text7 = c.last};
    ASSERT_TRUE(Command1_Click(f, m, platform));
    EXPECT_EQ(f.Text1 + " " + f.Text2 + " " + f.Text3, c.results) << c.first << ".." << c.last;
    EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
  }
}

TEST(SumRange, WrapsAndReadsNothingOutsideTheRange) {
  struct Case {
    const char* name;
    Address bufFirst, bufLast, first, last;
    Sums sums;
  };
  // All FF; the spare element above the area holds 77.
  const Case cases[] = {
      {"256 bytes from an even address", 0, 0x7FFFF, 0x1000, 0x10FF, {0x00, 0xFF00, 0xFF80}},
      {"the whole default area", 0, 0x7FFFF, 0, 0x7FFFF, {0x00, 0x0000, 0x0000}},
      {"half words at both ends of the area", 0x2001, 0x2100, 0x2001, 0x2100, {0x00, 0xFF00, 0xFF80}},
      {"an even last byte at the end of the area", 0x2001, 0x2100, 0x2100, 0x2100, {0xFF, 0x00FF, 0xFF00}},
  };
  for (const auto& c : cases) {
    Module1 m = MakeImage(c.bufFirst, c.bufLast);
    m.Buffer[static_cast<std::size_t>(m.BufSize)] = 0x77;
    EXPECT_EQ(SumRange(m, c.first, c.last), c.sums) << c.name;
  }
}

TEST(SumRange, AgreesWithTheWalkOverRandomRanges) {
  // Across 80000000, so that the odd test meets addresses above 31 bits.
  Module1 m = MakeImage(0x7FFFF000, 0x80007FFF);
  std::mt19937 random(12345);
  for (Address i = 0; i < m.BufSize; ++i)
    m.Buffer[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(random());
  std::uniform_int_distribution<Address> offset(0, m.BufSize - 1);
  for (int round = 0; round < 300; ++round) {
    Address a = m.BufFirst + offset(random), b = m.BufFirst + offset(random);
    if (a > b) std::swap(a, b);
    if (round % 3 == 0) b = std::min(m.BufLast, a + static_cast<Address>(random() % 40));
    ASSERT_EQ(SumRange(m, a, b), ReferenceSums(m, a, b)) << AddressToText(a) << ".." << AddressToText(b);
  }
}

TEST(Calculate, ChecksInOrderAndKeepsTheLastResults) {
  struct Case {
    const char *text6, *text7, *message, *shown6, *shown7;
  };
  // Area 00001000..00001FFF.
  const Case cases[] = {
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

}  // namespace
}  // namespace kestrum
