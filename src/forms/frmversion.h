#pragma once
#include <QDialog>

namespace kestrum::forms {

// The version dialog: the program's title and version, and OK.
class frmversion : public QDialog {
  Q_OBJECT
 public:
  explicit frmversion(QWidget* owner = nullptr);
};

}  // namespace kestrum::forms
