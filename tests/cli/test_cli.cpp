// What the command line adds to the core: the call parsed before any step
// runs, the exit statuses, the words on standard output and standard error
// with FILE:LINE, a failing step that stops the later ones and leaves the
// files as they were, save and ysm files byte for byte the window's, the
// README's pipelines, Out of Memory, and a peak memory of the image and a
// few MiB whatever the size of a file or of its lines.
#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>

#include "RunCli.h"
#include "image/System.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::Entries, test::ReadFile, test::RunCli, test::RunProgram, test::TempDir, test::Words,
    test::WriteFile;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr long kSlackKiB = 8 << 10;  // what a load may hold beyond the image and the program itself

// The peak memory of a run that loads nothing: the program and its image.
long BaselineKiB(const std::string& area) { return RunCli({"--area", area, "sum"}).peakKiB; }

// A dump row: the address, then bytes and FF up to 16 bytes.
std::string Row(const char* address, const std::string& bytes) {
  return std::string(address) + "  " + bytes + std::string(32 - bytes.size(), 'F') + "\n";
}

TEST(Cli, CallsPrintOrStopWithStatusAndWords) {
  TempDir dir;
  WriteFile(dir / "app.hex", ":0410000001020304E2\r\n:00000001FF\r\n");
  WriteFile(dir / "image.bin", "\x11\x22\x33\x44");
  WriteFile(dir / "format.s", "S107100001020304DE\r\nS9030000FC\r\nS4030000FC\r\n");
  WriteFile(dir / "old", "the old file");
  const struct {
    std::string call;
    int status = 0;
    std::string out = {};  // standard output whole
    std::string err = {};  // among the words on standard error; nothing there after a success
  } cases[] = {
      {.call = "--version", .out = "kestrum-cli " KESTRUM_VERSION "\n"},
      {.call = "fill 0:1 0 clear sum", .out = "8-8bit=00 8-16bit=0000 16-16bit=0000\n"},
      {.call = "--area 1000:1FFF fill 1FF0:100F 0 sum", .out = "8-8bit=20 8-16bit=D020 16-16bit=F810\n"},
      {.call = "fill 7FFFF:7FFFF A dump 7FFF0", .out = Row("0007FFF0", std::string(30, 'F') + "0A")},
      {.call = "--area 0:F load image.bin --range 2:5 --offset +1 dump 0",
       .out = Row("00000000", "FFFFFF112233")},
      {.call = "--area 0:F load app.hex --offset -1000 dump 0", .out = Row("00000000", "01020304")},
      // Usage errors, found before any step runs.
      {.call = "", .status = 2, .err = "kestrum-cli: no step given\n"},
      {.call = "sum 0:0 bogus", .status = 2, .err = "unknown step 'bogus'"},
      {.call = "--colour", .status = 2, .err = "unknown option '--colour'"},
      {.call = "--area", .status = 2, .err = "--area needs FIRST:LAST"},
      {.call = "--area 0:7XFFF clear",
       .status = 2,
       .err = "--area: '0:7XFFF' is no range of hexadecimal addresses"},
      {.call = "clear --range 0:1", .status = 2, .err = "clear has no option '--range'"},
      {.call = "sum save old", .status = 2, .err = "save needs --format bin|hex|s"},
      // Values the dialog would refuse: its words, and no later step runs.
      {.call = "--area 100:FF clear", .status = 2, .err = "kestrum-cli: Address Error\n"},
      {.call = "--area 0:FFFFFFFF clear", .status = 1, .err = "kestrum-cli: Out of Memory\n"},
      {.call = "fill 80000:80001 0 sum", .status = 2, .err = "kestrum-cli: Address Error\n"},
      {.call = "fill 0:1 100 sum", .status = 2, .err = "kestrum-cli: Data Error!\n"},
      {.call = "fill 0 1 sum", .status = 2, .err = "kestrum-cli: '0' is no range FIRST:LAST\n"},
      {.call = "sum 0:0 sum 1:0 sum 0:0",
       .status = 2,
       .out = "8-8bit=FF 8-16bit=00FF 16-16bit=FF00\n",
       .err = "Address Error!\n"},
      {.call = "dump 80000 sum", .status = 2, .err = "kestrum-cli: Dump Address Error!\n"},
      {.call = "dump 12G sum", .status = 2, .err = "kestrum-cli: Dump Address Error!\n"},
      {.call = "load app.hex --range 0:80000 sum", .status = 2, .err = "kestrum-cli: Last Address Error!\n"},
      {.call = "load app.hex --offset x1 sum",
       .status = 2,
       .err = "kestrum-cli: --offset: 'x1' is no offset [+|-]HEX\n"},
      {.call = "save old --format hex --range 90000:80000 sum", .status = 2, .err = "Address Error!\n"},
      {.call = "save old --format s --range 0:80000 --record-length 0",
       .status = 2,
       .err = "RecordLength Error!\n"},
      {.call = "save old --format bin --range 80000:90000 sum", .status = 2, .err = "FirstAddress Error!\n"},
      {.call = "save old --format bin --range 0:80000 sum", .status = 2, .err = "LastAddress Error!\n"},
      {.call = "save old --format elf sum", .status = 2, .err = "Format Error!\n"},
      {.call = "save old --format s --range 0:1FF --record-length FD",
       .status = 2,
       .err = "Record Length Error!\n"},
      {.call = "ysm old --sum 32 sum", .status = 2, .err = "YSM File Format Error!\n"},
      {.call = "ysm old --sum 8-8 --range 0-1 sum",
       .status = 2,
       .err = "--range: '0-1' is no range FIRST:LAST\n"},
      // Record and file failures.
      {.call = "load format.s sum", .status = 1, .err = "format.s:3: Format Error\n"},
      {.call = "load missing.hex sum",
       .status = 1,
       .err = "kestrum-cli: Cannot read missing.hex: No such file or directory\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call);
    const auto r = RunCli(Words(c.call), dir.path());
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    if (c.status == 0) {
      EXPECT_EQ(r.err, "");
    } else {
      EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    }
  }
  EXPECT_EQ(ReadFile(dir / "old"), "the old file");
  EXPECT_EQ(Entries(dir.path()), 4) << "a refused step left a file";
  // The help of the whole call, with the whole grammar, and of a step.
  const auto help = [](const std::string& call, const std::string& usage) {
    const auto r = RunCli(Words(call));
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "");
    EXPECT_TRUE(r.out.starts_with(usage)) << r.out;
    return r.out;
  };
  help("load --help", "Usage: kestrum-cli load FILE");
  const std::string grammar = help("--help", "Usage: kestrum-cli [--area FIRST:LAST]");
  for (const char* step : {"  load FILE", "  info FILE [FILE ...]", "  --strict", "  fill FIRST:LAST BYTE",
                           "  clear", "  sum", "  crc FIRST:LAST", "  dump ADDRESS", "  save FILE --format",
                           "  ysm FILE --sum", "  --area FIRST:LAST", "STEP --help"})
    EXPECT_NE(grammar.find(step), std::string::npos) << step;
}

