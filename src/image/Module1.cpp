#include "image/Module1.h"

#include <cstring>
#include <new>

#include "image/Memory.h"
#include "image/System.h"

namespace kestrum {

SizeResult SizeBuffer(Module1& m, Address first, Address last) {
  const Address size = last - first + 1;
  if (size < 0) return SizeResult::NegativeSize;
  if (size > kMaxBufSize) return SizeResult::TooLarge;
  // Zeroed pages are handed out untouched; the fill with FF that follows,
  // or a later save's output block, would be killed halfway if the system
  // can't back them.
  const auto available = sys::AvailableMemory();
  if (available && static_cast<std::uint64_t>(size) + 1 + kOperationReserve > *available)
    return SizeResult::OutOfMemory;
  ByteBuffer fresh = ByteBuffer::Allocate(static_cast<std::size_t>(size) + 1);
  if (!fresh.ok()) return SizeResult::OutOfMemory;
  m.Buffer = std::move(fresh);
  m.BufFirst = first;
  m.BufLast = last;
  m.BufSize = size;
  return SizeResult::Ok;
}

void ResetDump(SumToolFields& w) {
  w.List1.clear();
  w.cmdeditplusEnabled = false;
  w.cmdeditminusEnabled = false;
}

void ClearBuffer(Module1& m) {
  m.frmsumtool.Text1.clear();
  if (m.BufSize > 0) std::memset(m.Buffer.data(), 0xFF, static_cast<std::size_t>(m.BufSize));
  ResetDump(m.frmsumtool);
}

SizeResult ResetArea(Module1& m, const std::string& firstText, const std::string& lastText) {
  const SizeResult sized = SizeBuffer(m, AddressFromText(firstText), AddressFromText(lastText));
  if (sized != SizeResult::Ok) return sized;
  ClearBuffer(m);
  m.frmsumtool.txtbuffaddr = firstText;
  m.frmsumtool.txtbufladdr = lastText;
  m.frmsumtool.txteditaddr = firstText;
  return SizeResult::Ok;
}

}  // namespace kestrum
