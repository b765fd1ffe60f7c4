#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/Dump.h"

namespace kestrum {
namespace {

using Button = void (*)(Module1&, Platform&);

// Each image byte is the low byte of its address, so a row tells where its
// bytes come from.
Module1 AddressedImage(Address first, Address last) {
  Module1 m = test::MakeImage(first, last);
  for (Address a = first; a <= last; ++a) m.At(a) = static_cast<std::uint8_t>(a);
  m.frmsumtool.List1 = {"old row"};
  return m;
}

TEST(Dump, PagesAndMoves) {
  struct Case {
    const char* name;
    Address bufFirst, bufLast;
    const char* typed;
    Button button;
    const char* shown;  // txteditaddr afterwards, the first row's address
    int rows, lastRowBytes;
  };
  const Case cases[] = {
      {"rows follow the start", 0, 0x7FFFF, "5", cmdedit_Click, "00000005", 7, 16},
      {"BufLast alone", 0, 0x7FFFF, "7FFFF", cmdedit_Click, "0007FFFF", 1, 1},
      {"three bytes left", 0, 0x7FFFF, "7FFFD", cmdedit_Click, "0007FFFD", 1, 3},
      {"start + 96 = BufLast", 0, 0x7FFFF, "7FF9F", cmdedit_Click, "0007FF9F", 7, 1},
      {"start + 97 = BufLast", 0, 0x7FFFF, "7FF9E", cmdedit_Click, "0007FF9E", 7, 2},
      {"one-byte area", 0x1000, 0x1000, "1000", cmdedit_Click, "00001000", 1, 1},
      {"minus stays on the first address", 0, 0x7FFFF, "0", cmdeditminus_Click, "00000000", 7, 16},
      {"minus lands on the first address", 0, 0x7FFFF, "8", cmdeditminus_Click, "00000000", 7, 16},
      {"minus steps a row", 0x100, 0x7FFFF, "110", cmdeditminus_Click, "00000100", 7, 16},
      {"plus steps a row", 0, 0x7FFFF, "7FF80", cmdeditplus_Click, "0007FF90", 7, 16},
      {"plus stops at a full last page", 0, 0x7FFFF, "7FF90", cmdeditplus_Click, "0007FF90", 7, 16},
      {"plus stops at a short last row", 0, 0x7FFFF, "7FF95", cmdeditplus_Click, "0007FF95", 7, 11},
      {"plus from 16 below the area", 0x100, 0x1FF, "F0", cmdeditplus_Click, "00000100", 7, 16},
      {"plus on a one-byte area", 0x1000, 0x1000, "1000", cmdeditplus_Click, "00001000", 1, 1},
      {"minus on a one-byte area", 0x1000, 0x1000, "1000", cmdeditminus_Click, "00001000", 1, 1},
      {"plus at the top of the address space", 0xFFFFFF00, 0xFFFFFFFF, "FFFFFF80", cmdeditplus_Click,
       "FFFFFF90", 7, 16},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = AddressedImage(c.bufFirst, c.bufLast);
    m.frmsumtool.txteditaddr = c.typed;
    test::ScriptedPlatform platform;
    c.button(m, platform);
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.shown);
    std::vector<std::string> expected;
    for (int r = 0; r < c.rows; ++r) {
      const Address start = AddressFromText(c.shown) + 16 * r;
      std::string row = AddressToText(start) + "  ";
      for (int k = 0; k < (r + 1 < c.rows ? 16 : c.lastRowBytes); ++k) row += HexByteText((start + k) & 0xFF);
      expected.push_back(row);
    }
    EXPECT_EQ(m.frmsumtool.List1, expected);
  }
}

TEST(Dump, FirstDumpEnablesTheStepButtons) {
  Module1 m = test::MakeImage();
  test::ScriptedPlatform platform;
  cmdedit_Click(m, platform);
  EXPECT_EQ(m.frmsumtool.List1.back(), "00000060  " + std::string(32, 'F'));
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
      {"empty field, Dump", 0, 0x7FFFF, "", cmdedit_Click, ""},
      {"empty field, plus", 0, 0x7FFFF, "", cmdeditplus_Click, ""},
      {"empty field, minus", 0, 0x7FFFF, "", cmdeditminus_Click, ""},
      {"above the area, plus", 0, 0x7FFFF, "80000", cmdeditplus_Click, "00080000"},
      {"16 below the area, Dump", 0x100, 0x1FF, "F0", cmdedit_Click, "000000F0"},
      {"16 below the area, minus", 0x100, 0x1FF, "F0", cmdeditminus_Click, "000000F0"},
      {"16 below an area of 96 bytes, plus", 0x100, 0x15F, "F0", cmdeditplus_Click, "000000F0"},
      {"empty area", 0x11, 0x10, "11", cmdedit_Click, "00000011"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Module1 m = AddressedImage(c.bufFirst, c.bufLast);
    m.frmsumtool.txteditaddr = c.typed;
    test::ScriptedPlatform platform;
    c.button(m, platform);
    EXPECT_EQ(platform.messages, (std::vector<test::Message>{{"Dump Address Error!", vbOKOnly, ""}}));
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.shown);
    EXPECT_EQ(m.frmsumtool.List1, std::vector<std::string>{"old row"});
    EXPECT_FALSE(m.frmsumtool.cmdeditplusEnabled || m.frmsumtool.cmdeditminusEnabled);
  }
}

}  // namespace
}  // namespace kestrum
