#pragma once
// The File Save dialog as plain data: what it shows when it opens, how its
// lists enable each other, and its Save button. The button's work is typed:
// the fields become a SaveRequest, CheckSaveRequest judges it, NameSave
// makes the names and prompts without touching the disk, and WriteSave runs
// the writers. The handlers of frmsave only turn fields into requests and
// show what comes back.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "image/Formats.h"
#include "image/Module1.h"
#include "image/Outcome.h"
#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum {

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

// What the Save button asks for. A list's text that is none of its items
// gives none.
struct SaveRequest {
  Address first = 0;
  Address last = 0;
  Address recordLength = 0;  // 0 where the field holds no value
  std::optional<ObjectFormat> format;
  std::optional<FileType> type;
  std::optional<SumKind> sum;
  std::string name;  // as typed or picked, without its folder
};

inline constexpr const char* kObjectFormatError = "Format Error!";
inline constexpr const char* kSumFormatError = "YSM File Format Error!";

// A record length of 1 to FF, or any with BIN, the one format without
// records. A text that is no format needs one too.
bool LengthFitsFormat(Address recordLength, std::optional<ObjectFormat> format);

// The range and the record length in the order the dialog tests them: the
// first address not above the last, then the record length, then both
// addresses in the area.
Outcome CheckSaveRange(const Module1& m, Address first, Address last, bool lengthFits);

// Every test of the request in the dialog's order: the range, then a name,
// a format, a file type and a sum, each whatever the file type needs.
Outcome CheckSaveRequest(const Module1& m, const SaveRequest& r);

// The files a save makes and what it asks before it makes them.
struct SaveNames {
  Outcome refusal;                   // Refused when the name can't be saved under
  std::string objectPath;            // empty with "YSM File Only"
  std::string ysmPath;               // empty with "Object File Only"
  std::string text5;                 // what the name field shows afterwards
  std::vector<std::string> prompts;  // one for each listed name, asked in order
  bool replaceObject = false;        // a listed BIN file that a Yes replaces whole
  std::string notice;                // said when every file is written
};

// The names of a save into dir: the extension the format or "YSM" adds, the
// shared stem of a pair, a rival format's extension refused; listed names,
// compared ignoring case, bring their prompts.
SaveNames NameSave(const std::string& dir, const std::string& name, ObjectFormat format, FileType type,
                   const std::vector<std::string>& listed);

// Writes the files of names, the object file first; a pair's YSM file is
// written whatever became of the object file. The outcome of each file, in
// the order written; written, when given, is told each as soon as its file
// is done with, before the next is begun.
std::vector<Outcome> WriteSave(Module1& m, const SaveNames& names, ObjectFormat format, SumKind sum,
                               const std::function<void(const Outcome&)>& written = {});

namespace frmsave {

void Combo1_Click(SaveFields& f);
void Combo2_Click(SaveFields& f);

// The opening of the dialog: fields from the store or from the main
// window's area, the combos with their click rules. Text5 starts empty.
SavePlaces cmdsave_Click(SaveFields& f, const Module1& m, SettingsStore& store);

// The Save button. Gives true when the dialog closes: the files are
// written, the notice shown and the fields stored.
bool Command5_Click(SaveFields& f, Module1& m, Platform& platform, SettingsStore& store);

}  // namespace frmsave

}  // namespace kestrum
