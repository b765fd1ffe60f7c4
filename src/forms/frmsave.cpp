#include "forms/frmsave.h"

#include <QComboBox>
#include <QFrame>
#include <QPushButton>

#include "forms/Dialogs.h"
#include "forms/FileLists.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

namespace {

// A drop-down list of the names of E, none chosen.
template <typename E>
QComboBox* MakeList(QWidget* parent, const char* name, QRect place) {
  auto* combo = MakeChild<QComboBox>(parent, name, place);
  for (std::string_view item : NamesOf<E>()) combo->addItem(Q(std::string(item)));
  combo->setCurrentIndex(-1);
  return combo;
}

// A drop-down list shows the core's text when it is one of its items, else
// nothing.
void ShowListText(QComboBox* combo, const std::string& text) {
  combo->setCurrentIndex(combo->findText(Q(text), Qt::MatchFixedString));
}

}  // namespace

frmsave::frmsave(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmsave", QStringLiteral("File Save"), 9975, 3690);

  auto* frame1 = MakeFrame(this, "Frame1", QStringLiteral("File Name"), Twips(180, 120, 6495, 3315));
  Drive2_ = MakeChild<DriveListBox>(frame1, "Drive2", Twips(300, 330, 2250, 285));
  Dir2_ = MakeChild<DirListBox>(frame1, "Dir2", Twips(300, 675, 2250, 1650));
  File2_ = MakeChild<FileListBox>(frame1, "File2", Twips(2625, 315, 3645, 1905));
  MakeLabel(frame1, "Label7", QStringLiteral("FileName"), 1395, 2445);
  Text5_ = MakeChild<QLineEdit>(frame1, "Text5", Twips(2310, 2400, 2970, 285));
  MakeLabel(frame1, "Label1", QStringLiteral("FileType"), 1455, 2835);
  Combo1_ = MakeList<FileType>(frame1, "Combo1", Twips(2310, 2790, 2970, 315));

  auto* frame2 = MakeFrame(this, "Frame2", QStringLiteral("File Format"), Twips(6825, 120, 2910, 2385));
  MakeLabel(frame2, "Label10", QStringLiteral("Object FileFormat"), 105, 315);
  Combo2_ = MakeList<ObjectFormat>(frame2, "Combo2", Twips(1455, 285, 1035, 315));
  MakeLabel(frame2, "Label9", QStringLiteral("FirstAddress"), 375, 720);
  Text7_ = MakeChild<QLineEdit>(frame2, "Text7", Twips(1455, 690, 1035, 285));
  MakeLabel(frame2, "Label8", QStringLiteral("LastAddress"), 405, 1095);
  Text6_ = MakeChild<QLineEdit>(frame2, "Text6", Twips(1455, 1065, 1035, 285));
  MakeLabel(frame2, "Label5", QStringLiteral("RecordLength"), 255, 1455);
  Text4_ = MakeChild<QLineEdit>(frame2, "Text4", Twips(1455, 1440, 1035, 285));
  // Two lines 15 twips apart read as one sunken separator.
  for (auto [name, top] : {std::pair{"Line2", 1830}, std::pair{"Line1", 1845}}) {
    auto* line = MakeChild<QFrame>(frame2, name, QRect(0, Px(top), Px(2895), 1));
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setStyleSheet(top == 1830 ? QStringLiteral("color: gray;") : QStringLiteral("color: white;"));
  }
  MakeLabel(frame2, "Label2", QStringLiteral("YSM File Format"), 165, 2025);
  Combo3_ = MakeList<SumKind>(frame2, "Combo3", Twips(1455, 1965, 1110, 315));

  Command5_ = MakeChild<QPushButton>(this, "Command5", Twips(7485, 2610, 1500, 390), QStringLiteral("Save"));
  Command2_ =
      MakeChild<QPushButton>(this, "Command2", Twips(7485, 3135, 1500, 390), QStringLiteral("Cancel"));

  for (auto* box : {Text7_, Text6_, Text4_}) box->setFont(MonoFont());
  HookKeyFilter(Text7_, FilterAddressKey);
  HookKeyFilter(Text6_, FilterAddressKey);
  HookKeyFilter(Text4_, FilterByteKey);
  SetDefaultAndCancel(Command5_, Command2_);
  for (auto* list : {Combo1_, Combo2_, Combo3_}) FitDropDown(list);
  FitCaptions(this);
  SetTabOrder({Dir2_, File2_, Text5_, Combo1_, Combo2_, Text7_, Text6_, Text4_, Combo3_, Command5_, Command2_,
               Drive2_});
  Dir2_->setFocus();

  WireFileLists(Drive2_, Dir2_, File2_, Text5_, ctx_.platform);
  connect(Combo1_, &QComboBox::activated, this, &frmsave::Combo1_Click);
  connect(Combo2_, &QComboBox::activated, this, &frmsave::Combo2_Click);
  // Esc rejects the dialog by itself, which is what Cancel does.
  connect(Command2_, &QPushButton::clicked, this, &QDialog::reject);
  connect(Command5_, &QPushButton::clicked, this, &frmsave::Command5_Click);

  // A stored drive or folder that is gone leaves its list as it was.
  SaveFields f = Fields();
  const SavePlaces places = kestrum::frmsave::cmdsave_Click(f, ctx_.m, ctx_.store);
  ShowFields(f);
  if (!places.drive.empty()) {
    Drive2_->SetDrive(Q(places.drive));
    if (!places.dir.empty()) Dir2_->SetPath(Q(places.dir));
  }
}

