// A working session as a person has it, through the real widgets and real
// message boxes answered by key: every dialog opened from the main window,
// set the buffer area, load a HEX file with an offset, dump and step, Block
// Store with the wrap, Buffer SUM, save a pair over files that exist, clear,
// drop the saved file back on the window, sum again, exit and start again.
#include "GuiSupport.h"

using namespace kestrum;
using namespace kestrum::test;

namespace {

// What a control shows: its text, a drop-down list's pick, a folder list's folder.
QString Text(QWidget* window, const char* name) {
  auto* w = Child(window, name);
  if (auto* list = qobject_cast<QComboBox*>(w)) return list->currentText();
  if (auto* dirs = qobject_cast<forms::DirListBox*>(w)) return dirs->Path();
  return w->property("text").toString();
}

// Replaces a field's text key by key (End, Backspace, the new text), through whatever filter it has.
void Type(QWidget* window, const char* name, const char* text) {
  auto* edit = Child<QLineEdit>(window, name);
  edit->setFocus();
  QTest::keyClick(edit, Qt::Key_End);
  for (qsizetype n = edit->text().size(); n > 0; --n) QTest::keyClick(edit, Qt::Key_Backspace);
  QTest::keyClicks(edit, QString::fromLatin1(text));
}

// Types each text into its field, then presses Enter.
void Fill(QWidget* dialog, std::initializer_list<std::pair<const char*, const char*>> fields) {
  for (const auto& [name, text] : fields) Type(dialog, name, text);
  PressKey(dialog, Qt::Key_Return);
}

void Click(QWidget* window, const char* name) { QTest::mouseClick(Child<QPushButton>(window, name), Qt::LeftButton); }

// Opens a menu of the menu bar with its Alt key, goes down steps items and presses Enter (a wrong item opens the
// wrong window, or none).
void OpenMenuItem(QMainWindow* window, Qt::Key letter, int steps) {
  window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(window));
  QTest::keyClick(window, letter, Qt::AltModifier);
  QTRY_VERIFY(qobject_cast<QMenu*>(QApplication::activePopupWidget()));
  for (int i = 0; i < steps; ++i) QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
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
    // 32 bytes 03, 0A, 11, ... (7 apart) at 0000.
    WriteFile(path("app.hex"), ":10000000030A11181F262D343B424950575E656C78\r\n"
                               ":10001000737A81888F969DA4ABB2B9C0C7CED5DC68\r\n:00000001FF\r\n");
    for (const char* name : {"fw.HEX", "fw.YSM"}) WriteFile(path(name), name);

    Module1 m;
    forms::QtPlatform platform;
    forms::AppContext ctx{m, platform, settings.store};
    forms::frmsumtool window(ctx);
    window.show();
    window.activateWindow();  // Xvfb has no window manager to do it
    QVERIFY(QTest::qWaitForWindowActive(&window));
    // The step buttons, the area and the loaded file's name show but take no input (their texts: test_forms).
    for (const char* name : {"cmdeditplus", "cmdeditminus", "txtbuffaddr", "txtbufladdr", "Text1"})
      QVERIFY2(!Child(&window, name)->isEnabled(), name);
    auto* list = Child<QListWidget>(&window, "List1");
    ModalScript script;
    QStringList kept;  // what dialogs show as they are closed with Esc
    const auto keep = [&](QWidget* d, std::initializer_list<const char*> names) {
      for (const char* name : names) kept << Text(d, name);
      PressKey(d, Qt::Key_Escape);
    };

    // Help, Version; Set Up, Buffer Address 10000 to 1FFFF.
    script.Dialog<forms::frmversion>([](auto* d) { PressKey(d, Qt::Key_Escape); });
    script.Run([&] { OpenMenuItem(&window, Qt::Key_H, 0); });
    script.Dialog<forms::frmbufaddr>([](forms::frmbufaddr* d) { Fill(d, {{"Text1", "10000"}, {"Text2", "1ffff"}}); });
    script.Run([&] { OpenMenuItem(&window, Qt::Key_S, 0); });
    QCOMPARE(Text(&window, "txtbuffaddr") + Text(&window, "txtbufladdr"), QStringLiteral("000100000001FFFF"));

