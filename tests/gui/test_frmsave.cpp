#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QPushButton>
#include <cstring>

#include "GuiSupport.h"
#include "forms/FileLists.h"
#include "forms/frmsave.h"
#include "writing/Writers.h"

using namespace kestrum;
using namespace kestrum::test;
using forms::DirListBox;
using forms::FileListBox;

namespace {

std::string S(const QString& s) { return s.toStdString(); }

// A world with an image that is not all FF and an empty folder to save into.
struct SaveWorld {
  GuiWorld w;
  QTemporaryDir folder;
  SaveWorld() {
    w.m = MakeImage();
    for (Address a = 0; a < 0x200; ++a) w.m.At(a) = static_cast<std::uint8_t>(a * 3);
  }
  QString Folder() const { return QDir::toNativeSeparators(folder.path()); }
  std::filesystem::path Path(const char* name) const { return std::filesystem::path(S(folder.path())) / name; }
  // Keeps the folder in the store as a completed save would.
  void StoreFolder() {
    w.settings.store.Write(kFilePath, "SaveDrive", S(forms::DriveOfPath(Folder(), forms::DriveRoots())));
    w.settings.store.Write(kFilePath, "SaveDir", S(Folder()));
  }
  std::string Stored(const char* section, const char* key) { return w.settings.store.Read(section, key, ""); }
};

// Picks an item of a drop-down list as the user does.
void Choose(QComboBox* combo, const char* text) {
  const int index = combo->findText(QString::fromLatin1(text));
  QVERIFY(index >= 0);
  combo->setCurrentIndex(index);
  emit combo->activated(index);
}

void Pick(FileListBox* files, const QString& name) {
  const auto found = files->findItems(name, Qt::MatchExactly);
  QVERIFY(!found.isEmpty());
  files->show();
  QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualItemRect(found.front()).center());
}

}  // namespace

