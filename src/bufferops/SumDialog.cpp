#include "bufferops/SumDialog.h"

namespace kestrum {

Outcome CheckSumRange(const Module1& m, const AddressRange& range) {
  if (!m.InArea(range.first)) return Outcome::Refuse("First Address Error!");
  if (!m.InArea(range.last)) return Outcome::Refuse("Last Address Error!");
  if (range.first > range.last) return Outcome::Refuse("Address Error!");
  return Outcome::Done();
}

void ShowSums(SumFields& f, const Sums& sums) {
  f.Text1 = HexText(static_cast<std::uint64_t>(sums.sum8_8), 2);
  f.Text2 = HexText(static_cast<std::uint64_t>(sums.sum8_16), 4);
  f.Text3 = HexText(static_cast<std::uint64_t>(sums.sum16_16), 4);
}

Outcome ReadSumFields(SumFields& f, Module1& m) {
  const Outcome empty = RefuseEmpty({{&f.Text6, "First Address Error!"}, {&f.Text7, "Last Address Error!"}});
  if (!empty.IsDone()) return empty;
  const AddressRange range = PadAndRead(f.Text6, f.Text7, PadAddressText);
  m.SumFirst = range.first;
  m.SumLast = range.last;
  return CheckSumRange(m, range);
}

void frmsumtool::cmdbufsum_Click(SumFields& f, const Module1& m, SettingsStore& store) {
  f = SumFields{};
  f.Text6 = store.Read(settings::SUMfaddr, m.frmsumtool.txtbuffaddr);
  f.Text7 = store.Read(settings::SUMladdr, m.frmsumtool.txtbufladdr);
}

bool frmsum::Command1_Click(SumFields& f, Module1& m, Platform& platform) {
  Sums sums;
  const Outcome outcome =
      RunChecked(ReadSumFields(f, m), platform, {&f.Command1Enabled, &f.Command2Enabled}, [&] {
        sums = CalculateSum(m);
        return Outcome::Done();
      });
  if (outcome.IsDone()) ShowSums(f, sums);
  return outcome.IsDone();
}

void frmsum::Command2_Click(const SumFields& f, SettingsStore& store) {
  store.Write(settings::SUMfaddr, f.Text6);
  store.Write(settings::SUMladdr, f.Text7);
}

}  // namespace kestrum
