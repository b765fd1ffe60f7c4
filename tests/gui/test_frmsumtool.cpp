// The main window as it opens, a key typed through the dump address's
// filter, and the area in the store once it closes; the version window's
// texts.
#include <QAction>
#include <QPushButton>

#include "GuiSupport.h"
#include "forms/frmsumtool.h"
#include "forms/frmversion.h"

using namespace kestrum;
using namespace kestrum::test;

class TestFrmSumTool : public QObject {
  Q_OBJECT
 private slots:
  void opensWithItsCaptionsAndStatesAndClosingStoresTheArea() {
    GuiWorld w;
    w.settings.store.Write(kAddress, "BufFirst", "00001000");
    w.settings.store.Write(kAddress, "BufLast", "00001FFF");
    {
      forms::frmsumtool window(w.ctx);
      window.show();
      QCOMPARE(window.windowTitle(), QStringLiteral("Kestrum"));
      const struct {
        const char* name;
        const char* text;
        bool enabled;
      } controls[] = {{"cmdload", "File Load", true},      {"cmdsave", "File Save", true},
                      {"cmdbufclear", "Buffer Clear", true}, {"cmdblstore", "Block Store", true},
                      {"cmdbufsum", "Buffer SUM", true},     {"cmdedit", "Dump", true},
                      {"cmdeditplus", "+", false},           {"cmdeditminus", "-", false},
                      {"txtbuffaddr", "00001000", false},    {"txtbufladdr", "00001FFF", false},
                      {"txteditaddr", "00001000", true},     {"Text1", "", false}};
      for (const auto& c : controls) {
        auto* control = Child<QWidget>(&window, c.name);
        QCOMPARE(control->property("text").toString(), QString::fromLatin1(c.text));
        QVERIFY2(control->isEnabled() == c.enabled, c.name);
      }
      const std::pair<const char*, const char*> actions[] = {{"mnuload", "Load"},
                                                             {"mnusave", "Save"},
                                                             {"mnuexit", "Exit"},
                                                             {"mnubufaddr", "Buffer Address"},
                                                             {"mnuversion", "Version"}};
      for (const auto& [name, caption] : actions) {
        auto* action = window.findChild<QAction*>(QString::fromLatin1(name));
        QVERIFY2(action, name);
        QCOMPARE(action->text(), QString::fromLatin1(caption));
      }
      QCOMPARE(w.m.BufSize, Address{0x1000});

      auto* edit = Child<QLineEdit>(&window, "txteditaddr");
      edit->clear();
      TypeInto(edit, QStringLiteral("1ffgf zf"));
      QCOMPARE(edit->text(), QStringLiteral("1FFFF"));
      // Whatever else wrote the store, closing puts the window's area there.
      w.settings.store.Write(kAddress, "BufFirst", "");
      w.settings.store.Write(kAddress, "BufLast", "");
      window.close();
    }
    QCOMPARE(w.settings.store.Read(kAddress, "BufFirst", "?"), std::string("00001000"));
    QCOMPARE(w.settings.store.Read(kAddress, "BufLast", "?"), std::string("00001FFF"));
  }

  void versionWindowShowsTheNameAndVersion() {
    forms::frmversion dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Version"));
    QCOMPARE(Child<QWidget>(&dialog, "Label1")->property("text").toString(), QStringLiteral("Kestrum"));
    QCOMPARE(Child<QWidget>(&dialog, "Label4")->property("text").toString(), QStringLiteral("Version 2.30"));
  }
};

QTEST_MAIN(TestFrmSumTool)
#include "test_frmsumtool.moc"
