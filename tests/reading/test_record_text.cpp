#include <gtest/gtest.h>

#include <string>

#include "reading/RecordText.h"

namespace kestrum {
namespace {

// Every character in every position of a run of pairs long enough for the
// eight-at-a-time path and its tail: what decodes must agree with the
// digit table, and any other character must be refused.
TEST(DecodePairs, AgreesWithTheDigitTableForEveryCharacter) {
  for (int c = 0; c < 256; ++c) {
    for (std::size_t at = 0; at < 22; ++at) {
      std::string text = "0123456789abcdefABCDEF";
      text[at] = static_cast<char>(c);
      std::uint8_t out[11];
      const int sum = DecodePairs(text.data(), 11, out);
      const bool digit = HexDigitValue(static_cast<char>(c)) >= 0;
      ASSERT_EQ(sum >= 0, digit) << "character " << c << " at " << at;
      if (!digit) continue;
      int expected = 0;
      for (std::size_t i = 0; i < 11; ++i) {
        const int value = HexPairValue(text.data() + 2 * i);
        ASSERT_EQ(out[i], value) << "character " << c << " at " << at << ", pair " << i;
        expected += value;
      }
      EXPECT_EQ(sum, expected);
    }
  }
}

TEST(ClipRecord, KeepsThePartInTheRange) {
  const struct {
    Address first, n, loadFirst, loadLast;
    bool passedOver;
    Address from, to;
  } cases[] = {
      {0x1000, 4, 0, 0xFFFF, false, 0x1000, 0x1003},
      {0x1000, 4, 0x1002, 0xFFFF, false, 0x1002, 0x1003},
      {0x1000, 4, 0, 0x1001, false, 0x1000, 0x1001},
      {0x1000, 4, 0x1004, 0xFFFF, true, 0, -1},
      {0x1000, 4, 0, 0xFFF, true, 0, -1},
      {0x1000, 0, 0, 0xFFFF, false, 0x1000, 0xFFF},  // nothing stored, checksum still tested
      {0x1000, 0, 0x1000, 0xFFFF, false, 0x1000, 0xFFF},
      {0x1000, -1, 0x1000, 0xFFFF, false, 0x1000, 0xFFE},
      {-2, 4, 0, 0xFFFF, false, 0, 1},
      {0x0FFE, 8, 0x1000, 0x1001, false, 0x1000, 0x1001},
  };
  for (const auto& c : cases) {
    const RecordClip clip = ClipRecord(c.first, c.n, c.loadFirst, c.loadLast);
    EXPECT_EQ(clip.passedOver, c.passedOver) << c.first << " " << c.n;
    if (c.passedOver) continue;
    EXPECT_EQ(clip.first, c.from) << c.first << " " << c.n;
    EXPECT_EQ(clip.last, c.to) << c.first << " " << c.n;
  }
}

}  // namespace
}  // namespace kestrum
