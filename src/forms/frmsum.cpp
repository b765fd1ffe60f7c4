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
  auto* Text6 = MakeChild<QLineEdit>(frame1, "Text6", Twips(1275, 465, 1110, 315));
  MakeLabel(frame1, "Label6", QStringLiteral("LastAddress"), 120, 1020);
  auto* Text7 = MakeChild<QLineEdit>(frame1, "Text7", Twips(1275, 990, 1110, 315));

  auto* frame2 = MakeFrame(this, "Frame2", QStringLiteral("Result"), Twips(3090, 270, 2610, 2190));
  MakeLabel(frame2, "Label8", QStringLiteral("8-8bit"), 510, 420);
  auto* Text1 = MakeChild<QLineEdit>(frame2, "Text1", Twips(1215, 375, 870, 285));
  MakeLabel(frame2, "Label5", QStringLiteral("8-16bit"), 420, 960);
  auto* Text2 = MakeChild<QLineEdit>(frame2, "Text2", Twips(1215, 930, 870, 285));
  MakeLabel(frame2, "Label4", QStringLiteral("16-16bit"), 330, 1545);
  auto* Text3 = MakeChild<QLineEdit>(frame2, "Text3", Twips(1215, 1500, 870, 285));

  auto* Command1 =
      MakeChild<QPushButton>(this, "Command1", Twips(2460, 2760, 1140, 390), QStringLiteral("Calculate"));
  Command2_ = MakeChild<QPushButton>(this, "Command2", Twips(4125, 2760, 1140, 390), QStringLiteral("Close"));

  for (auto* box : {Text6, Text7, Text1, Text2, Text3}) box->setFont(MonoFont());
  for (auto* result : {Text1, Text2, Text3}) result->setEnabled(false);
  HookKeyFilter(Text6, FilterAddressKey);
  HookKeyFilter(Text7, FilterAddressKey);
  SetDefaultAndCancel(Command1, Command2_);
  FitCaptions(this);
  Text6->setFocus();
  SetTabOrder({Text6, Text7, Command1, Command2_});

  connect(Command1, &QPushButton::clicked, this, &frmsum::Command1_Click);
  connect(Command2_, &QPushButton::clicked, this, &frmsum::Command2_Click);

  fields_ = {{{&SumFields::Text6, Text6},
              {&SumFields::Text7, Text7},
              {&SumFields::Text1, Text1},
              {&SumFields::Text2, Text2},
              {&SumFields::Text3, Text3}},
             {{&SumFields::Command1Enabled, Command1}, {&SumFields::Command2Enabled, Command2_}}};
  SumFields f;
  kestrum::frmsumtool::cmdbufsum_Click(f, ctx_.m, ctx_.store);
  fields_.Show(f);
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

void frmsum::Command1_Click() {
  // The dialog stays open after a calculation.
  PressButton(
      this, ctx_.platform, fields_.Read(), [this](const SumFields& f) { fields_.Show(f); },
      [this](SumFields& f, Platform& platform) {
        kestrum::frmsum::Command1_Click(f, ctx_.m, platform);
        return false;
      });
}

void frmsum::Command2_Click() {
  kestrum::frmsum::Command2_Click(fields_.Read(), ctx_.store);
  accept();
}

void ShowFrmSum(AppContext& ctx, QWidget* owner) {
  frmsum dialog(ctx, owner);
  CentreOn(&dialog, owner ? owner->frameGeometry() : ScreenArea(nullptr));
  dialog.exec();
}

}  // namespace kestrum::forms
