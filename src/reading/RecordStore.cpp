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

RecordStatus StoreUpToBadDigit(Module1& m, const char* data, Address record, const RecordClip& clip) {
  for (Address a = clip.first; a <= clip.last; ++a) {
    const int value = HexPairValue(data + 2 * (a - record));
    if (value < 0) break;
    m.At(a) = static_cast<std::uint8_t>(value);
  }
  return RecordStatus::FormatError;
}

}  // namespace kestrum
