#pragma once
// The Set Buffer Address dialog: a new area for the image, which discards
// the old image and makes every stored range the new area.
#include <string>
#include <string_view>

#include "image/Module1.h"
#include "image/Outcome.h"
#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum {

// The fields of the Set Buffer Address dialog; both start empty.
struct BufAddrFields {
  std::string Text1{};  // first address
  std::string Text2{};  // last address
  bool CmdokEnabled = true;
  bool Command1Enabled = true;  // Cancel

  bool operator==(const BufAddrFields&) const = default;
};

// "0" put in front of text until it has 8 characters; a text of 8 or more
// stays whole.
std::string PadWithLeadingZeros(std::string_view text);

// OK's checks, stopping at the first bad field with its words; the two
// fields padded.
Outcome ReadBufAddrFields(BufAddrFields& f);

// ResetArea, with its words: "Out of Memory" for an area that can't be had.
Outcome NewArea(Module1& m, const std::string& firstText, const std::string& lastText);

namespace frmbufaddr {

// "OK". Stops at the first bad field with its message, the dialog open.
// Otherwise sizes and clears the image, shows the new area in the main
// window and writes it to every stored range, storedata becoming "10". An
// area that can't be had says "Out of Memory" and changes nothing. True
// when the dialog closes.
bool Cmdok_Click(BufAddrFields& f, Module1& m, Platform& platform, SettingsStore& store);

}  // namespace frmbufaddr

}  // namespace kestrum
