#include "reading/RecordStore.h"

namespace kestrum {

const char* RecordMessage(RecordStatus status) {
  switch (status) {
    case RecordStatus::FormatError:
      return kFormatError;
    case RecordStatus::SumError:
      return kSumError;
    case RecordStatus::Ok:
      break;
  }
  return "";
}

std::uint64_t StoreUpToBadDigit(Module1& m, const char* data, Address record, const RecordClip& clip) {
  Address a = clip.first;
  for (; a <= clip.last; ++a) {
    const int value = HexPairValue(data + 2 * (a - record));
    if (value < 0) break;
    m.At(a) = static_cast<std::uint8_t>(value);
  }
  return a > clip.first ? static_cast<std::uint64_t>(a - clip.first) : 0;
}

}  // namespace kestrum