// Files read tolerantly unless --strict; a load that stores nothing of a
// non-empty file, and a lone LF under --strict, are warned about on
// standard error, and the load still goes through.
TEST(Cli, WarningsOfAnEmptyLoadAndALoneLfUnderStrict) {
  TempDir dir;
  WriteFile(dir / "lf.s", "S00600004844521B\nS107100001020304DE\n");
  WriteFile(dir / "s.hex", "S107100001020304DE\r\n");
  WriteFile(dir / "app.hex", ":0410000001020304E2\r\n");
  WriteFile(dir / "image.bin", "\x11\x22\x33\x44");
  const std::string warning = "kestrum-cli: warning: ";
  const struct {
    std::string call;
    std::string err;
  } cases[] = {
      {.call = "load lf.s --range 1000:1003", .err = ""},
      {.call = "--strict load app.hex", .err = ""},
      {.call = "--strict load lf.s",
       .err = warning + "lf.s: a lone LF ends no line under --strict\n" + warning +
              "lf.s stored no byte in 00000000:0007FFFF: read as S, 1 line with 0 data records\n"},
      {.call = "--area 0:FFF load lf.s",
       .err =
           warning +
           "lf.s stored no byte in 00000000:00000FFF: read as S, 2 lines with 1 data record, no byte of them "
           "inside the range at offset 0\n"},
      {.call = "load image.bin --offset +80000",
       .err = warning +
              "image.bin stored no byte in 00000000:0007FFFF: read as BIN, 4 bytes, all outside the range at "
              "offset +80000\n"},
      {.call = "--verbose load s.hex",
       .err = "load: s.hex as S by content, not by its extension into 00000000:0007FFFF, 4 bytes stored\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call);
    const auto r = RunCli(Words(c.call), dir.path());
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, c.err);
  }
}

