#include "reading/LoadDialog.h"

#include "bufferops/ClearBuffer.h"
#include "image/BusyScope.h"
#include "image/Paths.h"

namespace kestrum {

namespace {

constexpr std::size_t kOffsetFieldLimit = 9;

// What the Load button loads: the file, its range and offset.
struct LoadRequest {
  Address first = 0;
  Address last = 0;
  Address offset = 0;
};

// The fields as a request, in the dialog's order of tests. LoadFileName is
// taken before the offset is judged, LoadOffset before the range; from the
// padding on the address fields show 8 digits.
Outcome ReadFields(LoadFields& f, Module1& m, LoadRequest& r) {
  if (f.Text1.empty()) return Outcome::Refuse("Select File Name!");
  if (f.Text4.empty()) return Outcome::Refuse("First Address Error!");
  if (f.Text3.empty()) return Outcome::Refuse("Last Address Error!");
  if (f.Check1 && f.Text2.empty()) return Outcome::Refuse("Offset Address Error!");
  m.LoadFileName = JoinPath(f.Dir1, f.File1);
  if (f.Text2Visible) {
    if (Outcome offset = ReadOffset(f.Text2, r.offset); !offset.IsDone()) return offset;
  }
  f.Text4 = PadAddressText(f.Text4);
  f.Text3 = PadAddressText(f.Text3);
  r.first = AddressFromText(f.Text4);
  r.last = AddressFromText(f.Text3);
  m.LoadOffset = r.offset;
  return CheckLoadRange(m, r.first, r.last);
}

}  // namespace

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

Outcome ReadOffset(const std::string& text, Address& offset) {
  if (text.empty()) return Outcome::Refuse("Offset Address Error!");
  std::string digits;
  bool negative = false;
  if (!JudgeOffsetText(text, digits, negative)) return Outcome::Refuse("OffsetAddress Error!");
  offset = AddressFromText(digits);
  if (negative) offset = -offset;
  return Outcome::Done();
}

Outcome CheckLoadRange(const Module1& m, Address first, Address last) {
  if (!m.InArea(first)) return Outcome::Refuse("First Address Error!");
  if (!m.InArea(last)) return Outcome::Refuse("Last Address Error!");
  if (first > last) return Outcome::Refuse("Address Error!");
  return Outcome::Done();
}

namespace frmload {

void cmdload_Click(LoadFields& f, SettingsStore& store) {
  f.Text4 = store.Read(settings::LoadFirst, AddressToText(kDefaultFirst));
  f.Text3 = store.Read(settings::LoadLast, AddressToText(kDefaultLast));
  const std::string drive = store.Read(settings::LoadDrive, "");
  if (!drive.empty()) {
    f.Drive1 = drive;
    const std::string dir = store.Read(settings::LoadDir, "");
    if (!dir.empty()) f.Dir1 = dir;
  }
  f.Text2Visible = false;
  f.Check1 = false;
}

bool Command1_Click(LoadFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  LoadRequest r;
  if (const Outcome read = ReadFields(f, m, r); !read.IsDone()) {
    platform.MsgBox(read.words);
    return false;
  }
  {
    // A reader's message comes up with both buttons still disabled.
    const BusyScope busy(platform, {&f.Command1Enabled, &f.Command2Enabled});
    const LoadReport report = LoadObjectFile(m, r.first, r.last, f.Text1);
    if (!report.Loaded()) {
      platform.SetMousePointer(vbDefault);
      platform.MsgBox(report.outcome.words);
      m.FileError = -1;
    }
  }
  const bool loaded = m.FileError == 0;
  if (loaded) {
    m.frmsumtool.Text1 = f.File1;
    platform.MsgBox("Load Complete!");
    store.Write(settings::LoadFirst, f.Text4);
    store.Write(settings::LoadLast, f.Text3);
    store.Write(settings::LoadDrive, f.Drive1);
    store.Write(settings::LoadDir, f.Dir1);
  }
  m.FileError = 0;
  ResetDump(m.frmsumtool);
  return loaded;
}

}  // namespace frmload

}  // namespace kestrum
