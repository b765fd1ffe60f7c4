#include "bufferops/Sum.h"

#include <cstdint>

namespace kestrum {

Sums SumRange(const Module1& m, Address first, Address last) {
  const std::uint8_t* p = m.Buffer.data() + (first - m.BufFirst);
  const std::size_t n = static_cast<std::size_t>(last - first + 1);
  // Bytes that fall on even and on odd addresses, summed apart.
  std::uint64_t even = 0, odd = 0;
  const std::size_t skew = static_cast<std::size_t>(first & 1);
  for (std::size_t i = 0; i < n; ++i) {
    if (((i + skew) & 1) == 0) {
      even += p[i];
    } else {
      odd += p[i];
    }
  }
  Sums s;
  s.sum8_16 = static_cast<int>((even + odd) % 65536);
  s.sum8_8 = s.sum8_16 % 256;
  s.sum16_16 = static_cast<int>((even * 256 + odd) % 65536);
  return s;
}

Sums CalculateSum(const Module1& m) { return SumRange(m, m.SumFirst, m.SumLast); }

}  // namespace kestrum