// info reads files without touching the image: the format and how it was
// decided, line ends, records by type, data spans merged, start addresses
// and addresses written twice; a bad record ends its file's report.
TEST(Cli, InfoTellsWhatFilesHold) {
  TempDir dir;
  WriteFile(dir / "mix.hex",
            ":0410000001020304E2\r\n:0410040005060708CE\n:021002000304E5\r\n:0110070009DF\n"
            ":020000040001F9\r\n:02000000AABB99\n:040000050000C0DE59\r\n");
  WriteFile(dir / "bad.s", "S107100001020304DE\nS107101005060708BF\nS107102005060708AE\n");
  WriteFile(dir / "empty.bin", "");
  WriteFile(dir / "lf.s", "S00600004844521B\nS107100001020304DE\n");
  const auto r = RunCli({"info", "mix.hex", "bad.s", "empty.bin", "sum"}, dir.path());
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out,
            "mix.hex: HEX by extension\n"
            "  line ends: mixed: 4 CR LF, 3 LF\n"
            "  records: 5 of type 00, 1 of type 04, 1 of type 05\n"
            "  data 00001000:00001007 8 bytes\n"
            "  data 00010000:00010001 2 bytes\n"
            "  start 05 0000C0DE\n"
            "  twice 00001002:00001003 same bytes\n"
            "  twice 00001007:00001007 other bytes\n"
            "bad.s: S by extension\n"
            "  line ends: LF\n"
            "  records: 2 of type S1\n"
            "  data 00001000:00001003 4 bytes\n"
            "  data 00001010:00001013 4 bytes\n"
            "empty.bin: empty\n");
  EXPECT_EQ(r.err, "bad.s:2: SUM Error\n");
  const auto strict = RunCli({"--strict", "info", "lf.s"}, dir.path());
  EXPECT_EQ(strict.status, 0);
  EXPECT_EQ(strict.out, "lf.s: S by extension\n  line ends: LF\n  records: 1 of type S0\n");
}

// Each written over a longer file, which must go whole; no range means the
// area, no record length 10.
TEST(Cli, SaveAndYsmWriteTheWindowWritersBytes) {
  const struct {
    const char* area;
    std::string format;  // or sum
    Address first, last;
    int length = 0;
    bool range = true;
  } cases[] = {
      {.area = "3FFFF", .format = "bin", .first = 0x8, .last = 0x10010, .length = 0x10},
      {.area = "3FFFF", .format = "hex", .first = 0xFFF1, .last = 0x2000A, .length = 0x0B},
      {.area = "1000F", .format = "hex", .first = 0x0, .last = 0x1000F, .length = 0x10, .range = false},
      {.area = "3FFFF", .format = "s", .first = 0xFF00, .last = 0x10101, .length = 0x20},
      {.area = "3FFFF", .format = "16-16", .first = 0x0, .last = 0x3FFFF, .range = false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format + " " + AddressToText(c.first) + ".." + AddressToText(c.last));
    TempDir dir;
    WriteFile(dir / "cli", std::string(0x20000, 'x'));
    const bool ysm = c.format.find('-') != std::string::npos;
    std::string call = std::string("--area 0:") + c.area + " fill 10:3F 12 fill FFF0:1000F A5 " +
                       (ysm ? "ysm cli --sum " : "save cli --format ") + c.format;
    if (c.range) call += " --range " + AddressToText(c.first) + ":" + AddressToText(c.last);
    if (c.range && !ysm) call += " --record-length " + HexByteText(c.length);
    const auto r = RunCli(Words(call), dir.path());
    ASSERT_EQ(r.status, 0) << r.err;
    Module1 m = test::MakeImage(0, AddressFromText(PadAddressText(c.area)));
    std::memset(&m.At(0x10), 0x12, 0x30);
    std::memset(&m.At(0xFFF0), 0xA5, 0x20);
    m.SaveFirst = c.first;
    m.SaveLast = c.last;
    m.RecordLength = static_cast<std::int16_t>(c.length);
    const std::string window = (dir / "window").string();
    const Outcome outcome = ysm ? SaveYsmFile(m, window, *FromName<SumKind>(c.format + "SUM"))
                                : SaveObjectFile(m, *FromName<ObjectFormat>(c.format), window);
    EXPECT_TRUE(outcome.IsDone());
    EXPECT_EQ(ReadFile(dir / "cli"), ReadFile(dir / "window")) << "the command line wrote other bytes";
  }
}

