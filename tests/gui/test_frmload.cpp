#include <QCheckBox>
#include <QDir>
#include <QPushButton>

#include "GuiSupport.h"
#include "forms/FileLists.h"
#include "forms/frmload.h"

using namespace kestrum;
using namespace kestrum::test;
using forms::DirListBox;
using forms::FileListBox;

namespace {

// A world with the default area and a folder holding one HEX file.
struct LoadWorld {
  GuiWorld w;
  QTemporaryDir folder;
  LoadWorld() {
    w.m = MakeImage();
    WriteFile(std::filesystem::path(S(folder.path())) / "app.hex",
              ":0410000001020304E2\r\n:00000001FF\r\n");
  }
  QString Folder() const { return QDir::toNativeSeparators(folder.path()); }
  static std::string S(const QString& s) { return s.toStdString(); }
  // Keeps the folder in the store as a completed load would.
  void StoreFolder() {
    w.settings.store.Write(kFilePath, "LoadDrive", S(forms::DriveOfPath(Folder(), forms::DriveRoots())));
    w.settings.store.Write(kFilePath, "LoadDir", S(Folder()));
  }
};

void Pick(FileListBox* files, const QString& name) {
  const auto found = files->findItems(name, Qt::MatchExactly);
  QVERIFY(!found.isEmpty());
  files->show();
  QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualItemRect(found.front()).center());
}

}  // namespace

class TestFrmLoad : public QObject {
  Q_OBJECT
 private slots:
  void opensWithItsControlsAndTheDefaults() {
    LoadWorld l;
    forms::frmload dialog(l.w.ctx);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("File Load"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text4")->text(), QStringLiteral("00000000"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text3")->text(), QStringLiteral("0007FFFF"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text2")->text(), QStringLiteral("0"));
    QVERIFY(Child<QLineEdit>(&dialog, "Text2")->isHidden());
    QVERIFY(!Child<QLineEdit>(&dialog, "Text1")->isEnabled());
    QVERIFY(!Child<QCheckBox>(&dialog, "Check1")->isChecked());
    QCOMPARE(Child<QCheckBox>(&dialog, "Check1")->text(), QStringLiteral("OffsetAddress"));
    QCOMPARE(Child<QPushButton>(&dialog, "Command1")->text(), QStringLiteral("Load"));
    QVERIFY(Child<QPushButton>(&dialog, "Command1")->isDefault());
    QCOMPARE(Child<QPushButton>(&dialog, "Command2")->text(), QStringLiteral("Cancel"));
    QCOMPARE(Child<DirListBox>(&dialog, "Dir1")->Path(), forms::NormalPath(QDir::currentPath()));
    QCOMPARE(Child<FileListBox>(&dialog, "File1")->Path(), Child<DirListBox>(&dialog, "Dir1")->Path());
    Child<forms::DriveListBox>(&dialog, "Drive1");
  }

  void loadsAPickedFileAndKeepsTheSettings() {
    LoadWorld l;
    l.StoreFolder();
    l.w.m.frmsumtool.List1 = {"00000000  FF"};
    forms::frmload dialog(l.w.ctx);
    dialog.show();
    QCOMPARE(Child<DirListBox>(&dialog, "Dir1")->Path(), l.Folder());
    Pick(Child<FileListBox>(&dialog, "File1"), "app.hex");
    QCOMPARE(Child<QLineEdit>(&dialog, "Text1")->text(), QStringLiteral("app.hex"));
    auto* first = Child<QLineEdit>(&dialog, "Text4");
    first->clear();
    TypeInto(first, "1001g");
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);

    QCOMPARE(l.w.platform.Texts(), std::vector<std::string>{"Load Complete!"});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(l.w.m.frmsumtool.Text1, std::string("app.hex"));
    QVERIFY(l.w.m.frmsumtool.List1.empty());
    QCOMPARE(int(l.w.m.Buffer[0x1000]), 0xFF);
    QCOMPARE(int(l.w.m.Buffer[0x1001]), 2);
    QCOMPARE(l.w.settings.store.Read(kAddress, "LoadFirst", ""), std::string("00001001"));
    QCOMPARE(l.w.settings.store.Read(kAddress, "LoadLast", ""), std::string("0007FFFF"));
    QCOMPARE(l.w.settings.store.Read(kFilePath, "LoadDir", ""), LoadWorld::S(l.Folder()));
    QCOMPARE(l.w.settings.store.Read(kFilePath, "LoadDrive", ""),
             LoadWorld::S(Child<forms::DriveListBox>(&dialog, "Drive1")->Drive()));
  }

  void offsetFieldFollowsTheTickAndItsFilter() {
    LoadWorld l;
    l.StoreFolder();
    forms::frmload dialog(l.w.ctx);
    dialog.show();
    auto* offset = Child<QLineEdit>(&dialog, "Text2");
    auto* tick = Child<QCheckBox>(&dialog, "Check1");
    QTest::mouseClick(tick, Qt::LeftButton, {}, QPoint(4, tick->height() / 2));
    QVERIFY(!offset->isHidden());
    offset->clear();
    TypeInto(offset, "-1000x");
    QCOMPARE(offset->text(), QStringLiteral("-1000"));
    Pick(Child<FileListBox>(&dialog, "File1"), "app.hex");
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);
    QCOMPARE(l.w.m.LoadOffset, Address{-0x1000});
    QCOMPARE(int(l.w.m.Buffer[0]), 1);
  }

  void refusalKeepsTheDialogOpenAndCancelStoresNothing() {
    LoadWorld l;
    forms::frmload dialog(l.w.ctx);
    dialog.show();
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);
    QCOMPARE(l.w.platform.Texts(), std::vector<std::string>{"Select File Name!"});
    QVERIFY(dialog.isVisible());
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command2"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(l.w.settings.store.Read(kAddress, "LoadFirst", "").empty());
  }

  void storedFolderThatIsGoneLeavesTheList() {
    LoadWorld l;
    l.StoreFolder();
    l.w.settings.store.Write(kFilePath, "LoadDir", LoadWorld::S(l.Folder()) + "/gone");
    forms::frmload dialog(l.w.ctx);
    QVERIFY(Child<DirListBox>(&dialog, "Dir1")->Path() != l.Folder() + "/gone");
    QVERIFY(l.w.platform.messages.empty());
  }
};

QTEST_MAIN(TestFrmLoad)
#include "test_frmload.moc"
