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
#include "image/HexCodec.h"
#include "image/KeyFilters.h"
#include "image/Module1.h"
#include "image/PageMemory.h"
#include "image/Paths.h"
#include "image/Startup.h"
#include "image/System.h"

namespace kestrum {
namespace {

TEST(AddressText, ReadsTwoGroupsOfFourAndWritesEightDigits) {
  // canonical: AddressToText gives the text back.
  const struct {
    const char* text;
    Address value;
    bool canonical;
  } cases[] = {
      {"00000000", 0, true},
      {"0007FFFF", 524287, true},
      {"0000FFFF", 65535, true},  // unsigned, never -1
      {"00010000", 65536, true},
      {"7FFFFFFF", 0x7FFFFFFF, true},
      {"80000000", 0x80000000, true},
      {"FFFFFFFF", 4294967295, true},
      {"ffff0000", 4294901760, false},   // lower case counts
      {"12", 0x00120012, false},         // short text: both groups are the text
      {"12345", 0x12342345, false},      // the groups overlap
      {"123456789", 0x12346789, false},  // the middle character is not read
      {"12.40000", 0x00120000, false},   // a point ends its group
      {"1%2", 0x00010001, false},        // so does a per cent sign
      {"G1234567", 0x4567, false},       // a group that starts badly is 0
      {"", 0, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AddressFromText(c.text), c.value) << c.text;
    EXPECT_EQ(c.canonical ? AddressToText(c.value) : c.text, c.text);
  }
}

TEST(Paths, JoinedWithOneSeparatorAndReadAsUtf8) {
  // The joined name on Windows, and elsewhere.
  const struct {
    const char *folder, *name, *windows, *posix;
  } cases[] = {
      {"", "a.hex", "a.hex", "a.hex"},
      {"fw", "a.hex", "fw\\a.hex", "fw/a.hex"},
      {"/", "a.hex", "/a.hex", "/a.hex"},
      {"C:\\", "a.hex", "C:\\a.hex", "C:\\/a.hex"},  // a root
      {"C:", "a.hex", "C:a.hex", "C:/a.hex"},        // the drive's current folder
      {"\\\\server\\share", "a.hex", "\\\\server\\share\\a.hex", "\\\\server\\share/a.hex"},
  };
  for (const auto& c : cases) EXPECT_EQ(JoinPath(c.folder, c.name), test::kWindows ? c.windows : c.posix);
  const std::string name =
      "fw/gr\xC3\xBC\xC3\x9F"
      "e.hex";
  EXPECT_EQ(PathOf(name), std::filesystem::path(u8"fw/grüße.hex"));
  EXPECT_EQ(NameOf(PathOf(name)), name);
  EXPECT_EQ(NameOf(PathOf(name).filename()),
            "gr\xC3\xBC\xC3\x9F"
            "e.hex");
}

TEST(AddressText, PadsToEightAndWritesBytesAsTwoDigits) {
  const std::pair<const char*, const char*> pads[] = {
      {"1", "00000001"}, {"123456789", "23456789"}, {"", "0000000"}, {"7FFFF", "0007FFFF"}};
  for (const auto& [in, out] : pads) EXPECT_EQ(PadAddressText(in), out) << in;
  const std::pair<int, const char*> bytes[] = {{10, "0A"}, {255, "FF"}, {0, "00"}};
  for (const auto& [value, text] : bytes) EXPECT_EQ(HexByteText(value), text);
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
    Address size;
  } cases[] = {
      // size: BufSize afterwards
      {0x1000, 0x1000, SizeResult::Ok, 1},
      {0x11, 0x10, SizeResult::Ok, 0},                          // an empty area is allowed
      {0, kLargePage - 2, SizeResult::Ok, kLargePage - 1},      // one large page, spare element included
      {0, 3 * kLargePage, SizeResult::Ok, 3 * kLargePage + 1},  // a part page at the end
      {0x10, 0x0, SizeResult::NegativeSize, 0x100},
      {0x0, 0xFFFFFFFF, SizeResult::TooLarge, 0x100},
      {0x0, kMaxBufSize, SizeResult::TooLarge, 0x100},
  };
  for (const auto& c : cases) {
    Module1 m = test::MakeImage(0x100, 0x1FF);
    m.Buffer[5] = 0x42;
    EXPECT_EQ(SizeBuffer(m, c.first, c.last), c.result) << c.first << ".." << c.last;
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
  const struct {
    const char *storedFirst, *storedLast, *shownFirst, *shownLast;
    Address bufFirst, bufLast;
  } cases[] = {
      {"", "", "00000000", "0007FFFF", 0, 0x7FFFF},  // empty store
      {"00001000", "00001FFF", "00001000", "00001FFF", 0x1000, 0x1FFF},
      {"00000010", "00000000", "00000000", "0007FFFF", 0, 0x7FFFF},  // last below first - 1
      {"00000000", "FFFFFFFF", "00000000", "0007FFFF", 0, 0x7FFFF},  // more than 2147483647 bytes
      {"00000000", "12", "00000000", "12", 0, 0x00120012},           // read unpadded
      {"zz", "00000010", "zz", "00000010", 0, 0x10},
      {"00000011", "00000010", "00000011", "00000010", 0x11, 0x10},  // empty area
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.storedFirst) + ".." + c.storedLast);
    MemorySettings store;
    if (*c.storedFirst) store.Write(kAddress, "BufFirst", c.storedFirst);
    if (*c.storedLast) store.Write(kAddress, "BufLast", c.storedLast);
    Module1 m;
    m.FileError = -1;
    ASSERT_TRUE(frmsumtool::Form_Load(m, store));
    EXPECT_EQ(m.frmsumtool.txtbuffaddr + " " + m.frmsumtool.txtbufladdr + " " + m.frmsumtool.txteditaddr,
              std::string(c.shownFirst) + " " + c.shownLast + " " + c.shownFirst);
    EXPECT_EQ(std::tie(m.BufFirst, m.BufLast, m.FileError), std::tuple(c.bufFirst, c.bufLast, 0));
    EXPECT_EQ(Count(m, 0xFF), m.BufSize) << "FF, but not the spare element";
    MemorySettings after;
    StoreAreaOnExit(m, after);
    EXPECT_EQ(after.Read(kAddress, "BufFirst", "?"), c.shownFirst);
    EXPECT_EQ(after.Read(kAddress, "BufLast", "?"), c.shownLast);
  }
}

