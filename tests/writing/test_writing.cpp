// What the writers write: the worked examples of the formats byte for byte,
// the S count limit, the file faults met through the one output file all the
// writers share, and round trips of random images through each writer and
// back through our loader, with srec_cat, a peer tool, reading the same bytes.
// The sums themselves are the sum tests'; here only how a YSM file holds them.
// The naming of a save without a disk; then the Save button: its refusals in
// their order, its prompts before a listed file, the writer of each file, the
// settings it stores only after a success, and what a failed save leaves.
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
#include <set>
#include <string>
#include <variant>
#include <vector>

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

constexpr int kElevens = -1;    // 00 11 22 ... FF from the first address on
constexpr int kSumSample = -2;  // FF, but 12 34 56 78 9A BC DE F0 at 00001000

struct Range {
  Address first, last;
};

// An image and the part of it a writer is to write; fill is a byte or one of the patterns above.
struct Given {
  Range area;
  int fill;
  Range save;
  int length = 0x10;
};

Module1 Image(const Given& g) {
  Module1 m = test::MakeImage(g.area.first, g.area.last);
  if (g.fill >= 0) std::fill_n(m.Buffer.data(), m.BufSize, static_cast<std::uint8_t>(g.fill));
  for (Address a = g.area.first; g.fill == kElevens && a <= g.area.last; ++a)
    m.At(a) = static_cast<std::uint8_t>((a - g.area.first) * 0x11);
  const std::uint8_t sample[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};
  for (Address i = 0; g.fill == kSumSample && i < 8; ++i) m.At(0x1000 + i) = sample[i];
  m.SaveFirst = g.save.first;
  m.SaveLast = g.save.last;
  m.RecordLength = static_cast<std::int16_t>(g.length);
  return m;
}

// An object writer, or the YSM writer with its sum.
using Writer = std::variant<ObjectFormat, SumKind>;

Outcome Write(Writer writer, Module1& m, const std::string& path) {
  if (const auto* sum = std::get_if<SumKind>(&writer)) return SaveYsmFile(m, path, *sum);
  return SaveObjectFile(m, std::get<ObjectFormat>(writer), path);
}

