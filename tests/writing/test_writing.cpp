// What the writers write: the worked examples of the formats byte for byte,
// the S count limit, the file faults met through the one output file all the
// writers share, and round trips of random images through each writer and
// back through our loader, with srec_cat, a peer tool, reading the same bytes.
// The sums themselves are the sum tests'; here only how a YSM file holds them.
// The naming of a save without a disk; then the Save button: its refusals in
// their order, its prompts before a listed file, the writer of each file, the
// settings it stores only after a success, and what a failed save leaves.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <ranges>
#include <variant>

#include "TestSupport.h"
#include "image/Paths.h"
#include "reading/LoadObjectFile.h"
#include "writing/SaveFlow.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using namespace test;
using enum ObjectFormat;
using enum SumKind;

constexpr int kElevens = -1;    // 00 11 22 ... FF from the first address on
constexpr int kSumSample = -2;  // FF, but 12 34 56 78 9A BC DE F0 at 00001000

struct Range {
  Address first, last;
};

// An object writer, or the YSM writer with its sum.
using Writer = std::variant<ObjectFormat, SumKind>;

// A writer, an image and the part of it to write; fill is a byte or one of the patterns above.
struct Given {
  Writer writer = BIN;
  Range area;
  int fill = 0xFF;
  Range save;
  int len = 0x10;
};

