// A working session as a person has it, through the real widgets and real
// message boxes: set the buffer area, load a HEX file with an offset, dump
// and step, Block Store with the wrap, Buffer SUM, save a pair over files
// that exist, clear, drop the saved file back on the window, sum again,
// exit and start again.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QScopeGuard>
#include <QTimer>
#include <QUrl>

#include "GuiSupport.h"
#include "forms/FileLists.h"
#include "forms/frmbufaddr.h"
#include "forms/frmload.h"
#include "forms/frmsave.h"
#include "forms/frmstore.h"
#include "forms/frmsum.h"
#include "forms/frmsumtool.h"
#include "writing/Writers.h"

using namespace kestrum;
using namespace kestrum::test;

namespace {

const QString kNotice = QStringLiteral("Kestrum");  // the title of a box without one of its own

// The bytes of app.hex, at 0000..00FF in the file.
std::uint8_t Pattern(Address i) { return static_cast<std::uint8_t>(i * 7 + 3); }

QString Hex(unsigned value, int digits) { return QStringLiteral("%1").arg(value, digits, 16, QLatin1Char('0')).toUpper(); }

// What a dump row shows: address, two blanks, the bytes.
QString Row(Address address, const std::function<std::uint8_t(Address)>& byte) {
  QString row = Hex(static_cast<unsigned>(address), 8) + QStringLiteral("  ");
  for (Address a = address; a < address + 16; ++a) row += Hex(byte(a), 2);
  return row;
}

// The three sums worked out here, byte by byte, as the SUM dialog shows them.
QStringList ReferenceSums(const Module1& m, Address first, Address last) {
  unsigned bytes = 0;
  unsigned words = 0;
  for (Address a = first; a <= last; ++a) {
    bytes += m.At(a);
    words += a % 2 == 0 ? m.At(a) * 256u : m.At(a);
  }
  return {Hex(bytes & 0xFF, 2), Hex(bytes & 0xFFFF, 4), Hex(words & 0xFFFF, 4)};
}

// Replaces a field's text key by key: End, Backspace, then the new text.
void Retype(QLineEdit* edit, const QString& text) {
  edit->setFocus();
  QTest::keyClick(edit, Qt::Key_End);
  for (qsizetype n = edit->text().size(); n > 0; --n) QTest::keyClick(edit, Qt::Key_Backspace);
  TypeInto(edit, text);
}

void Click(QWidget* window, const char* button) { QTest::mouseClick(Child<QPushButton>(window, button), Qt::LeftButton); }

// Picks a name in a file list with the mouse.
void PickWithMouse(QListWidget* files, const QString& name) {
  const auto found = files->findItems(name, Qt::MatchExactly);
  QVERIFY2(!found.isEmpty(), qPrintable(name));
  QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualItemRect(found.front()).center());
}

// Opens a menu of the menu bar with its Alt key and gives it, its first
// item highlighted, as after a press of Alt and the letter.
QMenu* OpenMenu(QMainWindow* window, Qt::Key letter) {
  window->activateWindow();
  if (!QTest::qWaitForWindowActive(window)) return nullptr;
  QTest::keyClick(window, letter, Qt::AltModifier);
  if (!QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; })) return nullptr;
  return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

QStringList SumTexts(QWidget* dialog) {
  return {Child<QLineEdit>(dialog, "Text1")->text(), Child<QLineEdit>(dialog, "Text2")->text(),
          Child<QLineEdit>(dialog, "Text3")->text()};
}

}  // namespace

