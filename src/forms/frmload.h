#pragma once
#include <QDialog>

#include "forms/FormSupport.h"
#include "reading/LoadDialog.h"

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace kestrum::forms {

class DirListBox;
class DriveListBox;
class FileListBox;

// File Load: a file picked from the drive, folder and file lists, the range
// the load may write and an optional signed offset. Opens with the range,
// drive and folder from the store; Load runs the core's Load button and
// closes when it says so.
class frmload : public QDialog {
  Q_OBJECT
 public:
  frmload(AppContext& ctx, QWidget* owner = nullptr);

  // Opens the lists at the folder of path, a file's full name, and picks
  // the file as a click on it would, leaving the focus on it.
  void PickFile(const QString& path);

 private:
  void Command1_Click();
  void Check1_Click();
  LoadFields Fields() const;
  void ShowFields(const LoadFields& f);

  AppContext& ctx_;
  DriveListBox* Drive1_ = nullptr;
  DirListBox* Dir1_ = nullptr;
  FileListBox* File1_ = nullptr;
  QLineEdit *Text1_ = nullptr, *Text4_ = nullptr, *Text3_ = nullptr, *Text2_ = nullptr;
  QCheckBox* Check1_ = nullptr;
  QPushButton *Command1_ = nullptr, *Command2_ = nullptr;
};

}  // namespace kestrum::forms
