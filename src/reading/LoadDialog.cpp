#include "reading/LoadDialog.h"

#include <filesystem>

#include "bufferops/ClearBuffer.h"
#include "image/BusyScope.h"
#include "image/Paths.h"

namespace kestrum {

namespace {

constexpr std::size_t kOffsetFieldLimit = 9;

bool Refuse(Platform& platform, LoadReport* report, const std::string& message) {
  platform.MsgBox(message);
  if (report) {
    report->outcome = LoadReport::Outcome::Refused;
    report->line = 0;
    report->message = message;
  }
  return false;
}

}  // namespace

void cmdload_Click(LoadFields& f, SettingsStore& store) {
  f.Text4 = store.Read(kAddress, "LoadFirst", AddressToText(kDefaultFirst));
  f.Text3 = store.Read(kAddress, "LoadLast", AddressToText(kDefaultLast));
  const std::string drive = store.Read(kFilePath, "LoadDrive", "");
  if (!drive.empty()) {
    f.Drive1 = drive;
    const std::string dir = store.Read(kFilePath, "LoadDir", "");
    if (!dir.empty()) f.Dir1 = dir;
  }
  f.Text2Visible = false;
  f.Check1 = false;
}

bool JudgeOffsetText(const std::string& text, std::string& digits, bool& negative) {
  negative = false;
  if (text.find_first_of("+-", 1) != std::string::npos) return false;
  std::string rest = text;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    negative = text[0] == '-';
    rest = text.substr(1);
  } else if (text.size() == kOffsetFieldLimit) {
    return false;
  }
  digits = PadAddressText(rest);
  return true;
}

bool Command1_Click(LoadFields& f, Module1& m, Platform& platform, SettingsStore& store, LoadReport* report,
                    const LoadOptions& options) {
  if (f.Text1.empty()) return Refuse(platform, report, "Select File Name!");
  if (f.Text4.empty()) return Refuse(platform, report, "First Address Error!");
  if (f.Text3.empty()) return Refuse(platform, report, "Last Address Error!");
  if (f.Check1 && f.Text2.empty()) return Refuse(platform, report, "Offset Address Error!");
  m.LoadFileName = JoinPath(f.Dir1, f.File1);

  std::string offsetDigits;
  bool negative = false;
  if (f.Text2Visible && !JudgeOffsetText(f.Text2, offsetDigits, negative))
    return Refuse(platform, report, "OffsetAddress Error!");

  f.Text4 = PadAddressText(f.Text4);
  f.Text3 = PadAddressText(f.Text3);
  const Address first = AddressFromText(f.Text4);
  const Address last = AddressFromText(f.Text3);
  m.LoadOffset = 0;
  if (f.Text2Visible) {
    m.LoadOffset = AddressFromText(offsetDigits);
    if (negative) m.LoadOffset = -m.LoadOffset;
  }
  if (!m.InArea(first)) return Refuse(platform, report, "First Address Error!");
  if (!m.InArea(last)) return Refuse(platform, report, "Last Address Error!");
  if (first > last) return Refuse(platform, report, "Address Error!");

  LoadReport outcome;
  {
    // A reader's message comes up with both buttons still disabled.
    const BusyScope busy(platform, {&f.Command1Enabled, &f.Command2Enabled});
    outcome = LoadObjectFile(m, platform, first, last, f.Text1, options);
  }

  const bool loaded = m.FileError == 0;
  if (loaded) {
    m.frmsumtool.Text1 = f.File1;
    platform.MsgBox("Load Complete!");
    store.Write(kAddress, "LoadFirst", f.Text4);
    store.Write(kAddress, "LoadLast", f.Text3);
    store.Write(kFilePath, "LoadDrive", f.Drive1);
    store.Write(kFilePath, "LoadDir", f.Dir1);
  }
  m.FileError = 0;
  ResetDump(m.frmsumtool);
  if (report) *report = std::move(outcome);
  return loaded;
}

}  // namespace kestrum
