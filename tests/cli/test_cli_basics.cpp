#include <gtest/gtest.h>

#include "TestSupport.h"

namespace kestrum {
namespace {

using test::RunProgram;

struct CliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  const char* inOut;  // a text that standard output holds
  const char* inErr;  // a text that standard error holds
};

TEST(CliBasics, StatusAndWords) {
  const CliCase cases[] = {
      {"help lists the grammar", {"--help"}, 0, "kestrum-cli [--area FIRST:LAST]", ""},
      {"help lists clear", {"--help"}, 0, "clear", ""},
      {"version", {"--version"}, 0, "kestrum-cli 2.30", ""},
      {"step help", {"clear", "--help"}, 0, "Usage: kestrum-cli clear", ""},
      {"clear on the default area", {"clear"}, 0, "", ""},
      {"area too large for memory", {"--area", "0:FFFFFFFF", "clear"}, 1, "", "Out of Memory"},
      {"area backwards", {"--area", "100:FF", "clear"}, 2, "", "Address Error"},
      {"area not hex", {"--area", "0:7XFFF", "clear"}, 2, "", "--area"},
      {"area without colon", {"--area", "7FFFF", "clear"}, 2, "", "FIRST:LAST"},
      {"area without value", {"--area"}, 2, "", "--area needs"},
      {"unknown step", {"frobnicate"}, 2, "", "unknown step 'frobnicate'"},
      {"no step", {}, 2, "", "no step"},
      {"unknown option", {"--colour"}, 2, "", "unknown option"},
      {"option a step lacks", {"clear", "--range", "0:1"}, 2, "", "clear has no option '--range'"},
      {"a usage error stops before any step runs", {"clear", "bogus"}, 2, "", "unknown step 'bogus'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<std::string> argv{KESTRUM_CLI};
    argv.insert(argv.end(), c.args.begin(), c.args.end());
    const auto r = RunProgram(argv);
    EXPECT_EQ(r.status, c.status) << r.err;
    EXPECT_NE(r.out.find(c.inOut), std::string::npos) << r.out;
    EXPECT_NE(r.err.find(c.inErr), std::string::npos) << r.err;
  }
}

}  // namespace
}  // namespace kestrum
