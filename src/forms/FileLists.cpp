#include "forms/FileLists.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QStorageInfo>
#include <QStyle>
#include <QStylePainter>
#include <QStyledItemDelegate>
#include <algorithm>

namespace kestrum::forms {

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kDepthRole = Qt::UserRole + 1;

// Draws a folder in from the left by its depth; its text is the bare name,
// so that typing its first letters finds it.
class IndentDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->rect.setLeft(option->rect.left() + Indent(index));
  }
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(Indent(index), 0);
  }

 private:
  static int Indent(const QModelIndex& index) { return index.data(kDepthRole).toInt() * 10; }
};

#ifdef Q_OS_WIN
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseInsensitive;
#else
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseSensitive;
#endif

bool EndsWithSeparator(const QString& path) {
  return path.endsWith(QLatin1Char('/')) || path.endsWith(QDir::separator());
}

// The folder above path; a root is its own parent.
QString ParentOf(const QString& path) { return NormalPath(QFileInfo(path).absolutePath()); }

}  // namespace

QString NormalPath(const QString& path) {
  return QDir::toNativeSeparators(QDir::cleanPath(QDir(path).absolutePath()));
}

QString JoinPath(const QString& dir, const QString& name) {
  if (dir.isEmpty() || EndsWithSeparator(dir)) return dir + name;
  return dir + QDir::separator() + name;
}

QStringList DriveRoots() {
  QStringList roots;
#ifdef Q_OS_WIN
  for (const QFileInfo& drive : QDir::drives()) roots << NormalPath(drive.absoluteFilePath());
#else
  roots << NormalPath(QDir::rootPath());
  const QString home = NormalPath(QDir::homePath());
  if (!roots.contains(home)) roots << home;
  QStringList volumes;
  // Only volumes of real devices: the pseudo file systems and the single
  // files that containers bind in are no place to keep object files.
  for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
    if (!volume.isValid() || !volume.device().startsWith("/dev/")) continue;
    const QString root = NormalPath(volume.rootPath());
    if (roots.contains(root) || volumes.contains(root) || !QFileInfo(root).isDir()) continue;
    volumes << root;
  }
  volumes.sort();
  roots << volumes;
#endif
  return roots;
}

QString DriveOfPath(const QString& path, const QStringList& roots) {
  const QString normal = NormalPath(path);
  QString best;
  for (const QString& root : roots) {
    const bool holds =
        normal.compare(root, kPathCase) == 0 ||
        normal.startsWith(EndsWithSeparator(root) ? root : root + QDir::separator(), kPathCase);
    if (holds && root.size() > best.size()) best = root;
  }
  return best;
}

// ---- DriveListBox ----

DriveListBox::DriveListBox(QWidget* parent) : QComboBox(parent) {
  Refresh();
  const int current = IndexOf(DriveOfPath(QDir::currentPath(), DriveRoots()));
  if (current >= 0) setCurrentIndex(current);
  shown_ = currentIndex();
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
    setToolTip(Drive());
    if (index < 0 || index == shown_) return;
    shown_ = index;
    emit Change(Drive());
  });
}

QString DriveListBox::Drive() const { return currentText(); }

int DriveListBox::IndexOf(const QString& drive) const {
  if (drive.isEmpty()) return -1;
  const QString wanted = NormalPath(drive);
  for (int i = 0; i < count(); ++i) {
    if (itemText(i).compare(wanted, kPathCase) == 0) return i;
  }
  return -1;
}

bool DriveListBox::SetDrive(const QString& drive) {
  const int index = IndexOf(drive);
  if (index < 0) return false;
  setCurrentIndex(index);  // raises Change through currentIndexChanged when it moves
  return true;
}

void DriveListBox::FollowPath(const QString& path) {
  QStringList roots;
  for (int i = 0; i < count(); ++i) roots << itemText(i);
  const int index = IndexOf(DriveOfPath(path, roots));
  if (index < 0 || index == currentIndex()) return;
  shown_ = index;  // no Change: the folder is already there
  setCurrentIndex(index);
}

void DriveListBox::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionComboBox option;
  initStyleOption(&option);
  painter.drawComplexControl(QStyle::CC_ComboBox, option);
  const QRect field =
      style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
  const int room = field.width() - (option.currentIcon.isNull() ? 0 : option.iconSize.width() + 4);
  option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideMiddle, room);
  painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void DriveListBox::Refresh() {
  const QString picked = Drive();
  const QSignalBlocker quiet(this);
  clear();
  const QIcon icon = style()->standardIcon(QStyle::SP_DriveHDIcon);
  for (const QString& root : DriveRoots()) addItem(icon, root);
  const int again = IndexOf(picked);
  setCurrentIndex(again >= 0 ? again : 0);
  shown_ = currentIndex();
}

// ---- DirListBox ----

DirListBox::DirListBox(QWidget* parent) : QListWidget(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
  setItemDelegate(new IndentDelegate(this));
  setToolTip(QStringLiteral("Type a folder's first letters to find it, Ctrl+L to type a path"));
  connect(this, &QListWidget::itemActivated, this, &DirListBox::Open);
  // A click on empty space leaves the folder highlighted.
  connect(this, &QListWidget::itemSelectionChanged, this, [this] {
    if (selectedItems().isEmpty() && item(pathRow_)) setCurrentRow(pathRow_);
  });
  if (!SetPath(QDir::currentPath())) SetPath(QDir::homePath());
}