    // File Load: app.hex picked with the mouse, with the offset 10010.
    script.Dialog<forms::frmload>([&](forms::frmload* d) {
      auto* files = Child<QListWidget>(d, "File1");
      QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualItemRect(files->item(0)).center());
      QTest::keyClick(Child(d, "Check1"), Qt::Key_Space);
      Fill(d, {{"Text2", "10010"}});
    }).Message("Load Complete!");
    script.Run([&] { Click(&window, "cmdload"); });
    QCOMPARE(Text(&window, "Text1"), QStringLiteral("app.hex"));

    // Dump from 10010 typed through the filter, + once, - three times: the page stops at the area's start.
    Type(&window, "txteditaddr", "1g0z01x0");
    Click(&window, "cmdedit");
    QCOMPARE(list->item(0)->text(), QStringLiteral("00010010  030A11181F262D343B424950575E656C"));
    Click(&window, "cmdeditplus");
    QCOMPARE(Text(&window, "txteditaddr"), QStringLiteral("00010020"));
    for (int i = 0; i < 3; ++i) Click(&window, "cmdeditminus");
    QCOMPARE(Text(&window, "txteditaddr"), QStringLiteral("00010000"));
    QCOMPARE(list->item(1)->text(), QStringLiteral("00010010  030A11181F262D343B424950575E656C"));

    // Block Store from 1FFF0 round the end to 1000F with 5A: the dump goes.
    script.Dialog<forms::frmstore>([](auto* d) { Fill(d, {{"Text1", "1fff0"}, {"Text2", "1000f"}, {"Text3", "5a"}}); })
        .Message("Block Store Complete!");
    script.Run([&] { Click(&window, "cmdblstore"); });
    QCOMPARE(list->count(), 0);

    // Buffer SUM over the whole area (the loaded bytes, the stored ones either
    // side of the wrap, FF elsewhere): Calculate with Enter, Close with Esc.
    const auto sumsShown = [&] {
      kept.clear();
      script.Dialog<forms::frmsum>([&](auto* d) { PressKey(d, Qt::Key_Return), keep(d, {"Text1", "Text2", "Text3"}); });
      script.Run([&] { Click(&window, "cmdbufsum"); });
      return kept.join(' ');
    };
    QCOMPARE(sumsShown(), QStringLiteral("70 D970 ECF0"));

    // File Save: HEX and YSM as "fw" with records of 20, over fw.HEX and
    // fw.YSM: Yes then No leaves both files; Save again with Yes twice writes both.
    script.Dialog<forms::frmsave>([&](forms::frmsave* d) {
      for (const char* list : {"Combo1", "Combo1", "Combo2", "Combo3", "Combo3"})  // an item down each time named
        QTest::keyClick(Child(d, list), Qt::Key_Down);
      Fill(d, {{"Text4", "20"}, {"Text5", "fw"}});
      QVERIFY(d->isVisible() && ReadFile(path("fw.HEX")) + ReadFile(path("fw.YSM")) == "fw.HEXfw.YSM");
      PressKey(d, Qt::Key_Return);
    }).Message("fw.HEX File Over Write?", QMessageBox::Warning, "Save")
        .Message("fw.YSM File Over Write?", QMessageBox::Warning, "Save", Qt::Key_Escape)
        .Message("fw.HEX File Over Write?", QMessageBox::Warning, "Save")
        .Message("fw.YSM File Over Write?", QMessageBox::Warning, "Save")
        .Message("HEX and YSM File Save Complete!");
    script.Run([&] { Click(&window, "cmdsave"); });
    // The sum file carries the 16-16 sum the SUM dialog showed; the HEX file records of 32 bytes.
    QCOMPARE(ReadFile(path("fw.YSM")).substr(0, 16), std::string("S30700000000ECF0"));
    QVERIFY(ReadFile(path("fw.HEX")).find("\r\n:20") != std::string::npos);

    // Buffer Clear, answered Yes.
    script.Message("Buffer Clear OK?", QMessageBox::Question, "BufferClear").Message("Buffer Clear Complete!");
    script.Run([&] { Click(&window, "cmdbufclear"); });
    QCOMPARE(Text(&window, "Text1"), QString());

    // fw.HEX dropped on the window opens File Load with it picked; the sums come back.
    script.Dialog<forms::frmload>([&](forms::frmload* d) {
      QCOMPARE(Child<forms::FileListBox>(d, "File1")->FileName(), QStringLiteral("fw.HEX"));
      PressKey(d, Qt::Key_Return);
    }).Message("Load Complete!");
    script.Run([&] {
      QMimeData data;
      data.setUrls({QUrl::fromLocalFile(folder.filePath(QStringLiteral("fw.HEX")))});
      const QPoint at = list->mapTo(&window, list->rect().center());
      QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
      QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
      QVERIFY(QApplication::sendEvent(&window, &enter) && enter.isAccepted());
      QApplication::sendEvent(&window, &drop);
    });
    QCOMPARE(sumsShown(), QStringLiteral("70 D970 ECF0"));

    // File, Exit, from the program's main loop: it ends the loop with status
    // 0 and the area goes to the store (the drives too: the folders come back below).
    auto giveUp = std::make_unique<QObject>();
    QTimer::singleShot(10000, giveUp.get(), [] { QCoreApplication::exit(1); });
    QTimer::singleShot(0, &window, [&] { OpenMenuItem(&window, Qt::Key_F, 2); });
    QCOMPARE(QCoreApplication::exec(), 0);
    giveUp.reset();
    const auto stored = [&](const char* key) { return settings.store.Read(kAddress, key, ""); };
    QCOMPARE(stored("BufFirst") + stored("BufLast"), std::string("000100000001FFFF"));

    // The next start: the stored area, and each dialog with what was kept.
    m = Module1{};
    forms::frmsumtool again(ctx);
    again.show();
    QVERIFY(QTest::qWaitForWindowExposed(&again));
    kept = QStringList{Text(&again, "txtbuffaddr"), Text(&again, "txtbufladdr"), Text(&again, "txteditaddr")};
    script.Dialog<forms::frmload>([&](forms::frmload* d) { keep(d, {"Text4", "Text3", "Dir1"}); })
        .Dialog<forms::frmsave>([&](auto* d) { keep(d, {"Combo1", "Combo2", "Combo3", "Text4", "Text5", "Dir2"}); })
        .Dialog<forms::frmstore>([&](forms::frmstore* d) { keep(d, {"Text1", "Text2", "Text3"}); });
    script.Run([&] { for (const char* button : {"cmdload", "cmdsave", "cmdblstore"}) Click(&again, button); });
    QCOMPARE(kept.join('|'), "00010000|0001FFFF|00010000|00010000|0001FFFF|" + dir +
                                 "|Object and YSM File|HEX|16-16SUM|20||" + dir + "|0001FFF0|0001000F|5A");
    // Closing the window, not only Exit, puts its area in the store.
    settings.store.Write(kAddress, "BufFirst", "");
    again.close();
    QCOMPARE(stored("BufFirst") + stored("BufLast"), std::string("000100000001FFFF"));
  }
};

QTEST_MAIN(TestE2eSession)
#include "test_e2e_session.moc"
