// What the writers write: the worked examples of the formats byte for byte,
// the S count limit, the file faults met through the one output file all the
// writers share, and round trips of random images through each writer and
// back through our loader, with srec_cat, a peer tool, reading the same bytes.
// The sums themselves are the sum tests'; here only how a YSM file holds them.
// The save dialog's Save button: its refusals in their order, the files it
// names and writes, its prompts before a listed file, the settings it stores
// only after a success, and what a failed save leaves; the naming fuzz target
// tries many more names and lists. The Load button over a file it can't read.
#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "TestSupport.h"
#include "image/Paths.h"
#include "reading/LoadDialog.h"
#include "reading/LoadObjectFile.h"
#include "writing/SaveFlow.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;
using namespace test;

constexpr int kElevens = -1;    // 00 11 22 ... FF from the first address on
constexpr int kSumSample = -2;  // FF, but 12 34 56 78 9A BC DE F0 at 00001000

// An image with the save range and record length set; fill is a byte or one of the patterns above.
Module1 Image(Address first, Address last, int fill, Address saveFirst, Address saveLast, int recordLength) {
  Module1 m = test::MakeImage(first, last);
  if (fill >= 0) std::fill_n(m.Buffer.data(), m.BufSize, static_cast<std::uint8_t>(fill));
  for (Address a = first; fill == kElevens && a <= last; ++a)
    m.At(a) = static_cast<std::uint8_t>((a - first) * 0x11);
  const std::uint8_t sample[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  for (Address i = 0; fill == kSumSample && i < 8; ++i) m.At(0x1000 + i) = sample[i];
  m.SaveFirst = saveFirst;
  m.SaveLast = saveLast;
  m.RecordLength = static_cast<std::int16_t>(recordLength);
  return m;
}

// format is BIN, HEX, S or the sum of a YSM file.
SaveOutcome Write(const std::string& format, Module1& m, const std::string& path, Platform& platform) {
  return format == "BIN"   ? SaveBinFile(m, platform, path)
         : format == "HEX" ? SaveHexFile(m, platform, path)
         : format == "S"   ? SaveSFile(m, platform, path)
                           : SaveYsmFile(m, platform, path, format);
}

TEST(Writers, WrittenTextByteForByte) {
  // format is HEX, S, or the sum of a YSM file; lines have one blank between, a YSM file's two fixed lines
  // left out.
  const struct {
    const char* name;
    Address areaFirst, areaLast;
    int fill;
    Address saveFirst, saveLast;
    int length;
    const char *format, *lines;
  } cases[] = {
      {"HEX 1: last record cut at BufLast", 0, 0xF, kElevens, 3, 0xF, 8, "HEX",
       ":0800030033445566778899AA81 :05000B00BBCCDDEEFF9F :00000001FF"},
      {"HEX 2: no split at 64 K, last record whole past SaveLast", 0, 0x7FFFF, 0xFF, 0xFFF8, 0x1000F, 0x10,
       "HEX",
       ":10FFF800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF09 :020000021000EC "
       ":10000800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF8 :00000001FF"},
      // HEX 3 also ends on a record's end: no empty record behind it.
      {"HEX 3: linear base first", 0x12340000, 0x1234FFFF, 0xFF, 0x12340000, 0x12340007, 4, "HEX",
       ":020000041234B4 :04000000FFFFFFFF00 :04000400FFFFFFFFFC :00000001FF"},
      {"HEX one byte cut by BufLast", 0, 0x7, 0xFF, 5, 5, 0x10, "HEX", ":03000500FFFFFFFB :00000001FF"},
      {"HEX checksum 00", 0, 0xFF, 0xFF, 0, 0, 1, "HEX", ":01000000FF00 :00000001FF"},
      {"HEX base FFFF", 0xFFFFFFF0, 0xFFFFFFFF, 0xFF, 0xFFFFFFFF, 0xFFFFFFFF, 1, "HEX",
       ":02000004FFFFFC :01FFFF00FF02 :00000001FF"},
      {"HEX segment bases give way to linear ones at 00100000", 0xF0000, 0x10000F, 0xFF, 0xFFFF8, 0x100007, 8,
       "HEX",
       ":02000002F0000C :08FFF800FFFFFFFFFFFFFFFF09 :020000040010EA :08000000FFFFFFFFFFFFFFFF00 :00000001FF"},
      {"HEX a length that doesn't divide 65536 picks up at 0008", 0, 0x1FFFF, 0xFF, 0xFFF0, 0x10014, 0xC,
       "HEX",
       ":0CFFF000FFFFFFFFFFFFFFFFFFFFFFFF11 :0CFFFC00FFFFFFFFFFFFFFFFFFFFFFFF05 :020000021000EC "
       ":0C000800FFFFFFFFFFFFFFFFFFFFFFFFF8 :0C001400FFFFFFFFFFFFFFFFFFFFFFFFEC :00000001FF"},
      {"S 1: last record cut at SaveLast", 0, 0xF, kElevens, 3, 0xF, 8, "S",
       "S10B000333445566778899AA7D S108000BBBCCDDEEFF9B S9030000FC"},
      {"S 2: S1 runs past 0000FFFF, then S2", 0, 0x7FFFF, 0xFF, 0xFFF8, 0x1000F, 0x10, "S",
       "S113FFF8FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF05 S20C010008FFFFFFFFFFFFFFFFF2 S9030000FC"},
      {"S 3: S3", 0x12340000, 0x1234FFFF, 0xFF, 0x12340000, 0x12340007, 4, "S",
       "S30912340000FFFFFFFFB4 S30912340004FFFFFFFFB0 S9030000FC"},
      {"S 0000FFFF is S1, 00010000 S2", 0, 0x1FFFF, 0xFF, 0xFFFF, 0x10000, 1, "S",
       "S104FFFFFFFE S205010000FFFA S9030000FC"},
      {"S 00FFFFFF is S2, 01000000 S3", 0xFFFF00, 0x10000FF, 0xFF, 0xFFFFFF, 0x1000000, 1, "S",
       "S205FFFFFFFFFE S30601000000FFF9 S9030000FC"},
      {"YSM 1: 8-8", 0, 0x1FFF, kSumSample, 0x1000, 0x1005, 0x10, "8-8SUM", "S306000000006A8F"},
      {"YSM 2: 8-16, any case", 0, 0x1FFF, kSumSample, 0x1000, 0x1005, 0x10, "8-16sum", "S30700000000026A8C"},
      {"YSM 3: 16-16, odd last", 0, 0x1FFF, kSumSample, 0x1000, 0x1005, 0x10, "16-16SUM",
       "S3070000000003688D"},
      {"YSM 8-16 sum FFFF: x passes 255", 0, 0x1FFF, 0xFF, 0, 0x100, 0x10, "8-16SUM", "S30700000000FFFFFA"},
      {"YSM 8-8 sum F9: x is FF", 0, 0xF, 0xF9, 4, 4, 0x10, "8-8SUM", "S30600000000F900"},
      {"YSM 8-8 sum FA: x wraps to 00", 0, 0xF, 0xFA, 4, 4, 0x10, "8-8SUM", "S30600000000FAFF"},
      {"YSM of an unknown sum is empty", 0, 0xF, 0xFF, 0, 0xF, 0x10, "32SUM", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    Module1 m = Image(c.areaFirst, c.areaLast, c.fill, c.saveFirst, c.saveLast, c.length);
    const std::string format = c.format, path = (dir / "out").string();
    std::string expected = std::regex_replace(std::string(c.lines), std::regex(" "), "\r\n");
    const bool ysm = format != "HEX" && format != "S";
    if (!expected.empty()) expected += ysm ? "\r\nS3060000000001F8\r\nS70500000000FA\r\n" : "\r\n";
    ScriptedPlatform platform;
    if (format == "S") m.FileError = -1;  // the S writer forgets an earlier failure
    EXPECT_EQ(Write(format, m, path, platform), SaveOutcome::Done);
    EXPECT_EQ(ReadFile(path), expected);
    EXPECT_TRUE(platform.messages.empty());
    EXPECT_EQ(m.FileError, 0);
  }
}

TEST(Writers, SCountAbove255FailsBeforeTheRecord) {
  const std::string ff252(0xFC * 2, 'F');
  // kept is the first line, or all the lines before the failure.
  const struct {
    Address first, last;
    int length;
    std::string kept;
    bool fails;
  } cases[] = {
      {0, 0xFB, 0xFC, "S1FF0000", false},  // the largest whole record of each type
      {0x10000, 0x100FA, 0xFB, "S2FF010000", false},
      {0x1000000, 0x10000F9, 0xFA, "S3FF01000000", false},
      {0, 0xF9, 0xFF, "S1FD0000", false},  // FF cut to FA bytes
      {0, 0xFC, 0xFF, "", true},           // FF cut to FD bytes: count 256
      {0x1000000, 0x10001FF, 0xFB, "", true},
      {0xFF00, 0x101FF, 0xFC, "S1FFFF00" + ff252 + "FD\r\nS1FFFFFC" + ff252 + "01\r\n", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.first) + " length " + HexByteText(c.length));
    TempDir dir;
    Module1 m = Image(0, 0x10001FF, 0xFF, c.first, c.last, c.length);
    ScriptedPlatform platform;
    const auto path = dir / "out.S";
    EXPECT_EQ(SaveSFile(m, platform, path.string()),
              c.fails ? SaveOutcome::RecordLengthError : SaveOutcome::Done);
    const std::string text = ReadFile(path);
    EXPECT_EQ(c.fails ? text : text.substr(0, c.kept.size()), c.kept);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'),
              c.fails ? std::count(c.kept.begin(), c.kept.end(), '\n') : 2);
    EXPECT_EQ(platform.messages, std::vector<test::Message>(c.fails, {kRecordLengthError, vbOKOnly, ""}));
    EXPECT_EQ(m.FileError, -c.fails);
    if (!c.fails) continue;
    // Without keeping the cut-short file, the old one stays whole.
    test::WriteFile(path, "old content");
    EXPECT_EQ(SaveSFile(m, platform, path.string(), {.keepPartial = false, .progress = {}}),
              SaveOutcome::RecordLengthError);
    EXPECT_EQ(ReadFile(path), "old content");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 1) << "a working file stayed";
  }
}

