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

TEST(AddressText, ReadsTwoGroupsOfFourAndWritesEightDigits) {
  const struct {
    const char* text;
    Address value;
    const char* written = nullptr;  // by AddressToText, when not the text itself
  } cases[] = {
      {.text = "00000000", .value = 0},
      {.text = "0007FFFF", .value = 524287},
      {.text = "0000FFFF", .value = 65535},  // unsigned, never -1
      {.text = "00010000", .value = 65536},
      {.text = "7FFFFFFF", .value = 0x7FFFFFFF},
      {.text = "80000000", .value = 0x80000000},
      {.text = "FFFFFFFF", .value = 4294967295},
      {.text = "ffff0000", .value = 4294901760, .written = "FFFF0000"},  // lower case counts
      {.text = "12", .value = 0x00120012, .written = "00120012"},     // short text: both groups are the text
      {.text = "12345", .value = 0x12342345, .written = "12342345"},  // the groups overlap
      {.text = "123456789", .value = 0x12346789, .written = "12346789"},  // the middle character is not read
      {.text = "12.40000", .value = 0x00120000, .written = "00120000"},   // a point ends its group
      {.text = "1%2", .value = 0x00010001, .written = "00010001"},        // so does a per cent sign
      {.text = "G1234567", .value = 0x4567, .written = "00004567"},       // a group that starts badly is 0
      {.text = "", .value = 0, .written = "00000000"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AddressFromText(c.text), c.value) << c.text;
    EXPECT_EQ(AddressToText(c.value), c.written ? c.written : c.text);
  }
  const std::pair<const char*, const char*> pads[] = {
      {"1", "00000001"}, {"123456789", "23456789"}, {"", "0000000"}, {"7FFFF", "0007FFFF"}};
  for (const auto& [in, out] : pads) EXPECT_EQ(PadAddressText(in), out) << in;
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
  const std::string name =
      "fw/gr\xC3\xBC\xC3\x9F"
      "e.hex";
  EXPECT_EQ(PathOf(name), std::filesystem::path(u8"fw/grüße.hex"));
  EXPECT_EQ(NameOf(PathOf(name)), name);
  EXPECT_EQ(NameOf(PathOf(name).filename()), name.substr(3));
}

TEST(HexEncode, EveryEncoderWritesTheDigitsAndSumOfEachLength) {
  std::uint8_t bytes[100];
  for (std::size_t i = 0; i < sizeof bytes; ++i) bytes[i] = static_cast<std::uint8_t>(i * 167 + 89);
  for (const auto& [name, encode] : HexEncoders()) {
    for (std::size_t n = 0; n <= sizeof bytes; ++n) {  // every width's tail
      std::string want, got(2 * n + 1, '#');
      unsigned sum = 0;
      for (std::size_t i = 0; i < n; ++i) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02X", bytes[i]);
        want += pair;
        sum += bytes[i];
      }
      EXPECT_EQ(encode(bytes, n, got.data()), sum) << name << " " << n;
      EXPECT_EQ(got, want + "#") << name << " " << n;  // nothing written past the digits
    }
  }
}

constexpr std::uint64_t kKiB = 1024;

