// Placeholder until the dialog is built.
#include "forms/Dialogs.h"

namespace kestrum::forms {

void ShowFrmBufAddr(AppContext&, QWidget*) {}

}  // namespace kestrum::forms
