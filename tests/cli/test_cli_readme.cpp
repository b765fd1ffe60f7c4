// The pipelines that README.md shows, run exactly as they stand there on the
// bundled example. What their files hold is the save tests' business.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>

#include "TestSupport.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;

TEST(CliReadme, PipelinesRunAsShown) {
  const fs::path source(KESTRUM_SOURCE_DIR);
  std::istringstream readme(test::ReadFile(source / "README.md"));
  test::TempDir dir;
  fs::create_directory(dir / "examples");
  fs::copy_file(source / "examples" / "blink.hex", dir / "examples" / "blink.hex");
  int run = 0;
  bool inSection = false;
  for (std::string line; std::getline(readme, line);) {
    if (line.rfind("## ", 0) == 0) inSection = line == "## Pipelines";
    if (!inSection || line.rfind("kestrum-cli ", 0) != 0) continue;
    SCOPED_TRACE(line);
    std::istringstream words(line);
    std::vector<std::string> argv;
    for (std::string word; words >> word;) argv.push_back(word);
    argv[0] = KESTRUM_CLI;
    const auto r = test::RunProgram(argv, dir.path());
    ++run;
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    // Each pipeline ends in a sum on standard output or in a file.
    if (argv[argv.size() - 2] == "sum") {
      EXPECT_TRUE(std::regex_match(
          r.out, std::regex("8-8bit=[0-9A-F]{2} 8-16bit=[0-9A-F]{4} 16-16bit=[0-9A-F]{4}\n")))
          << r.out;
    } else {
      const auto step =
          std::find_if(argv.begin(), argv.end(), [](const auto& w) { return w == "save" || w == "ysm"; });
      ASSERT_NE(step, argv.end()) << "no sum, save or ysm step";
      EXPECT_GT(fs::file_size(dir / *(step + 1)), 0u);
    }
  }
  EXPECT_EQ(run, 3) << "README.md should show three pipelines";
}

}  // namespace
}  // namespace kestrum
