#include "forms/FileLists.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QStorageInfo>
#include <QStyle>
#include <algorithm>

namespace kestrum::forms {

namespace {

constexpr int kPathRole = Qt::UserRole;

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
    const bool holds = normal.compare(root, kPathCase) == 0 ||
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
  connect(this, &QListWidget::itemActivated, this, &DirListBox::Open);
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
    auto* item = new QListWidgetItem(icon, QString(depth * 2, QLatin1Char(' ')) + caption, this);
    item->setData(kPathRole, full);
    return item;
  };
  for (int depth = 0; depth < chain.size(); ++depth) {
    const QString& full = chain[depth];
    const QString caption = depth == 0 ? full : QFileInfo(full).fileName();
    QListWidgetItem* item = add(open, depth, caption, full);
    if (depth + 1 == chain.size()) setCurrentItem(item);
  }
  const QDir dir(path_);
  const QStringList children =
      dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
  for (const QString& child : children) add(closed, static_cast<int>(chain.size()), child, JoinPath(path_, child));
}

void DirListBox::keyPressEvent(QKeyEvent* event) {
  if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem()) {
    Open(currentItem());
    event->accept();
    return;
  }
  QListWidget::keyPressEvent(event);
}

void DirListBox::Open(QListWidgetItem* item) {
  if (!item) return;
  if (!SetPath(item->data(kPathRole).toString())) QApplication::beep();
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

}  // namespace kestrum::forms
