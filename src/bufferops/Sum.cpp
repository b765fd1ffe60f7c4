#include "bufferops/Sum.h"

#include <cstdint>

namespace kestrum {

namespace {

// Bytes per block of the sum: a fixed length lets the compiler turn the
// block's loop into vector code, and 32-bit totals can't spill within it.
constexpr std::size_t kBlockBytes = 4096;

// Sums of the bytes at even and at odd offsets from p, over one block.
inline void SumBlock(const std::uint8_t* p, std::uint64_t& evenOffsets, std::uint64_t& oddOffsets) {
  std::uint32_t even = 0, odd = 0;
  for (std::size_t i = 0; i < kBlockBytes / 2; ++i) {
    even += p[2 * i];
    odd += p[2 * i + 1];
  }
  evenOffsets += even;
  oddOffsets += odd;
}

// Sums the bytes at even and at odd offsets from p apart, in one pass.
void SumByParity(const std::uint8_t* p, std::size_t n, std::uint64_t& evenOffsets,
                 std::uint64_t& oddOffsets) {
  std::uint64_t even = 0, odd = 0;
  std::size_t i = 0;
  for (; i + kBlockBytes <= n; i += kBlockBytes) SumBlock(p + i, even, odd);
  for (; i < n; ++i) ((i & 1) == 0 ? even : odd) += p[i];
  evenOffsets = even;
  oddOffsets = odd;
}

}  // namespace

Sums SumRange(const Module1& m, Address first, Address last) {
  if (first > last || !m.InArea(first) || !m.InArea(last)) return Sums{};
  const std::uint8_t* p = m.Buffer.data() + (first - m.BufFirst);
  const std::size_t n = static_cast<std::size_t>(last - first + 1);
  std::uint64_t atEvenOffset = 0, atOddOffset = 0;
  SumByParity(p, n, atEvenOffset, atOddOffset);
  // Offset 0 is the first address: its parity decides which bytes are the
  // high halves of the big-endian words.
  const bool firstOdd = (first & 1) != 0;
  const std::uint64_t even = firstOdd ? atOddOffset : atEvenOffset;
  const std::uint64_t odd = firstOdd ? atEvenOffset : atOddOffset;
  Sums s;
  s.sum8_16 = static_cast<int>((even + odd) % 65536);
  s.sum8_8 = s.sum8_16 % 256;
  s.sum16_16 = static_cast<int>((even * 256 + odd) % 65536);
  return s;
}

Sums CalculateSum(const Module1& m) { return SumRange(m, m.SumFirst, m.SumLast); }

}  // namespace kestrum