// The writers share one output file; each fault once, through one writer.
TEST(Writers, FileFaultsNameTheReasonAndKeepTheOldFile) {
  using namespace std::string_literals;
  // The target is in the test's folder but for /dev/full; read-only is tried without root's rights.
  const struct {
    const char* writer;
    std::string target;
    const char *doing, *reason;
  } cases[] = {
      {"HEX", "/dev/full", "write", "No space left on device"},  // a device: written in place
      {"BIN", "missing/a", "create", "No such file or directory"},
      {"YSM", "folder", "create", "Is a directory"},
      {"S", "old", "write", "File too large"},              // a write that fails half-way
      {"BIN", "read-only", "create", "Permission denied"},  // though its folder would let a new file in
      {"HEX", "a\0b"s, "create", "the name holds a NUL character"},  // not cut short to another file
  };
  const std::map<std::string, const char*> posixOnly{
      {"/dev/full", "Windows has no full device"},
      {"old", "Windows has no file size limit to stop a write half-way"},
      {"read-only", "Wine run by the superuser opens read-only files for writing"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.writer) + ": " + c.reason);
    if (posixOnly.count(c.target) && test::SkipOnWindows(posixOnly.at(c.target))) continue;
    TempDir dir;
    fs::permissions(dir.path(), fs::perms::all);
    fs::create_directory(dir / "folder");
    test::WriteFile(dir / "old", "the old image");
    test::WriteFile(dir / "read-only", "kept");
    fs::permissions(dir / "read-only", fs::perms::owner_read | fs::perms::others_read);
    const std::string target = c.target[0] == '/' ? c.target : dir.path().string() + "/" + c.target;
    const auto check = [&] {
      Module1 m = Image(0, 0xFFFF, 0xFF, 0, 0xFFFF, 0x10);
      ScriptedPlatform platform;
      const test::FileSizeLimit limit(4096);  // only the write into old grows a file
      const bool failed =
          Write(c.writer, m, target, platform) == SaveOutcome::FileFailure && m.FileError == -1;
      const test::Message expected{"Can't "s + c.doing + " " + target + ": " + c.reason, vbOKOnly, ""};
      return failed && platform.messages == std::vector{expected} ? ""
                                                                  : testing::PrintToString(platform.Texts());
    };
    EXPECT_EQ(c.target == "read-only" ? test::Unprivileged(check) : check(), "");
    std::map<std::string, std::string> files,
        listing{{"folder", ""}, {"old", "the old image"}, {"read-only", "kept"}};
    for (const auto& e : fs::directory_iterator(dir.path()))
      files[e.path().filename().string()] = ReadFile(e.path());
    EXPECT_EQ(files, listing) << "the old files whole, no working file left";
  }
}

