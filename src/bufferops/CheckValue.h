#pragma once
// Check values put into the image: a CRC or a sum over a range, stored in a
// stated byte order at an address where the firmware looks for it.
#include <cstdint>

#include "bufferops/Crc.h"
#include "bufferops/Sum.h"
#include "image/Formats.h"
#include "image/Module1.h"

namespace kestrum {

enum class ByteOrder { Big, Little };

enum class Complement { None, Ones, Twos };

// The CRC over first..last, both in the area, first <= last.
std::uint64_t CrcRange(const Module1& m, Address first, Address last, const Crc& crc);

// The bytes a value of width bits takes.
int ValueBytes(int width);
int ValueBytes(SumKind kind);

// The chosen sum, as is or complemented within its bytes: the twos'
// complement makes the range and the stored value sum to zero.
std::uint64_t SumValue(const Sums& sums, SumKind kind, Complement complement);

// Where count bytes from at would go, for a value over first..last.
enum class StorePlace { Ok, OutsideArea, InsideRange };
StorePlace CheckStorePlace(const Module1& m, Address at, int count, Address first, Address last);

// Writes the low count bytes of value from at on, in the given order.
void StoreValue(Module1& m, Address at, std::uint64_t value, int count, ByteOrder order);

}  // namespace kestrum