TEST(Cli, Utf8NamesReachTheFileSystem) {
  TempDir dir;
  WriteFile(dir.path() / fs::path(u8"grüße.bin"), "\x11\x22");
  const auto r = RunCli(
      {"--area", "0:F", "load", "grüße.bin", "save", "tschüß.hex", "--format", "hex", "--range", "0:1"},
      dir.path());
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(dir.path() / fs::path(u8"tschüß.hex")),
            ":100000001122FFFFFFFFFFFFFFFFFFFFFFFFFFFFCB\r\n:00000001FF\r\n");
}

TEST(Cli, ReadmePipelinesRunAsShown) {
  const fs::path source(KESTRUM_SOURCE_DIR);
  std::istringstream readme(ReadFile(source / "README.md"));
  TempDir dir;
  fs::copy(source / "examples", dir / "examples");
  const std::regex printed(
      "(8-8bit=[0-9A-F]{2} 8-16bit=[0-9A-F]{4} 16-16bit=[0-9A-F]{4}\n|CRC-[^=]+=[0-9A-F]+\n)*");
  int run = 0;
  bool inSection = false;
  for (std::string line; std::getline(readme, line);) {
    if (line.rfind("## ", 0) == 0) inSection = line == "## Pipelines";
    if (!inSection || line.rfind("kestrum-cli ", 0) != 0) continue;
    SCOPED_TRACE(line);
    const auto argv = Words(line.substr(std::strlen("kestrum-cli ")));
    const auto r = RunCli(argv, dir.path());
    ++run;
    EXPECT_EQ(r.status, 0) << r.err;
    // Each sum and crc prints its line, and nothing else is printed.
    const auto steps =
        std::count(argv.begin(), argv.end(), "sum") + std::count(argv.begin(), argv.end(), "crc");
    EXPECT_TRUE(std::regex_match(r.out, printed)) << r.out;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), steps) << r.out;
  }
  EXPECT_EQ(run, 4) << "README.md should show four pipelines";
}

