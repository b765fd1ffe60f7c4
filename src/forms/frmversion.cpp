#include "forms/frmversion.h"

#include <QPushButton>

#include "forms/Dialogs.h"

namespace kestrum::forms {

frmversion::frmversion(QWidget* owner) : QDialog(owner) {
  SetUpForm(this, "frmversion", QStringLiteral("Version"), 3780, 2175);
  MakeLabel(this, "Label1", QStringLiteral("Kestrum"), 320, 285);
  MakeLabel(this, "Label4", QStringLiteral("Version " KESTRUM_VERSION), 2370, 285);
  auto* ok = MakeChild<QPushButton>(this, "OK_Button", Twips(1290, 1470, 1335, 375), QStringLiteral("OK"));
  SetDefaultAndCancel(ok, ok);
  FitCaptions(this);
  // Esc closes a QDialog by itself, which makes OK the cancel button too.
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
}

void ShowFrmVersion(QWidget* owner) {
  frmversion dialog(owner);
  CentreOn(&dialog, ScreenArea(owner));
  dialog.exec();
}

}  // namespace kestrum::forms
