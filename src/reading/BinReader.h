#pragma once
// Binary files: bytes without addresses. Byte k of the file belongs to
// LoadFirst + LoadOffset + k; the offset counts from LoadFirst, not from 0.
#include <cstdint>

#include "reading/ByteSource.h"
#include "reading/RecordStore.h"

namespace kestrum {

// Stores the bytes of a file of length bytes that land in
// LoadFirst..LoadLast and reads no further than the last of them; an
// observer is given them instead. False only when the source fails or ends
// before its length.
bool ReadBin(RecordTarget& target, ByteSource& source, std::uint64_t length, Address LoadFirst,
             Address LoadLast);

}  // namespace kestrum