#ifdef _WIN32
TEST(Writers, ReplacingKeepsWhatTheOldFileCarried) {
  GTEST_SKIP() << "modes, owners, extended attributes and symbolic links are POSIX; Wine makes no links";
}
#else
// What a name shows of its file beside the content: whether it is a link,
// and the file's names, mode, owner, group and extended attributes (its
// access list among them).
std::string CarriedBy(const fs::path& path) {
  struct stat st {};
  std::string c = fs::is_symlink(fs::symlink_status(path)) ? "link " : "";
  if (stat(path.c_str(), &st) != 0) return c;
  c += std::to_string(st.st_nlink) + " names, mode " + std::to_string(st.st_mode & 07777u) + ", owner " +
       std::to_string(st.st_uid) + ":" + std::to_string(st.st_gid);
  std::string names(4096, '\0');
  names.resize(
      static_cast<std::size_t>(std::max<ssize_t>(0, listxattr(path.c_str(), names.data(), names.size()))));
  for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
    std::string value(4096, '\0');
    value.resize(static_cast<std::size_t>(
        std::max<ssize_t>(0, getxattr(path.c_str(), names.c_str() + at, value.data(), value.size()))));
    c += ", " + std::string(names.c_str() + at) + "=" + value;
  }
  return c;
}

// Saving to "name" replaces the file real.HEX that it is or leads to; every
// name shows the new content and carries what it carried.
TEST(Writers, ReplacingKeepsWhatTheOldFileCarried) {
  const bool root = geteuid() == 0;
  const struct {
    const char* name;
    const char* save;
    std::function<void(const fs::path&)> setup;
  } cases[] = {
      {"a link and the mode", "name",
       [](const fs::path& dir) {
         fs::create_symlink("real.HEX", dir / "name");
         fs::permissions(dir / "real.HEX", fs::perms::owner_all | fs::perms::group_read);
       }},
      {"a link that points nowhere yet", "name",
       [](const fs::path& dir) {
         fs::remove(dir / "real.HEX");
         fs::create_symlink("real.HEX", dir / "name");
       }},
      {"a second name of the file", "name",
       [](const fs::path& dir) { fs::create_hard_link(dir / "real.HEX", dir / "name"); }},
      {"owner and group, where the user may set them", "real.HEX",
       [root](const fs::path& dir) {
         if (root && chown((dir / "real.HEX").c_str(), 65534, 65534) != 0) throw std::runtime_error("chown");
       }},
      {"an access list and an extended attribute", "real.HEX",
       [](const fs::path& dir) {
         const std::string real = (dir / "real.HEX").string();
         if (setxattr(real.c_str(), "user.kestrum", "kept", 4, 0) != 0)
           throw std::runtime_error("no user attributes here");
         if (std::system(("setfacl -m u:nobody:rw,g::- " + real).c_str()) != 0)
           throw std::runtime_error("setfacl");
       }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    test::WriteFile(dir / "real.HEX", "old");
    try {
      c.setup(dir.path());
    } catch (const std::exception& e) {
      ADD_FAILURE() << "the case could not be set up: " << e.what();
      continue;
    }
    std::map<std::string, std::string> before, after;
    for (const auto& e : fs::directory_iterator(dir.path()))
      before[e.path().filename()] = CarriedBy(e.path());
    Module1 m = Image(0, 0xFF, 0xFF, 0, 0, 0x10);
    ScriptedPlatform platform;
    ASSERT_EQ(SaveHexFile(m, platform, (dir / c.save).string()), SaveOutcome::Done);
    for (const auto& e : fs::directory_iterator(dir.path())) {
      after[e.path().filename()] = CarriedBy(e.path());
      EXPECT_EQ(ReadFile(e.path()), ":10000000FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n")
          << e.path();
    }
    if (!before.count("real.HEX"))
      before = {{"name", "link " + after["real.HEX"]}, {"real.HEX", after["real.HEX"]}};
    EXPECT_EQ(after, before);
  }
}
#endif

TEST(RoundTrip, RandomSavesLoadBackAtTheirShiftedAddresses) {
  std::mt19937_64 random(20240611);
  auto in = [&](Address low, Address high) {
    return std::uniform_int_distribution<Address>(low, high)(random);
  };
  for (int round = 0; round < 60; ++round) {
    const Address size = in(1, 0x20000), top = 0x100000000 - size;
    // Now and then near the ends of the address space, where the record types change.
    const Address places[] = {0, 0xFFF0, 0xFFFFF0, in(0, top), top};
    const Address first = std::min(places[random() % 5], top), last = first + size - 1;
    const Address saveFirst = in(first, last), saveLast = in(saveFirst, std::min(last, saveFirst + 0x8000));
    const int length = static_cast<int>(in(1, 0xFA));  // longer S records may pass a count of 255
    const Address offset =
        in(-std::min<Address>(saveFirst, 0x1000000), std::min<Address>(kAddressMax - last, 0x1000000));
    Module1 source = Image(first, last, 0, saveFirst, saveLast, length);
    for (Address a = first; a <= last; ++a) source.At(a) = static_cast<std::uint8_t>(random());
    // The HEX writer fills its last record up to the area's end.
    const Address hexEnd = std::min(saveFirst + ((saveLast - saveFirst) / length + 1) * length - 1, last);
    SCOPED_TRACE(testing::Message() << std::hex << first << ":" << last << " " << saveFirst << ":" << saveLast
                                    << " " << length << " " << offset);
    TempDir dir;
    ScriptedPlatform platform;
    for (const std::string format : {"BIN", "HEX", "S"}) {
      SCOPED_TRACE(format);
      const std::string path = (dir / ("image." + format)).string();
      ASSERT_EQ(Write(format, source, path, platform), SaveOutcome::Done);
      // Into an image a little wider than the shifted range, each byte first the complement of what it may be
      // given.
      const Address backFirst = std::max<Address>(0, saveFirst + offset - 0x20);
      const Address backLast = std::min<Address>(kAddressMax, hexEnd + offset + 0x20);
      auto given = [&](Address a) {
        return a - offset >= first && a - offset <= last ? source.At(a - offset) : 0xA5;
      };
      Module1 back = test::MakeImage(backFirst, backLast);
      for (Address a = backFirst; a <= backLast; ++a) back.At(a) = static_cast<std::uint8_t>(~given(a));
      back.LoadOffset =
          format == "BIN" ? saveFirst + offset - backFirst : offset;  // BIN counts from LoadFirst
      back.LoadFileName = path;
      const LoadReport report = LoadObjectFile(back, platform, backFirst, backLast, "image." + format);
      ASSERT_TRUE(report.Loaded()) << report.message;
      for (Address a = backFirst; a <= backLast && !HasFailure(); ++a) {
        const bool stored = a - offset >= saveFirst && a - offset <= (format == "HEX" ? hexEnd : saveLast);
        EXPECT_EQ(back.At(a), static_cast<std::uint8_t>(stored ? given(a) : ~given(a)))
            << "byte at " << std::hex << a;
      }
    }
  }
}

TEST(RoundTrip, SrecCatReadsTheSameBytes) {
  if (test::kWindows) GTEST_SKIP() << "srec_cat is a Linux program: the Linux run compares with it";
  if (!fs::exists("/usr/bin/srec_cat")) GTEST_SKIP() << "srec_cat is not installed";
  // Under a segment base srec_cat folds a record that runs past a 64 K boundary back into its
  // segment, as Intel defines it; our records keep rising addresses, so no case has such a record.
  // The area is the range, so the HEX writer's last record ends where the range does.
  const struct {
    Address first, last;
    int length;
  } cases[] = {
      {0xFFF00, 0x1000FF, 0x80},       // segment bases giving way to linear ones
      {0x10FFF0, 0x13000F, 0x0B},      // linear bases, records across 64 K boundaries
      {0xFFFFFF00, 0xFFFFFFFF, 0x0D},  // the top of the address space
  };
  std::mt19937_64 random(7);
  ScriptedPlatform platform;
  TempDir dir;
  const std::string file = (dir / "image.txt").string(), out = (dir / "image.bin").string();
  for (const auto& c : cases) {
    Module1 m = Image(c.first, c.last, 0, c.first, c.last, c.length);
    for (Address a = c.first; a <= c.last; ++a) m.At(a) = static_cast<std::uint8_t>(random());
    const std::string area(reinterpret_cast<const char*>(m.Buffer.data()),
                           static_cast<std::size_t>(m.BufSize));
    for (const std::string format : {"HEX", "S"}) {
      SCOPED_TRACE(AddressToText(c.first) + " " + format);
      ASSERT_EQ(Write(format, m, file, platform), SaveOutcome::Done);
      const auto r = test::RunProgram({"/usr/bin/srec_cat", file, format == "HEX" ? "-intel" : "-motorola",
                                       "-offset", "-0x" + AddressToText(c.first), "-o", out, "-binary"});
      EXPECT_EQ(r.status, 0) << r.err;
      EXPECT_TRUE(ReadFile(out) == area) << "srec_cat read other bytes";
    }
  }
}

const char* const kObject = "Object File Only";
const char* const kYsm = "YSM File Only";
const char* const kPair = "Object and YSM File";

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
    f = {.Drive2 = "/",
         .Dir2 = dir.path().string(),
         .File2 = {},
         .Text5 = c.text5,
         .Text7 = c.text7,
         .Text6 = c.text6,
         .Text4 = c.text4,
         .Combo1 = c.combo1,
         .Combo2 = c.combo2,
         .Combo3 = c.combo3};
  }
  bool Save() { return Command5_Click(f, m, platform, store); }
  std::string Files() const {  // in order, one blank between
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(dir.path())) names.insert(e.path().filename().string());
    std::string list;
    for (const auto& name : names) list += (list.empty() ? "" : " ") + name;
    return list;
  }
  // Pointer and buttons are back, whatever the way out was.
  void ExpectReady() const {
    EXPECT_TRUE(platform.pointer == vbDefault && f.Command5Enabled && f.Command2Enabled);
  }
};