class TestFrmSave : public QObject {
  Q_OBJECT
 private slots:
  void firstOpeningShowsTheDefaults() {
    SaveWorld s;
    s.w.m.frmsumtool.txtbuffaddr = "00001000";
    s.w.m.frmsumtool.txtbufladdr = "0003FFFF";
    forms::frmsave dialog(s.w.ctx);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("File Save"));
    QCOMPARE(Child<QGroupBox>(&dialog, "Frame1")->title(), QStringLiteral("File Name"));
    QCOMPARE(Child<QGroupBox>(&dialog, "Frame2")->title(), QStringLiteral("File Format"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text7")->text(), QStringLiteral("00001000"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text6")->text(), QStringLiteral("0003FFFF"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text4")->text(), QStringLiteral("10"));
    QVERIFY(Child<QLineEdit>(&dialog, "Text5")->text().isEmpty());
    QCOMPARE(Child<QComboBox>(&dialog, "Combo1")->currentText(), QStringLiteral("Object File Only"));
    QCOMPARE(Child<QComboBox>(&dialog, "Combo2")->currentText(), QStringLiteral("BIN"));
    QCOMPARE(Child<QComboBox>(&dialog, "Combo3")->currentText(), QStringLiteral("8-8SUM"));
    QVERIFY(Child<QComboBox>(&dialog, "Combo2")->isEnabled());
    QVERIFY(!Child<QComboBox>(&dialog, "Combo3")->isEnabled());
    QVERIFY(!Child<QLineEdit>(&dialog, "Text4")->isEnabled());
    QCOMPARE(Child<QPushButton>(&dialog, "Command5")->text(), QStringLiteral("Save"));
    QVERIFY(Child<QPushButton>(&dialog, "Command5")->isDefault());
    QCOMPARE(Child<QPushButton>(&dialog, "Command2")->text(), QStringLiteral("Cancel"));
    QCOMPARE(Child<FileListBox>(&dialog, "File2")->Path(), Child<DirListBox>(&dialog, "Dir2")->Path());
    Child<forms::DriveListBox>(&dialog, "Drive2");
  }

  void savesAPairAndKeepsTheSettings() {
    SaveWorld s;
    s.StoreFolder();
    forms::frmsave dialog(s.w.ctx);
    dialog.show();
    QCOMPARE(Child<DirListBox>(&dialog, "Dir2")->Path(), s.Folder());
    TypeInto(Child<QLineEdit>(&dialog, "Text5"), "fw");
    Choose(Child<QComboBox>(&dialog, "Combo1"), "Object and YSM File");
    QVERIFY(Child<QComboBox>(&dialog, "Combo3")->isEnabled());
    Choose(Child<QComboBox>(&dialog, "Combo2"), "HEX");
    auto* length = Child<QLineEdit>(&dialog, "Text4");
    QVERIFY(length->isEnabled());
    length->clear();
    TypeInto(length, "2g0h1");
    QCOMPARE(length->text(), QStringLiteral("20"));
    Choose(Child<QComboBox>(&dialog, "Combo3"), "16-16SUM");
    auto* last = Child<QLineEdit>(&dialog, "Text6");
    last->clear();
    TypeInto(last, "1ff");
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command5"), Qt::LeftButton);

    QCOMPARE(s.w.platform.Texts(), std::vector<std::string>{"HEX and YSM File Save Complete!"});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(s.w.platform.pointer, vbDefault);
    // The files are the writers' own for that range.
    Module1 m = MakeImage();
    std::memcpy(m.Buffer.data(), s.w.m.Buffer.data(), 0x200);
    m.SaveFirst = 0;
    m.SaveLast = 0x1FF;
    m.RecordLength = 0x20;
    ScriptedPlatform quiet;
    SaveHexFile(m, quiet, s.Path("expected.HEX").string());
    SaveYsmFile(m, quiet, s.Path("expected.YSM").string(), "16-16SUM");
    QVERIFY(ReadFile(s.Path("fw.HEX")) == ReadFile(s.Path("expected.HEX")));
    QVERIFY(ReadFile(s.Path("fw.YSM")) == ReadFile(s.Path("expected.YSM")));
    QCOMPARE(s.Stored(kAddress, "SaveFirst"), std::string("00000000"));
    QCOMPARE(s.Stored(kAddress, "SaveLast"), std::string("000001FF"));
    QCOMPARE(s.Stored(kAddress, "RecordLength"), std::string("20"));
    QCOMPARE(s.Stored(kFormat, "FileType"), std::string("Object and YSM File"));
    QCOMPARE(s.Stored(kFormat, "ObjectFileFormat"), std::string("HEX"));
    QCOMPARE(s.Stored(kFormat, "YSMFileFormat"), std::string("16-16SUM"));
    QCOMPARE(s.Stored(kFilePath, "SaveDir"), S(s.Folder()));

    // The next opening shows what was stored, with an empty name.
    forms::frmsave again(s.w.ctx);
    QCOMPARE(Child<QComboBox>(&again, "Combo2")->currentText(), QStringLiteral("HEX"));
    QCOMPARE(Child<QLineEdit>(&again, "Text6")->text(), QStringLiteral("000001FF"));
    QVERIFY(Child<QLineEdit>(&again, "Text5")->text().isEmpty());
    QVERIFY(Child<QLineEdit>(&again, "Text4")->isEnabled());
  }

  void aListedFileAnsweredNoKeepsTheDialogOpen() {
    SaveWorld s;
    WriteFile(s.Path("fw.BIN"), "old");
    s.StoreFolder();
    forms::frmsave dialog(s.w.ctx);
    dialog.show();
    Pick(Child<FileListBox>(&dialog, "File2"), "fw.BIN");
    QCOMPARE(Child<QLineEdit>(&dialog, "Text5")->text(), QStringLiteral("fw.BIN"));
    s.w.platform.answers = {vbNo};
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command5"), Qt::LeftButton);
    QCOMPARE(s.w.platform.messages, (std::vector<Message>{{"Over Write?", vbExclamationYesNo, "Save"}}));
    QVERIFY(dialog.isVisible());
    QCOMPARE(ReadFile(s.Path("fw.BIN")), std::string("old"));
    QVERIFY(Child<QPushButton>(&dialog, "Command5")->isEnabled());
    QVERIFY(Child<QPushButton>(&dialog, "Command2")->isEnabled());
    QVERIFY(s.Stored(kAddress, "SaveFirst").empty());

    // Yes replaces it whole with the range.
    s.w.platform.answers = {vbYes};
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command5"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(ReadFile(s.Path("fw.BIN")).size(), std::size_t{0x80000});
  }

  void cancelAfterARefusalStoresNothing() {
    SaveWorld s;
    s.w.settings.store.Write(kFormat, "FileType", "Nonsense");
    forms::frmsave dialog(s.w.ctx);
    dialog.show();
    QCOMPARE(Child<QComboBox>(&dialog, "Combo1")->currentIndex(), -1);
    QVERIFY(Child<QComboBox>(&dialog, "Combo2")->isEnabled());
    QVERIFY(Child<QComboBox>(&dialog, "Combo3")->isEnabled());
    TypeInto(Child<QLineEdit>(&dialog, "Text5"), "fw");
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command5"), Qt::LeftButton);
    QCOMPARE(s.w.platform.Texts(), std::vector<std::string>{"File Type Error!"});
    QVERIFY(dialog.isVisible());
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command2"), Qt::LeftButton);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(s.Stored(kAddress, "SaveFirst").empty());
    QCOMPARE(s.Stored(kFormat, "FileType"), std::string("Nonsense"));
  }

  void aFailedWriteIsNamedAndTheDialogStays() {
    SaveWorld s;
    s.StoreFolder();
    forms::frmsave dialog(s.w.ctx);
    dialog.show();
    TypeInto(Child<QLineEdit>(&dialog, "Text5"), QString(300, QLatin1Char('n')));
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command5"), Qt::LeftButton);
    QCOMPARE(s.w.platform.messages.size(), std::size_t{1});
    QVERIFY(s.w.platform.messages[0].text.find("File name too long") != std::string::npos);
    QVERIFY(dialog.isVisible());
    QCOMPARE(s.w.platform.pointer, vbDefault);
    QVERIFY(Child<QPushButton>(&dialog, "Command5")->isEnabled());
    QVERIFY(QDir(s.folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
  }
};

QTEST_MAIN(TestFrmSave)
#include "test_frmsave.moc"
