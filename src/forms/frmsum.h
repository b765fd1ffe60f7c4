#pragma once
#include <QDialog>

#include "bufferops/SumDialog.h"
#include "forms/FormSupport.h"

namespace kestrum::forms {

// Buffer SUM: a range and its three sums. Calculate can run any number of
// times; Close (also Esc) keeps the range in the store. Closing the window
// any other way keeps nothing.
class frmsum : public QDialog {
  Q_OBJECT
 public:
  frmsum(AppContext& ctx, QWidget* owner = nullptr);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Command1_Click();
  void Command2_Click();

  AppContext& ctx_;
  FieldWidgets<SumFields> fields_;
  QPushButton* Command2_ = nullptr;
};

}  // namespace kestrum::forms
