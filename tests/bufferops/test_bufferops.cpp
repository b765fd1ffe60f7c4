// The buffer operations and their dialogs: the dump and its steps, the three
// sums, Block Store with its wrap, and a new buffer area.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "TestSupport.h"
#include "bufferops/BufferArea.h"
#include "bufferops/Dump.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/SumDialog.h"

namespace kestrum::test {
namespace {

using Messages = std::vector<Message>;
using Pointers = std::vector<int>;
const Pointers kBusy{vbHourglass, vbDefault};

// Areas of the rows below.
constexpr AddressRange kWhole{kDefaultFirst, kDefaultLast}, kOneByte{0x1000, 0x1000},
    kFrom100{0x100, 0x7FFFF}, kPage{0x100, 0x1FF}, kTop{0xFFFFFF00, 0xFFFFFFFF},
    kHigh{0x80000000, 0x80001FFF}, kOdd{0x2001, 0x2100}, kWide{0x10000, 0x8FFFF};

// Area 1000..1FFF with a byte per address, a file and a dump, so that every change shows.
Module1 Patterned() {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  for (Address a = m.BufFirst; a <= m.BufLast; ++a) m.At(a) = static_cast<std::uint8_t>(a * 7);
  m.frmsumtool.Text1 = "app.hex", m.frmsumtool.List1 = {"row"};
  m.frmsumtool.cmdeditplusEnabled = m.frmsumtool.cmdeditminusEnabled = true;
  return m;
}

using Button = void (*)(Module1&, Platform&);
const Button kDump = frmsumtool::cmdedit_Click, kPlus = frmsumtool::cmdeditplus_Click,
             kMinus = frmsumtool::cmdeditminus_Click;

TEST(Dump, PagesMovesAndRefusals) {
  // page: txteditaddr afterwards, the first row's address; tail: the bytes of the last row;
  // no rows: "Dump Address Error!" and the old dump stays.
  const struct {
    AddressRange area;
    const char* at;
    Button press;
    const char* page;
    int rows = 0, tail = 0;
  } cases[] = {
      {.area = kWhole, .at = "5", .press = kDump, .page = "00000005", .rows = 7, .tail = 16},
      {.area = kWhole, .at = "7FFFF", .press = kDump, .page = "0007FFFF", .rows = 1, .tail = 1},
      // +96 = BufLast
      {.area = kWhole, .at = "7FF9F", .press = kDump, .page = "0007FF9F", .rows = 7, .tail = 1},
      {.area = kOneByte, .at = "1000", .press = kPlus, .page = "00001000", .rows = 1, .tail = 1},
      {.area = kWhole, .at = "8", .press = kMinus, .page = "00000000", .rows = 7, .tail = 16},
      {.area = kFrom100, .at = "110", .press = kMinus, .page = "00000100", .rows = 7, .tail = 16},
      {.area = kWhole, .at = "7FF80", .press = kPlus, .page = "0007FF90", .rows = 7, .tail = 16},
      // +112 = BufLast still moves; a full last page and a short last row stop
      {.area = kWhole, .at = "7FF8F", .press = kPlus, .page = "0007FF9F", .rows = 7, .tail = 1},
      {.area = kWhole, .at = "7FF90", .press = kPlus, .page = "0007FF90", .rows = 7, .tail = 16},
      {.area = kWhole, .at = "7FF95", .press = kPlus, .page = "0007FF95", .rows = 7, .tail = 11},
      {.area = kPage, .at = "F0", .press = kPlus, .page = "00000100", .rows = 7, .tail = 16},  // from below
      {.area = kTop, .at = "FFFFFF80", .press = kPlus, .page = "FFFFFF90", .rows = 7, .tail = 16},
      {.area = kWhole, .at = "", .press = kDump, .page = ""},
      {.area = kWhole, .at = "80000", .press = kPlus, .page = "00080000"},
      {.area = kPage, .at = "F0", .press = kDump, .page = "000000F0"},
      {.area = {0x100, 0x15F}, .at = "F0", .press = kPlus, .page = "000000F0"},  // an area under 97 bytes
      {.area = {0x11, 0x10}, .at = "11", .press = kDump, .page = "00000011"},    // an empty area
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(AddressToText(c.area.first) + ".." + AddressToText(c.area.last) + " '" + c.at + "'");
    // Each byte is the low byte of its address, so a row tells where its bytes come from.
    Module1 m = MakeImage(c.area.first, c.area.last);
    for (Address a = c.area.first; a <= c.area.last; ++a) m.At(a) = static_cast<std::uint8_t>(a);
    m.frmsumtool.List1 = {"old row"}, m.frmsumtool.txteditaddr = c.at;
    ScriptedPlatform platform;
    c.press(m, platform);
    EXPECT_EQ(m.frmsumtool.txteditaddr, c.page);
    EXPECT_EQ(m.frmsumtool.cmdeditplusEnabled, c.press == kDump && c.rows > 0);
    EXPECT_EQ(m.frmsumtool.cmdeditminusEnabled, c.press == kDump && c.rows > 0);
    EXPECT_EQ(platform.messages, (c.rows > 0 ? Messages{} : Messages{{"Dump Address Error!", vbOKOnly, ""}}));
    std::vector<std::string> rows;
    for (int r = 0; r < c.rows; ++r) {
      const Address start = AddressFromText(c.page) + 16 * r;
      rows.push_back(AddressToText(start) + "  ");
      for (int k = 0; k < (r + 1 < c.rows ? 16 : c.tail); ++k) rows.back() += HexByteText((start + k) & 0xFF);
    }
    EXPECT_EQ(m.frmsumtool.List1, c.rows > 0 ? rows : std::vector<std::string>{"old row"});
  }
}

TEST(Calculate, SumsOrRefusesTheRange) {
  // 12 34 56 78 9A BC DE F0 at 00001000 (80001000 in kHigh), elsewhere FF, and 77 in the spare element.
  // shown: the fields afterwards, the address fields padded; a refusal keeps the earlier result "AA".
  const struct {
    AddressRange area = {0x1000, 0x1FFF};
    SumFields in, shown;
    const char* message = nullptr;
  } cases[] = {
      {.area = kWhole, .in = {"1000", "1005"}, .shown = {"00001000", "00001005", "6A", "026A", "0368"}},
      {.area = kWhole, .in = {"1001", "1006"}, .shown = {"00001001", "00001006", "36", "0336", "CF68"}},
      {.area = kWhole, .in = {"1001", "1001"}, .shown = {"00001001", "00001001", "34", "0034", "0034"}},
      {.area = kWhole, .in = {"1002", "1002"}, .shown = {"00001002", "00001002", "56", "0056", "5600"}},
      {.area = kHigh,
       .in = {"80001001", "80001006"},
       .shown = {"80001001", "80001006", "36", "0336", "CF68"}},
      {.area = kWhole, .in = {"2000", "20FF"}, .shown = {"00002000", "000020FF", "00", "FF00", "FF80"}},
      {.area = kWide, .in = {"10000", "8FFFF"}, .shown = {"00010000", "0008FFFF", "00", "0000", "0000"}},
      // half words at both ends of the area, and an even last byte at its end
      {.area = kOdd, .in = {"2001", "2100"}, .shown = {"00002001", "00002100", "00", "FF00", "FF80"}},
      {.area = kOdd, .in = {"2100", "2100"}, .shown = {"00002100", "00002100", "FF", "00FF", "FF00"}},
      {.in = {"", ""}, .shown = {"", "", "AA"}, .message = "First Address Error!"},
      {.in = {"1000", ""}, .shown = {"1000", "", "AA"}, .message = "Last Address Error!"},
      {.in = {"0", "2000"}, .shown = {"00000000", "00002000", "AA"}, .message = "First Address Error!"},
      {.in = {"1000", "2000"}, .shown = {"00001000", "00002000", "AA"}, .message = "Last Address Error!"},
      {.in = {"1001", "1000"}, .shown = {"00001001", "00001000", "AA"}, .message = "Address Error!"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.in.Text6 + ".." + c.in.Text7);
    Module1 m = MakeImage(c.area.first, c.area.last);
    m.Buffer[static_cast<std::size_t>(m.BufSize)] = 0x77;
    if (c.area.first % 0x80000000 == 0)
      std::memcpy(&m.At(c.area.first + 0x1000), "\x12\x34\x56\x78\x9A\xBC\xDE\xF0", 8);
    ScriptedPlatform platform;
    SumFields f = c.in;
    f.Text1 = "AA";
    EXPECT_EQ(frmsum::Command1_Click(f, m, platform), c.message == nullptr);
    EXPECT_EQ(f, c.shown);
    EXPECT_EQ(platform.messages, (c.message ? Messages{{c.message, vbOKOnly, ""}} : Messages{}));
    EXPECT_EQ(platform.pointers, c.message ? Pointers{} : kBusy);
  }
}

TEST(SumDialog, OpensFromTheStoreOrTheArea) {
  Module1 m = MakeImage(0x1000, 0x1FFF);
  MemorySettings store;
  SumFields f{.Text1 = "old"};
  frmsumtool::cmdbufsum_Click(f, m, store);
  EXPECT_EQ(f, (SumFields{.Text6 = "00001000", .Text7 = "00001FFF"}));
  store.Write(kAddress, "SUMfaddr", "12");
  frmsumtool::cmdbufsum_Click(f, m, store);
  EXPECT_EQ(f, (SumFields{.Text6 = "12", .Text7 = "00001FFF"}));
}

// Store refuses the first bad field; the addresses are padded once all three hold text. It stores value
// over the ranges, both ends included: first above last wraps past the end of the area. The rest of the
// image stays, the spare element too.
TEST(StoreButton, StoresOrRefusesWithTheFirstBadFieldAndWrapsPastTheEnd) {
  const char* kDone = "Block Store Complete!";
  const struct {
    const char *text1, *text2, *text3;
    const char* message;
    std::vector<AddressRange> stored = {};
    int value = 0;
    const char *shown1 = nullptr, *shown2 = nullptr;  // Text1 and Text2 afterwards, when not as typed
  } cases[] = {
      {"1000", "1FFF", "A.", kDone, {{0x1000, 0x1FFF}}, 0x0A, "00001000", "00001FFF"},
      {"", "", "", "First Address Error!"},
      {"1000", "", "", "Last Address Error!"},
      {"1000", "1FFF", "", "Data Error!"},
      {"FFF", "00001FFF", "00", "Address Error", {}, 0, "00000FFF"},
      {"00001000", "00002000", "00", "Address Error"},
      {"00001000", "00001FFF", "%", "Data Error!"},
      {"00001000", "00001FFF", ".5", "Data Error!"},
      {"00001000", "00001FFF", "123", "Data Error!"},
      // the data is judged before the area
      {"0", "00001FFF", "1FF", "Data Error!", {}, 0, "00000000"},
      {"00001234", "00001234", "ff", kDone, {{0x1234, 0x1234}}, 0xFF},
      {"00001FF0", "0000100F", "7'5", kDone, {{0x1FF0, 0x1FFF}, {0x1000, 0x100F}}, 7},
      {"00001FFF", "00001000", "0FF", kDone, {{0x1FFF, 0x1FFF}, {0x1000, 0x1000}}, 0xFF},
      {"00001801", "00001800", "A5", kDone, {{0x1000, 0x1FFF}}, 0xA5},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.text1) + ".." + c.text2 + " " + c.text3);
    Module1 m = Patterned();
    SumToolFields window = m.frmsumtool;
    ScriptedPlatform platform;
    MemorySettings store;
    StoreFields f{c.text1, c.text2, c.text3};
    const bool stored = c.message == kDone;
    EXPECT_EQ(frmstore::Command2_Click(f, m, platform, store), stored);
    EXPECT_EQ(f, (StoreFields{c.shown1 ? c.shown1 : c.text1, c.shown2 ? c.shown2 : c.text2, c.text3}));
    EXPECT_EQ(platform.messages, (Messages{{c.message, vbOKOnly, ""}}));
    EXPECT_EQ(platform.pointers, stored ? kBusy : Pointers{});
    for (Address a = m.BufFirst; a <= m.BufLast; ++a) {
      const bool in =
          std::any_of(c.stored.begin(), c.stored.end(), [a](auto r) { return a >= r.first && a <= r.last; });
      ASSERT_EQ(m.At(a), in ? c.value : static_cast<std::uint8_t>(a * 7)) << AddressToText(a);
    }
    EXPECT_EQ(m.Buffer[static_cast<std::size_t>(m.BufSize)], 0) << "the spare element";
    EXPECT_EQ(store.Read(kAddress, "storedata", "none"), stored ? c.text3 : "none");
    if (stored) {
      window.List1.clear();  // the file name stays, the dump goes
      window.cmdeditplusEnabled = window.cmdeditminusEnabled = false;
    }
    EXPECT_EQ(m.frmsumtool, window);
  }
}