TEST(Writers, WrittenTextByteForByte) {
  const struct {
    Given given;
    Writer writer;
    std::string text;  // a YSM file's two fixed lines left out
  } cases[] = {
      // HEX 1: the last record cut at BufLast.
      {.given = {.area = {0, 0xF}, .fill = kElevens, .save = {3, 0xF}, .length = 8},
       .writer = HEX,
       .text = ":0800030033445566778899AA81\r\n:05000B00BBCCDDEEFF9F\r\n:00000001FF\r\n"},
      // HEX 2: no split at 64 K, the last record whole past SaveLast.
      {.given = {.area = {0, 0x7FFFF}, .fill = 0xFF, .save = {0xFFF8, 0x1000F}},
       .writer = HEX,
       .text = ":10FFF800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF09\r\n:020000021000EC\r\n"
               ":10000800FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF8\r\n:00000001FF\r\n"},
      // HEX 3: a linear base first; ending on a record's end leaves no empty record behind it.
      {.given =
           {.area = {0x12340000, 0x1234FFFF}, .fill = 0xFF, .save = {0x12340000, 0x12340007}, .length = 4},
       .writer = HEX,
       .text = ":020000041234B4\r\n:04000000FFFFFFFF00\r\n:04000400FFFFFFFFFC\r\n:00000001FF\r\n"},
      // HEX: one byte, the record cut by BufLast.
      {.given = {.area = {0, 0x7}, .fill = 0xFF, .save = {5, 5}},
       .writer = HEX,
       .text = ":03000500FFFFFFFB\r\n:00000001FF\r\n"},
      // HEX: check sum 00.
      {.given = {.area = {0, 0xFF}, .fill = 0xFF, .save = {0, 0}, .length = 1},
       .writer = HEX,
       .text = ":01000000FF00\r\n:00000001FF\r\n"},
      // HEX: base FFFF.
      {.given =
           {.area = {0xFFFFFFF0, 0xFFFFFFFF}, .fill = 0xFF, .save = {0xFFFFFFFF, 0xFFFFFFFF}, .length = 1},
       .writer = HEX,
       .text = ":02000004FFFFFC\r\n:01FFFF00FF02\r\n:00000001FF\r\n"},
      // HEX: segment bases give way to linear ones at 00100000.
      {.given = {.area = {0xF0000, 0x10000F}, .fill = 0xFF, .save = {0xFFFF8, 0x100007}, .length = 8},
       .writer = HEX,
       .text = ":02000002F0000C\r\n:08FFF800FFFFFFFFFFFFFFFF09\r\n:020000040010EA\r\n"
               ":08000000FFFFFFFFFFFFFFFF00\r\n:00000001FF\r\n"},
      // HEX: a length that doesn't divide 65536 picks up at 0008.
      {.given = {.area = {0, 0x1FFFF}, .fill = 0xFF, .save = {0xFFF0, 0x10014}, .length = 0xC},
       .writer = HEX,
       .text =
           ":0CFFF000FFFFFFFFFFFFFFFFFFFFFFFF11\r\n:0CFFFC00FFFFFFFFFFFFFFFFFFFFFFFF05\r\n:020000021000EC\r\n"
           ":0C000800FFFFFFFFFFFFFFFFFFFFFFFFF8\r\n:0C001400FFFFFFFFFFFFFFFFFFFFFFFFEC\r\n:00000001FF\r\n"},
      // S 1: the last record cut at SaveLast.
      {.given = {.area = {0, 0xF}, .fill = kElevens, .save = {3, 0xF}, .length = 8},
       .writer = S,
       .text = "S10B000333445566778899AA7D\r\nS108000BBBCCDDEEFF9B\r\nS9030000FC\r\n"},
      // S 2: S1 runs past 0000FFFF, then S2.
      {.given = {.area = {0, 0x7FFFF}, .fill = 0xFF, .save = {0xFFF8, 0x1000F}},
       .writer = S,
       .text =
           "S113FFF8FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF05\r\nS20C010008FFFFFFFFFFFFFFFFF2\r\nS9030000FC\r\n"},
      // S 3: S3.
      {.given =
           {.area = {0x12340000, 0x1234FFFF}, .fill = 0xFF, .save = {0x12340000, 0x12340007}, .length = 4},
       .writer = S,
       .text = "S30912340000FFFFFFFFB4\r\nS30912340004FFFFFFFFB0\r\nS9030000FC\r\n"},
      // S: 0000FFFF is S1, 00010000 S2.
      {.given = {.area = {0, 0x1FFFF}, .fill = 0xFF, .save = {0xFFFF, 0x10000}, .length = 1},
       .writer = S,
       .text = "S104FFFFFFFE\r\nS205010000FFFA\r\nS9030000FC\r\n"},
      // S: 00FFFFFF is S2, 01000000 S3.
      {.given = {.area = {0xFFFF00, 0x10000FF}, .fill = 0xFF, .save = {0xFFFFFF, 0x1000000}, .length = 1},
       .writer = S,
       .text = "S205FFFFFFFFFE\r\nS30601000000FFF9\r\nS9030000FC\r\n"},
      // YSM 1 to 3, the last with an odd last address.
      {.given = {.area = {0, 0x1FFF}, .fill = kSumSample, .save = {0x1000, 0x1005}},
       .writer = SumKind::Sum8_8,
       .text = "S306000000006A8F\r\n"},
      {.given = {.area = {0, 0x1FFF}, .fill = kSumSample, .save = {0x1000, 0x1005}},
       .writer = SumKind::Sum8_16,
       .text = "S30700000000026A8C\r\n"},
      {.given = {.area = {0, 0x1FFF}, .fill = kSumSample, .save = {0x1000, 0x1005}},
       .writer = SumKind::Sum16_16,
       .text = "S3070000000003688D\r\n"},
      // YSM: the 8-16 sum FFFF takes x past 255; the 8-8 sum F9 makes x FF, FA wraps it to 00.
      {.given = {.area = {0, 0x1FFF}, .fill = 0xFF, .save = {0, 0x100}},
       .writer = SumKind::Sum8_16,
       .text = "S30700000000FFFFFA\r\n"},
      {.given = {.area = {0, 0xF}, .fill = 0xF9, .save = {4, 4}},
       .writer = SumKind::Sum8_8,
       .text = "S30600000000F900\r\n"},
      {.given = {.area = {0, 0xF}, .fill = 0xFA, .save = {4, 4}},
       .writer = SumKind::Sum8_8,
       .text = "S30600000000FAFF\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, c.text.find('\r')));
    TempDir dir;
    Module1 m = Image(c.given);
    const std::string path = (dir / "out").string();
    const bool ysm = std::holds_alternative<SumKind>(c.writer);
    EXPECT_TRUE(Write(c.writer, m, path).IsDone());
    EXPECT_EQ(ReadFile(path), c.text + (ysm ? "S3060000000001F8\r\nS70500000000FA\r\n" : ""));
  }
}

TEST(Writers, SCountAbove255StopsBeforeTheRecord) {
  const std::string ff252(0xFC * 2, 'F');
  const struct {
    Range save;
    int length;
    bool fails;
    std::string kept;  // the first line, or of a failure all the lines before it
  } cases[] = {
      // The largest whole record of each type.
      {.save = {0, 0xFB}, .length = 0xFC, .fails = false, .kept = "S1FF0000"},
      {.save = {0x10000, 0x100FA}, .length = 0xFB, .fails = false, .kept = "S2FF010000"},
      {.save = {0x1000000, 0x10000F9}, .length = 0xFA, .fails = false, .kept = "S3FF01000000"},
      {.save = {0, 0xF9}, .length = 0xFF, .fails = false, .kept = "S1FD0000"},  // FF cut to FA bytes
      {.save = {0, 0xFC}, .length = 0xFF, .fails = true, .kept = ""},  // FF cut to FD bytes: count 256
      {.save = {0x1000000, 0x10001FF}, .length = 0xFB, .fails = true, .kept = ""},
      {.save = {0xFF00, 0x101FF},
       .length = 0xFC,
       .fails = true,
       .kept = "S1FFFF00" + ff252 + "FD\r\nS1FFFFFC" + ff252 + "01\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.save.first) + " length " + HexByteText(c.length));
    TempDir dir;
    Module1 m = Image({.area = {0, 0x10001FF}, .fill = 0xFF, .save = c.save, .length = c.length});
    const auto path = dir / "out.S";
    const Outcome outcome = SaveSFile(m, path.string());
    EXPECT_EQ(outcome.ending, c.fails ? Ending::Refused : Ending::Done);
    EXPECT_EQ(outcome.words, c.fails ? kRecordLengthError : "");
    const std::string text = ReadFile(path);
    EXPECT_EQ(c.fails ? text : text.substr(0, c.kept.size()), c.kept);
    if (!c.fails) {
      EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
      continue;
    }
    // Without keeping the cut-short file, the old one stays whole.
    test::WriteFile(path, "old content");
    EXPECT_EQ(SaveSFile(m, path.string(), {.keepPartial = false, .progress = {}}).words, kRecordLengthError);
    EXPECT_EQ(ReadFile(path), "old content");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 1) << "a working file stayed";
  }
}

// The writers share one output file; each fault once, through one writer.
TEST(Writers, FileFaultsNameTheReasonAndKeepTheOldFile) {
  using namespace std::string_literals;
  // The target is in the test's folder but for /dev/full; read-only is tried without root's rights.
  const struct {
    Writer writer;
    std::string target;
    const char *doing, *reason;
  } cases[] = {
      {HEX, "/dev/full", "write", "No space left on device"},  // a device: written in place
      {BIN, "missing/a", "create", "No such file or directory"},
      {SumKind::Sum8_8, "folder", "create", "Is a directory"},
      {S, "old", "write", "File too large"},              // a write that fails half-way
      {BIN, "read-only", "create", "Permission denied"},  // though its folder would let a new file in
      {HEX, "a\0b"s, "create", "the name holds a NUL character"},  // not cut short to another file
  };
  const std::map<std::string, const char*> posixOnly{
      {"/dev/full", "Windows has no full device"},
      {"old", "Windows has no file size limit to stop a write half-way"},
      {"read-only", "Wine run by the superuser opens read-only files for writing"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reason);
    if (posixOnly.count(c.target) && test::SkipOnWindows(posixOnly.at(c.target))) continue;
    TempDir dir;
    fs::permissions(dir.path(), fs::perms::all);
    fs::create_directory(dir / "folder");
    test::WriteFile(dir / "old", "the old image");
    test::WriteFile(dir / "read-only", "kept");
    fs::permissions(dir / "read-only", fs::perms::owner_read | fs::perms::others_read);
    const std::string target = c.target[0] == '/' ? c.target : dir.path().string() + "/" + c.target;
    const auto check = [&] {
      Module1 m = Image({.area = {0, 0xFFFF}, .fill = 0xFF, .save = {0, 0xFFFF}});
      const test::FileSizeLimit limit(4096);  // only the write into old grows a file
      const Outcome failed = Write(c.writer, m, target);
      const Outcome expected = Outcome::Fail("Can't "s + c.doing + " " + target + ": " + c.reason, target);
      return failed == expected ? "" : testing::PrintToString(std::tuple(failed.words, failed.file));
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
    Module1 m = Image({.area = {0, 0xFF}, .fill = 0xFF, .save = {0, 0}});
    ASSERT_TRUE(SaveHexFile(m, (dir / c.save).string()).IsDone());
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
    Module1 source =
        Image({.area = {first, last}, .fill = 0, .save = {saveFirst, saveLast}, .length = length});
    for (Address a = first; a <= last; ++a) source.At(a) = static_cast<std::uint8_t>(random());
    // The HEX writer fills its last record up to the area's end.
    const Address hexEnd = std::min(saveFirst + ((saveLast - saveFirst) / length + 1) * length - 1, last);
    SCOPED_TRACE(testing::Message() << std::hex << first << ":" << last << " " << saveFirst << ":" << saveLast
                                    << " " << length << " " << offset);
    TempDir dir;
    for (const ObjectFormat format : {BIN, HEX, S}) {
      const std::string name = "image." + std::string(NameOf(format)), path = (dir / name).string();
      SCOPED_TRACE(name);
      ASSERT_TRUE(SaveObjectFile(source, format, path).IsDone());
      // Into an image a little wider than the shifted range, each byte first the complement of what it may be
      // given.
      const Address backFirst = std::max<Address>(0, saveFirst + offset - 0x20);
      const Address backLast = std::min<Address>(kAddressMax, hexEnd + offset + 0x20);
      auto given = [&](Address a) {
        return a - offset >= first && a - offset <= last ? source.At(a - offset) : 0xA5;
      };
      Module1 back = test::MakeImage(backFirst, backLast);
      for (Address a = backFirst; a <= backLast; ++a) back.At(a) = static_cast<std::uint8_t>(~given(a));
      back.LoadOffset = format == BIN ? saveFirst + offset - backFirst : offset;  // BIN counts from LoadFirst
      back.LoadFileName = path;
      const LoadReport report = LoadObjectFile(back, backFirst, backLast, name);
      ASSERT_TRUE(report.Loaded()) << report.outcome.words;
      for (Address a = backFirst; a <= backLast && !HasFailure(); ++a) {
        const bool stored = a - offset >= saveFirst && a - offset <= (format == HEX ? hexEnd : saveLast);
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
  TempDir dir;
  const std::string file = (dir / "image.txt").string(), out = (dir / "image.bin").string();
  for (const auto& c : cases) {
    Module1 m = Image({.area = {c.first, c.last}, .fill = 0, .save = {c.first, c.last}, .length = c.length});
    for (Address a = c.first; a <= c.last; ++a) m.At(a) = static_cast<std::uint8_t>(random());
    const std::string area(reinterpret_cast<const char*>(m.Buffer.data()),
                           static_cast<std::size_t>(m.BufSize));
    for (const ObjectFormat format : {HEX, S}) {
      SCOPED_TRACE(AddressToText(c.first) + " " + std::string(NameOf(format)));
      ASSERT_TRUE(SaveObjectFile(m, format, file).IsDone());
      const auto r = test::RunProgram({"/usr/bin/srec_cat", file, format == HEX ? "-intel" : "-motorola",
                                       "-offset", "-0x" + AddressToText(c.first), "-o", out, "-binary"});
      EXPECT_EQ(r.status, 0) << r.err;
      EXPECT_TRUE(ReadFile(out) == area) << "srec_cat read other bytes";
    }
  }
}

const char* const kObject = "Object File Only";
const char* const kYsm = "YSM File Only";
const char* const kPair = "Object and YSM File";

constexpr FileType kOnly = FileType::ObjectOnly, kYsmOnly = FileType::YsmOnly, kBoth = FileType::ObjectAndYsm;

std::string InF(const std::string& bare) { return bare.empty() ? bare : JoinPath("/f", bare); }

// The files a save into /f makes, without a disk, and what Text5 shows afterwards.
TEST(SaveNaming, FilesAndText5) {
  const struct {
    FileType type = kOnly;
    ObjectFormat format = BIN;
    std::string name, object = {}, ysm = {}, text5 = {};  // the files' bare names; empty for none
  } cases[] = {
      {.format = S, .name = "prog.txt", .object = "prog.txt", .text5 = "prog.txt"},
      {.name = "abc.", .object = "abc..BIN", .text5 = "abc..BIN"},  // no extension behind its first "."
      {.format = HEX, .name = "prog", .object = "prog.HEX", .text5 = "prog.HEX"},
      {.format = S, .name = "prog.YSM", .object = "prog.YSM", .text5 = "prog.YSM"},
      {.type = kYsmOnly, .format = HEX, .name = "prog.hex", .ysm = "prog.hex", .text5 = "prog.hex"},
      {.type = kYsmOnly, .name = "prog", .ysm = "prog.YSM", .text5 = "prog.YSM"},
      {.type = kBoth, .name = "prog", .object = "prog.BIN", .ysm = "prog.YSM", .text5 = "prog.BIN"},
      {.type = kBoth,
       .format = S,
       .name = "prog.YSM",
       .object = "prog.S",
       .ysm = "prog.YSM",
       .text5 = "prog.YSM"},
      {.type = kBoth,
       .format = HEX,
       .name = "prog.ysm",
       .object = "prog.HEX",
       .ysm = "prog.ysm",
       .text5 = "prog.ysm"},
      {.type = kBoth, .name = "a.b.c", .object = "a.b.c", .ysm = "a.YSM", .text5 = "a.b.c"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(NameOf(c.type)) + " " + std::string(NameOf(c.format)) + " " + c.name);
    const SaveNames n = NameSave("/f", c.name, c.format, c.type, {});
    EXPECT_TRUE(n.refusal.IsDone());
    EXPECT_EQ(n.objectPath, InF(c.object));
    EXPECT_EQ(n.ysmPath, InF(c.ysm));
    EXPECT_EQ(n.text5, c.text5);
    EXPECT_TRUE(n.prompts.empty());
  }
}

// A name the save refuses stays as typed.
TEST(SaveNaming, Refusals) {
  const struct {
    FileType type;
    ObjectFormat format;
    std::string name, words;
  } cases[] = {
      {.type = kOnly, .format = BIN, .name = "prog.hEx", .words = "Extension Error!"},
      {.type = kBoth, .format = S, .name = "prog.hex", .words = "Extension Error!"},
      {.type = kYsmOnly,
       .format = BIN,
       .name = "sub/prog",
       .words = "Can't save " + InF("sub/prog") + ": a file name can't hold a folder."},
  };
  for (const auto& c : cases) {
    const SaveNames n = NameSave("/f", c.name, c.format, c.type, {});
    EXPECT_EQ(n.refusal.ending, Ending::Refused);
    EXPECT_EQ(n.refusal.words, c.words);
    EXPECT_EQ(n.text5, c.name);
  }
}

// Listed names, compared ignoring case, bring their prompts in order; Yes to a listed BIN object file
// replaces it whole.
TEST(SaveNaming, PromptsForListedNames) {
  const struct {
    FileType type = kOnly;
    ObjectFormat format = BIN;
    std::string name;
    std::vector<std::string> listed, prompts;
    bool replaceObject = false;
  } cases[] = {
      {.name = "prog", .listed = {"a", "PROG.bin"}, .prompts = {"Over Write?"}, .replaceObject = true},
      {.format = HEX, .name = "prog.HEX", .listed = {"prog.HEX"}, .prompts = {"Over Write?"}},
      {.type = kYsmOnly, .name = "prog", .listed = {"prog.YSM"}, .prompts = {"Over Write?"}},
      {.type = kBoth,
       .name = "prog",
       .listed = {"prog.BIN", "prog.YSM"},
       .prompts = {"prog.BIN File Over Write?", "prog.YSM File Over Write?"},
       .replaceObject = true},
      {.type = kBoth, .name = "prog", .listed = {"prog.ysm"}, .prompts = {"prog.YSM File Over Write?"}},
      {.type = kBoth,
       .format = HEX,
       .name = "prog.YSM",
       .listed = {"prog.HEX", "prog.ysm"},
       .prompts = {"prog.HEX File Over Write?", "prog.YSM File Over Write?"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.prompts));
    const SaveNames n = NameSave("/f", c.name, c.format, c.type, c.listed);
    EXPECT_EQ(n.prompts, c.prompts);
    EXPECT_EQ(n.replaceObject, c.replaceObject);
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
  bool Save() { return frmsave::Command5_Click(f, m, platform, store); }
  std::vector<std::string> Files() const {
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(dir.path())) names.insert(e.path().filename().string());
    return {names.begin(), names.end()};
  }
  // Pointer and buttons are back, whatever the way out was.
  void ExpectReady() const {
    EXPECT_EQ(platform.pointer, vbDefault);
    EXPECT_TRUE(f.Command5Enabled);
    EXPECT_TRUE(f.Command2Enabled);
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
      {{.text4 = "", .combo1 = kYsm, .combo2 = "HEX"}, "RecordLength Error!", "00000000"},  // though YSM only
      {{.combo1 = "", .combo2 = "", .combo3 = "", .text5 = ""}, "Enter or Select File Name!", "00000000"},
      {{.combo1 = "", .combo2 = "", .combo3 = ""}, "Format Error!", "00000000"},
      {{.combo1 = "", .combo3 = "", .text5 = "prog.S"}, "File Type Error!", "00000000"},
      {{.combo3 = "", .text5 = "prog.S"},
       "YSM File Format Error!",
       "00000000"},  // though no YSM file is made
      {{.text5 = "prog.hEx"}, "Extension Error!", "00000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.notice);
    World w(c.change);
    EXPECT_FALSE(w.Save());
    EXPECT_EQ(w.platform.messages, (std::vector<test::Message>{{c.notice, vbOKOnly, ""}}));
    EXPECT_EQ(w.platform.pointersAtMessages, std::vector<int>{vbDefault});
    EXPECT_EQ(w.f.Text7, c.text7);
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
TEST(SaveFlow, PromptsBeforeAListedFile) {
  // prog.BIN holds 300 old bytes.
  const struct {
    Change change = {};
    std::vector<std::string> listed;
    std::vector<int> answers = {};
    std::vector<std::string> messages;
    std::vector<std::string> files;
    std::size_t binSize;
  } cases[] = {
      // Not listed: written without a prompt, the old file keeping its end; BIN takes any record length.
      {.change = {.text4 = ""},
       .listed = {"other.BIN"},
       .messages = {"BIN File Save Complete!"},
       .files = {"prog.BIN"},
       .binSize = 300},
      {.listed = {"a", "PROG.bin"},
       .answers = {vbYes},
       .messages = {"Over Write?", "BIN File Save Complete!"},
       .files = {"prog.BIN"},
       .binSize = 256},
      {.listed = {"prog.BIN"},
       .answers = {vbNo},
       .messages = {"Over Write?"},
       .files = {"prog.BIN"},
       .binSize = 300},
      {.change = {.combo1 = kPair},
       .listed = {"prog.BIN", "prog.YSM"},
       .answers = {vbYes, vbYes},
       .messages = {"prog.BIN File Over Write?", "prog.YSM File Over Write?",
                    "BIN and YSM File Save Complete!"},
       .files = {"prog.BIN", "prog.YSM"},
       .binSize = 256},
      {.change = {.combo1 = kPair},
       .listed = {"prog.BIN", "prog.YSM"},
       .answers = {vbYes, vbNo},
       .messages = {"prog.BIN File Over Write?", "prog.YSM File Over Write?"},
       .files = {"prog.BIN"},
       .binSize = 300},
      {.change = {.combo1 = kPair},
       .listed = {"prog.BIN", "prog.YSM"},
       .answers = {vbNo},
       .messages = {"prog.BIN File Over Write?"},
       .files = {"prog.BIN"},
       .binSize = 300},
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
// extension, makes the same files.
TEST(SaveFlow, EachFileFromItsWriter) {
  for (const char* format : {"BIN", "HEX", "S"}) {
    SCOPED_TRACE(format);
    World w({.text4 = "2", .combo1 = kPair, .combo2 = format, .combo3 = "16-16sum"});
    for (int press = 0; press < 2; ++press) {
      ASSERT_TRUE(w.Save());
      const std::string object = std::string("prog.") + format;
      EXPECT_EQ(w.Files(), (std::vector<std::string>{object, "prog.YSM"}));
      EXPECT_EQ(w.f.Text5, object);
      TempDir direct;
      ASSERT_TRUE(SaveObjectFile(w.m, *FromName<ObjectFormat>(format), (direct / "o").string()).IsDone());
      ASSERT_TRUE(SaveYsmFile(w.m, (direct / "y").string(), SumKind::Sum16_16).IsDone());
      EXPECT_EQ(ReadFile(w.dir / object), ReadFile(direct / "o"));
      EXPECT_EQ(ReadFile(w.dir / "prog.YSM"), ReadFile(direct / "y"));
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
    const char *type = nullptr, *format = nullptr, *combo1, *combo2;
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
    if (c.type) store.Write(kFormat, "FileType", c.type);
    if (c.format) store.Write(kFormat, "ObjectFileFormat", c.format);
    SaveFields f;
    frmsave::cmdsave_Click(f, test::MakeImage(), store);
    EXPECT_EQ(f.Combo1, c.combo1);
    EXPECT_EQ(f.Combo2, c.combo2);
    EXPECT_EQ(f.Combo2Enabled, c.combo2On);
    EXPECT_EQ(f.Combo3Enabled, c.combo3On);
    EXPECT_EQ(f.Text4Enabled, c.text4On);
  }
}

// The writers' faults are theirs; the Save button shows them, stays open, stores nothing and writes a pair's
// YSM file all the same.
TEST(SaveFlow, FailuresNameTheFileAndStoreNothing) {
  if (test::kWindows) GTEST_SKIP() << "Windows has no full device to link to";
  // full.S stands for a full device. In the S file cut short what came before stays.
  const struct {
    Change change;
    std::string message;  // after the test's folder
    std::vector<std::string> files;
  } cases[] = {
      {.change = {.combo1 = kPair, .combo2 = "S", .text5 = "full"},
       .message = "/full.S: No space left on device",
       .files = {"full.S", "full.YSM"}},
      {.change = {.text6 = "1FF", .text4 = "FD", .combo1 = kPair, .combo2 = "S"},
       .message = "Record Length Error!",
       .files = {"full.S", "prog.S", "prog.YSM"}},
  };
  for (const auto& c : cases) {
    World w(c.change);
    SCOPED_TRACE(c.message);
    fs::create_symlink("/dev/full", w.dir / "full.S");
    w.f.Dir2 += "/";  // as a root ends: no second separator
    EXPECT_FALSE(w.Save());
    EXPECT_TRUE(w.platform.Texts().back().ends_with(c.message)) << w.platform.Texts().back();
    w.ExpectReady();
    EXPECT_EQ(w.m.FileError, 0);
    EXPECT_TRUE(w.store.values.empty());
    EXPECT_EQ(w.Files(), c.files);
    // Saved again as HEX without closing the dialog: nothing is left over from the failure.
    w.f.Combo2 = "HEX", w.f.Text5 = "prog";
    EXPECT_TRUE(w.Save());
    EXPECT_EQ(w.platform.Texts().back(), "HEX and YSM File Save Complete!");
  }
}

}  // namespace
}  // namespace kestrum
