#include "bufferops/StoreBlock.h"

#include <cstring>

#include "bufferops/ClearBuffer.h"
#include "image/BusyScope.h"

namespace kestrum {

namespace {

void Fill(Module1& m, Address first, Address last, std::uint8_t value) {
  std::memset(&m.At(first), value, static_cast<std::size_t>(last - first + 1));
}

}  // namespace

void StoreBlock(Module1& m, Address First, Address Last, int Data) {
  if (!m.InArea(First) || !m.InArea(Last)) return;
  const auto value = static_cast<std::uint8_t>(Data);
  if (First <= Last) {
    Fill(m, First, Last, value);
  } else {
    Fill(m, First, m.BufLast, value);
    Fill(m, m.BufFirst, Last, value);
  }
}

int StoreDataValue(const std::string& text) {
  if (text.empty() || HexDigitValue(text.front()) < 0) return -1;
  const Address value = LeadingHexValue(text);
  return value <= 0xFF ? static_cast<int>(value) : -1;
}

void cmdblstore_Click(StoreFields& f, const Module1& m, SettingsStore& store) {
  f = StoreFields{};
  f.Text1 = store.Read(kAddress, "storefaddr", m.frmsumtool.txtbuffaddr);
  f.Text2 = store.Read(kAddress, "storeladdr", m.frmsumtool.txtbufladdr);
  f.Text3 = store.Read(kAddress, "storedata", "00");
}

bool Command2_Click(StoreFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  if (f.Text1.empty()) {
    platform.MsgBox("First Address Error!");
    return false;
  }
  if (f.Text2.empty()) {
    platform.MsgBox("Last Address Error!");
    return false;
  }
  if (f.Text3.empty()) {
    platform.MsgBox("Data Error!");
    return false;
  }
  f.Text1 = PadAddressText(f.Text1);
  f.Text2 = PadAddressText(f.Text2);
  const Address first = AddressFromText(f.Text1);
  const Address last = AddressFromText(f.Text2);
  // A text the filter let through (%, ' or a full stop first, or pasted
  // digits beyond a byte) is refused like an empty one rather than storing
  // a value the user never typed.
  const int data = StoreDataValue(f.Text3);
  if (data < 0) {
    platform.MsgBox("Data Error!");
    return false;
  }
  if (!m.InArea(first) || !m.InArea(last)) {
    platform.MsgBox("Address Error");
    return false;
  }

  {
    const BusyScope busy(platform, {&f.Command1Enabled, &f.Command2Enabled});
    StoreBlock(m, first, last, data);
  }

  platform.MsgBox("Block Store Complete!");
  ResetDump(m.frmsumtool);
  store.Write(kAddress, "storefaddr", f.Text1);
  store.Write(kAddress, "storeladdr", f.Text2);
  store.Write(kAddress, "storedata", f.Text3);
  return true;
}

}  // namespace kestrum
