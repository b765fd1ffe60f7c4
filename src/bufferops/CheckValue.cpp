#include "bufferops/CheckValue.h"

namespace kestrum {

std::uint64_t CrcRange(const Module1& m, Address first, Address last, const Crc& crc) {
  return crc.Compute(m.Buffer.data() + (first - m.BufFirst), static_cast<std::size_t>(last - first + 1));
}

int ValueBytes(int width) { return (width + 7) / 8; }

int ValueBytes(SumKind kind) { return kind == SumKind::Sum8_8 ? 1 : 2; }

std::uint64_t SumValue(const Sums& sums, SumKind kind, Complement complement) {
  const std::uint64_t mask = kind == SumKind::Sum8_8 ? 0xFF : 0xFFFF;
  const int sum = kind == SumKind::Sum8_8    ? sums.sum8_8
                  : kind == SumKind::Sum8_16 ? sums.sum8_16
                                             : sums.sum16_16;
  const std::uint64_t value = static_cast<std::uint64_t>(sum);
  switch (complement) {
    case Complement::Ones:
      return ~value & mask;
    case Complement::Twos:
      return (0 - value) & mask;
    case Complement::None:
      break;
  }
  return value;
}

StorePlace CheckStorePlace(const Module1& m, Address at, int count, Address first, Address last) {
  const Address end = at + count - 1;
  if (!m.InArea(at) || !m.InArea(end)) return StorePlace::OutsideArea;
  if (at <= last && end >= first) return StorePlace::InsideRange;
  return StorePlace::Ok;
}

void StoreValue(Module1& m, Address at, std::uint64_t value, int count, ByteOrder order) {
  for (int i = 0; i < count; ++i) {
    const int shift = 8 * (order == ByteOrder::Big ? count - 1 - i : i);
    m.At(at + i) = static_cast<std::uint8_t>(value >> shift);
  }
}

}  // namespace kestrum