TEST(SaveFlow, RefusalsInTheirOrder) {
  // Each row holds the faults of the later rows as well; text7 is Text7 after the refusal.
  const struct {
    Change change;
    const char *notice, *text7;
  } cases[] = {
      {{.text7 = "", .text6 = ""}, "FirstAddress Error!", ""},
      {{.text7 = "1", .text6 = "", .text4 = ""}, "LastAddress Error!", "1"},  // not padded yet
      {{.text7 = "90000", .text6 = "80000", .text4 = "", .combo2 = "HEX"}, "Address Error!", "00090000"},
      {{.text7 = "80000", .text6 = "90000", .text4 = "0", .combo2 = "S"}, "RecordLength Error!", "00080000"},
      {{.text7 = "80000", .text6 = "90000"}, "FirstAddress Error!", "00080000"},
      {{.text7 = "1", .text6 = "80000", .text5 = ""}, "LastAddress Error!", "00000001"},
      {{.text4 = "100", .combo2 = "HEX"},
       "RecordLength Error!",
       "00000000"},  // only stored text has 3 digits
      {{.text4 = ".5", .combo2 = "S"}, "RecordLength Error!", "00000000"},
      {{.combo1 = "", .combo2 = "", .combo3 = "", .text5 = ""}, "Enter or Select File Name!", "00000000"},
      {{.combo1 = "", .combo2 = "", .combo3 = ""}, "Format Error!", "00000000"},
      {{.combo1 = "", .combo3 = "", .text5 = "prog.S"}, "File Type Error!", "00000000"},
      {{.combo3 = "", .text5 = "prog.S"},
       "YSM File Format Error!",
       "00000000"},  // though no YSM file is made
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
    w.ExpectReady();
    EXPECT_TRUE(w.Files().empty() && w.store.values.empty());
  }
  // The range and length are taken before they are judged.
  World w({.text7 = "90000", .text6 = "80000", .text4 = "2A"});
  EXPECT_FALSE(w.Save());
  EXPECT_EQ(std::tuple(w.m.SaveFirst, w.m.SaveLast, w.m.RecordLength, w.f.Text6),
            std::tuple(0x90000, 0x80000, 0x2A, "00080000"));
}

