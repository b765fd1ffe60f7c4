// Placeholder until the dialog is built.
#include "forms/Dialogs.h"

namespace kestrum::forms {

void ShowFrmStore(AppContext&, QWidget*) {}

}  // namespace kestrum::forms
