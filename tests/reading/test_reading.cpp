// Reading object files: lines cut at any block size, the format decision,
// the HEX, S and BIN readers row by row, files that peer tools wrote, loaded
// from disk, and the Load button: its tests of the fields in order, the offset
// it takes, and what a load leaves in the image, the dump, the fields and the store.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <random>

#include "TestSupport.h"
#include "image/Paths.h"
#include "image/Settings.h"
#include "reading/LineReader.h"
#include "reading/LoadDialog.h"
#include "reading/LoadObjectFile.h"

namespace kestrum::test {
namespace {

constexpr Address kLast = 0x3FFFF;  // the image spans 00000000..0003FFFF

// 600 bytes beginning with first, whose first line end (CR or LF) is the
// byte number lineEnd, counted from 1.
std::string Head(char first, std::size_t lineEnd, char end = '\r') {
  std::string head = first + std::string(599, '0');
  head[lineEnd - 1] = end;
  return head;
}

// A name without an extension that decides leaves it to the head; in
// tolerant mode blank lines in front are passed over, and a HEX or S
// extension gives way to the other format's plain start.
TEST(DecideFormat, FirstByteAndALineEndWithinTheProbe) {
  const auto W = ReadingMode::Window, T = ReadingMode::Tolerant;
  const auto E = FormatBasis::Extension, C = FormatBasis::Content;
  const struct {
    const char* extension;
    std::string head;
    ReadingMode mode;
    ObjectFormat format;
    FormatBasis basis;
  } cases[] = {
      {"DAT", Head(':', 523), W, ObjectFormat::HEX, C},
      {"DAT", Head(':', 524), W, ObjectFormat::BIN, C},
      {"DAT", Head(':', 523, '\n'), W, ObjectFormat::HEX, C},
      {"DAT", Head('S', 514), W, ObjectFormat::S, C},
      {"DAT", Head('S', 515), W, ObjectFormat::BIN, C},
      {"DAT", "s9030000FC\r\n", T, ObjectFormat::BIN, C},  // the raw byte counts
      {"DAT", "\r\n \t\n" + Head('S', 514), W, ObjectFormat::BIN, C},
      {"DAT", "\r\n \t\n" + Head('S', 514), T, ObjectFormat::S, C},
      {"HEX", "S1", W, ObjectFormat::HEX, E},
      {"hex", "\nS1", T, ObjectFormat::S, FormatBasis::ContentOverExtension},
      {"HEX", "SX", T, ObjectFormat::HEX, E},  // no plain start of an S record
      {"S", ":", T, ObjectFormat::HEX, FormatBasis::ContentOverExtension},
      {"BIN", ":0", T, ObjectFormat::BIN, E},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.extension + (" " + c.head.substr(0, 12)));
    const FormatDecision decision = DecideFormat(c.extension, c.head, c.mode);
    EXPECT_EQ(decision.format, c.format);
    EXPECT_EQ(decision.basis, c.basis);
  }
}

struct LoadCase {
  const char *name, *what;  // name: the bare file name, whose extension counts
  std::string file;
  std::vector<std::pair<Address, std::vector<std::uint8_t>>>
      stored;                // every byte the load changes, by address
  const char* message = "";  // the one message box, or none
  std::uint64_t line = 0;    // the failing record's line
  Address first = 0, last = kLast, offset = 0;
};

LoadOptions ReadIn(ReadingMode mode) {
  LoadOptions options;
  options.mode = mode;
  return options;
}

std::string Lines(std::initializer_list<std::string> lines, const char* end = "\r\n") {
  std::string text;
  for (const auto& l : lines) text += l + end;
  return text;
}

// Records of 01 02 03 04 at 1000, the same with a bad checksum, and 05 06 07 08 at 1010.
const std::string kHex = ":0410000001020304E2", kHexBad = ":0410000001020304E3",
                  kHexNext = ":0410100005060708C2";
const std::string kS = "S107100001020304DE", kSBad = "S107100001020304DF", kSNext = "S107101005060708BE";

TEST(LoadObjectBytes, EachFormatsRecordsRangesAndOffsets) {
  const std::vector<std::uint8_t> b1234 = {1, 2, 3, 4}, b5678 = {5, 6, 7, 8};
  std::vector<std::uint8_t> all(256);
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint8_t>(i);
  const std::string bin(all.begin(), all.end()), hex = Lines({kHex});
  const char *H = "T.HEX", *S = "T.S", *B = "T.BIN";
  const LoadCase cases[] = {
      {"PROG.bin", "a colon in a BIN file", hex, {{0, std::vector<std::uint8_t>(hex.begin(), hex.end())}}},
      {"PROG.Hex", "the name decides", Lines({kS}), {}, "Format Error", 1},
      {"PROG.S.HEX", "the first dot begins the extension; content decides", Lines({kS}), {{0x1000, b1234}}},
      {H, "empty", "", {}},  // any format

      {H, "clipped to its last byte", hex, {{0x1003, {4}}}, "", 0, 0x1003},
      {H, "clipped to its first byte", hex, {{0x1000, {1}}}, "", 0, 0, 0x1000},
      {H, "offset below zero drops", hex, {{0, {3, 4}}}, "", 0, 0, kLast, -0x1002},
      {H, "passed over: checksum untested", Lines({kHexBad}), {}, "", 0, 0, 0xFFF},
      {H,
       "clipped: stores, sums all, stops",
       Lines({kHexBad, kHexNext}),
       {{0x1002, {3, 4}}},
       "SUM Error",
       1,
       0x1002},
      {H, "segment base", Lines({":020000021000EC", kHex}), {{0x11000, b1234}}},
      {H,
       "linear base FFFF",
       Lines({":02000004FFFFFC", kHex}),
       {{0x1000, b1234}},
       "",
       0,
       0,
       kLast,
       -Address{0xFFFF0000}},
      {H, "bad base checksum", Lines({kHex, ":020000021000ED", kHexNext}), {{0x1000, b1234}}, "SUM Error", 2},
      {H, "base record of count 0", Lines({":00000004FC"}), {}, "Format Error", 1},
      {H,
       "any start mark; a-f",
       Lines({" 0410000001020304e2", "x04100000010a0b0cca"}),
       {{0x1000, {1, 0xA, 0xB, 0xC}}}},
      {H, "empty line", Lines({kHex, "", kHexNext}), {{0x1000, b1234}}, "Format Error", 2},
      {H,
       "end and other types: sum unread",
       Lines({":00000001FF", ":0100000600FF", kHex}),
       {{0x1000, b1234}}},
      {H, "other type, wrong length", Lines({":0100000600"}), {}, "Format Error", 1},
      {H, "count 0 in range, checksum tested", Lines({":00100000F0", ":00100000F1"}), {}, "SUM Error", 2},
      {H, "record past FFFF does not wrap", Lines({":04FFFE0001020304F5"}), {{0xFFFE, b1234}}},
      {H,
       "bad digit: earlier bytes stay",
       Lines({":04100000010203G4E2"}),
       {{0x1000, {1, 2, 3}}},
       "Format Error",
       1},

      {S, "S2 and S1", Lines({"S20801200001020304CC", kSNext}), {{0x12000, b1234}, {0x1010, b5678}}},
      {".S", "only an extension; s3 in lower case", Lines({"s3090001200001020304cb"}), {{0x12000, b1234}}},
      {S,
       "S3 at the top",
       Lines({"S309FFFFFFFE01020304F1"}),
       {{0xFFE, b1234}},
       "",
       0,
       0,
       kLast,
       -Address{0xFFFFF000}},
      {S, "offset does not wrap at 32 bits", Lines({"S309FFFFFFFE01020304F1"}), {}, "", 0, 0, kLast, 2},
      {S, "passed over: length still tested", Lines({kS + "0"}), {}, "Format Error", 1, 0, 0xFFF},
      {S, "bad checksum stores first", Lines({kS, kSBad, kSNext}), {{0x1000, b1234}}, "SUM Error", 2},
      {S,
       "other records unread",
       Lines({"S0", "S5zz", "S7", "S8 anything", "S9030000FF", kS}),
       {{0x1000, b1234}}},
      {S, "S6 count record", Lines({"S6030000FC"}), {}, "Format Error", 1},
      {S, "empty line", Lines({kS, "", kSNext}), {{0x1000, b1234}}, "Format Error", 2},
      {S, "lone LF: one long S0 line", Lines({"S00600004844521B", kS}, "\n"), {}},
      {S,
       "bad address digit: the group ends",
       Lines({"S10710G001020304DE"}),
       {{0x0010, b1234}},
       "Format Error",
       1},

      {B, "offset +10 leaves the first addresses", bin, {{0x2010, all}}, "", 0, 0x2000, kLast, 0x10},
      {B,
       "offset -10 drops the head",
       bin,
       {{0x2000, {all.begin() + 16, all.end()}}},
       "",
       0,
       0x2000,
       kLast,
       -0x10},
      {B, "offset -100 stores nothing", bin, {}, "", 0, 0x2000, kLast, -0x100},
      {B, "first byte above LoadLast", bin, {}, "", 0, 0x2000, 0x20FF, 0x100},
      {B,
       "offset and range both cut",
       bin,
       {{0x2000, {all.begin() + 8, all.begin() + 16}}},
       "",
       0,
       0x2000,
       0x2007,
       -8},
      {B, "end of the area", bin, {{kLast - 3, {all.begin(), all.begin() + 4}}}, "", 0, kLast - 3},
  };
  for (const LoadCase& c : cases) {
    SCOPED_TRACE(std::string(c.name) + ": " + c.what);
    Module1 m = MakeImage(0, kLast);
    std::fill_n(m.Buffer.data(), kLast + 1, 0x5A);  // a load lays its bytes over what the image held
    m.LoadOffset = c.offset;
    const LoadReport report = LoadObjectBytes(m, c.first, c.last, c.name, c.file);
    std::vector<std::uint8_t> expected(kLast + 1, 0x5A);
    for (const auto& [at, bytes] : c.stored) std::copy(bytes.begin(), bytes.end(), expected.begin() + at);
    const auto wrong =
        std::mismatch(expected.begin(), expected.end(), m.Buffer.data()).first - expected.begin();
    EXPECT_EQ(wrong, kLast + 1) << "the first wrong byte is at " << std::hex << wrong;
    EXPECT_EQ(report.outcome.words, c.message);
    EXPECT_EQ(report.outcome.line, c.line);
  }
}

// Line ends and layouts as toolchains write them: read in tolerant mode, and
// unchanged in window mode. changed counts the image bytes the load changes;
// HEX lines are the table's kHex and kHexNext unless they say otherwise.
TEST(LoadObjectBytes, LineEndsAndLayoutInBothModes) {
  struct Outcome {
    const char* message;
    std::uint64_t line;
    std::size_t changed;
  };
  const std::string sHeader = "S00600004844521B";
  const struct {
    const char *name, *what;
    std::string file;
    Outcome tolerant, window;
  } cases[] = {
      {"T.HEX", "LF", Lines({kHex, kHexNext}, "\n"), {"", 0, 8}, {"Format Error", 1, 0}},
      {"T.HEX", "CR", Lines({kHex, kHexNext}, "\r"), {"", 0, 8}, {"", 0, 8}},
      {"T.HEX", "mixed", kHex + "\r\n" + kHexNext + "\n:00000001FF\r", {"", 0, 8}, {"Format Error", 2, 4}},
      {"T.HEX", "blank first line", Lines({"", kHex}), {"", 0, 4}, {"Format Error", 1, 0}},
      {"T.HEX",
       "blank middle line, counted",
       Lines({kHex, " \t", ":0410100005060708C3"}, "\n"),
       {"SUM Error", 3, 8},
       {"Format Error", 1, 0}},
      {"T.HEX", "blank last line", Lines({kHex, ""}), {"", 0, 4}, {"Format Error", 2, 4}},
      {"T.HEX", "trailing blanks", Lines({kHex + " \t"}), {"", 0, 4}, {"Format Error", 1, 0}},
      {"T.HEX",
       "Ctrl-Z after the last line end",
       Lines({kHex}) + "\x1A\x1A",
       {"", 0, 4},
       {"Format Error", 2, 4}},
      {"T.HEX",
       "Ctrl-Z inside",
       Lines({kHex, "\x1A", kHexNext}),
       {"Format Error", 2, 4},
       {"Format Error", 2, 4}},
      {"T.HEX", "S records", Lines({kS}), {"", 0, 4}, {"Format Error", 1, 0}},
      {"T.S", "HEX records", Lines({kHex}), {"", 0, 4}, {"Format Error", 1, 0}},
      {"T.S", "LF after an S0 header", Lines({sHeader, kS}, "\n"), {"", 0, 4}, {"", 0, 0}},
      {"T.DAT", "blank lines in front", Lines({"", "", kS}), {"", 0, 4}, {"", 0, kS.size() + 6}},
  };
  for (const auto& c : cases) {
    for (const ReadingMode mode : {ReadingMode::Tolerant, ReadingMode::Window}) {
      const Outcome& want = mode == ReadingMode::Tolerant ? c.tolerant : c.window;
      SCOPED_TRACE(std::string(c.what) + (mode == ReadingMode::Tolerant ? ", tolerant" : ", window"));
      Module1 m = MakeImage(0, kLast);
      std::fill_n(m.Buffer.data(), kLast + 1, 0x5A);
      const LoadReport report = LoadObjectBytes(m, 0, kLast, c.name, c.file, ReadIn(mode));
      EXPECT_EQ(std::count_if(m.Buffer.data(), m.Buffer.data() + kLast + 1,
                              [](std::uint8_t b) { return b != 0x5A; }),
                static_cast<std::ptrdiff_t>(want.changed));
      EXPECT_EQ(report.stored, want.changed);
      EXPECT_EQ(report.outcome.words, want.message);
      EXPECT_EQ(report.outcome.line, want.line);
    }
  }
}

// Files that peer tools wrote give back the binary they were made from.
TEST(LoadObjectFile, FilesWrittenByPeerToolsGiveTheBinaryBack) {
  // The command runs in a folder holding the binary IN, of size bytes, and writes out; the load gives
  // message ("" for none) at line, and the image holds the binary at base if bytesLoaded, else is untouched.
  const char* intelhex =
      "/usr/bin/python3 -c \"import intelhex; h = intelhex.IntelHex(); "
      "h.loadbin('IN', offset=0x10000); h.write_hex_file('OUT.hex')\"";
  const struct {
    const char *command, *out, *message;
    std::size_t line, base, size;
    bool bytesLoaded;
    ReadingMode mode = ReadingMode::Window;
  } cases[] = {
      {"srec_cat IN -binary -offset 0x10000 -o OUT.hex -intel -crlf", "OUT.hex", "", 0, 0x10000, 0x30000,
       true},
      {"srec_cat IN -binary -o OUT.s -motorola -address-length=2 -crlf", "OUT.s", "", 0, 0, 0xF000, true},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=3 -crlf", "OUT.s", "", 0,
       0x10000, 0x30000, true},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=4 -crlf", "OUT.s", "", 0,
       0x10000, 0x30000, true},
      // objcopy writes extended segment records below 1 MiB.
      {"objcopy -I binary -O ihex --change-addresses 0x10000 IN OUT.hex", "OUT.hex", "", 0, 0x10000, 0x30000,
       true},
      {"objcopy -I binary -O srec --change-addresses 0x10000 IN OUT.s", "OUT.s", "", 0, 0x10000, 0x30000,
       true},
      // Past 65535 data records srec_cat counts them in an S6 record, a type the reader refuses: every
      // byte is in by then. One byte a record makes a file of several reading blocks.
      {"srec_cat IN -binary -o OUT.s -motorola -obs=1 -crlf", "OUT.s", "Format Error", 0x20002, 0, 0x20000,
       true},
      // Without -crlf srec_cat ends its lines with a lone LF, which ends no line here: a HEX file is one line
      // too long. (An S file is one line that begins with its S0 header and is passed over: the unit row.)
      {"srec_cat IN -binary -o OUT.hex -intel", "OUT.hex", "Format Error", 1, 0, 0x1000, false},
      // Read tolerantly, the files load as the tools write them, lone LFs and all.
      {"srec_cat IN -binary -o OUT.hex -intel", "OUT.hex", "", 0, 0, 0x1000, true, ReadingMode::Tolerant},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=3", "OUT.s", "", 0, 0x10000,
       0x30000, true, ReadingMode::Tolerant},
      {"objcopy -I binary -O srec IN OUT.s", "OUT.s", "", 0, 0, 0x8000, true, ReadingMode::Tolerant},
      {intelhex, "OUT.hex", "", 0, 0x10000, 0x30000, true, ReadingMode::Tolerant},
  };
  if (test::kWindows)
    GTEST_SKIP() << "srec_cat and objcopy are Linux programs: the Linux run compares with them";
  std::mt19937 random(1);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    const std::string command = c.command;
    const std::string tool = command.starts_with('/') ? command.substr(0, command.find(' '))
                                                      : "/usr/bin/" + command.substr(0, command.find(' '));
    if (!std::filesystem::exists(tool)) GTEST_SKIP() << tool << " is not installed";
    TempDir dir;
    std::string binary(c.size, '\0');
    for (auto& b : binary) b = static_cast<char>(random());
    WriteFile(dir / "IN", binary);
    const RunResult made = RunProgram({"/bin/sh", "-c", c.command}, dir.path());
    ASSERT_EQ(made.status, 0) << made.err;
    Module1 m = MakeImage(0, kLast);
    m.LoadFileName = (dir / c.out).string();
    const LoadReport report = LoadObjectFile(m, 0, kLast, c.out, ReadIn(c.mode));
    EXPECT_EQ(report.outcome.words, c.message);
    EXPECT_EQ(report.outcome.line, c.line);
    std::string expected(kLast + 1, '\xFF');
    if (c.bytesLoaded) expected.replace(c.base, c.size, binary);
    EXPECT_TRUE(std::string(reinterpret_cast<const char*>(m.Buffer.data()), expected.size()) == expected);
  }
}