TEST(SaveFlow, NamesPromptsAndFiles) {
  // When names are listed, prog.BIN holds 300 old bytes. answers: Y or N for each prompt. messages: "?" for
  // "Over Write?", "name?" for "name File Over Write?", else the notice's start. files and text5: the folder
  // and Text5 afterwards. binSize: of prog.BIN afterwards, 0 for none.
  const struct {
    Change change;
    std::vector<std::string> listed;
    const char *answers, *messages, *files, *text5;
    std::size_t binSize;
  } cases[] = {
      {{.combo2 = "S", .text5 = "prog.txt"}, {}, "", "S", "prog.txt", "prog.txt", 0},
      {{.text5 = "abc."}, {}, "", "BIN", "abc..BIN", "abc..BIN", 0},
      {{.combo2 = "HEX"}, {}, "", "HEX", "prog.HEX", "prog.HEX", 0},
      {{.combo2 = "S", .text5 = "prog.YSM"}, {}, "", "S", "prog.YSM", "prog.YSM", 0},
      {{.text4 = ""}, {}, "", "BIN", "prog.BIN", "prog.BIN", 256},  // BIN takes any record length
      {{.text4 = ".5"}, {}, "", "BIN", "prog.BIN", "prog.BIN", 256},
      {{.combo1 = kPair, .combo2 = "S", .text5 = "prog.YSM"},
       {},
       "",
       "S and YSM",
       "prog.S prog.YSM",
       "prog.YSM",
       0},
      {{.text7 = "80", .text6 = "80"}, {}, "", "BIN", "prog.BIN", "prog.BIN", 1},
      {{.combo1 = kYsm, .combo2 = "HEX", .text5 = "prog.hex"}, {}, "", "YSM", "prog.hex", "prog.hex", 0},
      {{.combo1 = kPair, .combo3 = "16-16sum"}, {}, "", "BIN and YSM", "prog.BIN prog.YSM", "prog.BIN", 256},
      {{.combo1 = kPair, .text5 = "a.b.c"}, {}, "", "BIN and YSM", "a.YSM a.b.c", "a.b.c", 0},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.ysm"},
       {},
       "",
       "HEX and YSM",
       "prog.HEX prog.ysm",
       "prog.ysm",
       0},
      {{}, {"other.BIN"}, "", "BIN", "prog.BIN", "prog.BIN", 300},  // not listed: the old file keeps its end
      {{}, {"a", "PROG.bin"}, "Y", "?|BIN", "prog.BIN", "prog.BIN", 256},
      {{}, {"prog.BIN"}, "N", "?", "prog.BIN", "prog.BIN", 300},
      {{.combo1 = kPair},
       {"prog.BIN", "prog.YSM"},
       "YY",
       "prog.BIN?|prog.YSM?|BIN and YSM",
       "prog.BIN prog.YSM",
       "prog.BIN",
       256},
      {{.combo1 = kPair}, {"prog.BIN", "prog.YSM"}, "YN", "prog.BIN?|prog.YSM?", "prog.BIN", "prog.BIN", 300},
      {{.combo1 = kPair}, {"prog.BIN", "prog.YSM"}, "N", "prog.BIN?", "prog.BIN", "prog.BIN", 300},
      {{.combo1 = kPair, .combo2 = "HEX", .text5 = "prog.YSM"},
       {"prog.HEX", "prog.ysm"},
       "YN",
       "prog.HEX?|prog.YSM?",
       "prog.BIN",
       "prog.YSM",
       300},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(w.f.Combo1 + " " + w.f.Text5 + " " + testing::PrintToString(c.listed) + " " + c.answers);
    if (!c.listed.empty()) test::WriteFile(w.dir / "prog.BIN", std::string(300, 'x'));
    w.f.File2 = c.listed;
    const bool closes = !std::string(c.messages).ends_with('?');
    // Again with the name as it now stands: the same files.
    for (int press = 0; press < (c.listed.empty() ? 2 : 1); ++press) {
      w.platform.messages.clear();
      w.platform.pointersAtMessages.clear();
      for (const char* a = c.answers; *a; ++a) w.platform.answers.push_back(*a == 'Y' ? vbYes : vbNo);
      EXPECT_EQ(w.Save(), closes);
      std::string texts;
      for (std::size_t i = 0; i < w.platform.messages.size(); ++i) {
        const test::Message& m = w.platform.messages[i];
        const bool prompt = m.text.ends_with('?');
        EXPECT_EQ(std::tuple(m.style, m.title, w.platform.pointersAtMessages[i]),
                  prompt ? std::tuple(vbExclamationYesNo, "Save", vbDefault)
                         : std::tuple(vbOKOnly, "", vbHourglass));
        texts += (i ? "|" : "");
        texts +=
            std::regex_replace(m.text, std::regex("^Over Write| File Over Write| File Save Complete!"), "");
      }
      EXPECT_EQ(texts, c.messages);
      EXPECT_EQ(w.Files(), c.files);
      EXPECT_EQ(w.f.Text5, c.text5);
      w.ExpectReady();
      EXPECT_EQ(w.store.values.empty(), !closes);
    }
    EXPECT_EQ(fs::exists(w.dir / "prog.BIN") ? ReadFile(w.dir / "prog.BIN").size() : 0u, c.binSize);
    for (const auto& entry : fs::directory_iterator(w.dir.path())) {  // each file from its writer
      const std::string name = entry.path().filename().string(), text = ReadFile(entry.path());
      const bool ysm = w.f.Combo1 == kYsm ||
                       (w.f.Combo1 == kPair && EqualsIgnoreCase(name.substr(name.size() - 3), "YSM"));
      const std::string start = !closes ? std::string(300, 'x')
                                : ysm   ? (w.f.Combo3 == "8-8SUM" ? "S306" : "S307")
                                : w.f.Combo2 == "BIN"
                                    ? std::string(1, static_cast<char>(w.m.At(w.m.SaveFirst)))
                                : w.f.Combo2 == "HEX" ? ":1"
                                                      : "S1";
      EXPECT_TRUE(text.starts_with(start)) << name;
    }
  }
}

