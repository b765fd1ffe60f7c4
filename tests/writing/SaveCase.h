#pragma once
// A save of a range out of an area of random bytes: the rows of the round
// trip tests.
#include <random>

#include "TestSupport.h"

namespace kestrum::test {

struct SaveCase {
  const char* name;
  Address areaFirst, areaLast;
  Address saveFirst, saveLast;
  int recordLength;

  // The image with SaveFirst, SaveLast and RecordLength set.
  Module1 Image(std::mt19937& random) const {
    Module1 m = MakeImage(areaFirst, areaLast);
    for (Address a = areaFirst; a <= areaLast; ++a) m.At(a) = static_cast<std::uint8_t>(random());
    m.SaveFirst = saveFirst;
    m.SaveLast = saveLast;
    m.RecordLength = static_cast<std::int16_t>(recordLength);
    return m;
  }
};

}  // namespace kestrum::test
