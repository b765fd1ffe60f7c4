#pragma once
// The three check sums of a range of the image.
#include <string>

#include "image/Module1.h"

namespace kestrum {

struct Sums {
  int sum8_8 = 0;    // sum of the bytes, modulo 256
  int sum8_16 = 0;   // sum of the bytes, modulo 65536
  int sum16_16 = 0;  // sum of the big-endian words, modulo 65536: bytes at
                     // even addresses count * 256, at odd addresses * 1

  bool operator==(const Sums&) const = default;
};

// The sums over first..last, both in the area, first <= last. A byte below
// first or above last is never read, also where a word is cut in half.
Sums SumRange(const Module1& m, Address first, Address last);

// The sums over SumFirst..SumLast.
Sums CalculateSum(const Module1& m);

}  // namespace kestrum
