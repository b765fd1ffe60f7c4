#pragma once
// The drive, directory and file lists of the load and save dialogs. A
// "drive" is a root the platform has: a drive letter on Windows; "/", the
// home folder and the mounted volumes of real devices elsewhere. Paths are
// absolute, in the platform's separators, and only a root ends with one.
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QString>
#include <QStringList>

#include "image/Platform.h"

namespace kestrum::forms {

// The roots of this machine, in the order the drive list shows them.
QStringList DriveRoots();

// The root among roots that holds path (the longest that is a prefix of
// it), or the empty text when none does.
QString DriveOfPath(const QString& path, const QStringList& roots);

// dir, the platform's separator unless dir already ends with one, name.
QString JoinPath(const QString& dir, const QString& name);

// An absolute, cleaned path in the platform's separators.
QString NormalPath(const QString& path);

// DriveListBox: a drop-down list of the roots.
class DriveListBox : public QComboBox {
  Q_OBJECT
 public:
  explicit DriveListBox(QWidget* parent = nullptr);

  QString Drive() const;
  // Picks drive when the list has it (letters compare ignoring case on
  // Windows) and then raises Change; false and unchanged otherwise.
  bool SetDrive(const QString& drive);
  // Reads the roots again, keeping the pick where it still exists.
  void Refresh();
  // Shows the drive that holds path, without raising Change: the drive
  // follows the folder list.
  void FollowPath(const QString& path);

 signals:
  // The pick changed, by the user or by SetDrive.
  void Change(const QString& drive);

 private:
  // A drive too long for the box shows with its middle left out.
  void paintEvent(QPaintEvent* event) override;

  int IndexOf(const QString& drive) const;
  int shown_ = -1;
};

// DirListBox: the chain of folders from the root down to Path, then the
// folders inside Path, indented by depth. Double click or Enter opens the
// folder; typing finds a folder by its first letters; Ctrl+L or a typed
// separator opens a box to type a path in. The folder of Path stays
// highlighted unless the user picks another.
class DirListBox : public QListWidget {
  Q_OBJECT
 public:
  explicit DirListBox(QWidget* parent = nullptr);

  QString Path() const { return path_; }
  // Makes path the shown folder and raises Change when it differs from the
  // last one. False, and nothing changes, when path is no folder that can
  // be entered and read.
  bool SetPath(const QString& path);
  void Refresh();

 signals:
  void Change(const QString& path);

 protected:
  // Enter opens the folder and goes no further: it is not the dialog's
  // default button.
  void keyPressEvent(QKeyEvent* event) override;
  // Enter and Esc in the path box.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Open(QListWidgetItem* item);
  void TypePath(const QString& start);
  QString path_;
  int pathRow_ = -1;
  QLineEdit* pathBox_ = nullptr;
};

// FileListBox: the names of the visible files of a folder.
class FileListBox : public QListWidget {
  Q_OBJECT
 public:
  explicit FileListBox(QWidget* parent = nullptr);

  QString Path() const { return path_; }
  // Shows the files of path; the pick is cleared.
  void SetPath(const QString& path);
  void Refresh();
  // The picked name without folder, or empty when nothing is picked.
  QString FileName() const;
  // Picks name as a click does, raising Click; false when it is not listed.
  bool Pick(const QString& name);
  int ListCount() const { return count(); }
  QString List(int index) const;

 signals:
  // A name was picked, by mouse or keyboard.
  void Click(const QString& fileName);

 private:
  QString path_;
};

// The drive, folder and file lists of a dialog working as one: the file list
// shows the folder's files, the drive list follows the folder, a click on a
// file puts its name into name. A drive whose folder can't be reached says
// "Device unavailable": the drive list keeps showing it, the folder stays.
void WireFileLists(DriveListBox* drive, DirListBox* dir, FileListBox* file, QLineEdit* name,
                   Platform& platform);

}  // namespace kestrum::forms
