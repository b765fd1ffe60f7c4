#pragma once
// The File Load dialog without its window: opening it from the store and
// its Load button.
#include <string>

#include "image/Module1.h"
#include "image/Outcome.h"
#include "image/Platform.h"
#include "image/Settings.h"
#include "reading/LoadObjectFile.h"

namespace kestrum {

// The fields of the File Load dialog.
struct LoadFields {
  std::string Text1;            // the picked file's name, as the file list gave it
  std::string Text4;            // first address
  std::string Text3;            // last address
  bool Check1 = false;          // offset wanted
  std::string Text2 = "0";      // the signed offset
  bool Text2Visible = false;    // follows Check1
  std::string Drive1;           // the drive list's drive
  std::string Dir1;             // the folder list's path
  std::string File1;            // the file list's pick, empty when none
  bool Command1Enabled = true;  // Load
  bool Command2Enabled = true;  // Cancel

  bool operator==(const LoadFields&) const = default;
};

// Judges the offset text: a sign only in front, and without one fewer than
// 9 characters. Gives the 8 digits (zeros in front) and the sign; false
// for a text the dialog refuses with "OffsetAddress Error!".
bool JudgeOffsetText(const std::string& text, std::string& digits, bool& negative);

// The signed offset of a text, or the dialog's words for an empty or a
// misplaced one.
Outcome ReadOffset(const std::string& text, Address& offset);

// The range a load may write, in the dialog's order: both ends in the area,
// the first not above the last.
Outcome CheckLoadRange(const Module1& m, Address first, Address last);

namespace frmload {

// "File Load" of the main window: the range from the store, "00000000" and
// "0007FFFF" standing in for what is missing; the stored drive, and behind
// it the stored folder, where the store has them (the window applies them
// and lets a drive or folder that is gone leave its list as it was); the
// offset hidden and unticked.
void cmdload_Click(LoadFields& f, SettingsStore& store);

// The Load button. Stops at the first bad field with its message; else
// loads with the hourglass showing, and when the load went through puts the
// file's name in the main window, says "Load Complete!", keeps the range,
// drive and folder in the store, and closes. The dump is emptied whatever
// the outcome of a load. True when the dialog closes.
bool Command1_Click(LoadFields& f, Module1& m, Platform& platform, SettingsStore& store);

}  // namespace frmload

}  // namespace kestrum