void frmsave::Combo1_Click() {
  SaveFields f = Fields();
  kestrum::frmsave::Combo1_Click(f);
  ShowFields(f);
}

void frmsave::Combo2_Click() {
  SaveFields f = Fields();
  kestrum::frmsave::Combo2_Click(f);
  ShowFields(f);
}

SaveFields frmsave::Fields() const {
  SaveFields f;
  f.Drive2 = S(Drive2_->Drive());
  f.Dir2 = S(Dir2_->Path());
  for (int i = 0; i < File2_->ListCount(); ++i) f.File2.push_back(S(File2_->List(i)));
  f.Text5 = S(Text5_->text());
  f.Text7 = S(Text7_->text());
  f.Text6 = S(Text6_->text());
  f.Text4 = S(Text4_->text());
  f.Combo1 = S(Combo1_->currentText());
  f.Combo2 = S(Combo2_->currentText());
  f.Combo3 = S(Combo3_->currentText());
  f.Combo2Enabled = Combo2_->isEnabled();
  f.Combo3Enabled = Combo3_->isEnabled();
  f.Text4Enabled = Text4_->isEnabled();
  f.Command5Enabled = Command5_->isEnabled();
  f.Command2Enabled = Command2_->isEnabled();
  return f;
}

void frmsave::ShowFields(const SaveFields& f) {
  Text5_->setText(Q(f.Text5));
  Text7_->setText(Q(f.Text7));
  Text6_->setText(Q(f.Text6));
  Text4_->setText(Q(f.Text4));
  ShowListText(Combo1_, f.Combo1);
  ShowListText(Combo2_, f.Combo2);
  ShowListText(Combo3_, f.Combo3);
  Combo2_->setEnabled(f.Combo2Enabled);
  Combo3_->setEnabled(f.Combo3Enabled);
  Text4_->setEnabled(f.Text4Enabled);
  Command5_->setEnabled(f.Command5Enabled);
  Command2_->setEnabled(f.Command2Enabled);
}

void frmsave::Command5_Click() {
  // The buttons show disabled while the save runs and its prompts are up.
  PressButton(
      this, ctx_.platform, Fields(), [this](const SaveFields& f) { ShowFields(f); },
      [this](SaveFields& f, Platform& p) {
        return kestrum::frmsave::Command5_Click(f, ctx_.m, p, ctx_.store);
      });
}

void ShowFrmSave(AppContext& ctx, QWidget* owner) {
  frmsave dialog(ctx, owner);
  CentreOn(&dialog, ScreenArea(owner));
  dialog.exec();
}

}  // namespace kestrum::forms
