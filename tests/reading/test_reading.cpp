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
constexpr ReadingMode W = ReadingMode::Window, T = ReadingMode::Tolerant;
constexpr const char *kFmt = "Format Error", *kSum = "SUM Error", *kDone = "Load Complete!";

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

std::string Lines(std::initializer_list<std::string> lines, const char* end = "\r\n") {
  std::string text;
  for (const auto& l : lines) text += l + end;
  return text;
}

// Records of 01 02 03 04 at 1000 and of 05 06 07 08 at 1004, each also with a bad checksum.
const std::string kHex = ":0410000001020304E2", kHexBad = ":0410000001020304E3",
                  kHexNext = ":0410040005060708CE", kHexNextBad = ":0410040005060708CF";
const std::string kS = "S107100001020304DE", kSNext = "S107100405060708CA", kSNextBad = "S107100405060708CB";

TEST(LoadObjectBytes, EachFormatsRecordsRangesAndOffsets) {
  const std::string bin("\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16\17", 16);  // all: its bytes in hex digits
  const std::string all = "000102030405060708090A0B0C0D0E0F";
  const std::string hex = Lines({kHex}), s = Lines({kS}), b1234 = "01020304", b1to8 = "0102030405060708";
  const char *H = "T.HEX", *S = "T.S", *B = "T.BIN";
  const struct {
    const char *name, *what;  // name: the bare file name, whose extension counts
    std::string file;
    Address at = 0;            // where the bytes the load changes begin
    std::string stored = "";   // those bytes, in hex digits
    const char* message = "";  // the one message box, or none
    std::uint64_t line = 0;    // the failing record's line
    ReadingMode mode = W;
    Address first = 0, last = kLast, offset = 0;
  } cases[] = {
      {"PROG.bin", "a colon in a BIN file", ":0\r\n", 0, "3A300D0A"},
      {"PROG.Hex", "the name decides", s, 0, "", kFmt, 1},
      {"PROG.S.HEX", "the first dot begins the extension; content decides", s, 0x1000, b1234},
      {H, "empty", ""},  // any format

      {H, "clipped to its last byte", hex, 0x1003, "04", "", 0, W, 0x1003},
      {H, "clipped to its first byte", hex, 0x1000, "01", "", 0, W, 0, 0x1000},
      {H, "offset below zero drops", hex, 0, "0304", "", 0, W, 0, kLast, -0x1002},
      {H, "passed over: checksum untested", Lines({kHexBad}), 0, "", "", 0, W, 0, 0xFFF},
      {H, "clipped: stores, sums all, stops", Lines({kHexBad, kHexNext}), 0x1002, "0304", kSum, 1, W, 0x1002},
      {H, "segment base", Lines({":020000021000EC", kHex}), 0x11000, b1234},
      {H, "linear base", Lines({":02000004FFFFFC", kHex}), 0x1000, b1234, "", 0, W, 0, kLast, -0xFFFF0000LL},
      {H, "bad base checksum", Lines({kHex, ":020000021000ED", kHexNext}), 0x1000, b1234, kSum, 2},
      {H, "base record of count 0", Lines({":00000004FC"}), 0, "", kFmt, 1},
      {H, "any start mark; a-f", Lines({" 04100000010a0b0cca"}), 0x1000, "010A0B0C"},
      {H, "empty line", Lines({kHex, "", kHexNext}), 0x1000, b1234, kFmt, 2},
      {H, "end and other types: sum unread", Lines({":00000001FF", ":0100000600FF", kHex}), 0x1000, b1234},
      {H, "other type, wrong length", Lines({":0100000600"}), 0, "", kFmt, 1},
      {H, "count 0 in range, checksum tested", Lines({":00100000F0", ":00100000F1"}), 0, "", kSum, 2},
      {H, "record past FFFF does not wrap", Lines({":04FFFE0001020304F5"}), 0xFFFE, b1234},
      {H, "bad digit: earlier bytes stay", Lines({":04100000010203G4E2"}), 0x1000, "010203", kFmt, 1},
      {H, "LF, tolerant", Lines({kHex, kHexNext}, "\n"), 0x1000, b1to8, "", 0, T},
      {H, "LF ends no line", Lines({kHex, kHexNext}, "\n"), 0, "", kFmt, 1},
      {H, "a blank line counts", Lines({kHex, " \t", kHexNextBad}, "\n"), 0x1000, b1to8, kSum, 3, T},
      {H, "trailing blanks, tolerant", Lines({kHex + " \t"}), 0x1000, b1234, "", 0, T},
      {H, "trailing blanks", Lines({kHex + " \t"}), 0, "", kFmt, 1},
      {H, "Ctrl-Z inside, tolerant", Lines({kHex, "\x1A", kHexNext}), 0x1000, b1234, kFmt, 2, T},
      {"T.DAT", "blank lines in front, tolerant", Lines({"", "", kS}), 0x1000, b1234, "", 0, T},

      {S, "S2", Lines({"S20801200001020304CC"}), 0x12000, b1234},
      {".S", "only an extension; s3 in lower case", Lines({"s3090001200001020304cb"}), 0x12000, b1234},
      {S, "S3 at the top", Lines({"S309FFFFFFFE01020304F1"}), 0xFFE, b1234, "", 0, W, 0, kLast,
       -0xFFFFF000LL},
      {S, "offset does not wrap at 32 bits", Lines({"S309FFFFFFFE01020304F1"}), 0, "", "", 0, W, 0, kLast, 2},
      {S, "passed over: length still tested", Lines({kS + "0"}), 0, "", kFmt, 1, W, 0, 0xFFF},
      {S, "bad checksum stores first", Lines({kS, kSNextBad, kSNext}), 0x1000, b1to8, kSum, 2},
      {S, "other records unread", Lines({"S0", "S5zz", "S7", "S8x", "S9030000FF", kS}), 0x1000, b1234},
      {S, "empty line", Lines({kS, "", kSNext}), 0x1000, b1234, kFmt, 2},
      {S, "lone LF: one long S0 line", Lines({"S00600004844521B", kS}, "\n")},
      {S, "bad address digit: the group ends", Lines({"S10710G001020304DE"}), 0x10, b1234, kFmt, 1},

      {B, "offset +4 leaves the first addresses", bin, 0x2004, all, "", 0, W, 0x2000, kLast, 4},
      {B, "offset -4 drops the head", bin, 0x2000, all.substr(8), "", 0, W, 0x2000, kLast, -4},
      {B, "offset -10 stores nothing", bin, 0, "", "", 0, W, 0x2000, kLast, -0x10},
      {B, "first byte above LoadLast", bin, 0, "", "", 0, W, 0x2000, 0x200F, 0x10},
      {B, "offset and range both cut", bin, 0x2000, all.substr(16, 8), "", 0, W, 0x2000, 0x2003, -8},
      {B, "end of the area", bin, kLast - 3, all.substr(0, 8), "", 0, W, kLast - 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.name) + ": " + c.what);
    Module1 m = MakeImage(0, kLast);
    std::fill_n(m.Buffer.data(), kLast + 1, 0x5A);  // a load lays its bytes over what the image held
    m.LoadOffset = c.offset;
    const LoadReport report = LoadObjectBytes(m, c.first, c.last, c.name, c.file, {.mode = c.mode});
    std::vector<std::uint8_t> expected(kLast + 1, 0x5A);
    for (std::size_t i = 0; i < c.stored.size(); i += 2)
      expected[c.at + i / 2] = static_cast<std::uint8_t>(std::stoi(c.stored.substr(i, 2), nullptr, 16));
    const auto bad = std::mismatch(expected.begin(), expected.end(), &m.At(0)).first - expected.begin();
    EXPECT_EQ(bad, kLast + 1) << "the first wrong byte is at " << std::hex << bad;
    EXPECT_EQ(report.stored, c.stored.size() / 2);
    EXPECT_EQ(report.outcome.words, c.message);
    EXPECT_EQ(report.outcome.line, c.line);
  }
}

