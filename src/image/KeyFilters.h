#pragma once
// The key filters of the hexadecimal fields: given the field's text and the
// key code of a key press, the code that goes on to the field (0 swallows
// the key). Only typed keys pass through them, never pasted text.
#include <string_view>

namespace kestrum {

constexpr int kKeyBackspace = 8;

// Address fields: hexadecimal digits up to 8.
int FilterAddressKey(std::string_view fieldText, int keyCode);
// Byte fields: hexadecimal digits up to 2.
int FilterByteKey(std::string_view fieldText, int keyCode);
// The signed offset field of the load dialog: digits and signs up to 9.
int FilterOffsetKey(std::string_view fieldText, int keyCode);

}  // namespace kestrum
