// The image and its state: address text, file names joined and read as
// UTF-8, the memory the machine can give, sizing the area, start-up and
// exit, the key filters and Buffer Clear.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>

#include "TestSupport.h"
#include "bufferops/ClearBuffer.h"
#include "image/Address.h"
#include "image/Files.h"
#include "image/KeyFilters.h"
#include "image/Module1.h"
#include "image/PageMemory.h"
#include "image/Paths.h"
#include "image/RecordCodec.h"
#include "image/Startup.h"
#include "image/System.h"

namespace kestrum {
namespace {

// Read by AddressFromText; written back by AddressToText and padded by
// PadAddressText, each the text itself when not given.
TEST(AddressText, ReadsTwoGroupsOfFourAndWritesEightDigits) {
  const struct {
    const char* text;
    Address value;
    const char *written = nullptr, *padded = nullptr;
  } cases[] = {
      {.text = "00000000", .value = 0},
      {.text = "0000FFFF", .value = 65535},  // unsigned, never -1
      {.text = "00010000", .value = 65536},
      {.text = "7FFFFFFF", .value = 0x7FFFFFFF},
      {.text = "80000000", .value = 0x80000000},
      {.text = "FFFFFFFF", .value = 4294967295},
      {.text = "ffff0000", .value = 4294901760, .written = "FFFF0000"},  // lower case counts
      // short text: both groups are the text
      {.text = "12", .value = 0x00120012, .written = "00120012", .padded = "00000012"},
      // the groups overlap
      {.text = "12345", .value = 0x12342345, .written = "12342345", .padded = "00012345"},
      // the middle character is not read
      {.text = "123456789", .value = 0x12346789, .written = "12346789", .padded = "23456789"},
      {.text = "12.40000", .value = 0x00120000, .written = "00120000"},  // a point ends its group
      {.text = "G1234567", .value = 0x4567, .written = "00004567"},      // a group that starts badly is 0
      {.text = "", .value = 0, .written = "00000000", .padded = "0000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(AddressFromText(c.text), c.value);
    EXPECT_EQ(AddressToText(c.value), c.written ? c.written : c.text);
    EXPECT_EQ(PadAddressText(c.text), c.padded ? c.padded : c.text);
  }
  for (const auto& [value, text] : {std::pair{10, "0A"}, {255, "FF"}, {0, "00"}})
    EXPECT_EQ(HexByteText(value), text);
}

TEST(Paths, JoinedWithOneSeparatorAndReadAsUtf8) {
  const struct {
    const char *folder, *windows, *posix;  // a.hex joined to folder on Windows, and elsewhere
  } cases[] = {
      {"", "a.hex", "a.hex"},
      {"fw", "fw\\a.hex", "fw/a.hex"},
      {"/", "/a.hex", "/a.hex"},
      {"C:\\", "C:\\a.hex", "C:\\/a.hex"},  // a root
      {"C:", "C:a.hex", "C:/a.hex"},        // the drive's current folder
      {"\\\\server\\share", "\\\\server\\share\\a.hex", "\\\\server\\share/a.hex"},
  };
  for (const auto& c : cases) EXPECT_EQ(JoinPath(c.folder, "a.hex"), test::kWindows ? c.windows : c.posix);
  const std::string name = "fw/gr\303\274\303\237e.hex";  // grüße in UTF-8
  EXPECT_EQ(PathOf(name), std::filesystem::path(u8"fw/grüße.hex"));
  EXPECT_EQ(NameOf(PathOf(name)), name);
  EXPECT_EQ(NameOf(PathOf(name).filename()), name.substr(3));
}

TEST(HexEncode, EveryEncoderWritesTheDigitsAndSumOfEachLength) {
  std::uint8_t bytes[101];
  for (std::size_t i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<std::uint8_t>(i * 167 + 89);
  for (const auto& [name, encode] : HexEncoders()) {
    std::string want;
    unsigned sum = 0;
    for (std::size_t n = 0; n <= 100; ++n) {  // every width's tail
      std::string got(2 * n + 1, '#');
      EXPECT_EQ(encode(bytes, n, got.data()), sum) << name << " " << n;
      EXPECT_EQ(got, want + "#") << name << " " << n;  // nothing written past the digits
      char pair[3];
      std::snprintf(pair, sizeof pair, "%02X", bytes[n]);
      want += pair;
      sum += bytes[n];
    }
  }
}

// Each row a tree of the system's files ("/" for a folder where a file is
// read, which fails to read); the group's room counts what it already holds
// beyond its file cache, under every limit above it.
TEST(AvailableMemory, MemoryAndSwapWithinTheRoomOfTheGroupsAbove) {
  // The command line's tests try a job's limit on Windows.
  if (test::kWindows) GTEST_SKIP() << "/proc and the control groups are Linux's";
  constexpr std::uint64_t kKiB = 1024, kMiB = 1024 * kKiB, kBoth = 2500000 * kKiB;  // memory and swap
  const std::string mem = "proc/meminfo", cg = "proc/self/cgroup", v2 = "sys/fs/cgroup/", v1 = v2 + "memory/";
  const std::string meminfo = "MemTotal: 8000000 kB\nMemAvailable: 2000000 kB\nSwapFree: 500000 kB\n";
  const struct {
    const char* name;
    std::map<std::string, std::string> files;
    std::optional<std::uint64_t> available;
  } cases[] = {
      {"memory and swap", {{mem, meminfo}}, kBoth},
      {"a key that only begins like it", {{mem, "MemAvailableX: 9 kB\nMemAvailable: 3 kB\n"}}, 3 * kKiB},
      {"nothing to tell by", {{mem, "MemTotal: 8 kB\nMemAvailable: many kB\n"}}, std::nullopt},
      {"version 2: the limit less what the group holds beyond its file cache",
       {{mem, meminfo},
        {cg, "0::/app\n"},
        {v2 + "app/memory.max", "268435456\n"},
        {v2 + "app/memory.current", "157286400\n"},
        {v2 + "app/memory.stat", "anon 1\nactive_file 20971520\ninactive_file 31457280\n"}},
       156 * kMiB},
      {"version 2: a lower limit above the group",
       {{cg, "0::/a/b\n"},
        {v2 + "a/memory.max", "104857600\n"},
        {v2 + "a/memory.current", "62914560"},
        {v2 + "a/b/memory.max", "max\n"},
        {v2 + "a/b/memory.current", "62914560"}},
       40 * kMiB},
      {"version 1: the memory controller's group, which holds more than its limit",
       {{mem, meminfo},
        {cg, "5:cpu:/c\n4:cpuacct,memory:/x/y\n"},
        {v1 + "x/y/memory.limit_in_bytes", "1048576\n"},
        {v1 + "x/y/memory.usage_in_bytes", "9437184\n"},
        {v1 + "x/y/memory.stat", "inactive_file 1048576\ntotal_inactive_file 2097152\n"}},
       0},
      // a group the file system doesn't show counts from its root
      {"a hidden group", {{mem, meminfo}, {cg, "0::/x\n"}, {v2 + "memory.max", "67108864\n"}}, 64 * kMiB},
      {"files that fail to read", {{mem, "/"}, {cg, "/"}}, std::nullopt},
      {"an unreadable group file", {{mem, meminfo}, {cg, "0::/a\n"}, {v2 + "a/memory.max", "/"}}, kBoth},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TempDir root;
    for (const auto& [path, text] : c.files) {
      std::filesystem::create_directories(text == "/" ? root / path : (root / path).parent_path());
      if (text != "/") test::WriteFile(root / path, text);
    }
    EXPECT_EQ(sys::AvailableMemory(root.path().string()), c.available);
  }
}

long Count(const Module1& m, std::uint8_t byte) {
  return std::count(m.Buffer.data(), m.Buffer.data() + m.Buffer.size(), byte);
}

// An area that can't be read or made falls back to 00000000..0007FFFF, silently; the image holds one spare
// element, 0, after the area's FF. Exit stores the fields.
TEST(FormLoad, TakesTheStoredAreaOrFallsBackAndExitStoresTheFields) {
  const struct {
    std::string first, last;  // as stored; empty when not
    Address bufFirst = 0, bufLast = 0x7FFFF;
    bool fallsBack = false;
  } cases[] = {
      {"", "", 0, 0x7FFFF, true},
      {"00001000", "00001FFF", 0x1000, 0x1FFF},
      {"00000010", "00000000", 0, 0x7FFFF, true},  // last below first - 1
      {"00000000", "7FFFFFFF", 0, 0x7FFFF, true},  // more than 2147483647 bytes
      {"00000000", "12", 0, 0x00120012},           // read unpadded
      {"zz", "00000010", 0, 0x10},
      {"00000011", "00000010", 0x11, 0x10},  // an empty area
      // One large page, spare element included; a part page at the end.
      {"00000000", AddressToText(kLargePage - 2), 0, kLargePage - 2},
      {"00000000", AddressToText(3 * kLargePage), 0, 3 * kLargePage},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.first + ".." + c.last);
    MemorySettings store;
    if (!c.first.empty()) store.Write(kAddress, "BufFirst", c.first);
    if (!c.last.empty()) store.Write(kAddress, "BufLast", c.last);
    Module1 m;
    m.FileError = -1;
    ASSERT_TRUE(frmsumtool::Form_Load(m, store));
    const std::string shownFirst = c.fallsBack ? "00000000" : c.first,
                      shownLast = c.fallsBack ? "0007FFFF" : c.last;
    EXPECT_EQ(m.frmsumtool.txtbuffaddr, shownFirst);
    EXPECT_EQ(m.frmsumtool.txtbufladdr, shownLast);
    EXPECT_EQ(m.frmsumtool.txteditaddr, shownFirst);
    EXPECT_EQ(m.BufFirst, c.bufFirst);
    EXPECT_EQ(m.BufLast, c.bufLast);
    EXPECT_EQ(m.BufSize, c.bufLast - c.bufFirst + 1);
    EXPECT_EQ(m.FileError, 0);
    ASSERT_EQ(m.Buffer.size(), static_cast<std::size_t>(m.BufSize + 1));
    EXPECT_EQ(Count(m, 0xFF), m.BufSize);
    EXPECT_EQ(m.Buffer[static_cast<std::size_t>(m.BufSize)], 0) << "the spare element";
    MemorySettings after;
    StoreAreaOnExit(m, after);
    EXPECT_EQ(after.Read(kAddress, "BufFirst", "?"), shownFirst);
    EXPECT_EQ(after.Read(kAddress, "BufLast", "?"), shownLast);
  }
}

// What each filter passes on of a key typed into a field: 0 swallows it.
TEST(KeyFilters, PassChangeOrSwallow) {
  const struct {
    const char* field;
    int key, address, byte, offset;
  } cases[] = {
      {"", 'a', 'A', 'A', 'A'},
      {"", 'G', 0, 0, 0},
      {"", 22, 0, 0, 0},  // Ctrl+V
      {"", '-', 0, 0, '-'},
      // The byte field holds two digits; only an offset takes a ninth.
      {"12", '3', '3', 0, '3'},
      {"1234567", '8', '8', 0, '8'},
      {"12345678", 'c', 0, 0, 'C'},
      {"-12345678", '1', 0, 0, 0},
      {"12345678", 8, 8, 8, 8},  // Backspace at any length
      {"123456789", '.', '.', '.', '.'},
      {"12345678", '\'', '\'', '\'', '\''},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string("field '") + c.field + "' key " + std::to_string(c.key));
    EXPECT_EQ(FilterAddressKey(c.field, c.key), c.address);
    EXPECT_EQ(FilterByteKey(c.field, c.key), c.byte);
    EXPECT_EQ(FilterOffsetKey(c.field, c.key), c.offset);
  }
}

TEST(BufferClearButton, AsksThenClearsTheImageNameAndDump) {
  for (const bool yes : {true, false}) {
    SCOPED_TRACE(yes ? "Yes" : "No");
    Module1 m = test::MakeImage(0x1000, 0x10FF);
    const SumToolFields fresh = m.frmsumtool;  // no file, no dump, the step buttons off
    m.Buffer[0] = m.Buffer[0xFF] = 0x12;
    m.frmsumtool.Text1 = "a.bin", m.frmsumtool.List1 = {"row"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
    const SumToolFields before = m.frmsumtool;
    test::ScriptedPlatform platform;
    platform.answers = {yes ? vbYes : vbNo};
    frmsumtool::cmdbufclear_Click(m, platform);
    const test::Message ask{"Buffer Clear OK?", vbQuestionYesNo, "BufferClear"},
        done{"Buffer Clear Complete!", vbOKOnly, ""};
    EXPECT_EQ(platform.messages, (yes ? std::vector{ask, done} : std::vector{ask}));
    EXPECT_EQ(m.frmsumtool, yes ? fresh : before);
    EXPECT_EQ(platform.pointers, (yes ? std::vector<int>{vbHourglass, vbDefault} : std::vector<int>{}));
    EXPECT_EQ(Count(m, 0xFF), yes ? 0x100 : 0xFE) << "FF, but not the spare element";
  }
}

}  // namespace
}  // namespace kestrum
