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
      {"one byte at an odd address",
       {"fill", "1001:1001", "34", "sum", "1001:1001"},
       "8-8bit=34 8-16bit=0034 16-16bit=0034\n"},
      {"fill then sum the filled range",
       {"fill", "1000:1003", "1", "sum", "1000:1003"},
       "8-8bit=04 8-16bit=0004 16-16bit=0202\n"},
      {"fill wraps past the end of the area",
       {"--area", "1000:1FFF", "fill", "1FF0:100F", "0", "sum"},
       "8-8bit=20 8-16bit=D020 16-16bit=F810\n"},
      {"sums repeat",
       {"sum", "0:1", "sum", "0:0"},
       "8-8bit=FE 8-16bit=01FE 16-16bit=FFFF\n8-8bit=FF 8-16bit=00FF 16-16bit=FF00\n"},
      {"dump of the last byte", {"dump", "7FFFF"}, FFRow("0007FFFF", 1) + "\n"},
      {"dump rows follow the start",
       {"fill", "5:5", "A", "dump", "5"},
       "00000005  0A" + std::string(30, 'F') + "\n" + FFRow("00000015", 16) + "\n" + FFRow("00000025", 16) +
           "\n" + FFRow("00000035", 16) + "\n" + FFRow("00000045", 16) + "\n" + FFRow("00000055", 16) + "\n" +
           FFRow("00000065", 16) + "\n"},
      {"dump of a one-byte area", {"--area", "1000:1000", "dump", "1000"}, FFRow("00001000", 1) + "\n"},
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
      {"fill last outside",
       {"--area", "1000:1FFF", "fill", "1000:2000", "0"},
       "kestrum-cli: Address Error\n"},
      {"fill data beyond a byte", {"fill", "0:1", "100"}, "kestrum-cli: Data Error!\n"},
      {"fill data no hex", {"fill", "0:1", "%"}, "kestrum-cli: Data Error!\n"},
      {"sum first outside",
       {"--area", "1000:1FFF", "sum", "FFF:1FFF"},
       "kestrum-cli: First Address Error!\n"},
      {"sum last outside", {"sum", "0:80000"}, "kestrum-cli: Last Address Error!\n"},
      {"sum backwards", {"sum", "2:1"}, "kestrum-cli: Address Error!\n"},
      {"dump outside", {"dump", "80000"}, "kestrum-cli: Dump Address Error!\n"},
      {"dump below", {"--area", "1000:1FFF", "dump", "FFF"}, "kestrum-cli: Dump Address Error!\n"},
      {"dump no hex", {"dump", "12G"}, "kestrum-cli: Dump Address Error!\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto r = Cli(c.args);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(r.out, "");
  }
}

TEST(CliBuffer, UsageErrors) {
  struct Case {
    const char* name;
    std::vector<std::string> args;
    const char* inErr;
  };
  const Case cases[] = {
      {"fill without a byte", {"fill", "0:1"}, "fill needs BYTE"},
      {"fill range without colon", {"fill", "0", "1"}, "FIRST:LAST"},
      {"sum range not hex", {"sum", "0:7XFFF"}, "hexadecimal"},
      {"dump without address", {"dump"}, "dump needs ADDRESS"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto r = Cli(c.args);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.err.find(c.inErr), std::string::npos) << r.err;
  }
}

TEST(CliBuffer, ARefusalStopsTheLaterSteps) {
  const auto r = Cli({"sum", "0:0", "sum", "1:0", "sum", "0:0"});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "8-8bit=FF 8-16bit=00FF 16-16bit=FF00\n");
}

TEST(CliBuffer, VerboseFillCountsTheWrappedBytes) {
  const auto r = Cli({"--verbose", "--area", "1000:1FFF", "fill", "1FF0:100F", "A5"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "fill: 32 bytes set to A5\n");
}

}  // namespace
}  // namespace kestrum