// Files that peer tools wrote give back the binary they were made from.
TEST(LoadObjectFile, FilesWrittenByPeerToolsGiveTheBinaryBack) {
  // The command runs in a folder holding the binary IN, of size bytes, and writes OUT.hex or OUT.s; the load
  // gives message ("" for none) at line, and the image holds the binary at base.
  const char* intelhex =
      "/usr/bin/python3 -c \"import intelhex; h = intelhex.IntelHex(); "
      "h.loadbin('IN', offset=0x10000); h.write_hex_file('OUT.hex')\"";
  const struct {
    const char* command;
    Address base, size;
    const char* message = "";
    std::uint64_t line = 0;
    ReadingMode mode = W;
  } cases[] = {
      {"srec_cat IN -binary -offset 0x10000 -o OUT.hex -intel -crlf", 0x10000, 0x30000},
      {"srec_cat IN -binary -o OUT.s -motorola -address-length=2 -crlf", 0, 0xF000},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=3 -crlf", 0x10000, 0x30000},
      {"srec_cat IN -binary -offset 0x10000 -o OUT.s -motorola -address-length=4 -crlf", 0x10000, 0x30000},
      // objcopy writes extended segment records below 1 MiB.
      {"objcopy -I binary -O ihex --change-addresses 0x10000 IN OUT.hex", 0x10000, 0x30000},
      {"objcopy -I binary -O srec --change-addresses 0x10000 IN OUT.s", 0x10000, 0x30000},
      // Past 65535 data records srec_cat counts them in an S6 record, a type the reader refuses: every
      // byte is in by then. One byte a record makes a file of several reading blocks.
      {"srec_cat IN -binary -o OUT.s -motorola -obs=1 -crlf", 0, 0x20000, kFmt, 0x20002},
      // Without -crlf srec_cat ends its lines with a lone LF, which ends no line in window mode; read
      // tolerantly, the files load as the tools write them, lone LFs and all.
      {"srec_cat IN -binary -o OUT.hex -intel", 0, 0x1000, "", 0, T},
      {"srec_cat IN -binary -o OUT.s -motorola -address-length=3", 0, 0x30000, "", 0, T},
      {intelhex, 0x10000, 0x30000, "", 0, T},
  };
  // The Linux run compares with srec_cat and objcopy.
  if (kWindows) GTEST_SKIP() << "srec_cat and objcopy are Linux programs";
  std::mt19937 random(1);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    const std::string out = std::string(c.command).find("OUT.s") != std::string::npos ? "OUT.s" : "OUT.hex";
    TempDir dir;
    std::string binary(static_cast<std::size_t>(c.size), '\0');
    for (auto& b : binary) b = static_cast<char>(random());
    WriteFile(dir / "IN", binary);
    const RunResult made = RunProgram({"/bin/sh", "-c", c.command}, dir.path());
    ASSERT_EQ(made.status, 0) << made.err;
    Module1 m = MakeImage(0, kLast);
    m.LoadFileName = (dir / out).string();
    const LoadReport report = LoadObjectFile(m, 0, kLast, out, {.mode = c.mode});
    EXPECT_EQ(report.outcome.words, c.message);
    EXPECT_EQ(report.outcome.line, c.line);
    std::string expected(kLast + 1, '\xFF');
    expected.replace(static_cast<std::size_t>(c.base), binary.size(), binary);
    EXPECT_TRUE(std::string(reinterpret_cast<const char*>(m.Buffer.data()), expected.size()) == expected);
  }
}

