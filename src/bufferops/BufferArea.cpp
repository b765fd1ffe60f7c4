#include "bufferops/BufferArea.h"

#include <utility>

#include "image/DialogSupport.h"

namespace kestrum {

std::string PadWithLeadingZeros(std::string_view text) {
  std::string padded(text);
  if (padded.size() < 8) padded.insert(0, 8 - padded.size(), '0');
  return padded;
}

Outcome ReadBufAddrFields(BufAddrFields& f) {
  const Outcome empty = RefuseEmpty({{&f.Text1, "FirstAddress Error!"}, {&f.Text2, "LastAddress Error!"}});
  if (!empty.IsDone()) return empty;
  const AddressRange range = PadAndRead(f.Text1, f.Text2, PadWithLeadingZeros);
  return range.first > range.last ? Outcome::Refuse("Address Error") : Outcome::Done();
}

Outcome NewArea(Module1& m, const std::string& firstText, const std::string& lastText) {
  return ResetArea(m, firstText, lastText) == SizeResult::Ok ? Outcome::Done()
                                                             : Outcome::Fail("Out of Memory");
}

bool frmbufaddr::Cmdok_Click(BufAddrFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  if (!RunChecked(ReadBufAddrFields(f), platform, {&f.CmdokEnabled, &f.Command1Enabled}, [&] {
         return NewArea(m, f.Text1, f.Text2);
       }).IsDone())
    return false;
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
