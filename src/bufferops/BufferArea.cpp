#include "bufferops/BufferArea.h"

#include <utility>

#include "bufferops/ClearBuffer.h"
#include "image/BusyScope.h"

namespace kestrum {

std::string PadWithLeadingZeros(std::string text) {
  if (text.size() < 8) text.insert(0, 8 - text.size(), '0');
  return text;
}

bool Cmdok_Click(BufAddrFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  if (f.Text1.empty()) {
    platform.MsgBox("FirstAddress Error!");
    return false;
  }
  if (f.Text2.empty()) {
    platform.MsgBox("LastAddress Error!");
    return false;
  }
  f.Text1 = PadWithLeadingZeros(f.Text1);
  f.Text2 = PadWithLeadingZeros(f.Text2);
  const Address first = AddressFromText(f.Text1);
  const Address last = AddressFromText(f.Text2);
  if (first > last) {
    platform.MsgBox("Address Error");
    return false;
  }

  BusyScope busy(platform, {&f.CmdokEnabled, &f.Command1Enabled});
  if (SizeBuffer(m, first, last) != SizeResult::Ok) {
    busy.End();
    platform.MsgBox("Out of Memory");
    return false;
  }
  ClearBuffer(m);
  SumToolFields& w = m.frmsumtool;
  w.txtbuffaddr = f.Text1;
  w.txtbufladdr = f.Text2;
  w.txteditaddr = f.Text1;
  // Every range a dialog offers starts again from the whole new area.
  using namespace settings;
  const std::pair<Setting, const std::string&> ranges[] = {
      {SUMfaddr, f.Text1},  {SUMladdr, f.Text2}, {storefaddr, f.Text1}, {storeladdr, f.Text2},
      {SaveFirst, f.Text1}, {SaveLast, f.Text2}, {LoadFirst, f.Text1},  {LoadLast, f.Text2}};
  for (const auto& [setting, text] : ranges) store.Write(setting, text);
  store.Write(storedata, "10");
  return true;
}

}  // namespace kestrum
