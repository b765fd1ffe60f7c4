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

}  // namespace
}  // namespace kestrum
