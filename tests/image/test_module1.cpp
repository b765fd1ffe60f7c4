#include <gtest/gtest.h>

#include <algorithm>

#include "TestSupport.h"
#include "bufferops/ClearBuffer.h"
#include "image/KeyFilters.h"
#include "image/Module1.h"
#include "image/Startup.h"

namespace kestrum {
namespace {

long Count(const Module1& m, std::uint8_t byte) {
  return std::count(m.Buffer.data(), m.Buffer.data() + m.Buffer.size(), byte);
}

TEST(SizeBuffer, OneSpareElementOrEverythingAsItWas) {
  const struct {
    Address first, last;
    SizeResult result;
    Address size;  // BufSize afterwards
  } cases[] = {
      {0x1000, 0x1000, SizeResult::Ok, 1},
      {0x11, 0x10, SizeResult::Ok, 0},  // an empty area is allowed
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
    ASSERT_TRUE(Form_Load(m, store));
    EXPECT_EQ(m.frmsumtool.txtbuffaddr, c.shownFirst);
    EXPECT_EQ(m.frmsumtool.txtbufladdr, c.shownLast);
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.shownFirst);
    EXPECT_EQ(m.BufFirst, c.bufFirst);
    EXPECT_EQ(m.BufLast, c.bufLast);
    EXPECT_EQ(m.FileError, 0);
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
      {"", 'a', 'A', 'A', 'A'},           {"", 'G', 0, 0, 0},
      {"", 13, 0, 0, 0},                  {"", 22, 0, 0, 0},  // Enter, Ctrl+V
      {"", '-', 0, 0, '-'},               {"12", '3', '3', 0, '3'},  // the byte field holds two digits
      {"1234567", '8', '8', 0, '8'},      {"12345678", 'c', 0, 0, 'C'},  // a ninth only for an offset
      {"-12345678", '1', 0, 0, 0},        {"12345678", 8, 8, 8, 8},  // Backspace at any length
      {"123456789", '.', '.', '.', '.'},  {"12345678", '\'', '\'', '\'', '\''},
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
    cmdbufclear_Click(m, platform);
    std::vector<test::Message> messages{{"Buffer Clear OK?", vbQuestionYesNo, "BufferClear"}};
    if (answer == vbYes) {
      messages.push_back({"Buffer Clear Complete!", vbOKOnly, ""});
      expected.Text1.clear();
      expected.List1.clear();
      expected.cmdeditplusEnabled = expected.cmdeditminusEnabled = false;
    }
    EXPECT_EQ(platform.messages, messages);
    EXPECT_EQ(m.frmsumtool, expected);
    EXPECT_EQ(platform.pointers, (answer == vbYes ? std::vector<int>{vbHourglass, vbDefault} : std::vector<int>{}));
    EXPECT_EQ(Count(m, 0xFF), answer == vbYes ? 0x100 : 0xFE) << "FF, but not the spare element";
  }
}

}  // namespace
}  // namespace kestrum
