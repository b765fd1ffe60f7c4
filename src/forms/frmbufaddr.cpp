#include "forms/frmbufaddr.h"

#include <QPushButton>

#include "forms/Dialogs.h"
#include "image/KeyFilters.h"

namespace kestrum::forms {

frmbufaddr::frmbufaddr(AppContext& ctx, QWidget* owner) : QDialog(owner), ctx_(ctx) {
  SetUpForm(this, "frmbufaddr", QStringLiteral("Set Buffer Address"), 3930, 2130);

  auto* Text1 = MakeChild<QLineEdit>(this, "Text1", Twips(1785, 390, 1005, 285));
  auto* Text2 = MakeChild<QLineEdit>(this, "Text2", Twips(1785, 915, 1005, 285));
  auto* Cmdok = MakeChild<QPushButton>(this, "Cmdok", Twips(705, 1470, 960, 390), QStringLiteral("OK"));
  auto* Command1 =
      MakeChild<QPushButton>(this, "Command1", Twips(2310, 1470, 960, 390), QStringLiteral("Cancel"));
  MakeLabel(this, "Label2", QStringLiteral("FirstAddress"), 645, 375, 855, 195);
  MakeLabel(this, "Label3", QStringLiteral("LastAddress"), 630, 945, 930, 255);
  for (auto* box : {Text1, Text2}) {
    box->setFont(MonoFont());
    HookKeyFilter(box, FilterAddressKey);
  }
  SetDefaultAndCancel(Cmdok, Command1);
  FitCaptions(this);
  Text1->setFocus();
  SetTabOrder({Text1, Text2, Cmdok, Command1});

  // Esc rejects the dialog by itself, which is what Cancel does.
  connect(Command1, &QPushButton::clicked, this, &QDialog::reject);
  connect(Cmdok, &QPushButton::clicked, this, &frmbufaddr::Cmdok_Click);
  fields_ = {{{&BufAddrFields::Text1, Text1}, {&BufAddrFields::Text2, Text2}},
             {{&BufAddrFields::CmdokEnabled, Cmdok}, {&BufAddrFields::Command1Enabled, Command1}}};
}

void frmbufaddr::Cmdok_Click() {
  PressButton(
      this, ctx_.platform, fields_.Read(), [this](const BufAddrFields& f) { fields_.Show(f); },
      [this](BufAddrFields& f, Platform& platform) {
        return kestrum::frmbufaddr::Cmdok_Click(f, ctx_.m, platform, ctx_.store);
      });
}

void ShowFrmBufAddr(AppContext& ctx, QWidget* owner) {
  frmbufaddr dialog(ctx, owner);
  dialog.exec();
}

}  // namespace kestrum::forms
