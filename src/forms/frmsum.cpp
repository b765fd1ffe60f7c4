#include "forms/frmsum.h"

#include <QKeyEvent>
#include <QPushButton>

#include "forms/Dialogs.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

frmsum::frmsum(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmsum", QStringLiteral("SUM "), 6120, 3495);

  auto* frame1 = MakeFrame(this, "Frame1", QStringLiteral("Address Set up"), Twips(225, 555, 2520, 1635));
  MakeLabel(frame1, "Label7", QStringLiteral("FirstAddress"), 135, 450);
  Text6_ = MakeChild<QLineEdit>(frame1, "Text6", Twips(1275, 465, 1110, 315));
  MakeLabel(frame1, "Label6", QStringLiteral("LastAddress"), 120, 1020);
  Text7_ = MakeChild<QLineEdit>(frame1, "Text7", Twips(1275, 990, 1110, 315));

  auto* frame2 = MakeFrame(this, "Frame2", QStringLiteral("Result"), Twips(3090, 270, 2610, 2190));
  MakeLabel(frame2, "Label8", QStringLiteral("8-8bit"), 510, 420);
  Text1_ = MakeChild<QLineEdit>(frame2, "Text1", Twips(1215, 375, 870, 285));
  MakeLabel(frame2, "Label5", QStringLiteral("8-16bit"), 420, 960);
  Text2_ = MakeChild<QLineEdit>(frame2, "Text2", Twips(1215, 930, 870, 285));
  MakeLabel(frame2, "Label4", QStringLiteral("16-16bit"), 330, 1545);
  Text3_ = MakeChild<QLineEdit>(frame2, "Text3", Twips(1215, 1500, 870, 285));

  Command1_ =
      MakeChild<QPushButton>(this, "Command1", Twips(2460, 2760, 1140, 390), QStringLiteral("Calculate"));
  Command2_ = MakeChild<QPushButton>(this, "Command2", Twips(4125, 2760, 1140, 390), QStringLiteral("Close"));

  for (auto* box : {Text6_, Text7_, Text1_, Text2_, Text3_}) box->setFont(MonoFont());
  for (auto* result : {Text1_, Text2_, Text3_}) result->setEnabled(false);
  HookKeyFilter(Text6_, FilterAddressKey);
  HookKeyFilter(Text7_, FilterAddressKey);
  SetDefaultAndCancel(Command1_, Command2_);
  FitCaptions(this);
  Text6_->setFocus();
  setTabOrder(Text6_, Text7_);
  setTabOrder(Text7_, Command1_);
  setTabOrder(Command1_, Command2_);

  connect(Command1_, &QPushButton::clicked, this, &frmsum::Command1_Click);
  connect(Command2_, &QPushButton::clicked, this, &frmsum::Command2_Click);

  SumFields f;
  cmdbufsum_Click(f, ctx_.m, ctx_.store);
  ShowFields(f);
}

void frmsum::keyPressEvent(QKeyEvent* event) {
  // Esc is the Close button, which keeps the range; the window's own close
  // box stays a plain reject that keeps nothing.
  if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
    if (Command2_->isEnabled()) Command2_->click();
    return;
  }
  QDialog::keyPressEvent(event);
}

SumFields frmsum::Fields() const {
  SumFields f;
  f.Text6 = S(Text6_->text());
  f.Text7 = S(Text7_->text());
  f.Text1 = S(Text1_->text());
  f.Text2 = S(Text2_->text());
  f.Text3 = S(Text3_->text());
  f.Command1Enabled = Command1_->isEnabled();
  f.Command2Enabled = Command2_->isEnabled();
  return f;
}

void frmsum::ShowFields(const SumFields& f) {
  Text6_->setText(Q(f.Text6));
  Text7_->setText(Q(f.Text7));
  Text1_->setText(Q(f.Text1));
  Text2_->setText(Q(f.Text2));
  Text3_->setText(Q(f.Text3));
  Command1_->setEnabled(f.Command1Enabled);
  Command2_->setEnabled(f.Command2Enabled);
}

void frmsum::Command1_Click() {
  SumFields f = Fields();
  FormPlatform platform(ctx_.platform, [&] { ShowFields(f); });
  kestrum::Command1_Click(f, ctx_.m, platform);
  ShowFields(f);
}

void frmsum::Command2_Click() {
  kestrum::Command2_Click(Fields(), ctx_.store);
  accept();
}

void ShowFrmSum(AppContext& ctx, QWidget* owner) {
  frmsum dialog(ctx, owner);
  CentreOn(&dialog, owner ? owner->frameGeometry() : ScreenArea(nullptr));
  dialog.exec();
}

}  // namespace kestrum::forms
