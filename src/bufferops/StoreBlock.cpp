#include "bufferops/StoreBlock.h"

#include <cstring>

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

Outcome CheckBlockStore(const Module1& m, const BlockStoreRequest& request) {
  const bool inArea = m.InArea(request.range.first) && m.InArea(request.range.last);
  return inArea ? Outcome::Done() : Outcome::Refuse("Address Error");
}

Outcome StoreBlock(Module1& m, const BlockStoreRequest& request) {
  StoreBlock(m, request.range.first, request.range.last, request.data);
  return Outcome::Done("Block Store Complete!");
}

int StoreDataValue(const std::string& text) {
  if (text.empty() || HexDigitValue(text.front()) < 0) return -1;
  const Address value = LeadingHexValue(text);
  return value <= 0xFF ? static_cast<int>(value) : -1;
}

Outcome ReadStoreFields(StoreFields& f, const Module1& m, BlockStoreRequest& request) {
  const Outcome empty = RefuseEmpty(
      {{&f.Text1, "First Address Error!"}, {&f.Text2, "Last Address Error!"}, {&f.Text3, "Data Error!"}});
  if (!empty.IsDone()) return empty;
  request.range = PadAndRead(f.Text1, f.Text2, PadAddressText);
  // A text the filter let through (%, ' or a full stop first, or pasted
  // digits beyond a byte) is refused like an empty one rather than storing
  // a value the user never typed.
  request.data = StoreDataValue(f.Text3);
  if (request.data < 0) return Outcome::Refuse("Data Error!");
  return CheckBlockStore(m, request);
}

void frmsumtool::cmdblstore_Click(StoreFields& f, const Module1& m, SettingsStore& store) {
  f = StoreFields{};
  f.Text1 = store.Read(settings::storefaddr, m.frmsumtool.txtbuffaddr);
  f.Text2 = store.Read(settings::storeladdr, m.frmsumtool.txtbufladdr);
  f.Text3 = store.Read(settings::storedata, "00");
}

bool frmstore::Command2_Click(StoreFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  BlockStoreRequest request;
  const Outcome checked = ReadStoreFields(f, m, request);
  if (!RunChecked(checked, platform, {&f.Command1Enabled, &f.Command2Enabled}, [&] {
         return StoreBlock(m, request);
       }).IsDone())
    return false;
  ResetDump(m.frmsumtool);
  store.Write(settings::storefaddr, f.Text1);
  store.Write(settings::storeladdr, f.Text2);
  store.Write(settings::storedata, f.Text3);
  return true;
}

}  // namespace kestrum
