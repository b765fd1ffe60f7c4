// The manual page and the bash completion follow the command line: every
// step and option that --help names, and each value of an option with a
// fixed list, appears in both.
#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "TestSupport.h"

namespace kestrum {
namespace {

TEST(Manual, NamesWhatTheHelpNames) {
  const std::filesystem::path source(KESTRUM_SOURCE_DIR);
  const std::string help = test::RunProgram({KESTRUM_CLI, "--help"}).out;
  // roff writes a hyphen as \- and changes fonts with \fX.
  const std::string manual = std::regex_replace(
      std::regex_replace(test::ReadFile(source / "docs/man/kestrum-cli.1"), std::regex(R"(\\f[RBIP])"), ""),
      std::regex(R"(\\-)"), "-");
  const std::string completion = test::ReadFile(source / "packaging/kestrum-cli.bash");

  std::vector<std::string> steps;
  std::istringstream lines(help.substr(help.find("Steps:")));
  for (std::string line; std::getline(lines, line) && line != "Options:";)
    if (line.size() > 2 && line.compare(0, 2, "  ") == 0 && std::islower(line[2]))
      steps.push_back(line.substr(2, line.find(' ', 2) - 2));
  ASSERT_GE(steps.size(), 7u) << help;
  std::set<std::string> words;  // the options, and the values of the fixed lists
  const std::regex token(R"(--[a-z][a-z-]*|[a-z0-9-]+(\|[a-z0-9-]+)+)");
  for (std::sregex_iterator it(help.begin(), help.end(), token), end; it != end; ++it) {
    std::istringstream alternatives(it->str());
    for (std::string word; std::getline(alternatives, word, '|');) words.insert(word);
  }
  for (const auto& step : steps) {
    EXPECT_TRUE(std::regex_search(manual, std::regex("\n\\.BI? " + step + "[ \n]")))
        << "manual: step " << step;
    EXPECT_TRUE(std::regex_search(completion, std::regex("[\" ]" + step + "[\" ]")))
        << "completion: " << step;
  }
  for (const auto& word : words) {
    EXPECT_NE(manual.find(word), std::string::npos) << "manual: " << word;
    EXPECT_TRUE(std::regex_search(completion, std::regex("[\"( ]" + word + "[\" )]")))
        << "completion: " << word;
  }
}

}  // namespace
}  // namespace kestrum
