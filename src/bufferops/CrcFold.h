#pragma once
// The seam to the processor's carry-less multiply: one file per kind of
// processor implements it, and where none does the tables do all the work.
#include <cstddef>
#include <cstdint>

#include "bufferops/Crc.h"

namespace kestrum::crcfold {

// Whether this processor can fold.
bool Available();

// Folds n bytes (n a multiple of 64, at least 64) into 16 whose CRC, from a
// register of 0, equals that of the n bytes from register reg. A reflected
// CRC takes its bytes lowest bit first and reg at the bottom; a normal one
// highest bit first and reg at the top.
void Fold(const Crc::FoldConstants& k, bool reflected, std::uint64_t reg, const std::uint8_t* p,
          std::size_t n, std::uint8_t rest[16]);

}  // namespace kestrum::crcfold
