#include <gtest/gtest.h>

#include "image/Address.h"

namespace kestrum {
namespace {

struct TextToValue {
  const char* text;
  Address value;
};

TEST(AddressFromText, ReadsTwoGroupsOfFour) {
  const TextToValue cases[] = {
      {"00000000", 0},
      {"0007FFFF", 524287},
      {"FFFFFFFF", 4294967295},
      {"ffff0000", 4294901760},     // lower case counts
      {"12", 0x00120012},           // short text: both groups are the text
      {"12345", 0x12342345},        // the groups overlap
      {"123456789", 0x12346789},    // the middle character is not read
      {"12.40000", 0x00120000},     // a point ends its group
      {"", 0},
      {"G1234567", 0x4567},         // a group that starts badly is 0
      {"0000FFFF", 65535},          // unsigned, never -1
  };
  for (const auto& c : cases) EXPECT_EQ(AddressFromText(c.text), c.value) << c.text;
}

TEST(HexGroupValue, StopsAtTheFirstNonDigit) {
  const TextToValue cases[] = {{"FFFF", 65535}, {"1%2", 1}, {"", 0}, {".1", 0}, {"aB", 0xAB}, {"12345", 0x1234}};
  for (const auto& c : cases) EXPECT_EQ(HexGroupValue(c.text), c.value) << c.text;
}

TEST(AddressToText, GivesEightUpperCaseDigits) {
  const TextToValue cases[] = {{"0007FFFF", 524287}, {"00000000", 0}, {"FFFFFFFF", 4294967295},
                               {"00010000", 65536},  {"ABCDEF01", 0xABCDEF01}};
  for (const auto& c : cases) EXPECT_EQ(AddressToText(c.value), c.text) << c.value;
}

TEST(PadAddressText, RightAlignsToEight) {
  const std::pair<const char*, const char*> cases[] = {
      {"1", "00000001"}, {"123456789", "23456789"}, {"", "0000000"}, {"7FFFF", "0007FFFF"}, {"12345678", "12345678"}};
  for (const auto& [in, out] : cases) EXPECT_EQ(PadAddressText(in), out) << in;
}

TEST(HexByteText, GivesTwoDigits) {
  EXPECT_EQ(HexByteText(10), "0A");
  EXPECT_EQ(HexByteText(255), "FF");
  EXPECT_EQ(HexByteText(0), "00");
}

TEST(AddressText, RoundTripsEveryHalfBoundary) {
  for (Address v : {Address{0}, Address{0xFFFF}, Address{0x10000}, Address{0x7FFFFFFF}, Address{0x80000000},
                    Address{0xFFFEFFFF}, kAddressMax})
    EXPECT_EQ(AddressFromText(AddressToText(v)), v);
}

}  // namespace
}  // namespace kestrum
