#pragma once
// Block Store: one byte value over a range of the image, and the dialog that
// asks for it.
#include <string>

#include "image/DialogSupport.h"
#include "image/Module1.h"
#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum {

// Stores Data (its low 8 bits) at First..Last, both inclusive. First above
// Last wraps past the end of the area: First..BufLast, then BufFirst..Last.
// Both addresses must lie in the area; where one does not, nothing is stored.
// Changes the image and nothing else.
void StoreBlock(Module1& m, Address First, Address Last, int Data);

// What Store asks for: the byte over the range, wrapping as StoreBlock does.
struct BlockStoreRequest {
  AddressRange range;
  int data = 0;
};

// Refuses a range with an end outside the area: "Address Error".
Outcome CheckBlockStore(const Module1& m, const BlockStoreRequest& request);

// StoreBlock, with its notice.
Outcome StoreBlock(Module1& m, const BlockStoreRequest& request);

// The fields of the Block Store dialog.
struct StoreFields {
  std::string Text1{};          // first address
  std::string Text2{};          // last address
  std::string Text3{};          // the byte value
  bool Command1Enabled = true;  // Cancel
  bool Command2Enabled = true;  // Store

  bool operator==(const StoreFields&) const = default;
};

// The byte a Text3 stands for: the value of its leading hexadecimal digits,
// the rest of the text ignored as an address field's is. -1 when the text
// starts with no digit or its value does not fit a byte; the dialog refuses
// such a text with "Data Error!".
int StoreDataValue(const std::string& text);

// Store's checks, stopping at the first bad field with its words: the
// request read from the fields, the two address fields padded.
Outcome ReadStoreFields(StoreFields& f, const Module1& m, BlockStoreRequest& request);

namespace frmsumtool {

// The main window's "Block Store" button: fills the dialog from the store,
// the area's own addresses and "00" standing in for what is missing.
void cmdblstore_Click(StoreFields& f, const Module1& m, SettingsStore& store);

}  // namespace frmsumtool

namespace frmstore {

// "Store": stops at the first bad field with its message; otherwise stores,
// reports, empties the dump and keeps the fields in the store. True when the
// dialog closes.
bool Command2_Click(StoreFields& f, Module1& m, Platform& platform, SettingsStore& store);

}  // namespace frmstore

}  // namespace kestrum
