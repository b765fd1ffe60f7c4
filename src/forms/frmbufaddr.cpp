#include "forms/frmbufaddr.h"

#include <QPushButton>

#include "forms/Dialogs.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

frmbufaddr::frmbufaddr(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmbufaddr", QStringLiteral("Set Buffer Address"), 3930, 2130);

  Text1_ = MakeChild<QLineEdit>(this, "Text1", Twips(1785, 390, 1005, 285));
  Text2_ = MakeChild<QLineEdit>(this, "Text2", Twips(1785, 915, 1005, 285));
  Cmdok_ = MakeChild<QPushButton>(this, "Cmdok", Twips(705, 1470, 960, 390), QStringLiteral("OK"));
  Command1_ = MakeChild<QPushButton>(this, "Command1", Twips(2310, 1470, 960, 390), QStringLiteral("Cancel"));
  MakeLabel(this, "Label2", QStringLiteral("FirstAddress"), 645, 375, 855, 195);
  MakeLabel(this, "Label3", QStringLiteral("LastAddress"), 630, 945, 930, 255);
  for (auto* box : {Text1_, Text2_}) {
    box->setFont(MonoFont());
    HookKeyFilter(box, FilterAddressKey);
  }
  SetDefaultAndCancel(Cmdok_, Command1_);
  FitCaptions(this);
  Text1_->setFocus();
  setTabOrder(Text1_, Text2_);
  setTabOrder(Text2_, Cmdok_);
  setTabOrder(Cmdok_, Command1_);

  // Esc rejects the dialog by itself, which is what Cancel does.
  connect(Command1_, &QPushButton::clicked, this, &QDialog::reject);
  connect(Cmdok_, &QPushButton::clicked, this, &frmbufaddr::Cmdok_Click);
}

void frmbufaddr::Cmdok_Click() {
  BufAddrFields f;
  f.Text1 = S(Text1_->text());
  f.Text2 = S(Text2_->text());
  const auto show = [&] {
    Text1_->setText(Q(f.Text1));
    Text2_->setText(Q(f.Text2));
    Cmdok_->setEnabled(f.CmdokEnabled);
    Command1_->setEnabled(f.Command1Enabled);
  };
  FormPlatform platform(ctx_.platform, show);
  const bool close = kestrum::Cmdok_Click(f, ctx_.m, platform, ctx_.store);
  show();
  if (close) accept();
}

void ShowFrmBufAddr(AppContext& ctx, QWidget* owner) {
  frmbufaddr dialog(ctx, owner);
  dialog.exec();
}

}  // namespace kestrum::forms
