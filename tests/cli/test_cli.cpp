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
#include <tuple>

#include "RunCli.h"
#include "image/System.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using test::Entries, test::ReadFile, test::Row, test::RunCli, test::TempDir, test::Words, test::WriteFile;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr long kSlackKiB = 8 << 10;  // what a load may hold beyond the image and the program itself

// The peak memory of a run that loads nothing: the program and its image.
long BaselineKiB(const std::string& area) { return RunCli({"--area", area, "sum"}).peakKiB; }

TEST(Cli, CallsPrintOrStopWithStatusAndWords) {
  TempDir dir;
  WriteFile(dir / "app.hex", ":0410000001020304E2\r\n:00000001FF\r\n");
  WriteFile(dir / "image.bin", "\x11\x22\x33\x44");
  WriteFile(dir / "format.s", "S107100001020304DE\r\nS9030000FC\r\nS4030000FC\r\n");
  WriteFile(dir / "lf.s", "S00600004844521B\nS107100001020304DE\n");
  WriteFile(dir / "s.hex", "S107100001020304DE\r\n");
  WriteFile(dir / "old", "the old file");
  WriteFile(dir / "mix.hex",
            ":0410000001020304E2\r\n:0410040005060708CE\n:021002000304E5\r\n:0110070009DF\n"
            ":020000040001F9\r\n:02000000AABB99\n:040000050000C0DE59\r\n");
  WriteFile(dir / "bad.s", "S107100001020304DE\nS107101005060708BF\nS107102005060708AE\n");
  WriteFile(dir / "empty.bin", "");
  WriteFile(dir.path() / fs::path(u8"grüße.bin"), "\x11\x22");
  const std::string warning = "kestrum-cli: warning: ";
  const struct {
    std::string call;
    int status;
    std::string err;       // standard error whole after a success, else among its words
    std::string out = {};  // standard output whole
  } cases[] = {
      {"--version", 0, "", "kestrum-cli " KESTRUM_VERSION "\n"},
      {"fill 0:1 0 clear sum", 0, "", "8-8bit=00 8-16bit=0000 16-16bit=0000\n"},
      {"--area 1000:1FFF fill 1FF0:100F 0 sum", 0, "", "8-8bit=20 8-16bit=D020 16-16bit=F810\n"},
      {"fill 7FFFF:7FFFF A dump 7FFF0", 0, "", Row("0007FFF0", std::string(30, 'F') + "0A")},
      {"--area 0:F load image.bin --range 2:5 --offset +1 dump 0", 0, "", Row("00000000", "FFFFFF112233")},
      {"--area 0:F load app.hex --offset -1000 dump 0", 0, "", Row("00000000", "01020304")},
      // Files read tolerantly unless --strict; a load that stores nothing of
      // a non-empty file, and a lone LF under --strict, are warned about.
      {"load lf.s --range 1000:1003", 0, ""},
      {"--strict load app.hex", 0, ""},
      {"--strict load lf.s", 0,
       warning + "lf.s: a lone LF ends no line under --strict\n" + warning +
           "lf.s stored no byte in 00000000:0007FFFF: read as S, 1 line with 0 data records\n"},
      {"--area 0:FFF load lf.s", 0,
       warning + "lf.s stored no byte in 00000000:00000FFF: read as S, 2 lines with 1 data record, " +
           "no byte of them inside the range at offset 0\n"},
      {"load image.bin --offset +80000", 0,
       warning + "image.bin stored no byte in 00000000:0007FFFF: read as BIN, 4 bytes, " +
           "all outside the range at offset +80000\n"},
      {"--verbose load s.hex", 0,
       "load: s.hex as S by content, not by its extension into 00000000:0007FFFF, 4 bytes stored\n"},
      {"--area 0:F load grüße.bin save tschüß.hex --format hex --range 0:1", 0, ""},  // UTF-8 names
      // info reads files without touching the image: the format and how it
      // was decided, line ends, records by type, data spans merged, start
      // addresses and addresses written twice; a bad record ends its report.
      {"info mix.hex bad.s empty.bin sum", 1, "bad.s:2: SUM Error\n",
       "mix.hex: HEX by extension\n  line ends: mixed: 4 CR LF, 3 LF\n"
       "  records: 5 of type 00, 1 of type 04, 1 of type 05\n"
       "  data 00001000:00001007 8 bytes\n  data 00010000:00010001 2 bytes\n  start 05 0000C0DE\n"
       "  twice 00001002:00001003 same bytes\n  twice 00001007:00001007 other bytes\n"
       "bad.s: S by extension\n  line ends: LF\n  records: 2 of type S1\n"
       "  data 00001000:00001003 4 bytes\n  data 00001010:00001013 4 bytes\n"
       "empty.bin: empty\n"},
      {"--strict info lf.s", 0, "", "lf.s: S by extension\n  line ends: LF\n  records: 1 of type S0\n"},
      // Usage errors, found before any step runs.
      {"", 2, "kestrum-cli: no step given\n"},
      {"sum 0:0 bogus", 2, "unknown step 'bogus'"},
      {"--colour", 2, "unknown option '--colour'"},
      {"--area", 2, "--area needs FIRST:LAST"},
      {"--area 0:7XFFF clear", 2, "--area: '0:7XFFF' is no range of hexadecimal addresses"},
      {"clear --range 0:1", 2, "clear has no option '--range'"},
      {"sum save old", 2, "save needs --format bin|hex|s"},
      // Values the dialog would refuse: its words, and no later step runs.
      {"--area 100:FF clear", 2, "kestrum-cli: Address Error\n"},
      {"--area 0:FFFFFFFF clear", 1, "kestrum-cli: Out of Memory\n"},
      {"fill 80000:80001 0 sum", 2, "kestrum-cli: Address Error\n"},
      {"fill 0:1 100 sum", 2, "kestrum-cli: Data Error!\n"},
      {"fill 0 1 sum", 2, "kestrum-cli: '0' is no range FIRST:LAST\n"},
      {"sum 0:0 sum 1:0 sum 0:0", 2, "Address Error!\n", "8-8bit=FF 8-16bit=00FF 16-16bit=FF00\n"},
      {"dump 80000 sum", 2, "kestrum-cli: Dump Address Error!\n"},
      {"dump 12G sum", 2, "kestrum-cli: Dump Address Error!\n"},
      {"load app.hex --range 0:80000 sum", 2, "kestrum-cli: Last Address Error!\n"},
      {"load app.hex --offset x1 sum", 2, "kestrum-cli: --offset: 'x1' is no offset [+|-]HEX\n"},
      {"save old --format hex --range 90000:80000 sum", 2, "Address Error!\n"},
      {"save old --format s --range 0:80000 --record-length 0", 2, "RecordLength Error!\n"},
      {"save old --format bin --range 80000:90000 sum", 2, "FirstAddress Error!\n"},
      {"save old --format bin --range 0:80000 sum", 2, "LastAddress Error!\n"},
      {"save old --format elf sum", 2, "Format Error!\n"},
      {"save old --format s --range 0:1FF --record-length FD", 2, "Record Length Error!\n"},
      {"ysm old --sum 32 sum", 2, "YSM File Format Error!\n"},
      {"ysm old --sum 8-8 --range 0-1 sum", 2, "--range: '0-1' is no range FIRST:LAST\n"},
      // Check values refused before anything is stored.
      {"crc 0:8 --store 7FFFE --order be sum", 2, "7FFFE..00080001 lies outside the area 00000000..0007FFFF"},
      {"crc 0:8 --store 6 --order le sum", 2,
       "06..00000009 lies inside the range it checks, 00000000..00000008"},
      {"sum 0:8 --store 8 --kind 8-8 --order be sum", 2, "08..00000008 lies inside the range it checks"},
      {"crc 0:8 --store 10 sum", 2, "--store needs --order be|le"},
      {"crc 0:8 --order be sum", 2, "--order goes with --store"},
      {"sum 0:8 --store 10 --order be sum", 2, "--store needs --kind 8-8|8-16|16-16"},
      {"sum 0:8 --complement twos sum", 2, "--complement goes with --store"},
      {"sum 0:8 --store 10 --kind 8-8 --order be --complement two sum", 2, "'two'"},
      {"crc 0:80000 sum", 2, "kestrum-cli: Last Address Error!\n"},
      {"crc 0:8 --model CRC-99 sum", 2, "unknown CRC model 'CRC-99'"},
      {"crc 0:8 --model custom:10,1FFFF,0,false,false,0 sum", 2, "POLY 1FFFF does not fit in 16 bits"},
      {"crc 0:8 --model custom:8,7,100,false,false,0 sum", 2, "INIT 100 does not fit in 8 bits"},
      {"crc 0:8 --model custom:41,7,0,false,false,0 sum", 2, "WIDTH 41 is not 1 to 40"},
      {"crc 0:8 --model custom:8,7,0,yes,false,0 sum", 2, "REFIN 'yes' is no true or false"},
      {"crc 0:8 --model custom:8,7,0 sum", 2, "a custom model is custom:WIDTH,POLY,INIT,REFIN"},
      // Record and file failures.
      {"load format.s sum", 1, "format.s:3: Format Error\n"},
      {"load missing.hex sum", 1, "kestrum-cli: Cannot read missing.hex: No such file or directory\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call);
    const auto r = RunCli(Words(c.call), dir.path());
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    if (c.status == 0) {
      EXPECT_EQ(r.err, c.err);
    } else {
      EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
    }
  }
  EXPECT_EQ(ReadFile(dir / "old"), "the old file");
  EXPECT_EQ(ReadFile(dir.path() / fs::path(u8"tschüß.hex")),
            ":100000001122FFFFFFFFFFFFFFFFFFFFFFFFFFFFCB\r\n:00000001FF\r\n");
  EXPECT_EQ(Entries(dir.path()), 11) << "a refused step left a file";
  // The help of a step, and of the whole call with the whole grammar.
  for (const auto& [call, usage] : {std::pair{"load --help", "Usage: kestrum-cli load FILE"},
                                    std::pair{"--help", "Usage: kestrum-cli [--area FIRST:LAST]"}}) {
    const auto r = RunCli(Words(call));
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "");
    EXPECT_TRUE(r.out.starts_with(usage)) << r.out;
  }
  const std::string grammar = RunCli({"--help"}).out;
  for (const char* step : {"  load FILE", "  info FILE [FILE ...]", "  --strict", "  fill FIRST:LAST BYTE",
                           "  clear", "  sum", "  crc FIRST:LAST", "  dump ADDRESS", "  save FILE --format",
                           "  ysm FILE --sum", "  --area FIRST:LAST", "STEP --help"})
    EXPECT_NE(grammar.find(step), std::string::npos) << step;
}

