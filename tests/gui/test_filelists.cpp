#include <QDir>
#include <QSignalSpy>

#include "GuiSupport.h"
#include "forms/FileLists.h"

using namespace kestrum;
using namespace kestrum::test;
using forms::DirListBox;
using forms::DriveListBox;
using forms::FileListBox;

namespace {

// A folder with two visible files, a hidden one and two subfolders.
struct Tree {
  QTemporaryDir dir;
  Tree() {
    const std::filesystem::path root = dir.path().toStdString();
    WriteFile(root / "b.hex", ":00000001FF\r\n");
    WriteFile(root / "A.bin", "x");
    WriteFile(root / ".hidden", "x");
    std::filesystem::create_directory(root / "sub1");
    std::filesystem::create_directory(root / "Sub2");
  }
  QString path() const { return QDir::toNativeSeparators(dir.path()); }
};

}  // namespace

class TestFileLists : public QObject {
  Q_OBJECT
 private slots:
  void drivesHoldTheRootAndEachPathFindsItsDrive() {
    const QStringList roots = forms::DriveRoots();
    QVERIFY(!roots.isEmpty());
#ifndef Q_OS_WIN
    QCOMPARE(roots.front(), QStringLiteral("/"));
    const QStringList mounts{"/", "/mnt/data", "/mnt/data2"};
    QCOMPARE(forms::DriveOfPath("/mnt/data/x", mounts), QStringLiteral("/mnt/data"));
    QCOMPARE(forms::DriveOfPath("/mnt/data2", mounts), QStringLiteral("/mnt/data2"));
    QCOMPARE(forms::DriveOfPath("/mnt/database", mounts), QStringLiteral("/"));
#endif
    DriveListBox drives;
    QVERIFY(roots.contains(drives.Drive()));
    QSignalSpy spy(&drives, &DriveListBox::Change);
    QVERIFY(!drives.SetDrive(QStringLiteral("/no/such/root")));
    QCOMPARE(spy.count(), 0);
    QVERIFY(drives.SetDrive(roots.front()));
    QCOMPARE(drives.Drive(), roots.front());
  }

  void directoryListShowsTheChainAndTheFoldersInside() {
    Tree tree;
    DirListBox dirs;
    QSignalSpy spy(&dirs, &DirListBox::Change);
    QVERIFY(dirs.SetPath(tree.path()));
    QCOMPARE(dirs.Path(), tree.path());
    QCOMPARE(spy.count(), 1);
    QVERIFY(dirs.SetPath(tree.path()));
    QCOMPARE(spy.count(), 1);  // the same folder again raises nothing

    QStringList shown;
    for (int i = 0; i < dirs.count(); ++i) shown << dirs.item(i)->text().trimmed();
    QCOMPARE(shown.front(), QDir::toNativeSeparators(QDir::rootPath()));
    QCOMPARE(shown.mid(shown.size() - 2), (QStringList{"sub1", "Sub2"}));
    QVERIFY(dirs.currentItem()->text().trimmed() == QFileInfo(tree.dir.path()).fileName());

    emit dirs.itemActivated(dirs.item(dirs.count() - 1));
    QCOMPARE(dirs.Path(), forms::JoinPath(tree.path(), "Sub2"));
    QCOMPARE(spy.count(), 2);
  }

  void directoryListRefusesWhatCannotBeEntered() {
    Tree tree;
    DirListBox dirs;
    QVERIFY(dirs.SetPath(tree.path()));
    const QString refused[] = {forms::JoinPath(tree.path(), "missing"), forms::JoinPath(tree.path(), "A.bin"),
                               QString()};
    for (const QString& path : refused) {
      QVERIFY(!dirs.SetPath(path));
      QCOMPARE(dirs.Path(), tree.path());
    }
  }

  void rootKeepsItsSeparator() {
    DirListBox dirs;
    QVERIFY(dirs.SetPath(QDir::rootPath()));
    QCOMPARE(dirs.Path(), QDir::toNativeSeparators(QDir::rootPath()));
    QVERIFY(forms::JoinPath(dirs.Path(), "x").count(QDir::separator()) == dirs.Path().count(QDir::separator()));
  }

  void fileListShowsVisibleFilesAndThePick() {
    Tree tree;
    FileListBox files;
    files.SetPath(tree.path());
    QCOMPARE(files.ListCount(), 2);
    QCOMPARE(files.List(0), QStringLiteral("A.bin"));
    QCOMPARE(files.List(1), QStringLiteral("b.hex"));
    QCOMPARE(files.FileName(), QString());

    QSignalSpy spy(&files, &FileListBox::Click);
    files.show();
    const QRect place = files.visualItemRect(files.item(1));
    QTest::mouseClick(files.viewport(), Qt::LeftButton, {}, place.center());
    QCOMPARE(files.FileName(), QStringLiteral("b.hex"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.front().front().toString(), QStringLiteral("b.hex"));

    files.SetPath(tree.path());
    QCOMPARE(files.FileName(), QString());
  }
};

QTEST_MAIN(TestFileLists)
#include "test_filelists.moc"
