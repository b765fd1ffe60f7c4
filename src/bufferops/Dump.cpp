#include "bufferops/Dump.h"

#include "image/DialogSupport.h"
#include "image/RecordCodec.h"

namespace kestrum {

namespace {

constexpr char kMessage[] = "Dump Address Error!";

void Button(Module1& m, Platform& platform, DumpStep step) {
  std::string& text = m.frmsumtool.txteditaddr;
  Outcome outcome = RefuseEmpty({{&text, kMessage}});
  if (outcome.IsDone()) {
    text = PadAddressText(text);
    outcome = DumpPage(m, AddressFromText(text), step);
  }
  ShowWords(platform, outcome);
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

Outcome DumpPage(Module1& m, Address at, DumpStep step) {
  SumToolFields& w = m.frmsumtool;
  m.DumpAddr = at;
  if (step == DumpStep::Up && m.DumpAddr + kDumpPageBytes <= m.BufLast) m.DumpAddr += kDumpRowBytes;
  if (!m.InArea(m.DumpAddr)) return Outcome::Refuse(kMessage);
  if (step == DumpStep::Down)
    m.DumpAddr = m.BufFirst + kDumpRowBytes <= m.DumpAddr ? m.DumpAddr - kDumpRowBytes : m.BufFirst;
  w.List1.clear();
  RefreshDump(m);
  if (step == DumpStep::Here)
    w.cmdeditplusEnabled = w.cmdeditminusEnabled = true;
  else
    w.txteditaddr = AddressToText(m.DumpAddr);
  return Outcome::Done();
}

void frmsumtool::cmdedit_Click(Module1& m, Platform& platform) { Button(m, platform, DumpStep::Here); }
void frmsumtool::cmdeditplus_Click(Module1& m, Platform& platform) { Button(m, platform, DumpStep::Up); }
void frmsumtool::cmdeditminus_Click(Module1& m, Platform& platform) { Button(m, platform, DumpStep::Down); }

}  // namespace kestrum
