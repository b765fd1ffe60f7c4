#include <gtest/gtest.h>

#include "image/Address.h"

namespace kestrum {
namespace {

TEST(AddressText, ReadsTwoGroupsOfFourAndWritesEightDigits) {
  const struct {
    const char* text;
    Address value;
    bool canonical;  // AddressToText gives the text back
  } cases[] = {
      {"00000000", 0, true},
      {"0007FFFF", 524287, true},
      {"0000FFFF", 65535, true},  // unsigned, never -1
      {"00010000", 65536, true},
      {"7FFFFFFF", 0x7FFFFFFF, true},
      {"80000000", 0x80000000, true},
      {"ABCDEF01", 0xABCDEF01, true},
      {"FFFFFFFF", 4294967295, true},
      {"ffff0000", 4294901760, false},   // lower case counts
      {"12", 0x00120012, false},         // short text: both groups are the text
      {"12345", 0x12342345, false},      // the groups overlap
      {"123456789", 0x12346789, false},  // the middle character is not read
      {"12.40000", 0x00120000, false},   // a point ends its group
      {"1%2", 0x00010001, false},        // so does a per cent sign
      {"G1234567", 0x4567, false},       // a group that starts badly is 0
      {"", 0, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AddressFromText(c.text), c.value) << c.text;
    if (c.canonical) {
      EXPECT_EQ(AddressToText(c.value), c.text);
    }
  }
}

TEST(AddressText, PadsToEightAndWritesBytesAsTwoDigits) {
  const std::pair<const char*, const char*> pads[] = {
      {"1", "00000001"}, {"123456789", "23456789"}, {"", "0000000"}, {"7FFFF", "0007FFFF"}};
  for (const auto& [in, out] : pads) EXPECT_EQ(PadAddressText(in), out) << in;
  const std::pair<int, const char*> bytes[] = {{10, "0A"}, {255, "FF"}, {0, "00"}};
  for (const auto& [value, text] : bytes) EXPECT_EQ(HexByteText(value), text);
}

}  // namespace
}  // namespace kestrum
