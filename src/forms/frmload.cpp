#include "forms/frmload.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QPushButton>

#include "forms/Dialogs.h"
#include "forms/FileLists.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

frmload::frmload(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmload", QStringLiteral("File Load"), 5565, 4725);

  Dir1_ = MakeChild<DirListBox>(this, "Dir1", Twips(300, 795, 1950, 1455));
  File1_ = MakeChild<FileListBox>(this, "File1", Twips(2385, 390, 2505, 1905));
  Text1_ = MakeChild<QLineEdit>(this, "Text1", Twips(1545, 2550, 3135, 285));
  Text1_->setEnabled(false);
  ShowNameWhole(Text1_);
  Text4_ = MakeChild<QLineEdit>(this, "Text4", Twips(2280, 3045, 1005, 285));
  Text3_ = MakeChild<QLineEdit>(this, "Text3", Twips(2280, 3510, 1005, 315));
  Check1_ =
      MakeChild<QCheckBox>(this, "Check1", Twips(705, 4005, 1455, 360), QStringLiteral("OffsetAddress"));
  Text2_ = MakeChild<QLineEdit>(this, "Text2", Twips(2175, 4020, 1110, 315));
  Text2_->setText(QStringLiteral("0"));
  Command1_ = MakeChild<QPushButton>(this, "Command1", Twips(3960, 3300, 1125, 390), QStringLiteral("Load"));
  Command2_ =
      MakeChild<QPushButton>(this, "Command2", Twips(3960, 3945, 1125, 390), QStringLiteral("Cancel"));
  Drive1_ = MakeChild<DriveListBox>(this, "Drive1", Twips(300, 405, 1965, 285));
  MakeLabel(this, "Label1", QStringLiteral("File Name"), 600, 2580, 705, 195);
  MakeLabel(this, "Label3", QStringLiteral("LastAddress"), 1140, 3540, 930, 255);
  MakeLabel(this, "Label4", QStringLiteral("FirstAddress"), 1140, 3045, 855, 195);

  for (auto* box : {Text4_, Text3_, Text2_}) box->setFont(MonoFont());
  HookKeyFilter(Text4_, FilterAddressKey);
  HookKeyFilter(Text3_, FilterAddressKey);
  HookKeyFilter(Text2_, FilterOffsetKey);
  SetDefaultAndCancel(Command1_, Command2_);
  FitCaptions(this);
  SetTabOrder({Dir1_, File1_, Text1_, Text4_, Text3_, Check1_, Text2_, Command1_, Command2_, Drive1_});
  Dir1_->setFocus();

  WireFileLists(Drive1_, Dir1_, File1_, Text1_, ctx_.platform);
  connect(Check1_, &QCheckBox::clicked, this, &frmload::Check1_Click);
  // Esc rejects the dialog by itself, which is what Cancel does.
  connect(Command2_, &QPushButton::clicked, this, &QDialog::reject);
  connect(Command1_, &QPushButton::clicked, this, &frmload::Command1_Click);

  // A stored drive or folder that is gone leaves its list as it was.
  LoadFields f = Fields();
  kestrum::frmload::cmdload_Click(f, ctx_.store);
  Text4_->setText(Q(f.Text4));
  Text3_->setText(Q(f.Text3));
  if (Q(f.Drive1) != Drive1_->Drive()) Drive1_->SetDrive(Q(f.Drive1));
  if (Q(f.Dir1) != Dir1_->Path()) Dir1_->SetPath(Q(f.Dir1));
  Check1_->setChecked(f.Check1);
  Text2_->setHidden(!f.Text2Visible);
}

void frmload::PickFile(const QString& path) {
  const QFileInfo file(path);
  const QString folder = NormalPath(file.absolutePath());
  const QString drive = DriveOfPath(folder, DriveRoots());
  if (!drive.isEmpty() && drive != Drive1_->Drive()) Drive1_->SetDrive(drive);
  // Enter in the file list then loads the file.
  if (Dir1_->SetPath(folder) && File1_->Pick(file.fileName())) File1_->setFocus();
}

void frmload::Check1_Click() { Text2_->setHidden(!Check1_->isChecked()); }

LoadFields frmload::Fields() const {
  LoadFields f;
  f.Text1 = S(Text1_->text());
  f.Text4 = S(Text4_->text());
  f.Text3 = S(Text3_->text());
  f.Check1 = Check1_->isChecked();
  f.Text2 = S(Text2_->text());
  f.Text2Visible = !Text2_->isHidden();
  f.Drive1 = S(Drive1_->Drive());
  f.Dir1 = S(Dir1_->Path());
  f.File1 = S(File1_->FileName());
  f.Command1Enabled = Command1_->isEnabled();
  f.Command2Enabled = Command2_->isEnabled();
  return f;
}

void frmload::ShowFields(const LoadFields& f) {
  Text4_->setText(Q(f.Text4));
  Text3_->setText(Q(f.Text3));
  Command1_->setEnabled(f.Command1Enabled);
  Command2_->setEnabled(f.Command2Enabled);
}

void frmload::Command1_Click() {
  PressButton(
      this, ctx_.platform, Fields(), [this](const LoadFields& f) { ShowFields(f); },
      [this](LoadFields& f, Platform& p) {
        return kestrum::frmload::Command1_Click(f, ctx_.m, p, ctx_.store);
      });
}

void ShowFrmLoad(AppContext& ctx, QWidget* owner, const QString& picked) {
  frmload dialog(ctx, owner);
  if (!picked.isEmpty()) dialog.PickFile(picked);
  CentreOn(&dialog, ScreenArea(owner));
  dialog.exec();
}

}  // namespace kestrum::forms
