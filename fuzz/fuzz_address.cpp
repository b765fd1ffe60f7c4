// Address text and the key filters over arbitrary text: every value stays in
// the 32-bit space, text and value convert back and forth, and no filter lets
// a character through that the field may not hold.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "image/Address.h"
#include "image/KeyFilters.h"

using namespace kestrum;

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

bool Allowed(int code, bool signs) {
  return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'F') || code == 8 || code == '%' ||
         code == '\'' || code == '.' || (signs && (code == '-' || code == '+'));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);

  const Address raw = AddressFromText(text);
  Check(raw >= 0 && raw <= kAddressMax);
  if (!text.empty()) {
    const std::string padded = PadAddressText(text);
    Check(padded.size() == 8);
    const Address value = AddressFromText(padded);
    Check(value >= 0 && value <= kAddressMax);
    const std::string back = AddressToText(value);
    Check(back.size() == 8 && AddressFromText(back) == value);
  }

  if (size >= 2) {
    const int code = static_cast<std::int16_t>(data[0] | (data[1] << 8));
    const std::string field = text.substr(2);
    struct {
      int (*filter)(std::string_view, int);
      std::size_t limit;
      bool signs;
    } filters[] = {{FilterAddressKey, 8, false}, {FilterByteKey, 2, false}, {FilterOffsetKey, 9, true}};
    for (const auto& f : filters) {
      const int passed = f.filter(field, code);
      if (passed == 0) continue;
      Check(Allowed(passed, f.signs));
      const bool counted = passed != 8 && passed != '%' && passed != '\'' && passed != '.';
      if (counted) Check(field.size() < f.limit);
      Check(passed == code || (code >= 'a' && code <= 'f' && passed == code - 32));
    }
  }
  return 0;
}
