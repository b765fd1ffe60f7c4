#include "forms/frmstore.h"

#include <QPushButton>

#include "forms/Dialogs.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

frmstore::frmstore(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmstore", QStringLiteral("Block Store"), 3645, 2850);

  MakeLabel(this, "Label2", QStringLiteral("FirstAddress"), 585, 330);
  Text1_ = MakeChild<QLineEdit>(this, "Text1", Twips(1725, 345, 1005, 285));
  MakeLabel(this, "Label3", QStringLiteral("LastAddress"), 540, 900);
  Text2_ = MakeChild<QLineEdit>(this, "Text2", Twips(1725, 870, 1005, 285));
  MakeLabel(this, "Label4", QStringLiteral("Data"), 1095, 1500);
  Text3_ = MakeChild<QLineEdit>(this, "Text3", Twips(1725, 1440, 1020, 285));
  Command2_ = MakeChild<QPushButton>(this, "Command2", Twips(570, 2115, 960, 390), QStringLiteral("Store"));
  Command1_ = MakeChild<QPushButton>(this, "Command1", Twips(2175, 2115, 960, 390), QStringLiteral("Cancel"));
  for (auto* box : {Text1_, Text2_, Text3_}) box->setFont(MonoFont());
  HookKeyFilter(Text1_, FilterAddressKey);
  HookKeyFilter(Text2_, FilterAddressKey);
  HookKeyFilter(Text3_, FilterByteKey);
  SetDefaultAndCancel(Command2_, Command1_);
  FitCaptions(this);
  Text1_->setFocus();
  setTabOrder(Text1_, Text2_);
  setTabOrder(Text2_, Text3_);
  setTabOrder(Text3_, Command2_);
  setTabOrder(Command2_, Command1_);

  // Esc rejects the dialog by itself, which is what Cancel does.
  connect(Command1_, &QPushButton::clicked, this, &QDialog::reject);
  connect(Command2_, &QPushButton::clicked, this, &frmstore::Command2_Click);

  StoreFields f;
  cmdblstore_Click(f, ctx_.m, ctx_.store);
  ShowFields(f);
}

StoreFields frmstore::Fields() const {
  StoreFields f;
  f.Text1 = S(Text1_->text());
  f.Text2 = S(Text2_->text());
  f.Text3 = S(Text3_->text());
  f.Command1Enabled = Command1_->isEnabled();
  f.Command2Enabled = Command2_->isEnabled();
  return f;
}

void frmstore::ShowFields(const StoreFields& f) {
  Text1_->setText(Q(f.Text1));
  Text2_->setText(Q(f.Text2));
  Text3_->setText(Q(f.Text3));
  Command1_->setEnabled(f.Command1Enabled);
  Command2_->setEnabled(f.Command2Enabled);
}

void frmstore::Command2_Click() {
  StoreFields f = Fields();
  FormPlatform platform(ctx_.platform, [&] { ShowFields(f); });
  const bool close = kestrum::Command2_Click(f, ctx_.m, platform, ctx_.store);
  ShowFields(f);
  if (close) accept();
}

void ShowFrmStore(AppContext& ctx, QWidget* owner) {
  frmstore dialog(ctx, owner);
  CentreOn(&dialog, owner ? owner->frameGeometry() : ScreenArea(nullptr));
  dialog.exec();
}

}  // namespace kestrum::forms
