#include "image/Module1.h"

#include <new>

namespace kestrum {

SizeResult SizeBuffer(Module1& m, Address first, Address last) {
  const Address size = last - first + 1;
  if (size < 0) return SizeResult::NegativeSize;
  if (size > kMaxBufSize) return SizeResult::TooLarge;
  ByteBuffer fresh = ByteBuffer::Allocate(static_cast<std::size_t>(size) + 1);
  if (!fresh.ok()) return SizeResult::OutOfMemory;
  m.Buffer = std::move(fresh);
  m.BufFirst = first;
  m.BufLast = last;
  m.BufSize = size;
  return SizeResult::Ok;
}

}  // namespace kestrum
