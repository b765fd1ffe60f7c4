#pragma once
// The Buffer SUM dialog: a range of the image and its three check sums.
#include <string>

#include "bufferops/Sum.h"
#include "image/DialogSupport.h"
#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum {

// Calculate's checks of a range, in the dialog's order: "First Address
// Error!" or "Last Address Error!" for an end outside the area, "Address
// Error!" for a first address above the last.
Outcome CheckSumRange(const Module1& m, const AddressRange& range);

// The fields of the SUM dialog.
struct SumFields {
  std::string Text6{};          // first address
  std::string Text7{};          // last address
  std::string Text1{};          // 8-8 sum, 2 digits
  std::string Text2{};          // 8-16 sum, 4 digits
  std::string Text3{};          // 16-16 sum, 4 digits
  bool Command1Enabled = true;  // Calculate
  bool Command2Enabled = true;  // Close

  bool operator==(const SumFields&) const = default;
};

// The three result texts of sums: 2, 4 and 4 upper-case digits.
void ShowSums(SumFields& f, const Sums& sums);

// Calculate's checks, stopping at the first bad end with its words: the two
// address fields padded, SumFirst and SumLast set from them.
Outcome ReadSumFields(SumFields& f, Module1& m);

namespace frmsumtool {

// The main window's "Buffer SUM" button: fills the range from the store, the
// area's own addresses standing in for what is missing; no results yet.
void cmdbufsum_Click(SumFields& f, const Module1& m, SettingsStore& store);

}  // namespace frmsumtool

namespace frmsum {

// "Calculate": checks the range, stopping at the first bad end with its
// message, and shows the sums. The dialog stays open either way; false when
// a check refused the range.
bool Command1_Click(SumFields& f, Module1& m, Platform& platform);

// "Close": keeps the two address fields as they stand. The dialog closes.
void Command2_Click(const SumFields& f, SettingsStore& store);

}  // namespace frmsum

}  // namespace kestrum
