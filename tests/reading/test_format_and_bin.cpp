#include "LoadCase.h"
#include "reading/FileFormat.h"

namespace kestrum::test {
namespace {

TEST(ExtensionOf, TakesWhatFollowsTheFirstDot) {
  const std::pair<const char*, const char*> cases[] = {
      {"PROG.HEX", "HEX"}, {"PROG.HEX.BAK", "HEX.BAK"}, {"PROG.", ""}, {"PROG", ""}, {".S", "S"}};
  for (const auto& [name, extension] : cases) EXPECT_EQ(ExtensionOf(name), extension) << name;
}

// A head of size bytes that begins with first and has its first line end
// (a CR or LF) as byte number lineEnd, counted from 1; 0 for none.
std::string Head(char first, std::size_t size, std::size_t lineEnd, char end = '\r') {
  std::string head(size, '0');
  head[0] = first;
  if (lineEnd > 0) head[lineEnd - 1] = end;
  return head;
}

TEST(DecideFormat, ExtensionFirstThenFirstByteAndLineEnd) {
  const struct {
    const char* extension;
    std::string head;
    LoadFormat format;
  } cases[] = {
      {"hex", "anything", LoadFormat::HEX},
      {"Hex", "", LoadFormat::HEX},
      {"s", "", LoadFormat::S},
      {"bin", ":00000001FF\r\n", LoadFormat::BIN},
      {"HEX.BAK", ":00000001FF\r\n", LoadFormat::HEX},
      {"TXT", "S9030000FC\r\n", LoadFormat::S},
      {"", "S9030000FC\n", LoadFormat::S},
      {"DAT", Head(':', 600, 523), LoadFormat::HEX},
      {"DAT", Head(':', 600, 524), LoadFormat::BIN},
      {"DAT", Head(':', 600, 523, '\n'), LoadFormat::HEX},
      {"DAT", Head('S', 600, 514), LoadFormat::S},
      {"DAT", Head('S', 600, 515), LoadFormat::BIN},
      {"DAT", Head('S', 514, 0), LoadFormat::BIN},
      {"DAT", ":", LoadFormat::BIN},
      {"DAT", "s9030000FC\r\n", LoadFormat::BIN},  // the raw byte counts
      {"DAT", "\r\n", LoadFormat::BIN},
  };
  for (const auto& c : cases)
    EXPECT_EQ(DecideFormat(c.extension, c.head), c.format) << c.extension << " / " << c.head.substr(0, 12);
}

std::vector<std::uint8_t> Counting(std::size_t n, std::size_t from = 0) {
  std::vector<std::uint8_t> bytes(n);
  for (std::size_t i = 0; i < n; ++i) bytes[i] = static_cast<std::uint8_t>(from + i);
  return bytes;
}

TEST(LoadObjectBytes, FormatByNameOrContentAndTheBinReader) {
  const std::string record = ":0410000001020304E2\r\n";
  const std::vector<std::uint8_t> all = Counting(256);
  const std::string bin(all.begin(), all.end());
  const struct {
    const char* name;
    LoadCase c;
  } cases[] = {
      {"PROG.DAT", {"content decides", record, {{0x1000, {1, 2, 3, 4}}}}},
      {"PROG.bin",
       {"a colon in a BIN file", record, {{0, std::vector<std::uint8_t>(record.begin(), record.end())}}}},
      {"PROG.Hex", {"the name decides", "S107100001020304DE", {}, "Format Error", 1}},
      {"E.HEX", {"empty HEX", "", {}}},
      {"E.S", {"empty S", "", {}}},
      {"E.BIN", {"empty BIN", "", {}}},
      {"T.BIN", {"whole file", bin, {{0x2000, all}}, "", 0, 0x2000}},
      {"T.BIN",
       {"offset +10 leaves the first addresses", bin, {{0x2010, all}}, "", 0, 0x2000, kImageLast, 0x10}},
      {"T.BIN",
       {"negative offset drops the head",
        bin,
        {{0x2000, Counting(240, 16)}},
        "",
        0,
        0x2000,
        kImageLast,
        -0x10}},
      {"T.BIN", {"offset -100 stores nothing", bin, {}, "", 0, 0x2000, kImageLast, -0x100}},
      {"T.BIN", {"first byte above LoadLast", bin, {}, "", 0, 0x2000, 0x20FF, 0x100}},
      {"T.BIN", {"offset and range both cut", bin, {{0x2000, Counting(8, 8)}}, "", 0, 0x2000, 0x2007, -8}},
      {"T.BIN", {"end of the area", bin, {{kImageLast - 3, Counting(4)}}, "", 0, kImageLast - 3}},
  };
  for (const auto& [name, c] : cases) CheckLoad(c, name);
}

TEST(LoadObjectBytes, SecondLoadOverlaysTheFirst) {
  Module1 m = MakeImage(0, kImageLast);
  ScriptedPlatform platform;
  LoadObjectBytes(m, platform, 0, kImageLast, "A.HEX", ":0410000001020304E2\r\n");
  LoadObjectBytes(m, platform, 0, kImageLast, "B.S", "S1051002AABB83\r\n");
  EXPECT_EQ(std::vector<std::uint8_t>(&m.At(0x1000), &m.At(0x1005)),
            (std::vector<std::uint8_t>{1, 2, 0xAA, 0xBB, 0xFF}));
  EXPECT_TRUE(platform.messages.empty());
}

}  // namespace
}  // namespace kestrum::test
