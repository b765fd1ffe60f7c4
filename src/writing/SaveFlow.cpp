#include "writing/SaveFlow.h"

#include <algorithm>
#include <string_view>

#include "image/Address.h"
#include "image/BusyScope.h"
#include "image/Paths.h"
#include "writing/Writers.h"

namespace kestrum {

namespace {

#ifdef _WIN32
constexpr std::string_view kFolderMarks = "\\/:";
#else
constexpr std::string_view kFolderMarks = "/";
#endif

enum FileType { kObjectOnly, kYsmOnly, kObjectAndYsm };

constexpr const char* kOverWrite = "Over Write?";
constexpr const char* kPromptTitle = "Save";

int IndexOf(const std::vector<std::string>& items, const std::string& text) {
  for (std::size_t i = 0; i < items.size(); ++i)
    if (EqualsIgnoreCase(items[i], text)) return static_cast<int>(i);
  return -1;
}

std::string DropLast(const std::string& text, std::size_t count) {
  return text.substr(0, text.size() - std::min(count, text.size()));
}

// The pointer and the two buttons while a save runs, and every way back
// from it. A prompt shows with the default pointer and the buttons still
// disabled.
struct Busy {
  SaveFields& f;
  Platform& platform;
  BusyScope scope{platform, {&f.Command5Enabled, &f.Command2Enabled}};