Module1 Image(const Given& g) {
  Module1 m = test::MakeImage(g.area.first, g.area.last);
  if (g.fill >= 0) std::fill_n(m.Buffer.data(), m.BufSize, static_cast<std::uint8_t>(g.fill));
  for (Address i = 0; g.fill == kElevens && i < m.BufSize; ++i) m.Buffer[i] = std::uint8_t(i * 0x11);
  const std::uint8_t sample[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  for (Address i = 0; g.fill == kSumSample && i < 8; ++i) m.At(0x1000 + i) = sample[i];
  m.SaveFirst = g.save.first, m.SaveLast = g.save.last;
  m.RecordLength = static_cast<std::int16_t>(g.len);
  return m;
}

Outcome Write(Writer writer, Module1& m, const std::string& path) {
  if (const auto* sum = std::get_if<SumKind>(&writer)) return SaveYsmFile(m, path, *sum);
  return SaveObjectFile(m, std::get<ObjectFormat>(writer), path);
}

// Each name in a folder with what show, where given, tells of its file.
std::map<std::string, std::string> Listing(const fs::path& dir, std::string (*show)(const fs::path&) = {}) {
  std::map<std::string, std::string> shown;
  for (const auto& e : fs::directory_iterator(dir))
    shown[e.path().filename().string()] = show ? show(e.path()) : "";
  return shown;
}

// What every file of a writer ends with: the end record, or a YSM file's two fixed lines.
std::string EndOf(Writer writer) {
  if (std::holds_alternative<SumKind>(writer)) return "S3060000000001F8\r\nS70500000000FA\r\n";
  return std::get<ObjectFormat>(writer) == HEX ? ":00000001FF\r\n" : "S9030000FC\r\n";
}

// A writer's text byte for byte, or the record length it refuses: an S record whose count would pass 255
// stops the S writer before it, with the records before it kept; the count is of the bytes a record holds,
// cut at SaveLast, and one count serves every record type, so S3 needs no failing row of its own. The
// command line's tests show the old file staying whole where the cut-short file is not kept.
TEST(Writers, WrittenTextByteForByte) {
  const auto ff = [](int bytes) { return std::string(2 * bytes, 'F'); };
  // {writer, area, fill, range saved, record length}, the text before EndOf, the words of a refusal.
  const struct {
    Given given;
    std::string text, refused = {};
  } cases[] = {
      // HEX 1: the last record cut at BufLast.
      {{HEX, {0, 0xF}, kElevens, {3, 0xF}, 8}, ":0800030033445566778899AA81\r\n:05000B00BBCCDDEEFF9F\r\n"},
      // HEX 2: no split at 64 K, the last record whole past SaveLast.
      {{HEX, {0, 0x7FFFF}, 0xFF, {0xFFF8, 0x1000F}},
       ":10FFF800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF09\r\n:020000021000EC\r\n"
       ":10000800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF8\r\n"},
      // HEX 3: a linear base first; ending on a record's end leaves no empty record behind it; check sum 00.
      {{HEX, {0x12340000, 0x1234FFFF}, 0xFF, {0x12340000, 0x12340007}, 4},
       ":020000041234B4\r\n:04000000FFFFFFFF00\r\n:04000400FFFFFFFFFC\r\n"},
      // HEX: segment bases give way to linear ones at 00100000.
      {{HEX, {0xF0000, 0x10000F}, 0xFF, {0xFFFF8, 0x100007}, 8},
       ":02000002F0000C\r\n:08FFF800FFFFFFFFFFFFFFFF09\r\n:020000040010EA\r\n"
       ":08000000FFFFFFFFFFFFFFFF00\r\n"},
      // HEX: a length that doesn't divide 65536 picks up at 0008.
      {{HEX, {0, 0x1FFFF}, 0xFF, {0xFFF0, 0x10014}, 0xC},
       ":0CFFF000FFFFFFFFFFFFFFFFFFFFFFFF11\r\n:0CFFFC00FFFFFFFFFFFFFFFFFFFFFFFF05\r\n:020000021000EC\r\n"
       ":0C000800FFFFFFFFFFFFFFFFFFFFFFFFF8\r\n:0C001400FFFFFFFFFFFFFFFFFFFFFFFFEC\r\n"},
      // S 1: the last record cut at SaveLast.
      {{S, {0, 0xF}, kElevens, {3, 0xF}, 8}, "S10B000333445566778899AA7D\r\nS108000BBBCCDDEEFF9B\r\n"},
      // S 2: S1 runs past 0000FFFF, then S2.
      {{S, {0, 0x7FFFF}, 0xFF, {0xFFF8, 0x1000F}},
       "S113FFF8FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF05\r\nS20C010008FFFFFFFFFFFFFFFFF2\r\n"},
      // S: 0000FFFF is S1, 00010000 S2; 00FFFFFF is S2, 01000000 S3.
      {{S, {0, 0x1FFFF}, 0xFF, {0xFFFF, 0x10000}, 1}, "S104FFFFFFFE\r\nS205010000FFFA\r\n"},
      {{S, {0xFFFF00, 0x10000FF}, 0xFF, {0xFFFFFF, 0x1000000}, 1}, "S205FFFFFFFFFE\r\nS30601000000FFF9\r\n"},
      // S: the largest whole record of each type, count FF.
      {{S, {0, 0x1FF}, 0xFF, {0, 0xFB}, 0xFC}, "S1FF0000" + ff(0xFC) + "FC\r\n"},
      {{S, {0x10000, 0x101FF}, 0xFF, {0x10000, 0x100FA}, 0xFB}, "S2FF010000" + ff(0xFB) + "FA\r\n"},
      {{S, {0x1000000, 0x10001FF}, 0xFF, {0x1000000, 0x10000F9}, 0xFA}, "S3FF01000000" + ff(0xFA) + "F9\r\n"},
      // S: a length of FF cut to FA bytes fits; cut to FD bytes its count is 256.
      {{S, {0, 0x1FF}, 0xFF, {0, 0xF9}, 0xFF}, "S1FD0000" + ff(0xFA) + "FC\r\n"},
      {{S, {0, 0x1FF}, 0xFF, {0, 0xFC}, 0xFF}, "", kRecordLengthError},
      {{S, {0xFF00, 0x101FF}, 0xFF, {0xFF00, 0x101FF}, 0xFC},
       "S1FFFF00" + ff(0xFC) + "FD\r\nS1FFFFFC" + ff(0xFC) + "01\r\n",
       kRecordLengthError},
      // YSM 3, with an odd last address (YSM 1 and 2 hold their sums as the rows below do).
      {{Sum16_16, {0, 0x1FFF}, kSumSample, {0x1000, 0x1005}}, "S3070000000003688D\r\n"},
      // YSM: the 8-16 sum FFFF takes x past 255; the 8-8 sum F9 makes x FF, FA wraps it to 00.
      {{Sum8_16, {0, 0x1FFF}, 0xFF, {0, 0x100}}, "S30700000000FFFFFA\r\n"},
      {{Sum8_8, {0, 0xF}, 0xF9, {4, 4}}, "S30600000000F900\r\n"},
      {{Sum8_8, {0, 0xF}, 0xFA, {4, 4}}, "S30600000000FAFF\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, c.text.find('\r')) + " " + AddressToText(c.given.save.first));
    TempDir dir;
    Module1 m = Image(c.given);
    const Outcome outcome = Write(c.given.writer, m, (dir / "out").string());
    EXPECT_EQ(outcome.ending, c.refused.empty() ? Ending::Done : Ending::Refused);
    EXPECT_EQ(outcome.words, c.refused);
    EXPECT_EQ(ReadFile(dir / "out"), c.text + (c.refused.empty() ? EndOf(c.given.writer) : ""));
  }
}

// The writers share one output file; each fault once, through one writer. The target is in the test's
// folder but for /dev/full; read-only is tried without root's rights.
TEST(Writers, FileFaultsNameTheReasonAndKeepTheOldFile) {
  const struct {
    Writer writer;
    std::string target, doing;
    const char *reason, *notOnWindows = nullptr;
  } cases[] = {
      // A device: written in place.
      {HEX, "/dev/full", "write", "No space left on device", "Windows has no full device"},
      {BIN, "missing/a", "create", "No such file or directory"},
      {Sum8_8, "folder", "create", "Is a directory"},
      // A write that fails half-way.
      {S, "old", "write", "File too large", "Windows has no file size limit to stop a write half-way"},
      // Though its folder would let a new file in.
      {BIN, "read-only", "create", "Permission denied", "under Wine the superuser may write read-only files"},
      // Not cut short to another file.
      {HEX, std::string("a\0b", 3), "create", "the name holds a NUL character"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reason);
    if (c.notOnWindows && test::SkipOnWindows(c.notOnWindows)) continue;
    TempDir dir;
    fs::permissions(dir.path(), fs::perms::all);
    fs::create_directory(dir / "folder");
    test::WriteFile(dir / "old", "the old image");
    test::WriteFile(dir / "read-only", "kept");
    fs::permissions(dir / "read-only", fs::perms::owner_read | fs::perms::others_read);
    const std::string target = c.target[0] == '/' ? c.target : dir.path().string() + "/" + c.target;
    const auto check = [&] {
      Module1 m = Image({.area = {0, 0xFFFF}, .save = {0, 0xFFFF}});
      const test::FileSizeLimit limit(4096);  // only the write into old grows a file
      const Outcome failed = Write(c.writer, m, target);
      const Outcome expected = Outcome::Fail("Can't " + c.doing + " " + target + ": " + c.reason, target);
      return failed == expected ? "" : testing::PrintToString(std::tuple(failed.words, failed.file));
    };
    EXPECT_EQ(c.target == "read-only" ? test::Unprivileged(check) : check(), "");
    const std::map<std::string, std::string> old{
        {"folder", ""}, {"old", "the old image"}, {"read-only", "kept"}};
    EXPECT_EQ(Listing(dir.path(), ReadFile), old) << "the old files whole, no working file left";
  }
}

#ifndef _WIN32  // modes, owners, extended attributes and symbolic links are POSIX; Wine makes no links
// What a name shows of its file beside the content: whether it is a link, and the file's names, mode,
// owner, group and extended attributes (its access list among them).
std::string CarriedBy(const fs::path& path) {
  const char* show =
      "[ -L \"$1\" ] && echo link; stat -L -c '%h names, mode %a, owner %u:%g' \"$1\" &&"
      " getfattr -d -m - \"$1\" | grep -v '^# file'";
  return test::RunProgram({"/bin/sh", "-c", show, "sh", path.string()}).out;
}

// Saving to "name" replaces the file real.HEX that it is or leads to; every name shows the new content and
// carries what it carried. Each case is set up by a shell in the folder.
TEST(Writers, ReplacingKeepsWhatTheOldFileCarried) {
  const struct {
    const char *name, *save, *setup;
  } cases[] = {
      {"a link and the mode", "name", "ln -s real.HEX name && chmod 740 real.HEX"},
      {"a link that points nowhere yet", "name", "rm real.HEX && ln -s real.HEX name"},
      {"a second name of the file", "name", "ln real.HEX name"},
      {"owner and group, where the user may set them", "real.HEX",
       "[ $(id -u) != 0 ] || chown 65534:65534 real.HEX"},
      {"an access list and an extended attribute", "real.HEX",
       "setfattr -n user.kestrum -v kept real.HEX && setfacl -m u:nobody:rw,g::- real.HEX"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    test::WriteFile(dir / "real.HEX", "old");
    ASSERT_EQ(test::RunProgram({"/bin/sh", "-c", c.setup}, dir.path()).status, 0);
    auto before = Listing(dir.path(), CarriedBy);
    Module1 m = Image({.area = {0, 0xFF}, .save = {0, 0}});
    ASSERT_TRUE(SaveHexFile(m, (dir / c.save).string()).IsDone());
    for (const auto& [name, text] : Listing(dir.path(), ReadFile))
      EXPECT_EQ(text, ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n") << name;
    auto after = Listing(dir.path(), CarriedBy);
    if (!before.count("real.HEX"))
      before = {{"name", "link\n" + after["real.HEX"]}, {"real.HEX", after["real.HEX"]}};
    EXPECT_EQ(after, before);
  }
}
#endif

// Random images saved by each writer read back through our loader, and HEX and S files through srec_cat, a
// peer tool: the range (with HEX up to the end of its last record) comes back, and no other byte changes.
// Below 00100000 srec_cat folds a HEX record that runs past a 64 K boundary back into its segment, as Intel
// defines it, where ours keep rising addresses: it reads the HEX files above only.
TEST(RoundTrip, RandomSavesReadBack) {
  const bool srecCat = !test::kWindows && fs::exists("/usr/bin/srec_cat");
  std::mt19937_64 random(20240611);
  auto in = [&](Address lo, Address hi) { return std::uniform_int_distribution<Address>(lo, hi)(random); };
  for (int round = 0; round < 60; ++round) {
    // The first round saves a whole area of 3 MiB and a byte: files that pass the disk in large aligned
    // pieces, then a tail.
    const bool whole = round == 0;
    const Address size = whole ? 0x300001 : in(1, 0x20000), top = 0x100000000 - size;
    // Now and then near the ends of the address space, where the record types change.
    const Address places[] = {0, 0xFFF0, 0xFFFFF0, in(0, top), top};
    const Address first = std::min(places[random() % 5], top), last = first + size - 1;
    const Address saveFirst = whole ? first : in(first, last),
                  saveLast = whole ? last : in(saveFirst, std::min(last, saveFirst + 0x8000));
    const int length = static_cast<int>(in(1, 0xFA));  // longer S records may pass a count of 255
    Module1 source = Image({.area = {first, last}, .save = {saveFirst, saveLast}, .len = length});
    for (Address a = first; a <= last; ++a) source.At(a) = static_cast<std::uint8_t>(random());
    // The HEX writer fills its last record up to the area's end.
    const Address hexEnd = std::min(saveFirst + ((saveLast - saveFirst) / length + 1) * length - 1, last);
    SCOPED_TRACE(testing::Message() << std::hex << first << ":" << last << " " << saveFirst << ":" << saveLast
                                    << " " << length);
    TempDir dir;
    for (const ObjectFormat format : {BIN, HEX, S}) {
      const std::string name = "image." + std::string(NameOf(format)), path = (dir / name).string();
      const Address end = format == HEX ? hexEnd : saveLast;
      SCOPED_TRACE(name);
      ASSERT_TRUE(SaveObjectFile(source, format, path).IsDone());
      // Into the same area, each byte first its complement.
      Module1 back = test::MakeImage(first, last);
      for (Address a = first; a <= last; ++a) back.At(a) = static_cast<std::uint8_t>(~source.At(a));
      back.LoadOffset = format == BIN ? saveFirst - first : 0;  // BIN counts from LoadFirst
      back.LoadFileName = path;
      ASSERT_TRUE(LoadObjectFile(back, first, last, name).Loaded());
      for (Address a = first; a <= last && !HasFailure(); ++a)
        EXPECT_EQ(back.At(a),
                  static_cast<std::uint8_t>(a >= saveFirst && a <= end ? source.At(a) : ~source.At(a)))
            << "byte at " << std::hex << a;
      if (!srecCat || format == BIN || (format == HEX && saveFirst < 0x100000)) continue;
      const auto r =
          test::RunProgram({"/usr/bin/srec_cat", path, format == HEX ? "-intel" : "-motorola", "-offset",
                            "-0x" + AddressToText(saveFirst), "-o", (dir / "srec.bin").string(), "-binary"});
      EXPECT_EQ(r.status, 0) << r.err;
      const std::string bytes(reinterpret_cast<const char*>(&source.At(saveFirst)), end - saveFirst + 1);
      EXPECT_TRUE(ReadFile(dir / "srec.bin") == bytes) << "srec_cat read other bytes";
    }
  }
}

// The file types and a pair's prompts as the Save dialog words them.
constexpr const char *kObject = "Object File Only", *kYsm = "YSM File Only", *kPair = "Object and YSM File";
constexpr const char *kBinAsk = "prog.BIN File Over Write?", *kYsmAsk = "prog.YSM File Over Write?";

constexpr FileType kOnly = FileType::ObjectOnly, kYsmOnly = FileType::YsmOnly, kBoth = FileType::ObjectAndYsm;

std::string InF(const std::string& bare) { return bare.empty() ? bare : JoinPath("/f", bare); }

// The files a save into /f makes, without a disk (bare names; empty for none), and what Text5 shows
// afterwards. The prompts listed names bring are the Save button's tests'.
TEST(SaveNaming, FilesAndText5) {
  const struct {
    FileType type = kOnly;
    ObjectFormat format = BIN;
    std::string name, obj = {}, ysm = {}, text5 = {};
  } cases[] = {
      {.format = S, .name = "prog.txt", .obj = "prog.txt", .text5 = "prog.txt"},
      {.name = "abc.", .obj = "abc..BIN", .text5 = "abc..BIN"},  // no extension behind its first "."
      {.format = HEX, .name = "prog", .obj = "prog.HEX", .text5 = "prog.HEX"},
      {.format = S, .name = "prog.YSM", .obj = "prog.YSM", .text5 = "prog.YSM"},
      {.type = kYsmOnly, .format = HEX, .name = "prog.hex", .ysm = "prog.hex", .text5 = "prog.hex"},
      {.type = kYsmOnly, .name = "prog", .ysm = "prog.YSM", .text5 = "prog.YSM"},
      {.type = kBoth, .name = "prog", .obj = "prog.BIN", .ysm = "prog.YSM", .text5 = "prog.BIN"},
      {.type = kBoth, .format = S, .name = "a.YSM", .obj = "a.S", .ysm = "a.YSM", .text5 = "a.YSM"},
      {.type = kBoth, .format = HEX, .name = "a.ysm", .obj = "a.HEX", .ysm = "a.ysm", .text5 = "a.ysm"},
      {.type = kBoth, .name = "a.b.c", .obj = "a.b.c", .ysm = "a.YSM", .text5 = "a.b.c"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(NameOf(c.type)) + " " + std::string(NameOf(c.format)) + " " + c.name);
    const SaveNames n = NameSave("/f", c.name, c.format, c.type, {});
    EXPECT_TRUE(n.refusal.IsDone());
    EXPECT_EQ(n.objectPath, InF(c.obj));
    EXPECT_EQ(n.ysmPath, InF(c.ysm));
    EXPECT_EQ(n.text5, c.text5);
  }
}

// Also notes the pointer each message box was shown under.
struct NotingPlatform : ScriptedPlatform {
  int MsgBox(const std::string& text, int style, const std::string& title) override {
    pointersAtMessages.push_back(pointer);
    return ScriptedPlatform::MsgBox(text, style, title);
  }
  std::vector<int> pointersAtMessages;
};

// The fields a case changes; the others keep World's.
struct Change {
  const char *text7 = "0", *text6 = "FF", *text4 = "10", *combo1 = kObject, *combo2 = "BIN",
             *combo3 = "8-8SUM", *text5 = "prog";
};

// A save dialog over a 0..7FFFF image whose bytes differ from FF, in a folder of its own.
struct World {
  TempDir dir;
  Module1 m = test::MakeImage();
  NotingPlatform platform;
  MemorySettings store;
  SaveFields f;

  explicit World(const Change& c = {}) {
    for (Address a = 0; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a ^ (a >> 8));
    f.Drive2 = "/", f.Dir2 = dir.path().string(), f.Text5 = c.text5, f.Text7 = c.text7, f.Text6 = c.text6;
    f.Text4 = c.text4, f.Combo1 = c.combo1, f.Combo2 = c.combo2, f.Combo3 = c.combo3;
  }
  bool Save() { return frmsave::Command5_Click(f, m, platform, store); }
  std::vector<std::string> Files() const {
    const auto names = std::views::keys(Listing(dir.path()));
    return {names.begin(), names.end()};
  }
  // Pointer and buttons are back, whatever the way out was.
  void ExpectReady() const {
    EXPECT_EQ(platform.pointer, vbDefault);
    EXPECT_TRUE(f.Command5Enabled);
    EXPECT_TRUE(f.Command2Enabled);
  }
};

// Each row holds the faults of the later rows as well; text7 is Text7 after the refusal.
TEST(SaveFlow, RefusalsInTheirOrder) {
  const struct {
    Change change;
    const char *notice, *text7;
  } cases[] = {
      {{.text7 = "", .text6 = ""}, "FirstAddress Error!", ""},
      // Not padded yet.
      {{.text7 = "1", .text6 = "", .text4 = ""}, "LastAddress Error!", "1"},
      {{.text7 = "90000", .text6 = "80000", .text4 = "", .combo2 = "HEX"}, "Address Error!", "00090000"},
      {{.text7 = "80000", .text6 = "90000", .text4 = "0", .combo2 = "S"}, "RecordLength Error!", "00080000"},
      {{.text7 = "80000", .text6 = "90000"}, "FirstAddress Error!", "00080000"},
      {{.text7 = "1", .text6 = "80000", .text5 = ""}, "LastAddress Error!", "00000001"},
      // Only stored text has 3 digits; a length starting with a point; a YSM file takes none but needs one.
      {{.text4 = "100", .combo2 = "HEX"}, "RecordLength Error!", "00000000"},
      {{.text4 = ".5", .combo2 = "S"}, "RecordLength Error!", "00000000"},
      {{.text4 = "", .combo1 = kYsm, .combo2 = "HEX"}, "RecordLength Error!", "00000000"},
      {{.combo1 = "", .combo2 = "", .combo3 = "", .text5 = ""}, "Enter or Select File Name!", "00000000"},
      {{.combo1 = "", .combo2 = "", .combo3 = ""}, "Format Error!", "00000000"},
      {{.combo1 = "", .combo3 = "", .text5 = "prog.S"}, "File Type Error!", "00000000"},
      // Though no YSM file is made.
      {{.combo3 = "", .text5 = "prog.S"}, "YSM File Format Error!", "00000000"},
      // A rival format's extension, in a pair as well; the name stays as typed.
      {{.text5 = "prog.hEx"}, "Extension Error!", "00000000"},
      {{.combo1 = kPair, .combo2 = "S", .text5 = "prog.hex"}, "Extension Error!", "00000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.notice);
    World w(c.change);
    EXPECT_FALSE(w.Save());
    EXPECT_EQ(w.platform.messages, (std::vector<test::Message>{{c.notice, vbOKOnly, ""}}));
    EXPECT_EQ(w.platform.pointersAtMessages, std::vector<int>{vbDefault});
    EXPECT_EQ(w.f.Text7, c.text7);
    EXPECT_EQ(w.f.Text5, c.change.text5);
    w.ExpectReady();
    EXPECT_TRUE(w.Files().empty());
    EXPECT_TRUE(w.store.values.empty());
  }
  // The range and length are taken before they are judged.
  World w({.text7 = "90000", .text6 = "80000", .text4 = "2A"});
  EXPECT_FALSE(w.Save());
  EXPECT_EQ(w.m.SaveFirst, 0x90000);
  EXPECT_EQ(w.m.SaveLast, 0x80000);
  EXPECT_EQ(w.m.RecordLength, 0x2A);
  EXPECT_EQ(w.f.Text6, "00080000");
}

// The prompts show under the default pointer with the buttons disabled, the notice under the hourglass.
// prog.BIN holds 300 old bytes; a Yes to it replaces it whole, a save without a prompt keeps its end.
TEST(SaveFlow, PromptsBeforeAListedFile) {
  const std::vector<std::string> kBin = {"prog.BIN"}, kPairFiles = {"prog.BIN", "prog.YSM"};
  const std::string kBinDone = "BIN File Save Complete!", kPairDone = "BIN and YSM File Save Complete!";
  // The fields changed, the names listed, the answers, the messages shown, the files afterwards, and the size
  // of prog.BIN.
  const struct {
    Change change;
    std::vector<std::string> listed;
    std::vector<int> answers;
    std::vector<std::string> messages, files;
    std::size_t binSize;
  } cases[] = {
      // Not listed: no prompt; BIN takes any record length.
      {{.text4 = ""}, {"other.BIN"}, {}, {kBinDone}, kBin, 300},
      {{}, {"a", "PROG.bin"}, {vbYes}, {"Over Write?", kBinDone}, kBin, 256},
      {{.combo1 = kPair}, kPairFiles, {vbYes, vbYes}, {kBinAsk, kYsmAsk, kPairDone}, kPairFiles, 256},
      {{.combo1 = kPair}, kPairFiles, {vbYes, vbNo}, {kBinAsk, kYsmAsk}, kBin, 300},
      {{.combo1 = kPair}, kPairFiles, {vbNo}, {kBinAsk}, kBin, 300},
      // Each file of a pair asked for alone, listed names compared ignoring case, also under a name with the
      // YSM
      // extension; a YSM file by its own name.
      {{.combo1 = kPair}, {"prog.ysm"}, {vbNo}, {kYsmAsk}, kBin, 300},
      {{.combo1 = kPair, .text5 = "prog.YSM"}, kPairFiles, {vbYes, vbNo}, {kBinAsk, kYsmAsk}, kBin, 300},
      {{.combo1 = kYsm}, {"prog.YSM"}, {vbNo}, {"Over Write?"}, kBin, 300},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(w.f.Combo1 + " " + testing::PrintToString(c.answers));
    test::WriteFile(w.dir / "prog.BIN", std::string(300, 'x'));
    w.f.File2 = c.listed;
    w.platform.answers.assign(c.answers.begin(), c.answers.end());
    const bool closes = c.messages.back().ends_with("Complete!");
    EXPECT_EQ(w.Save(), closes);
    EXPECT_EQ(w.platform.Texts(), c.messages);
    for (std::size_t i = 0; i < w.platform.messages.size(); ++i) {
      const bool prompt = i + 1 < c.messages.size() || !closes;
      EXPECT_EQ(w.platform.messages[i].style, prompt ? vbExclamationYesNo : vbOKOnly);
      EXPECT_EQ(w.platform.messages[i].title, prompt ? "Save" : "");
      EXPECT_EQ(w.platform.pointersAtMessages[i], prompt ? vbDefault : vbHourglass);
    }
    EXPECT_EQ(w.Files(), c.files);
    EXPECT_EQ(ReadFile(w.dir / "prog.BIN").size(), c.binSize);
    w.ExpectReady();
    EXPECT_EQ(w.store.values.empty(), !closes);
  }
}

// Each file of a pair comes from its writer with the chosen sum; a second press, the name now with its
// extension, makes the same files. Only then are the fields stored (a refusal or failure stores none).
TEST(SaveFlow, EachFileFromItsWriterAndTheFieldsStored) {
  for (const char* format : {"BIN", "HEX", "S"}) {
    SCOPED_TRACE(format);
    World w({.text4 = "2", .combo1 = kPair, .combo2 = format, .combo3 = "16-16sum"});
    w.f.Drive2 = "/home";
    for (int press = 0; press < 2; ++press) {
      ASSERT_TRUE(w.Save());
      const std::string object = std::string("prog.") + format;
      EXPECT_EQ(w.Files(), (std::vector<std::string>{object, "prog.YSM"}));
      EXPECT_EQ(w.f.Text5, object);
      TempDir direct;
      ASSERT_TRUE(SaveObjectFile(w.m, *FromName<ObjectFormat>(format), (direct / "o").string()).IsDone());
      ASSERT_TRUE(SaveYsmFile(w.m, (direct / "y").string(), Sum16_16).IsDone());
      EXPECT_EQ(ReadFile(w.dir / object), ReadFile(direct / "o"));
      EXPECT_EQ(ReadFile(w.dir / "prog.YSM"), ReadFile(direct / "y"));
    }
    MemorySettings expected;
    expected.Write(kAddress, "SaveFirst", "00000000");
    expected.Write(kAddress, "SaveLast", "000000FF");
    expected.Write(kAddress, "RecordLength", "2");
    expected.Write(kFormat, "FileType", kPair);
    expected.Write(kFormat, "ObjectFileFormat", format);
    expected.Write(kFormat, "YSMFileFormat", "16-16sum");
    expected.Write(kFilePath, "SaveDrive", "/home");
    expected.Write(kFilePath, "SaveDir", w.dir.path().string());
    EXPECT_EQ(w.store.values, expected.values);
  }
}

// The stored types pick their items ignoring case and switch the lists on and off; an unknown type
// leaves the lists as they were.
TEST(SaveFlow, OpeningSwitchesTheListsTheStoredTypesNeed) {
  const struct {
    const char *type = "", *format = "", *combo1, *combo2;  // empty: none stored
    bool combo2On = true, combo3On = true, text4On = true;
  } cases[] = {
      {.combo1 = kObject, .combo2 = "BIN", .combo3On = false, .text4On = false},
      {.type = "ysm file only", .format = "hex", .combo1 = kYsm, .combo2 = "HEX", .combo2On = false},
      {.type = "OBJECT AND YSM FILE", .format = "S", .combo1 = kPair, .combo2 = "S"},
      {.type = "Everything", .format = "ELF", .combo1 = "", .combo2 = ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.combo1);
    MemorySettings store;
    store.Write(kFormat, "FileType", c.type);
    store.Write(kFormat, "ObjectFileFormat", c.format);
    SaveFields f;
    frmsave::cmdsave_Click(f, test::MakeImage(), store);
    EXPECT_EQ(f.Combo1, c.combo1);
    EXPECT_EQ(f.Combo2, c.combo2);
    EXPECT_EQ(f.Combo2Enabled, c.combo2On);
    EXPECT_EQ(f.Combo3Enabled, c.combo3On);
    EXPECT_EQ(f.Text4Enabled, c.text4On);
  }
}

// The writers' faults are theirs; the Save button shows them with the file, stays open, stores nothing and
// writes a pair's YSM file all the same. f.BIN stands for a full device.
TEST(SaveFlow, FaultsNameTheFileAndStoreNothing) {
  if (test::kWindows) GTEST_SKIP() << "Windows has no full device to link to";
  const struct {
    Change change;
    std::string message;  // after the test's folder
    std::vector<std::string> files;
  } cases[] = {
      {{.combo1 = kPair, .text5 = "f"}, "/f.BIN: No space left on device", {"f.BIN", "f.YSM"}},
      // The S file cut short takes its name.
      {{.text4 = "FD", .combo1 = kPair, .combo2 = "S"}, kRecordLengthError, {"f.BIN", "prog.S", "prog.YSM"}},
      // A name holding a folder is refused before any file is made.
      {{.combo1 = kYsm, .text5 = "sub/prog"}, "/sub/prog: a file name can't hold a folder.", {"f.BIN"}},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(c.message);
    fs::create_symlink("/dev/full", w.dir / "f.BIN");
    w.f.Dir2 += "/";  // as a root ends: no second separator
    EXPECT_FALSE(w.Save());
    EXPECT_TRUE(w.platform.Texts().back().ends_with(c.message)) << w.platform.Texts().back();
    w.ExpectReady();
    EXPECT_EQ(w.m.FileError, 0);
    EXPECT_TRUE(w.store.values.empty());
    EXPECT_EQ(w.Files(), c.files);
    // Saved again as HEX without closing the dialog: nothing is left over from the failure.
    w.f.Combo1 = kPair, w.f.Combo2 = "HEX", w.f.Text5 = "prog";
    EXPECT_TRUE(w.Save());
    EXPECT_EQ(w.platform.Texts().back(), "HEX and YSM File Save Complete!");
  }
}

}  // namespace
}  // namespace kestrum
