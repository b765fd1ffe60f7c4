// Processors without a carry-less fold here: the tables do all the work.
#if !(defined(__x86_64__) || defined(_M_X64))

#include "bufferops/CrcFold.h"

namespace kestrum::crcfold {

bool Available() { return false; }

void Fold(const Crc::FoldConstants&, bool, std::uint64_t, const std::uint8_t*, std::size_t,
          std::uint8_t[16]) {}

}  // namespace kestrum::crcfold

#endif
