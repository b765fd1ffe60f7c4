#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/Dump.h"

namespace kestrum {
namespace {

using test::MakeImage;
using test::ScriptedPlatform;

enum class Button { Dump, Plus, Minus };

void Press(Button b, Module1& m, Platform& platform) {
  switch (b) {
    case Button::Dump:
      return cmdedit_Click(m, platform);
    case Button::Plus:
      return cmdeditplus_Click(m, platform);
    case Button::Minus:
      return cmdeditminus_Click(m, platform);
  }
}

// Each image byte is the low byte of its address, so a row tells where its
// bytes come from.
Module1 AddressedImage(Address first, Address last) {
  Module1 m = MakeImage(first, last);
  for (Address a = first; a <= last; ++a) m.At(a) = static_cast<std::uint8_t>(a);
  return m;
}

std::string RowOf(Address start, int bytes) {
  std::string row = AddressToText(start) + "  ";
  for (int k = 0; k < bytes; ++k) row += HexByteText(static_cast<int>((start + k) & 0xFF));
  return row;
}

struct DumpCase {
  const char* name;
  Address bufFirst, bufLast;
  const char* typed;
  Button button;
  const char* shown;  // txteditaddr afterwards
  Address firstRow;   // address of the first row
  int rows;
  int lastRowBytes;
};

TEST(Dump, PagesAndMoves) {
  const DumpCase cases[] = {
      {"fresh default area", 0, 0x7FFFF, "00000000", Button::Dump, "00000000", 0, 7, 16},
      {"rows follow the start, not a grid", 0, 0x7FFFF, "5", Button::Dump, "00000005", 5, 7, 16},
      {"short text is padded first", 0, 0x7FFFF, "7FFFF", Button::Dump, "0007FFFF", 0x7FFFF, 1, 1},
      {"three bytes left", 0, 0x7FFFF, "7FFFD", Button::Dump, "0007FFFD", 0x7FFFD, 1, 3},
      {"start + 96 = BufLast", 0, 0x7FFFF, "7FF9F", Button::Dump, "0007FF9F", 0x7FF9F, 7, 1},
      {"start + 97 = BufLast", 0, 0x7FFFF, "7FF9E", Button::Dump, "0007FF9E", 0x7FF9E, 7, 2},
      {"one-byte area", 0x1000, 0x1000, "1000", Button::Dump, "00001000", 0x1000, 1, 1},
      {"minus stays on the first address", 0, 0x7FFFF, "0", Button::Minus, "00000000", 0, 7, 16},
      {"minus lands on the first address", 0, 0x7FFFF, "8", Button::Minus, "00000000", 0, 7, 16},
      {"minus steps a row", 0x100, 0x7FFFF, "123", Button::Minus, "00000113", 0x113, 7, 16},
      {"minus from exactly a row above", 0x100, 0x7FFFF, "110", Button::Minus, "00000100", 0x100, 7, 16},
      {"plus steps a row", 0, 0x7FFFF, "7FF80", Button::Plus, "0007FF90", 0x7FF90, 7, 16},
      {"plus stops when the page reaches the end", 0, 0x7FFFF, "7FF90", Button::Plus, "0007FF90", 0x7FF90, 7,
       16},
      {"plus stays on a short last row", 0, 0x7FFFF, "7FF95", Button::Plus, "0007FF95", 0x7FF95, 7, 11},
      {"plus from 16 below the area moves into it", 0x100, 0x1FF, "F0", Button::Plus, "00000100", 0x100, 7,
       16},
      {"plus on a one-byte area", 0x1000, 0x1000, "1000", Button::Plus, "00001000", 0x1000, 1, 1},
      {"minus on a one-byte area", 0x1000, 0x1000, "1000", Button::Minus, "00001000", 0x1000, 1, 1},
      {"plus near the top of the address space", 0xFFFFFF00, 0xFFFFFFFF, "FFFFFF80", Button::Plus, "FFFFFF90",
       0xFFFFFF90, 7, 16},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = AddressedImage(c.bufFirst, c.bufLast);
    m.frmsumtool.txteditaddr = c.typed;
    m.frmsumtool.List1 = {"old row"};
    ScriptedPlatform platform;
    Press(c.button, m, platform);
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.shown);
    EXPECT_EQ(m.DumpAddr, c.firstRow);
    std::vector<std::string> expected;
    for (int r = 0; r < c.rows; ++r)
      expected.push_back(RowOf(c.firstRow + 16 * r, r + 1 < c.rows ? 16 : c.lastRowBytes));
    EXPECT_EQ(m.frmsumtool.List1, expected);
  }
}

TEST(Dump, FreshDefaultAreaShowsSevenRowsOfFF) {
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  cmdedit_Click(m, platform);
  ASSERT_EQ(m.frmsumtool.List1.size(), 7u);
  EXPECT_EQ(m.frmsumtool.List1.front(), "00000000  " + std::string(32, 'F'));
  EXPECT_EQ(m.frmsumtool.List1.back(), "00000060  " + std::string(32, 'F'));
  EXPECT_EQ(m.frmsumtool.List1.back().size(), 42u);
  EXPECT_TRUE(m.frmsumtool.cmdeditplusEnabled && m.frmsumtool.cmdeditminusEnabled);
}

TEST(Dump, RefusalsSayOneMessageAndLeaveTheDump) {
  struct Case {
    const char* name;
    Address bufFirst, bufLast;
    const char* typed;
    Button button;
    const char* shown;
  };
  const Case cases[] = {
      {"empty field, Dump", 0, 0x7FFFF, "", Button::Dump, ""},
      {"empty field, plus", 0, 0x7FFFF, "", Button::Plus, ""},
      {"empty field, minus", 0, 0x7FFFF, "", Button::Minus, ""},
      {"above the area, Dump", 0, 0x7FFFF, "80000", Button::Dump, "00080000"},
      {"above the area, plus", 0, 0x7FFFF, "80000", Button::Plus, "00080000"},
      {"below the area, minus", 0x100, 0x7FFFF, "FF", Button::Minus, "000000FF"},
      {"16 below the area, Dump", 0x100, 0x1FF, "F0", Button::Dump, "000000F0"},
      {"16 below the area, minus", 0x100, 0x1FF, "F0", Button::Minus, "000000F0"},
      {"16 below an area of 96 bytes, plus", 0x100, 0x15F, "F0", Button::Plus, "000000F0"},
      {"empty area", 0x11, 0x10, "11", Button::Dump, "00000011"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = AddressedImage(c.bufFirst, c.bufLast);
    m.frmsumtool.txteditaddr = c.typed;
    m.frmsumtool.List1 = {"old row"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = false;
    ScriptedPlatform platform;
    Press(c.button, m, platform);
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{"Dump Address Error!", vbOKOnly, ""}}));
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.shown);
    EXPECT_EQ(m.frmsumtool.List1, std::vector<std::string>{"old row"});
    EXPECT_FALSE(m.frmsumtool.cmdeditplusEnabled || m.frmsumtool.cmdeditminusEnabled);
  }
}

TEST(Dump, PlusThenMinusWalksRowByRow) {
  Module1 m = AddressedImage(0, 0xFF);
  ScriptedPlatform platform;
  m.frmsumtool.txteditaddr = "0";
  cmdedit_Click(m, platform);
  const char* plusSteps[] = {"00000010", "00000020", "00000030", "00000040", "00000050",
                             "00000060", "00000070", "00000080", "00000090", "00000090"};
  for (const char* shown : plusSteps) {
    cmdeditplus_Click(m, platform);
    ASSERT_EQ(m.frmsumtool.txteditaddr, shown);
  }
  EXPECT_EQ(m.frmsumtool.List1.back(), RowOf(0xF0, 16));
  m.frmsumtool.txteditaddr = "1C";  // what is typed counts, not the last page
  cmdeditminus_Click(m, platform);
  EXPECT_EQ(m.frmsumtool.txteditaddr, "0000000C");
  cmdeditminus_Click(m, platform);
  EXPECT_EQ(m.frmsumtool.txteditaddr, "00000000");
  EXPECT_TRUE(platform.messages.empty());
}

}  // namespace
}  // namespace kestrum
