#include "bufferops/SumDialog.h"

#include "image/BusyScope.h"

namespace kestrum {

void ShowSums(SumFields& f, const Sums& sums) {
  f.Text1 = HexText(static_cast<std::uint64_t>(sums.sum8_8), 2);
  f.Text2 = HexText(static_cast<std::uint64_t>(sums.sum8_16), 4);
  f.Text3 = HexText(static_cast<std::uint64_t>(sums.sum16_16), 4);
}

void cmdbufsum_Click(SumFields& f, const Module1& m, SettingsStore& store) {
  f = SumFields{};
  f.Text6 = store.Read(kAddress, "SUMfaddr", m.frmsumtool.txtbuffaddr);
  f.Text7 = store.Read(kAddress, "SUMladdr", m.frmsumtool.txtbufladdr);
}

bool TakeSumRange(SumFields& f, Module1& m, Platform& platform) {
  if (f.Text6.empty()) {
    platform.MsgBox("First Address Error!");
    return false;
  }
  if (f.Text7.empty()) {
    platform.MsgBox("Last Address Error!");
    return false;
  }
  f.Text6 = PadAddressText(f.Text6);
  f.Text7 = PadAddressText(f.Text7);
  m.SumFirst = AddressFromText(f.Text6);
  m.SumLast = AddressFromText(f.Text7);
  if (!m.InArea(m.SumFirst)) {
    platform.MsgBox("First Address Error!");
    return false;
  }
  if (!m.InArea(m.SumLast)) {
    platform.MsgBox("Last Address Error!");
    return false;
  }
  if (m.SumFirst > m.SumLast) {
    platform.MsgBox("Address Error!");
    return false;
  }
  return true;
}

bool Command1_Click(SumFields& f, Module1& m, Platform& platform) {
  if (!TakeSumRange(f, m, platform)) return false;
  Sums sums;
  {
    const BusyScope busy(platform, {&f.Command1Enabled, &f.Command2Enabled});
    sums = CalculateSum(m);
  }
  ShowSums(f, sums);
  return true;
}

void Command2_Click(const SumFields& f, SettingsStore& store) {
  store.Write(kAddress, "SUMfaddr", f.Text6);
  store.Write(kAddress, "SUMladdr", f.Text7);
}

}  // namespace kestrum
