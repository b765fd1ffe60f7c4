#include "image/Address.h"

#include <algorithm>

namespace kestrum {

namespace {
std::string LastChars(std::string text, std::size_t n) {
  return text.size() <= n ? text : text.substr(text.size() - n);
}

// Upper-case hexadecimal without leading zeros ("0" for zero).
std::string PlainHex(std::uint64_t value) {
  char out[17];
  int pos = 16;
  out[pos] = '\0';
  do {
    out[--pos] = kHexDigits[value & 0xF];
    value >>= 4;
  } while (value != 0);
  return std::string(out + pos);
}
}  // namespace

Address HexGroupValue(std::string_view group) {
  Address value = 0;
  for (char c : group.substr(0, std::min<std::size_t>(group.size(), 4))) {
    int digit = HexDigitValue(c);
    if (digit < 0) break;
    value = value * 16 + digit;
  }
  return value;
}

Address AddressFromText(std::string_view text) {
  const std::size_t n = std::min<std::size_t>(text.size(), 4);
  return HexGroupValue(text.substr(0, n)) * 65536 + HexGroupValue(text.substr(text.size() - n));
}

std::string PadAddressText(std::string_view text) { return LastChars("0000000" + std::string(text), 8); }

std::string AddressToText(Address value) {
  // Floor division keeps the halves whole for any value the program forms.
  Address high = value >= 0 ? value / 65536 : -((-value + 65535) / 65536);
  std::string highText = LastChars("000" + PlainHex(static_cast<std::uint64_t>(high)), 4);
  Address low = value - HexGroupValue(highText) * 65536;
  std::string lowText = LastChars("000" + PlainHex(static_cast<std::uint64_t>(low)), 4);
  return highText + lowText;
}

std::string HexByteText(int value) {
  char pair[2];
  PutHexByte(pair, static_cast<unsigned>(value));
  return std::string(pair, 2);
}

std::string HexText(std::uint64_t value, int width) {
  std::string text = PlainHex(value);
  if (static_cast<int>(text.size()) < width)
    text.insert(0, static_cast<std::size_t>(width) - text.size(), '0');
  return text;
}

Address LeadingHexValue(std::string_view text) {
  Address value = 0;
  for (char c : text) {
    int digit = HexDigitValue(c);
    if (digit < 0) break;
    // Beyond 15 digits the value no longer matters to any caller; stop
    // growing rather than overflow.
    if (value > (Address{1} << 58)) break;
    value = value * 16 + digit;
  }
  return value;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'a' && x <= 'z') x = static_cast<char>(x - 32);
    if (y >= 'a' && y <= 'z') y = static_cast<char>(y - 32);
    if (x != y) return false;
  }
  return true;
}

}  // namespace kestrum
