// The pipelines that README.md shows, run exactly as they stand there, and
// their results checked against what srec_cat reads from the same example.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "bufferops/Sum.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::RunProgram;

constexpr const char* kSrecCat = "/usr/bin/srec_cat";

// The command lines of the README's "## Pipelines" section, split into words.
std::vector<std::vector<std::string>> Pipelines() {
  std::istringstream readme(ReadFile(fs::path(KESTRUM_SOURCE_DIR) / "README.md"));
  std::vector<std::vector<std::string>> lines;
  std::string line;
  bool inSection = false, inBlock = false;
  while (std::getline(readme, line)) {
    if (line.rfind("## ", 0) == 0) inSection = line == "## Pipelines";
    if (!inSection) continue;
    if (line.rfind("```", 0) == 0) {
      inBlock = !inBlock;
    } else if (inBlock && line.rfind("kestrum-cli ", 0) == 0) {
      std::istringstream words(line);
      std::vector<std::string> argv;
      for (std::string word; words >> word;) argv.push_back(word);
      lines.push_back(argv);
    }
  }
  return lines;
}

// The word after name, or fallback when name is not among the words.
std::string After(const std::vector<std::string>& words, const std::string& name, const std::string& fallback = {},
                  std::size_t skip = 0) {
  const auto it = std::find(words.begin(), words.end(), name);
  if (it == words.end() || static_cast<std::size_t>(words.end() - it) <= 1 + skip) return fallback;
  return *(it + 1 + static_cast<std::ptrdiff_t>(skip));
}

std::pair<Address, Address> Range(const std::string& text) {
  const auto colon = text.find(':');
  return {std::stoll(text.substr(0, colon), nullptr, 16), std::stoll(text.substr(colon + 1), nullptr, 16)};
}

// The image the pipeline builds, as srec_cat reads the example into its area
// filled with the pipeline's fill byte (FF when it has none).
Module1 ImageBySrecCat(const std::vector<std::string>& words, const fs::path& dir) {
  const auto [first, last] = Range(After(words, "--area", "0:7FFFF"));
  const std::string fill = After(words, "fill", "", 1);
  const fs::path out = dir / "peer.bin";
  auto hex = [](Address v) {
    std::ostringstream s;
    s << "0x" << std::hex << v;
    return s.str();
  };
  const auto r = RunProgram({kSrecCat, "examples/blink.hex", "-intel", "-fill", "0x" + (fill.empty() ? "FF" : fill),
                             hex(first), hex(last + 1), "-crop", hex(first), hex(last + 1), "-offset",
                             "-" + hex(first), "-o", out.string(), "-binary"},
                            dir);
  EXPECT_EQ(r.status, 0) << r.err;
  const std::string bytes = ReadFile(out);
  Module1 m = test::MakeImage(first, last);
  EXPECT_EQ(bytes.size(), static_cast<std::size_t>(m.BufSize));
  std::memcpy(m.Buffer.data(), bytes.data(), std::min(bytes.size(), static_cast<std::size_t>(m.BufSize)));
  return m;
}

TEST(CliReadme, PipelinesRunAsShown) {
  if (!fs::exists(kSrecCat)) GTEST_SKIP() << "srec_cat is not installed";
  const auto pipelines = Pipelines();
  ASSERT_EQ(pipelines.size(), 3u) << "README.md should show three pipelines";
  test::TempDir dir;
  fs::create_directory(dir / "examples");
  fs::copy_file(fs::path(KESTRUM_SOURCE_DIR) / "examples" / "blink.hex", dir / "examples" / "blink.hex");

  int checked = 0;
  for (const auto& words : pipelines) {
    std::string shown;
    for (const auto& w : words) shown += w + " ";
    SCOPED_TRACE(shown);
    std::vector<std::string> argv = words;
    argv[0] = KESTRUM_CLI;
    const auto r = RunProgram(argv, dir.path());
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    Module1 peer = ImageBySrecCat(words, dir.path());

    if (const std::string range = After(words, "sum"); !range.empty() && range.rfind("--", 0) != 0) {
      const auto [first, last] = Range(range);
      const Sums s = SumRange(peer, first, last);
      EXPECT_EQ(r.out, "8-8bit=" + HexText(static_cast<std::uint64_t>(s.sum8_8), 2) +
                           " 8-16bit=" + HexText(static_cast<std::uint64_t>(s.sum8_16), 4) +
                           " 16-16bit=" + HexText(static_cast<std::uint64_t>(s.sum16_16), 4) + "\n");
      ++checked;
    }
    if (const std::string file = After(words, "save"); !file.empty()) {
      ASSERT_EQ(After(words, "--format"), "s");
      const auto back = RunProgram({kSrecCat, file, "-motorola", "-o", "back.bin", "-binary"}, dir.path());
      EXPECT_EQ(back.status, 0) << back.err;
      const std::string expected(reinterpret_cast<const char*>(peer.Buffer.data()),
                                 static_cast<std::size_t>(peer.BufSize));
      EXPECT_TRUE(ReadFile(dir / "back.bin") == expected) << "the S file holds other bytes";
      ++checked;
    }
    if (const std::string file = After(words, "ysm"); !file.empty()) {
      const auto [first, last] = Range(After(words, "--range"));
      peer.SaveFirst = first;
      peer.SaveLast = last;
      test::ScriptedPlatform platform;
      ASSERT_EQ(SaveYsmFile(peer, platform, (dir / "peer.YSM").string(), After(words, "--sum") + "SUM"),
                SaveOutcome::Done);
      EXPECT_EQ(ReadFile(dir / file), ReadFile(dir / "peer.YSM"));
      ++checked;
    }
  }
  EXPECT_EQ(checked, 3) << "each pipeline should end in a sum, a save or a YSM file";
}

}  // namespace
}  // namespace kestrum