TEST(SaveFlow, SettingsStoredOnlyAfterSuccess) {
  World w({.text4 = "2", .combo1 = kPair, .combo2 = "HEX", .combo3 = "8-16SUM"});
  w.f.Drive2 = "/home";
  ASSERT_TRUE(w.Save());
  MemorySettings expected;
  for (const auto& [section, key, value] :
       std::initializer_list<std::tuple<const char*, const char*, std::string>>{
           {kAddress, "SaveFirst", "00000000"},
           {kAddress, "SaveLast", "000000FF"},
           {kAddress, "RecordLength", "2"},
           {kFormat, "FileType", kPair},
           {kFormat, "ObjectFileFormat", "HEX"},
           {kFormat, "YSMFileFormat", "8-16SUM"},
           {kFilePath, "SaveDrive", "/home"},
           {kFilePath, "SaveDir", w.dir.path().string()}})
    expected.Write(section, key, value);
  EXPECT_EQ(w.store.values, expected.values);
}

// The stored types pick their items ignoring case and switch the lists on and off; an unknown type
// leaves the lists as they were.
TEST(SaveFlow, OpeningSwitchesTheListsTheStoredTypesNeed) {
  const struct {
    const char *type, *format, *combo1, *combo2;
    bool combo2On, combo3On, text4On;
  } cases[] = {
      {nullptr, nullptr, kObject, "BIN", true, false, false},
      {"ysm file only", "hex", kYsm, "HEX", false, true, true},
      {"OBJECT AND YSM FILE", "S", kPair, "S", true, true, true},
      {"Everything", "ELF", "", "", true, true, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.combo1);
    MemorySettings store;
    if (c.type) store.Write(kFormat, "FileType", c.type);
    if (c.format) store.Write(kFormat, "ObjectFileFormat", c.format);
    SaveFields f;
    cmdsave_Click(f, test::MakeImage(), store);
    EXPECT_EQ(std::tie(f.Combo1, f.Combo2), std::tie(c.combo1, c.combo2));
    EXPECT_EQ(std::vector({f.Combo2Enabled, f.Combo3Enabled, f.Text4Enabled}),
              std::vector({c.combo2On, c.combo3On, c.text4On}));
  }
}

