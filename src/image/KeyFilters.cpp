#include "image/KeyFilters.h"

namespace kestrum {

namespace {

bool PassesAtAnyLength(int code) {
  return code == kKeyBackspace || code == '%' || code == '\'' || code == '.';
}

int Filter(std::string_view text, int code, std::size_t limit, bool signs) {
  const bool full = text.size() >= limit;
  if ((code >= '0' && code <= '9') || (code >= 'A' && code <= 'F')) return full ? 0 : code;
  if (code >= 'a' && code <= 'f') return full ? 0 : code - ('a' - 'A');
  if (signs && (code == '-' || code == '+')) return full ? 0 : code;
  if (PassesAtAnyLength(code)) return code;
  return 0;
}

}  // namespace

int FilterAddressKey(std::string_view fieldText, int keyCode) { return Filter(fieldText, keyCode, 8, false); }
int FilterByteKey(std::string_view fieldText, int keyCode) { return Filter(fieldText, keyCode, 2, false); }
int FilterOffsetKey(std::string_view fieldText, int keyCode) { return Filter(fieldText, keyCode, 9, true); }

}  // namespace kestrum