// A save into a read-only folder stops with the file and the reason; a
// hostile file loads or stops in bounded memory; neither runs a later step
// or leaves a working file.
TEST(Cli, FaultsAndHostileFilesStopInBoundedMemory) {
  const std::string nuls(4 * kMiB, '\0'), lfs(4 * kMiB, '\n'), longLine(8 * kMiB, '7');
  const std::string longHeader = "S0" + longLine + "\r\nS104000012E9\r\n";
  const std::string longRecord = ":0100000012ED\r\n:" + longLine + "\r\n:0100010034CA\r\n";
  std::string outside = ":020000040001F9\r\n";  // every record above the area 0000..FFFF
  while (outside.size() < 16 * kMiB) outside += ":10000000000102030405060708090A0B0C0D0E0F78\r\n";
  const auto records = std::count(outside.begin(), outside.end(), '\n');
  const std::string unstored =
      "kestrum-cli: warning: outside.hex stored no byte in 00000000:0000FFFF: read as HEX, " +
      std::to_string(records) + " lines with " + std::to_string(records - 1) +
      " data records, no byte of them inside the range at offset 0\n";
  const struct {
    const char* name;
    int status = 0;
    std::string out = {}, err = {};
    std::string file = {}, bytes = {};  // loaded; none saves into a read-only folder
    bool strict = false;
  } cases[] = {
      {.name = "a read-only folder",
       .status = 1,
       .err = "kestrum-cli: Can't create a.s: Permission denied\n"},
      {.name = "NUL bytes, decided by content",
       .out = "8-8bit=00 8-16bit=0000 16-16bit=0000\n",
       .file = "zeros.dat",
       .bytes = nuls},
      {.name = "a header line of megabytes passed over",
       .out = "8-8bit=13 8-16bit=FF13 16-16bit=9300\n",
       .file = "long.s",
       .bytes = longHeader},
      {.name = "a record of megabytes",
       .status = 1,
       .err = "long.hex:2: Format Error\n",
       .file = "long.hex",
       .bytes = longRecord},
      {.name = "a line of megabytes ended by lone LFs",
       .status = 1,
       .err = "kestrum-cli: warning: lf.hex: a lone LF ends no line under --strict\nlf.hex:1: Format Error\n",
       .file = "lf.hex",
       .bytes = lfs,
       .strict = true},
      {.name = "every record outside the range",
       .out = "8-8bit=00 8-16bit=0000 16-16bit=8000\n",
       .err = unstored,
       .file = "outside.hex",
       .bytes = outside},
  };
  // Wine's working-set figures are no resident memory.
  const bool measured = !test::kSanitized && !test::kWindows;
  const long baseline = measured ? BaselineKiB("0:FFFF") : 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const bool readOnly = c.file.empty();
    if (readOnly && test::SkipOnWindows("a read-only folder takes new files on Windows")) continue;
    TempDir dir;
    if (readOnly)
      fs::permissions(dir.path(), static_cast<fs::perms>(0555));
    else
      WriteFile(dir / c.file, c.bytes);
    std::vector<std::string> argv{"--area", "0:FFFF", "load", c.file, "sum"};
    if (readOnly) argv = {"--area", "0:FFFF", "save", "a.s", "--format", "s"};
    if (c.strict) argv.insert(argv.begin(), "--strict");
    argv.insert(argv.end(), {"save", "after", "--format", "bin"});
    const auto r = RunCli(argv, dir.path(), {.unprivileged = readOnly, .meminfo = {}});
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
    if (measured) {
      EXPECT_LE(r.peakKiB, baseline + kSlackKiB);
    }
    fs::permissions(dir.path(), fs::perms::owner_all, fs::perm_options::add);
    // The file loaded, and the later step's file only after a success: no working file.
    EXPECT_EQ(Entries(dir.path()), !readOnly + (c.status == 0));
  }
}

TEST(Cli, AHexFileOfOneGibibyteInBoundedMemory) {
  if (test::kSanitized) GTEST_SKIP() << "a gibibyte of text takes too long under the sanitizers";
  if (test::kWindows) GTEST_SKIP() << "Wine tells no peak memory, and a gibibyte takes minutes through it";
  // The bytes F0..FF at FFF0 under the bases 0000, 0001 and 0002 in turn
  // until the file passes 1 GiB; the area takes the first two of them.
  TempDir dir;
  const char* record = ":10FFF000F0F1F2F3F4F5F6F7F8F9FAFBFCFDFEFF89\r\n";
  const char* bases[] = {":020000040000FA\r\n", ":020000040001F9\r\n", ":020000040002F8\r\n"};
  std::ofstream file(dir / "big.hex", std::ios::binary);
  for (int i = 0; file && file.tellp() < (std::streamoff{1} << 30); ++i) file << bases[i % 3] << record;
  ASSERT_TRUE(file.flush()) << "the file could not be written";
  const auto r =
      RunCli({"--area", "0:1FFFF", "load", "big.hex", "sum", "FFF0:FFFF", "dump", "1FFF0"}, dir.path());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "8-8bit=78 8-16bit=0F78 16-16bit=BFC0\n0001FFF0  F0F1F2F3F4F5F6F7F8F9FAFBFCFDFEFF\n");
  EXPECT_LE(r.peakKiB, BaselineKiB("0:1FFFF") + kSlackKiB);
}