bool DirListBox::SetPath(const QString& path) {
  if (path.isEmpty()) return false;
  const QString normal = NormalPath(path);
  const QFileInfo info(normal);
  if (!info.isDir() || !info.isExecutable() || !info.isReadable()) return false;
  const bool changed = normal != path_;
  path_ = normal;
  Refresh();
  if (changed) emit Change(path_);
  return true;
}

void DirListBox::Refresh() {
  const QSignalBlocker quiet(this);
  clear();
  QStringList chain{path_};
  for (QString up = ParentOf(path_); up != chain.front(); up = ParentOf(up)) chain.prepend(up);

  const QIcon open = style()->standardIcon(QStyle::SP_DirOpenIcon);
  const QIcon closed = style()->standardIcon(QStyle::SP_DirClosedIcon);
  auto add = [this](const QIcon& icon, int depth, const QString& caption, const QString& full) {
    auto* item = new QListWidgetItem(icon, caption, this);
    item->setData(kPathRole, full);
    item->setData(kDepthRole, depth);
    return item;
  };
  for (int depth = 0; depth < chain.size(); ++depth) {
    const QString& full = chain[depth];
    add(open, depth, depth == 0 ? full : QFileInfo(full).fileName(), full);
  }
  pathRow_ = static_cast<int>(chain.size()) - 1;
  setCurrentRow(pathRow_);
  const QDir dir(path_);
  const QStringList children =
      dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
  for (const QString& child : children)
    add(closed, static_cast<int>(chain.size()), child, JoinPath(path_, child));
}

void DirListBox::keyPressEvent(QKeyEvent* event) {
  if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem()) {
    Open(currentItem());
    event->accept();
    return;
  }
  if (event->key() == Qt::Key_L && event->modifiers() == Qt::ControlModifier) {
    TypePath(path_);
    return;
  }
  if (event->text() == QDir::separator() || event->text() == QStringLiteral("/")) {
    TypePath(event->text());
    return;
  }
  QListWidget::keyPressEvent(event);
}

void DirListBox::TypePath(const QString& start) {
  if (!pathBox_) {
    pathBox_ = new QLineEdit(this);
    pathBox_->setObjectName(QStringLiteral("PathBox"));
    pathBox_->installEventFilter(this);
  }
  pathBox_->setGeometry(frameWidth(), frameWidth(), viewport()->width(), pathBox_->sizeHint().height());
  pathBox_->setText(start);
  pathBox_->show();
  pathBox_->setFocus();
}

bool DirListBox::eventFilter(QObject* watched, QEvent* event) {
  if (watched != pathBox_) return false;
  if (event->type() == QEvent::FocusOut) {
    pathBox_->hide();
    return false;
  }
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key == Qt::Key_Escape ||
      ((key == Qt::Key_Return || key == Qt::Key_Enter) && SetPath(pathBox_->text()))) {
    setFocus();  // hides the box
    return true;
  }
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    QApplication::beep();  // no folder that can be entered: the box stays
    return true;
  }
  return false;
}

void DirListBox::Open(QListWidgetItem* item) {
  if (!item) return;
  if (SetPath(item->data(kPathRole).toString())) return;
  // A folder that can't be entered: the highlight goes back to the open
  // one, once the click that asked for it is over.
  QApplication::beep();
  QMetaObject::invokeMethod(
      this, [this] { setCurrentRow(pathRow_); }, Qt::QueuedConnection);
}

// ---- FileListBox ----

FileListBox::FileListBox(QWidget* parent) : QListWidget(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
  connect(this, &QListWidget::itemSelectionChanged, this, [this] {
    const QString name = FileName();
    if (!name.isEmpty()) emit Click(name);
  });
  SetPath(QDir::currentPath());
}

void FileListBox::SetPath(const QString& path) {
  path_ = path.isEmpty() ? QString() : NormalPath(path);
  Refresh();
}

void FileListBox::Refresh() {
  const QSignalBlocker quiet(this);
  clear();
  if (path_.isEmpty()) return;
  const QDir dir(path_);
  addItems(dir.entryList(QDir::Files, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware));
  setCurrentRow(-1);
  clearSelection();
}

QString FileListBox::FileName() const {
  const QList<QListWidgetItem*> picked = selectedItems();
  return picked.isEmpty() ? QString() : picked.front()->text();
}

bool FileListBox::Pick(const QString& name) {
  const QList<QListWidgetItem*> found = findItems(name, Qt::MatchExactly);
  if (found.isEmpty()) return false;
  setCurrentItem(found.front());
  scrollToItem(found.front());
  return true;
}

QString FileListBox::List(int index) const {
  const QListWidgetItem* entry = item(index);
  return entry ? entry->text() : QString();
}

void WireFileLists(DriveListBox* drive, DirListBox* dir, FileListBox* file, QLineEdit* name,
                   Platform& platform) {
  file->SetPath(dir->Path());
  QObject::connect(dir, &DirListBox::Change, file, &FileListBox::SetPath);
  QObject::connect(dir, &DirListBox::Change, drive, &DriveListBox::FollowPath);
  QObject::connect(drive, &DriveListBox::Change, dir, [dir, &platform](const QString& to) {
    if (!dir->SetPath(to)) platform.MsgBox("Device unavailable");
  });
  QObject::connect(file, &FileListBox::Click, name, &QLineEdit::setText);
}

}  // namespace kestrum::forms
