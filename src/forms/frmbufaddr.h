#pragma once
#include <QDialog>

#include "bufferops/BufferArea.h"
#include "forms/FormSupport.h"

namespace kestrum::forms {

// Set Buffer Address: a new area for the image. Both fields open empty.
class frmbufaddr : public QDialog {
  Q_OBJECT
 public:
  frmbufaddr(AppContext& ctx, QWidget* owner = nullptr);

 private:
  void Cmdok_Click();

  AppContext& ctx_;
  FieldWidgets<BufAddrFields> fields_;
};

}  // namespace kestrum::forms