// An area the machine can't back, or a save's block beside it, is Out of
// Memory, under a control group's limit too (the room counts what the group
// holds): said instead of being killed, and no working file stays.
TEST(Cli, AnAreaTheMachineCannotBackIsOutOfMemory) {
  const struct {
    const char* name;
    std::string call;
    test::RunOptions options = {};  // the address space limit is a job's memory limit on Windows
    std::uint64_t held = 0;         // what another process holds in a group of 256 MiB; none without
    bool group = false;
    int status = 1;
  } cases[] = {
      {.name = "an allocation that fails",
       .call = "--area 0:3FFFFFFF clear",
       .options = {.addressSpace = 256 << 20, .meminfo = {}}},
      {.name = "memory and swap for the area and a save",
       .call = "--area 0:7FFFF clear",
       .options = {.meminfo = "MemAvailable: 20480 kB\nSwapFree: 20480 kB\n"},
       .status = 0},
      {.name = "no room for a save's block beside the area",
       .call = "--area 0:7FFFF clear",
       .options = {.meminfo = "MemAvailable: 20480 kB\n"}},
      {.name = "no room left in the group for the writer's block",
       .call = "--area 0:EFFFFFF save c.hex --format hex",
       .group = true},
      {.name = "another process of the group holds memory",
       .call = "--area 0:C7FFFFF sum 0:0",
       .held = 100 * kMiB,
       .group = true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.options.addressSpace != 0 && test::kSanitized)
      continue;  // the sanitizer needs more address space than that
    if (c.options.addressSpace != 0 && test::SkipOnWindows("Wine shows the process no job's memory limit"))
      continue;
    std::optional<test::MemoryGroup> group;
    test::RunOptions options = c.options;
    if (c.group) {
      group.emplace(256 * kMiB);
      if (test::SkipCase(group->path.empty(), group->why.c_str())) continue;
      ASSERT_TRUE(c.held == 0 || group->Hold(c.held));
      options.group = group->path;
    }
    TempDir dir;
    const auto r = RunCli(Words(c.call), dir.path(), options);
    if (test::SkipCase(r.status == test::kNoMeminfo, "no mount namespace to show another /proc/meminfo"))
      continue;
    EXPECT_EQ(r.status, c.status) << r.err;
    EXPECT_EQ(r.err, c.status == 0 ? "" : "kestrum-cli: Out of Memory\n");
    EXPECT_EQ(Entries(dir.path()), 0) << "a working file stayed";
  }
}

