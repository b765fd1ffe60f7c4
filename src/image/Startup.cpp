#include "image/Startup.h"

#include <cstring>

namespace kestrum {

namespace {
void FillWithFF(Module1& m) { std::memset(m.Buffer.data(), 0xFF, static_cast<std::size_t>(m.BufSize)); }
}  // namespace

bool Form_Load(Module1& m, SettingsStore& store) {
  SumToolFields& w = m.frmsumtool;
  w.txtbuffaddr = store.Read(settings::BufFirst, "00000000");
  w.txtbufladdr = store.Read(settings::BufLast, "0007FFFF");
  const Address first = AddressFromText(w.txtbuffaddr);
  const Address last = AddressFromText(w.txtbufladdr);
  m.FileError = 0;
  if (SizeBuffer(m, first, last) == SizeResult::Ok) {
    FillWithFF(m);
    w.txteditaddr = w.txtbuffaddr;
    return true;
  }
  w.txtbuffaddr = "00000000";
  w.txtbufladdr = "0007FFFF";
  const bool ok = SizeBuffer(m, kDefaultFirst, kDefaultLast) == SizeResult::Ok;
  if (ok) FillWithFF(m);
  w.txteditaddr = "00000000";
  return ok;
}

void StoreAreaOnExit(const Module1& m, SettingsStore& store) {
  store.Write(settings::BufFirst, m.frmsumtool.txtbuffaddr);
  store.Write(settings::BufLast, m.frmsumtool.txtbufladdr);
}

}  // namespace kestrum
