#include "image/Startup.h"

namespace kestrum {

bool frmsumtool::Form_Load(Module1& m, SettingsStore& store) {
  const std::string defaultFirst = AddressToText(kDefaultFirst), defaultLast = AddressToText(kDefaultLast);
  m.FileError = 0;
  if (ResetArea(m, store.Read(settings::BufFirst, defaultFirst),
                store.Read(settings::BufLast, defaultLast)) == SizeResult::Ok)
    return true;
  return ResetArea(m, defaultFirst, defaultLast) == SizeResult::Ok;
}

void StoreAreaOnExit(const Module1& m, SettingsStore& store) {
  store.Write(settings::BufFirst, m.frmsumtool.txtbuffaddr);
  store.Write(settings::BufLast, m.frmsumtool.txtbufladdr);
}

}  // namespace kestrum