// Each written over a longer file, which must go whole; no range means the
// area, no record length 10.
TEST(Cli, SaveAndYsmWriteTheWindowWritersBytes) {
  const struct {
    const char* area;
    std::string format;  // or sum
    Address first, last;
    std::int16_t length = 0;  // the record length
    bool range = true;
  } cases[] = {
      {"3FFFF", "bin", 0x8, 0x10010, 0x10},        {"3FFFF", "hex", 0xFFF1, 0x2000A, 0x0B},
      {"1000F", "hex", 0x0, 0x1000F, 0x10, false}, {"3FFFF", "s", 0xFF00, 0x10101, 0x20},
      {"3FFFF", "16-16", 0x0, 0x3FFFF, 0, false},
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
    std::tie(m.SaveFirst, m.SaveLast, m.RecordLength) = std::tuple(c.first, c.last, c.length);
    const std::string window = (dir / "window").string();
    EXPECT_TRUE((ysm ? SaveYsmFile(m, window, *FromName<SumKind>(c.format + "SUM"))
                     : SaveObjectFile(m, *FromName<ObjectFormat>(c.format), window))
                    .IsDone());
    EXPECT_EQ(ReadFile(dir / "cli"), ReadFile(dir / "window")) << "the command line wrote other bytes";
  }
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
    std::string file, bytes;  // loaded, unless no file: then a save into a read-only folder
    int status;
    std::string out, err;
    bool strict = false;  // the call starts with --strict
  } cases[] = {
      {"", "", 1, "", "kestrum-cli: Can't create a.s: Permission denied\n"},
      {"zeros.dat", nuls, 0, "8-8bit=00 8-16bit=0000 16-16bit=0000\n", ""},     // decided by content
      {"long.s", longHeader, 0, "8-8bit=13 8-16bit=FF13 16-16bit=9300\n", ""},  // passed over
      {"long.hex", longRecord, 1, "", "long.hex:2: Format Error\n"},
      // A line of megabytes ended by lone LFs.
      {"lf.hex", lfs, 1, "",
       "kestrum-cli: warning: lf.hex: a lone LF ends no line under --strict\nlf.hex:1: Format Error\n", true},
      {"outside.hex", outside, 0, "8-8bit=00 8-16bit=0000 16-16bit=8000\n", unstored},
  };
  // Wine's working-set figures are no resident memory.
  const bool measured = !test::kSanitized && !test::kWindows;
  const long baseline = measured ? BaselineKiB("0:FFFF") : 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    const bool readOnly = c.file.empty();
    if (readOnly && test::SkipOnWindows("a read-only folder takes new files on Windows")) continue;
    TempDir dir;
    if (!readOnly) WriteFile(dir / c.file, c.bytes);
    fs::permissions(dir.path(), static_cast<fs::perms>(readOnly ? 0555 : 0700));
    const std::string step = readOnly ? "save a.s --format s" : "load " + c.file + " sum";
    const auto r = RunCli(
        Words((c.strict ? "--strict --area 0:FFFF " : "--area 0:FFFF ") + step + " save after --format bin"),
        dir.path(), {.unprivileged = readOnly});
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
    fs::permissions(dir.path(), fs::perms::owner_all, fs::perm_options::add);
    // The file loaded, and the later step's file only after a success: no working file.
    EXPECT_EQ(Entries(dir.path()), !readOnly + (c.status == 0));
    if (!measured) continue;
    EXPECT_LE(r.peakKiB, baseline + kSlackKiB);
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
  const std::string room = "MemAvailable: 20480 kB\n", swap = "SwapFree: 20480 kB\n";
  const struct {
    const char* name;
    std::string call;
    int status;
    test::RunOptions options;  // the group's path is filled in below
    bool group = false;        // in a group of 256 MiB
    std::uint64_t held = 0;    // what another process of the group holds
  } cases[] = {
      {"an allocation that fails", "--area 0:3FFFFFFF clear", 1, {.addressSpace = 256 << 20}},
      {"memory and swap for a save's block", "--area 0:7FFFF clear", 0, {.meminfo = room + swap}},
      {"no room for a save's block beside the area", "--area 0:7FFFF clear", 1, {.meminfo = room}},
      {"no room in the group for a save's block", "--area 0:EFFFFFF save c.hex --format hex", 1, {}, true},
      {"another process holds the group's memory", "--area 0:C7FFFFF sum 0:0", 1, {}, true, 100 * kMiB},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.options.addressSpace != 0 &&
        test::SkipCase(test::kSanitized || test::kWindows,
                       "the sanitizers need more address space, and Windows has no such limit"))
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
  if (test::RunProgram({"/usr/bin/strace", "-o", "/dev/null", KESTRUM_CLI, "--version"}).status != 0)
    GTEST_SKIP() << "strace is not installed or may not trace here";
  const std::string saved = ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n";
  const struct {
    const char* name;
    std::string strace;  // its options
    int status;
    std::string err;
    bool traced = false;  // the order of flushes and rename in the trace
  } cases[] = {
      {"/proc/meminfo unreadable", "-P /proc/meminfo -e inject=read:error=EIO", 0, ""},
      {"the old file's rights refused", "-e inject=fchmod:error=EPERM", 1,
       "kestrum-cli: Can't create old.hex: Operation not permitted\n"},
      {"a flush that fails", "-e inject=fsync:error=EIO", 1,
       "kestrum-cli: Can't write old.hex: Input/output error\n"},
      {"the order of flushes and rename", "-e trace=fsync,rename", 0, "", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    WriteFile(dir / "old.hex", "old");
    auto argv = Words("/usr/bin/strace -f -o trace " + c.strace);
    argv.insert(argv.end(), {KESTRUM_CLI, "--area", "0:F", "save", "old.hex", "--format", "hex"});
    const auto r = test::RunProgram(argv, dir.path());
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(ReadFile(dir / "old.hex"), c.status == 0 ? saved : "old");
    EXPECT_EQ(Entries(dir.path()), 2) << "a working file stayed";
    if (!c.traced) continue;
    const std::regex order(
        R"(fsync\(\d+\) += 0\n.*rename\("\./\.old\.hex\.kestrum-[0-9a-f]{6}\.tmp", "old\.hex"\) += 0\n)"
        R"(.*fsync\(\d+\) += 0\n)");
    const auto trace =
        std::regex_replace(ReadFile(dir / "trace"), std::regex(R"(^\d+ +)", std::regex::multiline), "");
    EXPECT_TRUE(std::regex_search(trace, order)) << trace;
  }
}

// An interrupted save: the signals a user sends remove the working file,
// named after its target, and end with 128 + the signal; a kill that can't
// be caught leaves it with no more rights than the file it replaces. Windows sends no signals to another
// process; Ctrl+C comes through the console only.
#ifndef _WIN32
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
    EXPECT_EQ(WIFSIGNALED(status), signal == SIGKILL) << status;
    EXPECT_EQ(WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), 128 + signal);
    EXPECT_EQ(ReadFile(dir / "s.hex"), "old");
    EXPECT_EQ(fs::exists(working), signal == SIGKILL);
    EXPECT_EQ(fs::status(working).permissions(),
              signal == SIGKILL ? fs::perms::owner_read | fs::perms::owner_write : fs::perms::unknown);
  }
}
#endif

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
  if (test::kSanitized) return;
  EXPECT_LE(r.peakKiB, (2L << 20) + (16L << 10));
}

}  // namespace
}  // namespace kestrum
