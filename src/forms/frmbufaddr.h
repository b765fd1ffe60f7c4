#pragma once
#include <QDialog>

#include "bufferops/BufferArea.h"
#include "forms/FormSupport.h"

class QLineEdit;
class QPushButton;

namespace kestrum::forms {

// Set Buffer Address: a new area for the image. Both fields open empty.
class frmbufaddr : public QDialog {
  Q_OBJECT
 public:
  frmbufaddr(AppContext& ctx, QWidget* owner = nullptr);

 private:
  void Cmdok_Click();

  AppContext& ctx_;
  QLineEdit* Text1_ = nullptr;
  QLineEdit* Text2_ = nullptr;
  QPushButton* Cmdok_ = nullptr;
  QPushButton* Command1_ = nullptr;
};

}  // namespace kestrum::forms
