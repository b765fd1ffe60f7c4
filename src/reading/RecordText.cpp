#include "reading/RecordText.h"

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

}  // namespace kestrum