TEST(KeyFilters, PassChangeOrSwallow) {
  // What each filter passes on: address, byte, offset field.
  const struct {
    const char* field;
    int key, address, byte, offset;
  } cases[] = {
      {"", 'a', 'A', 'A', 'A'},
      {"", 'G', 0, 0, 0},
      {"", 13, 0, 0, 0},
      {"", 22, 0, 0, 0},  // Enter, Ctrl+V
      {"", '-', 0, 0, '-'},
      {"12", '3', '3', 0, '3'},  // the byte field holds two digits
      {"1234567", '8', '8', 0, '8'},
      {"12345678", 'c', 0, 0, 'C'},  // a ninth only for an offset
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
  for (int answer : {vbYes, vbNo}) {
    Module1 m = test::MakeImage(0x1000, 0x10FF);
    m.Buffer[0] = m.Buffer[0xFF] = 0x12;
    m.frmsumtool.Text1 = "a.bin";
    m.frmsumtool.List1 = {"row"};
    m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
    SumToolFields expected = m.frmsumtool;
    test::ScriptedPlatform platform;
    platform.answers = {answer};
    frmsumtool::cmdbufclear_Click(m, platform);
    std::vector<test::Message> messages{{"Buffer Clear OK?", vbQuestionYesNo, "BufferClear"}};
    if (answer == vbYes) {
      messages.push_back({"Buffer Clear Complete!", vbOKOnly, ""});
      expected.Text1.clear();
      expected.List1.clear();
      expected.cmdeditplusEnabled = expected.cmdeditminusEnabled = false;
    }
    EXPECT_EQ(platform.messages, messages);
    EXPECT_EQ(m.frmsumtool, expected);
    EXPECT_EQ(platform.pointers,
              (answer == vbYes ? std::vector<int>{vbHourglass, vbDefault} : std::vector<int>{}));
    EXPECT_EQ(Count(m, 0xFF), answer == vbYes ? 0x100 : 0xFE) << "FF, but not the spare element";
  }
}

}  // namespace
}  // namespace kestrum
