#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/SumDialog.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

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

}  // namespace
}  // namespace kestrum
