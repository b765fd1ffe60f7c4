#include "forms/frmstore.h"

#include <QPushButton>

#include "forms/Dialogs.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

frmstore::frmstore(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmstore", QStringLiteral("Block Store"), 3645, 2850);

  MakeLabel(this, "Label2", QStringLiteral("FirstAddress"), 585, 330);
  auto* Text1 = MakeChild<QLineEdit>(this, "Text1", Twips(1725, 345, 1005, 285));
  MakeLabel(this, "Label3", QStringLiteral("LastAddress"), 540, 900);
  auto* Text2 = MakeChild<QLineEdit>(this, "Text2", Twips(1725, 870, 1005, 285));
  MakeLabel(this, "Label4", QStringLiteral("Data"), 1095, 1500);
  auto* Text3 = MakeChild<QLineEdit>(this, "Text3", Twips(1725, 1440, 1020, 285));
  auto* Command2 =
      MakeChild<QPushButton>(this, "Command2", Twips(570, 2115, 960, 390), QStringLiteral("Store"));
  auto* Command1 =
      MakeChild<QPushButton>(this, "Command1", Twips(2175, 2115, 960, 390), QStringLiteral("Cancel"));
  for (auto* box : {Text1, Text2, Text3}) box->setFont(MonoFont());
  HookKeyFilter(Text1, FilterAddressKey);
  HookKeyFilter(Text2, FilterAddressKey);
  HookKeyFilter(Text3, FilterByteKey);
  SetDefaultAndCancel(Command2, Command1);
  FitCaptions(this);
  Text1->setFocus();
  SetTabOrder({Text1, Text2, Text3, Command2, Command1});

  // Esc rejects the dialog by itself, which is what Cancel does.
  connect(Command1, &QPushButton::clicked, this, &QDialog::reject);
  connect(Command2, &QPushButton::clicked, this, &frmstore::Command2_Click);

  fields_ = {{{&StoreFields::Text1, Text1}, {&StoreFields::Text2, Text2}, {&StoreFields::Text3, Text3}},
             {{&StoreFields::Command1Enabled, Command1}, {&StoreFields::Command2Enabled, Command2}}};
  StoreFields f;
  kestrum::frmsumtool::cmdblstore_Click(f, ctx_.m, ctx_.store);
  fields_.Show(f);
}

void frmstore::Command2_Click() {
  PressButton(
      this, ctx_.platform, fields_.Read(), [this](const StoreFields& f) { fields_.Show(f); },
      [this](StoreFields& f, Platform& platform) {
        return kestrum::frmstore::Command2_Click(f, ctx_.m, platform, ctx_.store);
      });
}

void ShowFrmStore(AppContext& ctx, QWidget* owner) {
  frmstore dialog(ctx, owner);
  CentreOn(&dialog, owner ? owner->frameGeometry() : ScreenArea(nullptr));
  dialog.exec();
}

}  // namespace kestrum::forms