// Each row a tree of the system's files ("/" for a folder where a file is
// read, which fails to read); the group's room counts what it already holds
// beyond its file cache, under every limit above it.
TEST(AvailableMemory, MemoryAndSwapWithinTheRoomOfTheGroupsAbove) {
  if (test::kWindows)
    GTEST_SKIP() << "/proc and the control groups are Linux's; the command line's tests try a job's limit";
  constexpr std::uint64_t kMiB = 1024 * kKiB;
  const std::string meminfo = "MemTotal: 8000000 kB\nMemAvailable: 2000000 kB\nSwapFree: 500000 kB\n";
  const std::string v2 = "sys/fs/cgroup/", v1 = "sys/fs/cgroup/memory/";
  using Files = std::map<std::string, std::string>;
  const struct {
    const char* name;
    Files files;
    std::optional<std::uint64_t> available;
  } cases[] = {
      {"memory and swap", {{"proc/meminfo", meminfo}}, 2500000 * kKiB},
      {"a key that only begins like it",
       {{"proc/meminfo", "MemAvailableX: 9 kB\nMemAvailable: 3 kB\n"}},
       3 * kKiB},
      {"nothing to tell by", {{"proc/meminfo", "MemTotal: 8 kB\nMemAvailable: many kB\n"}}, std::nullopt},
      {"version 2: the limit less what the group holds beyond its file cache",
       {{"proc/meminfo", meminfo},
        {"proc/self/cgroup", "0::/app\n"},
        {v2 + "app/memory.max", "268435456\n"},
        {v2 + "app/memory.current", "157286400\n"},
        {v2 + "app/memory.stat",
         "anon 1\nactive_file 20971520\n"
         "inactive_file 31457280\n"}},
       156 * kMiB},
      {"version 2: a lower limit above the group",
       {{"proc/self/cgroup", "0::/a/b\n"},
        {v2 + "a/memory.max", "104857600\n"},
        {v2 + "a/memory.current", "62914560"},
        {v2 + "a/b/memory.max", "max\n"},
        {v2 + "a/b/memory.current", "62914560"}},
       40 * kMiB},
      {"version 1: the memory controller's group, which holds more than its limit",
       {{"proc/meminfo", meminfo},
        {"proc/self/cgroup", "5:cpu:/c\n4:cpuacct,memory:/x/y\n"},
        {v1 + "x/y/memory.limit_in_bytes", "1048576\n"},
        {v1 + "x/y/memory.usage_in_bytes", "9437184\n"},
        {v1 + "x/y/memory.stat", "inactive_file 1048576\ntotal_inactive_file 2097152\n"}},
       0},
      {"a group the file system doesn't show counts from its root",
       {{"proc/meminfo", meminfo},
        {"proc/self/cgroup", "0::/elsewhere\n"},
        {v2 + "memory.max", "67108864\n"}},
       64 * kMiB},
      {"files that fail to read", {{"proc/meminfo", "/"}, {"proc/self/cgroup", "/"}}, std::nullopt},
      {"a group file that fails to read",
       {{"proc/meminfo", meminfo}, {"proc/self/cgroup", "0::/a\n"}, {v2 + "a/memory.max", "/"}},
       2500000 * kKiB},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TempDir root;
    for (const auto& [path, text] : c.files) {
      std::filesystem::create_directories((root / path).parent_path());
      if (text == "/")
        std::filesystem::create_directory(root / path);
      else
        test::WriteFile(root / path, text);
    }
    EXPECT_EQ(sys::AvailableMemory(root.path().string()), c.available);
  }
}

long Count(const Module1& m, std::uint8_t byte) {
  return std::count(m.Buffer.data(), m.Buffer.data() + m.Buffer.size(), byte);
}

TEST(SizeBuffer, OneSpareElementOrEverythingAsItWas) {
  const struct {
    Address first, last;
    SizeResult result;
    Address size;  // BufSize afterwards
  } cases[] = {
      {.first = 0x1000, .last = 0x1000, .result = SizeResult::Ok, .size = 1},
      {.first = 0x11, .last = 0x10, .result = SizeResult::Ok, .size = 0},  // an empty area is allowed
      // One large page, spare element included; a part page at the end.
      {.first = 0, .last = kLargePage - 2, .result = SizeResult::Ok, .size = kLargePage - 1},
      {.first = 0, .last = 3 * kLargePage, .result = SizeResult::Ok, .size = 3 * kLargePage + 1},
      {.first = 0x10, .last = 0x0, .result = SizeResult::NegativeSize, .size = 0x100},
      {.first = 0x0, .last = 0xFFFFFFFF, .result = SizeResult::TooLarge, .size = 0x100},
      {.first = 0x0, .last = kMaxBufSize, .result = SizeResult::TooLarge, .size = 0x100},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.first) + ".." + AddressToText(c.last));
    Module1 m = test::MakeImage(0x100, 0x1FF);
    m.Buffer[5] = 0x42;
    EXPECT_EQ(SizeBuffer(m, c.first, c.last), c.result);
    EXPECT_EQ(m.BufSize, c.size);
    ASSERT_EQ(m.Buffer.size(), static_cast<std::size_t>(c.size + 1));
    if (c.result == SizeResult::Ok) {
      EXPECT_EQ(Count(m, 0), c.size + 1);
    } else {
      EXPECT_EQ(m.Buffer[5], 0x42);
      EXPECT_EQ(m.BufFirst, 0x100);
    }
  }
}