// In tolerant mode an LF ends a line too, and blank lines, trailing blanks
// and a closing Ctrl-Z go.
TEST(LineReader, CrOrCrLfEndsALineAndALoneLfStays) {
  using Lines = std::vector<std::string>;
  const struct {
    std::string bytes;
    Lines window, tolerant;
  } cases[] = {
      {"", {}, {}},
      {"a\r\nb\r\n", {"a", "b"}, {"a", "b"}},
      {"\r\r\n\r", {"", "", ""}, {}},
      {"ab\r\n\nc", {"ab", "\nc"}, {"ab", "c"}},
      {"a \r\n\t\n", {"a ", "\t\n"}, {"a"}},
      {"a\n\x1A", {"a\n\x1A"}, {"a"}},
      {std::string("a\0b\r", 4), {std::string("a\0b", 3)}, {std::string("a\0b", 3)}},
  };
  // Each block size puts the line ends at other places of a block, a CR LF
  // pair split across two blocks among them; no line here is longer than 3.
  for (const auto& c : cases) {
    for (std::size_t block : {3, 4, 5, 7, 64}) {
      for (const ReadingMode mode : {ReadingMode::Window, ReadingMode::Tolerant}) {
        MemorySource source(c.bytes);
        LineReader reader(source, block, mode);
        Lines lines;
        for (Line line; reader.Next(line);) lines.emplace_back(line.text);
        EXPECT_EQ(lines, mode == ReadingMode::Window ? c.window : c.tolerant) << block << ": " << c.bytes;
      }
    }
  }
}

