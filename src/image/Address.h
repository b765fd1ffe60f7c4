#pragma once
// Addresses, offsets and byte counts, and the text forms of addresses and
// bytes that every field, setting and file line uses.
#include <cstdint>
#include <string>
#include <string_view>

#include "image/RecordCodec.h"

namespace kestrum {

// A whole number: an address from 00000000 to FFFFFFFF, a signed offset, a
// count of bytes, or a sum of these. Nothing the program forms overflows it.
using Address = std::int64_t;

constexpr Address kAddressMax = 0xFFFFFFFF;
constexpr Address kDefaultFirst = 0x00000000;
constexpr Address kDefaultLast = 0x0007FFFF;

// Value of the leading hexadecimal digits of a group of at most 4
// characters; the first other character ends the group. Empty gives 0.
Address HexGroupValue(std::string_view group);

// High group = first 4 characters, low group = last 4 characters (a text of
// 4 or fewer gives itself to both): high * 65536 + low.
Address AddressFromText(std::string_view text);

// "0000000" + text, last 8 characters.
std::string PadAddressText(std::string_view text);

// 8 upper-case digits: 4 of the high half, 4 of the low half.
std::string AddressToText(Address value);

// 2 upper-case digits (the last 2 of "0" + the hexadecimal form).
std::string HexByteText(int value);

// Upper-case hexadecimal of value, left-padded with "0" to width digits.
std::string HexText(std::uint64_t value, int width);

// Value of the leading hexadecimal digits of text, any length; 0 if none.
Address LeadingHexValue(std::string_view text);

// Comparison of two texts ignoring the case of ASCII letters.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

}  // namespace kestrum
