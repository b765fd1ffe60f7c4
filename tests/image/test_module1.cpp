#include <gtest/gtest.h>

#include "TestSupport.h"
#include "bufferops/ClearBuffer.h"
#include "image/KeyFilters.h"
#include "image/Module1.h"
#include "image/Startup.h"

namespace kestrum {
namespace {

TEST(SizeBuffer, MakesTheAreaWithOneSpareElement) {
  Module1 m;
  ASSERT_EQ(SizeBuffer(m, 0x1000, 0x1000), SizeResult::Ok);
  EXPECT_EQ(m.BufSize, 1);
  EXPECT_EQ(m.Buffer.size(), 2u);
  EXPECT_EQ(m.Buffer[0], 0);
  EXPECT_EQ(m.Buffer[1], 0);
}

TEST(SizeBuffer, FailuresLeaveEverythingAsItWas) {
  struct Case {
    Address first, last;
    SizeResult result;
  };
  const Case cases[] = {
      {0x10, 0x0, SizeResult::NegativeSize},
      {0x0, 0xFFFFFFFF, SizeResult::TooLarge},
      {0x0, kMaxBufSize, SizeResult::TooLarge},
  };
  for (const auto& c : cases) {
    Module1 m = test::MakeImage(0x100, 0x1FF);
    m.Buffer[5] = 0x42;
    const std::uint8_t* before = m.Buffer.data();
    EXPECT_EQ(SizeBuffer(m, c.first, c.last), c.result);
    EXPECT_EQ(m.Buffer.data(), before);
    EXPECT_EQ(m.Buffer[5], 0x42);
    EXPECT_EQ(m.BufFirst, 0x100);
    EXPECT_EQ(m.BufLast, 0x1FF);
    EXPECT_EQ(m.BufSize, 0x100);
  }
}

TEST(SizeBuffer, AnEmptyAreaIsAllowed) {
  Module1 m;
  EXPECT_EQ(SizeBuffer(m, 0x11, 0x10), SizeResult::Ok);
  EXPECT_EQ(m.BufSize, 0);
}

struct StartCase {
  const char* name;
  const char* storedFirst;
  const char* storedLast;
  const char* shownFirst;
  const char* shownLast;
  Address bufFirst, bufLast;
  const char* editAddr;
};

TEST(FormLoad, TakesTheStoredAreaOrFallsBackSilently) {
  const StartCase cases[] = {
      {"empty store", "", "", "00000000", "0007FFFF", 0, 0x7FFFF, "00000000"},
      {"stored area", "00001000", "00001FFF", "00001000", "00001FFF", 0x1000, 0x1FFF, "00001000"},
      {"last below first - 1", "00000010", "00000000", "00000000", "0007FFFF", 0, 0x7FFFF, "00000000"},
      {"more than 2147483647 bytes", "00000000", "FFFFFFFF", "00000000", "0007FFFF", 0, 0x7FFFF, "00000000"},
      {"short text is read unpadded", "00000000", "12", "00000000", "12", 0, 0x00120012, "00000000"},
      {"no digits read as 0", "zz", "00000010", "zz", "00000010", 0, 0x10, "zz"},
      {"empty area", "00000011", "00000010", "00000011", "00000010", 0x11, 0x10, "00000011"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    MemorySettings store;
    if (*c.storedFirst) store.Write(kAddress, "BufFirst", c.storedFirst);
    if (*c.storedLast) store.Write(kAddress, "BufLast", c.storedLast);
    Module1 m;
    m.FileError = -1;
    ASSERT_TRUE(Form_Load(m, store));
    EXPECT_EQ(m.frmsumtool.txtbuffaddr, c.shownFirst);
    EXPECT_EQ(m.frmsumtool.txtbufladdr, c.shownLast);
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.editAddr);
    EXPECT_EQ(m.BufFirst, c.bufFirst);
    EXPECT_EQ(m.BufLast, c.bufLast);
    EXPECT_EQ(m.FileError, 0);
    EXPECT_TRUE(m.frmsumtool.List1.empty());
    EXPECT_FALSE(m.frmsumtool.cmdeditplusEnabled);
    for (Address i = 0; i < m.BufSize; i += 4096) ASSERT_EQ(m.Buffer[static_cast<std::size_t>(i)], 0xFF);
    if (m.BufSize > 0) {
      EXPECT_EQ(m.Buffer[static_cast<std::size_t>(m.BufSize - 1)], 0xFF);
    }
    EXPECT_EQ(m.Buffer[static_cast<std::size_t>(m.BufSize)], 0) << "the spare element is not filled";
    // Exit stores the fields as they stand, bad text included.
    MemorySettings after;
    StoreAreaOnExit(m, after);
    EXPECT_EQ(after.Read(kAddress, "BufFirst", "?"), c.shownFirst);
    EXPECT_EQ(after.Read(kAddress, "BufLast", "?"), c.shownLast);
  }
}

TEST(ClearBuffer, ResetsImageFileNameAndDump) {
  Module1 m = test::MakeImage(0x1000, 0x10FF);
  m.Buffer[0] = 0;
  m.Buffer[0xFF] = 0;
  m.frmsumtool.Text1 = "app.hex";
  m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  m.frmsumtool.txteditaddr = "00001010";
  ClearBuffer(m);
  EXPECT_EQ(m.Buffer[0], 0xFF);
  EXPECT_EQ(m.Buffer[0xFF], 0xFF);
  EXPECT_EQ(m.Buffer[0x100], 0) << "the spare element is left alone";
  EXPECT_EQ(m.frmsumtool.Text1, "");
  EXPECT_TRUE(m.frmsumtool.List1.empty());
  EXPECT_FALSE(m.frmsumtool.cmdeditplusEnabled);
  EXPECT_FALSE(m.frmsumtool.cmdeditminusEnabled);
  EXPECT_EQ(m.frmsumtool.txteditaddr, "00001010");
}

struct KeyCase {
  const char* field;
  int key;
  int address;  // what FilterAddressKey passes on
  int byte;     // what FilterByteKey passes on
  int offset;   // what the offset filter passes on
};

TEST(KeyFilters, PassChangeOrSwallow) {
  const KeyCase cases[] = {
      {"", 'a', 'A', 'A', 'A'},
      {"", '7', '7', '7', '7'},
      {"", 'F', 'F', 'F', 'F'},
      {"", 'G', 0, 0, 0},
      {"", 'g', 0, 0, 0},
      {"", ' ', 0, 0, 0},
      {"", 13, 0, 0, 0},   // Enter
      {"", 22, 0, 0, 0},   // Ctrl+V
      {"", -5, 0, 0, 0},   // negative code
      {"", '-', 0, 0, '-'},
      {"", '+', 0, 0, '+'},
      {"1", '2', '2', '2', '2'},
      {"12", '3', '3', 0, '3'},          // the byte field holds two digits
      {"1234567", '8', '8', 0, '8'},     // the eighth digit goes in
      {"12345678", '9', 0, 0, '9'},      // the ninth is swallowed, but not by the offset field
      {"12345678", 'c', 0, 0, 'C'},
      {"-12345678", '1', 0, 0, 0},
      {"-12345678", '-', 0, 0, 0},
      {"12345678", 8, 8, 8, 8},          // Backspace at any length
      {"12345678", '%', '%', '%', '%'},  // %, ' and . pass at any length
      {"12345678", '\'', '\'', '\'', '\''},
      {"123456789", '.', '.', '.', '.'},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string("field '") + c.field + "' key " + std::to_string(c.key));
    EXPECT_EQ(FilterAddressKey(c.field, c.key), c.address);
    EXPECT_EQ(FilterByteKey(c.field, c.key), c.byte);
    EXPECT_EQ(FilterOffsetKey(c.field, c.key), c.offset);
  }
}

TEST(BufferClearButton, AsksThenClearsAndReports) {
  for (int answer : {vbYes, vbNo}) {
    Module1 m = test::MakeImage(0, 0xFF);
    m.Buffer[3] = 0x12;
    m.frmsumtool.Text1 = "a.bin";
    test::ScriptedPlatform platform;
    platform.answers = {answer};
    cmdbufclear_Click(m, platform);
    ASSERT_GE(platform.messages.size(), 1u);
    EXPECT_EQ(platform.messages[0], (test::Message{"Buffer Clear OK?", vbQuestionYesNo, "BufferClear"}));
    if (answer == vbYes) {
      EXPECT_EQ(platform.Texts(), (std::vector<std::string>{"Buffer Clear OK?", "Buffer Clear Complete!"}));
      EXPECT_EQ(m.Buffer[3], 0xFF);
      EXPECT_EQ(m.frmsumtool.Text1, "");
      EXPECT_EQ(platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
      EXPECT_TRUE(m.frmsumtool.cmdloadEnabled && m.frmsumtool.cmdbufsumEnabled);
    } else {
      EXPECT_EQ(platform.messages.size(), 1u);
      EXPECT_EQ(m.Buffer[3], 0x12);
      EXPECT_EQ(m.frmsumtool.Text1, "a.bin");
    }
  }
}

}  // namespace
}  // namespace kestrum