// Gives its bytes, then fails.
struct FailingSource : MemorySource {
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
  ASSERT_TRUE(reader.Next(line) && line.text == "one");
  EXPECT_FALSE(reader.Next(line));
}

// A dialog with the HEX file app.hex in a temporary folder picked; the image
// is the default area, the dump shows a page.
struct Dialog {
  TempDir dir;
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  MemorySettings store;
  LoadFields f;

  explicit Dialog(const std::string& file) {
    WriteFile(dir / "app.hex", file);
    f.Text1 = f.File1 = "app.hex";
    f.Dir1 = dir.path().string(), f.Drive1 = "/";
    m.frmsumtool.List1 = {"00000000  FF"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  }
  bool Load() { return frmload::Command1_Click(f, m, platform, store); }
};

TEST(LoadDialog, RefusesTheFirstBadFieldOrTakesTheSignedOffset) {
  const struct {
    const char *text1, *text4, *text3, *text2;  // text2 the offset, ticked; nullptr: unticked, 5 typed
    const char *message, *shown4;               // shown4: Text4 afterwards
    Address offset;                             // LoadOffset afterwards
  } cases[] = {
      {"", "", "", nullptr, "Select File Name!", "", 0},
      {"app.hex", "", "", nullptr, "First Address Error!", "", 0},
      {"app.hex", "100", "", nullptr, "Last Address Error!", "100", 0},
      {"app.hex", "1", "7FFFF", "", "Offset Address Error!", "1", 0},
      {"app.hex", "1", "7FFFF", "12-34", "OffsetAddress Error!", "1", 0},  // judged before the padding
      {"app.hex", "0", "7FFFF", "123456789", "OffsetAddress Error!", "0", 0},
      {"app.hex", "80000", "90000", nullptr, "First Address Error!", "00080000", 0},
      {"app.hex", "2000", "1FFF", nullptr, "Address Error!", "00002000", 0},
      {"app.hex", "0", "7FFFF", "-FFFFFFFF", "Load Complete!", "00000000", -4294967295},
      {"app.hex", "0", "7FFFF", "-", "Load Complete!", "00000000", 0},
      {"app.hex", "0", "7FFFF", nullptr, "Load Complete!", "00000000", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.message) + " " + c.text4 + ".." + c.text3 + " " +
                 (c.text2 ? c.text2 : "unticked"));
    Dialog d("");  // an empty file loads as well
    d.f.Text1 = c.text1, d.f.Text4 = c.text4, d.f.Text3 = c.text3;
    d.f.Check1 = d.f.Text2Visible = c.text2 != nullptr;
    d.f.Text2 = c.text2 ? c.text2 : "5";
    const bool loads = std::string(c.message) == "Load Complete!";
    EXPECT_EQ(d.Load(), loads);
    EXPECT_EQ(d.platform.Texts(), std::vector<std::string>{c.message});
    EXPECT_EQ(d.f.Text4, c.shown4);
    EXPECT_EQ(d.m.LoadOffset, c.offset);
    EXPECT_EQ(d.store.values.empty(), !loads);
    EXPECT_EQ(d.m.frmsumtool.List1.empty(), loads);  // a refusal does not touch the dump
  }
}