// A new area is cleared to FF, shown and stored, the file and the dump gone; a refusal, or an area that can't
// be had, changes nothing. busy: the work ran.
TEST(BufferArea, NewAreaIsClearedShownAndStoredOrNothingChanges) {
  const struct {
    BufAddrFields in, shown;
    const char* message = "";
    bool busy = true;
  } cases[] = {
      {.in = {"FF", "FFFF"}, .shown = {"000000FF", "0000FFFF"}},
      {.in = {"00001000", "00001000"}, .shown = {"00001000", "00001000"}},
      // 9 characters stay
      {.in = {"123456789", "12346FFF"}, .shown = {"123456789", "12346FFF"}},
      {.in = {"", ""}, .shown = {"", ""}, .message = "FirstAddress Error!", .busy = false},
      {.in = {"100", ""}, .shown = {"100", ""}, .message = "LastAddress Error!", .busy = false},
      {.in = {"100", "FF"}, .shown = {"00000100", "000000FF"}, .message = "Address Error", .busy = false},
      {.in = {"0", "FFFFFFFF"}, .shown = {"00000000", "FFFFFFFF"}, .message = "Out of Memory"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.in.Text1 + ".." + c.in.Text2);
    Module1 m = Patterned();
    const Module1 before = Patterned();
    ScriptedPlatform platform;
    MemorySettings store;
    BufAddrFields f = c.in;
    const bool changed = *c.message == '\0';
    EXPECT_EQ(frmbufaddr::Cmdok_Click(f, m, platform, store), changed);
    EXPECT_EQ(platform.Texts(), changed ? std::vector<std::string>{} : std::vector<std::string>{c.message});
    EXPECT_EQ(platform.pointers, c.busy ? kBusy : Pointers{});
    EXPECT_EQ(f, c.shown);
    MemorySettings expected;
    SumToolFields shown = before.frmsumtool;
    if (changed) {
      for (const char* key : {"SUMfaddr", "storefaddr", "SaveFirst", "LoadFirst"})
        expected.Write(kAddress, key, c.shown.Text1);
      for (const char* key : {"SUMladdr", "storeladdr", "SaveLast", "LoadLast"})
        expected.Write(kAddress, key, c.shown.Text2);
      expected.Write(kAddress, "storedata", "10");
      shown = SumToolFields{};  // no file, no dump, the step buttons off
      shown.txtbuffaddr = shown.txteditaddr = c.shown.Text1;
      shown.txtbufladdr = c.shown.Text2;
    }
    EXPECT_EQ(store.values, expected.values);
    EXPECT_EQ(m.frmsumtool, shown);
    EXPECT_EQ(m.BufFirst, changed ? AddressFromText(c.shown.Text1) : before.BufFirst);
    EXPECT_EQ(m.BufLast, changed ? AddressFromText(c.shown.Text2) : before.BufLast);
    const std::uint8_t* was = before.Buffer.data();
    EXPECT_TRUE(changed
                    ? std::all_of(&m.At(m.BufFirst), &m.At(m.BufLast) + 1, [](int b) { return b == 0xFF; })
                    : std::equal(was, was + 0x1001, m.Buffer.data()));
  }
}

}  // namespace
}  // namespace kestrum::test