// Gives its bytes, then fails when it is told to.
struct Source : MemorySource {
  Source(std::string_view bytes, bool fails) : MemorySource(bytes), fails(fails) {}
  std::size_t Read(std::uint8_t* dst, std::size_t count) override {
    const std::size_t n = MemorySource::Read(dst, count);
    if (n == 0 && fails) Fail("Input/output error");
    return n;
  }
  bool fails;
};

// In tolerant mode an LF ends a line too, and blank lines, trailing blanks
// and a closing Ctrl-Z go. A read failure ends without a partial line.
TEST(LineReader, CrOrCrLfEndsALineAndALoneLfStays) {
  using Lines = std::vector<std::string>;
  const struct {
    std::string bytes;
    Lines window, tolerant;
    bool fails = false;
  } cases[] = {
      {"", {}, {}},
      {"a\r\nb\r\n", {"a", "b"}, {"a", "b"}},
      {"\r\r\n\r", {"", "", ""}, {}},
      {"ab\r\n\nc", {"ab", "\nc"}, {"ab", "c"}},
      {"a \r\n\t\n", {"a ", "\t\n"}, {"a"}},
      {"a\n\x1A", {"a\n\x1A"}, {"a"}},
      {std::string("a\0b\r", 4), {std::string("a\0b", 3)}, {std::string("a\0b", 3)}},
      {"one\r\ntwo", {"one"}, {"one"}, true},
  };
  // Each block size puts the line ends at other places of a block, a CR LF
  // pair split across two blocks among them; no line here is longer than 3.
  for (const auto& c : cases) {
    for (std::size_t block : {3, 4, 5, 7, 64}) {
      for (const ReadingMode mode : {W, T}) {
        Source source(c.bytes, c.fails);
        LineReader reader(source, block, mode);
        Lines lines;
        for (Line line; reader.Next(line);) lines.emplace_back(line.text);
        EXPECT_EQ(lines, mode == W ? c.window : c.tolerant) << block << ": " << c.bytes;
      }
    }
  }
}