// A load names the file, stores the bytes in the range, empties the dump and
// stores the fields. After a failed load the dialog does what it does after a
// file it cannot read (the file fault tests); the bytes a bad record leaves are the load table's.
TEST(LoadDialog, AfterALoad) {
  Dialog d(Lines({kHex}));
  d.f.Text4 = "1000", d.f.Text3 = "1002";
  ASSERT_TRUE(d.Load());
  EXPECT_EQ(d.m.LoadFileName, (d.dir / "app.hex").string());
  EXPECT_EQ(std::vector<std::uint8_t>(&d.m.At(0x1001), &d.m.At(0x1004)),
            (std::vector<std::uint8_t>{2, 3, 0xFF}));
  EXPECT_EQ(d.m.frmsumtool.Text1, "app.hex");
  EXPECT_FALSE(d.m.frmsumtool.cmdeditplusEnabled || d.m.frmsumtool.cmdeditminusEnabled);
  EXPECT_TRUE(d.f.Command1Enabled && d.f.Command2Enabled && d.platform.pointer == vbDefault);
  const std::map<MemorySettings::Key, std::string> stored = {
      {{kApp, kAddress, "LoadFirst"}, "00001000"},
      {{kApp, kAddress, "LoadLast"}, "00001002"},
      {{kApp, kFilePath, "LoadDrive"}, "/"},
      {{kApp, kFilePath, "LoadDir"}, d.dir.path().string()}};
  EXPECT_EQ(d.store.values, stored);
}

