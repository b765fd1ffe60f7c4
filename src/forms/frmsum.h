#pragma once
#include <QDialog>

#include "bufferops/SumDialog.h"
#include "forms/FormSupport.h"

class QLineEdit;
class QPushButton;

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
  SumFields Fields() const;
  void ShowFields(const SumFields& f);

  AppContext& ctx_;
  QLineEdit* Text6_ = nullptr;
  QLineEdit* Text7_ = nullptr;
  QLineEdit* Text1_ = nullptr;
  QLineEdit* Text2_ = nullptr;
  QLineEdit* Text3_ = nullptr;
  QPushButton* Command1_ = nullptr;
  QPushButton* Command2_ = nullptr;
};

}  // namespace kestrum::forms