  bool Refuse(const std::string& notice) {
    scope.End();
    platform.MsgBox(notice, vbOKOnly);
    return false;
  }
  enum Answer { kNotListed, kYes, kNo };
  // Asks before a listed name is written over. On No the buttons come back
  // and nothing on disk has changed.
  Answer AskOverWrite(const std::string& name, const std::string& prompt) {
    const bool listed = std::any_of(f.File2.begin(), f.File2.end(),
                                    [&](const std::string& entry) { return EqualsIgnoreCase(entry, name); });
    if (!listed) return kNotListed;
    platform.SetMousePointer(vbDefault);
    if (platform.MsgBox(prompt, vbExclamationYesNo, kPromptTitle) != vbYes) {
      scope.End();
      return kNo;
    }
    platform.SetMousePointer(vbHourglass);
    return kYes;
  }
};

void StoreFields(const SaveFields& f, SettingsStore& store) {
  store.Write(kAddress, "SaveFirst", f.Text7);
  store.Write(kAddress, "SaveLast", f.Text6);
  store.Write(kAddress, "RecordLength", f.Text4);
  store.Write(kFormat, "FileType", f.Combo1);
  store.Write(kFormat, "ObjectFileFormat", f.Combo2);
  store.Write(kFormat, "YSMFileFormat", f.Combo3);
  store.Write(kFilePath, "SaveDrive", f.Drive2);
  store.Write(kFilePath, "SaveDir", f.Dir2);
}

}  // namespace

bool SetComboText(std::string& combo, const std::vector<std::string>& items, const std::string& text) {
  const int index = IndexOf(items, text);
  if (index < 0) return false;
  combo = items[static_cast<std::size_t>(index)];
  return true;
}

void Combo1_Click(SaveFields& f) {
  if (EqualsIgnoreCase(f.Combo1, kFileTypes[kObjectOnly])) {
    f.Combo2Enabled = true;
    f.Combo3Enabled = false;
  } else if (EqualsIgnoreCase(f.Combo1, kFileTypes[kYsmOnly])) {
    f.Combo2Enabled = false;
    f.Combo3Enabled = true;
  } else {
    f.Combo2Enabled = true;
    f.Combo3Enabled = true;
  }
}

void Combo2_Click(SaveFields& f) { f.Text4Enabled = !EqualsIgnoreCase(f.Combo2, "BIN"); }

SavePlaces cmdsave_Click(SaveFields& f, const Module1& m, SettingsStore& store) {
  f.Text5.clear();
  f.Text7 = store.Read(kAddress, "SaveFirst", m.frmsumtool.txtbuffaddr);
  f.Text6 = store.Read(kAddress, "SaveLast", m.frmsumtool.txtbufladdr);
  f.Text4 = store.Read(kAddress, "RecordLength", "10");
  if (SetComboText(f.Combo1, kFileTypes, store.Read(kFormat, "FileType", kFileTypes[kObjectOnly])))
    Combo1_Click(f);
  if (SetComboText(f.Combo2, kObjectFormats, store.Read(kFormat, "ObjectFileFormat", "BIN"))) Combo2_Click(f);
  SetComboText(f.Combo3, kSumFormats, store.Read(kFormat, "YSMFileFormat", "8-8SUM"));
  SavePlaces places;
  places.drive = store.GetSetting(kApp, kFilePath, "SaveDrive");
  if (!places.drive.empty()) places.dir = store.GetSetting(kApp, kFilePath, "SaveDir");
  return places;
}

bool Command5_Click(SaveFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  Busy busy{f, platform};
  std::string objectPath = JoinPath(f.Dir2, f.Text5);

  if (f.Text7.empty()) return busy.Refuse("FirstAddress Error!");
  if (f.Text6.empty()) return busy.Refuse("LastAddress Error!");
  f.Text7 = PadAddressText(f.Text7);
  f.Text6 = PadAddressText(f.Text6);
  m.SaveFirst = AddressFromText(f.Text7);
  m.SaveLast = AddressFromText(f.Text6);
  // Only a stored setting can hold more than two digits; a length the
  // record writers can't take is refused like an empty one.
  const Address length = LeadingHexValue(f.Text4);
  m.RecordLength = static_cast<std::int16_t>(std::min<Address>(length, 0x7FFF));
  const bool bin = EqualsIgnoreCase(f.Combo2, "BIN");
  if (m.SaveFirst > m.SaveLast) return busy.Refuse("Address Error!");
  if (!bin && (length == 0 || length > 0xFF)) return busy.Refuse("RecordLength Error!");
  if (!m.InArea(m.SaveFirst)) return busy.Refuse("FirstAddress Error!");
  if (!m.InArea(m.SaveLast)) return busy.Refuse("LastAddress Error!");
  if (f.Text5.empty()) return busy.Refuse("Enter or Select File Name!");
  const int format = IndexOf(kObjectFormats, f.Combo2);
  if (format < 0) return busy.Refuse("Format Error!");
  const int type = IndexOf(kFileTypes, f.Combo1);
  if (type < 0) return busy.Refuse("File Type Error!");
  if (IndexOf(kSumFormats, f.Combo3) < 0) return busy.Refuse("YSM File Format Error!");
  if (f.Text5.find_first_of(kFolderMarks) != std::string::npos)
    return busy.Refuse("Can't save " + objectPath + ": a file name can't hold a folder.");

  const std::string name = f.Text5;
  const std::size_t dot = name.find('.');
  const std::string extension = dot == std::string::npos ? std::string() : name.substr(dot + 1);
  const std::string& word = f.Combo2;
  const int named = IndexOf(kObjectFormats, extension);
  const bool rival = named >= 0 && named != format;
  std::string ysmPath;

  bool replaceObject = false;
  if (type == kObjectAndYsm) {
    std::string stem, objectName;
    if (extension.empty()) {
      ysmPath = objectPath + ".YSM";
      objectPath += "." + word;
      stem = name + ".";
      objectName = stem + word;
      f.Text5 = name + "." + word;
    } else if (EqualsIgnoreCase(extension, "YSM")) {
      ysmPath = objectPath;
      objectPath = DropLast(objectPath, 3) + word;
      stem = DropLast(name, 3);
      objectName = stem + word;
    } else if (rival) {
      return busy.Refuse("Extension Error!");
    } else {
      ysmPath = DropLast(objectPath, extension.size()) + "YSM";
      stem = DropLast(name, extension.size());
      objectName = name;
    }
    const Busy::Answer object = busy.AskOverWrite(objectName, objectName + " File Over Write?");
    if (object == Busy::kNo) return false;
    if (busy.AskOverWrite(stem + "YSM", stem + "YSM File Over Write?") == Busy::kNo) return false;
    replaceObject = bin && object == Busy::kYes;
  } else {
    if (extension.empty()) {
      const std::string added = "." + (type == kYsmOnly ? std::string("YSM") : word);
      objectPath += added;
      f.Text5 += added;
    } else if (type == kObjectOnly && rival) {
      return busy.Refuse("Extension Error!");
    }
    if (type == kYsmOnly) ysmPath = objectPath;
    const Busy::Answer answer = busy.AskOverWrite(f.Text5, kOverWrite);
    if (answer == Busy::kNo) return false;
    replaceObject = bin && type == kObjectOnly && answer == Busy::kYes;
  }

  // A listed BIN file the user agreed to replace is replaced whole; its old
  // content goes only once the new file stands.
  WriteOptions options;
  options.replaceWhole = replaceObject;
  m.FileError = 0;
  std::string notice;
  if (type != kYsmOnly) {
    if (format == 0)
      SaveBinFile(m, platform, objectPath, options);
    else if (format == 1)
      SaveHexFile(m, platform, objectPath);
    else
      SaveSFile(m, platform, objectPath, options);
    notice = kObjectFormats[static_cast<std::size_t>(format)];
  }
  if (type != kObjectOnly) {
    // The sum file is written whatever became of the object file.
    const std::int16_t objectError = m.FileError;
    SaveYsmFile(m, platform, ysmPath, f.Combo3);
    if (objectError != 0) m.FileError = objectError;
    notice += notice.empty() ? "YSM" : " and YSM";
  }
  notice += " File Save Complete!";

  if (m.FileError == 0) platform.MsgBox(notice, vbOKOnly);
  busy.scope.End();
  if (m.FileError == -1) {
    m.FileError = 0;
    return false;
  }
  StoreFields(f, store);
  return true;
}

}  // namespace kestrum