// The message names the file and the reason, the dialog stays open with FileError, the pointer and the
// buttons back, nothing is stored, the dump is emptied and the image untouched.
TEST(FileFaults, LoadStopsAtAFileItCannotRead) {
  const struct {
    const char* name;
    std::string file1;
    const char* reason;
  } cases[] = {
      {"a listed file that vanished", "gone.hex", "No such file or directory"},
      {"a pick the file list lost with a change of folder, the name box keeping it", "", "Is a directory"},
      {"a pipe", "pipe.hex", "not a regular file"},
      {"a name holding a NUL character", std::string("x.hex\0.s", 8), "the name holds a NUL character"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    test::WriteFile(dir / "x.hex", ":0410000001020304E2\r\n");
    if (!test::MakeFifo(dir / "pipe.hex") && c.file1 == "pipe.hex") continue;  // no pipes among Windows files
    LoadFields f;
    f.Text1 = c.file1.empty() ? "x.hex" : c.file1, f.File1 = c.file1, f.Dir1 = dir.path().string();
    f.Text4 = "0", f.Text3 = "FFFF";
    Module1 m = test::MakeImage(0, 0xFFFF);
    m.frmsumtool.Text1 = "before.bin", m.frmsumtool.List1 = {"a row"};
    ScriptedPlatform platform;
    MemorySettings store;
    EXPECT_FALSE(frmload::Command1_Click(f, m, platform, store)) << "the dialog stays open";
    EXPECT_EQ(platform.Texts(),
              std::vector<std::string>{"Cannot read " + JoinPath(f.Dir1, f.File1) + ": " + c.reason});
    EXPECT_EQ(m.FileError, 0);
    EXPECT_EQ(platform.pointer, vbDefault);
    EXPECT_TRUE(f.Command1Enabled);
    EXPECT_TRUE(f.Command2Enabled);
    EXPECT_TRUE(store.values.empty());
    EXPECT_EQ(m.frmsumtool.Text1, "before.bin");
    EXPECT_TRUE(m.frmsumtool.List1.empty());
    EXPECT_EQ(std::count(m.Buffer.data(), m.Buffer.data() + m.BufSize, 0xFF), m.BufSize)
        << "the image untouched";
  }
}

}  // namespace
}  // namespace kestrum::test
