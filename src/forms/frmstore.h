#pragma once
#include <QDialog>

#include "bufferops/StoreBlock.h"
#include "forms/FormSupport.h"

namespace kestrum::forms {

// Block Store: a range and a byte value. Opens with its fields from the
// store; Store runs the core's Store button and closes when it says so.
class frmstore : public QDialog {
  Q_OBJECT
 public:
  frmstore(AppContext& ctx, QWidget* owner = nullptr);

 private:
  void Command2_Click();

  AppContext& ctx_;
  FieldWidgets<StoreFields> fields_;
};

}  // namespace kestrum::forms
