#pragma once
// The File Save dialog as plain data: what it shows when it opens, how its
// lists enable each other, and its Save button from the tests of the
// fields to the writers, the notice and the stored settings.
#include <string>
#include <vector>

#include "image/Module1.h"
#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum {

inline const std::vector<std::string> kFileTypes = {"Object File Only", "YSM File Only",
                                                    "Object and YSM File"};
inline const std::vector<std::string> kObjectFormats = {"BIN", "HEX", "S"};
inline const std::vector<std::string> kSumFormats = {"8-8SUM", "8-16SUM", "16-16SUM"};

struct SaveFields {
  std::string Drive2;              // the chosen drive: a root of the file system
  std::string Dir2;                // the folder; only a root ends with a separator
  std::vector<std::string> File2;  // the names listed when the folder was last set
  std::string Text5;               // the file name
  std::string Text7;               // first address
  std::string Text6;               // last address
  std::string Text4;               // record length
  std::string Combo1;              // file type
  std::string Combo2;              // object format
  std::string Combo3;              // sum format
  bool Combo2Enabled = true;
  bool Combo3Enabled = true;
  bool Text4Enabled = true;
  bool Command5Enabled = true;
  bool Command2Enabled = true;

  bool operator==(const SaveFields&) const = default;
};

// Where the opening asks the folder lists to go; empty leaves a list alone.
struct SavePlaces {
  std::string drive;
  std::string dir;
};

// Chooses the item of items that equals text ignoring case, as a
// drop-down list does when its text is set. False, and combo unchanged,
// when no item does.
bool SetComboText(std::string& combo, const std::vector<std::string>& items, const std::string& text);

void Combo1_Click(SaveFields& f);
void Combo2_Click(SaveFields& f);

// The opening of the dialog: fields from the store or from the main
// window's area, the combos with their click rules. Text5 starts empty.
SavePlaces cmdsave_Click(SaveFields& f, const Module1& m, SettingsStore& store);

// The Save button. Gives true when the dialog closes: the files are
// written, the notice shown and the fields stored.
bool Command5_Click(SaveFields& f, Module1& m, Platform& platform, SettingsStore& store);

}  // namespace kestrum
