#pragma once
#include <QDialog>

#include "forms/FormSupport.h"
#include "writing/SaveFlow.h"

class QComboBox;
class QLineEdit;
class QPushButton;

namespace kestrum::forms {

class DirListBox;
class DriveListBox;
class FileListBox;

// File Save: the folder and name of the file, which files to make, the
// object format, the range, the record length and the sum. Opens with the
// fields from the store; Save runs the core's Save button and closes when
// it says so.
class frmsave : public QDialog {
  Q_OBJECT
 public:
  frmsave(AppContext& ctx, QWidget* owner = nullptr);

 private:
  void Combo1_Click();
  void Combo2_Click();
  void Command5_Click();
  SaveFields Fields() const;
  void ShowFields(const SaveFields& f);

  AppContext& ctx_;
  DriveListBox* Drive2_ = nullptr;
  DirListBox* Dir2_ = nullptr;
  FileListBox* File2_ = nullptr;
  QLineEdit *Text5_ = nullptr, *Text7_ = nullptr, *Text6_ = nullptr, *Text4_ = nullptr;
  QComboBox *Combo1_ = nullptr, *Combo2_ = nullptr, *Combo3_ = nullptr;
  QPushButton *Command5_ = nullptr, *Command2_ = nullptr;
};

}  // namespace kestrum::forms
