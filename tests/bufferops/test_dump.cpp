#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/Dump.h"

namespace kestrum {
namespace {

using Button = void (*)(Module1&, Platform&);
const Button kDump = cmdedit_Click, kPlus = cmdeditplus_Click, kMinus = cmdeditminus_Click;

TEST(Dump, PagesMovesAndRefusals) {
  const struct {
    Address bufFirst, bufLast;
    const char* typed;
    Button button;
    const char* shown;       // txteditaddr afterwards, the first row's address
    int rows, lastRowBytes;  // 0 rows: "Dump Address Error!" and the old dump stays
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
    Module1 m = test::MakeImage(c.bufFirst, c.bufLast);
    for (Address a = c.bufFirst; a <= c.bufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a);
    m.frmsumtool.List1 = {"old row"};
    m.frmsumtool.txteditaddr = c.typed;
    test::ScriptedPlatform platform;
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
      for (int k = 0; k < (r + 1 < c.rows ? 16 : c.lastRowBytes); ++k) row += HexByteText((start + k) & 0xFF);
      expected.push_back(row);
    }
    EXPECT_EQ(m.frmsumtool.List1, expected);
  }
}

}  // namespace
}  // namespace kestrum
