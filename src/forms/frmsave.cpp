// Placeholder until the dialog is built.
#include "forms/Dialogs.h"

namespace kestrum::forms {

void ShowFrmSave(AppContext&, QWidget*) {}

}  // namespace kestrum::forms
