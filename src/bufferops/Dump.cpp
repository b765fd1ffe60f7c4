#include "bufferops/Dump.h"

#include "image/HexCodec.h"

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
  std::vector<std::string> rows;
  const Address start = m.DumpAddr - m.BufFirst;
  const Address end =
      m.DumpAddr + kDumpLastRowOffset < m.BufLast ? start + kDumpLastRowOffset : m.BufLast - m.BufFirst;
  for (Address i = start; i <= end; i += kDumpRowBytes) {
    std::string line = AddressToText(m.BufFirst + i) + "  ";
    const Address last = m.BufFirst + i + 15 <= m.BufLast ? i + 15 : m.BufLast - m.BufFirst;
    const auto count = static_cast<std::size_t>(last - i + 1);
    const std::size_t head = line.size();
    line.resize(head + 2 * count);
    EncodeHex(&m.Buffer[static_cast<std::size_t>(i)], count, line.data() + head);
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