class TestE2eSession : public QObject {
  Q_OBJECT
 private slots:
  void aSessionFromFirstStartToTheNext() {
    TempSettings settings;
    QTemporaryDir folder;
    const QString dir = QDir::toNativeSeparators(folder.path());
    const auto path = [&](const char* name) { return std::filesystem::path(folder.path().toStdString()) / name; };
    // The program starts in the project's folder, where the lists open.
    const QString started = QDir::currentPath();
    QDir::setCurrent(folder.path());
    const auto back = qScopeGuard([&] { QDir::setCurrent(started); });
    {
      Module1 source = MakeImage(0, 0xFF);
      for (Address i = 0; i <= 0xFF; ++i) source.At(i) = Pattern(i);
      source.SaveFirst = 0;
      source.SaveLast = 0xFF;
      source.RecordLength = 0x10;
      ScriptedPlatform quiet;
      SaveHexFile(source, quiet, path("app.hex").string());
    }
    WriteFile(path("fw.HEX"), "old hex");
    WriteFile(path("fw.YSM"), "old ysm");

    Module1 m;
    forms::QtPlatform platform;
    forms::AppContext ctx{m, platform, settings.store};
    forms::frmsumtool window(ctx);
    window.show();
    window.activateWindow();  // Xvfb has no window manager to do it
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(window.windowTitle(), QStringLiteral("Kestrum"));
    const struct {
      const char* name;
      const char* text;
      bool enabled;
    } controls[] = {{"cmdload", "File Load", true},       {"cmdsave", "File Save", true},
                    {"cmdbufclear", "Buffer Clear", true}, {"cmdblstore", "Block Store", true},
                    {"cmdbufsum", "Buffer SUM", true},     {"cmdedit", "Dump", true},
                    {"cmdeditplus", "+", false},           {"cmdeditminus", "-", false},
                    {"txtbuffaddr", "00000000", false},    {"txtbufladdr", "0007FFFF", false},
                    {"txteditaddr", "00000000", true},     {"Text1", "", false}};
    for (const auto& c : controls) {
      auto* control = Child<QWidget>(&window, c.name);
      QCOMPARE(control->property("text").toString(), QString::fromLatin1(c.text));
      QVERIFY2(control->isEnabled() == c.enabled, c.name);
    }
    const std::pair<const char*, const char*> actions[] = {
        {"mnuload", "Load"}, {"mnusave", "Save"}, {"mnuexit", "Exit"}, {"mnubufaddr", "Buffer Address"}};
    for (const auto& [name, caption] : actions) QCOMPARE(Child<QAction>(&window, name)->text(), QString::fromLatin1(caption));
    auto* list = Child<QListWidget>(&window, "List1");
    auto* editaddr = Child<QLineEdit>(&window, "txteditaddr");
    ModalScript script;

    // Set Up, Buffer Address: both fields empty first, then 10000 to 1FFFF.
    script
        .Dialog<forms::frmbufaddr>([](forms::frmbufaddr* d) {
          QCOMPARE(d->windowTitle(), QStringLiteral("Set Buffer Address"));
          PressKey(d, Qt::Key_Return);
          TypeInto(Child<QLineEdit>(d, "Text1"), QStringLiteral("10000"));
          TypeInto(Child<QLineEdit>(d, "Text2"), QStringLiteral("1ffff"));
          PressKey(d, Qt::Key_Return);
        })
        .Message(QStringLiteral("FirstAddress Error!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] {
      QMenu* setup = OpenMenu(&window, Qt::Key_S);
      QVERIFY(setup);
      QCOMPARE(setup->title(), QStringLiteral("Set Up(&S)"));
      QCOMPARE(setup->activeAction()->text(), QStringLiteral("Buffer Address"));
      QTest::keyClick(setup, Qt::Key_Return);
    });
    QCOMPARE(Child<QLineEdit>(&window, "txtbuffaddr")->text(), QStringLiteral("00010000"));
    QCOMPARE(Child<QLineEdit>(&window, "txtbufladdr")->text(), QStringLiteral("0001FFFF"));
    QCOMPARE(editaddr->text(), QStringLiteral("00010000"));
    QCOMPARE(m.BufSize, Address{0x10000});

    // File Load: Load before a file is picked, then app.hex with the offset 10010.
    script
        .Dialog<forms::frmload>([&](forms::frmload* d) {
          QCOMPARE(Child<forms::DirListBox>(d, "Dir1")->Path(), dir);
          Child<QLineEdit>(d, "Text4")->setFocus();
          PressKey(d, Qt::Key_Return);
          PickWithMouse(Child<QListWidget>(d, "File1"), QStringLiteral("app.hex"));
          QCOMPARE(Child<QLineEdit>(d, "Text1")->text(), QStringLiteral("app.hex"));
          auto* tick = Child<QCheckBox>(d, "Check1");
          auto* offset = Child<QLineEdit>(d, "Text2");
          QVERIFY(offset->isHidden());
          tick->setFocus();
          QTest::keyClick(tick, Qt::Key_Space);
          QVERIFY(offset->isVisible());
          Retype(offset, QStringLiteral("10010"));
          PressKey(d, Qt::Key_Return);
        })
        .Message(QStringLiteral("Select File Name!"), QMessageBox::NoIcon, kNotice)
        .Message(QStringLiteral("Load Complete!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] { Click(&window, "cmdload"); });
    QCOMPARE(Child<QLineEdit>(&window, "Text1")->text(), QStringLiteral("app.hex"));
    const auto loaded = [](Address a) { return a >= 0x10010 && a <= 0x1010F ? Pattern(a - 0x10010) : std::uint8_t{0xFF}; };
    for (Address a = 0x10000; a <= 0x1FFFF; ++a) QCOMPARE(m.At(a), loaded(a));

    // Dump from 10010, + once, - three times: the page stops at the area's start.
    Retype(editaddr, QStringLiteral("1g0z01x0"));  // through the filter
    QCOMPARE(editaddr->text(), QStringLiteral("10010"));
    Click(&window, "cmdedit");
    QCOMPARE(list->count(), 7);
    for (int i = 0; i < 7; ++i) QCOMPARE(list->item(i)->text(), Row(0x10010 + 16 * i, loaded));
    Click(&window, "cmdeditplus");
    QCOMPARE(editaddr->text(), QStringLiteral("00010020"));
    QCOMPARE(list->item(0)->text(), Row(0x10020, loaded));
    for (int i = 0; i < 3; ++i) Click(&window, "cmdeditminus");
    QCOMPARE(editaddr->text(), QStringLiteral("00010000"));
    QCOMPARE(list->item(0)->text(), Row(0x10000, loaded));
    QCOMPARE(list->item(1)->text(), Row(0x10010, loaded));
    // An address outside the area is refused and the page stays.
    Retype(editaddr, QStringLiteral("20000"));
    script.Message(QStringLiteral("Dump Address Error!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] { Click(&window, "cmdedit"); });
    QCOMPARE(list->item(0)->text(), Row(0x10000, loaded));

    // Block Store from 1FFF0 round the end to 1000F with 5A.
    script
        .Dialog<forms::frmstore>([](forms::frmstore* d) {
          Retype(Child<QLineEdit>(d, "Text1"), QStringLiteral("1fff0"));
          Retype(Child<QLineEdit>(d, "Text2"), QStringLiteral("1000f"));
          Retype(Child<QLineEdit>(d, "Text3"), QStringLiteral("5a"));
          PressKey(d, Qt::Key_Return);
        })
        .Message(QStringLiteral("Block Store Complete!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] { Click(&window, "cmdblstore"); });
    const auto stored = [&](Address a) { return a >= 0x1FFF0 || a <= 0x1000F ? std::uint8_t{0x5A} : loaded(a); };
    for (Address a = 0x10000; a <= 0x1FFFF; ++a) QCOMPARE(m.At(a), stored(a));
    QCOMPARE(list->count(), 0);
    QVERIFY(!Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QVERIFY(!Child<QPushButton>(&window, "cmdeditminus")->isEnabled());

    // Buffer SUM over the whole area; Esc is Close.
    const QStringList sums = ReferenceSums(m, 0x10000, 0x1FFFF);
    // Calculate with Enter, read the three results, Close with Esc.
    auto sumsShown = [&] {
      QStringList shown;
      script.Dialog<forms::frmsum>([&](forms::frmsum* d) {
        PressKey(d, Qt::Key_Return);
        shown = SumTexts(d);
        PressKey(d, Qt::Key_Escape);
      });
      script.Run([&] { Click(&window, "cmdbufsum"); });
      return shown;
    };
    QCOMPARE(sumsShown(), sums);

    // File Save: HEX and YSM as "fw", over fw.HEX and fw.YSM: Yes then No
    // leaves both files; Save again with Yes twice writes both.
    script
        .Dialog<forms::frmsave>([&](forms::frmsave* d) {
          QCOMPARE(Child<forms::DirListBox>(d, "Dir2")->Path(), dir);
          QCOMPARE(Child<forms::FileListBox>(d, "File2")->ListCount(), 3);
          auto* type = Child<QComboBox>(d, "Combo1");
          auto* format = Child<QComboBox>(d, "Combo2");
          auto* sum = Child<QComboBox>(d, "Combo3");
          auto* length = Child<QLineEdit>(d, "Text4");
          QVERIFY(!sum->isEnabled() && !length->isEnabled());
          type->setFocus();
          QTest::keyClick(type, Qt::Key_Down);
          QTest::keyClick(type, Qt::Key_Down);
          QCOMPARE(type->currentText(), QStringLiteral("Object and YSM File"));
          QVERIFY(sum->isEnabled());
          format->setFocus();
          QTest::keyClick(format, Qt::Key_Down);
          QCOMPARE(format->currentText(), QStringLiteral("HEX"));
          QVERIFY(length->isEnabled());
          Retype(length, QStringLiteral("20"));
          sum->setFocus();
          QTest::keyClick(sum, Qt::Key_Down);
          QTest::keyClick(sum, Qt::Key_Down);
          QCOMPARE(sum->currentText(), QStringLiteral("16-16SUM"));
          TypeInto(Child<QLineEdit>(d, "Text5"), QStringLiteral("fw"));
          PressKey(d, Qt::Key_Return);
          QVERIFY(d->isVisible());
          QCOMPARE(Child<QLineEdit>(d, "Text5")->text(), QStringLiteral("fw.HEX"));
          QCOMPARE(ReadFile(path("fw.HEX")), std::string("old hex"));
          QCOMPARE(ReadFile(path("fw.YSM")), std::string("old ysm"));
          PressKey(d, Qt::Key_Return);
        })
        .Message(QStringLiteral("fw.HEX File Over Write?"), QMessageBox::Warning, QStringLiteral("Save"))
        .Message(QStringLiteral("fw.YSM File Over Write?"), QMessageBox::Warning, QStringLiteral("Save"),
                 Qt::Key_Escape)
        .Message(QStringLiteral("fw.HEX File Over Write?"), QMessageBox::Warning, QStringLiteral("Save"))
        .Message(QStringLiteral("fw.YSM File Over Write?"), QMessageBox::Warning, QStringLiteral("Save"))
        .Message(QStringLiteral("HEX and YSM File Save Complete!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] { Click(&window, "cmdsave"); });
    // The sum file carries the 16-16 sum the SUM dialog showed.
    const std::string ysm = ReadFile(path("fw.YSM"));
    QCOMPARE(QString::fromStdString(ysm.substr(0, 16)), QStringLiteral("S30700000000") + sums[2]);
    QVERIFY(ReadFile(path("fw.HEX")).find("\r\n:20") != std::string::npos);  // records of 32 bytes

    // Buffer Clear, answered Yes.
    script.Message(QStringLiteral("Buffer Clear OK?"), QMessageBox::Question, QStringLiteral("BufferClear"))
        .Message(QStringLiteral("Buffer Clear Complete!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] { Click(&window, "cmdbufclear"); });
    QVERIFY(Child<QLineEdit>(&window, "Text1")->text().isEmpty());
    QCOMPARE(m.At(0x10010), std::uint8_t{0xFF});

    // fw.HEX dropped on the window opens File Load with it picked; the sums
    // come back.
    script
        .Dialog<forms::frmload>([&](forms::frmload* d) {
          QCOMPARE(Child<forms::DirListBox>(d, "Dir1")->Path(), dir);
          QCOMPARE(Child<forms::FileListBox>(d, "File1")->FileName(), QStringLiteral("fw.HEX"));
          QCOMPARE(Child<QLineEdit>(d, "Text1")->text(), QStringLiteral("fw.HEX"));
          PressKey(d, Qt::Key_Return);
        })
        .Message(QStringLiteral("Load Complete!"), QMessageBox::NoIcon, kNotice);
    script.Run([&] {
      QMimeData data;
      data.setUrls({QUrl::fromLocalFile(folder.filePath(QStringLiteral("fw.HEX")))});
      const QPoint at = list->mapTo(&window, list->rect().center());
      QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(&window, &enter);
      QVERIFY(enter.isAccepted());
      QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(&window, &drop);
      QVERIFY(drop.isAccepted());
    });
    QCOMPARE(Child<QLineEdit>(&window, "Text1")->text(), QStringLiteral("fw.HEX"));
    for (Address a = 0x10000; a <= 0x1FFFF; ++a) QCOMPARE(m.At(a), stored(a));
    QCOMPARE(sumsShown(), sums);

    // File, Exit, from the program's main loop: it ends the loop with status
    // 0 and the area goes to the store.
    QTimer giveUp;
    giveUp.setSingleShot(true);
    connect(&giveUp, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    giveUp.start(10000);
    QTimer::singleShot(0, &window, [&] {
      QMenu* file = OpenMenu(&window, Qt::Key_F);
      QVERIFY(file);
      QCOMPARE(file->title(), QStringLiteral("File(&F)"));
      QTest::keyClick(file, Qt::Key_Down);
      QTest::keyClick(file, Qt::Key_Down);
      QCOMPARE(file->activeAction()->text(), QStringLiteral("Exit"));
      QTest::keyClick(file, Qt::Key_Return);
    });
    const int status = QCoreApplication::exec();
    giveUp.stop();
    QCOMPARE(status, 0);
    QVERIFY(!window.isVisible());
    QCOMPARE(settings.store.Read(kAddress, "BufFirst", ""), std::string("00010000"));
    QCOMPARE(settings.store.Read(kAddress, "BufLast", ""), std::string("0001FFFF"));
    const std::string drive = forms::DriveOfPath(dir, forms::DriveRoots()).toStdString();
    QVERIFY(!drive.empty());
    for (const char* key : {"LoadDrive", "SaveDrive"}) QCOMPARE(settings.store.Read(kFilePath, key, ""), drive);

    // The next start: the stored area, and each dialog with what was kept.
    Module1 next;
    forms::AppContext nextCtx{next, platform, settings.store};
    forms::frmsumtool again(nextCtx);
    again.show();
    QVERIFY(QTest::qWaitForWindowExposed(&again));
    QCOMPARE(Child<QLineEdit>(&again, "txtbuffaddr")->text(), QStringLiteral("00010000"));
    QCOMPARE(Child<QLineEdit>(&again, "txtbufladdr")->text(), QStringLiteral("0001FFFF"));
    QCOMPARE(Child<QLineEdit>(&again, "txteditaddr")->text(), QStringLiteral("00010000"));
    QCOMPARE(next.BufSize, Address{0x10000});
    QStringList kept;
    script
        .Dialog<forms::frmload>([&](forms::frmload* d) {
          kept << Child<QLineEdit>(d, "Text4")->text() << Child<QLineEdit>(d, "Text3")->text()
               << Child<forms::DirListBox>(d, "Dir1")->Path();
          PressKey(d, Qt::Key_Escape);
        })
        .Dialog<forms::frmsave>([&](forms::frmsave* d) {
          kept << Child<QComboBox>(d, "Combo1")->currentText() << Child<QComboBox>(d, "Combo2")->currentText()
               << Child<QComboBox>(d, "Combo3")->currentText() << Child<QLineEdit>(d, "Text4")->text()
               << Child<QLineEdit>(d, "Text5")->text() << Child<forms::DirListBox>(d, "Dir2")->Path();
          PressKey(d, Qt::Key_Escape);
        })
        .Dialog<forms::frmstore>([&](forms::frmstore* d) {
          kept << Child<QLineEdit>(d, "Text1")->text() << Child<QLineEdit>(d, "Text2")->text()
               << Child<QLineEdit>(d, "Text3")->text();
          PressKey(d, Qt::Key_Escape);
        });
    script.Run([&] {
      Click(&again, "cmdload");
      Click(&again, "cmdsave");
      Click(&again, "cmdblstore");
    });
    QCOMPARE(kept, (QStringList{"00010000", "0001FFFF", dir, "Object and YSM File", "HEX", "16-16SUM", "20", "", dir,
                                "0001FFF0", "0001000F", "5A"}));
    // Closing the window, not only Exit, puts its area in the store.
    settings.store.Write(kAddress, "BufFirst", "");
    again.close();
    QCOMPARE(settings.store.Read(kAddress, "BufFirst", ""), std::string("00010000"));
  }
};

QTEST_MAIN(TestE2eSession)
#include "test_e2e_session.moc"
