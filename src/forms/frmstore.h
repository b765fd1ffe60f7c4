#pragma once
#include <QDialog>

#include "bufferops/StoreBlock.h"
#include "forms/FormSupport.h"

class QLineEdit;
class QPushButton;

namespace kestrum::forms {

// Block Store: a range and a byte value. Opens with its fields from the
// store; Store runs the core's Store button and closes when it says so.
class frmstore : public QDialog {
  Q_OBJECT
 public:
  frmstore(AppContext& ctx, QWidget* owner = nullptr);

 private:
  void Command2_Click();
  StoreFields Fields() const;
  void ShowFields(const StoreFields& f);

  AppContext& ctx_;
  QLineEdit* Text1_ = nullptr;
  QLineEdit* Text2_ = nullptr;
  QLineEdit* Text3_ = nullptr;
  QPushButton* Command1_ = nullptr;
  QPushButton* Command2_ = nullptr;
};

}  // namespace kestrum::forms
