#include <gtest/gtest.h>

#include "TestSupport.h"

namespace kestrum {
namespace {

using test::RunProgram;

test::RunResult Cli(std::vector<std::string> args) {
  args.insert(args.begin(), KESTRUM_CLI);
  return RunProgram(args);
}

std::string FFRow(const char* address, int bytes) {
  return std::string(address) + "  " + std::string(2 * bytes, 'F');
}

TEST(CliBuffer, StepsPrintWhatTheWindowShows) {
  struct Case {
    const char* name;
    std::vector<std::string> args;
    std::string out;
  };
  const Case cases[] = {
      {"sum of the default area", {"sum"}, "8-8bit=00 8-16bit=0000 16-16bit=0000\n"},
      {"256 bytes of FF from an even address",
       {"sum", "1000:10FF"},
       "8-8bit=00 8-16bit=FF00 16-16bit=FF80\n"},
      {"one byte at an even address",
       {"fill", "1000:1000", "56", "sum", "1000:1000"},
       "8-8bit=56 8-16bit=0056 16-16bit=5600\n"},
      {"fill wraps past the end of the area",
       {"--area", "1000:1FFF", "fill", "1FF0:100F", "0", "sum"},
       "8-8bit=20 8-16bit=D020 16-16bit=F810\n"},
      {"dump of the last byte", {"dump", "7FFFF"}, FFRow("0007FFFF", 1) + "\n"},
      {"dump rows, one a line",
       {"fill", "7FFE5:7FFE5", "A", "dump", "7FFE0"},
       "0007FFE0  FFFFFFFFFF0A" + std::string(20, 'F') + "\n" + FFRow("0007FFF0", 16) + "\n"},
      {"a fill wipes no earlier dump output",
       {"dump", "7FFFF", "fill", "7FFFF:7FFFF", "0", "dump", "7FFFF"},
       FFRow("0007FFFF", 1) + "\n0007FFFF  00\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto r = Cli(c.args);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, "");
  }
}

TEST(CliBuffer, RefusalsGiveTheDialogsWords) {
  struct Case {
    const char* name;
    std::vector<std::string> args;
    const char* err;
  };
  const Case cases[] = {
      {"fill first outside", {"fill", "80000:80001", "0"}, "kestrum-cli: Address Error\n"},
      {"fill data beyond a byte", {"fill", "0:1", "100"}, "kestrum-cli: Data Error!\n"},
      {"fill data no hex", {"fill", "0:1", "%"}, "kestrum-cli: Data Error!\n"},
      {"sum first outside",
       {"--area", "1000:1FFF", "sum", "FFF:1FFF"},
       "kestrum-cli: First Address Error!\n"},
      {"sum last outside", {"sum", "0:80000"}, "kestrum-cli: Last Address Error!\n"},
      {"sum backwards", {"sum", "2:1"}, "kestrum-cli: Address Error!\n"},
      {"dump outside", {"dump", "80000"}, "kestrum-cli: Dump Address Error!\n"},
      {"dump no hex", {"dump", "12G"}, "kestrum-cli: Dump Address Error!\n"},
      {"fill range without colon", {"fill", "0", "1"}, "kestrum-cli: '0' is no range FIRST:LAST\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto r = Cli(c.args);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(r.out, "");
  }
}

TEST(CliBuffer, ARefusalStopsTheLaterSteps) {
  const auto r = Cli({"sum", "0:0", "sum", "1:0", "sum", "0:0"});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "8-8bit=FF 8-16bit=00FF 16-16bit=FF00\n");
}

}  // namespace
}  // namespace kestrum
