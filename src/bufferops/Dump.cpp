#include "bufferops/Dump.h"

namespace kestrum {

namespace {

constexpr char kMessage[] = "Dump Address Error!";

// Steps 1 to 3 shared by the three buttons: false on an empty field.
bool ReadDumpAddress(Module1& m, Platform& platform) {
  SumToolFields& w = m.frmsumtool;
  if (w.txteditaddr.empty()) {
    platform.MsgBox(kMessage);
    return false;
  }
  w.txteditaddr = PadAddressText(w.txteditaddr);
  m.DumpAddr = AddressFromText(w.txteditaddr);
  return true;
}

void ShowPage(Module1& m) {
  m.frmsumtool.List1.clear();
  RefreshDump(m);
}

}  // namespace

std::vector<std::string> DumpRows(const Module1& m) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::vector<std::string> rows;
  const Address start = m.DumpAddr - m.BufFirst;
  const Address end = m.DumpAddr + kDumpLastRowOffset < m.BufLast ? start + kDumpLastRowOffset
                                                                   : m.BufLast - m.BufFirst;
  for (Address i = start; i <= end; i += kDumpRowBytes) {
    std::string line = AddressToText(m.BufFirst + i) + "  ";
    const Address last = m.BufFirst + i + 15 <= m.BufLast ? i + 15 : m.BufLast - m.BufFirst;
    for (Address j = i; j <= last; ++j) {
      const std::uint8_t b = m.Buffer[static_cast<std::size_t>(j)];
      line += kDigits[b >> 4];
      line += kDigits[b & 0xF];
    }
    rows.push_back(std::move(line));
  }
  return rows;
}

void RefreshDump(Module1& m) {
  for (auto& row : DumpRows(m)) m.frmsumtool.List1.push_back(std::move(row));
}

void cmdedit_Click(Module1& m, Platform& platform) {
  if (!ReadDumpAddress(m, platform)) return;
  if (!m.InArea(m.DumpAddr)) {
    platform.MsgBox(kMessage);
    return;
  }
  ShowPage(m);
  m.frmsumtool.cmdeditplusEnabled = true;
  m.frmsumtool.cmdeditminusEnabled = true;
}

void cmdeditminus_Click(Module1& m, Platform& platform) {
  if (!ReadDumpAddress(m, platform)) return;
  if (!m.InArea(m.DumpAddr)) {
    platform.MsgBox(kMessage);
    return;
  }
  m.DumpAddr = m.BufFirst + kDumpRowBytes <= m.DumpAddr ? m.DumpAddr - kDumpRowBytes : m.BufFirst;
  ShowPage(m);
  m.frmsumtool.txteditaddr = AddressToText(m.DumpAddr);
}

void cmdeditplus_Click(Module1& m, Platform& platform) {
  if (!ReadDumpAddress(m, platform)) return;
  if (m.DumpAddr + kDumpPageBytes <= m.BufLast) m.DumpAddr += kDumpRowBytes;
  if (!m.InArea(m.DumpAddr)) {
    platform.MsgBox(kMessage);
    return;
  }
  ShowPage(m);
  m.frmsumtool.txteditaddr = AddressToText(m.DumpAddr);
}

}  // namespace kestrum
