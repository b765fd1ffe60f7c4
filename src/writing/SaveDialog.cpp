// The File Save dialog's handlers: the fields turned into a typed request,
// and what the engine gives back shown in the dialog's order.
#include <algorithm>

#include "image/Address.h"
#include "image/BusyScope.h"
#include "writing/SaveFlow.h"

namespace kestrum::frmsave {

namespace {

constexpr const char* kPromptTitle = "Save";

// Chooses the item that equals text ignoring case, as a drop-down list does
// when its text is set. False, and combo unchanged, when no item does.
template <typename E>
bool SetComboText(std::string& combo, const std::string& text) {
  const std::optional<E> item = FromName<E>(text);
  if (item) combo = NameOf(*item);
  return item.has_value();
}

// The fields as a request. The two addresses must not be empty; from there
// on they show 8 digits, and the range and record length are taken before
// they are judged.
Outcome ReadFields(SaveFields& f, Module1& m, SaveRequest& r) {
  if (f.Text7.empty()) return Outcome::Refuse("FirstAddress Error!");
  if (f.Text6.empty()) return Outcome::Refuse("LastAddress Error!");
  f.Text7 = PadAddressText(f.Text7);
  f.Text6 = PadAddressText(f.Text6);
  r = {.first = AddressFromText(f.Text7),
       .last = AddressFromText(f.Text6),
       .recordLength = LeadingHexValue(f.Text4),
       .format = FromName<ObjectFormat>(f.Combo2),
       .type = FromName<FileType>(f.Combo1),
       .sum = FromName<SumKind>(f.Combo3),
       .name = f.Text5};
  m.SaveFirst = r.first;
  m.SaveLast = r.last;
  m.RecordLength = static_cast<std::int16_t>(std::min<Address>(r.recordLength, 0x7FFF));
  return CheckSaveRequest(m, r);
}

void StoreFields(const SaveFields& f, SettingsStore& store) {
  store.Write(settings::SaveFirst, f.Text7);
  store.Write(settings::SaveLast, f.Text6);
  store.Write(settings::RecordLength, f.Text4);
  store.Write(settings::FileType, f.Combo1);
  store.Write(settings::ObjectFileFormat, f.Combo2);
  store.Write(settings::YSMFileFormat, f.Combo3);
  store.Write(settings::SaveDrive, f.Drive2);
  store.Write(settings::SaveDir, f.Dir2);
}

}  // namespace

void Combo1_Click(SaveFields& f) {
  const std::optional<FileType> type = FromName<FileType>(f.Combo1);
  f.Combo2Enabled = type != FileType::YsmOnly;
  f.Combo3Enabled = type != FileType::ObjectOnly;
}

void Combo2_Click(SaveFields& f) { f.Text4Enabled = FromName<ObjectFormat>(f.Combo2) != ObjectFormat::BIN; }

SavePlaces cmdsave_Click(SaveFields& f, const Module1& m, SettingsStore& store) {
  f.Text5.clear();
  f.Text7 = store.Read(settings::SaveFirst, m.frmsumtool.txtbuffaddr);
  f.Text6 = store.Read(settings::SaveLast, m.frmsumtool.txtbufladdr);
  f.Text4 = store.Read(settings::RecordLength, "10");
  if (SetComboText<FileType>(f.Combo1,
                             store.Read(settings::FileType, std::string(NameOf(FileType::ObjectOnly)))))
    Combo1_Click(f);
  if (SetComboText<ObjectFormat>(
          f.Combo2, store.Read(settings::ObjectFileFormat, std::string(NameOf(ObjectFormat::BIN)))))
    Combo2_Click(f);
  SetComboText<SumKind>(f.Combo3, store.Read(settings::YSMFileFormat, std::string(NameOf(SumKind::Sum8_8))));
  SavePlaces places;
  places.drive = store.Read(settings::SaveDrive, "");
  if (!places.drive.empty()) places.dir = store.Read(settings::SaveDir, "");
  return places;
}

// Every way out restores the pointer and the buttons: a refusal before its
// notice, the completion notice shows under the hourglass. A prompt shows
// with the default pointer and the buttons still disabled.
bool Command5_Click(SaveFields& f, Module1& m, Platform& platform, SettingsStore& store) {
  BusyScope busy(platform, {&f.Command5Enabled, &f.Command2Enabled});
  const auto refuse = [&](const Outcome& refusal) {
    busy.End();
    platform.MsgBox(refusal.words, vbOKOnly);
    return false;
  };
  SaveRequest r;
  if (const Outcome tested = ReadFields(f, m, r); !tested.IsDone()) return refuse(tested);
  const SaveNames names = NameSave(f.Dir2, r.name, *r.format, *r.type, f.File2);
  if (!names.refusal.IsDone()) return refuse(names.refusal);
  f.Text5 = names.text5;
  for (const std::string& prompt : names.prompts) {
    platform.SetMousePointer(vbDefault);
    if (platform.MsgBox(prompt, vbExclamationYesNo, kPromptTitle) != vbYes) {
      busy.End();  // nothing on disk has changed
      return false;
    }
    platform.SetMousePointer(vbHourglass);
  }

  // A file that fails says why at once, before the next file is written.
  const std::vector<Outcome> outcomes = WriteSave(m, names, *r.format, *r.sum, [&](const Outcome& o) {
    if (!o.IsDone()) platform.MsgBox(o.words, vbOKOnly);
  });
  const bool written =
      std::all_of(outcomes.begin(), outcomes.end(), [](const Outcome& o) { return o.IsDone(); });
  m.FileError = written ? 0 : -1;
  if (written) platform.MsgBox(names.notice, vbOKOnly);
  busy.End();
  if (m.FileError == -1) {
    m.FileError = 0;
    return false;
  }
  StoreFields(f, store);
  return true;
}

}  // namespace kestrum::frmsave
