#include <QAction>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>

#include "GuiSupport.h"
#include "forms/frmsumtool.h"
#include "forms/frmversion.h"

using namespace kestrum;
using namespace kestrum::test;

class TestFrmSumTool : public QObject {
  Q_OBJECT
 private slots:
  void startsWithDefaultAreaAndDesignedControls() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    QCOMPARE(window.windowTitle(), QStringLiteral("Kestrum"));
    QCOMPARE(Child<QLineEdit>(&window, "txtbuffaddr")->text(), QStringLiteral("00000000"));
    QCOMPARE(Child<QLineEdit>(&window, "txtbufladdr")->text(), QStringLiteral("0007FFFF"));
    QCOMPARE(Child<QLineEdit>(&window, "txteditaddr")->text(), QStringLiteral("00000000"));
    QVERIFY(!Child<QLineEdit>(&window, "txtbuffaddr")->isEnabled());
    QVERIFY(!Child<QLineEdit>(&window, "Text1")->isEnabled());
    QVERIFY(!Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QVERIFY(!Child<QPushButton>(&window, "cmdeditminus")->isEnabled());
    const std::pair<const char*, const char*> captions[] = {
        {"cmdload", "File Load"},   {"cmdsave", "File Save"},   {"cmdbufclear", "Buffer Clear"},
        {"cmdblstore", "Block Store"}, {"cmdbufsum", "Buffer SUM"}, {"cmdedit", "Dump"},
        {"cmdeditplus", "+"},       {"cmdeditminus", "-"}};
    for (const auto& [name, caption] : captions) {
      auto* button = Child<QPushButton>(&window, name);
      QCOMPARE(button->text(), QString::fromLatin1(caption));
    }
    const std::pair<const char*, const char*> actions[] = {
        {"mnuload", "Load"}, {"mnusave", "Save"}, {"mnuexit", "Exit"}, {"mnubufaddr", "Buffer Address"},
        {"mnuversion", "Version"}};
    for (const auto& [name, caption] : actions) {
      auto* action = window.findChild<QAction*>(QString::fromLatin1(name));
      QVERIFY2(action, name);
      QCOMPARE(action->text(), QString::fromLatin1(caption));
    }
    QCOMPARE(w.m.BufSize, Address{524288});
  }

  void typingGoesThroughTheFilterAndDumpWorks() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    auto* edit = Child<QLineEdit>(&window, "txteditaddr");
    edit->clear();
    TypeInto(edit, QStringLiteral("7ffgf zf"));
    QCOMPARE(edit->text(), QStringLiteral("7FFFF"));
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    QCOMPARE(edit->text(), QStringLiteral("0007FFFF"));
    auto* list = Child<QListWidget>(&window, "List1");
    QCOMPARE(list->count(), 1);
    QCOMPARE(list->item(0)->text(), QStringLiteral("0007FFFF  FF"));
    QVERIFY(Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QVERIFY(w.platform.messages.empty());
  }

  void bufferClearAnsweredYesEmptiesTheDump() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    QCOMPARE(Child<QListWidget>(&window, "List1")->count(), 7);
    w.platform.answers = {vbYes};
    QTest::mouseClick(Child<QPushButton>(&window, "cmdbufclear"), Qt::LeftButton);
    QCOMPARE(Child<QListWidget>(&window, "List1")->count(), 0);
    QVERIFY(!Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QCOMPARE(w.platform.Texts(), (std::vector<std::string>{"Buffer Clear OK?", "Buffer Clear Complete!"}));
  }

  void closingStoresTheArea() {
    GuiWorld w;
    w.settings.store.Write(kAddress, "BufFirst", "00001000");
    w.settings.store.Write(kAddress, "BufLast", "00001FFF");
    {
      forms::frmsumtool window(w.ctx);
      window.show();
      QCOMPARE(Child<QLineEdit>(&window, "txtbuffaddr")->text(), QStringLiteral("00001000"));
      QCOMPARE(w.m.BufSize, Address{0x1000});
      w.settings.store.Write(kAddress, "BufFirst", "");
      w.settings.store.Write(kAddress, "BufLast", "");
      window.close();
    }
    QCOMPARE(w.settings.store.Read(kAddress, "BufFirst", "?"), std::string("00001000"));
    QCOMPARE(w.settings.store.Read(kAddress, "BufLast", "?"), std::string("00001FFF"));
  }

  void exitFromTheMenuStoresTheArea() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    window.findChild<QAction*>(QStringLiteral("mnuexit"))->trigger();
    QCOMPARE(w.settings.store.Read(kAddress, "BufFirst", "?"), std::string("00000000"));
    QCOMPARE(w.settings.store.Read(kAddress, "BufLast", "?"), std::string("0007FFFF"));
  }

  void versionDialogShowsTitleAndVersion() {
    forms::frmversion dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Version"));
    QCOMPARE(Child<QWidget>(&dialog, "Label1")->property("text").toString(), QStringLiteral("Kestrum"));
    QCOMPARE(Child<QWidget>(&dialog, "Label4")->property("text").toString(), QStringLiteral("Version 2.30"));
    auto* ok = Child<QPushButton>(&dialog, "OK_Button");
    QVERIFY(ok->isDefault());
  }
};

QTEST_MAIN(TestFrmSumTool)
#include "test_frmsumtool.moc"