// The Load button tests the fields in order and refuses the first bad one, leaving the dump. A load takes
// the signed offset, names the file, stores the bytes in the range, empties the dump and stores the fields.
// A file it cannot read is named with the reason: the dialog stays open, nothing is stored, the dump is
// emptied and the image untouched (the bytes a bad record leaves are the load table's). Every way FileError,
// the pointer and the buttons are back.
TEST(LoadDialog, RefusesLoadsOrNamesAFileItCannotRead) {
  const struct {
    std::string text1 = "app.hex", file1 = "app.hex";
    const char *text4 = "1000", *text3 = "1002";
    const char* text2 = nullptr;      // the offset, ticked; nullptr: unticked, 5 typed
    const char* message = kDone;      // unless the file cannot be read
    const char* shown4 = "00001000";  // Text4 afterwards
    Address offset = 0;               // LoadOffset afterwards
    bool stores = true;               // a load stores 01 02 03 at 1000
    const char* reason = nullptr;     // why the file cannot be read
  } cases[] = {
      {.text1 = "", .text4 = "", .text3 = "", .message = "Select File Name!", .shown4 = ""},
      {.text4 = "", .text3 = "", .message = "First Address Error!", .shown4 = ""},
      {.text4 = "100", .text3 = "", .message = "Last Address Error!", .shown4 = "100"},
      {.text4 = "1", .text2 = "", .message = "Offset Address Error!", .shown4 = "1"},
      // judged before the padding
      {.text4 = "1", .text2 = "12-34", .message = "OffsetAddress Error!", .shown4 = "1"},
      {.text4 = "0", .text2 = "123456789", .message = "OffsetAddress Error!", .shown4 = "0"},
      {.text4 = "80000", .text3 = "90000", .message = "First Address Error!", .shown4 = "00080000"},
      {.text4 = "2000", .text3 = "1FFF", .message = "Address Error!", .shown4 = "00002000"},
      {.text2 = "-FFFFFFFF", .offset = -4294967295, .stores = false},
      {.text2 = "-"},
      {},
      {.file1 = "gone.hex", .reason = "No such file or directory"},
      // a pick the file list lost with a change of folder, the name box keeping it
      {.file1 = "", .reason = "Is a directory"},
      {.file1 = "pipe.hex", .reason = "not a regular file"},
      {.file1 = std::string("app.hex\0.s", 10), .reason = "the name holds a NUL character"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message + (" " + c.file1) + " " + c.text4 + " " + (c.text2 ? c.text2 : "unticked"));
    TempDir dir;
    WriteFile(dir / "app.hex", Lines({kHex}));
    if (!MakeFifo(dir / "pipe.hex") && c.file1 == "pipe.hex") continue;  // no pipes among Windows files
    LoadFields f;
    f.Text1 = c.text1, f.File1 = c.file1, f.Dir1 = dir.path().string(), f.Drive1 = "/";
    f.Text4 = c.text4, f.Text3 = c.text3, f.Text2 = c.text2 ? c.text2 : "5";
    f.Check1 = f.Text2Visible = c.text2 != nullptr;
    Module1 m = MakeImage();
    m.frmsumtool.Text1 = "before.bin", m.frmsumtool.List1 = {"00000000  FF"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
    ScriptedPlatform platform;
    MemorySettings store;
    const bool loads = c.message == kDone && !c.reason, refused = c.message != kDone;
    EXPECT_EQ(frmload::Command1_Click(f, m, platform, store), loads);
    const std::string text =
        c.reason ? "Cannot read " + JoinPath(f.Dir1, c.file1) + ": " + c.reason : c.message;
    EXPECT_EQ(platform.Texts(), std::vector<std::string>{text});
    EXPECT_EQ(f.Text4, c.shown4);
    EXPECT_EQ(m.LoadOffset, c.offset);
    EXPECT_EQ(m.FileError, 0);
    EXPECT_EQ(platform.pointer, vbDefault);
    EXPECT_TRUE(f.Command1Enabled);
    EXPECT_TRUE(f.Command2Enabled);
    EXPECT_EQ(m.frmsumtool.Text1, loads ? "app.hex" : "before.bin");
    EXPECT_EQ(m.frmsumtool.List1.empty(), !refused);
    EXPECT_EQ(m.frmsumtool.cmdeditplusEnabled, refused);
    EXPECT_EQ(m.frmsumtool.cmdeditminusEnabled, refused);
    using Bytes = std::vector<std::uint8_t>;
    const bool stores = loads && c.stores;
    EXPECT_EQ(std::count(m.Buffer.data(), m.Buffer.data() + m.BufSize, 0xFF), m.BufSize - (stores ? 3 : 0));
    EXPECT_EQ(Bytes(&m.At(0x1000), &m.At(0x1004)), (stores ? Bytes{1, 2, 3, 0xFF} : Bytes(4, 0xFF)));
    std::map<MemorySettings::Key, std::string> settings;
    if (loads)
      settings = {{{kApp, kAddress, "LoadFirst"}, "00001000"},
                  {{kApp, kAddress, "LoadLast"}, "00001002"},
                  {{kApp, kFilePath, "LoadDrive"}, "/"},
                  {{kApp, kFilePath, "LoadDir"}, dir.path().string()}};
    EXPECT_EQ(store.values, settings);
  }
}

}  // namespace
}  // namespace kestrum::test
