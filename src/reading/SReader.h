#pragma once
// Motorola S records, one line each: type, count, an address of 16, 24 or
// 32 bits by type, data and checksum.
#include "image/Module1.h"
#include "reading/LineReader.h"
#include "reading/RecordStore.h"

namespace kestrum {

// Handles one line by its type: S1, S2 and S3 go to LoadSRecord; S0, S5,
// S7, S8 and S9 are passed over unread; anything else is a "Format Error".
RecordStatus ReadSLine(RecordTarget& target, const Line& line, Address LoadFirst, Address LoadLast);

// A data record whose address has K + 1 bytes (K = 1, 2 or 3): stores what
// lies inside LoadFirst..LoadLast at its address + LoadOffset, then tests
// the checksum. A count, data or checksum field that is not made of
// hexadecimal digits is a "Format Error"; the address is read as address
// text, where a bad character ends its group.
RecordStatus LoadSRecord(RecordTarget& target, int K, const Line& line, Address LoadFirst, Address LoadLast);

}  // namespace kestrum