// The writers' faults are theirs; the Save button shows them, stays open, stores nothing and writes a pair's
// YSM file all the same.
TEST(SaveFlow, FailuresNameTheFileAndStoreNothing) {
  if (test::kWindows) GTEST_SKIP() << "Windows has no full device to link to";
  // @ in message is the test's folder; full.S stands for a full device. In the S file cut short what came
  // before stays. Without its refusal sub/prog would land in sub.
  const struct {
    Change change;
    const char *message, *files;
  } cases[] = {
      {{.combo1 = kPair, .combo2 = "S", .text5 = "full"},
       "@/full.S: No space left on device",
       "full.S full.YSM sub"},
      {{.text6 = "1FF", .text4 = "FD", .combo1 = kPair, .combo2 = "S"},
       "Record Length Error!",
       "full.S prog.S prog.YSM sub"},
      {{.text5 = "sub/prog"}, "Can't save @/sub/prog: a file name can't hold a folder.", "full.S sub"},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(c.message);
    fs::create_directory(w.dir / "sub");
    fs::create_symlink("/dev/full", w.dir / "full.S");
    w.f.Dir2 += "/";  // as a root ends: no second separator
    EXPECT_FALSE(w.Save());
    const std::string message = std::regex_replace(c.message, std::regex("@"), w.dir.path().string());
    EXPECT_NE(w.platform.Texts().back().find(message), std::string::npos)
        << testing::PrintToString(w.platform.Texts());
    w.ExpectReady();
    EXPECT_TRUE(w.m.FileError == 0 && w.store.values.empty());
    EXPECT_EQ(w.Files(), c.files);
    // Saved again as HEX without closing the dialog: nothing is left over from the failure.
    w.f.Combo2 = "HEX", w.f.Text5 = "prog";
    EXPECT_TRUE(w.Save());
    EXPECT_TRUE(w.platform.Texts().back().starts_with("HEX")) << w.platform.Texts().back();
  }
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
    EXPECT_FALSE(Command1_Click(f, m, platform, store)) << "the dialog stays open";
    EXPECT_EQ(platform.Texts(),
              std::vector<std::string>{"Cannot read " + JoinPath(f.Dir1, f.File1) + ": " + c.reason});
    EXPECT_TRUE(m.FileError == 0 && platform.pointer == vbDefault && f.Command1Enabled && f.Command2Enabled);
    EXPECT_TRUE(store.values.empty() && m.frmsumtool.Text1 == "before.bin" && m.frmsumtool.List1.empty());
    EXPECT_EQ(std::count(m.Buffer.data(), m.Buffer.data() + m.BufSize, 0xFF), m.BufSize)
        << "the image untouched";
  }
}

}  // namespace
}  // namespace kestrum
