// Address and offset text over arbitrary text: the two groups of an address
// as their rules read them, text and value converting back and forth, the
// key filters letting through only what a field may hold, the offset's sign
// and length rules, and the Load button's tests in their order, with the
// fields padded and the offset set exactly when the rules reach that step.
//
// Input: the text. Its first two bytes are also a key code for the filters;
// split at line feeds it is the first address, last address and offset of
// the load dialog (the offset box ticked when a third part is there).
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "image/Address.h"
#include "image/KeyFilters.h"
#include "image/Platform.h"
#include "image/Settings.h"
#include "reading/LoadDialog.h"

using namespace kestrum;

namespace {

bool Allowed(int code, bool signs) {
  return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'F') || code == 8 || code == '%' ||
         code == '\'' || code == '.' || (signs && (code == '-' || code == '+'));
}

// A group's value: its leading digits, at most four of them.
Address Group(const std::string& group) {
  Address value = 0;
  for (std::size_t i = 0; i < group.size() && i < 4 && HexDigitValue(group[i]) >= 0; ++i)
    value = value * 16 + HexDigitValue(group[i]);
  return value;
}

Address ModelAddress(const std::string& text) {
  if (text.size() <= 4) return Group(text) * 65536 + Group(text);
  return Group(text.substr(0, 4)) * 65536 + Group(text.substr(text.size() - 4));
}

std::string ModelPad(const std::string& text) {
  const std::string padded = "0000000" + text;
  return padded.size() > 8 ? padded.substr(padded.size() - 8) : padded;
}

void CheckAddressText(const std::string& text) {
  const Address raw = AddressFromText(text);
  Check(raw == ModelAddress(text), "two groups of four, each up to its first bad character");
  Check(raw >= 0 && raw <= kAddressMax, "an address in the 32-bit space");
  if (text.empty()) return;
  const std::string padded = PadAddressText(text);
  Check(padded == ModelPad(text), "zeros in front, the last 8 characters kept");
  const Address value = AddressFromText(padded);
  const std::string back = AddressToText(value);
  Check(back.size() == 8 && AddressFromText(back) == value, "address text and value convert back and forth");
}

void CheckFilters(const std::string& text, const std::uint8_t* data) {
  const int code = static_cast<std::int16_t>(data[0] | (data[1] << 8));
  const std::string field = text.substr(2);
  const struct {
    int (*filter)(std::string_view, int);
    std::size_t limit;
    bool signs;
  } filters[] = {{FilterAddressKey, 8, false}, {FilterByteKey, 2, false}, {FilterOffsetKey, 9, true}};
  for (const auto& f : filters) {
    const int passed = f.filter(field, code);
    if (passed == 0) continue;
    Check(Allowed(passed, f.signs), "only what the field may hold");
    const bool counted = passed != 8 && passed != '%' && passed != '\'' && passed != '.';
    if (counted) Check(field.size() < f.limit, "no more characters than the field takes");
    Check(passed == code || (code >= 'a' && code <= 'f' && passed == code - 32), "the key or its upper case");
  }
}

// The offset rules: a sign only in front; without one fewer than 9
// characters; the digits are the rest, zeros in front, the last 8 kept.
bool ModelOffset(const std::string& text, Address& offset) {
  if (text.size() > 1 && text.find_first_of("+-", 1) != std::string::npos) return false;
  std::string digits = text;
  bool negative = false;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    negative = text[0] == '-';
    digits = text.substr(1);
  } else if (text.size() == 9) {
    return false;
  }
  offset = ModelAddress(ModelPad(digits));
  if (negative) offset = -offset;
  return true;
}

class RecordingPlatform : public Platform {
 public:
  int MsgBox(const std::string& text, int, const std::string&) override {
    messages.push_back(text);
    return vbOK;
  }
  void SetMousePointer(int p) override { pointer = p; }
  std::vector<std::string> messages;
  int pointer = vbDefault;
};

constexpr Address kBufFirst = 0x1000, kBufLast = 0x8FFFF;

Module1& Image() {
  static Module1 m = [] {
    Module1 image;
    Check(SizeBuffer(image, kBufFirst, kBufLast) == SizeResult::Ok, "the image");
    return image;
  }();
  return m;
}

void CheckLoadButton(const std::string& text) {
  std::vector<std::string> parts(1);
  for (char c : text) {
    if (c == '\n')
      parts.emplace_back();
    else
      parts.back() += c;
  }
  LoadFields f;
  f.Text1 = "missing.hex";
  f.File1 = "missing.hex";
  f.Dir1 = "/nonexistent-kestrum-folder";
  f.Text4 = parts[0];
  f.Text3 = parts.size() > 1 ? parts[1] : "";
  f.Check1 = f.Text2Visible = parts.size() > 2;
  if (f.Check1) f.Text2 = parts[2];
  Module1& m = Image();
  m.LoadOffset = 12345;
  m.frmsumtool.List1 = {"a row"};
  RecordingPlatform platform;
  MemorySettings store;
  const LoadFields typed = f;
  Check(!frmload::Command1_Click(f, m, platform, store), "a missing file never closes the dialog");

  std::string want;
  Address offset = 0;
  bool padded = false;
  if (typed.Text4.empty()) {
    want = "First Address Error!";
  } else if (typed.Text3.empty()) {
    want = "Last Address Error!";
  } else if (typed.Check1 && typed.Text2.empty()) {
    want = "Offset Address Error!";
  } else if (typed.Text2Visible && !ModelOffset(typed.Text2, offset)) {
    want = "OffsetAddress Error!";
  } else {
    padded = true;
    const Address first = ModelAddress(ModelPad(typed.Text4)), last = ModelAddress(ModelPad(typed.Text3));
    if (first < kBufFirst || first > kBufLast)
      want = "First Address Error!";
    else if (last < kBufFirst || last > kBufLast)
      want = "Last Address Error!";
    else if (first > last)
      want = "Address Error!";
    else
      want = "Cannot read /nonexistent-kestrum-folder/missing.hex: No such file or directory";
  }
  Check(platform.messages == std::vector<std::string>{want}, "the first failing test's message, alone");
  Check(f.Text4 == (padded ? ModelPad(typed.Text4) : typed.Text4) &&
            f.Text3 == (padded ? ModelPad(typed.Text3) : typed.Text3),
        "the fields padded from the range tests on");
  if (padded) Check(m.LoadOffset == offset, "the offset of the rules");
  Check(offset >= -kAddressMax && offset <= kAddressMax, "an offset of at most 8 digits");
  const bool loaded = want.rfind("Cannot read", 0) == 0;
  Check(m.frmsumtool.List1.empty() == loaded, "the dump emptied once a load has run, not by a refusal");
  Check(m.FileError == 0 && platform.pointer == vbDefault && f.Command1Enabled && f.Command2Enabled,
        "FileError, pointer and buttons back");
  Check(store.values.empty(), "nothing stored");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  CheckAddressText(text);
  if (size >= 2) CheckFilters(text, data);
  Address offset = 0;
  std::string digits;
  bool negative = false;
  const bool judged = JudgeOffsetText(text, digits, negative);
  Check(judged == ModelOffset(text, offset), "the offset refused by the rules");
  if (judged)
    Check((negative ? -AddressFromText(digits) : AddressFromText(digits)) == offset, "the offset's value");
  CheckLoadButton(text);
  return 0;
}