TEST(FormLoad, TakesTheStoredAreaOrFallsBackSilentlyAndExitStoresTheFields) {
  // An area that can't be read or made falls back to 00000000..0007FFFF.
  const struct {
    const char *first, *last;  // as stored; empty when not
    bool fallsBack = false;
    Address bufFirst = 0, bufLast = 0x7FFFF;
  } cases[] = {
      {.first = "", .last = "", .fallsBack = true},
      {.first = "00001000", .last = "00001FFF", .bufFirst = 0x1000, .bufLast = 0x1FFF},
      {.first = "00000010", .last = "00000000", .fallsBack = true},  // last below first - 1
      {.first = "00000000", .last = "FFFFFFFF", .fallsBack = true},  // more than 2147483647 bytes
      {.first = "00000000", .last = "12", .bufLast = 0x00120012},    // read unpadded
      {.first = "zz", .last = "00000010", .bufLast = 0x10},
      {.first = "00000011", .last = "00000010", .bufFirst = 0x11, .bufLast = 0x10},  // empty area
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.first) + ".." + c.last);
    MemorySettings store;
    if (*c.first) store.Write(kAddress, "BufFirst", c.first);
    if (*c.last) store.Write(kAddress, "BufLast", c.last);
    Module1 m;
    m.FileError = -1;
    ASSERT_TRUE(frmsumtool::Form_Load(m, store));
    const std::string shownFirst = c.fallsBack ? "00000000" : c.first;
    const std::string shownLast = c.fallsBack ? "0007FFFF" : c.last;
    EXPECT_EQ(m.frmsumtool.txtbuffaddr, shownFirst);
    EXPECT_EQ(m.frmsumtool.txtbufladdr, shownLast);
    EXPECT_EQ(m.frmsumtool.txteditaddr, shownFirst);
    EXPECT_EQ(m.BufFirst, c.bufFirst);
    EXPECT_EQ(m.BufLast, c.bufLast);
    EXPECT_EQ(m.FileError, 0);
    EXPECT_EQ(Count(m, 0xFF), m.BufSize) << "FF, but not the spare element";
    MemorySettings after;
    StoreAreaOnExit(m, after);
    EXPECT_EQ(after.Read(kAddress, "BufFirst", "?"), shownFirst);
    EXPECT_EQ(after.Read(kAddress, "BufLast", "?"), shownLast);
  }
}

TEST(KeyFilters, PassChangeOrSwallow) {
  // What each filter passes on of a key typed into a field: 0 swallows it.
  const struct {
    const char* field;
    int key, address, byte, offset;
  } cases[] = {
      {.field = "", .key = 'a', .address = 'A', .byte = 'A', .offset = 'A'},
      {.field = "", .key = 'G', .address = 0, .byte = 0, .offset = 0},
      {.field = "", .key = 13, .address = 0, .byte = 0, .offset = 0},  // Enter
      {.field = "", .key = 22, .address = 0, .byte = 0, .offset = 0},  // Ctrl+V
      {.field = "", .key = '-', .address = 0, .byte = 0, .offset = '-'},
      // The byte field holds two digits; only an offset takes a ninth.
      {.field = "12", .key = '3', .address = '3', .byte = 0, .offset = '3'},
      {.field = "1234567", .key = '8', .address = '8', .byte = 0, .offset = '8'},
      {.field = "12345678", .key = 'c', .address = 0, .byte = 0, .offset = 'C'},
      {.field = "-12345678", .key = '1', .address = 0, .byte = 0, .offset = 0},
      {.field = "12345678", .key = 8, .address = 8, .byte = 8, .offset = 8},  // Backspace at any length
      {.field = "123456789", .key = '.', .address = '.', .byte = '.', .offset = '.'},
      {.field = "12345678", .key = '\'', .address = '\'', .byte = '\'', .offset = '\''},
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
    m.Buffer[0] = m.Buffer[0xFF] = 0x12;
    m.frmsumtool.Text1 = "a.bin";
    m.frmsumtool.List1 = {"row"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
    SumToolFields expected = m.frmsumtool;
    test::ScriptedPlatform platform;
    platform.answers = {yes ? vbYes : vbNo};
    frmsumtool::cmdbufclear_Click(m, platform);
    std::vector<test::Message> messages{{"Buffer Clear OK?", vbQuestionYesNo, "BufferClear"}};
    if (yes) {
      messages.push_back({"Buffer Clear Complete!", vbOKOnly, ""});
      expected.Text1.clear();
      expected.List1.clear();
      expected.cmdeditplusEnabled = expected.cmdeditminusEnabled = false;
    }
    EXPECT_EQ(platform.messages, messages);
    EXPECT_EQ(m.frmsumtool, expected);
    EXPECT_EQ(platform.pointers, (yes ? std::vector<int>{vbHourglass, vbDefault} : std::vector<int>{}));
    EXPECT_EQ(Count(m, 0xFF), yes ? 0x100 : 0xFE) << "FF, but not the spare element";
  }
}

}  // namespace
}  // namespace kestrum