// Failures injected into the program's calls to the system: a read of the
// memory figures falls back, a save whose rights or flush fail fails and
// keeps the old file; a save flushes its file before the rename and the
// folder after it.
TEST(Cli, SystemFaultsEndInOrderWithTheOldFileKept) {
  if (test::kWindows) GTEST_SKIP() << "strace injects faults into Linux programs only";
  if (RunProgram({"/usr/bin/strace", "-o", "/dev/null", KESTRUM_CLI, "--version"}).status != 0)
    GTEST_SKIP() << "strace is not installed or may not trace here";
  const std::string saved = ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n";
  const struct {
    const char* name;
    std::string strace;  // its options
    int status = 0;
    const char* err = "";
    bool traced = false;  // the order of flushes and rename in the trace
  } cases[] = {
      {.name = "/proc/meminfo unreadable", .strace = "-P /proc/meminfo -e inject=read:error=EIO"},
      {.name = "the old file's rights refused",
       .strace = "-e inject=fchmod:error=EPERM",
       .status = 1,
       .err = "kestrum-cli: Can't create old.hex: Operation not permitted\n"},
      {.name = "a flush that fails",
       .strace = "-e inject=fsync:error=EIO",
       .status = 1,
       .err = "kestrum-cli: Can't write old.hex: Input/output error\n"},
      {.name = "the order of flushes and rename", .strace = "-e trace=fsync,rename", .traced = true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    WriteFile(dir / "old.hex", "old");
    auto argv = Words("/usr/bin/strace -f -o trace " + c.strace);
    argv.insert(argv.end(), {KESTRUM_CLI, "--area", "0:F", "save", "old.hex", "--format", "hex"});
    const auto r = RunProgram(argv, dir.path());
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(ReadFile(dir / "old.hex"), c.status == 0 ? saved : "old");
    EXPECT_EQ(Entries(dir.path()), 2) << "a working file stayed";
    if (!c.traced) continue;
    const std::regex order(
        R"(fsync\(\d+\) += 0\n.*rename\("\./\.old\.hex\.kestrum-[0-9a-f]{6}\.tmp", "old\.hex"\) += 0\n)"
        R"(.*fsync\(\d+\) += 0\n)");
    EXPECT_TRUE(std::regex_search(
        std::regex_replace(ReadFile(dir / "trace"), std::regex(R"(^\d+ +)", std::regex::multiline), ""),
        order))
        << ReadFile(dir / "trace");
  }
}

// An interrupted save: the signals a user sends remove the working file,
// named after its target, and end with 128 + the signal; a kill that can't
// be caught leaves it with no more rights than the file it replaces.
#ifdef _WIN32
TEST(Cli, InterruptedSavesRemoveTheirWorkingFile) {
  GTEST_SKIP() << "Windows sends no signals to another process; Ctrl+C comes through the console only";
}
#else
TEST(Cli, InterruptedSavesRemoveTheirWorkingFile) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
    SCOPED_TRACE(strsignal(signal));
    TempDir dir;
    WriteFile(dir / "s.hex", "old");
    fs::permissions(dir / "s.hex", fs::perms::owner_read | fs::perms::owner_write);
    const pid_t pid = fork();
    if (pid == 0) {
      if (chdir(dir.path().c_str()) != 0 || !freopen("/dev/null", "w", stderr)) _exit(126);
      execl(KESTRUM_CLI, KESTRUM_CLI, "--area", "0:7FFFFFF", "save", "s.hex", "--format", "hex", nullptr);
      _exit(127);
    }
    fs::path working;
    for (int wait = 0; wait < 20000 && working.empty(); ++wait, usleep(500))
      for (const auto& e : fs::directory_iterator(dir.path()))
        if (std::regex_match(e.path().filename().string(),
                             std::regex(R"(\.s\.hex\.kestrum-[0-9a-f]{6}\.tmp)")))
          working = e.path();
    kill(pid, signal);
    int status = 0;
    waitpid(pid, &status, 0);
    ASSERT_FALSE(working.empty()) << "no working file named after s.hex appeared";
    if (signal == SIGKILL) {
      EXPECT_TRUE(WIFSIGNALED(status)) << status;
    } else {
      EXPECT_TRUE(WIFEXITED(status)) << status;
      EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
    }
    EXPECT_EQ(ReadFile(dir / "s.hex"), "old");
    EXPECT_EQ(fs::exists(working), signal == SIGKILL);
    if (signal == SIGKILL) {
      EXPECT_EQ(fs::status(working).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    }
  }
}
#endif

// The user nobody runs a copy of the program when the build lies in a
// folder that only its owner enters (a checkout in /root).
TEST(Cli, RunsUnprivilegedFromAFolderOnlyItsOwnerEnters) {
  TempDir dir;
  fs::copy_file(KESTRUM_CLI, dir / "kestrum-cli");
  const auto r =
      RunProgram({(dir / "kestrum-cli").string(), "--version"}, {}, {.unprivileged = true, .meminfo = {}});
  EXPECT_EQ(r.status, 0);
}

TEST(Cli, TheLargestAreaWhereMemoryAllows) {
  if (test::kWindows) GTEST_SKIP() << "Wine tells no peak memory, and filling 2 GiB through it takes long";
  const auto available = sys::AvailableMemory();
  if (!available || *available < (std::uint64_t{3} << 30)) GTEST_SKIP() << "less than 3 GiB of memory free";
  const auto r =
      RunCli({"--area", "0:7FFFFFFE", "fill", "7FFFFFF0:7FFFFFFD", "5A", "sum", "7FFFFFF0:7FFFFFFE"});
  ASSERT_EQ(r.status, 0) << r.err;
  // 14 bytes of 5A and the top byte FF: 7 words 5A5A and the word FF00.
  EXPECT_EQ(r.out, "8-8bit=EB 8-16bit=05EB 16-16bit=7776\n");
  EXPECT_GE(r.peakKiB, 2L << 20) << "every page of the image was filled";
  if (!test::kSanitized) {
    EXPECT_LE(r.peakKiB, (2L << 20) + (16L << 10));
  }
}

}  // namespace
}  // namespace kestrum
