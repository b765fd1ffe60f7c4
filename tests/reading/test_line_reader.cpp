#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reading/LineReader.h"

namespace kestrum {
namespace {

TEST(LineReader, CrOrCrLfEndsALineAndALoneLfStays) {
  using Lines = std::vector<std::string>;
  const struct {
    std::string bytes;
    Lines lines;
  } cases[] = {
      {"", {}},
      {"a", {"a"}},
      {"a\r", {"a"}},
      {"a\rb", {"a", "b"}},
      {"a\r\nb\r\n", {"a", "b"}},
      {"a\nb", {"a\nb"}},
      {"a\n\rb", {"a\n", "b"}},
      {"\r\r\n\r", {"", "", ""}},
      {"ab\r\n\nc", {"ab", "\nc"}},
      {"abc\r\r\n\n", {"abc", "", "\n"}},
      {std::string("a\0b\r", 4), {std::string("a\0b", 3)}},
  };
  // Each block size puts the line ends at other places of a block, a CR LF
  // pair split across two blocks among them; no line here is longer than 3.
  for (const auto& c : cases) {
    for (std::size_t block : {3, 4, 5, 7, 64}) {
      MemorySource source(c.bytes);
      LineReader reader(source, block);
      Lines lines;
      for (Line line; reader.Next(line);) {
        EXPECT_TRUE(line.Whole());
        lines.emplace_back(line.text);
        EXPECT_EQ(reader.LineNumber(), lines.size());
      }
      EXPECT_EQ(lines, c.lines) << block << ": " << c.bytes;
    }
  }
}

// Gives its bytes, then fails.
class FailingSource : public MemorySource {
 public:
  using MemorySource::MemorySource;
  std::size_t Read(std::uint8_t* dst, std::size_t count) override {
    const std::size_t n = MemorySource::Read(dst, count);
    if (n == 0) Fail("Input/output error");
    return n;
  }
};

TEST(LineReader, ReadFailureEndsWithoutAPartialLine) {
  FailingSource source("one\r\ntwo");
  LineReader reader(source, 4);
  Line line;
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(line.text, "one");
  EXPECT_FALSE(reader.Next(line));
  EXPECT_EQ(source.Failure(), "Input/output error");
}

}  // namespace
}  // namespace kestrum
